"""Le dessin des anneaux dit vrai : chaque #include y a sa flèche ou son anneau, et chaque flèche son #include. Dans un
même dossier non plus, aucun fichier n’inclut, même de loin, ce qui l’inclut."""

import re
import sys
import xml.etree.ElementTree as xml
from graphlib import CycleError, TopologicalSorter
from pathlib import Path

RACINE = Path(__file__).resolve().parents[2]
DESSIN = RACINE / "paquet/images/anneaux.svg"
SOURCES = (".cpp", ".hpp", ".mm", ".h")
BOITES_A_OUTILS = re.compile(r"<(g[dts]k|glib|gio|gobject|webkit|AppKit|Cocoa|Foundation|WebKit)")
SYSTEMES = re.compile(r"^#\s*(?:if|elif).*(__linux__|__APPLE__|_WIN32|__gnu_linux__)")


def lire_le_dessin(chemin):
    """Le rang de l’anneau de chaque dossier, du plus à l’intérieur au plus à l’extérieur, et les flèches."""
    rangs, fleches = {}, set()
    anneaux = [g for g in xml.parse(chemin).iter() if "data-anneau" in g.attrib]
    for rang, anneau in enumerate(reversed(anneaux)):
        for element in anneau.iter():
            if "data-dossier" in element.attrib:
                rangs[element.get("data-dossier")] = rang
            if "data-de" in element.attrib:
                fleches.add((element.get("data-de"), element.get("data-vers")))
    return rangs, fleches


def inclusions(rangs):
    """(fichier, ligne, dossier du fichier, dossier inclus), pour chaque #include d’un dossier dans un autre."""
    for dossier in rangs:
        for fichier in sorted((RACINE / dossier).rglob("*")):
            if fichier.suffix not in SOURCES:
                continue
            for numero, ligne in enumerate(fichier.read_text().splitlines(), 1):
                inclus = re.match(r'#\s*(?:include|import) "(\w+)/', ligne)
                if inclus and inclus[1] != dossier:
                    yield fichier.relative_to(RACINE), numero, dossier, inclus[1]


def fautes(rangs, fleches):
    vues = set()
    for fichier, ligne, de, vers in inclusions(rangs):
        vues.add((de, vers))
        if vers not in rangs:
            yield f"{fichier}:{ligne} inclut « {vers}/ », que le dessin n’a pas"
        elif rangs[vers] > rangs[de] or (rangs[vers] == rangs[de] and (de, vers) not in fleches):
            yield f"{fichier}:{ligne} inclut « {vers}/ », ce que le dessin ne permet pas à « {de}/ »"
    for de, vers in sorted(fleches - vues):
        yield f"le dessin a une flèche de « {de}/ » à « {vers}/ » ; aucun #include ne la suit"


def unite(chemin):
    """Un en-tête et ce qui l’écrit, pour chaque système, ne font qu’un."""
    return re.sub(r"(_linux|_macos)?\.\w+$", "", str(chemin))


def ronds(rangs):
    inclus = {}
    for fichier in (f for dossier in rangs for f in (RACINE / dossier).rglob("*") if f.suffix in SOURCES):
        chez = unite(fichier.relative_to(RACINE))
        lui = {unite(nom) for nom in re.findall(r'^#\s*(?:include|import) "(\w+/[^"]+)"', fichier.read_text(), re.M)}
        inclus.setdefault(chez, set()).update(lui - {chez})
    try:
        TopologicalSorter(inclus).prepare()
    except CycleError as rond:
        yield "s’incluent en rond : " + ", ".join(rond.args[1])


def fautes_du_comportement(rangs):
    """Ce que le dessin et les documents disent du comportement : ni boîte à outils, ni #ifdef d’un système."""
    dehors = max(rangs.values())
    for dossier in (nom for nom, rang in rangs.items() if rang < dehors):
        for fichier in sorted((RACINE / dossier).rglob("*")):
            if fichier.suffix not in SOURCES:
                continue
            for numero, ligne in enumerate(fichier.read_text().splitlines(), 1):
                ou = f"{fichier.relative_to(RACINE)}:{numero}"
                if ligne.startswith("#") and BOITES_A_OUTILS.search(ligne):
                    yield f"{ou} : une boîte à outils dans le comportement"
                if SYSTEMES.match(ligne):
                    yield f"{ou} : un système nommé dans une condition, plutôt que dans un fichier à part"


if __name__ == "__main__":
    rangs, fleches = lire_le_dessin(DESSIN)
    trouvees = [*fautes(rangs, fleches), *ronds(rangs), *fautes_du_comportement(rangs)]
    print("\n".join(trouvees) or f"{len(rangs)} dossiers, {len(fleches)} flèches : le dessin dit vrai.")
    sys.exit(bool(trouvees))
