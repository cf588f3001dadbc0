"""Ce qu’il faut à chaque scénario : son serveur, son environnement, et comment son journal doit finir."""

import dataclasses

ARRETE = ["arret-demande", "arret-fini"]
LAISSE = ["quitte-sans-toucher-au-serveur"]


@dataclasses.dataclass
class Cas:
    serveur: str = "vrai"  # celui qui accompagne l’application, ou un code à la place ; vide : aucun
    voisin: bool = False  # un serveur tourne déjà
    fin: list = dataclasses.field(default_factory=lambda: ARRETE)
    environnement: dict = dataclasses.field(default_factory=dict)
    nu: bool = False  # lancé hors de son paquet
    reglages_illisibles: bool = False
    lancements: int = 1
    duree: int = 0  # en secondes, pour ne pas finir par lui


CAS = {}
