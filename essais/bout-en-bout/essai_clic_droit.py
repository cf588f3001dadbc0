"""Le menu du bouton droit, dans la vraie fenêtre : c’est celui de la page, et il agit sur le terminal."""

import itertools
import re

from application import attendre, couleur, fenetres, lire, touches
from bureau import Ouvreur
from essai_terminal import Terminal, taper
from glissement import souris

FOND_DU_MENU, FOND_DU_TERMINAL, FOND_DE_L_INDICATION = "#ECECEF", "#FBFBFC", "#292929"
ICI = (640, 420)


class ClicDroit(Terminal):
    def peint(self, x, y, fond):
        attendre(lambda: couleur(x, y) == fond, quoi=lambda: f"le fond {fond} en {x}, {y} (vu : {couleur(x, y)})")

    def ouvrir_le_menu(self, application, x=ICI[0], y=ICI[1], maj=False):
        self.peint(x + 4, y + 4, FOND_DU_TERMINAL)
        souris("mousemove", x, y, *(["keydown", "shift"] if maj else []), "click", 3, *(["keyup", "shift"] if maj else []))
        self.peint(x + 4, y + 4, FOND_DU_MENU)
        self.assertEqual(len(fenetres(application)), 1, "celui du moteur, ou de GTK, s’est ouvert aussi")

    def noter_la_saisie(self, application):
        """Tout ce qui arrive au terminal s’écrit dans un fichier ; Ctrl+C y met fin."""
        taper("stty -icanon -echo; touch pret-a-lire; cat > recu\n")
        self.attendre_le_fichier(application, "recu")

    def test_copier_puis_coller_passe_par_le_terminal(self):
        application = self.ouvrir()

        def copier():
            self.ouvrir_le_menu(application)
            touches("Down", "Return")
            self.peint(ICI[0] + 4, ICI[1] + 4, FOND_DU_TERMINAL)

        self.copier_un_mot(application, copier)
        taper("clear\n")
        self.noter_la_saisie(application)
        self.ouvrir_le_menu(application)
        touches("Down", "Return")
        self.contenu(application, "recu", "mot-copie-du-terminal")
        touches("ctrl+c")
        application.quitter()

    def test_echap_et_un_clic_a_cote_rendent_le_clavier_et_rien_d_autre_n_arrive_au_terminal(self):
        application = self.ouvrir()
        taper("clear\n")
        self.noter_la_saisie(application)
        self.ouvrir_le_menu(application)
        touches("Down", "a", "Escape", "b")
        self.contenu(application, "recu", "b")
        self.ouvrir_le_menu(application)
        souris("mousemove", 1200, 700, "click", 1)
        self.peint(ICI[0] + 4, ICI[1] + 4, FOND_DU_TERMINAL)
        touches("c")
        self.contenu(application, "recu", "bc")
        # Le curseur est en haut à gauche, et le menu s’ouvre dessous.
        for touche in ("Menu", "shift+F10"):
            self.peint(200, 250, FOND_DU_TERMINAL)
            touches(touche)
            self.peint(200, 156, FOND_DU_MENU)
            self.assertEqual(len(fenetres(application)), 1, "celui de GTK s’est ouvert aussi")
            touches("Escape")
        touches("d")
        self.contenu(application, "recu", "bcd")
        touches("ctrl+c")
        application.quitter()

    def test_le_programme_qui_a_pris_la_souris_recoit_le_clic_et_maj_le_garde(self):
        application = self.ouvrir()
        # La page a lu que la souris est prise quand le fond qui suit se voit.
        taper("clear; stty -icanon -echo; printf '\\033[?1000h\\033[?1006h\\033[48;2;200;30;30m\\033[2J'; "
              "read -rn1; printf '\\033[m\\033[2J'; cat > recu\n")
        self.peint(ICI[0] + 4, ICI[1] + 4, "#C81E1E")
        taper("x")
        self.attendre_le_fichier(application, "recu")
        self.peint(ICI[0] + 4, ICI[1] + 4, FOND_DU_TERMINAL)
        souris("mousemove", *ICI, "click", 3)
        # Pressé, puis relâché.
        clic = re.compile(rb"\x1b\[<2;\d+;\d+M\x1b\[<2;\d+;\d+m")
        attendre(lambda: clic.fullmatch(lire(self.chemin(application, "recu"))), quoi="le clic reçu par le programme")
        recu = lire(self.chemin(application, "recu"))
        self.ouvrir_le_menu(application, maj=True)
        touches("Escape")
        self.peint(ICI[0] + 4, ICI[1] + 4, FOND_DU_TERMINAL)
        touches("z")
        self.contenu(application, "recu", recu.decode() + "z")
        application.quitter()

    def test_effacer_oublie_l_historique_et_garde_la_ligne(self):
        application = self.ouvrir()
        taper("clear; yes ancienne | head -30; touch ecrit\n")
        self.attendre_le_fichier(application, "ecrit")
        self.attendre_l_echo(application, "ancienne")
        taper("echo garde > ga")
        self.attendre_l_echo(application, "echo garde")
        self.ouvrir_le_menu(application)
        touches("Down", "Down", "Down", "Down", "Return")
        self.peint(ICI[0] + 4, ICI[1] + 4, FOND_DU_TERMINAL)
        taper("rde\n")
        self.contenu(application, "garde", "garde\n")
        attendre(lambda: not any("ancienne" in ligne for t in self.carnet(application) for ligne in t["lignes"]),
                 quoi=lambda: f"l’oubli (vu : {self.carnet(application)})")
        application.quitter()

    def test_diviser_et_nouveau_terminal(self):
        application = self.ouvrir()
        taper("clear\n")
        self.ouvrir_le_menu(application)
        touches("Up", "Up", "Return")
        attendre(lambda: len(self.carnet(application)) == 2, quoi="le second terminal")
        premier, second = self.carnet(application)
        self.assertEqual(premier["groupe"], second["groupe"])
        self.ouvrir_le_menu(application, 300, 420)
        touches("Up", "Up", "Up", "Return")
        attendre(lambda: len(self.carnet(application)) == 3, quoi="le troisième terminal")
        self.assertNotIn(self.carnet(application)[2]["groupe"], [premier["groupe"]])
        application.quitter()

    def test_le_lien_vise_va_au_navigateur(self):
        navigateur = Ouvreur(self, "x-scheme-handler/https")
        application = self.ouvrir(variables=navigateur.variables)
        taper("clear; for i in {1..45}; do echo https://exemple.test/une/longue/adresse; done; touch ecrit\n")
        self.attendre_le_fichier(application, "ecrit")
        pas = itertools.cycle((150, 190))

        def survoler():
            # Le terminal ne cherche les liens que sous une souris qui change de case.
            souris("mousemove", next(pas), 400)
            return couleur(50, 845) == FOND_DE_L_INDICATION

        attendre(survoler, quoi="l’adresse dite en bas de la page")
        souris("click", 3)
        self.peint(200, 404, FOND_DU_MENU)
        touches("Down", "Down", "Down", "Down", "Return")
        attendre(navigateur.notes, quoi="l’adresse ouverte")
        self.assertEqual(navigateur.notes(), ["https://exemple.test/une/longue/adresse"])
        application.quitter()
