"""Le presse-papiers : ce qu’un programme y écrit, ce que la souris y met en sélectionnant."""

import base64
import subprocess

import ecran
from application import attendre, couleur, touches
from essai_terminal import Terminal, taper

CLAIR = "#FBFBFC"


class PressePapiers(Terminal):
    def ouvrir_avec(self, *reglages):
        """Le clavier n’a pas à traverser toute la boîte des réglages."""
        application = self.ouvrir(reglages=reglages)
        subprocess.run(["xclip", "-selection", "clipboard"], input="ancien", text=True, check=True)
        return application

    def ecrire(self, application, texte, fichier):
        taper(f"printf '\\033]52;c;{base64.b64encode(texte.encode()).decode()}\\a'; touch {fichier}")
        touches("Return")
        self.attendre_le_fichier(application, fichier)

    def attendre_le_presse_papiers(self, voulu):
        attendre(lambda: ecran.presse_papiers() == voulu, quoi=lambda: f"{voulu!r} (vu : {ecran.presse_papiers()!r})")

    def test_un_programme_autorise_ecrit_ensuite_sans_que_l_on_touche_a_rien(self):
        application = self.ouvrir_avec("pressePapiers")
        self.assertEqual(couleur(680, 700), CLAIR)
        self.ecrire(application, "un été", "un")
        # Sous la question, la page s’assombrit ; et le clavier n’y est sur aucun bouton.
        attendre(lambda: couleur(680, 700) != CLAIR, quoi="la question")
        touches("Return")
        touches("Tab", "Tab", "Tab", "Return")
        self.attendre_le_presse_papiers("un été")
        taper("sleep 3; ")
        self.ecrire(application, "bien plus tard", "deux")
        self.attendre_le_presse_papiers("bien plus tard")
        application.quitter()

    def test_la_souris_copie_ce_qu_elle_selectionne(self):
        application = self.ouvrir_avec("copie")
        self.copier_un_mot(application, copier=lambda: None)
        application.quitter()
