"""Tirer quelque chose d’une autre fenêtre jusque dans la page, à la souris."""

import os
import subprocess
import threading

from application import attendre, la_fenetre


def souris(*gestes):
    subprocess.run(["xdotool", *map(str, gestes)], check=True)


class Source:
    def __init__(self, cas, sorte, *valeurs):
        ici = os.path.dirname(os.path.abspath(__file__))
        self.processus = subprocess.Popen(["/usr/bin/python3", os.path.join(ici, "source_de_glissement.py"), sorte,
                                           *valeurs], stdout=subprocess.PIPE, text=True)
        cas.addCleanup(self.fermer)
        self.lignes = []
        self.lecture = threading.Thread(target=self.lire, daemon=True)
        self.lecture.start()
        self.fenetre = la_fenetre(self)
        souris("windowmove", "--sync", self.fenetre, 1100, 60, "windowactivate", "--sync", self.fenetre)

    def lire(self):
        for ligne in self.processus.stdout:
            self.lignes.append(ligne.strip())

    def fermer(self):
        self.processus.kill()
        self.processus.wait()
        self.lecture.join()
        self.processus.stdout.close()

    def admis(self):
        """La cible sous le pointeur accepte-t-elle le dépôt ?"""
        return bool(self.lignes) and self.lignes[-1] == "admis"

    def prendre(self):
        """Prend la chose et la tire un peu, assez pour que le glissement commence."""
        souris("mousemove", "--window", self.fenetre, 60, 40, "mousedown", 1)
        for pas in range(0, 60, 6):
            souris("mousemove", "--window", self.fenetre, 60 - pas, 40 + pas)

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

        attendre(un_pas, quoi=quoi)

    def lacher(self):
        souris("mouseup", 1)
        attendre(lambda: "fini" in self.lignes, quoi="la fin du glissement")
        return "refuse" if "refuse" in self.lignes else "fini"
