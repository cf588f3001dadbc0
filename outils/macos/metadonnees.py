"""Les métadonnées d’Objective-C que publie un lanceur de scripts pour macOS : une base binaire de classes, de
protocoles et de signatures. Ce module la lit, et ne connaît que son format.

La base donne les sélecteurs et les types du langage ; elle ne dit ni les énumérations, ni l’optionnel, ni le nul :
les premières sont dans les déclarations (declarations.py)."""
import struct
from dataclasses import dataclass, field
from pathlib import Path

BASE = "build/RelWithDebInfo/NativeScript.apple.node/macos-arm64/NativeScript.framework/Versions/0.1.0/NativeScript"
MARQUE = b"NSMD\x01\x00"
DEBUT_DES_TEXTES = 38

SUITE = 0x80000000  # un autre élément suit, ou une partie facultative est là
RIEN = 0x7FFFFFFF

PROPRIETE, LECTURE_SEULE, DE_CLASSE, DE_METHODE, DERNIER = 1, 2, 8, 0x10, 0x80

# Les sortes de types qui s’écrivent sans rien lire de plus.
SIMPLES = dict(enumerate(
    ["char", "int", "short", "NSInteger", "NSInteger", "unsigned char", "unsigned int", "unsigned short", "NSUInteger",
     "NSUInteger", "float", "double", "BOOL", "void", "const char *", "id"]))
SIMPLES |= {18: "instancetype", 19: "NSString *", 20: "NSMutableString *", 21: "Class", 22: "SEL", 26: "void *", 28: "BOOL"}
PROTOCOLES, CLASSE, TABLEAUX, STRUCTURE, POINTEUR, FONCTION, BLOC = 16, 17, (23, 32, 33, 34), 24, 25, 27, 29

# Celles que commun.h définit ; les autres restent opaques.
STRUCTURES_CONNUES = {"CGRect", "CGPoint", "CGSize", "_NSRange", "NSEdgeInsets", "CGAffineTransform"}


@dataclass
class Membre:
    """Une méthode, ou une propriété et ses accesseurs."""
    nom: str
    de_classe: bool
    signature: int
    propriete: bool = False
    accesseur: str = ""
    mutateur: str = ""

    def selecteurs(self):
        signe = "+" if self.de_classe else "-"
        noms = [self.accesseur, self.mutateur] if self.propriete else [self.nom]
        return {signe + nom for nom in noms if nom}


@dataclass
class Type:
    """Une classe ou un protocole."""
    protocoles: list
    membres: list = field(default_factory=list)
    parente: str | None = None

    def selecteurs(self):
        return {selecteur for membre in self.membres for selecteur in membre.selecteurs()}


class Base:
    def __init__(self, dossier):
        brut = (Path(dossier) / BASE).read_bytes()
        self.octets = brut[brut.index(MARQUE):]
        (self._constantes, self._enumerations, self._signatures, self._fonctions, self._protocoles, self._classes,
         self._structures, _) = struct.unpack_from("<8I", self.octets, len(MARQUE))
        self._noms_classes, self._noms_protocoles = {}, {}
        self.classes, self.protocoles = {}, {}
        self.structures = set()
        self.fonctions_citees = {}  # alias d’un bloc ou d’une fonction → sa déclaration
        self._lire_classes()
        self._lire_protocoles()
        self._nommer()

    def _entier(self, ou):
        return struct.unpack_from("<I", self.octets, ou)[0]

    def _texte(self, ou):
        debut = DEBUT_DES_TEXTES + ou
        return self.octets[debut:self.octets.index(b"\0", debut)].decode("utf8", "replace")

    def _references(self, ou):
        trouvees = []
        while True:
            reference = self._entier(ou)
            ou += 4
            trouvees.append(reference & ~SUITE)
            if not reference & SUITE:
                return trouvees, ou

    def _membres(self, ou, d_un_protocole):
        membres = []
        while True:
            drapeaux = self.octets[ou]
            ou += 1
            de_classe = bool(drapeaux & DE_CLASSE)
            if drapeaux & PROPRIETE:
                nom, accesseur, signature = struct.unpack_from("<3I", self.octets, ou)
                ou += 12
                membre = Membre(self._texte(nom), de_classe, signature, True, self._texte(accesseur))
                if not drapeaux & LECTURE_SEULE:
                    membre.mutateur = self._texte(self._entier(ou))
                    ou += 8
                membres.append(membre)
            elif drapeaux & DE_METHODE or not d_un_protocole:
                selecteur, signature = struct.unpack_from("<2I", self.octets, ou)
                ou += 8
                membres.append(Membre(self._texte(selecteur), de_classe, signature))
            if not drapeaux & DERNIER:
                return membres, ou

    def _lire_classes(self):
        ou = self._classes
        while ou < self._structures:
            place, nom = ou - self._classes, self._entier(ou)
            ou += 8
            protocoles, membres = [], []
            if nom & SUITE:
                protocoles, ou = self._references(ou)
            parente = self._entier(ou)
            ou += 4
            if parente & SUITE:
                membres, ou = self._membres(ou, False)
            nom = self._texte(nom & ~SUITE)
            self._noms_classes[place] = nom
            self.classes[nom] = Type(protocoles, membres, parente & ~SUITE)

    def _lire_protocoles(self):
        ou = self._protocoles
        while ou < self._classes:
            place, nom = ou - self._protocoles, self._entier(ou)
            ou += 4
            protocoles = []
            if nom & SUITE:
                protocoles, ou = self._references(ou)
            membres, ou = self._membres(ou, True)
            nom = self._texte(nom & ~SUITE)
            self._noms_protocoles[place] = nom
            self.protocoles[nom] = Type(protocoles, membres)

    def _nommer(self):
        for type_ in (*self.classes.values(), *self.protocoles.values()):
            type_.protocoles = self._nommer_protocoles(type_.protocoles)
        for classe in self.classes.values():
            classe.parente = self._noms_classes.get(classe.parente)

    def _nommer_protocoles(self, places):
        return [self._noms_protocoles[place] for place in places if place in self._noms_protocoles]

    def constantes(self):
        """nom → son type en C, ou sa valeur."""
        trouvees, ou = {}, self._constantes
        while ou < self._enumerations:
            nom, genre = self._texte(self._entier(ou)), self.octets[ou + 4]
            if genre == 0:
                trouvees[nom], ou, _ = self.type_en_c(ou + 5)
            elif genre in (1, 2):
                trouvees[nom] = struct.unpack_from("<q" if genre == 1 else "<d", self.octets, ou + 5)[0]
                ou += 13
            else:
                ou += 9
        return trouvees

    def fonctions(self):
        """nom → sa signature."""
        places = range(self._fonctions, self._protocoles, 8)
        return {self._texte(self._entier(ou)): self._entier(ou + 4) for ou in places}

    def signature(self, place):
        """Le type rendu puis ceux des arguments, écrits en C ; rien si elle n’est pas connue."""
        if place == RIEN:
            return None
        ou, types = self._signatures + (place & ~SUITE), []
        while True:
            type_, ou, suite = self.type_en_c(ou)
            types.append(type_)
            if not suite:
                return types

    def type_en_c(self, ou):
        """Le type lu ici, la place du suivant, et s’il y en a un."""
        sorte, suite = self.octets[ou] & 0x3F, bool(self.octets[ou] & 0x80)
        ou += 1
        if sorte == CLASSE:
            texte, ou = self._classe_en_c(ou)
        elif sorte == PROTOCOLES:
            places, ou = self._references(ou)
            texte = self._id_en_c(self._nommer_protocoles(places))
        elif sorte in TABLEAUX:
            texte, ou, _ = self.type_en_c(ou + 2)
            texte += " *"
        elif sorte == STRUCTURE:
            texte, ou = self._structure_en_c(self._entier(ou) & ~SUITE), ou + 4
        elif sorte in (FONCTION, BLOC):
            texte, ou = self._fonction_en_c(sorte, self._entier(ou) & ~SUITE), ou + 4
        elif sorte == POINTEUR:
            texte, ou, _ = self.type_en_c(ou)
            texte = self._pointeur_en_c(texte)
        else:
            texte = SIMPLES[sorte]
        return texte, ou, suite

    def _classe_en_c(self, ou):
        place, protocoles = self._entier(ou), []
        ou += 4
        if place & SUITE:
            places, ou = self._references(ou)
            protocoles = self._nommer_protocoles(places)
        nom = self._noms_classes.get(place & ~SUITE)
        if not nom:
            return "id", ou
        # Seul NSObject se qualifie : les autres classes portent ici leurs paramètres, que commun.h écrit.
        return nom + (f"<{', '.join(protocoles)}>" if protocoles and nom == "NSObject" else "") + " *", ou

    @staticmethod
    def _id_en_c(protocoles):
        utiles = [nom for nom in protocoles if nom != "NSObjectProtocol"]
        return f"id<{', '.join(utiles)}>" if utiles else "id"

    def _structure_en_c(self, place):
        try:
            nom = self._texte(self._entier(self._structures + place) & ~SUITE)
        except ValueError:
            nom = ""  # une union, que la base range ailleurs
        if nom in STRUCTURES_CONNUES:
            return "struct " + nom
        nom = "opaque_" + (nom if nom.isidentifier() else "sans_nom")
        self.structures.add(nom)
        return "struct " + nom

    @staticmethod
    def _pointeur_en_c(vise):
        vise = "id" if vise == "instancetype" else vise
        objet = vise == "id" or (vise.endswith("*") and vise.startswith(("NS", "WK", "UN")))
        return vise + (" __autoreleasing *" if objet else " *")

    def _fonction_en_c(self, sorte, place):
        alias = ("bloc_" if sorte == BLOC else "fonction_") + str(place)
        neutre = "id" if sorte == BLOC else "void *"
        if alias in self.fonctions_citees:
            # Une signature qui se cite elle-même n’est pas encore écrite.
            return alias if self.fonctions_citees[alias] else neutre
        self.fonctions_citees[alias] = ""
        rendu, *arguments = self.signature(place) or ["void"]
        del self.fonctions_citees[alias]  # ceux qu’elle cite se déclarent avant elle
        self.fonctions_citees[alias] = declarer_fonction(alias, rendu, arguments)
        return alias


def declarer_fonction(alias, rendu, arguments):
    signe = "^" if alias.startswith("bloc_") else "*"
    rendu = "id" if rendu == "instancetype" else rendu
    return f"typedef {rendu} ({signe}{alias})({', '.join(arguments) or 'void'});"
