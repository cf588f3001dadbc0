"""Les réglages, tels que WebKit les montre et que le clavier les change."""

from application import attendre, couleur, touches
from essai_terminal import Terminal

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
