"""Tirer quelque chose d’une autre fenêtre jusque dans la page, à la souris."""

import os
import subprocess
import threading

from application import attendre, la_fenetre
from points import Image

TEINTE = (0xD6, 0x33, 0x6C)


def souris(*gestes):
    subprocess.run(["xdotool", *map(str, gestes)], check=True)


class Source:
    """Sous Wayland (`variables` d’un compositeur), elle s’ouvre où veut le compositeur, devant les autres."""

    def __init__(self, cas, sorte, *valeurs, action="COPY", variables=None):
        ici = os.path.dirname(os.path.abspath(__file__))
        environnement = {nom: valeur for nom, valeur in {**os.environ, **(variables or {})}.items() if valeur is not None}
        self.processus = subprocess.Popen(["/usr/bin/python3", os.path.join(ici, "source_de_glissement.py"), action,
                                           sorte, *valeurs], stdout=subprocess.PIPE, text=True, env=environnement)
        cas.addCleanup(self.fermer)
        self.lignes = []
        self.lecture = threading.Thread(target=self.lire, daemon=True)
        self.lecture.start()
        if variables is None:
            fenetre = la_fenetre(self)
            souris("windowmove", "--sync", fenetre, 1100, 60, "windowactivate", "--sync", fenetre)
        attendre(self.place, quoi="la source à l’écran")

    def lire(self):
        for ligne in self.processus.stdout:
            self.lignes.append(ligne.strip())

    def fermer(self):
        self.processus.kill()
        self.processus.wait()
        self.lecture.join()
        self.processus.stdout.close()

    def place(self):
        return Image().etendue(TEINTE)

    def admis(self):
        """La cible sous le pointeur accepte-t-elle le dépôt ?"""
        return bool(self.lignes) and self.lignes[-1] == "admis"

    def prendre(self):
        """Prend la chose et la tire un peu, jusqu’à ce que le glissement ait commencé."""
        self.lignes.clear()
        gauche, haut, droite, bas = self.place()
        x, y = (gauche + droite) // 2, (haut + bas) // 2
        # Un compositeur dans une fenêtre n’apprend la place de la souris que quand elle y entre.
        souris("mousemove", 0, 0)
        self.mener(x, y, lambda: "sous la souris" in self.lignes, "la source sous la souris")
        souris("mousedown", 1)
        self.mener(x + 30, y, lambda: "pris" in self.lignes, "le glissement")

    def mener(self, x, y, fini, quoi):
        """Promène la chose autour d’un point de l’écran jusqu’à ce que la page, ou l’application, l’y ait vue : une source
        occupée ne redit pas sa dernière place, et le dépôt se fait à celle qu’elle a dite."""
        souris("mousemove", x, y)
        tour = [0]

        def un_pas():
            if tour[0] == 0 and fini():
                return True
            tour[0] = 1 - tour[0]
            souris("mousemove", x + tour[0], y)
            return False

        attendre(un_pas, quoi=lambda: f"{quoi} (la source a dit {self.lignes})")

    def lacher(self):
        souris("mouseup", 1)
        return self.issue()

    def jeter(self, x, y, pas):
        """Lâche la chose là d’un trait, après tant de petits pas, d’une milliseconde, laissés à la cible."""
        sur_place = [mot for i in range(pas) for mot in ("sleep", 0.001, "mousemove", x + i % 2, y)]
        souris("mousemove", x, y, *sur_place, "mouseup", 1)
        return self.issue()

    def issue(self):
        attendre(lambda: "fini" in self.lignes, quoi="la fin du glissement")
        return "refuse" if "refuse" in self.lignes else "fini"
