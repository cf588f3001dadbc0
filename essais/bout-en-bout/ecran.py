"""L’écran vu par un lecteur d’écran : ce qui se lit, ce qui se presse."""

import contextlib
import subprocess

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from application import attendre, touches  # noqa: E402


def _parcourir(objet):
    yield objet
    for i in range(objet.get_child_count()):
        enfant = objet.get_child_at_index(i)
        if enfant is not None:
            yield from _parcourir(enfant)


def _application(pid):
    bureau = Atspi.get_desktop(0)
    for i in range(bureau.get_child_count()):
        # Une autre application peut partir pendant la lecture.
        with contextlib.suppress(gi.repository.GLib.Error):
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



def _trouver(pid, role):
    return [objet for objet in _montres(pid) if objet.get_role_name() == role]


def _a_l_etat(objet, etat):
    return objet.get_state_set().contains(etat)


def articles(pid):
    """Les articles du menu ouvert, dans l’ordre, et s’ils se laissent choisir."""
    return {objet.get_name(): _a_l_etat(objet, Atspi.StateType.SENSITIVE)
            for menu in _trouver(pid, "menu") for objet in _parcourir(menu) if objet.get_role_name() == "menu item"}


def _au_clavier(pid, titre):
    return any(objet.get_name() == titre and _a_l_etat(objet, Atspi.StateType.FOCUSED)
               for objet in _trouver(pid, "menu item"))


def ouvrir_le_menu(pid, titre):
    """Au clavier : jusqu’à la barre, jusqu’au titre, puis Entrée."""
    touches("ctrl+shift+F10")
    attendre(lambda: _au_clavier(pid, "Keltrove"), quoi="le clavier dans la barre")
    while not _au_clavier(pid, titre):
        touches("Right")
    touches("Return")
    attendre(lambda: articles(pid), quoi=f"le menu {titre}")


def choisir(pid, titre, article):
    ouvrir_le_menu(pid, titre)
    while not _au_clavier(pid, article):
        touches("Down")
    touches("Return")


def mettre_le_clavier_sur_le_detail(pid):
    while not any(_a_l_etat(objet, Atspi.StateType.FOCUSED) for objet in _trouver(pid, "text")):
        touches("Tab")


def presse_papiers():
    return subprocess.run(["xclip", "-o", "-selection", "clipboard"], capture_output=True, text=True).stdout
