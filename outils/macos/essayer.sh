#!/usr/bin/env bash
# Essaie le contrôle lui-même : une faute de chaque sorte est semée dans un témoin juste, et doit être vue là où on
# l’attend, pour la raison que l’on attend. Demande la trousse et le paquet que verifier.sh construit.
set -euo pipefail
. "$(dirname "$0")/../commun.sh"
ici=$racine/outils/macos
systeme=$racine/build/trousse-macos/systeme
paquet=$racine/build/macos/Keltrove.app
champ=$(mktemp -d)
trap 'rm -rf "$champ"' EXIT
semees=0

compiler() {
  env -u CPATH -u LIBRARY_PATH clang++-19 --target="${processeur:-arm64}-apple-macos13.0" -isysroot "$systeme" \
    -stdlib++-isystem "$systeme/usr/include/c++/v1" -std=c++23 -fobjc-arc -Wall -Wextra -Werror -Wundeclared-selector \
    -Wunguarded-availability -c "$champ/temoin.mm" -o "$champ/temoin.o"
}
lier() {
  env -u LIBRARY_PATH clang++-19 --target="${processeur:-arm64}-apple-macos13.0" -isysroot "$systeme" -fuse-ld=lld -Wl,-adhoc_codesign \
    -Wl,-fatal_warnings "$champ/temoin.o" -lcompilateur -framework Foundation -framework AppKit -framework WebKit -o "$champ/temoin"
}
auditer() { python3 "$ici/auditer_objc.py" "$racine/build/trousse-macos/metadonnees" "$champ/temoin.o"; }

# voir <étape> <raison> <commande…> : la commande échoue, et dit pourquoi.
voir() {
  local dit
  semees=$((semees + 1))
  ! dit=$("${@:3}" 2>&1) || abandonner "Faute non vue ($1) : $2"
  grep -qF -- "$2" <<<"$dit" || abandonner "Faute vue pour une autre raison ($1), au lieu de « $2 » : $dit"
}

# semer <étape> <raison> <expression de sed> : la faute passe les étapes d’avant, et celle-ci la voit.
semer() {
  sed -E "$3" "$ici/essais/temoin.mm" >"$champ/temoin.mm"
  ! cmp -s "$champ/temoin.mm" "$ici/essais/temoin.mm" || abandonner "Rien n’a été semé : $3"
  [ "$1" = compiler ] || compiler || abandonner "La faute ne se compile pas : $3"
  [ "$1" != auditer ] || lier || abandonner "La faute ne se lie pas : $3"
  voir "$1" "$2" "$1"
}

# abimer <raison> <commande…> : le paquet ainsi changé est refusé.
abimer() {
  rm -rf "$champ/Keltrove.app"
  cp -R "$paquet" "$champ/"
  (cd "$champ/Keltrove.app/Contents" && "${@:2}")
  voir paquet "$1" python3 "$ici/auditer_paquet.py" "$champ/Keltrove.app"
}
changer_un_octet() { printf '\377' | dd of=MacOS/Keltrove bs=1 seek=$(($(stat -c %s MacOS/Keltrove) / 4)) conv=notrunc status=none; }
garder_arm64() { /usr/lib/llvm-19/bin/llvm-lipo -thin arm64 MacOS/Keltrove -output seul && mv seul MacOS/Keltrove; }

dire "Des fautes semées…"
for processeur in arm64 x86_64; do
  cp "$ici/essais/temoin.mm" "$champ/"
  { compiler && lier && auditer >/dev/null; } || abandonner "Le témoin lui-même est refusé ($processeur)."
done
processeur=arm64

semer compiler "no visible @interface" 's/makeKeyAndOrderFront:/makeKeyAndOrderFrontt:/'
semer compiler "undeclared identifier 'NSMinuterie'" 's/NSTimer scheduled/NSMinuterie scheduled/'
semer compiler "undeclared selector" 's/selector\(battre:\)/selector(battres:)/'
semer compiler "is only available on macOS 13.3" 's/if \(@available\(macOS 13.3, \*\)\) //'
semer compiler "is only available on macOS 14.0" 's/\[NSApp run\]/[NSApp activate]/'
semer compiler "undeclared identifier 'NSTerminateTard'" 's/NSTerminateLater/NSTerminateTard/'
semer compiler "cannot initialize return object" 's/return NSTerminateLater/return @"plus tard"/'
semer compiler "not implemented" 's/didReceiveScriptMessage/didReceiveMessage/'
semer compiler "conflicting return type" 's/- \(NSApplicationTerminateReply\)/- (void*)/'
semer compiler "no known class method" 's/NSApplication.sharedApplication.delegate/[NSApplication application].delegate/'
semer compiler "property 'titre' not found" 's/vue.inspectable = YES/vue.titre = nil/'
semer lier "undefined symbol: inexistante" 's/^int main/extern "C" void inexistante(); int main/; s/\[NSApp run\]/inexistante()/'
semer lier "undefined symbol: OBJC_CLASS_\$_UNUserNotificationCenter" 's/\[NSApp run\]/[UNUserNotificationCenter currentNotificationCenter]/'
semer auditer "méthode que personne ne connaît ni n’appelle : -Temoin applicationShouldTerminat:" 's/applicationShouldTerminate:/applicationShouldTerminat:/'
semer auditer "méthode d’aucun protocole adopté ni ancêtre : -Temoin windowShouldClose:" 's/^int main/@implementation Temoin (Autre)\n- (BOOL)windowShouldClose:(NSWindow*)f { return f != nil; }\n@end\nint main/'
semer auditer "sélecteur postérieur à macOS 13.0 : yieldActivationToApplication:" 's/\[quelqu_un description\]/if (@available(macOS 14, *)) [NSApp yieldActivationToApplication:quelqu_un]/'
semer auditer "sélecteur inconnu : nulPart" 's/^@interface Temoin/@interface NSObject (Promis)\n- (void)nulPart;\n@end\n@interface Temoin/; s/\[quelqu_un description\]/[quelqu_un nulPart]/'

abimer "la signature n’est pas celle de ces octets" changer_un_octet
abimer "architectures : arm64" garder_arm64
abimer "l’exécutable demande macOS 13.0, Info.plist dit 12.0" sed -i 's/13\.0/12.0/' Info.plist
abimer "CFBundleLocalizations ne dit pas le français" sed -i '/CFBundleLocalizations/,/<\/array>/s/fr/en/' Info.plist
abimer "NSDocumentsFolderUsageDescription manque" sed -i '/NSDocumentsFolder/,+1d' Info.plist
abimer "pas d’icône" rm Resources/keltrove.icns
abimer "ressource absente : keltrove/node_modules/@lydell/node-pty-darwin-x64" rm -r Resources/keltrove/node_modules/@lydell/node-pty-darwin-x64
abimer "ressource absente : keltrove/inventaire.sig" rm Resources/keltrove/inventaire.sig
dire "$semees fautes semées, toutes vues."
