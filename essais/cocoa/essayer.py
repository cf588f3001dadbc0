"""Joue chaque scénario dans son processus, avec sa maison et son serveur, puis regarde ce qu’il laisse derrière lui."""

import ctypes
import json
import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

import parite
from cas import CAS, Cas

CONSTRUCTION = pathlib.Path(os.environ["KELTROVE_CONSTRUCTION"])
DOSSIER = CONSTRUCTION / "essais" / "cocoa"
PATIENCE = 150  # secondes ; un scénario abandonne de lui-même bien avant
VENUES_QUAND_ELLES_PEUVENT = {"sante", "page-contenu"}
PR_SET_CHILD_SUBREAPER = 36

CONFIGURATION = "GNUSTEP_USER_DEFAULTS_DIR='{reglages}'\nGNUSTEP_USER_DIR_LIBRARY='{maison}/GNUstep'\n"
# Ce que GNUstep dit de lui-même, quand une autre application vient de finir.
BRUIT_DE_GNUSTEP = "No handle for event"


def port_libre():
    with socket.socket() as prise:
        prise.bind(("127.0.0.1", 0))
        return prise.getsockname()[1]


def repond(port):
    with socket.socket() as prise:
        return prise.connect_ex(("127.0.0.1", port)) == 0


def programme_de(cas):
    return DOSSIER / "scenarios" if cas.nu else DOSSIER / "Keltrove.app" / "Keltrove"


class Essai:
    def __init__(self, nom, cas):
        self.nom, self.cas = nom, cas
        self.racine = pathlib.Path(tempfile.mkdtemp(prefix="keltrove cocoa é "))
        self.port = port_libre()

    def preparer(self):
        maison = self.racine / "maison"
        (maison / ".zelcor").mkdir(parents=True)
        (maison / ".zelcor" / "keltrove.json").write_text(json.dumps({"port": self.port}))
        application = self.racine / "application"
        application.mkdir()
        ressources = application / "ressources"
        if self.cas.serveur == "vrai":
            ressources.symlink_to(CONSTRUCTION / "ressources")
        elif self.cas.serveur:
            code = ressources / "keltrove"
            code.mkdir(parents=True)
            (code / "serveur.mjs").write_text(self.cas.serveur.replace("%PORT%", str(self.port)))
        elif self.cas.lanceur:
            ressources.mkdir()
            (ressources / "demarrer-keltrove.sh").write_text(self.cas.lanceur)
            (ressources / "demarrer-keltrove.sh").chmod(0o755)
        reglages = maison / "reglages"
        if self.cas.reglages_illisibles:
            reglages.write_text("un fichier, là où il faut un dossier")
        (self.racine / "GNUstep.conf").write_text(CONFIGURATION.format(maison=maison, reglages=reglages))

    def environnement(self):
        return {
            **{nom: valeur for nom, valeur in os.environ.items() if not nom.startswith("KELTROVE_")},
            "HOME": str(self.racine / "maison"),
            "GNUSTEP_CONFIG_FILE": str(self.racine / "GNUstep.conf"),
            "KELTROVE_EXECUTABLE_D_ESSAI": str(self.racine / "application" / "Keltrove"),
            "KELTROVE_SCENARIO": self.nom,
            "KELTROVE_PORT_D_ESSAI": str(self.port),
            # En deux : LD_PRELOAD coupe aux espaces.
            **({"LD_PRELOAD": "libsans_node.so", "LD_LIBRARY_PATH": str(DOSSIER)} if self.cas.sans_node else {}),
            **self.cas.environnement,
        }

    def jouer(self):
        programme = programme_de(self.cas)
        for tour in range(self.cas.lancements):
            fini = subprocess.run([programme], capture_output=True, text=True, errors="replace", timeout=PATIENCE,
                                  stdin=subprocess.DEVNULL, preexec_fn=self.rendre_les_signaux,
                                  env={**self.environnement(), "KELTROVE_LANCEMENT": str(tour)})
            yield from self.juger(fini)

    def code_du_voisin(self):
        if self.cas.voisin == "vrai":
            return CONSTRUCTION / "ressources" / "keltrove" / "serveur.mjs"
        code = self.racine / "voisin.mjs"
        code.write_text(self.cas.voisin.replace("%PORT%", str(self.port)))
        return code

    def rendre_les_signaux(self):
        """Ce que bash lance à l’arrière-plan ignore Ctrl+C ; et GNUstep prend à son compte celui que l’on n’écoute pas."""
        for fin in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            signal.signal(fin, signal.SIG_IGN if fin in self.cas.signaux_ignores else signal.SIG_DFL)

    def juger(self, fini):
        lignes = [ligne for ligne in fini.stderr.splitlines() if ligne]
        etapes = [ligne.split()[1] for ligne in lignes if ligne.startswith("  [keltrove] ")]
        etapes = [etape for etape in etapes if etape not in VENUES_QUAND_ELLES_PEUVENT]
        bruit = [ligne for ligne in lignes
                 if not ligne.startswith("  [keltrove] ") and BRUIT_DE_GNUSTEP not in ligne]
        if self.cas.dit and not any(re.fullmatch(self.cas.dit, ligne) for ligne in lignes):
            yield f"ne dit pas : {self.cas.dit}"
        if fini.returncode != 0:
            yield f"état {fini.returncode}"
        if bruit:
            yield "dit sur la sortie d’erreur :\n    " + "\n    ".join(bruit[:60])
        if etapes[len(etapes) - len(self.cas.fin):] != self.cas.fin:
            yield f"finit par {etapes}, non par {self.cas.fin}"
        if bool(self.cas.voisin or self.cas.reste) != repond(self.port):
            yield "le serveur répond encore" if repond(self.port) else "le serveur ne répond plus"

    def essayer(self):
        voisin = None
        self.preparer()
        try:
            if self.cas.voisin:
                voisin = subprocess.Popen(["node", self.code_du_voisin()], env=self.environnement(),
                                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
                while not repond(self.port):
                    time.sleep(0.01)
            return list(self.jouer())
        except subprocess.TimeoutExpired as trop_long:
            return [f"ne finit pas : {(trop_long.stderr or b'').decode(errors='replace')}"]
        finally:
            if voisin:
                os.killpg(voisin.pid, signal.SIGKILL)
                voisin.wait()
            shutil.rmtree(self.racine, ignore_errors=True)


def finir_les_orphelins():
    """Un serveur que son application n’arrête pas nous revient, et nous l’arrêtons."""
    enfants = pathlib.Path(f"/proc/{os.getpid()}/task/{os.getpid()}/children").read_text().split()
    for enfant in map(int, enfants):
        os.kill(enfant, signal.SIGKILL)
        os.waitpid(enfant, 0)


def cas(nom):
    return parite.cas_de(parite.TABLE[nom]) if nom in parite.TABLE else CAS.get(nom, Cas())


def jouer_la_parite(nom):
    essai = Essai(parite.SCENARIO, cas(nom))
    try:
        return parite.jouer(parite.TABLE[nom], essai, programme_de(essai.cas))
    finally:
        shutil.rmtree(essai.racine, ignore_errors=True)


def essayer(nom):
    debut = time.monotonic()
    fautes = jouer_la_parite(nom) if nom in parite.TABLE else Essai(nom, cas(nom)).essayer()
    print(f"{'ÉCHEC ' if fautes else 'réussi'} {nom} ({time.monotonic() - debut:.1f} s)", flush=True)
    for faute in fautes:
        print(f"  {faute}", flush=True)
    return not fautes


def principal():
    ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
    noms = subprocess.run([DOSSIER / "scenarios"], capture_output=True, text=True, check=True).stdout.split()
    noms = [nom for nom in noms if nom != parite.SCENARIO] + list(parite.TABLE)
    inconnus = CAS.keys() - set(noms)
    if inconnus:
        sys.exit(f"Aucun scénario de ce nom : {inconnus}")
    part, parts = map(int, sys.argv[1].split("/"))
    filtres = [filtre.lower() for filtre in sys.argv[2:]]
    choisis = [nom for nom in noms if not filtres or any(filtre in nom.lower() for filtre in filtres)]
    if not choisis:
        sys.exit("Aucun scénario ne porte ce nom.")
    # Les plus longs d’abord, et répartis.
    choisis.sort(key=lambda nom: -cas(nom).duree)
    choisis = choisis[part::parts]
    reussis = sum(map(essayer, choisis))
    finir_les_orphelins()
    sys.exit(0 if reussis == len(choisis) else 1)


if __name__ == "__main__":
    principal()
