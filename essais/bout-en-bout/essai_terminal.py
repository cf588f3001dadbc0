"""Le vrai serveur dans l’application : ce que les menus, les dépôts et les clics font d’un vrai terminal."""

import os
import signal
import subprocess
import tempfile

import ecran
from application import attendre, fenetres, lire, touches
from bus import Bus
from cas import Cas
from glissement import Source, souris
from notifications import Service


def taper(texte):
    subprocess.run(["xdotool", "type", "--delay", "5", texte], check=True)


class Terminal(Cas):
    def ouvrir(self, **options):
        application = self.application(vrai_serveur=True, **options).lancer()
        application.attendre("page-contenu")
        attendre(lambda: fenetres(application), quoi="la fenêtre")
        taper("touch pret\n")
        self.attendre_le_fichier(application, "pret")
        return application

    def chemin(self, application, nom):
        return os.path.join(application.maison, nom)

    def attendre_le_fichier(self, application, nom):
        attendre(lambda: os.path.exists(self.chemin(application, nom)), quoi=f"le fichier {nom}")

    def taper_jusqu_a(self, application, texte, fichier):
        """Le terminal prend le clavier un peu après la page : on retape jusqu’à ce qu’il réponde."""
        def essai():
            taper(texte)
            return os.path.exists(self.chemin(application, fichier))
        attendre(essai, quoi=f"le fichier {fichier}")

    def contenu(self, application, nom, voulu):
        def lu():
            with open(self.chemin(application, nom)) as fichier:
                return fichier.read()
        self.attendre_le_fichier(application, nom)
        attendre(lambda: lu() == voulu, quoi=f"{voulu!r} dans {nom} (vu : {lu()!r})")


class Depot(Terminal):
    def deposer(self, *chemins):
        source = Source(self, "fichiers", *chemins)
        source.prendre()
        source.mener(640, 500, source.admis, "le dépôt admis")
        self.assertEqual(source.lacher(), "fini")
        source.fermer()

    def test_un_chemin_tordu_s_ecrit_protege_et_ne_devient_pas_une_commande(self):
        application = self.ouvrir()
        chemin = os.path.join(tempfile.mkdtemp(), "l’été 'a' \"b\" \\ $(touch pris) `touch pris`; touch pris\ntouch pris\n#")
        taper("printf %s ")
        self.deposer(chemin)
        taper(" > recu\n")
        self.contenu(application, "recu", chemin)
        self.assertFalse(os.path.exists(self.chemin(application, "pris")))
        application.quitter()

    def test_sans_collage_entre_crochets_non_plus(self):
        application = self.ouvrir()
        taper("sh\n")
        taper("touch dedans\n")
        self.attendre_le_fichier(application, "dedans")
        chemin = os.path.join(tempfile.mkdtemp(), "a'; touch pris; '\x03touch pris\ntouch pris\n")
        self.deposer(chemin)
        touches("ctrl+c")
        taper("touch apres\n")
        self.attendre_le_fichier(application, "apres")
        self.assertFalse(os.path.exists(self.chemin(application, "pris")))
        application.quitter()

    def test_trois_chemins_se_suivent_dans_leur_ordre(self):
        application = self.ouvrir()
        taper("printf '%s,' ")
        self.deposer("/tmp/z z", "/tmp/a", "/tmp/m'")
        taper(" > recu\n")
        self.contenu(application, "recu", "/tmp/z z,/tmp/a,/tmp/m',")
        application.quitter()


class Edition(Terminal):
    def test_copier_prend_la_selection_du_terminal_et_coller_y_ecrit(self):
        application = self.ouvrir()
        taper("clear; yes mot-copie-du-terminal | head -45; touch ecrit\n")
        self.attendre_le_fichier(application, "ecrit")
        souris("mousemove", 110, 400)

        def copier():
            souris("click", "--repeat", 2, "--delay", 60, 1)
            touches("ctrl+shift+c")
            return ecran.presse_papiers() == "mot-copie-du-terminal"

        attendre(copier, quoi="le mot copié")
        taper("stty -icanon; cat > recu\n")
        self.attendre_le_fichier(application, "recu")
        touches("ctrl+shift+v")
        self.contenu(application, "recu", "mot-copie-du-terminal")
        touches("ctrl+c")
        application.quitter()


class Notifications(Terminal):
    def test_un_terminal_qui_sonne_dans_l_ombre_previent_une_fois_et_un_clic_l_ouvre(self):
        bus = Bus(self)
        service = Service(self, bus)
        application = self.ouvrir(variables=bus.variables)
        taper("QUI=premier; until [ -e qui-second ]; do sleep .1; done; printf '\\a'; sleep 1; printf '\\a'; touch sonne\n")
        touches("ctrl+shift+t")
        carnet = self.chemin(application, ".zelcor/keltrove-carnet.json")
        attendre(lambda: b"Terminal 2" in lire(carnet), quoi="le second terminal ouvert")
        self.taper_jusqu_a(application, "QUI=second; touch qui-$QUI\n", "qui-second")
        self.attendre_le_fichier(application, "qui-second")
        appel = service.attendre_les_appels(1)
        self.assertEqual(appel[3], "Terminal 1")
        self.attendre_le_fichier(application, "sonne")
        service.ordonner(signal=["ActionInvoked", 101, "default"])

        def chez_le_premier():
            taper("touch qui-$QUI\n")
            return os.path.exists(self.chemin(application, "qui-premier"))

        attendre(chez_le_premier, quoi="le premier terminal au clavier")
        self.assertEqual(len(service.appels()), 1)
        application.quitter()


class Retour(Terminal):
    def test_recharger_la_page_retrouve_les_terminaux_en_marche(self):
        # Le nouvel essai se rattache au serveur, qui n’est alors plus à nous.
        application = self.ouvrir(reste_un_serveur=True)
        taper("QUI=toujours-la\n")
        touches("ctrl+shift+r")
        application.attendre("page-contenu", fois=2)
        self.taper_jusqu_a(application, "touch qui-$QUI\n", "qui-toujours-la")
        application.quitter()

    def test_apres_la_mort_du_serveur_les_terminaux_reviennent_dans_leur_dossier(self):
        application = self.ouvrir()
        taper("mkdir -p 'un dossier' && cd 'un dossier' && touch ici\n")
        self.attendre_le_fichier(application, "un dossier/ici")
        carnet = self.chemin(application, ".zelcor/keltrove-carnet.json")
        attendre(lambda: "un dossier" in lire(carnet).decode(), quoi="le dossier noté")
        os.kill(application.serveurs()[0], signal.SIGKILL)
        application.attendre("serveur-mort-en-route")
        ecran.presser(application.processus.pid, "Réessayer")
        application.attendre("page-contenu", fois=2)
        self.taper_jusqu_a(application, "touch revenu\n", "un dossier/revenu")
        application.quitter()
