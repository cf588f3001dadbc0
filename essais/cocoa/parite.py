"""La table de parité, jouée par le bureau macOS : GNUstep, une doublure de WebKit, et un vrai serveur."""

import contextlib
import json
import os
import signal
import socket
import subprocess
import threading
import time

from cas import Cas
from joueur import Ecart, Partie
from table import SCENARIOS, SERVEUR
from voisins import est_keltrove, repondre_en_etranger

SCENARIO = "parite"  # celui qui joue toute la table
TABLE = {f"{SCENARIO}.{scenario.nom}": scenario for scenario in SCENARIOS}
PATIENCE = 100
MODES = {"discret": {"KELTROVE_DISCRET": "1"}, "essai": {"KELTROVE_ESSAI": "1", "KELTROVE_ESSAI_QUITTER": "5"}}
PERMISSIONS = {"jamais demandées": 0, "refusées": 1, "accordées": 2}  # comme UNAuthorizationStatus


def cas_de(scenario):
    """Sans paquet, il n’y a pas de centre de notifications."""
    depart = scenario.depart
    permission = PERMISSIONS.get(depart.get("notifications", "accordées"))
    environnement = {**MODES.get(depart.get("mode"), {}),
                     **({} if permission is None else {"KELTROVE_PERMISSION_D_ESSAI": str(permission)})}
    code = depart.get("code")
    serveur = "vrai" if code == "le nôtre" else "" if code in ("aucun", "irrecevable") else SERVEUR.read_text()
    attend = any(geste.nom == "le temps passe" for geste in scenario.gestes)
    return Cas(serveur=serveur, nu=permission is None, sans_node=code == "sans node", environnement=environnement,
               duree=30 if attend else 0)


class BureauMacos:
    def __init__(self, essai, programme):
        self.essai, self.programme = essai, programme
        self.port, self.lignes, self.dernier, self.rouverte, self.processus = essai.port, [], {}, False, None
        self.restes = contextlib.ExitStack()

    # Le départ.
    def preparer(self, depart):
        self.essai.preparer()
        (self.essai.racine / "maison" / ".zelcor" / "keltrove-jeton").write_text("abc")
        (self.essai.racine / "application" / "ressources").mkdir(exist_ok=True)
        code = depart.get("code", "ordinaire")
        if code == "irrecevable":
            self.poser_un_lanceur("#!/nulle/part\n")
        elif code not in ("aucun", "le nôtre"):
            self.poser("conduite", "ordinaire" if code == "sans node" else code)
        if "déjà là" in depart:
            {"un serveur": self.lancer_un_serveur, "un étranger": self.accueillir_un_etranger}[depart["déjà là"]]()

    def poser_un_lanceur(self, script):
        lanceur = self.essai.racine / "application" / "ressources" / "demarrer-keltrove.sh"
        lanceur.write_text(script)
        lanceur.chmod(0o755)

    def lancer_un_serveur(self):
        serveur = subprocess.Popen(["node", self.dossier("serveur.mjs")], env=self.essai.environnement(), start_new_session=True)
        self.restes.callback(serveur.wait)
        self.restes.callback(serveur.kill)
        self.attendre(lambda: est_keltrove(self.port))

    def accueillir_un_etranger(self):
        prise = self.restes.enter_context(socket.create_server(("127.0.0.1", self.port)))
        threading.Thread(target=repondre_en_etranger, args=(prise,), daemon=True).start()

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
        if geste in GESTES:
            GESTES[geste](self)
        elif self.processus:  # avant elle, rien n’est devant
            self.ordonner(f"{geste}\t{objet}")

    def lancer(self):
        self.processus = subprocess.Popen([self.programme], env=self.essai.environnement(), text=True, errors="replace",
                                          stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.restes.callback(self.finir, self.processus)
        threading.Thread(target=self.ecouter, args=(self.processus.stderr,), daemon=True).start()

    def finir(self, processus):
        with contextlib.suppress(ProcessLookupError):
            processus.kill()
        processus.wait()

    def ecouter(self, tube):
        for ligne in tube:
            if ligne.startswith("  [keltrove] "):
                self.lignes.append(ligne.strip())

    def ordonner(self, ordre):
        """Ce qu’elle en répond ; rien, si elle s’en va."""
        with contextlib.suppress(BrokenPipeError):
            self.processus.stdin.write(ordre + "\n")
            self.processus.stdin.flush()
        return self.processus.stdout.readline()

    def tuer_le_serveur(self):
        self.poser("meurs")
        self.attendre(lambda: not est_keltrove(self.port))
        os.remove(self.dossier("meurs"))

    def degeler_le_serveur(self):
        os.kill(int(self.dossier("pid").read_text()), signal.SIGCONT)
        self.attendre(lambda: est_keltrove(self.port))

    # Ce que l’on en voit.
    def voir(self):
        """La dernière fois, si l’application n’est plus là."""
        vu = self.ordonner("voir")
        self.dernier.update(json.loads(vu) if vu else {})
        if self.dernier.pop("rouvrir", False):
            self.rouverte = self.processus.wait(PATIENCE) == 0
            self.lancer()
        return self.dernier

    def suite(self, voix):
        vu = self.voir()  # pour le journal aussi : la page répond alors à la sonde
        return list(self.lignes) if voix == "journal" else vu.get(voix, [])

    def etat(self, voix):
        if voix == "serveur":
            return "répond" if est_keltrove(self.port) else "parti"
        return self.vie() if voix == "application" else self.voir()[voix].replace("\n", " ").strip()

    def vie(self):
        etat = self.processus.poll()
        if etat is None:
            return "rouverte" if self.rouverte else "en marche"
        return f"sortie avec {etat}" if etat else "partie"


GESTES = {
    "lancer": BureauMacos.lancer,
    "le temps passe": lambda bureau: None,
    "le serveur meurt": BureauMacos.tuer_le_serveur,
    "le serveur gèle": lambda bureau: bureau.poser("gele"),
    "le serveur se dégèle": BureauMacos.degeler_le_serveur,
    "le serveur finit": lambda bureau: bureau.poser("finis"),
}


def jouer(scenario, essai, programme):
    bureau = BureauMacos(essai, programme)
    with bureau.restes:
        try:
            Partie(scenario, bureau, "cocoa").jouer()
        except Ecart as ecart:
            return [str(ecart)]
    return []
