#!/usr/bin/env bash
# Le bureau macOS, contre GNUstep, sur un écran virtuel : la vie des objets d’abord, puis les scénarios.
#   essais/cocoa/lancer.sh [filtre…]     par exemple : essais/cocoa/lancer.sh depot fermeture
set -euo pipefail
ici=$(cd "$(dirname "$0")" && pwd)
. "$ici/../../outils/commun.sh"
export KELTROVE_CONSTRUCTION="${KELTROVE_CONSTRUCTION:-$racine/build/cocoa}"
export PYTHONPATH=$ici/../parite LANG=C.UTF-8 LC_ALL=C.UTF-8 PYTHONDONTWRITEBYTECODE=1
# GNUstep garde jusqu’à la fin ce qu’il crée : seules les erreurs d’adresse et de conduite comptent.
export ASAN_OPTIONS=detect_leaks=0:exitcode=66 UBSAN_OPTIONS=print_stacktrace=1
"$KELTROVE_CONSTRUCTION/essais/cocoa/vie_des_objets"
# Chaque part des scénarios a son écran : deux applications s’y prendraient le clavier.
parts=3
jouer_une_part() {
  trap fermer_l_ecran_virtuel EXIT
  ouvrir_un_ecran_virtuel
  python3 "$ici/essayer.py" "$@"
}
travaux=()
for ((part = 0; part < parts; part++)); do
  (jouer_une_part "$part/$parts" "$@") &
  travaux+=($!)
done
etat=0
for travail in "${travaux[@]}"; do wait "$travail" || etat=1; done
[ $etat = 0 ] || abandonner "Des scénarios du bureau macOS échouent : relancez « essais/cocoa/lancer.sh » avec leur nom."
dire "Le bureau macOS, contre GNUstep : réussi."
