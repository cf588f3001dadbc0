"""Ce qui se lit vraiment : le contraste d’un texte avec son fond, d’après les pixels."""

import collections
import re
import subprocess

import ecran
from application import attendre, fenetres
from points import contraste


def du_texte(x, y, largeur, hauteur):
    """Entre la couleur la plus répandue de ce rectangle, son fond, et celle qui s’en écarte le plus, son texte."""
    pixels = subprocess.run(["import", "-window", "root", "-crop", f"{largeur}x{hauteur}+{x}+{y}", "-depth", "8", "txt:-"],
                            capture_output=True, text=True, check=True).stdout
    comptes = collections.Counter(re.findall(r"#([0-9A-F]{6})", pixels))
    couleurs = [bytes.fromhex(couleur) for couleur, _ in comptes.most_common()]
    return max(contraste(couleur, couleurs[0]) for couleur in couleurs)


def _coin(fenetre):
    lue = subprocess.run(["xwininfo", "-id", str(fenetre)], capture_output=True, text=True, check=True).stdout
    return [int(re.search(rf"Absolute upper-left {axe}: *(-?\d+)", lue)[1]) for axe in "XY"]


def de_la_barre(application, fenetre):
    """Les rectangles des titres de la barre, à l’écran."""
    gauche, haut = _coin(fenetre)
    return {nom: (gauche + x, haut + y, l, h)
            for nom, (x, y, l, h) in ecran.rectangles(application.processus.pid, "menu bar").items()}


def du_menu(application, fenetre):
    """Ceux des articles du menu ouvert, qui a sa propre fenêtre."""
    attendre(lambda: len(fenetres(application)) == 2, quoi="la fenêtre du menu")
    gauche, haut = _coin(next(autre for autre in fenetres(application) if autre != fenetre))
    return {nom: (gauche + x, haut + y, l, h)
            for nom, (x, y, l, h) in ecran.rectangles(application.processus.pid, "menu").items()}
