"""Une application lancée comme par une personne : sa copie, son dossier personnel, son serveur, son journal."""

import collections
import glob
import json
import os
import shutil
import signal
import socket
import subprocess
import tempfile
import threading
import time

from bus import Bus

CONSTRUCTION = os.path.abspath(os.environ.get("KELTROVE_CONSTRUCTION", "build/release"))
MARQUE = "KELTROVE_MARQUE_D_ESSAI"

SERVEUR = """
import http from 'node:http';
import fs from 'node:fs';
const page = '<!doctype html><title>Essai</title><meta name="keltrove-jeton" content="x">' +
  '<body style="margin:0;background:#2b8a3e">';
const sante = '{"version":"1.4.2","carnet":{"terminaux":5}}';
const repondre = (q, r) => {
  r.setHeader('content-type', q.url === '/api/sante' ? 'application/json' : 'text/html; charset=utf-8');
  r.end(q.url === '/api/sante' ? sante : page);
};
const servir = (port = PORT, hote = '127.0.0.1') => http.createServer(repondre).listen(port, hote);
"""
MUET = SERVEUR + "console.log('je réfléchis'); setInterval(() => {}, 1000);"
LENT_A_FINIR = SERVEUR + """servir();
process.on('SIGTERM', () => setInterval(() => fs.existsSync('finir') && process.exit(0), 20));
"""
VERT = "#2B8A3E"
SOMBRE = "#0E1116"
PORTS_GARDES = collections.deque(maxlen=200)  # bien plus que ce qui se joue ensemble ; les plus anciens se rendent


def port_libre():
    """Gardé par une prise qui n’écoute pas : le système ne le tire plus pour personne, et qui le demande par son numéro, avec
    SO_REUSEADDR, l’ouvre."""
    prise = socket.socket()
    prise.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    prise.bind(("127.0.0.1", 0))
    PORTS_GARDES.append(prise)
    return prise.getsockname()[1]


def attendre(condition, secondes=60, quoi="la condition", pas=0.02):
    """Pour ce qui n’a pas d’événement à écouter : un pixel, un processus, un fichier. « quoi » se dit, ou se calcule."""
    limite = time.monotonic() + secondes
    while not condition():
        if time.monotonic() > limite:
            raise AssertionError(f"{quoi() if callable(quoi) else quoi} : toujours rien au bout de {secondes} s")
        time.sleep(pas)


def lire(chemin):
    with open(chemin, "rb") as fichier:
        return fichier.read()


def processus_marques(marque):
    trouves = []
    for pid in filter(str.isdigit, os.listdir("/proc")):
        try:
            if f"{MARQUE}={marque}".encode() in lire(f"/proc/{pid}/environ").split(b"\0"):
                trouves.append(int(pid))
        except OSError:
            pass
    return trouves


def commande(pid):
    try:
        return lire(f"/proc/{pid}/cmdline").replace(b"\0", b" ").decode()
    except OSError:
        return ""


class Application:
    def __init__(self, code=None, porte=None, variables=None, maison=None, vrai_serveur=False, reglages=()):
        """Les réglages nommés sont ceux que l’utilisateur aurait cochés, dans la page du vrai serveur."""
        self.racine = tempfile.mkdtemp(prefix="kéltrove d’essai ")
        self.marque = os.path.basename(self.racine)
        self.maison = maison or os.path.join(self.racine, "maison")
        self.ressources = os.path.join(self.racine, "ressources")
        os.makedirs(os.path.join(self.maison, ".zelcor"), exist_ok=True)
        os.makedirs(self.ressources)
        for nom in ("keltrove", "libkeltrove-bureau.so"):
            shutil.copy(os.path.join(CONSTRUCTION, nom), self.racine)
        self.executable = os.path.join(self.racine, "keltrove")
        self.port = port_libre()
        self.regler(self.port)
        self.variables = dict(variables or {})
        self.bus = None
        self.code, self.porte, self.vrai_serveur, self.reglages = code, porte, vrai_serveur, reglages
        self.lignes, self.arrivee, self.processus = [], threading.Condition(), None

    def regler(self, port):
        with open(os.path.join(self.maison, ".zelcor", "keltrove.json"), "w") as fichier:
            json.dump({"port": port}, fichier)

    def poser(self, nom, contenu, executable=False):
        chemin = os.path.join(self.ressources, nom)
        os.makedirs(os.path.dirname(chemin), exist_ok=True)
        with open(chemin, "w") as fichier:
            fichier.write(contenu.replace("PORT", str(self.port)))
        if executable:
            os.chmod(chemin, 0o755)

    def environnement(self):
        propre = {cle: valeur for cle, valeur in os.environ.items() if not cle.startswith("KELTROVE_")}
        voulu = {"HOME": self.maison, MARQUE: self.marque, "SHELL": "/bin/bash",
                 "XDG_STATE_HOME": os.path.join(self.maison, "état"), **self.variables}
        return {cle: valeur for cle, valeur in {**propre, **voulu}.items() if valeur is not None}

    def avoir_un_bus(self):
        """Le sien, sauf si l’essai en décide : une seule application s’ouvre par bus."""
        if "DBUS_SESSION_BUS_ADDRESS" not in self.variables:
            self.bus = Bus()
            self.variables.update(self.bus.variables)
        return self

    def preparer(self):
        """Le serveur et le script de démarrage qu’elle trouvera."""
        if self.vrai_serveur:
            self.poser_le_vrai_serveur()
            self.vrai_serveur = False
        if self.code is not None:
            self.poser("keltrove/serveur.mjs", self.code)
        if self.porte is not None:
            self.poser("demarrer-keltrove.sh", self.porte, executable=True)

    def poser_le_vrai_serveur(self):
        vrai, ici = os.path.join(CONSTRUCTION, "ressources/keltrove"), os.path.join(self.ressources, "keltrove")
        if not self.reglages:
            os.symlink(vrai, ici)
            return
        shutil.copytree(vrai, ici, ignore=shutil.ignore_patterns("node_modules"))
        os.symlink(os.path.join(vrai, "node_modules"), os.path.join(ici, "node_modules"))
        choix = json.dumps(dict.fromkeys(self.reglages, True))
        chemin = os.path.join(ici, "page/reglages.js")
        source = lire(chemin).decode()
        with open(chemin, "w") as fichier:
            fichier.write(f"localStorage.setItem('keltrove-reglages', '{choix}');\n{source}")

    def lancer(self):
        self.avoir_un_bus()
        self.preparer()
        return self.suivre(subprocess.Popen([self.executable], text=True, env=self.environnement(),
                                            stderr=subprocess.PIPE, start_new_session=True))

    def suivre(self, processus):
        self.lignes.clear()
        self.processus = processus
        threading.Thread(target=self.ecouter, args=(processus.stderr,), daemon=True).start()
        return self

    def ecouter(self, tube):
        with tube:
            for ligne in tube:
                with self.arrivee:
                    self.lignes.append(ligne.rstrip("\n"))
                    self.arrivee.notify_all()

    def etapes(self):
        return [l.split()[1] for l in self.lignes if l.startswith("  [keltrove] ")]

    def details(self, etape):
        debut = f"  [keltrove] {etape} "
        return [l[len(debut):] for l in self.lignes if l.startswith(debut)]

    def attendre(self, etape, secondes=90, fois=1):
        with self.arrivee:
            if not self.arrivee.wait_for(lambda: self.etapes().count(etape) >= fois, secondes):
                raise AssertionError(f"l’étape {etape} n’est pas venue en {secondes} s ; vu : {self.lignes}")

    def serveurs(self):
        """Les processus de ce serveur-là : ni l’application, ni ce que la boîte à outils lance pour elle."""
        return [pid for pid in processus_marques(self.marque)
                if "serveur.mjs" in commande(pid) or "demarrer-keltrove.sh" in commande(pid)]

    def pages(self):
        """Les programmes qui dessinent la page, sans ceux qui les tiennent dans leur bac à sable."""
        return [pid for pid in self.enfants("WebKitWebProcess") if "bwrap" not in commande(pid)]

    def pages_reliees(self):
        """Parmi eux, ceux que l’application connaît déjà : s’ils n’en venaient pas là, WebKit l’interromprait."""
        return [pid for pid in self.pages() if len(glob.glob(f"/proc/{pid}/task/*")) > 4]

    def enfants(self, motif):
        return [pid for pid in processus_marques(self.marque) if motif in commande(pid)]

    def quitter(self, signe=signal.SIGTERM, secondes=60):
        self.processus.send_signal(signe)
        return self.attendre_la_fin(secondes)

    def attendre_la_fin(self, secondes=60):
        """Ses dernières lignes arrivent encore quand elle n’est déjà plus là."""
        etat = self.processus.wait(secondes)
        if self.processus.stderr:
            attendre(lambda: self.processus.stderr.closed, quoi="les dernières lignes")
        return etat

    def nettoyer(self):
        """Ce qui restait en vie, une fois l’application partie."""
        if self.processus and self.processus.poll() is None:
            self.processus.kill()
            self.processus.wait()
        restes = [commande(pid) for pid in self.serveurs()]
        for pid in processus_marques(self.marque):
            try:
                os.kill(pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
        if self.bus:
            self.bus.arreter()
        shutil.rmtree(self.racine, ignore_errors=True)
        return restes


def sans_node(dossier):
    """Les variables d’une application qui ne trouve Node nulle part, quels que soient les droits de l’essai."""
    bibliotheque = os.path.join(dossier, "sans_node.so")
    source = os.path.join(os.path.dirname(os.path.abspath(__file__)), "sans_node.c")
    subprocess.run(["cc", "-shared", "-fPIC", "-o", bibliotheque, source], check=True)
    return {"LD_PRELOAD": bibliotheque}


def couleur(x, y):
    pixels = subprocess.run(["import", "-window", "root", "-crop", f"1x1+{x}+{y}", "-depth", "8", "txt:-"],
                            capture_output=True, text=True).stdout
    return "#" + pixels.split("#")[-1][:6].upper()


def compter_les_pixels(teinte, zone=None):
    """Ceux de cette teinte exacte, à l’écran ou dans une zone (largeurxhauteur+x+y)."""
    choix = ["-crop", zone] if zone else []
    image = subprocess.run(["import", "-window", "root", *choix, "png:-"], capture_output=True).stdout
    compte = ["-depth", "8", "-fill", "black", "+opaque", teinte, "-fill", "white", "-opaque", teinte, "-format", "%[fx:mean*w*h]", "info:"]
    return round(float(subprocess.run(["convert", "png:-", *compte], input=image, capture_output=True).stdout))


def fenetres(application, visible=True, ecran=None):
    choix = ["--onlyvisible"] if visible else []
    variables = {**os.environ, "DISPLAY": ecran or os.environ["DISPLAY"]}
    while True:
        trouvees = subprocess.run(["xdotool", "search", *choix, "--pid", str(application.processus.pid)],
                                  capture_output=True, text=True, env=variables)
        # La fenêtre d’un autre, partie pendant que xdotool les passe en revue, l’arrête là.
        if "BadWindow" not in trouvees.stderr:
            return [int(fenetre) for fenetre in trouvees.stdout.split()]


def la_fenetre(application, ecran=None):
    """Le système peut la montrer un peu après la page."""
    trouvees = []

    def seule():
        trouvees[:] = fenetres(application, ecran=ecran)
        return len(trouvees) == 1

    attendre(seule, quoi="la fenêtre")
    return trouvees[0]


def active():
    return subprocess.run(["xdotool", "getactivewindow"], capture_output=True, text=True).stdout.strip()


def attendre_le_clavier(application):
    """Avant cela, ce que l’on tape irait ailleurs."""
    attendre(lambda: active() in map(str, fenetres(application)), quoi="la fenêtre au clavier")


def touches(*noms):
    subprocess.run(["xdotool", "key", "--clearmodifiers", *noms], check=True)


def regler_la_resolution(points):
    """Ce que le bureau dit de l’écran, en points par pouce : 96, ou plus pour qui veut un texte plus grand."""
    subprocess.run(["xprop", "-root", "-f", "RESOURCE_MANAGER", "8s", "-set", "RESOURCE_MANAGER", f"Xft.dpi:\t{points}\n"],
                   check=True)
