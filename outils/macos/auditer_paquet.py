#!/usr/bin/env python3
"""auditer_paquet.py <paquet.app> : ce qu’un paquet de macOS dit de lui, comparé à ce qu’il est : architectures,
bibliothèques, version minimale, exécutable déplaçable, signature, icône, ressources."""
import hashlib
import plistlib
import re
import struct
import sys
from pathlib import Path

import macho

# Les trois dernières sont statiques dans la version livrée ; le contrôle croisé n’en a que les symboles.
PERMISES = {"/usr/lib/libSystem.B.dylib", "/usr/lib/libc++.1.dylib", "/usr/lib/libobjc.A.dylib", "/usr/lib/libcurl.4.dylib",
            "/statique/libcrypto.dylib", "/statique/libutf8proc.dylib", "/statique/libcompilateur.dylib"}
CADRE = re.compile(r"/System/Library/Frameworks/\w+\.framework/")
DEPLACABLE, DEUX_NIVEAUX = 0x200000, 0x80
TEXTES = ("CFBundleIdentifier", "CFBundleShortVersionString", "NSDesktopFolderUsageDescription", "NSDocumentsFolderUsageDescription",
          "NSDownloadsFolderUsageDescription", "NSAppleEventsUsageDescription")
RESSOURCES = ("keltrove/serveur.mjs", "keltrove/inventaire.json", "keltrove/inventaire.sig", "cle-publique.pem", "demarrer-keltrove.sh",
              "keltrove/node_modules/@lydell/node-pty-darwin-arm64", "keltrove/node_modules/@lydell/node-pty-darwin-x64")


def auditer(paquet):
    fiche = plistlib.loads((paquet / "Contents/Info.plist").read_bytes())
    for nom in TEXTES:
        if not fiche.get(nom):
            yield f"Info.plist : {nom} manque"
    for nom in ("CFBundleLocalizations", "CFBundleDevelopmentRegion"):
        if "fr" not in fiche.get(nom, ""):
            yield f"Info.plist : {nom} ne dit pas le français"
    if fiche.get("NSSupportsSuddenTermination") is not False:
        yield "Info.plist : le système pourrait nous finir sans prévenir"
    ressources = paquet / "Contents/Resources"
    icone = ressources / f"{fiche.get('CFBundleIconFile')}.icns"
    if not icone.is_file() or icone.read_bytes()[:4] != b"icns":
        yield "pas d’icône"
    yield from (f"ressource absente : {nom}" for nom in RESSOURCES if not (ressources / nom).exists())
    tranches = [macho.Fichier(t) for t in macho.tranches((paquet / "Contents/MacOS" / fiche["CFBundleExecutable"]).read_bytes())]
    if {tranche.architecture for tranche in tranches} != {"arm64", "x86_64"}:
        yield f"architectures : {', '.join(tranche.architecture for tranche in tranches)}"
    for tranche in tranches:
        yield from (f"{tranche.architecture} : {faute}" for faute in auditer_tranche(tranche, fiche.get("LSMinimumSystemVersion")))


def auditer_tranche(tranche, minimum):
    signee = False
    for genre, place in tranche.commandes():
        if genre in macho.BIBLIOTHEQUES:
            nom = tranche.texte_de_commande(place)
            if nom not in PERMISES and not CADRE.match(nom):
                yield f"bibliothèque {nom}"
        elif genre == macho.CHEMIN_DE_RECHERCHE:
            yield f"chemin de recherche {tranche.texte_de_commande(place)}"
        elif genre == macho.VERSION_MINIMALE:
            version = struct.unpack_from("<I", tranche.octets, place + 12)[0]
            if f"{version >> 16}.{version >> 8 & 255}" != minimum:
                yield f"l’exécutable demande macOS {version >> 16}.{version >> 8 & 255}, Info.plist dit {minimum}"
        elif genre == macho.SIGNATURE:
            signee = True
            if not signature_juste(tranche.octets, *struct.unpack_from("<2I", tranche.octets, place + 8)):
                yield "la signature n’est pas celle de ces octets"
    if not signee:
        yield "pas de signature"
    if not tranche.drapeaux & DEPLACABLE:
        yield "le code n’est pas déplaçable"
    if not tranche.drapeaux & DEUX_NIVEAUX:
        yield "des symboles ne nomment pas leur bibliothèque"


def signature_juste(octets, place, taille):
    """Chaque page a l’empreinte que la signature en donne."""
    signature = octets[place:place + taille]
    for i in range(struct.unpack_from(">I", signature, 8)[0]):
        genre, debut = struct.unpack_from(">2I", signature, 12 + 8 * i)
        if genre != 0:  # seul le premier genre porte les empreintes
            continue
        entete = struct.unpack_from(">9I4B", signature, debut)
        empreintes, combien, limite, page = entete[4], entete[7], entete[8], 1 << entete[12]
        for j in range(combien):
            attendue = signature[debut + empreintes + 32 * j:][:32]
            if hashlib.sha256(octets[j * page:min((j + 1) * page, limite)]).digest() != attendue:
                return False
        return combien > 0
    return False


def main():
    fautes = list(auditer(Path(sys.argv[1])))
    print(f"{sys.argv[1]} : {len(fautes)} faute(s)")
    print("\n".join(fautes))
    return 1 if fautes else 0


if __name__ == "__main__":
    sys.exit(main())
