#!/usr/bin/env bash
# Mesure le démarrage, la mémoire, le repos et la fermeture, côte à côte avec une fenêtre WebKitGTK nue et avec
# Chromium en mode application. À lancer à la main ; compter une dizaine de minutes.
#   essais/bancs/demarrage.sh [nombre de passes, 10 par défaut]
set -euo pipefail
. "$(dirname "$0")/../../outils/commun.sh"

installer_ce_qui_manque "${paquets_construction[@]}" "${paquets_execution[@]}" "${paquets_ecran[@]}" python3 chromium
construire release
etalon=$racine/build/release/fenetre-nue
# shellcheck disable=SC2046
gcc -O2 -o "$etalon" "$racine/essais/bancs/fenetre-nue.c" $(pkg-config --cflags --libs gtk4 webkitgtk-6.0)
# La même, avec les bibliothèques que l’application charge en plus : ce que coûte de les lier, et rien d’autre.
# shellcheck disable=SC2046
gcc -O2 -o "$etalon-liee" "$racine/essais/bancs/fenetre-nue.c" $(pkg-config --cflags gtk4 webkitgtk-6.0) -Wl,--no-as-needed \
  $(pkg-config --libs gtk4 webkitgtk-6.0 gtkmm-4.0 libcurl libcrypto)
trap fermer_l_ecran_virtuel EXIT
ouvrir_un_ecran_virtuel
python3 "$racine/essais/bancs/demarrage.py" "$racine/build/release/keltrove" "$etalon" "${1:-10}"
