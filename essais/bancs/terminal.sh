#!/usr/bin/env bash
# Mesure le terminal dans la fenêtre de l’application, à tour de rôle avec xfce4-terminal (VTE) et WeTTY dans Chromium :
# touche → pixel, gros fichier, flot sans fin interrompu, mémoire. À lancer à la main ; compter quatre minutes par passe.
#   essais/bancs/terminal.sh [passes, 5 par défaut] [touches|fichier|flot|memoire|vingt …]
# BANC_PARMI : les programmes voulus, « Keltrove,VTE » par exemple. BANC_AUTRE : le dossier où WeTTY est installé.
set -euo pipefail
. "$(dirname "$0")/../../outils/commun.sh"

if [ -z "${KELTROVE_BANC_LANCE:-}" ]; then
  installer_ce_qui_manque "${paquets_construction[@]}" "${paquets_execution[@]}" "${paquets_ecran[@]}" "${paquets_bancs[@]}"
  construire release
  # Deux séries à la fois se fausseraient l’une l’autre.
  exec env KELTROVE_BANC_LANCE=1 flock -o "${TMPDIR:-/tmp}/keltrove-banc.verrou" dbus-run-session -- "$0" "$@"
fi
# Ce que la machine fait d’autre ne doit pas compter : ce que l’on mesure passe devant, mais garde entre soi le partage
# ordinaire du processeur, que fausserait le temps réel.
groupe=/sys/fs/cgroup/cpu/keltrove-banc
if mkdir -p $groupe 2>/dev/null; then
  echo 262144 >$groupe/cpu.shares
  echo $$ >$groupe/cgroup.procs
else
  dire "Sans groupe de processeur à soi, ces mesures comptent aussi ce que la machine fait d’autre."
fi
export LANG=C.UTF-8 LC_ALL=C.UTF-8 NO_AT_BRIDGE=1
fermer() {
  fermer_l_ecran_virtuel
  if echo $$ >"${groupe%/*}/cgroup.procs"; then rmdir "$groupe" || true; fi
} 2>/dev/null
trap fermer EXIT
ouvrir_un_ecran_virtuel
python3 "$racine/essais/bancs/terminal.py" "$racine/build/release/keltrove" "${BANC_AUTRE:-${TMPDIR:-/tmp}/banc-wetty}" "$@"
