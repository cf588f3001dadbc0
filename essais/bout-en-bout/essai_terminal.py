"""Le vrai serveur dans l’application : ce que les menus, les dépôts et les clics font d’un vrai terminal."""

import contextlib
import json
import os
import re
import signal
import subprocess
import tempfile

import ecran
from application import active, attendre, attendre_le_clavier, couleur, fenetres, lire, touches
from bureau import ServiceDeNotifications
from bus import Bus
from cas import Cas
from glissement import Source, souris


def taper(texte):
    subprocess.run(["xdotool", "type", "--delay", "5", texte], check=True)


class Terminal(Cas):
    def ouvrir(self, **options):
        application = self.application(vrai_serveur=True, **options).lancer()
        application.attendre("page-contenu")
        attendre_le_clavier(application)
        self.taper_jusqu_a(application, "touch pret\n", "pret")
        return application

    def chemin(self, application, nom):
        return os.path.join(application.maison, nom)

    def attendre_le_fichier(self, application, nom):
        attendre(lambda: os.path.exists(self.chemin(application, nom)), quoi=f"le fichier {nom}")

    def taper_jusqu_a(self, application, texte, fichier):
        """Le terminal prend le clavier un peu après la page : on retape jusqu’à ce qu’il réponde, de moins en moins souvent,
        car l’interpréteur court tout ce qu’il a reçu avant de venir à la suite."""
        for fois in range(10):
            taper(texte)
            with contextlib.suppress(AssertionError):
                return attendre(lambda: os.path.exists(self.chemin(application, fichier)), 0.1 * 2**fois)
        self.fail(f"« {texte} » ne fait pas {fichier}")

    def carnet(self, application):
        """Ce que le serveur garde de chaque terminal : son nom, son dossier, ses dernières lignes."""
        chemin = self.chemin(application, ".zelcor/keltrove-carnet.json")
        return json.loads(lire(chemin))["terminaux"] if os.path.exists(chemin) else []

    def attendre_l_echo(self, application, texte):
        """Ce qui précède est arrivé au terminal : touches et dépôt n’y vont pas par le même chemin."""
        def echo():
            return any(texte in ligne for terminal in self.carnet(application) for ligne in terminal["lignes"])
        attendre(echo, quoi=lambda: f"{texte!r} dans le terminal (vu : {self.carnet(application)})")

    def contenu(self, application, nom, voulu):
        def lu():
            with open(self.chemin(application, nom)) as fichier:
                return fichier.read()
        self.attendre_le_fichier(application, nom)
        attendre(lambda: lu() == voulu, quoi=lambda: f"{voulu!r} dans {nom} (vu : {lu()!r})")

    def copier_un_mot(self, application, copier):
        """Celui d’un terminal qui en est plein, choisi d’un double clic, puis copié de cette façon."""
        taper("clear; yes mot-copie-du-terminal | head -45; touch ecrit\n")
        self.attendre_le_fichier(application, "ecrit")

        def essai():
            souris("mousemove", 110, 400, "click", "--repeat", 2, "--delay", 60, 1)
            copier()
            return ecran.presse_papiers() == "mot-copie-du-terminal"

        attendre(essai, quoi="le mot copié", pas=0.5)


class Depot(Terminal):
    def deposer(self, application, *chemins):
        source = Source(self, "fichiers", *chemins)
        source.prendre()
        source.mener(640, 500, source.admis, "le dépôt admis")
        self.assertEqual(source.lacher(), "fini")
        source.fermer()
        self.attendre_l_echo(application, re.match(r"[\w/]+", chemins[-1])[0])
        attendre_le_clavier(application)

    def test_un_chemin_tordu_s_ecrit_protege_et_ne_devient_pas_une_commande(self):
        application = self.ouvrir()
        chemin = os.path.join(tempfile.mkdtemp(), "l’été 'a' \"b\" \\ $(touch pris) `touch pris`; touch pris\ntouch pris\n#")
        taper("depose=")
        self.attendre_l_echo(application, "depose=")
        self.deposer(application, chemin)
        taper("; printf %s \"$depose\" > recu\n")
        self.contenu(application, "recu", chemin)
        self.assertFalse(os.path.exists(self.chemin(application, "pris")))
        application.quitter()

    def test_sans_collage_entre_crochets_non_plus(self):
        application = self.ouvrir()
        # Le fichier vient de l’autre interpréteur : ce que l’on taperait trop tôt serait lu par le premier.
        taper("sh -c 'touch dedans; exec sh'\n")
        self.attendre_le_fichier(application, "dedans")
        chemin = os.path.join(tempfile.mkdtemp(), "a'; touch pris; '\x03touch pris\ntouch pris\n")
        self.deposer(application, chemin)
        touches("ctrl+c")
        taper("touch apres\n")
        self.attendre_le_fichier(application, "apres")
        self.assertFalse(os.path.exists(self.chemin(application, "pris")))
        application.quitter()

    def test_trois_chemins_se_suivent_dans_leur_ordre(self):
        application = self.ouvrir()
        taper("deposes=(")
        self.attendre_l_echo(application, "deposes=(")
        self.deposer(application, "/tmp/z z", "/tmp/a", "/tmp/m'")
        taper("); printf '%s,' \"${deposes[@]}\" > recu\n")
        self.contenu(application, "recu", "/tmp/z z,/tmp/a,/tmp/m',")
        application.quitter()


class Edition(Terminal):
    def test_copier_sans_rien_de_selectionne_n_interrompt_pas_le_programme(self):
        application = self.ouvrir()
        taper("cat > recu\n")
        self.attendre_le_fichier(application, "recu")
        touches("ctrl+shift+c")
        taper("toujours la\n")
        touches("ctrl+d")
        self.contenu(application, "recu", "toujours la\n")
        application.quitter()

    def test_copier_prend_la_selection_du_terminal_et_coller_y_ecrit(self):
        application = self.ouvrir()
        # La page apprend la fin d’un collage encadré un peu après que le programme a ouvert son fichier.
        taper("bind 'set enable-bracketed-paste off'\n")
        self.copier_un_mot(application, lambda: touches("ctrl+shift+c"))
        taper("stty -icanon; cat > recu\n")
        self.attendre_le_fichier(application, "recu")
        touches("ctrl+shift+v")
        self.contenu(application, "recu", "mot-copie-du-terminal")
        touches("ctrl+c")
        application.quitter()


class Notifications(Terminal):
    def test_un_terminal_qui_sonne_dans_l_ombre_previent_une_fois_et_un_clic_l_ouvre(self):
        bus = Bus(self)
        service = ServiceDeNotifications(self, bus)
        application = self.ouvrir(variables=bus.variables)
        # En lecture seule : ce que l’on taperait dans le premier en croyant être au second n’y changerait rien.
        taper("readonly QUI=premier; until [ -e qui-second ]; do sleep .1; done; printf '\\a'; sleep 1; printf '\\a'; touch sonne\n")
        touches("ctrl+shift+t")
        attendre(lambda: len(self.carnet(application)) == 2, quoi="le second terminal ouvert")
        self.taper_jusqu_a(application, "QUI=second; touch qui-$QUI\n", "qui-second")
        appel = service.attendre_les_appels(1)
        self.assertEqual(appel[3], "Terminal 1")
        self.attendre_le_fichier(application, "sonne")
        service.ordonner(signal=["ActionInvoked", 101, "default"])
        self.taper_jusqu_a(application, "touch qui-$QUI\n", "qui-premier")
        self.assertEqual(len(service.appels()), 1)
        application.quitter()


class Regard(Terminal):
    """La page perd le clavier à un menu ou à une boîte : l’utilisateur, lui, regarde toujours son terminal."""

    def sonner(self, application, n):
        """Une sonnerie, et un écran peint en rouge ou en vert une fois qu’elle a été entendue."""
        open(self.chemin(application, f"va-{n}"), "w").close()
        rouge, vert = "#B3261E", "#1D6B34"
        attendre(lambda: couleur(200, 800) == (rouge if n % 2 else vert), quoi=lambda: f"la sonnerie {n} (vu : {couleur(200, 800)})")

    def test_ni_un_menu_ni_une_boite_ne_font_un_terminal_qui_attend(self):
        bus = Bus(self)
        service = ServiceDeNotifications(self, bus)
        application = self.ouvrir(variables=bus.variables)
        pid = application.processus.pid
        taper("for n in 1 2 3; do until [ -e va-$n ]; do sleep .1; done; printf '\\a\\033[4'$((2 - n % 2))'m\\033[2J'; done; touch parti\n")
        ecran.ouvrir_le_menu(pid, "Édition")
        self.sonner(application, 1)
        touches("Escape")
        attendre(lambda: ecran.articles(pid) == {}, quoi="le menu refermé")
        attendre_le_clavier(application)
        ecran.choisir(pid, "Keltrove", "À propos de Keltrove")
        ecran.attendre_le_texte(pid, "Version 0.")
        self.sonner(application, 2)
        touches("Escape")
        attendre_le_clavier(application)
        Source(self, "texte", "ailleurs")
        attendre(lambda: active() not in map(str, fenetres(application)), quoi="une autre fenêtre au clavier")
        self.sonner(application, 3)
        service.attendre_les_appels(1)
        self.assertEqual(len(service.appels()), 1)
        application.quitter()


class Processus(Terminal):
    def test_la_page_n_occupe_qu_un_processus_meme_rechargee(self):
        application = self.ouvrir(reste_un_serveur=True)

        self.assertEqual(len(application.pages()), 1)
        touches("ctrl+shift+r")
        application.attendre("page-contenu", fois=2)
        self.assertEqual(len(application.pages()), 1)
        application.quitter()


class Retour(Terminal):
    def test_recharger_la_page_retrouve_les_terminaux_en_marche(self):
        # Le nouvel essai se rattache au serveur, qui n’est alors plus à nous.
        application = self.ouvrir(reste_un_serveur=True)
        # Recharger emporte, avec la page, ce qu’elle n’a pas encore envoyé : l’utilisateur peut y perdre ses dernières
        # touches, jamais ce que le terminal a reçu.
        taper("QUI=toujours-la; touch recu\n")
        self.attendre_le_fichier(application, "recu")
        touches("ctrl+shift+r")
        application.attendre("page-contenu", fois=2)
        self.taper_jusqu_a(application, "touch qui-$QUI\n", "qui-toujours-la")
        application.quitter()

    def test_apres_la_mort_du_serveur_les_terminaux_reviennent_dans_leur_dossier(self):
        application = self.ouvrir()
        taper("mkdir -p 'un dossier' && cd 'un dossier' && touch ici\n")
        self.attendre_le_fichier(application, "un dossier/ici")
        dossier = self.chemin(application, "un dossier")
        attendre(lambda: [terminal["dossier"] for terminal in self.carnet(application)] == [dossier], quoi="le dossier noté")
        os.kill(application.serveurs()[0], signal.SIGKILL)
        application.attendre("serveur-mort-en-route")
        ecran.presser(application.processus.pid, "Réessayer")
        application.attendre("page-contenu", fois=2)
        self.taper_jusqu_a(application, "touch revenu\n", "un dossier/revenu")
        application.quitter()
