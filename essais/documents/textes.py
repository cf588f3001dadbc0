"""Ce qu’une coupe au hasard laisse dans le code, et le retrait que .editorconfig promet."""

import re
import sys
from fnmatch import fnmatchcase
from pathlib import Path

from depot import SOURCES, conclure, lire

CODE = (".cpp", ".hpp", ".mm", ".c", ".js", ".mjs", ".py", ".sh")
LARGEUR = 110


def coupes():
    """Un mot en deux, un guillemet loin de ce qu’il entoure, un bout de chaîne seul sur sa ligne."""
    for chemin, texte in SOURCES.items():
        if not chemin.endswith(CODE):
            continue
        lignes = texte.split("\n")
        for numero, (ligne, suite) in enumerate(zip(lignes, [*lignes[1:], ""]), 1):
            commentaire = re.match(r"\s*(?://|#) (.*)", ligne)
            if commentaire and re.search(r"[a-zé]- [a-zé]+\b", commentaire[1]):
                yield f"{chemin}:{numero} : un mot coupé par « - »"
            if commentaire and (commentaire[1].endswith("«") or commentaire[1].startswith("»")):
                yield f"{chemin}:{numero} : un guillemet loin de ce qu’il entoure"
            bout = re.fullmatch(r'\s*"([^"\\]*) "', ligne)
            if bout and re.match(r'\s*"', suite) and len(ligne) + len(suite.strip()) < LARGEUR:
                yield f"{chemin}:{numero} : « {bout[1]} », un bout de texte seul sur sa ligne"


def retraits():
    sections = re.findall(r"^\[(.+)\]\n((?:[^\[\n].*\n?|\n)*)", lire(".editorconfig"), re.M)
    promis = {motif: int(taille[1]) for motif, corps in sections if (taille := re.search(r"indent_size = (\d+)", corps))}
    for chemin, texte in SOURCES.items():
        if not chemin.endswith((".py", ".js", ".mjs", ".cpp")):
            continue
        voulu = [taille for motif, taille in promis.items() if fnmatchcase(Path(chemin).name, motif)][-1]
        ouvre = ":" if chemin.endswith(".py") else "{"
        vus = {len(retrait) for retrait in re.findall(rf"^(?:def|class|for|if|function|export function)\b.*{ouvre}\n( +)\S", texte, re.M)}
        if vus - {voulu}:
            yield f"{chemin} : un retrait de {max(vus - {voulu})}, là où .editorconfig en promet {voulu}"


if __name__ == "__main__":
    sys.exit(conclure([*coupes(), *retraits()], "Aucun texte abîmé ; les retraits sont ceux de .editorconfig."))
