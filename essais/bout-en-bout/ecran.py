"""L’écran vu par un lecteur d’écran : ce qui se lit, ce qui se presse."""

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from application import attendre  # noqa: E402


def _parcourir(objet):
    yield objet
    for i in range(objet.get_child_count()):
        enfant = objet.get_child_at_index(i)
        if enfant is not None:
            yield from _parcourir(enfant)


def _application(pid):
    bureau = Atspi.get_desktop(0)
    for i in range(bureau.get_child_count()):
        application = bureau.get_child_at_index(i)
        if application is not None and application.get_process_id() == pid:
            return application
    return None


def _montres(pid):
    application = _application(pid)
    if application is None:
        return []
    try:
        # GTK n’expose que ce qui est visible : tout ce qui est dans l’arbre est à l’écran.
        return list(_parcourir(application))
    except gi.repository.GLib.Error:
        return []  # l’arbre a changé pendant la lecture : on le relira


def textes(pid):
    lus = [objet.get_name() for objet in _montres(pid) if objet.get_role_name() == "label"]
    return lus + [Atspi.Text.get_text(objet, 0, -1) for objet in _montres(pid) if objet.get_role_name() == "text"]


def boutons(pid):
    return {objet.get_name(): objet for objet in _montres(pid) if objet.get_role_name() == "push button"}


def presser(pid, nom):
    attendre(lambda: nom in boutons(pid), quoi=f"le bouton « {nom} »")
    boutons(pid)[nom].do_action(0)


def attendre_le_texte(pid, texte, secondes=15):
    attendre(lambda: any(texte in lu for lu in textes(pid)), secondes, f"le texte « {texte} »")
