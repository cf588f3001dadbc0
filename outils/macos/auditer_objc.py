#!/usr/bin/env python3
"""auditer_objc.py <métadonnées> <objets…> : ce que des objets Mach-O demandent à Objective-C, comparé aux métadonnées.

  - chaque sélecteur appelé existe, et n’est pas postérieur à macOS 13.0 ;
  - chaque méthode réalisée existe, et vient d’un protocole adopté ou d’un ancêtre : un délégué mal écrit se voit ;
  - chaque classe citée existe, dans un cadre dont on dispose.

Ce que l’on sait juste malgré tout est dans permis.txt, avec sa raison."""
import bisect
import sys
from dataclasses import dataclass, field
from pathlib import Path

from entetes import CADRES, Entetes
from macho import Fichier

ICI = Path(__file__).parent
DU_LANGAGE = {".cxx_construct", ".cxx_destruct", "dealloc"}
CLASSE, PROTOCOLE, ADOPTES = "_OBJC_CLASS_$_", "__OBJC_PROTOCOL_$_", "_OBJC_CLASS_PROTOCOLS_$_"
PROPRIETES = "_OBJC_$_PROP_LIST_"


@dataclass
class Demande:
    appeles: set = field(default_factory=set)  # sélecteurs
    realisees: dict = field(default_factory=dict)  # sélecteur → classes à nous, précédées de + ou de -
    citees: set = field(default_factory=set)  # classes
    a_nous: set = field(default_factory=set)  # classes
    parentes: dict = field(default_factory=dict)
    protocoles: dict = field(default_factory=dict)
    proprietes: set = field(default_factory=set)  # leurs accesseurs, qu’ils servent ou non

    def ajouter(self, objet):
        self.appeles |= {texte for _, _, vise in objet.renvois("__objc_selrefs")
                         if (texte := objet.texte_a_l_adresse(vise, "__objc_methname"))}
        for symbole in objet.symboles:
            if symbole.nom[:2] in ("-[", "+["):
                classe, selecteur = symbole.nom[2:-1].split(" ", 1)
                self.realisees.setdefault(selecteur, set()).add(symbole.nom[0] + classe.split("(")[0])
            elif symbole.nom.startswith(CLASSE):
                (self.a_nous if symbole.defini else self.citees).add(symbole.nom.removeprefix(CLASSE))
        self._noter_les_parentes(objet)
        self._noter_les_listes(objet)

    def _noter_les_parentes(self, objet):
        definies = {s.adresse: s.nom.removeprefix(CLASSE) for s in objet.symboles if s.nom.startswith(CLASSE) and s.defini}
        for adresse, symbole, _ in objet.renvois("__objc_data"):
            # La classe, puis sa parente : le second mot de chaque description.
            if symbole and symbole.nom.startswith(CLASSE) and adresse - 8 in definies:
                self.parentes[definies[adresse - 8]] = symbole.nom.removeprefix(CLASSE)

    def _noter_les_listes(self, objet):
        """Les protocoles que chaque classe adopte, et ses propriétés : le renvoi est dans la liste dont le nom précède."""
        bornes = sorted((s.adresse, s.nom) for s in objet.symboles if s.defini and s.nom.startswith(("__OBJC_", "_OBJC_")))
        adresses = [adresse for adresse, _ in bornes]
        for adresse, symbole, vise in objet.renvois("__objc_const"):
            i = bisect.bisect_right(adresses, adresse) - 1
            liste = bornes[i][1] if i >= 0 else ""
            if symbole and PROTOCOLE in symbole.nom and ADOPTES in liste:
                self.protocoles.setdefault(liste.split("_$_")[1], set()).add(symbole.nom.split("_$_")[1])
            elif PROPRIETES in liste and (nom := objet.texte_a_l_adresse(vise, "__objc_methname")):
                self.proprietes |= {nom, f"set{nom[:1].upper()}{nom[1:]}:"}


class Audit:
    def __init__(self, dossier, demande):
        self.connus, self.demande = Entetes(dossier), demande
        self.classes, self.protocoles = self.connus.base.classes, self.connus.base.protocoles
        self.declarants = {}  # sélecteur → ceux qui le déclarent
        for nom, type_ in (*self.classes.items(), *self.protocoles.items()):
            for selecteur in type_.selecteurs():
                self.declarants.setdefault(selecteur[1:], set()).add(nom)

    def _est_recent(self, selecteur):
        membres, types = self.connus.membres_recents, self.connus.types_recents
        return all(f"{nom} {selecteur}" in membres or nom in types for nom in self.declarants[selecteur])

    def _selecteurs_de(self, nom, types, vus):
        type_ = types.get(nom)
        if not type_ or id(type_) in vus:
            return set()
        vus.add(id(type_))
        trouves = {selecteur[1:] for selecteur in type_.selecteurs()}
        for protocole in type_.protocoles:
            trouves |= self._selecteurs_de(protocole, self.protocoles, vus)
        return trouves | (self._selecteurs_de(type_.parente, self.classes, vus) if type_.parente else set())

    def _attendus_de(self, classe):
        vus, trouves = set(), self._selecteurs_de("NSObject", self.classes, set())
        while classe in self.demande.parentes:
            for protocole in self.demande.protocoles.get(classe, ()):
                trouves |= self._selecteurs_de("NSObjectProtocol" if protocole == "NSObject" else protocole, self.protocoles, vus)
            classe = self.demande.parentes[classe]
        return trouves | self._selecteurs_de(classe, self.classes, vus)

    def fautes(self):
        yield from self._fautes_des_appels()
        yield from self._fautes_des_methodes()
        for classe in sorted(self.demande.citees - self.demande.a_nous - {"NSObject"}):
            if classe not in self.classes:
                yield classe, f"classe inconnue : {classe}"
            elif self.connus.cadre_de(classe) not in CADRES:
                yield classe, f"classe d’un cadre qui n’est pas lié : {classe} ({self.connus.declarations.cadre.get(classe)})"

    def _fautes_des_appels(self):
        for selecteur in sorted(self.demande.appeles - set(self.demande.realisees) - DU_LANGAGE):
            if selecteur not in self.declarants:
                yield selecteur, f"sélecteur inconnu : {selecteur}"
            elif self._est_recent(selecteur):
                yield selecteur, f"sélecteur postérieur à macOS 13.0 : {selecteur}"

    def _fautes_des_methodes(self):
        for selecteur, classes in sorted(self.demande.realisees.items()):
            if selecteur in DU_LANGAGE | self.demande.appeles | self.demande.proprietes:
                continue
            for classe in sorted(classes):
                if selecteur not in self.declarants:
                    yield selecteur, f"méthode que personne ne connaît ni n’appelle : {classe} {selecteur}"
                elif classe[1:] in self.demande.parentes and selecteur not in self._attendus_de(classe[1:]):
                    yield selecteur, f"méthode d’aucun protocole adopté ni ancêtre : {classe} {selecteur}"


def lire_permis():
    lignes = (ICI / "permis.txt").read_text().splitlines()
    return {ligne.split()[0] for ligne in lignes if ligne and not ligne.startswith("#")}


def main():
    demande = Demande()
    for objet in sys.argv[2:]:
        demande.ajouter(Fichier(Path(objet).read_bytes()))
    permis = lire_permis()
    fautes = [texte for nom, texte in Audit(sys.argv[1], demande).fautes() if nom not in permis]
    print(f"{len(sys.argv) - 2} objets, {len(demande.appeles)} sélecteurs appelés, {len(demande.realisees)} méthodes réalisées, "
          f"{len(demande.citees - demande.a_nous)} classes citées : {len(fautes)} faute(s)")
    print("\n".join(fautes))
    return 1 if fautes else 0


if __name__ == "__main__":
    sys.exit(main())
