#!/usr/bin/env bash
# Les essais de bout en bout, sur un écran virtuel et un bus à eux.
#   essais/bout-en-bout/lancer.sh [filtre…] [-ecarte…]     par exemple : essais/bout-en-bout/lancer.sh reessayer
set -euo pipefail
ici=$(cd "$(dirname "$0")" && pwd)

if [ -z "${KELTROVE_BUS_D_ESSAI:-}" ]; then
  # Le dossier personnel d’abord : le bus d’accessibilité y pose sa prise, et deux essais à la fois s’y gêneraient.
  export KELTROVE_BUS_D_ESSAI=1 HOME XDG_DATA_HOME XDG_CACHE_HOME XDG_CONFIG_HOME
  HOME=$(mktemp -d)
  XDG_DATA_HOME=$HOME/data XDG_CACHE_HOME=$HOME/cache XDG_CONFIG_HOME=$HOME/config
  exec dbus-run-session -- "$0" "$@"
fi

. "$ici/../../outils/commun.sh"
export KELTROVE_CONSTRUCTION="${KELTROVE_CONSTRUCTION:-$racine/build/release}"
export PYTHONPATH=$ici/../parite LANG=C.UTF-8 LC_ALL=C.UTF-8 GTK_A11Y=atspi GTK_THEME=Adwaita PYTHONDONTWRITEBYTECODE=1
# Une construction assainie : les erreurs d’adresse comptent. Les fuites se cherchent dans les essais unitaires : le
# ramasse-miettes de la page arrête le chercheur de fuites.
export ASAN_OPTIONS=detect_leaks=0:verify_asan_link_order=0:exitcode=66 UBSAN_OPTIONS=print_stacktrace=1
unset WAYLAND_DISPLAY NO_AT_BRIDGE XDG_STATE_HOME
trap 'fermer_l_ecran_virtuel; rm -rf "$HOME"' EXIT
# Des touches, le gestionnaire de fenêtres ne garde que celle qui ferme : les autres s’essaient toutes.
mkdir -p "$XDG_CONFIG_HOME/openbox"
sed '/<keyboard>/,/<\/keyboard>/c <keyboard><keybind key="A-F4"><action name="Close"/></keybind></keyboard>' \
  /etc/xdg/openbox/rc.xml >"$XDG_CONFIG_HOME/openbox/rc.xml"
ouvrir_un_ecran_virtuel
# Chaque application a son bus de session, mais toutes se lisent sur ce seul bus d’accessibilité.
dbus-update-activation-environment DISPLAY
AT_SPI_BUS_ADDRESS=$(dbus-send --session --print-reply=literal --dest=org.a11y.Bus /org/a11y/bus org.a11y.Bus.GetAddress)
export AT_SPI_BUS_ADDRESS=${AT_SPI_BUS_ADDRESS##* }
cd "$ici"
/usr/bin/python3 essayer.py "$@"
