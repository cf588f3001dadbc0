#!/usr/bin/env python3
"""Met l’application dans chacun de ses états et la photographie. Lancé par captures.sh, sur un écran virtuel."""

import json
import os
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time

CONSTRUCTION, DOSSIER = map(os.path.abspath, sys.argv[1:3])
FOND = "#0E1116"

SERVEUR = """
import http from 'node:http';
const page = '<title>Essai</title><meta name="keltrove-jeton" content="x"><body>Bonjour';
http.createServer((_, r) => r.end(page)).listen(%d, '127.0.0.1');
%s
"""
MUET = "console.log('Lecture de la liste des terminaux…'); setInterval(() => {}, 1000);"
MORT = """console.error(`node:internal/modules/cjs/loader
  throw err;
  ^

Error: Cannot find module 'ws'
Require stack:
- keltrove/serveur.mjs
    at Module._resolveFilename (node:internal/modules/cjs/loader:1144:15)
    at Module._load (node:internal/modules/cjs/loader:985:27) {
  code: 'MODULE_NOT_FOUND'
}`);process.exit(1);"""


def port_libre():
    with socket.socket() as prise:
        prise.bind(("127.0.0.1", 0))
        return prise.getsockname()[1]


class Application:
    """Une copie de l’application, avec son propre dossier personnel et ses propres ressources."""

    def __init__(self, code=None, porte=None, avant=(), vrai_serveur=False):
        self.racine = tempfile.mkdtemp(prefix="keltrove-capture-")
        self.port = port_libre()
        maison = os.path.join(self.racine, "maison")
        ressources = os.path.join(self.racine, "ressources")
        os.makedirs(os.path.join(maison, ".zelcor"))
        os.makedirs(os.path.join(ressources, "keltrove"))
        for nom in ("keltrove", "libkeltrove-bureau.so"):
            shutil.copy(os.path.join(CONSTRUCTION, nom), self.racine)
        with open(os.path.join(maison, ".zelcor", "keltrove.json"), "w") as fichier:
            json.dump({"port": self.port}, fichier)
        if vrai_serveur:
            os.rmdir(os.path.join(ressources, "keltrove"))
            os.symlink(os.path.join(CONSTRUCTION, "ressources/keltrove"), os.path.join(ressources, "keltrove"))
        elif code is not None:
            with open(os.path.join(ressources, "keltrove", "serveur.mjs"), "w") as fichier:
                fichier.write(code.replace("PORT", str(self.port)))
        if porte is not None:
            chemin = os.path.join(ressources, "demarrer-keltrove.sh")
            with open(chemin, "w") as fichier:
                fichier.write(porte)
            os.chmod(chemin, 0o755)
        environnement = dict(os.environ, HOME=maison, SHELL="/bin/bash", PS1=r"\w $ ",
                             XDG_STATE_HOME=os.path.join(maison, "etat"))
        self.etapes = []
        self.arrivee = threading.Condition()
        self.processus = subprocess.Popen([*avant, os.path.join(self.racine, "keltrove")],
                                          env=environnement, stderr=subprocess.PIPE, text=True)
        threading.Thread(target=self.lire, daemon=True).start()

    def lire(self):
        for ligne in self.processus.stderr:
            if ligne.startswith("  [keltrove] "):
                with self.arrivee:
                    self.etapes.append(ligne.split()[1])
                    self.arrivee.notify_all()

    def attendre(self, etape, secondes=60):
        with self.arrivee:
            if not self.arrivee.wait_for(lambda: etape in self.etapes, secondes):
                raise RuntimeError(f"l’étape {etape} n’est pas venue ; vues : {self.etapes}")

    def enfants(self, motif):
        trouves = subprocess.run(["pgrep", "-f", motif], capture_output=True, text=True).stdout.split()
        return [int(pid) for pid in trouves]

    def fermer(self):
        self.processus.terminate()
        self.processus.wait(30)
        for pid in self.enfants(self.racine):
            os.kill(pid, signal.SIGKILL)
        shutil.rmtree(self.racine, ignore_errors=True)


def couleur(x, y):
    pixels = subprocess.run(["import", "-window", "root", "-crop", f"1x1+{x}+{y}", "-depth", "8", "txt:-"],
                            capture_output=True, text=True).stdout
    return "#" + pixels.split("#")[-1][:6].upper()


def attendre_l_ecran():
    """La fenêtre est peinte quand le fond de l’écran d’attente apparaît près de son bord."""
    limite = time.monotonic() + 20
    while couleur(100, 800) != FOND:
        if time.monotonic() > limite:
            raise RuntimeError("l’écran d’attente n’est pas apparu")


def photographier(nom):
    # Deux prises identiques : plus rien ne bouge, hors la roue qui tourne.
    fichier = os.path.join(DOSSIER, nom + ".png")
    precedente = None
    for _ in range(20):
        subprocess.run(["import", "-window", "root", fichier], check=True)
        with open(fichier, "rb") as image:
            octets = image.read()
        if octets == precedente:
            break
        precedente = octets
    print("  " + nom)


def touches(*noms):
    subprocess.run(["xdotool", "key", "--clearmodifiers", *noms], check=True)


def probleme(nom, etape, avec_detail, **options):
    application = Application(**options)
    try:
        application.attendre(etape)
        attendre_l_ecran()
        photographier(nom + ("-replie" if avec_detail else ""))
        if avec_detail:
            touches("Tab", "space")
            photographier(nom + "-deplie")
    finally:
        application.fermer()


def attente_et_pas_de_reponse():
    application = Application(code=MUET)
    try:
        application.attendre("demarrage-demande")
        attendre_l_ecran()
        photographier("attente")
        application.attendre("echec-demarrage")
        attendre_l_ecran()
        photographier("pas-de-reponse-replie")
        touches("Tab", "space")
        photographier("pas-de-reponse-deplie")
    finally:
        application.fermer()


def serveur_en_service():
    code = SERVEUR.replace("%d", "PORT").replace("%s", "console.log('Première ligne du serveur.');"
                                                 "process.on('SIGTERM', () => {});")
    application = Application(code=code)
    try:
        application.attendre("page-contenu")
        for pid in application.enfants("WebKitWebProcess"):
            os.kill(pid, signal.SIGKILL)
        application.attendre("page-ratee")
        attendre_l_ecran()
        photographier("page-ratee-replie")
        touches("Tab", "space")
        photographier("page-ratee-deplie")
        touches("Return")
        application.etapes.clear()
        application.attendre("page-contenu")
        (serveur,) = application.enfants(application.racine + "/ressources/keltrove/serveur.mjs")
        os.kill(serveur, signal.SIGSTOP)
        application.attendre("serveur-ne-repond-plus")
        attendre_l_ecran()
        photographier("ne-repond-plus-replie")
        touches("Tab", "space")
        photographier("ne-repond-plus-deplie")
        os.kill(serveur, signal.SIGCONT)
        touches("Return")
        application.etapes.clear()
        application.attendre("page-contenu")
        application.processus.terminate()
        application.attendre("quitte-sans-toucher-au-serveur")
    finally:
        application.fermer()


def mort_en_route_et_fermeture():
    code = SERVEUR.replace("%d", "PORT").replace("%s", "console.log('Première ligne du serveur.');"
                                                 "process.on('SIGTERM', () => {});")
    application = Application(code=code)
    try:
        application.attendre("page-contenu")
        (serveur,) = application.enfants(application.racine + "/ressources/keltrove/serveur.mjs")
        os.kill(serveur, signal.SIGKILL)
        application.attendre("serveur-mort-en-route")
        attendre_l_ecran()
        photographier("perdu-en-route-replie")
        touches("Tab", "space")
        photographier("perdu-en-route-deplie")
        application.etapes.clear()
        touches("Return")
        application.attendre("page-contenu")
        application.processus.terminate()
        application.attendre("arret-demande")
        attendre_l_ecran()
        photographier("fermeture")
    finally:
        application.fermer()


def page_et_bandeau():
    porte = ('#!/bin/sh\necho "MESSAGE=Le serveur a été mis à jour : version 0.1.0."\n'
             'exec node "$(dirname "$0")/keltrove/serveur.mjs"\n')
    application = Application(porte=porte, vrai_serveur=True)
    try:
        application.attendre("page-affichee")
        photographier("bandeau")
        application.attendre("page-contenu")
        subprocess.run(["xdotool", "type", "--delay", "12", "printf '%s\\n' Bonjour; seq -s ' ' 1 12; date +%F\n"], check=True)
        time.sleep(5)  # le bandeau dure quatre secondes : c’est la page sans lui que l’on veut
        photographier("page")
    finally:
        application.fermer()


def sans_node():
    vide = tempfile.NamedTemporaryFile()
    montages = "".join(f"mount --bind {vide.name} {node};" for node in ("/usr/local/bin/node", "/usr/bin/node")
                       if os.path.exists(node))
    prefixe = ["unshare", "-m"] if os.getuid() == 0 else ["unshare", "-rm"]
    probleme("node-introuvable", "echec-demarrage", False, code=MUET,
             avant=[*prefixe, "sh", "-c", montages + 'exec "$@"', "sh"])


page_et_bandeau()
probleme("code-introuvable", "echec-demarrage", False)
probleme("lancement-impossible", "echec-demarrage", False, porte="#!/nulle/part/interprete\n")
probleme("mort-au-demarrage", "echec-demarrage", True, code=MORT)
probleme("code-modifie", "echec-demarrage", False, porte="#!/bin/sh\necho MODIFIE=serveur.mjs\nexit 1\n")
sans_node()
mort_en_route_et_fermeture()
serveur_en_service()
attente_et_pas_de_reponse()
