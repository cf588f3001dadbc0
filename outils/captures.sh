#!/usr/bin/env bash
# Refait les images de l’application : attente, chaque problème replié et déplié, page, bandeau.
#   outils/captures.sh [dossier]     (par défaut build/captures)
#   outils/captures.sh --readme      remplace aussi les images du README
set -euo pipefail
. "$(dirname "$0")/commun.sh"

pour_le_readme=non
dossier=$racine/build/captures
case "${1:-}" in
  "") ;;
  --readme) pour_le_readme=oui ;;
  -*) abandonner "Option inconnue : $1. Essayez outils/captures.sh [dossier], ou outils/captures.sh --readme" ;;
  *) dossier=$1 ;;
esac
mkdir -p "$dossier"
dossier=$(cd "$dossier" && pwd)

installer_ce_qui_manque "${paquets_construction[@]}" "${paquets_execution[@]}" "${paquets_ecran[@]}" xdotool python3 \
  fonts-noto-color-emoji
construire release
ouvrir_un_ecran_virtuel
KELTROVE_CONSTRUCTION="$racine/build/release" "$racine/outils/captures.py" "$dossier" || etat=$?
fermer_l_ecran_virtuel
[ "${etat:-0}" = 0 ] || abandonner "Une capture a échoué : la raison est juste au-dessus."

if [ $pour_le_readme = oui ]; then
  mkdir -p "$racine/paquet/images"
  for nom in page attente; do cp "$dossier/$nom.png" "$racine/paquet/images/$nom.png"; done
  cp "$dossier/mort-au-demarrage-deplie.png" "$racine/paquet/images/probleme.png"
fi
dire "Images écrites dans $dossier"
