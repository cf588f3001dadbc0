#!/usr/bin/env bash
# Fait le paquet Debian de cette version dans build/release/paquets/.
#   outils/paquet.sh                     signé d’une clé neuve, aussitôt oubliée
#   outils/paquet.sh <clé-privée.pem>    signé de celle-ci
set -euo pipefail
. "$(dirname "$0")/commun.sh"
installer_ce_qui_manque "${paquets_construction[@]}" dpkg-dev file lintian
cle=${1:+$(realpath "$1")}
construire release -DKELTROVE_CLE_PRIVEE="$cle"
(cd "$racine/build/release" && umask 022 && rm -rf paquets && cpack -G DEB >/dev/null) || abandonner "Le paquet n’a pas pu se faire."
dire "Le paquet : $(ls "$racine"/build/release/paquets/*.deb)"
lintian --fail-on error "$racine"/build/release/paquets/*.deb || abandonner "lintian a trouvé des erreurs."
