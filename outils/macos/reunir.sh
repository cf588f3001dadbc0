#!/usr/bin/env bash
# Réunit deux paquets, chacun construit pour un processeur, en un seul qui sert aux deux.
#   outils/macos/reunir.sh <paquet arm64> <paquet x86_64> <paquet réuni>
set -euo pipefail
lipo=$(command -v lipo || echo /usr/lib/llvm-19/bin/llvm-lipo)
rm -rf "$3"
mkdir -p "$(dirname "$3")"
cp -R "$1" "$3"
"$lipo" -create "$1/Contents/MacOS/Keltrove" "$2/Contents/MacOS/Keltrove" -output "$3/Contents/MacOS/Keltrove"
