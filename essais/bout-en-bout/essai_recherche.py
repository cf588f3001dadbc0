"""Chercher dans un terminal, au clavier, dans la vraie fenêtre."""

import ecran
from application import attendre, compter_les_pixels, touches
from essai_terminal import Terminal as CasDeTerminal, taper

TROUVEE = "#C8871A"


class Recherche(CasDeTerminal):
    def chercher(self, texte, voulu):
        touches("ctrl+shift+f", "ctrl+a")
        taper(texte)

        def copier():
            attendre(lambda: compter_les_pixels(TROUVEE) > 100, quoi="une trouvaille à l’écran")
            # Fermée, la recherche laisse sa trouvaille sélectionnée et le clavier au terminal.
            touches("Escape", "ctrl+shift+c")
            if ecran.presse_papiers() == voulu:
                return True
            touches("ctrl+shift+f")
            return False

        attendre(copier, quoi=lambda: f"{voulu!r} trouvé (vu : {ecran.presse_papiers()!r})")

    def test_une_expression_sans_fin_n_arrete_ni_la_recherche_ni_le_terminal(self):
        application = self.ouvrir()
        taper("seq -f 'ligne %g' 9000; printf 'a%.0s' {1..60}; echo b; touch ecrit\n")
        self.attendre_le_fichier(application, "ecrit")
        touches("ctrl+shift+f")
        # Jusqu’à « Expression régulière », puis retour.
        touches("Tab", "Tab", "Tab", "space", "shift+Tab", "shift+Tab", "shift+Tab")
        taper("^(a+)+$")
        # Échap ferme la recherche et n’est pas pour le shell, qui en ferait Alt+T.
        touches("Escape")
        taper("touch apres\n")
        self.attendre_le_fichier(application, "apres")
        self.chercher("a+b$", "a" * 60 + "b")
        self.chercher("^ligne 1.$", "ligne 19")
        application.quitter()
