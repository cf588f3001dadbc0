"""Ce qui se tape est ce qui arrive : un clavier français, ses touches mortes, et de quoi former un caractère."""

import contextlib
import itertools
import os
import re
import subprocess
import tempfile

from application import attendre, attendre_le_clavier, lire, touches
from bus import Bus
from compositeur import DANS_UNE_FENETRE, Compositeur
from essai_etrangers import copier
from essai_terminal import Terminal, taper
from points import Image

CIRCONFLEXE, TREMA = "dead_circumflex", "dead_diaeresis"
REVE = ["r", CIRCONFLEXE, "e", "v", "e", "space", TREMA, "i", "space", "x"]
# Les touches, puis ce que le shell doit recevoir.
FRANCAISES = [
    (REVE, "rêve ï x"),
    ([CIRCONFLEXE, "space", "space", CIRCONFLEXE, "o", "space", CIRCONFLEXE, CIRCONFLEXE], "^ ô ^"),
    # Relâcher Maj, qu’il faut pour le 9, achève le caractère.
    (["a", "space", "ctrl+shift+u", "e", "9", "space", "b"], "a é b"),
    (["Multi_key", "o", "e", "space", "Multi_key", "apostrophe", "E", "c"], "œ Éc"),
    (["eacute", "agrave", "space", "at", "EuroSign", "space", CIRCONFLEXE, "a"], "éà @€ â"),
]
# Un emoji vaut deux caractères pour la page, et plusieurs peuvent n’en dessiner qu’un.
COMPOSITIONS = """include "%L"
<Multi_key> <f> <f> : "👨‍👩‍👧"
<Multi_key> <d> <d> : "🇫🇷"
"""
UN_PAR_SON_NUMERO = ["a", "ctrl+shift+u", *"1f600", "space", "b"]
EMOJIS = [
    (UN_PAR_SON_NUMERO, "a😀b"),
    (["Multi_key", "f", "f", "space", "x", "Multi_key", "d", "d", "Multi_key", "d", "d"], "👨‍👩‍👧 x🇫🇷🇫🇷"),
]


class Frappe(Terminal):
    def choisir_le_clavier(self, *disposition):
        subprocess.run(["setxkbmap", *disposition, "-option", "compose:menu"], check=True)
        self.addCleanup(subprocess.run, ["setxkbmap", "us", "-option", ""], check=True)

    def recevoir(self, application, frappe, voulu, delai, rang):
        taper(f"cat > recu{rang}\n")
        self.attendre_le_fichier(application, f"recu{rang}")
        subprocess.run(["xdotool", "key", "--delay", str(delai), *frappe, "Return"], check=True)
        self.contenu(application, f"recu{rang}", voulu + "\n")
        subprocess.run(["xdotool", "key", "ctrl+d"], check=True)

    def recevoir_tout(self, application, frappes):
        for rang, (delai, (frappe, voulu)) in enumerate(itertools.product((15, 40, 120), frappes)):
            with self.subTest(delai=delai, voulu=voulu):
                self.recevoir(application, frappe, voulu, delai, rang)
        application.quitter()

    def test_les_touches_mortes_et_composees_arrivent_une_fois_a_toute_allure(self):
        self.choisir_le_clavier("fr", "oss")
        self.recevoir_tout(self.ouvrir(), FRANCAISES)

    def test_un_emoji_arrive_une_fois_et_entier(self):
        self.choisir_le_clavier("us")
        maison = self.enterContext(tempfile.TemporaryDirectory())
        with open(os.path.join(maison, ".XCompose"), "w") as fichier:
            fichier.write(COMPOSITIONS)
        self.recevoir_tout(self.ouvrir(maison=maison), EMOJIS)


class SousWayland(Frappe):
    def ouvrir(self, **options):
        variables = Compositeur(self, DANS_UNE_FENETRE).variables
        application = self.application(vrai_serveur=True, variables=variables, **options).lancer()
        application.attendre("page-contenu")
        self.taper_jusqu_a(application, "touch pret\n", "pret")
        return application


class AvecUnLecteurDEcran(Frappe):
    """La zone de saisie garde alors les lettres tapées, pour les faire lire."""

    def ouvrir(self, **options):
        return super().ouvrir(reglages=["lecteur"], **options)

    def test_corriger_se_deplacer_et_coller_n_envoient_rien_d_autre(self):
        copier("collé")
        application = self.ouvrir()
        taper("cat > recu\n")
        self.attendre_le_fichier(application, "recu")
        taper("abcdef")
        touches("BackSpace", "BackSpace", "Left", "Left", "shift+Left", "Delete", "shift+Tab", "F5", "g")
        self.attendre_l_echo(application, "^[[15~g")
        touches("ctrl+shift+v")
        self.attendre_l_echo(application, "collé")
        touches("BackSpace", "h", "Return")
        self.contenu(application, "recu", "abcd\x1b[D\x1b[D\x1b[1;2D\x1b[3~\x1b[Z\x1b[15~gcollh\n")
        application.quitter()

    def test_une_lettre_a_la_place_de_tab_ou_de_f5_arrive(self):
        self.choisir_le_clavier("us")
        disposition = subprocess.run(["setxkbmap", "-print"], capture_output=True, text=True, check=True).stdout
        touche = "key <TAB> { [ oe ] }; key <FK05> { [ ssharp ] };"
        disposition = re.sub(r'(xkb_symbols\s*\{ include "[^"]*")', rf"\1 {touche}", disposition)
        subprocess.run(["xkbcomp", "-w0", "-", os.environ["DISPLAY"]], input=disposition, text=True, check=True)
        for ouvrir in (super().ouvrir, self.ouvrir):  # sans lecteur d’écran, puis avec
            application = ouvrir()
            self.recevoir(application, ["c", "oe", "u", "r", "space", "ssharp"], "cœur ß", 40, 0)
            application.quitter()


class MethodeDeSaisie(Terminal):
    """Le texte se forme sous les yeux, et change jusqu’à ce qu’il soit choisi."""

    def ibus(self, *mots):
        return subprocess.run(["ibus", *mots], env=self.environnement, capture_output=True, text=True).stdout.strip()

    def valider(self, texte):
        # La vraie touche : « \n » en serait une autre, que la méthode de saisie ne connaît pas.
        self.presser(*[{" ": "space", ",": "comma"}.get(lettre, lettre) for lettre in texte], "Return")

    def presser(self, *noms):
        """L’une quand l’autre s’est vue : plus vite, elle perd et déplace elle-même des touches, dans n’importe quel champ."""
        for nom in noms:
            avant = Image().octets
            subprocess.run(["xdotool", "key", "--delay", "120", nom], check=True)
            # Celle qu’elle n’a pas prise ne se voit pas.
            with contextlib.suppress(AssertionError):
                attendre(lambda: Image().octets != avant, secondes=5)

    def ouvrir_avec(self, moteur):
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
            self.ibus("engine", moteur)
            return self.ibus("engine") == moteur

        attendre(choisi, quoi="son moteur")
        self.lire_la_saisie(application)
        return application

    def lire_la_saisie(self, application):
        # Maj et espace se chevauchant seraient un ordre pour elle : rien ici ne demande Maj.
        with open(self.chemin(application, "nhan"), "w") as script:
            script.write("touch pret; cat > recu\n")
        # Elle prend le clavier quand elle veut : avant, des touches se perdent.
        attendre(lambda: self.valider("sh nhan") or os.path.exists(self.chemin(application, "pret")), quoi="le programme")

    def derniere_ligne(self, application):
        return (lire(self.chemin(application, "recu")).decode().splitlines() or [""])[-1]

    def test_ce_qui_se_forme_arrive_une_fois_forme(self):
        application = self.ouvrir_avec("Unikey")
        self.valider("tieesng vieejt, ddaay")
        attendre(lambda: self.derniere_ligne(application) == "tiếng việt, đây",
                 quoi=lambda: f"la phrase (vu : {self.derniere_ligne(application)!r})")
        application.quitter()

    def test_un_emoji_qu_elle_donne_arrive_une_fois_et_entier(self):
        application = self.ouvrir_avec("xkb:us::eng")

        def donne():
            # Occupée, elle laisse parfois au programme la touche qui l’appelle.
            self.presser(*UN_PAR_SON_NUMERO, "Return")
            return "😀" in self.derniere_ligne(application)

        attendre(donne, quoi=lambda: f"l’emoji (vu : {self.derniere_ligne(application)!r})")
        self.assertEqual(self.derniere_ligne(application), "a😀b")
        application.quitter()
