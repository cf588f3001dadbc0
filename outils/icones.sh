#!/usr/bin/env bash
# Refait les images de l’icône, aux tailles que les bureaux demandent, à partir des deux dessins.
set -euo pipefail
. "$(dirname "$0")/commun.sh"
installer_ce_qui_manque librsvg2-bin python3
cd "$racine/paquet/icones"
for taille in 16 22 24; do rsvg-convert -w $taille -h $taille -o $taille.png keltrove-petite.svg; done
for taille in 32 48 64 128 256; do rsvg-convert -w $taille -h $taille -o $taille.png keltrove.svg; done

# Celle de macOS les réunit, avec deux plus grandes qui ne servent qu’à elle.
images=$(mktemp -d)
trap 'rm -rf "$images"' EXIT
for taille in 512 1024; do rsvg-convert -w $taille -h $taille -o "$images/$taille.png" keltrove.svg; done
cp {16,32,64,128,256}.png "$images"
python3 "$racine/outils/macos/faire_icns.py" "$images" "$racine/paquet/macos/keltrove.icns"
