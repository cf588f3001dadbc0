"""Des terminaux l’un au-dessus de l’autre et côte à côte, dans la vraie fenêtre."""

from application import attendre, compter_les_pixels, touches
from essai_terminal import Terminal as CasDeTerminal
from glissement import souris

COLONNE = 680
MILIEU = range(470, 510)


class Divisions(CasDeTerminal):
    def mesurer(self, application, nom):
        """Les lignes et les colonnes du terminal qui a le clavier."""
        fichier = self.chemin(application, nom)
        self.taper_jusqu_a(application, f"stty size > {nom}.neuf && mv {nom}.neuf {nom}\n", nom)
        with open(fichier) as lu:
            return [int(nombre) for nombre in lu.read().split()]

    def test_le_bord_se_tire_a_la_souris_et_chaque_programme_sait_sa_taille(self):
        application = self.ouvrir()
        entier = self.mesurer(application, "entier")
        touches("ctrl+shift+e")
        attendre(lambda: len(self.carnet(application)) == 2, quoi="le second terminal")
        moitie = self.mesurer(application, "moitie")
        self.assertEqual(moitie[1], entier[1])
        self.assertLess(moitie[0], entier[0] / 2 + 1)

        bord = None
        for ligne in MILIEU:
            souris("mousemove", COLONNE, ligne)
            if compter_les_pixels("#1C64D0", f"600x60+300+{MILIEU[0] - 10}") > 1500:
                bord = ligne
                break
        self.assertIsNotNone(bord, "le bord ne se montre pas sous la souris")
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
