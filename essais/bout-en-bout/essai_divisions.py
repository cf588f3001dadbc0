"""Des terminaux l’un au-dessus de l’autre et côte à côte, dans la vraie fenêtre."""

import re
import subprocess

from application import attendre, compter_les_pixels, touches
from essai_terminal import Terminal as CasDeTerminal
from glissement import souris

COLONNE = 680
MILIEU = range(470, 510)
ACCENT = "#1C64D0"


class Divisions(CasDeTerminal):
    def mesurer(self, application, nom):
        """Les lignes et les colonnes du terminal qui a le clavier."""
        fichier = self.chemin(application, nom)
        self.taper_jusqu_a(application, f"stty size > {nom}.neuf && mv {nom}.neuf {nom}\n", nom)
        with open(fichier) as lu:
            return [int(nombre) for nombre in lu.read().split()]

    def trouver_le_bord(self):
        """Entre deux terminaux vides à cet endroit, le filet est la première ligne d’une autre teinte que le fond."""
        def rangees():
            texte = subprocess.run(["import", "-window", "root", "-crop", f"1x{len(MILIEU)}+{COLONNE}+{MILIEU[0]}", "-depth", "8", "txt:-"],
                                   capture_output=True, text=True).stdout
            teintes = re.findall(r"#\w{6}", texte)
            return [MILIEU[0] + rang for rang, teinte in enumerate(teintes) if teinte != teintes[0]]

        attendre(rangees, quoi="le filet")
        return rangees()[0]

    def test_le_bord_se_tire_a_la_souris_et_chaque_programme_sait_sa_taille(self):
        application = self.ouvrir()
        entier = self.mesurer(application, "entier")
        touches("ctrl+shift+e")
        attendre(lambda: len(self.carnet(application)) == 2, quoi="le second terminal")
        moitie = self.mesurer(application, "moitie")
        self.assertEqual(moitie[1], entier[1])
        self.assertLess(moitie[0], entier[0] / 2 + 1)

        bord = self.trouver_le_bord()
        souris("mousemove", COLONNE, bord)
        attendre(lambda: compter_les_pixels(ACCENT, f"600x20+300+{bord - 10}") > 600 * 3, quoi="le bord sous la souris")
        souris("mousedown", 1)
        for pas in range(1, 11):
            souris("mousemove", COLONNE, bord - 20 * pas)
        souris("mouseup", 1)
        attendre(lambda: self.carnet(application)[0]["division"]["parts"][0] < 0.4, quoi="le partage noté")
        # Tiré à la souris, il n’a pas pris le clavier.
        grand = self.mesurer(application, "grand")
        self.assertGreater(grand[0], moitie[0] + 8)
        touches("ctrl+shift+Up")
        petit = self.mesurer(application, "petit")
        self.assertLess(petit[0], moitie[0] - 8)
        application.quitter()
