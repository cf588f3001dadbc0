#!/usr/bin/env bash
# Cherche au hasard des entrées qui mettraient en défaut les lectures de l’inventaire, de sa signature et de sa clé.
#   essais/fuzz/lancer.sh [secondes]     trente par défaut, pour chacune
set -euo pipefail
ici=$(cd "$(dirname "$0")" && pwd)
. "$ici/../../outils/commun.sh"
secondes=${1:-30}
export ASAN_OPTIONS=allocator_may_return_null=1

dossier=$(mktemp -d)
trap 'rm -rf "$dossier"' EXIT
chercher() {
  mkdir -p "$dossier/$1"
  (cd "$dossier/$1" && "$racine/build/fuzz/essais/fuzz/fuzz_$1" -max_total_time="$secondes" -max_len=4096 \
    -print_final_stats=1 . "$ici/graines/$1" >journal 2>&1) ||
    { tail -n 40 "$dossier/$1/journal" >&2; abandonner "fuzz_$1 a trouvé une entrée fautive."; }
  dire "fuzz_$1 : $(sed -n 's/^stat::number_of_executed_units: *//p' "$dossier/$1/journal") entrées, rien à redire."
}
for nom in cle signature inventaire; do chercher "$nom" & done
etat=0
for travail in $(jobs -p); do wait "$travail" || etat=1; done
exit $etat
