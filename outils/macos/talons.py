#!/usr/bin/env python3
"""talons.py <métadonnées> <debian> <système> : écrit les listes de symboles (.tbd) auxquelles l’éditeur de liens relie le
programme. Un symbole qu’aucune ne porte arrête le lien.

Les cadres viennent des métadonnées ; la bibliothèque standard, de la plus ancienne libc++ que Debian ait ; les
bibliothèques tierces, de celles de cette machine."""
import subprocess
import sys
from pathlib import Path

import declarations
import metadonnees
from entetes import CADRES

PUBLIQUES = Path("/usr/lib/x86_64-linux-gnu")
EXPORTES = set("TVWBDRuiA")

# Ce que le compilateur appelle de lui-même, et ce que l’on appelle à la main.
OBJC = """objc_msgSend objc_msgSend_stret objc_msgSendSuper2 objc_msgSendSuper2_stret objc_msgSend_fpret objc_alloc
objc_alloc_init objc_allocWithZone objc_opt_new objc_opt_self objc_opt_class objc_opt_isKindOfClass
objc_opt_respondsToSelector objc_retain objc_release objc_autorelease objc_retainAutorelease objc_autoreleaseReturnValue
objc_retainAutoreleaseReturnValue objc_retainAutoreleasedReturnValue objc_unsafeClaimAutoreleasedReturnValue
objc_claimAutoreleasedReturnValue objc_retainBlock objc_storeStrong objc_storeWeak objc_loadWeak objc_loadWeakRetained
objc_initWeak objc_destroyWeak objc_copyWeak objc_moveWeak objc_autoreleasePoolPush objc_autoreleasePoolPop
objc_getProperty objc_setProperty objc_setProperty_atomic objc_setProperty_nonatomic objc_setProperty_atomic_copy
objc_setProperty_nonatomic_copy objc_copyStruct objc_copyCppObjectAtomic objc_enumerationMutation objc_sync_enter
objc_sync_exit objc_exception_throw objc_exception_rethrow objc_begin_catch objc_end_catch objc_terminate objc_getClass
objc_lookUpClass objc_getAssociatedObject objc_setAssociatedObject sel_registerName sel_getName class_getName
object_getClass class_addMethod class_replaceMethod class_getInstanceMethod class_getClassMethod
method_getImplementation method_setImplementation method_exchangeImplementations __objc_personality_v0
_objc_empty_cache _objc_empty_vtable imp_implementationWithBlock objc_allocateClassPair objc_registerClassPair
class_addProtocol objc_getProtocol""".split()
OBJC += [f"objc_{verbe}_x{registre}" for verbe in ("retain", "release") for registre in range(29)]


def ecrire(fichier, installe, symboles, classes=(), repetees=()):
    lignes = ["--- !tapi-tbd", "tbd-version: 4", "targets: [ arm64-macos, x86_64-macos ]", f"install-name: {installe}",
              "current-version: 1",
              *(["reexported-libraries:", "  - targets: [ arm64-macos, x86_64-macos ]", f"    libraries: [ {', '.join(repetees)} ]"]
                if repetees else []),
              "exports:", "  - targets: [ arm64-macos, x86_64-macos ]",
              f"    symbols: [ {', '.join(repr(nom) for nom in sorted(set(symboles)))} ]"]
    if classes:
        lignes.append(f"    objc-classes: [ {', '.join(sorted(classes))} ]")
    fichier.parent.mkdir(parents=True, exist_ok=True)
    fichier.write_text("\n".join([*lignes, "..."]) + "\n")


def symboles_de(bibliotheque):
    sortie = subprocess.run(["nm", "-D", "--defined-only", bibliotheque], capture_output=True, text=True, check=True).stdout
    for ligne in sortie.splitlines():
        *_, genre, nom = ligne.split()
        if genre in EXPORTES:
            yield "_" + nom.split("@")[0]


def ecrire_les_cadres(dossier, systeme):
    base, declarees = metadonnees.Base(dossier), declarations.lire(dossier)
    constantes = base.constantes()
    for cadre in CADRES:
        version = "C" if cadre in ("Foundation", "AppKit") else "A"
        symboles = ["_" + nom for nom, le_sien in declarees.constantes.items() if le_sien == cadre and nom in constantes]
        symboles += ["_" + nom for nom in declarees.fonctions.get(cadre, [])]
        classes = [nom for nom in base.classes if declarees.cadre.get(nom) == cadre and nom != "NSObject"]
        if cadre == "Foundation":
            symboles += ["_NSLog", "___CFConstantStringClassReference"]
        ecrire(systeme / f"System/Library/Frameworks/{cadre}.framework/{cadre}.tbd",
               f"/System/Library/Frameworks/{cadre}.framework/Versions/{version}/{cadre}", symboles, classes,
               ["/usr/lib/libobjc.A.dylib"] if cadre == "Foundation" else [])


def ecrire_les_bibliotheques(debian, systeme):
    llvm, dossier = next(debian.glob("usr/lib/llvm-*/lib")), systeme / "usr/lib"
    # Le compteur que l’on attend a 32 bits sous Linux, 64 ailleurs.
    standard = [nom.replace("__libcpp_atomic_waitEPVKvi", "__libcpp_atomic_waitEPVKvx")
                for nom in (*symboles_de(llvm / "libc++.so.1.0"), *symboles_de(llvm / "libc++abi.so.1.0"))]
    ecrire(dossier / "libc++.tbd", "/usr/lib/libc++.1.dylib", standard)
    ecrire(dossier / "libobjc.A.tbd", "/usr/lib/libobjc.A.dylib", ["_" + nom for nom in (*OBJC, "OBJC_EHTYPE_id")], ["NSObject", "Protocol"])
    ecrire(dossier / "libcurl.tbd", "/usr/lib/libcurl.4.dylib", symboles_de(PUBLIQUES / "libcurl.so"))
    # Liées statiquement dans la version livrée : ici, des noms qu’aucun Mac ne porte.
    for nom in ("crypto", "utf8proc"):
        ecrire(dossier / f"lib{nom}.tbd", f"/statique/lib{nom}.dylib", symboles_de(PUBLIQUES / f"lib{nom}.so"))
    # Ce que @available appelle, et que le compilateur d’un Mac apporte.
    ecrire(dossier / "libcompilateur.tbd", "/statique/libcompilateur.dylib", ["___isPlatformVersionAtLeast"])


if __name__ == "__main__":
    ecrire_les_cadres(Path(sys.argv[1]), Path(sys.argv[3]))
    ecrire_les_bibliotheques(Path(sys.argv[2]), Path(sys.argv[3]))
