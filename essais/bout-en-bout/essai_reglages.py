"""Les réglages et les petits services de la page, tels que WebKit les rend."""

import glob
import os
import time

from application import attendre, couleur, lire, touches
from essai_terminal import Terminal, taper
from glissement import souris

NUIT = "#16202E"


class Reglages(Terminal):
    def test_au_clavier_les_couleurs_changent_aussitot_et_restent(self):
        application = self.ouvrir(reste_un_serveur=True)
        touches("ctrl+shift+p")
        # Le premier réglage a le clavier : chaque flèche y est un choix.
        touches(*["Down"] * 6)
        touches("Escape")
        attendre(lambda: couleur(680, 700) == NUIT, quoi="les couleurs de la nuit")
        self.taper_jusqu_a(application, "touch encore\n", "encore")
        touches("ctrl+shift+r")
        application.attendre("page-contenu", fois=2)
        attendre(lambda: couleur(680, 700) == NUIT, quoi="la nuit, page rechargée")
        application.quitter()


class Historique(Terminal):
    def test_l_historique_s_enregistre_en_entier_dans_un_fichier(self):
        application = self.ouvrir()
        taper("seq 5000; touch ecrit\n")
        self.attendre_le_fichier(application, "ecrit")

        # L’écran peut retarder sur le fichier : on enregistre jusqu’à ce que tout y soit.
        def enregistre():
            touches("ctrl+shift+s")
            return any(b"\n4999\n5000\n" in lire(chemin) for chemin in glob.glob(self.chemin(application, "*.txt")))

        attendre(enregistre, quoi="les lignes dans un fichier", pas=0.5)
        application.quitter()


class Molette(Terminal):
    def lignes(self, application, rang):
        taper(f"stty size > taille{rang}\n")
        attendre(lambda: os.path.exists(self.chemin(application, f"taille{rang}")) and lire(self.chemin(application, f"taille{rang}")),
                 quoi="la taille")
        return int(lire(self.chemin(application, f"taille{rang}")).split()[0])

    def test_ctrl_molette_grossit_le_texte_et_le_programme_apprend_sa_taille(self):
        application = self.ouvrir()
        avant = self.lignes(application, "avant")
        souris("mousemove", 640, 500, "keydown", "ctrl", "click", "--repeat", 4, "--delay", 60, 4, "keyup", "ctrl")
        attendre(lambda: self.lignes(application, time.monotonic_ns()) < avant - 5, quoi="des lignes plus grandes")
        souris("keydown", "ctrl", "click", "--repeat", 4, "--delay", 60, 5, "keyup", "ctrl")
        attendre(lambda: self.lignes(application, time.monotonic_ns()) == avant, quoi="la taille d’avant")
        application.quitter()
