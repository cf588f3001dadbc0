"""Un « fichier:ligne » écrit dans un terminal s’ouvre dans l’éditeur, d’un Ctrl+clic."""

import contextlib

from application import attendre, compter_les_pixels, touches
from bureau import Ouvreur
from essai_terminal import Terminal as CasDeTerminal, taper
from glissement import souris

PREMIERE_LIGNE = 127
HAUTEUR = 17
INDICATION = "#292929"
EN_BAS = "400x60+40+820"


class Chemins(CasDeTerminal):
    def survoler(self, rang, lien):
        """Le terminal ne cherche les liens que sous une souris qui bouge ; l’indication vient quand le serveur a répondu."""
        def vu():
            souris("mousemove", 400, PREMIERE_LIGNE + 8 * HAUTEUR, "mousemove", 62, PREMIERE_LIGNE + rang * HAUTEUR)
            souris("mousemove", 64, PREMIERE_LIGNE + rang * HAUTEUR)
            with contextlib.suppress(AssertionError):
                attendre(lambda: compter_les_pixels(INDICATION, EN_BAS) > 500, secondes=2)
                return lien
            return not lien

        attendre(vu, quoi=f"l’indication à la ligne {rang}")

    def test_seul_un_ctrl_clic_sur_un_fichier_qui_existe_l_ouvre(self):
        editeur = Ouvreur(self, "text/plain")
        application = self.ouvrir(variables=editeur.variables)
        taper("echo texte > a.txt; clear; printf 'b.txt:1:1: absent\\na.txt:12:5: erreur\\n'; touch ecrit\n")
        self.attendre_le_fichier(application, "ecrit")

        self.survoler(0, lien=False)
        souris("keydown", "ctrl", "click", 1, "keyup", "ctrl")
        self.survoler(1, lien=True)
        souris("click", 1)
        souris("keydown", "ctrl", "click", 1, "keyup", "ctrl")
        attendre(editeur.notes, quoi="le fichier dans l’éditeur")
        self.assertEqual(editeur.notes(), [self.chemin(application, "a.txt")])
        # Par le menu aussi : son « Ouvrir le lien » est pour ce que l’on survole.
        self.survoler(1, lien=True)
        souris("click", 3)
        touches("Up", "Up", "Up", "Up", "Up", "Return")
        attendre(lambda: len(editeur.notes()) == 2, quoi="le fichier par le menu")
        application.quitter()
