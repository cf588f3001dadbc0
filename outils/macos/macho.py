"""Lire un fichier Mach-O de 64 bits : ses commandes, ses sections, ses symboles et ses renvois."""
import struct
from dataclasses import dataclass

MAGIE, MAGIE_UNIVERSELLE = 0xFEEDFACF, 0xCAFEBABE
ARCHITECTURES = {0x100000C: "arm64", 0x1000007: "x86_64"}
SEGMENT, SYMBOLES, SIGNATURE, VERSION_MINIMALE = 0x19, 0x2, 0x1D, 0x32
BIBLIOTHEQUES, CHEMIN_DE_RECHERCHE = (0xC, 0x80000018, 0x8000001F), 0x8000001C


@dataclass
class Section:
    nom: str
    adresse: int
    taille: int
    place: int
    place_des_renvois: int
    nombre_de_renvois: int


@dataclass
class Symbole:
    nom: str
    defini: bool
    adresse: int


def tranches(octets):
    """Chaque architecture d’un fichier universel, ou la seule qu’il porte."""
    if struct.unpack_from(">I", octets)[0] != MAGIE_UNIVERSELLE:
        return [octets]
    entetes = [struct.unpack_from(">5I", octets, 8 + 20 * i) for i in range(struct.unpack_from(">I", octets, 4)[0])]
    return [octets[place:place + taille] for _, _, place, taille, _ in entetes]


class Fichier:
    def __init__(self, octets):
        self.octets = octets
        magie, processeur, _, _, self._combien, _, self.drapeaux, _ = struct.unpack_from("<8I", octets)
        if magie != MAGIE:
            raise ValueError("ce n’est pas un fichier Mach-O de 64 bits")
        self.architecture = ARCHITECTURES.get(processeur, hex(processeur))
        self.sections, self.symboles = [], []
        for commande, place in self.commandes():
            if commande == SEGMENT:
                self._lire_sections(place)
            elif commande == SYMBOLES:
                self._lire_symboles(place)

    def commandes(self):
        """(genre, place) de chaque commande."""
        place = 32
        for _ in range(self._combien):
            genre, taille = struct.unpack_from("<2I", self.octets, place)
            yield genre, place
            place += taille

    def texte(self, place):
        return self.octets[place:self.octets.index(b"\0", place)].decode("utf8", "replace")

    def texte_de_commande(self, place):
        return self.texte(place + struct.unpack_from("<I", self.octets, place + 8)[0])

    def _lire_sections(self, place):
        for i in range(struct.unpack_from("<I", self.octets, place + 64)[0]):
            ici = place + 72 + 80 * i
            nom = self.octets[ici:ici + 16].rstrip(b"\0").decode()
            adresse, taille, debut, _, renvois, combien = struct.unpack_from("<2Q4I", self.octets, ici + 32)
            self.sections.append(Section(nom, adresse, taille, debut, renvois, combien))

    def _lire_symboles(self, place):
        table, combien, textes, _ = struct.unpack_from("<4I", self.octets, place + 8)
        for i in range(combien):
            nom, genre, _, _, adresse = struct.unpack_from("<IBBHQ", self.octets, table + 16 * i)
            self.symboles.append(Symbole(self.texte(textes + nom), bool(genre & 0xE), adresse))

    def texte_a_l_adresse(self, adresse, nom_de_section):
        for section in self.sections:
            if section.nom == nom_de_section and section.adresse <= adresse < section.adresse + section.taille:
                return self.texte(section.place + adresse - section.adresse)
        return None

    def renvois(self, nom_de_section):
        """(adresse du renvoi, symbole visé ou rien, adresse visée) dans les sections de ce nom."""
        for section in (s for s in self.sections if s.nom == nom_de_section):
            for i in range(section.nombre_de_renvois):
                ou, mot = struct.unpack_from("<2I", self.octets, section.place_des_renvois + 8 * i)
                ecart = struct.unpack_from("<Q", self.octets, section.place + ou)[0]
                symbole = self.symboles[mot & 0xFFFFFF] if mot >> 27 & 1 else None
                yield section.adresse + ou, symbole, ecart + (symbole.adresse if symbole else 0)
