#!/usr/bin/env bash
# Fait le paquet Debian de cette version dans build/release/paquets/, et en vérifie chaque partie par son propre outil.
#   outils/paquet.sh                     signé d’une clé neuve, aussitôt oubliée
#   outils/paquet.sh <clé-privée.pem>    signé de celle-ci
set -euo pipefail
. "$(dirname "$0")/commun.sh"
installer_ce_qui_manque "${paquets_construction[@]}" "${paquets_paquet[@]}"
cle=${1:+$(realpath "$1")}

# controler <ce que l’on contrôle> <commande…> : s’arrête en montrant ce que la commande y trouve à redire.
controler() {
  local trace
  trace=$("${@:2}" 2>&1) || { printf '%s\n' "$trace" >&2; abandonner "Le contrôle a échoué : $1."; }
}

# man dit ses avertissements et réussit quand même.
manuel_sans_avertissement() {
  local dits
  dits=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$1" 2>&1 >/dev/null)
  [ -z "$dits" ] || { dire "$dits"; return 1; }
}

# Chaque titulaire nommé dans la licence d’un module livré se retrouve dans la notice.
notices_completes() {
  local titulaire oublie=0
  while IFS= read -r titulaire; do
    grep -qF -- "$titulaire" "$racine/paquet/copyright" || { dire "Oublié : $titulaire"; oublie=1; }
  done < <(find "$1" -iname 'LICENSE*' -exec grep -hE '^ *Copyright' {} + |
    sed -E 's/^ *Copyright( \(c\))? [0-9, –-]*(present )?//; s/ *[<(].*//' | sort -u)
  return $oublie
}

controler_le_contenu() {
  local contenu=$1/usr/share manuel
  controler "entrée de bureau" desktop-file-validate "$contenu"/applications/*.desktop
  controler "métadonnées" appstreamcli validate --no-net --pedantic --explain "$contenu"/metainfo/*.metainfo.xml
  for manuel in "$contenu"/man/man1/keltrove.1.gz "$contenu"/man/fr/man1/keltrove.1.gz; do
    controler "manuel $manuel" manuel_sans_avertissement "$manuel"
  done
  controler "complétion de bash" bash -n "$contenu/bash-completion/completions/keltrove"
  controler "complétion de zsh" zsh -n "$contenu/zsh/vendor-completions/_keltrove"
  controler "notices des licences" notices_completes "$contenu/keltrove/keltrove/node_modules"
}

construire release -DKELTROVE_CLE_PRIVEE="$cle"
(cd "$racine/build/release" && umask 022 && rm -rf paquets && cpack -G DEB >/dev/null) || abandonner "Le paquet n’a pas pu se faire."
paquet=$(ls "$racine"/build/release/paquets/*.deb)
deplie=$(mktemp -d)
trap 'rm -rf "$deplie"' EXIT
dpkg-deb -x "$paquet" "$deplie"
controler_le_contenu "$deplie"
lintian --fail-on error "$paquet" || abandonner "lintian a trouvé des erreurs."
dire "Le paquet : $paquet"
