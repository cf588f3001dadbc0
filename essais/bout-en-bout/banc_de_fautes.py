"""Une application et son serveur que l’on tient à un moment de leur vie, et les pannes qu’on leur fait."""

import os
import resource
import signal
import socket
import subprocess
import tempfile
import threading
import time

import ecran
from application import SERVEUR, Application, attendre, commande
from notifications import Bus

# Le serveur se retient et se gâte selon les fichiers de son dossier, et en pose pour dire où il en est.
TENU = SERVEUR + """
const la = (nom) => fs.existsSync(nom);
const vu = (nom) => fs.writeFileSync(nom, '');
const quand = (nom, suite) => (la(nom) ? suite() : setTimeout(() => quand(nom, suite), 20));
const sauf = (retenue, jusqua, suite) => (la(retenue) ? quand(jusqua, suite) : suite());
process.on('SIGTERM', () => { vu('sigterm'); sauf('retenir-fin', 'finir', () => process.exit(0)); });
const inonder = () => { if (la('inonder')) process.stdout.write('x'.repeat(65000) + '\\n', inonder); else setTimeout(inonder, 50); };
inonder();
const sansFin = (r) => { r.write('x'.repeat(1000)); setTimeout(() => sansFin(r), 20); };
const recevoir = (q, r) => {
  if (q.headers['user-agent']) { vu('page-demandee'); return sauf('retenir-page', 'lacher-page', () => repondre(q, r)); }
  vu('sonde');
  sauf('retenir-sonde', 'lacher-sonde', () => {
    if (la('sans-marque')) r.end('bonjour');
    else if (la('sans-fin')) sansFin(r);
    else repondre(q, r);
  });
};
vu('lance');
sauf('retenir-ecoute', 'ecouter', () => http.createServer(recevoir).listen(PORT, '127.0.0.1'));
"""
RETENUES = {"attente": "retenir-ecoute", "reponse": "retenir-sonde", "chargement": "retenir-page", "fermeture": "retenir-fin"}
LIBERATIONS = {"attente": "ecouter", "reponse": "lacher-sonde", "chargement": "lacher-page", "fermeture": "finir"}
ARRIVEES = {"attente": "lance", "reponse": "sonde", "chargement": "page-demandee", "fermeture": "sigterm"}


class Banc:
    def __init__(self, cas, rattache, moment):
        self.cas, self.rattache, self.moment, self.serveur = cas, rattache, moment, None
        self.fautes = tempfile.TemporaryDirectory()
        cas.addCleanup(self.fautes.cleanup)
        self.application = Application(code=TENU, variables={"LD_PRELOAD": cas.fautes, "KELTROVE_FAUTES": self.fautes.name})
        self.temoin = os.path.join(self.application.maison, ".zelcor/carnet-d-essai")
        with open(self.temoin, "w") as fichier:
            fichier.write("à l’utilisateur")
        cas.addCleanup(self.nettoyer)

    def dossier(self, nom):
        return os.path.join(self.application.ressources, "keltrove", nom)

    def poser(self, nom):
        self.application.poser(os.path.join("keltrove", nom), "")

    def mener(self):
        """Jusqu’au moment voulu, et l’y tenir."""
        if self.moment in RETENUES and self.moment != "fermeture":
            self.poser(RETENUES[self.moment])
        if self.rattache:
            self.lancer_le_serveur()
        self.application.lancer()
        if self.moment == "avant":
            return
        if self.moment in ("usage", "fermeture"):
            self.application.attendre("page-affichee")
        if self.moment == "fermeture":
            self.poser("retenir-fin")
            self.application.processus.terminate()
        if self.moment in ARRIVEES and not (self.rattache and self.moment == "fermeture"):
            attendre(lambda: os.path.exists(self.dossier(ARRIVEES[self.moment])), quoi=f"le moment « {self.moment} »")

    def lancer_le_serveur(self):
        self.application.poser("keltrove/serveur.mjs", TENU)
        self.serveur = subprocess.Popen(["/usr/bin/node", "serveur.mjs"], cwd=self.dossier(""),
                                        env=self.application.environnement(), stdout=subprocess.DEVNULL)
        self.cas.addCleanup(self.serveur.wait)
        self.cas.addCleanup(self.serveur.kill)
        with socket.socket() as prise:
            attendre(lambda: prise.connect_ex(("127.0.0.1", self.application.port)) == 0, quoi="le serveur à l’écoute")

    def liberer(self):
        if self.moment in LIBERATIONS:
            self.poser(LIBERATIONS[self.moment])

    def pid_du_serveur(self):
        return self.serveur.pid if self.serveur else self.application.serveurs()[0]

    def reessayer(self):
        ecran.presser(self.application.processus.pid, "Réessayer")

    def quitter(self):
        return self.application.quitter()

    def nettoyer(self):
        with open(self.temoin) as fichier:
            self.cas.assertEqual(fichier.read(), "à l’utilisateur")
        self.application.nettoyer()


class Fautes:
    """Chaque panne : de quoi la faire sur un banc. « defaire » la répare, si elle se répare."""

    @staticmethod
    def tuer(banc):
        os.kill(banc.pid_du_serveur(), signal.SIGKILL)

    @staticmethod
    def geler(banc):
        banc.gele = banc.pid_du_serveur()
        os.kill(banc.gele, signal.SIGSTOP)
        banc.cas.addCleanup(Fautes.degeler, banc)

    @staticmethod
    def degeler(banc):
        try:
            os.kill(banc.gele, signal.SIGCONT)
        except ProcessLookupError:
            pass

    @staticmethod
    def etranger(banc):
        """Quelqu’un d’autre prend le port, et y répond autre chose."""
        for pid in banc.application.serveurs() if banc.moment in ("chargement", "usage") else []:
            os.kill(pid, signal.SIGKILL)
        prise = socket.socket()
        prise.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        attendre(lambda: Fautes.prendre(prise, banc.application.port), quoi="le port pris")
        prise.listen()
        banc.cas.addCleanup(prise.close)
        threading.Thread(target=Fautes.repondre, args=(prise,), daemon=True).start()

    @staticmethod
    def prendre(prise, port):
        try:
            prise.bind(("127.0.0.1", port))
            return True
        except OSError:
            return False

    @staticmethod
    def repondre(prise):
        while True:
            try:
                client, _ = prise.accept()
                client.recv(4096)
                client.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 7\r\nConnection: close\r\n\r\nbonjour")
                client.close()
            except OSError:
                return

    @staticmethod
    def fichier(nom):
        return lambda banc: banc.poser(nom)

    @staticmethod
    def interne(nom):
        def faire(banc):
            with open(os.path.join(banc.fautes.name, nom), "w"):
                pass
        return faire

    @staticmethod
    def plus_de_descripteurs(banc):
        pid = banc.application.processus.pid
        ouverts = len(os.listdir(f"/proc/{pid}/fd"))
        resource.prlimit(pid, resource.RLIMIT_NOFILE, (ouverts, resource.prlimit(pid, resource.RLIMIT_NOFILE)[1]))

    @staticmethod
    def page_tuee(banc):
        for pid in banc.application.enfants("WebKitWebProcess"):
            if "bwrap" not in commande(pid):
                os.kill(pid, signal.SIGKILL)

    @staticmethod
    def bus_parti(banc):
        banc.bus.arreter()

    @staticmethod
    def ecran_parti(banc):
        banc.xvfb.kill()
        banc.xvfb.wait()

    @staticmethod
    def soi_tue(banc):
        banc.application.processus.kill()
        banc.application.processus.wait()


def avec_un_bus(banc):
    banc.bus = Bus(banc.cas)
    banc.application.variables.update(banc.bus.variables)


def avec_un_ecran(banc):
    lecture, ecriture = os.pipe()
    banc.xvfb = subprocess.Popen(["Xvfb", "-displayfd", str(ecriture), "-nolisten", "tcp"], pass_fds=[ecriture],
                                 stderr=subprocess.DEVNULL)
    os.close(ecriture)
    with os.fdopen(lecture) as tube:
        banc.application.variables["DISPLAY"] = ":" + tube.readline().strip()
    banc.cas.addCleanup(banc.xvfb.wait)
    banc.cas.addCleanup(banc.xvfb.kill)
