"""Un programme appelle son utilisateur, dans un vrai terminal que personne ne regarde ; un clic y mène."""

import os
import subprocess
import tempfile

import ecran
from application import SERVEUR, attendre, attendre_le_clavier, couleur, touches
from bureau import ServiceDeNotifications
from bus import Bus
from essai_terminal import Terminal, taper

FOND_DEVANT = "#8A2B3E"
# Au bas du premier onglet, et la couleur qu’y prend une progression en erreur.
BAS_DE_L_ONGLET, EN_ERREUR = "190x8+40+98", "#B3261E"


def photographier(nom):
    if dossier := os.environ.get("KELTROVE_CAPTURES"):
        subprocess.run(["import", "-window", "root", os.path.join(dossier, nom + ".png")], check=True)


def part_en_erreur():
    """La part du bas de l’onglet qui a la couleur d’une erreur."""
    pixels = subprocess.run(["import", "-window", "root", "-crop", BAS_DE_L_ONGLET, "-depth", "8", "txt:-"],
                            capture_output=True, text=True).stdout.split("\n")
    colonnes = {pixel.split(",")[0] for pixel in pixels if EN_ERREUR in pixel.upper()}
    return len(colonnes) / 190


class Appels(Terminal):
    def ouvrir(self, **options):
        bus = Bus(self)
        self.service = ServiceDeNotifications(self, bus)
        return super().ouvrir(variables=bus.variables, **options)

    def poser(self, application, nom, *lignes):
        with open(self.chemin(application, nom), "w") as fichier:
            fichier.write("\n".join([*lignes, ""]))

    def lancer_dans_l_ombre(self, application, *lignes):
        """Le programme attend d’être seul, derrière un second terminal qui a le clavier."""
        self.poser(application, "programme", "until [ -e va ]; do sleep .02; done", *lignes)
        taper("readonly QUI=premier; . ./programme\n")
        touches("ctrl+shift+t")
        attendre(lambda: len(self.carnet(application)) == 2, quoi="le second terminal ouvert")
        self.taper_jusqu_a(application, "QUI=second; touch qui-$QUI\n", "qui-second")
        self.poser(application, "va")

    def textes(self):
        return [(appel[3], appel[4]) for appel in self.service.appels()]


class Messages(Appels):
    def test_un_message_se_montre_et_son_clic_mene_au_terminal_la_fenetre_devant(self):
        # Rechargée, la page se rattache au serveur, qui n’est alors plus à l’application.
        application = self.ouvrir(reste_un_serveur=True)
        self.lancer_dans_l_ombre(application, r"printf '\e]777;notify;Courriel;de <Zoé>\nligne\u202e\a'")
        self.service.attendre_les_appels(1)
        self.assertEqual(self.textes(), [("Terminal 1", "Courriel : de &lt;Zoé&gt; ligne")])
        devant = self.application(code=SERVEUR.replace("2b8a3e", FOND_DEVANT[1:]) + "servir();").lancer()
        attendre(lambda: couleur(680, 450) == FOND_DEVANT, quoi="une autre fenêtre devant")
        self.service.ordonner(signal=["ActivationToken", 101, "keltrove_TIME0"])
        self.service.ordonner(signal=["ActionInvoked", 101, "default"])
        attendre_le_clavier(application)
        attendre(lambda: couleur(680, 450) != FOND_DEVANT, quoi="la fenêtre revenue devant")
        self.taper_jusqu_a(application, "touch qui-$QUI\n", "qui-premier")
        # Regardé, il n’appelle plus ; rechargée, la page n’appelle pas de nouveau.
        taper(r"printf '\e]9;regarde\a'; touch ecrit" + "\n")
        self.attendre_le_fichier(application, "ecrit")
        devant.quitter()
        attendre_le_clavier(application)
        touches("ctrl+shift+r")
        application.attendre("page-contenu", fois=2)
        self.taper_jusqu_a(application, "touch revenu\n", "revenu")
        self.assertEqual(len(self.service.appels()), 1)
        application.quitter()

    def test_sept_messages_en_une_minute_en_font_six_et_la_progression_aucun(self):
        application = self.ouvrir()
        self.lancer_dans_l_ombre(
            application, r"for i in 1 2 3 4 5 6 7; do printf '\e]9;n° %s\a\e]9;4;1;%s\a' $i $((i * 10))",
            "until [ -e vu-$i ]; do sleep .02; done; done", r"printf '\e]9;4;2;80\a'")
        for i in range(1, 7):
            self.service.attendre_les_appels(i)
            self.poser(application, f"vu-{i}")
        self.assertEqual(part_en_erreur(), 0)
        # Ce qui suit le septième message est vu : lui aussi l’aurait été.
        self.poser(application, "vu-7")
        attendre(lambda: 0.6 < part_en_erreur() < 0.8, quoi=lambda: f"la progression sur l’onglet (vu : {part_en_erreur()})")
        photographier("progression")
        self.assertEqual(self.textes(), [("Terminal 1", f"n° {i}") for i in range(1, 7)])
        application.quitter()


class Commandes(Appels):
    def maison(self):
        """Celle d’un utilisateur dont l’interpréteur dit où commencent ses commandes."""
        maison = tempfile.TemporaryDirectory()
        self.addCleanup(maison.cleanup)
        with open(os.path.join(maison.name, ".bashrc"), "w") as fichier:
            fichier.write("PS1='$ '\n[ -z \"$KELTROVE_INTEGRATION\" ] || . \"$KELTROVE_INTEGRATION/keltrove.bash\"\n")
        return maison.name

    def test_une_longue_commande_qui_finit_dans_l_ombre_dit_laquelle_et_comment(self):
        application = self.ouvrir(maison=self.maison())
        # Le serveur date ce qu’il lit : lu en retard, un début raccourcirait une commande d’à peine dix secondes.
        self.poser(application, "long", "touch lancee; sleep 15; until [ -e va ]; do sleep .02; done; exit 2")
        taper("sh long\n")
        self.attendre_le_fichier(application, "lancee")
        touches("ctrl+shift+t")
        attendre(lambda: len(self.carnet(application)) == 2, quoi="le second terminal ouvert")
        self.taper_jusqu_a(application, "touch second\n", "second")
        self.poser(application, "va")
        self.service.attendre_les_appels(1)
        [(titre, corps)] = self.textes()
        self.assertEqual(titre, "Terminal 1")
        self.assertRegex(corps, r"^sh long a échoué \(2\) après (1 min )?\d+ s$")
        application.quitter()

    def test_d_une_commande_a_l_autre_sa_sortie_se_copie(self):
        application = self.ouvrir(maison=self.maison())
        taper("seq 3 5; touch finie\n")
        self.attendre_le_fichier(application, "finie")
        taper("seq 100; touch longue\n")
        self.attendre_le_fichier(application, "longue")
        self.attendre_l_echo(application, "100")
        touches("ctrl+shift+Up", "ctrl+shift+Up", "ctrl+shift+l")

        def copier():
            # Copier est un menu : il peut arriver avant les touches que la page n’a pas encore lues.
            touches("ctrl+shift+c")
            return ecran.presse_papiers() == "3\n4\n5"

        attendre(copier, quoi=lambda: f"la sortie copiée (vu : {ecran.presse_papiers()!r})")
        photographier("visite")
        application.quitter()
