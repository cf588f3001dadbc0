#!/usr/bin/env bash
# Installe le même paquet dans des Debian neuves, s’en sert comme une personne, le retire, et regarde ce qu’il en reste.
#   outils/essai-paquet.sh [version…]     par défaut : bookworm trixie (Debian 12, puis 13)
# En administrateur ; demande le réseau, et quelques minutes. Les outils de l’essai (écran virtuel, bus, frappes) restent
# dehors : la Debian neuve ne reçoit que le paquet.
set -euo pipefail
. "$(dirname "$0")/commun.sh"
[ "$(id -u)" = 0 ] || abandonner "Il faut être administrateur pour faire une Debian neuve : relancez en root."
versions=("$@")
[ $# -gt 0 ] || versions=(bookworm trixie)
installer_ce_qui_manque "${paquets_construction[@]}" "${paquets_ecran[@]}" "${paquets_essais[@]}" debootstrap
"$racine/outils/paquet.sh"

ici=$(. /etc/os-release && echo "$VERSION_CODENAME")
depot=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME)' 'Created-By: Packages' |
  awk -v ici="$ici" '$2 == ici {print $1; exit}')
neuve=""
points=(dev/shm dev/pts dev proc sys)
demonter() {
  local point
  for point in "${points[@]}"; do ! mountpoint -q "$neuve/$point" || umount "$@" "$neuve/$point" || return 1; done
}
effacer() { [ -z "$neuve" ] || { demonter -l; rm -rf --one-file-system "$neuve"; }; neuve=""; }
trap effacer EXIT

dedans() { chroot "$neuve" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }

faire_une_debian_neuve() {
  dire "Je fais une Debian neuve ($1)…"
  neuve=$(mktemp -d)
  chmod 755 "$neuve" # ana doit pouvoir y entrer
  debootstrap --variant=minbase "$1" "$neuve" "$depot" >/dev/null || abandonner "La Debian neuve n’a pas pu se faire."
  cp /etc/resolv.conf /etc/hosts "$neuve/etc/"
  # Les dépôts d’ici, à sa version ; la clé que l’un nommerait porte un autre nom là-bas.
  if [ -f /etc/apt/sources.list.d/debian.sources ]; then
    rm -f "$neuve/etc/apt/sources.list"
    sed "s/$ici/$1/g; /^Signed-By/d" /etc/apt/sources.list.d/debian.sources >"$neuve/etc/apt/sources.list.d/debian.sources"
  fi
  grep -lE 'Acquire|Proxy' /etc/apt/apt.conf.d/* 2>/dev/null | xargs -r cp -t "$neuve/etc/apt/apt.conf.d/"
  local point
  for point in proc sys dev; do mount --bind "/$point" "$neuve/$point"; done
  mount -t devpts devpts "$neuve/dev/pts" -o newinstance,ptmxmode=0666 2>/dev/null || mount --bind /dev/pts "$neuve/dev/pts"
  mount -t tmpfs tmpfs "$neuve/dev/shm" -o mode=1777
}

installer() {
  cp "$racine"/build/release/paquets/*.deb "$neuve/root/"
  dedans apt-get update -qq
  dire "apt install ./$(basename "$neuve"/root/*.deb) ($1)…"
  dedans sh -c 'apt-get install -y -qq /root/keltrove_*.deb >/root/apt.log 2>&1' || { tail -n 20 "$neuve/root/apt.log" >&2; abandonner "Le paquet ne s’installe pas ($1)."; }
  local liens
  liens=$(dedans sh -c 'for f in $(dpkg -L keltrove | grep -E "/bin/keltrove$|[.]so$|[.]node$"); do ldd "$f"; done')
  ! grep 'not found' <<<"$liens" || abandonner "Une bibliothèque manque à la copie installée ($1)."
  dedans useradd --create-home --shell /bin/bash ana
}

retirer() {
  dire "apt purge keltrove ($1)…"
  dedans sh -c 'apt-get purge -y -qq keltrove >/root/apt.log 2>&1' || abandonner "Le paquet ne se retire pas ($1)."
  local restes
  restes=$(cd "$neuve" && find . -xdev \( -path ./home -o -path ./root -o -path ./proc -o -path ./var/lib/dpkg/info \) -prune -o -iname '*keltrove*' -print)
  [ -z "$restes" ] || abandonner "Le retrait laisse ($1) : $restes"
  dire "Il ne reste que les fichiers d’ana :"
  (cd "$neuve/home/ana" && find . -type f ! -name '.bash*' ! -name .profile | sort)
}

for version in "${versions[@]}"; do
  faire_une_debian_neuve "$version"
  installer "$version"
  KELTROVE_RACINE="$neuve" KELTROVE_ESSAIS=installation.py "$racine/essais/bout-en-bout/lancer.sh"
  retirer "$version"
  demonter || abandonner "Un processus de l’application lui a survécu ($version)."
  effacer
done
dire "Le même paquet s’installe, marche et se retire : ${versions[*]}."
