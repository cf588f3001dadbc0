"""Les mesures de terminal.sh : une passe de chaque programme à tour de rôle, puis les médianes et les rapports."""

import contextlib
import json
import os
import random
import shutil
import signal
import socket
import statistics
import subprocess
import sys
import tempfile
import time

from mesures import arbre, attendre_un_dessin, chercher, frapper, memoire, pixel, port_libre, suivre_l_ecran

KELTROVE, WETTY = sys.argv[1], os.path.join(sys.argv[2], "node_modules/wetty/build/main.js")
PASSES = int(sys.argv[3]) if len(sys.argv) > 3 else 5
PARMI = os.environ.get("BANC_PARMI", "Keltrove,VTE,WeTTY").split(",")
POLICE, CORPS = "DejaVu Sans Mono", 14
TOUCHES, OCTETS, FLOT, REPOS = 60, 100_000_000, 8, 15
REPERE, UNE, AUTRE, MARQUE = 0x12C858, 0xC81258, 0x1258C8, 0xC8A012


def peindre(couleur):
    """Un mot sur fond de cette couleur, toujours à la même place."""
    rouge, vert, bleu = couleur.to_bytes(3, "big")
    return rf"\e[10;30H\e[48;2;{rouge};{vert};{bleu}m   mot   \e[0m"


SCRIPTS = {
    "repere": rf"printf '\e[?25l\e[2J{peindre(REPERE)}\n'",
    "touches": rf"""stty -echo; printf '\e[?25l\e[2J'; touch pret
while :; do
  read -rsN1 touche; printf '{peindre(UNE)}'; [ "$touche" = q ] && break
  read -rsN1 touche; printf '{peindre(AUTRE)}'; [ "$touche" = q ] && break
done; stty echo""",
    "fichier": rf"cat ../gros; touch fini; printf '\e[0m\e[?25l\e[2J{peindre(MARQUE)}\n'",
    "flot": rf"trap : INT; touch pret; yes; touch fini; printf '\e[?25l\e[2J{peindre(MARQUE)}\n'",
}


def ecrire(chemin, texte):
    os.makedirs(os.path.dirname(chemin), exist_ok=True)
    with open(chemin, "w") as fichier:
        fichier.write(texte)


def ecrire_le_gros_fichier(chemin):
    """Ce qu’impriment une construction, un journal et une liste de fichiers : couleurs, accents, longueurs diverses."""
    hasard = random.Random(1)
    mot = lambda: "".join(hasard.choices("abcdefghijklmnopqrstuvwxyzéè_", k=hasard.randint(3, 12)))
    formes = [
        lambda: f"\x1b[32m[{hasard.randint(1, 100):3}%]\x1b[0m Construit \x1b[1m{mot()}/{mot()}/{mot()}.cpp.o\x1b[0m",
        lambda: f"2026-03-{hasard.randint(1, 28):02} \x1b[36m{mot()}\x1b[0m[{hasard.randint(100, 9999)}] : {' '.join(mot() for _ in range(8))}",
        lambda: f"-rw-r--r-- 1 {mot()} {mot()} {hasard.randint(100, 99999):6} \x1b[01;34m{mot()}\x1b[0m  \x1b[38;5;208m{mot()}.{mot()}\x1b[0m",
        lambda: f"\x1b[31merreur :\x1b[0m {' '.join(mot() for _ in range(hasard.randint(2, 20)))}",
    ]
    bloc = "".join(f"{hasard.choice(formes)()}\n" for _ in range(10_000)).encode()
    with open(chemin, "wb") as fichier:
        while fichier.tell() < OCTETS:
            fichier.write(bloc)


def attendre(condition, secondes=60, quoi="la condition"):
    limite = time.monotonic() + secondes
    while not condition():
        if time.monotonic() > limite:
            raise RuntimeError(f"toujours pas : {quoi}")
        attendre_un_dessin(0.005)
    return time.monotonic()


def xdotool(*arguments):
    subprocess.run(["xdotool", *arguments], check=True)


class Programme:
    def __init__(self, nom):
        self.nom, self.vus = nom, []

    def lancer(self):
        self.maison = os.path.join(tempfile.mkdtemp(dir=dossier), "maison")
        os.makedirs(self.maison)
        for nom, texte in SCRIPTS.items():
            ecrire(f"{self.maison}/{nom}", texte)
        ecrire(f"{self.maison}/.bashrc", "PS1='$ '; cd\n")
        os.symlink(f"{dossier}/gros", f"{self.maison}/../gros")
        self.variables = {**os.environ, "HOME": self.maison, "SHELL": "/bin/bash", "HISTFILE": "/dev/null"}
        self.processus = []
        self.demarrer()
        attendre(lambda: subprocess.run(["xdotool", "search", "--onlyvisible", "--class", self.classe],
                                        capture_output=True).stdout, quoi="la fenêtre")
        xdotool("mousemove", "680", "500")

        def repere():
            xdotool("click", "1")
            self.commander("bash repere")
            time.sleep(0.5)
            self.point = chercher(REPERE)
            return self.point

        attendre(repere, quoi="le repère à l’écran")
        return self

    def ajouter(self, *commande):
        self.processus.append(subprocess.Popen(commande, env=self.variables, cwd=self.maison, start_new_session=True,
                                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))

    def commander(self, texte):
        xdotool("type", "--delay", "8", texte)
        xdotool("key", "Return")

    def fichier(self, nom):
        return lambda: os.path.exists(f"{self.maison}/{nom}")

    def oublier(self, *noms):
        for nom in filter(lambda nom: self.fichier(nom)(), noms):
            os.remove(f"{self.maison}/{nom}")

    def montre(self, couleur):
        return lambda: pixel(*self.point) == couleur

    def memoire(self):
        return sum(memoire(processus.pid) for processus in self.processus)

    def fermer(self):
        for processus in self.processus:
            processus.terminate()
        for processus in self.processus:
            try:
                processus.wait(10)
            except subprocess.TimeoutExpired:
                os.killpg(processus.pid, signal.SIGKILL)
                processus.wait()
        shutil.rmtree(os.path.dirname(self.maison), ignore_errors=True)


class Keltrove(Programme):
    classe = "keltrove"

    def demarrer(self):
        ecrire(f"{self.maison}/.zelcor/keltrove.json", json.dumps({"port": port_libre()}))
        self.ajouter(KELTROVE)


class Vte(Programme):
    classe = "xfce4-terminal"

    def demarrer(self):
        ecrire(f"{self.maison}/.config/xfce4/terminal/terminalrc",
               f"[Configuration]\nFontName={POLICE} {CORPS * 0.75}\nScrollingLines=10000\nMiscBell=FALSE\n")
        self.ajouter("xfce4-terminal", "--disable-server", "--geometry=145x42")


class Wetty(Programme):
    classe = "chromium"

    def demarrer(self):
        port = port_libre()
        self.ajouter("node", WETTY, "--host", "127.0.0.1", "--port", str(port), "--base", "/", "--command", "/bin/bash",
                     "--log-level", "error")
        attendre(lambda: socket.socket().connect_ex(("127.0.0.1", port)) == 0, quoi="WeTTY")
        self.ajouter("chromium", f"--app=http://127.0.0.1:{port}/", "--no-sandbox", "--disable-gpu", "--disable-3d-apis",
                     "--no-first-run", "--disable-background-networking", "--disable-component-update", "--disable-sync",
                     "--window-size=1280,820", "--window-position=40,40", f"--user-data-dir={self.maison}/chromium")


def mesurer_les_touches(lui):
    lui.commander("bash touches")
    attendre(lui.fichier("pret"), quoi="le lecteur de touches")
    durees = []
    for rang in range(TOUCHES + 5):
        time.sleep(random.uniform(0.08, 0.2))
        depart = time.monotonic()
        frapper("a")
        durees.append((attendre(lui.montre(AUTRE if rang % 2 else UNE), quoi="la touche à l’écran") - depart) * 1000)
    frapper("q")
    durees = sorted(durees[5:])
    return {"touche → pixel, médiane (ms)": statistics.median(durees), "touche → pixel, 95 % (ms)": durees[int(TOUCHES * 0.95)]}


def mesurer_le_fichier(lui):
    lui.oublier("fini")
    xdotool("type", "--delay", "8", "bash fichier")
    depart = time.monotonic()
    frapper("Return")
    attendre(lui.fichier("fini"), 300, "la fin du fichier")
    return {"cat de 100 Mo (s)": attendre(lui.montre(MARQUE), 300, "la marque") - depart}


def mesurer_le_flot(lui):
    lui.oublier("pret", "fini")
    lui.commander("bash flot")
    attendre(lui.fichier("pret"), quoi="le flot")
    time.sleep(FLOT)
    depart = time.monotonic()
    frapper("Control_L", "c")
    suite = attendre(lui.fichier("fini"), quoi="la commande suivante")
    marque = attendre(lui.montre(MARQUE), quoi="la marque")
    return {"yes 8 s, Ctrl+C → commande suivante (ms)": (suite - depart) * 1000,
            "yes 8 s, Ctrl+C → sa marque à l’écran (ms)": (marque - depart) * 1000}


def mesurer_la_memoire(lui):
    time.sleep(REPOS)
    vu = {"mémoire, un terminal (Mo)": lui.memoire()}
    vu |= mesurer_le_fichier(lui)
    time.sleep(REPOS)
    return {**vu, "mémoire, après cat de 100 Mo (Mo)": lui.memoire()}


def mesurer_vingt(lui):
    if isinstance(lui, Wetty):
        return {}
    for rang in range(1, 20):
        frapper("Control_L", "Shift_L", "t")
        attendre(lambda: interpreteurs(lui) == rang + 1, quoi=f"{rang + 1} terminaux")
    time.sleep(REPOS)
    return {"mémoire, vingt terminaux (Mo)": lui.memoire()}


def interpreteurs(lui):
    noms = []
    for pid in (pid for processus in lui.processus for pid in arbre(processus.pid)):
        with contextlib.suppress(OSError), open(f"/proc/{pid}/comm") as fichier:
            noms.append(fichier.read().strip())
    return noms.count("bash")


MESURES = {"touches": mesurer_les_touches, "fichier": mesurer_le_fichier, "flot": mesurer_le_flot,
           "memoire": mesurer_la_memoire, "vingt": mesurer_vingt}


def passer(lui, mesures):
    vu = {}
    for mesure in mesures:
        try:
            vu |= MESURES[mesure](lui.lancer())
        finally:
            lui.fermer()
    print(f"{lui.nom} : {json.dumps(vu, ensure_ascii=False)}", file=sys.stderr)
    lui.vus.append(vu)


def imprimer(programmes):
    print(f"| | {programmes[0].nom} | " + "".join(f"{lui.nom} | rapport | " for lui in programmes[1:]))
    print("|---" * (2 * len(programmes)) + "|")
    for quoi in programmes[0].vus[0]:
        medianes = [statistics.median(vu[quoi] for vu in lui.vus) if quoi in lui.vus[0] else None for lui in programmes]
        cases = [f"{valeur:.1f} | {medianes[0] / valeur:.2f} | " if valeur else "— | — | " for valeur in medianes[1:]]
        print(f"| {quoi} | {medianes[0]:.1f} | " + "".join(cases))


dossier = tempfile.mkdtemp(prefix="keltrove-banc-")
try:
    ecrire_le_gros_fichier(f"{dossier}/gros")
    suivre_l_ecran()
    programmes = [lui for lui in (Keltrove("Keltrove"), Vte("VTE"), Wetty("WeTTY")) if lui.nom in PARMI]
    if not os.path.exists(WETTY):
        print(f"Pour comparer aussi à WeTTY : npm install --prefix {sys.argv[2]} wetty@3.2.0", file=sys.stderr)
        programmes = [lui for lui in programmes if not isinstance(lui, Wetty)]
    for _ in range(PASSES):
        for lui in programmes:
            passer(lui, sys.argv[4:] or [nom for nom in MESURES if nom != "fichier"])
    imprimer(programmes)
finally:
    shutil.rmtree(dossier, ignore_errors=True)
