"""L’écran vu par un lecteur d’écran : ce qui se lit, ce qui se presse."""

import contextlib
import subprocess
import threading

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from application import attendre, touches  # noqa: E402

# Selon sa version, AT-SPI dit « push button » ou « button ».
BOUTON = Atspi.role_get_name(Atspi.Role.PUSH_BUTTON)
# AT-SPI ne se lit que d’un fil à la fois, et des essais se mènent ensemble.
UN_SEUL_LECTEUR = threading.Lock()
PAS = 0.05  # lire un écran occupe aussi son application


def _parcourir(objet, sauf=None):
    try:
        if objet.get_role_name() == sauf:
            return
        nombre = objet.get_child_count()
    except GLib.Error as erreur:
        # Celui d’une page tuée : la boîte à outils lui garde sa place jusqu’à la suivante.
        if "was not provided by any .service files" in erreur.message:
            return
        raise
    yield objet
    for i in range(nombre):
        enfant = objet.get_child_at_index(i)
        if enfant is not None:
            yield from _parcourir(enfant, sauf)


def _application(pid):
    bureau = Atspi.get_desktop(0)
    for i in range(bureau.get_child_count()):
        # Une autre application peut partir pendant la lecture.
        with contextlib.suppress(GLib.Error):
            application = bureau.get_child_at_index(i)
            if application is not None and application.get_process_id() == pid:
                return application
    return None


def _lire(pid, lecture):
    """Ce que la lecture rend de tout ce qui est à l’écran. L’arbre peut changer pendant ce temps : on le relit, car ce
    qu’on n’a pas su lire n’est pas absent."""
    lus = []

    def lire():
        with contextlib.suppress(GLib.Error), UN_SEUL_LECTEUR:
            application = _application(pid)
            # GTK n’expose que ce qui est visible : tout ce qui est dans l’arbre est à l’écran.
            lus.append(lecture(list(_parcourir(application)) if application else []))
        return lus

    attendre(lire, quoi="un écran qui se laisse lire", pas=PAS)
    return lus[0]


def textes(pid):
    def lus(objets):
        noms = [objet.get_name() for objet in objets if objet.get_role_name() == "label"]
        return noms + [Atspi.Text.get_text(objet, 0, -1) for objet in objets if objet.get_role_name() == "text"]

    return _lire(pid, lus)


def noms_du_role(pid, role):
    return _lire(pid, lambda objets: [objet.get_name() for objet in objets if objet.get_role_name() == role])


def boutons(pid):
    """Ceux de la fenêtre, et non de sa page, que les GTK récents donnent aussi à lire."""
    def lus(objets):
        return [objet.get_name() for application in objets[:1] for objet in _parcourir(application, "document web")
                if objet.get_role_name() == BOUTON]

    return _lire(pid, lus)


def presser(pid, nom):
    def presse(objets):
        return any(o.get_name() == nom and o.do_action(0) for o in objets if o.get_role_name() == BOUTON)

    attendre(lambda: _lire(pid, presse), quoi=f"le bouton « {nom} »", pas=PAS)


def attendre_le_texte(pid, *voulus, secondes=60):
    """L’un d’eux suffit."""
    attendre(lambda: any(voulu in lu for lu in textes(pid) for voulu in voulus), secondes,
             lambda: f"à l’écran, {' ou '.join(voulus)} (lu : {textes(pid)})", PAS)


def _a_l_etat(objet, etat):
    return objet.get_state_set().contains(etat)


def articles(pid):
    """Les articles du menu ouvert, dans l’ordre, et s’ils se laissent choisir."""
    def lus(objets):
        return {objet.get_name(): _a_l_etat(objet, Atspi.StateType.SENSITIVE)
                for menu in objets if menu.get_role_name() == "menu"
                for objet in _parcourir(menu) if objet.get_role_name() == "menu item"}

    return _lire(pid, lus)


def rectangles(pid, role):
    """Où sont les articles de ce menu, ou de cette barre, mesurés depuis son coin : x, y, largeur, hauteur."""
    def de(objet):
        etendue = objet.get_extents(Atspi.CoordType.WINDOW)
        return etendue.x, etendue.y, etendue.width, etendue.height

    def lus(objets):
        menu = next(objet for objet in objets if objet.get_role_name() == role)
        # Les coordonnées d’un menu ouvert partent du titre qui l’ouvre, celles de la barre, de la fenêtre.
        gauche, haut = de(menu)[:2]
        trouves = {objet.get_name(): de(objet) for objet in _parcourir(menu) if objet.get_role_name() == "menu item"}
        return {nom: (x - gauche, y - haut, l, h) for nom, (x, y, l, h) in trouves.items()}

    return _lire(pid, lus)


def touches_dites(pid):
    """Les touches de chaque article du menu ouvert : GTK 4.8 donne à lire celles qu’il écrit, GTK 4.18 celles qu’il fait dire."""
    def dites(article):
        ecrites = [e.get_name() for e in _parcourir(article) if e.get_role_name() == "label"][1:]
        return ecrites or list(filter(None, [article.get_attributes().get("keyshortcuts")]))

    def lus(objets):
        return {o.get_name(): dites(o)
                for menu in objets if menu.get_role_name() == "menu"
                for o in _parcourir(menu) if o.get_role_name() == "menu item"}

    return _lire(pid, lus)


def noms(pid):
    """Le rôle et le nom de tout ce qui est à l’écran."""
    return _lire(pid, lambda objets: [(o.get_role_name(), o.get_name()) for o in objets])


def au_clavier(pid):
    """Le rôle et le nom de ce qui a le clavier."""
    return _lire(pid, lambda objets: [(objet.get_role_name(), objet.get_name()) for objet in objets
                                      if _a_l_etat(objet, Atspi.StateType.FOCUSED)])


def _avancer(pid, touche, arrive):
    """Un pas après l’autre, car une touche de trop dépasserait."""
    for _ in range(30):
        ici = au_clavier(pid)
        if arrive(ici):
            return
        touches(touche)
        with contextlib.suppress(AssertionError):
            attendre(lambda: au_clavier(pid) != ici, secondes=1)
    raise AssertionError(f"« {touche} » n’y mène pas : {ici}")


def menus_ouverts(pid):
    return noms_du_role(pid, "menu")


def ouvrir_le_menu(pid, titre):
    """Au clavier : le premier s’ouvre, puis chacun mène à son voisin."""
    touches("ctrl+shift+F10")
    attendre(lambda: menus_ouverts(pid) == ["Keltrove"], quoi="le premier menu")
    while (ici := menus_ouverts(pid)) != [titre]:
        touches("Right")
        attendre(lambda: menus_ouverts(pid) not in ([], ici), quoi=f"le menu après {ici}")


def avancer_jusqu_a(pid, article):
    _avancer(pid, "Down", lambda ici: ("menu item", article) in ici)


def choisir(pid, titre, article):
    ouvrir_le_menu(pid, titre)
    avancer_jusqu_a(pid, article)
    touches("Return")


def mettre_le_clavier_sur_le_detail(pid):
    _avancer(pid, "Tab", lambda ici: any(role == "text" for role, _ in ici))


def presse_papiers():
    return subprocess.run(["xclip", "-o", "-selection", "clipboard"], capture_output=True, text=True).stdout
