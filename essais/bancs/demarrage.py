"""Les mesures de demarrage.sh : une passe de chaque programme à tour de rôle, puis les médianes."""

import json
import os
import platform
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import threading
import time

from mesures import arbre, memoire, pixel, port_libre, processeur

KELTROVE, NUE, PASSES = sys.argv[1], sys.argv[2], int(sys.argv[3])
SANS_GL = {"WEBKIT_DISABLE_DMABUF_RENDERER": "1", "GSK_RENDERER": "cairo", "GDK_DEBUG": "gl-disable", "GDK_DISABLE": "gl"}
VERT, POINT = 0x2B8A3E, (680, 450)
REPOS = 60

SERVEUR = """
import http from 'node:http';
import fs from 'node:fs';
const noter = (quoi) => fs.writeFileSync(`${process.env.HOME}/${quoi}`, String(Number(process.hrtime.bigint()) / 1e9));
const page = `<!doctype html><title>Banc</title><meta name="keltrove-jeton" content="x"><body style="background:#2b8a3e">`;
const serveur = http.createServer((_, r) => { r.setHeader('content-type', 'text/html'); r.end(page); });
serveur.listen(%d, '127.0.0.1', () => noter('pret'));
process.on('SIGTERM', () => process.exit(0));
process.on('exit', () => noter('fini'));
"""

def attendre_le_vert(vert=True, secondes=30):
    limite = time.monotonic() + secondes
    while (pixel(*POINT) == VERT) != vert:
        if time.monotonic() > limite:
            raise RuntimeError("la page n’a pas été peinte")
        time.sleep(0.001)
    return time.monotonic()


class Essai:
    def __init__(self, nom, commande, variables):
        self.nom, self.commande, self.variables = nom, commande, variables
        self.peints, self.memoires, self.repos = [], [], []

    def lancer(self, maison):
        self.debut = time.monotonic()
        self.processus = subprocess.Popen(self.commande, env={**os.environ, "HOME": maison, **self.variables},
                                          stderr=subprocess.DEVNULL, stdout=subprocess.DEVNULL, start_new_session=True)

    def passe(self, maison):
        self.lancer(maison)
        self.peints.append((attendre_le_vert() - self.debut) * 1000)
        time.sleep(2)  # la mémoire se prend une fois la page posée
        self.memoires.append(memoire(self.processus.pid))
        self.fermer()

    def au_repos(self, maison):
        self.lancer(maison)
        attendre_le_vert()
        time.sleep(5)
        avant = processeur(self.processus.pid)
        time.sleep(REPOS)
        self.repos.append(processeur(self.processus.pid) - avant)
        self.fermer()

    def fermer(self):
        membres = arbre(self.processus.pid)
        self.processus.terminate()
        try:
            self.processus.wait(10)
        except subprocess.TimeoutExpired:
            pass
        for pid in membres:
            try:
                os.kill(pid, signal.SIGKILL)
            except OSError:
                pass
        attendre_le_vert(False)


def maison_neuve(port):
    maison = tempfile.mkdtemp(prefix="keltrove-banc-")
    os.makedirs(os.path.join(maison, ".zelcor"))
    with open(os.path.join(maison, ".zelcor/keltrove.json"), "w") as fichier:
        json.dump({"port": port}, fichier)
    return maison


def lire_instant(maison, nom):
    with open(os.path.join(maison, nom)) as fichier:
        return float(fichier.read())


def allumage_et_fermeture():
    """Du serveur prêt à « allume », et de la fin du serveur à celle de l’application."""
    port = port_libre()
    maison = maison_neuve(port)
    copie = tempfile.mkdtemp(prefix="keltrove-banc-")
    for nom in ("keltrove", "libkeltrove-bureau.so"):
        shutil.copy(os.path.join(os.path.dirname(KELTROVE), nom), copie)
    os.makedirs(os.path.join(copie, "ressources/keltrove"))
    with open(os.path.join(copie, "ressources/keltrove/serveur.mjs"), "w") as fichier:
        fichier.write(SERVEUR % port)
    application = subprocess.Popen([os.path.join(copie, "keltrove")], env={**os.environ, "HOME": maison},
                                   stderr=subprocess.PIPE, text=True)
    allume = None
    for ligne in application.stderr:
        if ligne.startswith("  [keltrove] allume "):
            allume = time.monotonic()
        if ligne.startswith("  [keltrove] page-affichee "):
            break
    threading.Thread(target=application.stderr.read, daemon=True).start()
    application.terminate()
    application.wait()
    fin = time.monotonic()
    resultat = (allume - lire_instant(maison, "pret"), fin - lire_instant(maison, "fini"))
    shutil.rmtree(copie)
    shutil.rmtree(maison)
    return resultat


def main():
    port = port_libre()
    maison = maison_neuve(port)
    adresse = f"http://localhost:{port}/"
    serveur = subprocess.Popen(["node", "--input-type=module", "-e", SERVEUR % port],
                               env={**os.environ, "HOME": maison})
    while not os.path.exists(os.path.join(maison, "pret")):
        time.sleep(0.01)
    chromium = ["chromium", f"--app={adresse}", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
                "--disable-background-networking", "--disable-component-update", "--disable-sync",
                "--window-size=1280,820", "--window-position=40,40", f"--user-data-dir={maison}/chromium"]
    essais = [Essai("Keltrove", [KELTROVE], {}), Essai("fenêtre nue", [NUE, adresse], {}),
              Essai("fenêtre nue, mêmes variables", [NUE, adresse], SANS_GL),
              Essai("fenêtre nue, mêmes variables et bibliothèques", [f"{NUE}-liee", adresse], SANS_GL),
              Essai("Chromium", chromium, {})]
    for essai in essais:
        essai.passe(maison)  # une passe à blanc, caches chauds
        essai.peints.clear()
        essai.memoires.clear()
    for _ in range(PASSES):
        for essai in essais:
            essai.passe(maison)
    for essai in essais[:3]:
        essai.au_repos(maison)
    serveur.terminate()
    serveur.wait()

    mesures = [allumage_et_fermeture() for _ in range(PASSES)]
    carte = any(n.startswith("renderD") for n in (os.listdir("/dev/dri") if os.path.isdir("/dev/dri") else []))
    print(f"Machine : {os.cpu_count()} cœurs, {platform.release()}, {'avec' if carte else 'sans'} carte graphique.")
    print(f"Médianes de {PASSES} passes, à tour de rôle.\n")
    print("| | première peinture (ms) | rapport | mémoire PSS (Mo) | rapport | processeur au repos, 60 s (s) |")
    print("|---|---|---|---|---|---|")
    nous = essais[0]
    for essai in essais:
        peint, place = statistics.median(essai.peints), statistics.median(essai.memoires)
        print(f"| {essai.nom} | {peint:.0f} | {statistics.median(nous.peints) / peint:.2f} | {place:.0f} | "
              f"{statistics.median(nous.memoires) / place:.2f} | {essai.repos[0] if essai.repos else float('nan'):.2f} |")
    print(f"\nServeur prêt → « allume » : {statistics.median(m[0] for m in mesures):.3f} s "
          f"(au pire {max(m[0] for m in mesures):.3f})")
    print(f"Fin du serveur → fin de l’application : {statistics.median(m[1] for m in mesures):.3f} s "
          f"(au pire {max(m[1] for m in mesures):.3f})")
    shutil.rmtree(maison, ignore_errors=True)


main()
