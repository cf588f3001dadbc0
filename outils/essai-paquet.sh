#!/usr/bin/env bash
# Installe le paquet dans une Debian 12 neuve, s’en sert comme une personne, le retire, et regarde ce qu’il en reste.
#   outils/essai-paquet.sh           en administrateur ; demande le réseau, et quelques minutes
# Les outils de l’essai (écran virtuel, bus, frappes) restent dehors : la Debian neuve ne reçoit que le paquet.
set -euo pipefail
. "$(dirname "$0")/commun.sh"
[ "$(id -u)" = 0 ] || abandonner "Il faut être administrateur pour faire une Debian neuve : relancez en root."
installer_ce_qui_manque "${paquets_construction[@]}" "${paquets_ecran[@]}" "${paquets_essais[@]}" debootstrap
"$racine/outils/paquet.sh"

neuve=$(mktemp -d)
chmod 755 "$neuve" # ana doit pouvoir y entrer
demonter() { for point in dev/shm dev/pts dev proc sys; do umount -l "$neuve/$point" 2>/dev/null || true; done; }
trap 'demonter; rm -rf --one-file-system "$neuve"' EXIT
depot=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME)' 'Created-By: Packages' | awk '$2 == "bookworm" {print $1; exit}')
dire "Je fais une Debian neuve…"
debootstrap --variant=minbase bookworm "$neuve" "$depot" >/dev/null || abandonner "La Debian neuve n’a pas pu se faire."
cp /etc/resolv.conf /etc/hosts "$neuve/etc/"
rm -f "$neuve/etc/apt/sources.list"
cp -r /etc/apt/sources.list /etc/apt/sources.list.d "$neuve/etc/apt/" 2>/dev/null || true
grep -lE 'Acquire|Proxy' /etc/apt/apt.conf.d/* 2>/dev/null | xargs -r cp -t "$neuve/etc/apt/apt.conf.d/"
for point in proc sys dev; do mount --bind "/$point" "$neuve/$point"; done
mount -t devpts devpts "$neuve/dev/pts" -o newinstance,ptmxmode=0666 2>/dev/null || mount --bind /dev/pts "$neuve/dev/pts"
mount -t tmpfs tmpfs "$neuve/dev/shm" -o mode=1777

dedans() { chroot "$neuve" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }
cp "$racine"/build/release/paquets/*.deb "$neuve/root/"
dedans apt-get update -qq
dire "apt install ./$(basename "$neuve"/root/*.deb)…"
dedans sh -c 'apt-get install -y -qq /root/keltrove_*.deb >/root/apt.log 2>&1' || { tail -n 20 "$neuve/root/apt.log" >&2; abandonner "Le paquet ne s’installe pas."; }
dedans useradd --create-home --shell /bin/bash ana
KELTROVE_RACINE="$neuve" KELTROVE_ESSAIS=installation.py "$racine/essais/bout-en-bout/lancer.sh"

dire "apt purge keltrove…"
dedans sh -c 'apt-get purge -y -qq keltrove >/root/apt.log 2>&1' || abandonner "Le paquet ne se retire pas."
restes=$(cd "$neuve" && find . -xdev \( -path ./home -o -path ./root -o -path ./proc -o -path ./var/lib/dpkg/info \) -prune -o -iname '*keltrove*' -print)
[ -z "$restes" ] || abandonner "Le retrait laisse : $restes"
dire "Il ne reste que les fichiers d’ana :"
(cd "$neuve/home/ana" && find . -type f ! -name '.bash*' ! -name .profile | sort)
