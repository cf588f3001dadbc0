"""Le paquet installé dans une Debian neuve, KELTROVE_RACINE, entre les mains d’ana."""

import os
import subprocess
import threading
import unittest

from application import MARQUE, Application, active, attendre, port_libre, touches
from bureau import ServiceDeNotifications
from bus import Bus

RACINE = os.environ["KELTROVE_RACINE"]
MAISON = os.path.join(RACINE, "home/ana")
SERVEUR = os.path.join(RACINE, "usr/share/keltrove/keltrove/serveur.mjs")


class Installee(Application):
    """Celle du menu de son bureau : ni terminal, ni dossier de travail, un environnement presque vide."""

    def __init__(self):
        self.maison, self.marque, self.lignes, self.arrivee, self.processus = MAISON, "installee", [], threading.Condition(), None

    def lancer(self):
        variables = {"HOME": "/home/ana", "USER": "ana", "PATH": "/usr/bin:/bin", "LANG": "fr_FR.UTF-8", MARQUE: self.marque,
                     "DISPLAY": os.environ["DISPLAY"], "XDG_RUNTIME_DIR": "/run/user/ana"}
        return self.suivre(subprocess.Popen(
            ["chroot", "--userspec=ana:ana", RACINE, "env", "-i", "-C", "/", *(f"{c}={v}" for c, v in variables.items()), "keltrove"],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True))


class Paquet(unittest.TestCase):
    def setUp(self):
        session = os.path.join(RACINE, "run/user/ana")
        os.makedirs(session, exist_ok=True)
        numero = int(next(l for l in open(os.path.join(RACINE, "etc/passwd")) if l.startswith("ana:")).split(":")[2])
        self.bus = Bus(self, adresse=f"unix:path={session}/bus")
        for chemin in (session, os.path.join(session, "bus")):
            os.chown(chemin, numero, numero)
        self.service = ServiceDeNotifications(self, self.bus)
        os.makedirs(os.path.join(MAISON, ".zelcor"), exist_ok=True)
        os.chown(os.path.join(MAISON, ".zelcor"), numero, numero)
        self.application = Installee()
        self.application.regler(port_libre())
        self.addCleanup(self.finir)

    def finir(self):
        if self.application.processus and self.application.processus.poll() is None:
            self.application.quitter()

    def fenetre(self):
        trouvees = subprocess.run(["xdotool", "search", "--onlyvisible", "--class", "keltrove"], capture_output=True, text=True)
        (seule,) = trouvees.stdout.split()
        return seule

    def test_elle_ouvre_un_vrai_terminal_et_previent(self):
        self.application.lancer().attendre("page-contenu")
        keltrove = self.fenetre()
        subprocess.run(["xdotool", "windowactivate", "--sync", keltrove], check=True)
        subprocess.run(["xdotool", "type", "echo bonjour > preuve; until [ -e sonner ]; do sleep .1; done; printf '\\a'"], check=True)
        touches("Return")
        attendre(lambda: os.path.exists(os.path.join(MAISON, "preuve")), quoi="ce que le shell a écrit")
        autre = subprocess.Popen(["xmessage", "-geometry", "900x600+0+0", "devant"])
        self.addCleanup(autre.wait)
        self.addCleanup(autre.kill)
        attendre(lambda: active() not in ("", keltrove), quoi="une autre fenêtre au clavier")
        open(os.path.join(MAISON, "sonner"), "w").close()
        self.service.attendre_les_appels(1)
        self.assertEqual(self.application.quitter(), 0)
        self.assertIn("Serveur fermé proprement", self.application.details("arret-fini")[0])
        for nom in ("preuve", "sonner"):
            os.remove(os.path.join(MAISON, nom))

    def test_un_octet_change_elle_refuse_de_demarrer(self):
        with open(SERVEUR, "r+b") as fichier:
            premier = fichier.read(1)
            fichier.seek(0)
            fichier.write(b"%c" % (premier[0] ^ 1))
        try:
            self.application.lancer().attendre("echec-demarrage")
            self.assertIn("modifiée", self.application.details("echec-demarrage")[0])
            self.assertEqual(self.application.quitter(), 0)
        finally:
            with open(SERVEUR, "r+b") as fichier:
                fichier.write(premier)
