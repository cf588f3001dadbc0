"""La table des scénarios, lue : scenarios.txt dit ce que ses mots veulent dire."""

import dataclasses
import pathlib
import re

TABLE = pathlib.Path(__file__).with_name("scenarios.txt")
SERVEUR = pathlib.Path(__file__).with_name("serveur.mjs")
JOKERS = {"<nombre>": r"\d+(\.\d+)?", "<texte>": ".*"}


@dataclasses.dataclass
class Ligne:
    numero: int
    voix: str
    texte: str
    quand_elle_peut: bool
    joueurs: list

    def convient(self, vue, port):
        morceaux = re.split("(<nombre>|<texte>)", self.texte.replace("<port>", str(port)))
        return re.fullmatch("".join(JOKERS.get(morceau) or re.escape(morceau) for morceau in morceaux), vue) is not None


@dataclasses.dataclass
class Geste:
    nom: str
    objet: str
    attendus: list = dataclasses.field(default_factory=list)


@dataclasses.dataclass
class Scenario:
    nom: str
    depart: dict = dataclasses.field(default_factory=dict)
    gestes: list = dataclasses.field(default_factory=list)


def couper(texte):
    nom, _, reste = texte.partition(" : ")
    return nom, reste


def lire_l_attendu(numero, texte):
    *mots, joueurs = re.split(r"((?: @[\w-]+)*)$", texte)[:2]
    texte = mots[0]
    quand_elle_peut = texte.startswith("~ ")
    texte = texte.removeprefix("~ ")
    voix, dit = ("journal", texte) if texte.startswith("[keltrove] ") else couper(texte)
    return Ligne(numero, voix, dit, quand_elle_peut, joueurs.replace("@", "").split())


def lire():
    scenarios = []
    for numero, ligne in enumerate(TABLE.read_text().splitlines(), 1):
        if not ligne or ligne.startswith("#"):
            continue
        if ligne.startswith("== "):
            scenarios.append(Scenario(ligne.removeprefix("== ")))
        elif ligne.startswith("> "):
            scenarios[-1].gestes.append(Geste(*couper(ligne.removeprefix("> "))))
        elif ligne.startswith("  "):
            scenarios[-1].gestes[-1].attendus.append(lire_l_attendu(numero, ligne.strip()))
        else:
            cle, valeur = couper(ligne)
            scenarios[-1].depart[cle] = valeur
    return scenarios


SCENARIOS = lire()
# Là où l’ordre ne se dit pas : celles-ci peuvent venir aussi là où on ne les attend pas.
QUAND_ELLES_PEUVENT = tuple(" ".join(ligne.texte.split()[:2]) for scenario in SCENARIOS for geste in scenario.gestes
                            for ligne in geste.attendus if ligne.quand_elle_peut)
