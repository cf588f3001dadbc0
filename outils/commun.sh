# shellcheck shell=bash disable=SC2034 # ce que lit un script qui lit celui-ci
# Ce que les outils partagent : installer ce qui manque, construire, ouvrir un écran virtuel.
# À lire par « . » depuis un script bash lancé avec « set -euo pipefail ».

racine=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

dire() { printf '%s\n' "$*"; }
abandonner() {
  printf '%s\n' "$*" >&2
  exit 1
}

paquets_construction=(g++ cmake ninja-build pkg-config libgtkmm-4.0-dev libx11-dev libwayland-dev libegl-dev
  libwebkitgtk-6.0-dev libcurl4-openssl-dev libssl-dev nlohmann-json3-dev libutf8proc-dev libfmt-dev ca-certificates)
paquets_execution=(fonts-dejavu-core adwaita-icon-theme dbus xdg-utils)
paquets_ecran=(xvfb openbox imagemagick)
paquets_essais=(libgtest-dev xdotool xclip zsh fish chromium firefox-esr bubblewrap iproute2 ibus ibus-gtk4 ibus-unikey x11-xkb-utils at-spi2-core file python3 python3-gi
  gir1.2-atspi-2.0 gir1.2-gtk-4.0 gir1.2-vte-2.91 gsettings-desktop-schemas dunst locales procps x11-utils weston)
# Pour les bancs seuls : ce à quoi l’on se compare, et de quoi le mesurer.
paquets_bancs=(xfce4-terminal chromium libxtst6 libxdamage1 xdotool python3)
paquets_paquet=(dpkg-dev file lintian desktop-file-utils appstream man-db zsh)
paquets_linters=(clang-format-19 pyflakes3 shellcheck)
paquets_portabilite=(clang-19 clang-tidy-19 clang-format-19 gcovr libclang-rt-19-dev libc++-19-dev libc++abi-19-dev)
# Pour contrôler la version de macOS sans Mac.
paquets_macos=(clang-19 lld-19 llvm-19 libc++-19-dev libgtest-dev binutils python3)
# Pour le bureau macOS, construit et essayé ici contre le GNUstep de Debian 12.
paquets_cocoa=(clang-19 libclang-rt-19-dev libobjc-12-dev libblocksruntime-dev libgnustep-base-dev libgnustep-gui-dev
  gnustep-back0.29-cairo gnustep-back-common gnustep-gui-runtime fonts-dejavu-core python3)

est_installe() { [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

en_administrateur() {
  if [ "$(id -u)" = 0 ]; then "$@"; elif command -v sudo >/dev/null; then sudo "$@"; else
    abandonner "Il faut être administrateur pour installer ces paquets : relancez en root, ou installez sudo."
  fi
}

# installer_ce_qui_manque <paquets…> : dit ce qu’il installe, puis l’installe. Ne fait rien la seconde fois.
installer_ce_qui_manque() {
  command -v apt-get >/dev/null || abandonner "Ce script installe des paquets Debian : il lui faut apt-get (Debian 12 ou voisine)."
  local manquants=() paquet
  for paquet in "$@"; do est_installe "$paquet" || manquants+=("$paquet"); done
  # Un Node venu d’ailleurs convient aussi, s’il est assez récent et apporte npm.
  command -v node >/dev/null || manquants+=(nodejs)
  command -v npm >/dev/null || manquants+=(npm)
  if [ ${#manquants[@]} -gt 0 ]; then
    dire "J’installe : ${manquants[*]}"
    en_administrateur apt-get update -qq || abandonner "Impossible de lire la liste des paquets : vérifiez la connexion et /etc/apt/sources.list."
    # Un réglage de la machine que le paquet apporte aussi reste tel quel, sans question : personne n’y répondrait.
    en_administrateur env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
      -o Dpkg::Options::=--force-confdef -o Dpkg::Options::=--force-confold "${manquants[@]}" >/dev/null || abandonner "Debian n’a pas pu installer ces paquets : ${manquants[*]}"
  fi
  [ "$(node -p 'process.versions.node.split(".")[0]')" -ge 18 ] ||
    abandonner "Le serveur demande Node 18 ou plus récent ; celui-ci est $(node --version)."
}

# construire <préréglage> [options de cmake…]
construire() {
  local prereglage=$1 trace
  shift
  trace=$(mktemp)
  mkdir -p "$racine/build"
  dire "Je construis ($prereglage)…"
  # Deux étapes peuvent vouloir la même à la fois : la seconde la trouve faite.
  if ! (cd "$racine" && flock 9 && cmake --preset "$prereglage" "$@" && cmake --build --preset "$prereglage") \
    >"$trace" 2>&1 9>"$racine/build/.$prereglage.verrou"; then
    tail -n 60 "$trace" >&2
    rm -f "$trace"
    abandonner "La construction « $prereglage » a échoué : l’erreur est juste au-dessus."
  fi
  grep -E '(warning|avertissement):' "$trace" || true
  rm -f "$trace"
}

# ouvrir_un_ecran_virtuel : démarre Xvfb et un gestionnaire de fenêtres, et règle DISPLAY.
ouvrir_un_ecran_virtuel() {
  local tube numero
  tube=$(mktemp -u)
  mkfifo "$tube"
  # Dans leur propre session : un Ctrl+C ne doit pas retirer l’écran sous une application qui se ferme. Sans répétition des
  # touches : relâchée tard par une machine chargée, celle d’un essai s’écrirait deux fois.
  setsid Xvfb -r -displayfd 3 -screen 0 1360x900x24 -nolisten tcp 3>"$tube" >/dev/null 2>&1 &
  pid_ecran=$!
  read -r numero <"$tube" || abandonner "L’écran virtuel n’a pas pu s’ouvrir."
  export DISPLAY=":$numero"
  unset WAYLAND_DISPLAY
  # Une fenêtre ouverte avant lui n’aurait jamais le clavier.
  tube=$tube setsid openbox --sm-disable --startup "sh -c 'echo pret >\"\$tube\"'" >/dev/null 2>&1 &
  pid_gestionnaire=$!
  read -r -t 60 _ <>"$tube" || abandonner "Le gestionnaire de fenêtres n’a pas pu s’ouvrir."
  rm -f "$tube"
}

# Au retour, ils ne sont plus là : qui nous a lancés peut démonter ce qu’ils tenaient.
fermer_l_ecran_virtuel() {
  local pid
  for pid in ${pid_gestionnaire:-} ${pid_ecran:-}; do
    kill "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
  done
}
