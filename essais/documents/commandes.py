"""Les commandes des documents : leur outil, leurs fichiers, leurs préréglages et leurs filtres existent.

    commandes.py <dossier de construction>
"""

import ast
import json
import os
import re
import shlex
import sys
from fnmatch import fnmatchcase
from pathlib import Path

from depot import DOCUMENTS, FICHIERS, RACINE, SOURCES, conclure, est_la, lire

# Ce que le système apporte, et dont il n’y a rien d’autre à contrôler.
DEHORS = {"apt", "echo", "find", "keltrove", "mkdir"}
# De même sur un Mac.
DEHORS |= {"brew", "codesign", "ditto", "spctl", "xcrun"}
# Ce qui en lance un autre.
LANCEURS = {"dbus-run-session", "export", "sudo"}
PREREGLAGES = {sorte: {p["name"]: p for p in json.loads(lire("CMakePresets.json"))[sorte]}
               for sorte in ("configurePresets", "buildPresets", "testPresets")}


def blocs(texte):
    """(numéro, ligne) de chaque ligne de commandes : celles en retrait de quatre espaces, après une ligne vide."""
    dedans = True
    for numero, ligne in enumerate(texte.split("\n"), 1):
        dedans = not ligne.strip() or (dedans and ligne.startswith("    "))
        if dedans and ligne.strip():
            yield numero, ligne.strip()


def commandes(ligne):
    """Chaque commande d’une ligne : son dossier, ses variables, ses mots."""
    dossier = "."
    ligne = re.sub(r"\s+#\s.*$", "", ligne)
    ligne = re.sub(r"\$\([^)]*\)", "SORTIE", ligne)
    for morceau in re.split(r"&&|\|", ligne.replace("(cd ", "cd ").rstrip(")")):
        mots, variables = shlex.split(morceau), []
        while mots and (mots[0] in LANCEURS or re.fullmatch(r"\w+=.*", mots[0])):
            variables.append(mots.pop(0).split("=", 1)[0])
        if mots[:1] == ["cd"]:
            dossier = mots[1]
        elif mots:
            yield dossier, variables, mots


def suivant(mots, option):
    return mots[mots.index(option) + 1] if option in mots else None


def a_des_essais(nom):
    prereglage = PREREGLAGES["configurePresets"][nom]
    valeur = prereglage.get("cacheVariables", {}).get("KELTROVE_ESSAIS")
    return valeur == "ON" if valeur else "inherits" in prereglage and a_des_essais(prereglage["inherits"])


def de_cmake(mots, _dossier, _construction):
    sorte = "buildPresets" if "--build" in mots else "configurePresets"
    if (nom := suivant(mots, "--preset")) and nom not in PREREGLAGES[sorte]:
        yield f"le préréglage « {nom} » n’existe pas"
    for option in (mot[2:].split("=")[0] for mot in mots if mot.startswith("-DKELTROVE_")):
        if option not in lire("CMakeLists.txt") + lire("serveur/CMakeLists.txt"):
            yield f"CMake ne connaît pas {option}"


def de_ctest(mots, _dossier, _construction):
    nom = suivant(mots, "--preset") or Path(suivant(mots, "--test-dir") or "").name
    if nom not in PREREGLAGES["testPresets"]:
        yield f"le préréglage « {nom} » n’a pas d’essais à passer"
    elif not a_des_essais(nom):
        yield f"le préréglage « {nom} » ne construit pas d’essais"


def de_npm(mots, dossier, _construction):
    verbe = mots[2] if mots[1] == "run" else mots[1]
    if verbe != "ci" and verbe not in json.loads(lire(f"{dossier}/package.json"))["scripts"]:
        yield f"npm ne connaît pas « {verbe} »"


def de_node(mots, dossier, construction):
    motif = next((mot.split("=", 1)[1] for mot in mots if mot.startswith("--test-name-pattern=")), "")
    for nom in (mot for mot in mots[1:] if mot.endswith("js")):
        if nom.startswith("build/"):
            yield from d_un_programme([nom], dossier, construction)
        elif not est_la(chemin := os.path.normpath(f"{dossier}/{nom}")):
            yield f"{nom} n’existe pas"
        elif not re.search(motif, SOURCES[chemin]):
            yield f"aucun essai de {nom} ne répond à « {motif} »"


def de_gdb(mots, _dossier, _construction):
    for nom in (ordre.split()[1] for ordre in mots if ordre.startswith("break ")):
        classe, methode = nom.split("::")[-2:]
        if not any(re.search(rf"\b{classe}::{methode}\(", texte) for texte in SOURCES.values()):
            yield f"gdb ne trouverait pas {nom}"


def essais_de_bout_en_bout():
    """Leurs noms, comme essayer.py les donne, sans charger ce qu’ils demandent."""
    for nom in (nom for nom in FICHIERS if re.fullmatch(r"essais/bout-en-bout/essai_\w+\.py", nom)):
        for classe in (noeud for noeud in ast.parse(lire(nom)).body if isinstance(noeud, ast.ClassDef)):
            yield from (f"{Path(nom).stem}.{classe.name}.{noeud.name}" for noeud in classe.body if isinstance(noeud, ast.FunctionDef))
    for nom in re.findall(r"^== (\w+)$", lire("essais/parite/scenarios.txt"), re.M):
        yield f"essai_parite.{nom}"
    for noeud in ast.parse(lire("essais/bout-en-bout/essai_fautes.py")).body:
        if not isinstance(noeud, ast.Assign) or noeud.targets[0].id not in ("LANCE", "RATTACHE"):
            continue
        moments, *lignes = [ligne.split() for ligne in noeud.value.value.strip().split("\n")]
        for panne, *cases in lignes:
            yield from (f"essai_fautes.{noeud.targets[0].id.lower()}.{moment}.{panne}"
                        for moment, case in zip(moments, cases) if not case.startswith("."))


def d_un_programme(mots, _dossier, construction):
    """Un outil du dépôt, ou ce que la construction donne."""
    if mots[0].startswith("build/"):
        _, prereglage, reste = mots[0].split("/", 2)
        if prereglage not in PREREGLAGES["configurePresets"]:
            yield f"{mots[0]} : aucun préréglage ne construit là"
        elif not (construction / reste).exists():
            yield f"{mots[0]} : la construction ne donne pas ce fichier"
    elif not os.access(RACINE / mots[0], os.X_OK):
        yield f"{mots[0]} n’existe pas, ou ne s’exécute pas"
    elif mots[0] == "essais/bout-en-bout/lancer.sh":
        for filtre in mots[1:]:
            if not any(fnmatchcase(essai, f"*{filtre.lstrip('-')}*") for essai in essais_de_bout_en_bout()):
                yield f"aucun essai de bout en bout ne répond à « {filtre} »"
    elif len(mots) > 1 and re.fullmatch(r"--[\w-]+|[a-z-]{3,}", mots[1]) and mots[1] not in lire(mots[0]):
        yield f"{mots[0]} ne connaît pas « {mots[1]} »"


CONTROLES = {"cmake": de_cmake, "ctest": de_ctest, "npm": de_npm, "node": de_node, "gdb": de_gdb}


def fautes(ligne, construction):
    # À mettre dans la configuration d’un interpréteur : ce sont nos fichiers qu’elle lit.
    if lu := re.search(r"\$KELTROVE_INTEGRATION/([\w.]+)", ligne):
        if not est_la(f"serveur/integration/{lu[1]}"):
            yield f"serveur/integration/{lu[1]} n’existe pas"
        return
    for dossier, variables, mots in commandes(ligne):
        if not est_la(dossier):
            yield f"le dossier {dossier} n’existe pas"
        for nom in (nom for nom in variables if nom.startswith("KELTROVE_")):
            if not any(nom in texte for texte in SOURCES.values()):
                yield f"rien ne lit {nom}"
        if mots[0] in CONTROLES or "/" in mots[0]:
            yield from CONTROLES.get(mots[0], d_un_programme)(mots, dossier, construction)
        elif mots[0] not in DEHORS:
            yield f"cet essai ne sait pas contrôler « {mots[0]} »"


if __name__ == "__main__":
    trouvees = (f"{document}:{numero} : {faute}" for document in DOCUMENTS for numero, ligne in blocs(lire(document))
                for faute in fautes(ligne, Path(sys.argv[1]).resolve()))
    sys.exit(conclure(trouvees, "Chaque commande des documents a de quoi se taper."))
