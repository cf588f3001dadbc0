#!/usr/bin/env bash
# Compile, lie et contrôle la version de macOS, sans Mac : les deux processeurs, les essais du comportement, le paquet.
# Ne lance rien : seul un Mac le peut.
#   outils/macos/verifier.sh
set -euo pipefail
. "$(dirname "$0")/../commun.sh"
installer_ce_qui_manque "${paquets_construction[@]}" "${paquets_macos[@]}"
# Ce que la machine ajoute à toute compilation n’est pas d’un Mac.
unset CPATH LIBRARY_PATH CPLUS_INCLUDE_PATH
ici=$racine/outils/macos
trousse=$racine/build/trousse-macos

# construire_pour <processeur> [options de cmake…] ; sans optimisation, le compilateur avertit autant.
construire_pour() {
  local KELTROVE_ARCHITECTURE=$1 dossier=$racine/build/macos-$1
  export KELTROVE_ARCHITECTURE
  dire "Je construis pour macOS ($1)…"
  { cmake -G Ninja -S "$racine" -B "$dossier" --toolchain "$ici/verification.cmake" -DKELTROVE_STRICT=ON \
    -DNPM="$trousse/npm-10/bin/npm-cli.js" "${@:2}" &&
    cmake --build "$dossier" && rm -rf "$dossier/copie" && cmake --install "$dossier" --prefix "$dossier/copie"; } >"$dossier.trace" 2>&1 ||
    { grep -aE -A4 'error:|FAILED|Error' "$dossier.trace" | tail -n 60 >&2; abandonner "La construction pour $1 échoue : la trace est dans build/macos-$1.trace."; }
  ! grep -aE 'warning:' "$dossier.trace" || abandonner "La construction pour $1 avertit."
}

"$ici/trousse.sh"
construire_pour arm64 -DKELTROVE_ESSAIS=ON
# Fichier par fichier, le premier a déjà montré que chacun inclut ce qu’il lui faut.
construire_pour x86_64 -DCMAKE_UNITY_BUILD=ON
"$ici/reunir.sh" "$racine"/build/macos-{arm64,x86_64}/copie/Keltrove.app "$racine/build/macos/Keltrove.app"

for processeur in arm64 x86_64; do
  dire "Ce que le bureau demande à Objective-C ($processeur)…"
  # Un CMake récent en compile aussi plusieurs à la fois, et les range alors plus bas.
  mapfile -t objets < <(find "$racine/build/macos-$processeur/bureau/cocoa/CMakeFiles/keltrove_cocoa.dir" -name '*.o')
  [ ${#objets[@]} -gt 0 ] || abandonner "Rien à contrôler pour $processeur."
  python3 "$ici/auditer_objc.py" "$trousse/metadonnees" "${objets[@]}" ||
    abandonner "Le bureau de macOS demande ce que le système n’a pas : voir ci-dessus."
done
dire "Le paquet…"
python3 "$ici/auditer_paquet.py" "$racine/build/macos/Keltrove.app" || abandonner "Le paquet de macOS n’est pas ce qu’il dit : voir ci-dessus."
"$ici/essayer.sh"
