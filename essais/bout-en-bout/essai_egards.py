"""Ce que l’utilisateur a demandé à tout son bureau, la fenêtre et la page le suivent : un grand texte, rien qui bouge."""

import os
import subprocess
import time

import page_notee
from application import MUET, SOMBRE, attendre, couleur, regler_la_resolution
from cas import Cas
from page_notee import attendre_la_note

PAGE = page_notee.code("""<script>
  noter([innerWidth, matchMedia('(prefers-reduced-motion: reduce)').matches]);</script>""")


def photographier():
    return subprocess.run(["import", "-window", "root", "rgb:-"], capture_output=True, check=True).stdout


class Egards(Cas):
    def ouvrir(self, reglages="", **options):
        application = self.application(**options)
        dossier = os.path.join(application.racine, "bureau")
        os.makedirs(os.path.join(dossier, "gtk-4.0"))
        with open(os.path.join(dossier, "gtk-4.0/settings.ini"), "w") as fichier:
            fichier.write("[Settings]\n" + reglages)
        application.variables["XDG_CONFIG_HOME"] = dossier
        return application.lancer()

    def test_la_page_grandit_comme_le_texte_du_bureau(self):
        self.addCleanup(regler_la_resolution, 96)
        for resolution, largeur in ((96, 1280), (192, 640)):
            with self.subTest(resolution=resolution):
                regler_la_resolution(resolution)
                application = self.ouvrir(code=PAGE)
                application.attendre("page-affichee")
                attendre_la_note(application, [largeur, False])
                application.quitter()

    def test_la_page_sait_que_rien_ne_doit_bouger(self):
        application = self.ouvrir("gtk-enable-animations=false\n", code=PAGE)
        application.attendre("page-affichee")
        attendre_la_note(application, [1280, True])
        application.quitter()

    def test_la_roue_tourne_ou_reste_immobile_selon_le_bureau(self):
        for reglages, tourne in (("", True), ("gtk-enable-animations=false\n", False)):
            with self.subTest(tourne=tourne):
                application = self.ouvrir(reglages, code=MUET)
                attendre(lambda: couleur(680, 800) == SOMBRE, quoi="l’écran d’attente")
                # Le premier texte laisse vite la place au second, puis seule la roue a de quoi bouger.
                application.attendre("demarrage-demande")
                attendre(lambda: self.bouge(2.5) == tourne, 30, "la roue qui tourne" if tourne else "la roue immobile")
                application.quitter()

    def bouge(self, secondes):
        """Un tour de roue en dure une."""
        image, fin = photographier(), time.monotonic() + secondes
        while time.monotonic() < fin:
            if photographier() != image:
                return True
        return False
