#!/usr/bin/env bash
# Installe ce que les essais demandent, construit et passe tous les essais.
#   outils/essayer.sh             tout
#   outils/essayer.sh --rapide    sans les assainisseurs ni la seconde bibliothèque standard
set -euo pipefail
. "$(dirname "$0")/commun.sh"

rapide=non
case "${1:-}" in
  "") ;;
  --rapide) rapide=oui ;;
  *) abandonner "Option inconnue : $1. Essayez outils/essayer.sh, ou outils/essayer.sh --rapide" ;;
esac

paquets=("${paquets_construction[@]}" "${paquets_execution[@]}" "${paquets_ecran[@]}" "${paquets_essais[@]}")
[ $rapide = oui ] || paquets+=("${paquets_portabilite[@]}" "${paquets_paquet[@]}")
installer_ce_qui_manque "${paquets[@]}"

essais_unitaires() {
  dire "Essais unitaires ($1)…"
  ctest --test-dir "$racine/build/$1" -j"$(nproc)" --output-on-failure ||
    abandonner "Des essais unitaires échouent ($1) : relancez « ctest --test-dir build/$1 --output-on-failure »."
  dire "Essais unitaires ($1) : réussis."
}

construire release -DKELTROVE_STRICT=ON -DKELTROVE_ESSAIS=ON
essais_unitaires release

dire "Le comportement ne lie aucune boîte à outils…"
liens=$(ldd "$racine/build/release/essais/unitaires/essais_unitaires" "$racine/build/release/keltrove")
! grep -E 'gtk|gdk|webkit|libgio' <<<"$liens" ||
  abandonner "Une bibliothèque du bureau est liée là où elle ne doit pas l’être."

dire "Essais du serveur…"
(cd "$racine/serveur" && npm ci --ignore-scripts --no-audit --no-fund --loglevel=error && npm test) ||
  abandonner "Des essais du serveur échouent : relancez « npm test » dans serveur/."

if [ $rapide = non ]; then
  dire "Mise en forme…"
  (cd "$racine" && find socle moteur verification pont fenetre app bureau essais -name '*.[ch]pp' -print0 |
    xargs -0 clang-format-19 --dry-run --Werror) ||
    abandonner "Des fichiers ne sont pas mis en forme : « clang-format-19 -i » les corrige."

  dire "Analyse statique…"
  trace=$(mktemp)
  run-clang-tidy-19 -quiet -j"$(nproc)" -p "$racine/build/release" \
    "$racine/(socle|moteur|verification|pont|fenetre|app|bureau)/" >"$trace" 2>&1 ||
    { grep -E '(error|warning):' "$trace" | sort -u >&2; abandonner "clang-tidy a trouvé à redire."; }
  rm -f "$trace"

  construire couverture
  essais_unitaires couverture
  dire "Lignes du comportement parcourues (au moins 95 %)…"
  (cd "$racine" && gcovr -r . build/couverture -f '(socle|moteur|verification|pont|fenetre|app)/' -s --fail-under-line 95) ||
    abandonner "Les essais parcourent moins de 95 % des lignes du comportement."

  construire libcxx -DKELTROVE_STRICT=ON
  construire fuzz -DKELTROVE_STRICT=ON
  dire "Entrées cherchées au hasard, trente secondes chacune…"
  "$racine/essais/fuzz/lancer.sh" 30
  construire asan -DKELTROVE_STRICT=ON
  essais_unitaires asan
  construire tsan -DKELTROVE_BUREAU=OFF
  essais_unitaires tsan

  dire "Essais de bout en bout, sur un écran virtuel (construction assainie)…"
  # Ceux qui mesurent la mémoire ou installent une copie n’ont de sens que pour la version livrée, juste après.
  KELTROVE_CONSTRUCTION="$racine/build/asan" "$racine/essais/bout-en-bout/lancer.sh" \
    -essai_endurance -serveur_bavard -CopieInstallee
  dire "Essais de bout en bout de la version livrée…"
  KELTROVE_CONSTRUCTION="$racine/build/release" "$racine/essais/bout-en-bout/lancer.sh" \
    essai_endurance essai_installation essai_inventaire essai_demarrage essai_vie essai_machine
  dire "Le paquet, contrôlé par l’outil de chacune de ses parties…"
  "$racine/outils/paquet.sh"
  exit
fi

dire "Essais de bout en bout, sur un écran virtuel…"
KELTROVE_CONSTRUCTION="$racine/build/release" "$racine/essais/bout-en-bout/lancer.sh"
