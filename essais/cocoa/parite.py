"""La table de parité, jouée par le bureau macOS : GNUstep, une doublure de WebKit, et un vrai serveur."""

import json
import os
import pathlib
import signal
import subprocess
import sys
import threading
import time

from cas import Cas

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "parite"))
from joueur import Ecart, Partie  # noqa: E402
from table import SCENARIOS, SERVEUR, est_keltrove  # noqa: E402

PATIENCE = 100
SCENARIO = "parite"  # celui qui joue toute la table
TABLE = {f"{SCENARIO}.{scenario.nom}": scenario for scenario in SCENARIOS}


def cas_de(_scenario):
    return Cas(serveur=SERVEUR.read_text())


class BureauMacos:
    def __init__(self, essai, programme):
        self.essai, self.programme = essai, programme
        self.port, self.lignes, self.dernier, self.processus, self.voisin = essai.port, [], {}, None, None

    def preparer(self, depart):
        self.essai.preparer()
        (self.essai.racine / "maison" / ".zelcor" / "keltrove-jeton").write_text("abc")
        self.poser("conduite", depart.get("code", "ordinaire"))
        if depart.get("déjà là") == "un serveur":
            self.lancer_un_serveur()

    def lancer_un_serveur(self):
        self.voisin = subprocess.Popen(["node", self.dossier("serveur.mjs")], env=self.essai.environnement(),
                                       start_new_session=True)
        self.attendre(lambda: est_keltrove(self.port))

    def dossier(self, nom):
        return self.essai.racine / "application" / "ressources" / "keltrove" / nom

    def poser(self, nom, contenu=""):
        """Entier dès qu’il se voit."""
        self.dossier(f"{nom}.tmp").write_text(contenu)
        os.rename(self.dossier(f"{nom}.tmp"), self.dossier(nom))

    def attendre(self, vrai):
        limite = time.monotonic() + PATIENCE
        while not vrai():
            if time.monotonic() > limite:
                raise Ecart(f"jamais venu ; vu : {self.lignes}")
            time.sleep(0.02)

    # Les gestes : ceux de l’utilisateur et de la page vont à l’application.
    def faire(self, geste, objet):
        if geste == "lancer":
            self.lancer()
        elif geste == "le serveur meurt":
            self.le_serveur_meurt()
        elif geste != "le temps passe":
            self.ordonner(f"{geste}\t{objet}")

    def lancer(self):
        self.processus = subprocess.Popen([self.programme], env=self.essai.environnement(), text=True, errors="replace",
                                          stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        threading.Thread(target=self.ecouter, daemon=True).start()

    def ecouter(self):
        for ligne in self.processus.stderr:
            if ligne.startswith("  [keltrove] "):
                self.lignes.append(ligne.strip())

    def ordonner(self, ordre):
        self.processus.stdin.write(ordre + "\n")
        self.processus.stdin.flush()
        return self.processus.stdout.readline()

    def le_serveur_meurt(self):
        self.poser("meurs")
        self.attendre(lambda: not est_keltrove(self.port))
        os.remove(self.dossier("meurs"))

    # Ce que l’on en voit.
    def voir(self):
        """La dernière fois, si l’application n’est plus là."""
        if self.processus.poll() is None:
            try:
                self.dernier = json.loads(self.ordonner("voir") or "{}") or self.dernier
            except BrokenPipeError:
                pass
        return self.dernier

    def suite(self, voix):
        vu = self.voir()  # pour le journal aussi : la page répond alors à la sonde
        return list(self.lignes) if voix == "journal" else vu.get(voix, [])

    def etat(self, voix):
        if voix == "serveur":
            return "répond" if est_keltrove(self.port) else "parti"
        if voix == "application":
            etat = self.processus.poll()
            return "en marche" if etat is None else "partie" if etat == 0 else f"sortie avec {etat}"
        return self.voir()[voix]

    def fermer(self):
        for processus in filter(None, (self.processus, self.voisin)):
            if processus.poll() is None:
                processus.send_signal(signal.SIGKILL)
            processus.wait()


def jouer(scenario, essai, programme):
    bureau = BureauMacos(essai, programme)
    try:
        Partie(scenario, bureau, "cocoa").jouer()
    except Ecart as ecart:
        return [str(ecart)]
    finally:
        bureau.fermer()
    return []
