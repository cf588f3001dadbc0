"""Les images qu’un programme envoie se voient dans la vraie fenêtre, et suivent le texte."""

import base64
import subprocess

from application import attendre, compter_les_pixels, touches
from essai_terminal import Terminal as CasDeTerminal, taper

ROUGE, BLEU = "#FF0000", "#0000FF"
LARGEUR, HAUTEUR = 120, 60


class Images(CasDeTerminal):
    def preparer_les_images(self, application):
        """Un rectangle rouge en sixels, un bleu dans le protocole d’iTerm."""
        with open(self.chemin(application, "rouge"), "w") as fichier:
            fichier.write(f'\x1bPq"1;1;{LARGEUR};{HAUTEUR}#1;2;100;0;0' + f"#1!{LARGEUR}~-" * (HAUTEUR // 6) + "\x1b\\\n")
        png = subprocess.run(["convert", "-size", f"{LARGEUR}x{HAUTEUR}", "xc:" + BLEU, "png:-"], capture_output=True, check=True).stdout
        with open(self.chemin(application, "bleu"), "w") as fichier:
            fichier.write(f"\x1b]1337;File=inline=1;size={len(png)}:{base64.b64encode(png).decode()}\x07\n")

    def attendre_la_surface(self, teinte, voulue, zone=None):
        attendre(lambda: compter_les_pixels(teinte, zone) == voulue,
                 quoi=lambda: f"{voulue} pixels de {teinte} (vu : {compter_les_pixels(teinte, zone)})")

    def test_une_image_se_dessine_a_sa_place_et_defile_avec_le_texte(self):
        application = self.ouvrir()
        self.preparer_les_images(application)
        taper("clear; cat rouge\n")
        self.attendre_la_surface(ROUGE, LARGEUR * HAUTEUR)
        # Au début de la première ligne, comme le texte qu’elle remplace.
        self.attendre_la_surface(ROUGE, LARGEUR * HAUTEUR, "140x80+46+116")
        taper("cat bleu\n")
        self.attendre_la_surface(BLEU, LARGEUR * HAUTEUR)
        taper("seq 100\n")
        self.attendre_la_surface(ROUGE, 0)
        touches("shift+Prior", "shift+Prior", "shift+Prior")
        self.attendre_la_surface(ROUGE, LARGEUR * HAUTEUR)
        self.attendre_la_surface(BLEU, LARGEUR * HAUTEUR)
        application.quitter()
