"""Ce que les documents nomment existe : un chemin, une fonction, une étape du journal, une variable."""

import re
import sys
from pathlib import Path

from depot import DOCUMENTS, SOURCES, conclure, est_la, lire

FONCTION = re.compile(r"(\w+)(?:::|\.)(\w+)(?:\(\))?")


def porte(mot):
    """Un mot du code : il y figure en entier."""
    entier = re.compile(rf"(?<![\w-]){re.escape(mot)}(?![\w-])")
    return any(mot in texte and entier.search(texte) for texte in SOURCES.values())


def faute(nom):
    """Ce qui ne va pas dans ce que le document écrit entre accents graves ; rien si cela existe, ou n’est pas un nom."""
    if "/" in nom and re.fullmatch(r"[\w./*-]+", nom) and not nom.startswith(("build/", "/")):
        return None if est_la(nom) or not est_la(nom.split("/")[0]) else "n’existe pas"
    if porte(nom):
        return None
    if fonction := FONCTION.fullmatch(nom):
        classe, membre = fonction.groups()
        porteurs = [texte for chemin, texte in SOURCES.items() if Path(chemin).stem.split("_")[0] == classe or f"class {classe}" in texte]
        if porteurs:
            return None if any(re.search(rf"\b{membre}\b", texte) for texte in porteurs) else f"{classe} n’a pas de « {membre} »"
        return None if est_la(nom) else "rien ne se nomme ainsi"
    if re.fullmatch(r"[\w-]{4,}(\(\))?", nom, re.ASCII):
        return None if porte(nom.removesuffix("()")) or est_la(nom) else "rien ne se nomme ainsi"
    return None


def fautes(document):
    for numero, ligne in enumerate(lire(document).split("\n"), 1):
        if ligne.startswith("    "):
            continue
        for nom in re.findall(r"`([^`]+)`", ligne) + re.findall(r"\]\(([\w./-]+)\)", ligne):
            if ici := faute(nom):
                yield f"{document}:{numero} : {nom} : {ici}"


if __name__ == "__main__":
    sys.exit(conclure((une for document in DOCUMENTS for une in fautes(document)), "Tout ce que les documents nomment existe."))
