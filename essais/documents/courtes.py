"""Les commandes courtes des documents, courues pour de vrai.

    courtes.py <dossier de construction>
"""

import json
import os
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import urllib.request
from pathlib import Path

from commandes import blocs, commandes
from depot import DOCUMENTS, RACINE, conclure, lire

CONSTRUCTION = Path(sys.argv[1]).resolve()
LIGNES = [ligne for document in DOCUMENTS for _, ligne in blocs(lire(document))]


def courir(*mots, **options):
    return subprocess.run(mots, capture_output=True, text=True, timeout=60, **options)


def des_essais_unitaires():
    """Chaque filtre trouve des essais ; ceux que l’on lance sans ctest, qui nous lance, passent."""
    for ligne in LIGNES:
        for _, _, mots in commandes(ligne):
            if mots[0] == "ctest":
                passe = courir("ctest", "--test-dir", CONSTRUCTION, "-N", "-R", mots[mots.index("-R") + 1])
            elif mots[0].endswith("/essais_unitaires"):
                passe = courir(CONSTRUCTION / "essais/unitaires/essais_unitaires", *mots[1:])
            else:
                continue
            if passe.returncode != 0 or re.search(r"Total Tests: 0$|^Running 0 tests|0 tests from 0", passe.stdout, re.M):
                yield f"« {ligne} » échoue, ou ne trouve aucun essai :\n{passe.stdout[-2000:]}"


def la_signature(dossier):
    """Les trois lignes du README signent un dossier et le vérifient ; un octet changé se voit, sauf dans les modules de Node."""
    (dossier / "mon-dossier/node_modules").mkdir(parents=True)
    modules = dossier / "mon-dossier/node_modules/module.js"
    code = dossier / "mon-dossier/serveur.mjs"
    for fichier in (modules, code):
        fichier.write_text("export {};\n")
    lignes = [ligne for ligne in LIGNES if re.match(r"outils/signer-inventaire|keltrove verifier-inventaire mon", ligne)]
    programme = f"{CONSTRUCTION}/keltrove"
    commande = " && ".join(lignes).replace("outils/", f"{RACINE}/outils/").replace("keltrove verifier", f"{programme} verifier")
    passe = courir("sh", "-c", commande, cwd=dossier)
    if len(lignes) != 3 or passe.returncode != 0:
        yield f"les {len(lignes)} lignes qui signent échouent : {passe.stdout}{passe.stderr}"
    for fichier, attendu in ((modules, 0), (code, 1)):
        fichier.write_text("export { };\n")
        passe = courir(programme, "verifier-inventaire", "mon-dossier", "publique.pem", cwd=dossier)
        if passe.returncode != attendu or bool(passe.stdout + passe.stderr) != bool(attendu):
            yield f"{fichier.name} changé : l’état n’est pas {attendu}, que disent les documents, ou ce qui s’imprime"


def le_serveur_seul(dossier):
    """La ligne qui lance le serveur seul donne une page, et SIGTERM le finit."""
    ligne = next((ligne for ligne in LIGNES if ligne.endswith("ressources/keltrove/serveur.mjs")), None)
    if ligne is None:
        yield "aucun document ne dit comment lancer le serveur seul"
        return
    with socket.socket() as prise:
        prise.bind(("127.0.0.1", 0))
        port = prise.getsockname()[1]
    os.makedirs(dossier / ".zelcor")
    (dossier / ".zelcor/keltrove.json").write_text(json.dumps({"port": port}))
    serveur = subprocess.Popen([shutil.which("node"), CONSTRUCTION / "ressources/keltrove/serveur.mjs"],
                               stdout=subprocess.PIPE, text=True, env={**os.environ, "HOME": str(dossier)})
    try:
        dit = serveur.stdout.readline()
        if f"http://127.0.0.1:{port}/" not in dit:
            yield f"le serveur seul dit « {dit.strip()} », sans l’adresse de sa page"
        elif "keltrove-jeton" not in urllib.request.urlopen(f"http://127.0.0.1:{port}/", timeout=30).read().decode():
            yield "le serveur seul ne donne pas sa page"
        serveur.send_signal(signal.SIGTERM)
        if serveur.wait(timeout=30) != 0:
            yield f"le serveur seul finit sur l’état {serveur.returncode}"
    finally:
        serveur.kill()
        serveur.stdout.close()


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as un, tempfile.TemporaryDirectory() as autre:
        trouvees = [*des_essais_unitaires(), *la_signature(Path(un)), *le_serveur_seul(Path(autre))]
    sys.exit(conclure(trouvees, "Les commandes courtes des documents marchent."))
