"""Les déclarations qui accompagnent les métadonnées : le cadre de chaque nom, les énumérations, ce qui est optionnel
dans un protocole, et les types d’énumération que la base efface."""
import re
from dataclasses import dataclass, field
from pathlib import Path

A_PART = {"index.d.ts", "Runtime.d.ts"}


@dataclass
class Declarations:
    cadre: dict = field(default_factory=dict)  # classe ou protocole → son cadre
    optionnels: set = field(default_factory=set)  # (protocole, membre)
    enumerations: dict = field(default_factory=dict)  # nom → (cadre, [(membre, valeur)])
    constantes: dict = field(default_factory=dict)  # nom → cadre
    fonctions: dict = field(default_factory=dict)  # cadre → [nom]
    types: dict = field(default_factory=dict)  # (type, de classe, membre) → (types des arguments, type rendu)

    def enumeration(self, texte):
        """L’énumération que ce type désigne, s’il en est une."""
        trouvee = re.fullmatch(r"interop\.Enum<typeof (\w+)>", texte.strip())
        return trouvee[1] if trouvee and trouvee[1] in self.enumerations else None


def lire(dossier):
    tout = Declarations()
    for fichier in sorted((Path(dossier) / "types").glob("*.d.ts")):
        if fichier.name not in A_PART:
            _Lecture(tout, fichier.name.removesuffix(".d.ts")).lire(fichier.read_text(errors="replace"))
    return tout


def couper(arguments):
    """Les arguments, coupés aux seules virgules qui ne sont dans aucun crochet."""
    morceaux, profondeur, debut = [], 0, 0
    for i, signe in enumerate(arguments):
        if signe in "<({[":
            profondeur += 1
        elif signe in ")}]" or (signe == ">" and arguments[i - 1] != "="):
            profondeur -= 1
        elif signe == "," and profondeur == 0:
            morceaux.append(arguments[debut:i])
            debut = i + 1
    return morceaux + [arguments[debut:]] if arguments[debut:].strip() else morceaux


def type_de(argument):
    return argument.split(":", 1)[1].strip() if ":" in argument else argument


class _Lecture:
    """Un fichier, ligne à ligne : dans un type, dans une énumération, ou entre les deux."""

    def __init__(self, tout, cadre):
        self.tout, self.cadre = tout, cadre
        self.type = self.enumeration = None

    def lire(self, texte):
        for ligne in texte.splitlines():
            if ligne.startswith("declare "):
                self._ouvrir(ligne)
            elif self.enumeration and (trouve := re.match(r"  (\w+): (-?\d+)", ligne)):
                self.tout.enumerations[self.enumeration][1].append((trouve[1], int(trouve[2])))
            elif self.type:
                self._noter_membre(ligne)

    def _ouvrir(self, ligne):
        self.type = self.enumeration = None
        sorte, nom = re.match(r"declare (\w+) (\w+)", ligne).groups()
        if sorte in ("class", "interface"):
            self.type = nom
            self.tout.cadre[nom] = self.cadre
        elif sorte == "function":
            self.tout.fonctions.setdefault(self.cadre, []).append(nom)
        elif sorte == "const" and ligne.rstrip().endswith("{"):
            self.enumeration = nom
            self.tout.enumerations[nom] = (self.cadre, [])
        elif sorte == "const":
            self.tout.constantes[nom] = self.cadre

    def _noter_membre(self, ligne):
        if trouve := re.match(r"  (?:readonly )?(\w+)\?", ligne):
            self.tout.optionnels.add((self.type, trouve[1]))
        if trouve := re.match(r"  (static )?(\w+)\??\((.*)\): (.*);$", ligne):
            arguments = [type_de(argument) for argument in couper(trouve[3])]
            self.tout.types[self.type, bool(trouve[1]), trouve[2]] = (arguments, trouve[4])
        elif trouve := re.match(r"  (static )?(?:readonly )?(\w+)\??: (.*);$", ligne):
            self.tout.types[self.type, bool(trouve[1]), trouve[2]] = ([], trouve[3])
