#!/usr/bin/env python3
"""entetes.py <métadonnées> <système> : écrit les en-têtes Objective-C des cadres dont le bureau se sert, tels que les
métadonnées les décrivent. Les versions d’apparition postérieures à celle que l’on vise viennent de
posterieur-a-13.json : le compilateur sait alors dire ce qui n’est pas gardé."""
import hashlib
import json
import re
import sys
from pathlib import Path

import declarations
import metadonnees

# Chacun inclut ceux dont il se sert.
CADRES = {"Foundation": [], "QuartzCore": ["Foundation"], "UniformTypeIdentifiers": ["Foundation"],
          "AppKit": ["Foundation", "QuartzCore", "UniformTypeIdentifiers"], "WebKit": ["AppKit"],
          "UserNotifications": ["Foundation"]}
GENERIQUES = dict.fromkeys(
    ["NSArray", "NSMutableArray", "NSSet", "NSMutableSet", "NSOrderedSet", "NSMutableOrderedSet", "NSEnumerator",
     "NSCountedSet", "NSHashTable", "NSLayoutAnchor", "NSMeasurement"], 1)
GENERIQUES |= dict.fromkeys(["NSDictionary", "NSMutableDictionary", "NSMapTable", "NSCache", "NSDiffableDataSourceSnapshot"], 2)
PARAMETRES = {0: "", 1: "<__covariant T>", 2: "<__covariant T, __covariant U>"}
PARAMETRES_CITES = {0: "", 1: "<T>", 2: "<T, U>"}

# Ce que les métadonnées ne disent pas : les arguments en nombre variable, et les tableaux C d’objets.
VARIABLES = {
    "NSString": ["+ (instancetype)stringWithFormat:(NSString *)f, ... __attribute__((format(__NSString__, 1, 2)));",
                 "- (instancetype)initWithFormat:(NSString *)f, ... __attribute__((format(__NSString__, 1, 2)));",
                 "- (NSString *)stringByAppendingFormat:(NSString *)f, ... __attribute__((format(__NSString__, 1, 2)));"],
    "NSException": ["+ (void)raise:(NSExceptionName)nom format:(NSString *)f, ... __attribute__((format(__NSString__, 2, 3)));"],
    "NSArray": ["+ (instancetype)arrayWithObjects:(id)f, ... __attribute__((sentinel(0, 1)));"]}
TABLEAUX = {"arrayWithObjects:count:", "initWithObjects:count:", "setWithObjects:count:"}
DICTIONNAIRES = {"dictionaryWithObjects:forKeys:count:", "initWithObjects:forKeys:count:"}

# Le début, et la fin, que les membres de ces énumérations perdent dans les déclarations.
PREFIXES = {"NSApplicationTerminateReply": "NSTerminate", "NSBackingStoreType": "NSBackingStore",
            "WKUserScriptInjectionTime": "WKUserScriptInjectionTimeAtDocument", "NSComparisonResult": "NSOrdered",
            "NSAutoresizingMaskOptions": "NSView", "NSURLRequestCachePolicy": "NSURLRequest",
            "NSAccessibilityPriorityLevel": "NSAccessibilityPriority"}
SUFFIXES = {"NSBorderType": ("NS", "Border")}

ENTIERS = {"NSInteger", "NSUInteger", "int", "unsigned int", "short", "char", "unsigned char", "unsigned short"}
RESERVES = {"template", "delete", "operator", "this", "private", "public", "protected", "namespace", "new", "class"}
DANS_COMMUN = {"NSMakePoint", "NSMakeSize", "NSMakeRect", "NSMakeRange", "NSEdgeInsetsMake", "NSLog"}

DU_PROTOCOLE_RACINE = {"-" + nom for nom in (
    "isEqual: hash superclass class self performSelector: performSelector:withObject: "
    "performSelector:withObject:withObject: isProxy isKindOfClass: isMemberOfClass: conformsToProtocol: "
    "respondsToSelector: retain release autorelease retainCount zone description debugDescription").split()}
DE_LA_CLASSE_RACINE = DU_PROTOCOLE_RACINE | {signe + nom for signe in "+-" for nom in (
    "load initialize init new alloc allocWithZone: dealloc finalize copy mutableCopy copyWithZone: "
    "mutableCopyWithZone: instancesRespondToSelector: conformsToProtocol: methodForSelector: "
    "instanceMethodForSelector: doesNotRecognizeSelector: forwardingTargetForSelector: forwardInvocation: "
    "methodSignatureForSelector: instanceMethodSignatureForSelector: allowsWeakReference retainWeakReference "
    "isSubclassOfClass: resolveClassMethod: resolveInstanceMethod: hash superclass class description "
    "debugDescription").split()}


def nom_dans_les_declarations(selecteur):
    premier, *suivants = selecteur.split(":")
    return premier + "".join(mot[:1].upper() + mot[1:] for mot in suivants)


class Entetes:
    def __init__(self, dossier):
        self.base = metadonnees.Base(dossier)
        self.declarations = declarations.lire(dossier)
        recents = json.loads((Path(__file__).parent / "posterieur-a-13.json").read_text())
        self.membres_recents, self.types_recents = recents["membres"], recents["types"]

    def cadre_de(self, nom):
        cadre = self.declarations.cadre.get(nom)
        return cadre if cadre in CADRES else None

    @staticmethod
    def _depuis(version):
        return f" __attribute__((availability(macos,introduced={version})))" if version else ""

    # Les types ------------------------------------------------------------------------------------------------

    def _preciser(self, type_, declare):
        """Rend à un entier, ou aux arguments d’un bloc, l’énumération que la base efface."""
        enumeration = self.declarations.enumeration(declare)
        if enumeration and type_ in ENTIERS and self.declarations.enumerations[enumeration][0] in CADRES:
            return enumeration
        if type_.startswith("bloc_") and "=>" in declare:
            return self._preciser_bloc(type_, declare)
        return type_

    def _preciser_bloc(self, alias, declare):
        trouve = re.match(r"\((.*)\) => (.*?)(?: \| null)?$", declare.strip())
        rendu, *arguments = self.base.signature(int(alias.removeprefix("bloc_"))) or ["void"]
        declares = [declarations.type_de(a) for a in declarations.couper(trouve[1])] if trouve else []
        if len(declares) != len(arguments):
            return alias
        precises = [self._preciser(type_, declare) for type_, declare in zip(arguments, declares)]
        if precises == arguments:
            return alias
        precis = "bloc_" + hashlib.md5(f"{rendu}{precises}".encode()).hexdigest()[:12]
        self.base.fonctions_citees[precis] = metadonnees.declarer_fonction(precis, rendu, precises)
        return precis

    # Les membres ----------------------------------------------------------------------------------------------

    def _methode(self, type_, membre):
        signature = self.base.signature(membre.signature)
        if not signature or membre.nom.count(":") != len(signature) - 1:
            return None
        rendu, *arguments = signature
        if membre.nom in TABLEAUX:
            arguments[0] = "const id *"
        if membre.nom in DICTIONNAIRES:
            arguments[:2] = ["const id *", "const id<NSCopying> *"]
        declares = self.declarations.types.get((type_, membre.de_classe, nom_dans_les_declarations(membre.nom)))
        if declares and len(declares[0]) == len(arguments):
            arguments = [self._preciser(*paire) for paire in zip(arguments, declares[0])]
            rendu = self._preciser(rendu, declares[1])
        mots = membre.nom.split(":")
        # La base oublie « const » ; un contexte, que l’on rend tel qu’on l’a reçu, n’en porte jamais.
        arguments = ["const void *" if argument == "void *" and mot != "context" else argument for mot, argument in zip(mots, arguments)]
        corps = " ".join(f"{mot}:({argument})a{i}" for i, (mot, argument) in enumerate(zip(mots, arguments)))
        depuis = self._depuis(self.membres_recents.get(f"{type_} {membre.nom}"))
        return f"{'+' if membre.de_classe else '-'} ({rendu}){corps or membre.nom}{depuis};"

    def _propriete(self, type_, membre):
        signature = self.base.signature(membre.signature)
        if not signature:
            return None
        rendu = signature[0]
        if membre.nom in RESERVES:
            return f"{'+' if membre.de_classe else '-'} ({rendu}){membre.accesseur};"
        declare = self.declarations.types.get((type_, membre.de_classe, membre.nom))
        precis = "id" if rendu == "instancetype" else self._preciser(rendu, declare[1]) if declare else rendu
        depuis = self._depuis(self.membres_recents.get(f"{type_} {membre.nom}") or
                              self.membres_recents.get(f"{type_} {membre.accesseur}"))
        return f"@property ({', '.join(self._attributs(membre, rendu))}) {precis} {membre.nom}{depuis};"

    def _attributs(self, membre, type_):
        attributs = ["class"] if membre.de_classe else []
        if not membre.mutateur:
            attributs.append("readonly")
        if membre.accesseur != membre.nom:
            attributs.append("getter=" + membre.accesseur)
        if membre.mutateur not in ("", f"set{membre.nom[:1].upper()}{membre.nom[1:]}:"):
            attributs.append("setter=" + membre.mutateur)
        objet = type_.rstrip(" *").split("<")[0] in self.base.classes or type_ == "Class" or re.match(r"id\b[^*]*$", type_)
        if type_.startswith("bloc_"):
            attributs.append("copy")
        elif objet:
            attributs.append("strong" if membre.mutateur else "nonatomic")
        return attributs or ["assign"]

    def _membres(self, nom, type_, deja, protocole=False):
        lignes, vus, optionnel = [], set(deja), False
        for membre in type_.membres:
            premier = ("+" if membre.de_classe else "-") + (membre.accesseur or membre.nom)
            ligne = None if premier in vus else (self._propriete if membre.propriete else self._methode)(nom, membre)
            if not ligne:
                continue
            vus.add(premier)
            declare = membre.nom if membre.propriete else nom_dans_les_declarations(membre.nom)
            if protocole and ((nom, declare) in self.declarations.optionnels) != optionnel:
                optionnel = not optionnel
                lignes.append("@optional" if optionnel else "@required")
            lignes.append(ligne)
        return lignes

    # Les types, chacun après ceux dont il hérite ------------------------------------------------------------------

    def _rangees(self, noms, parents):
        rangees = {}

        def ranger(nom):
            for parent in parents(nom):
                if parent not in rangees:
                    ranger(parent)
            rangees.setdefault(nom)
        for nom in noms:
            ranger(nom)
        return list(rangees)

    def _adopter(self, noms):
        return f" <{', '.join(noms)}>" if noms else ""

    def protocoles(self):
        choisis = [nom for nom in sorted(self.base.protocoles) if self.declarations.cadre.get(nom) in (*CADRES, None)]
        lignes = []
        for nom in self._rangees(choisis, lambda nom: self.base.protocoles[nom].protocoles):
            if nom == "NSObjectProtocol":
                continue
            type_ = self.base.protocoles[nom]
            adoptes = ["NSObject" if adopte == "NSObjectProtocol" else adopte for adopte in type_.protocoles]
            lignes.append(f"{self._depuis(self.types_recents.get(nom))}\n@protocol {nom}{self._adopter(adoptes)}")
            lignes += [*self._membres(nom, type_, DU_PROTOCOLE_RACINE, True), "@end"]
        return lignes

    def classes(self):
        """cadre → ses lignes."""
        lignes = {cadre: [] for cadre in CADRES}
        connus = set(self._rangees([n for n in self.base.protocoles if self.declarations.cadre.get(n) in (*CADRES, None)],
                                   lambda nom: self.base.protocoles[nom].protocoles))
        choisies = [nom for cadre in CADRES for nom in self.base.classes if self.cadre_de(nom) == cadre]
        parente = lambda nom: [p] if (p := self.base.classes[nom].parente) in self.base.classes else []
        for nom in self._rangees(choisies, parente):
            if nom == "NSObject":
                continue
            type_ = self.base.classes[nom]
            adoptes = [p for p in type_.protocoles if p in connus and p != "NSObjectProtocol"]
            deja = DE_LA_CLASSE_RACINE if type_.parente in (None, "NSObject") else ()
            combien = GENERIQUES.get(nom, 0)
            cites = PARAMETRES_CITES[GENERIQUES.get(type_.parente, 0) if combien else 0]
            herite = f" : {type_.parente}{cites}" if type_.parente else ""
            lignes[self.cadre_de(nom) or "AppKit"] += [
                f"{self._depuis(self.types_recents.get(nom))}\n@interface {nom}{PARAMETRES[combien]}{herite}{self._adopter(adoptes)}",
                *VARIABLES.get(nom, []), *self._membres(nom, type_, deja), "@end"]
        racine = self._membres("NSObject", self.base.classes["NSObject"], DE_LA_CLASSE_RACINE)
        lignes["Foundation"] += ["@interface NSObject (Metadonnees)", *racine, "@end"]
        return lignes

    # Les constantes et les fonctions --------------------------------------------------------------------------------

    def enumerations(self):
        lignes = []
        for nom, (cadre, membres) in self.declarations.enumerations.items():
            if cadre in CADRES:
                lignes += self._enumeration(nom, dict(self._nommer_membre(nom, *membre) for membre in membres))
        return lignes

    @staticmethod
    def _nommer_membre(enumeration, membre, valeur):
        if membre.startswith(("NS", "WK", "UN", "CA", "UT")):
            return membre, valeur
        debut, fin = SUFFIXES.get(enumeration, ("", ""))
        sans_s = enumeration[:-1] if enumeration.endswith(("Options", "Flags")) else enumeration
        return (debut or PREFIXES.get(enumeration, sans_s)) + membre + fin, valeur

    @staticmethod
    def _enumeration(nom, membres):
        puissances = [valeur for valeur in membres.values() if valeur]
        options = nom.endswith(("Options", "Mask", "Flags")) or nom == "NSDragOperation" or (
            len(puissances) >= 2 and all(v > 0 and v & (v - 1) == 0 for v in puissances) and max(puissances) >= 4)
        # Des options se combinent : en C++, une énumération le refuserait.
        if options:
            return [f"typedef NSUInteger {nom};"] + [
                f"static const {nom} {membre} = ({nom}){valeur}{'ULL' if valeur >= 2**63 else 'LL'};" for membre, valeur in membres.items()]
        valeurs = [f" {membre} = {valeur if valeur < 2**63 else valeur - 2**64}LL," for membre, valeur in membres.items()]
        return [f"enum {nom} : NSInteger {{", *valeurs, f"}}; typedef enum {nom} {nom};"]

    def constantes(self, cadre):
        connues = self.base.constantes()
        for nom in (n for n, le_sien in self.declarations.constantes.items() if le_sien == cadre and n in connues):
            valeur = connues[nom]
            if isinstance(valeur, str):
                yield f'extern "C" {valeur if nom == "NSApp" else valeur.rstrip() + " const"} {nom};'
            else:
                yield f"static const {'NSInteger' if isinstance(valeur, int) else 'double'} {nom} = {valeur!r};"

    def fonctions(self, cadre):
        connues = self.base.fonctions()
        for nom in dict.fromkeys(self.declarations.fonctions.get(cadre, [])):
            signature = self.base.signature(connues[nom]) if nom in connues and nom not in DANS_COMMUN else None
            if signature and not any(type_.startswith("fonction_") for type_ in signature):
                yield f'extern "C" {signature[0]} {nom}({", ".join(signature[1:]) or "void"});'

    # Les fichiers -----------------------------------------------------------------------------------------------

    def ecrire(self, systeme):
        inclus = systeme / "usr/include/metadonnees"
        inclus.mkdir(parents=True, exist_ok=True)
        (inclus / "commun.h").write_text((Path(__file__).parent / "commun.h").read_text())
        protocoles, classes = self.protocoles(), self.classes()
        for cadre, les_siens in CADRES.items():
            includes = ["#pragma once", "#pragma clang system_header", "#import <metadonnees/protocoles.h>",
                        *(f"#import <{autre}/{autre}.h>" for autre in les_siens)]
            corps = [*classes[cadre], *self.constantes(cadre), *self.fonctions(cadre)]
            if cadre == "Foundation":
                corps.append('extern "C" void NSLog(NSString *f, ...) __attribute__((format(__NSString__, 1, 2)));')
            dossier = systeme / f"System/Library/Frameworks/{cadre}.framework/Headers"
            dossier.mkdir(parents=True, exist_ok=True)
            (dossier / f"{cadre}.h").write_text("\n".join(includes + corps) + "\n")
        # En dernier : ce que les autres citent n’est connu qu’une fois tous écrits.
        (inclus / "protocoles.h").write_text("\n".join([*self._annonces(), *protocoles]) + "\n")

    def _annonces(self):
        return ["#pragma once", "#pragma clang system_header", "#import <metadonnees/commun.h>",
                *(f"{structure};" for structure in sorted("struct " + nom for nom in self.base.structures)),
                *(f"@class {nom}{PARAMETRES[GENERIQUES.get(nom, 0)]};" for nom in self.base.classes if nom != "NSObject"),
                *(f"@protocol {nom};" for nom in self.base.protocoles),
                *self.enumerations(), *self.base.fonctions_citees.values()]


if __name__ == "__main__":
    Entetes(sys.argv[1]).ecrire(Path(sys.argv[2]))
