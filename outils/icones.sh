#!/usr/bin/env bash
# Refait les images de l’icône, aux tailles que les bureaux demandent, à partir des deux dessins.
set -euo pipefail
. "$(dirname "$0")/commun.sh"
installer_ce_qui_manque librsvg2-bin
cd "$racine/paquet/icones"
for taille in 16 22 24; do rsvg-convert -w $taille -h $taille -o $taille.png keltrove-petite.svg; done
for taille in 32 48 64 128 256; do rsvg-convert -w $taille -h $taille -o $taille.png keltrove.svg; done
