"""Les fichiers du dépôt, tels que les essais des documents les lisent."""

import os
from fnmatch import fnmatchcase
from pathlib import Path

RACINE = Path(__file__).resolve().parents[2]
DOCUMENTS = ["README.md", "CONTRIBUER.md", "ARCHITECTURE.md", "JOURNAL-DES-VERSIONS.md"]
ECARTES = {".git", "build", "node_modules", "graines", "__pycache__"}


def lire(chemin):
    return (RACINE / chemin).read_text(errors="replace")


def _suivre():
    for dossier, sous_dossiers, noms in os.walk(RACINE):
        sous_dossiers[:] = [nom for nom in sous_dossiers if nom not in ECARTES]
        yield from (os.path.relpath(os.path.join(dossier, nom), RACINE) for nom in noms)


FICHIERS = sorted(_suivre())
# Ce que les documents décrivent : tout, sauf eux, les images et les listes que des outils écrivent.
SOURCES = {nom: lire(nom) for nom in FICHIERS if nom not in DOCUMENTS and not nom.endswith((".png", ".icns", ".pyc", "package-lock.json"))}


def est_la(chemin):
    return (RACINE / chemin).exists() or any(fnmatchcase(nom, chemin) for nom in FICHIERS)


def conclure(fautes, sinon):
    """Dit les fautes, une par ligne, et rend l’état de sortie."""
    fautes = list(fautes)
    print("\n".join(fautes) or sinon)
    return 1 if fautes else 0
