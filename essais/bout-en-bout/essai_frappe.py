"""Ce qui se tape est ce qui arrive : un clavier français, ses touches mortes, et de quoi former un caractère."""

import os
import subprocess

from application import attendre, attendre_le_clavier, lire
from bus import Bus
from compositeur import DANS_UNE_FENETRE, Compositeur
from essai_terminal import Terminal, taper

CIRCONFLEXE, TREMA = "dead_circumflex", "dead_diaeresis"
REVE = ["r", CIRCONFLEXE, "e", "v", "e", "space", TREMA, "i", "space", "x"]
# Les touches, puis ce que le shell doit recevoir.
FRAPPES = [
    (REVE, "rêve ï x"),
    ([CIRCONFLEXE, "space", "space", CIRCONFLEXE, "o", "space", CIRCONFLEXE, CIRCONFLEXE], "^ ô ^"),
    # Relâcher Maj, qu’il faut pour le 9, achève le caractère.
    (["a", "space", "ctrl+shift+u", "e", "9", "space", "b"], "a é b"),
    (["Multi_key", "o", "e", "space", "Multi_key", "apostrophe", "E", "c"], "œ Éc"),
    (["eacute", "agrave", "space", "at", "EuroSign", "space", CIRCONFLEXE, "a"], "éà @€ â"),
]


class Frappe(Terminal):
    def setUp(self):
        subprocess.run(["setxkbmap", "fr", "oss", "-option", "compose:menu"], check=True)
        self.addCleanup(subprocess.run, ["setxkbmap", "us", "-option", ""], check=True)

    def recevoir(self, application, touches, voulu, delai, rang):
        taper(f"cat > recu{rang}\n")
        self.attendre_le_fichier(application, f"recu{rang}")
        subprocess.run(["xdotool", "key", "--delay", str(delai), *touches, "Return"], check=True)
        self.contenu(application, f"recu{rang}", voulu + "\n")
        subprocess.run(["xdotool", "key", "ctrl+d"], check=True)

    def test_les_touches_mortes_et_composees_arrivent_une_fois_a_toute_allure(self):
        application = self.ouvrir()
        rang = 0
        for delai in (15, 40, 120):
            for touches, voulu in FRAPPES:
                with self.subTest(delai=delai, voulu=voulu):
                    rang += 1
                    self.recevoir(application, touches, voulu, delai, rang)
        application.quitter()


class SousWayland(Frappe):
    def ouvrir(self):
        variables = Compositeur(self, DANS_UNE_FENETRE).variables
        application = self.application(vrai_serveur=True, variables=variables).lancer()
        application.attendre("page-contenu")
        self.taper_jusqu_a(application, "touch pret\n", "pret")
        return application


class MethodeDeSaisie(Terminal):
    """Le texte se forme sous les yeux, et change jusqu’à ce qu’il soit choisi."""

    def ibus(self, *mots):
        return subprocess.run(["ibus", *mots], env=self.environnement, capture_output=True, text=True).stdout.strip()

    def valider(self, texte):
        subprocess.run(["xdotool", "type", "--delay", "40", texte], check=True)
        # La vraie touche : « \n » en serait une autre, que la méthode de saisie ne connaît pas.
        subprocess.run(["xdotool", "key", "Return"], check=True)

    def ouvrir_en_vietnamien(self):
        bus = Bus(self)
        self.environnement = {**os.environ, **bus.variables}
        demon = subprocess.Popen(["ibus-daemon", "--panel", "disable", "--config", "disable", "--emoji-extension", "disable"],
                                 env=self.environnement, stderr=subprocess.DEVNULL)
        self.addCleanup(demon.wait)
        self.addCleanup(demon.kill)
        attendre(lambda: "Unikey" in self.ibus("list-engine", "--name-only"), quoi="la méthode de saisie")
        variables = {**bus.variables, "GTK_IM_MODULE": "ibus", "IBUS_ADDRESS": self.ibus("address")}
        application = self.application(vrai_serveur=True, variables=variables).lancer()
        application.attendre("page-contenu")
        attendre_le_clavier(application)

        def choisi():
            self.ibus("engine", "Unikey")
            return self.ibus("engine") == "Unikey"

        attendre(choisi, quoi="le vietnamien")
        return application

    def test_ce_qui_se_forme_arrive_une_fois_forme(self):
        application = self.ouvrir_en_vietnamien()
        # Maj et espace se chevauchant seraient un ordre pour elle : rien ici ne demande Maj.
        with open(self.chemin(application, "nhan"), "w") as script:
            script.write("touch pret; cat > recu\n")
        # Elle prend le clavier quand elle veut : avant, des touches se perdent.
        attendre(lambda: self.valider("sh nhan") or os.path.exists(self.chemin(application, "pret")), quoi="le programme")
        self.valider("tieesng vieejt, ddaay")
        attendre(lambda: "đây" in lire(self.chemin(application, "recu")).decode(), quoi="la ligne")
        self.assertEqual(lire(self.chemin(application, "recu")).decode().splitlines()[-1], "tiếng việt, đây")
        application.quitter()
