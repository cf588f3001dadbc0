#!/usr/bin/env bash
# Installe ce qui manque, construit et ouvre Keltrove sur un vrai terminal.
#   outils/lancer.sh                        ouvre l’application
#   outils/lancer.sh --capture image.png    l’ouvre à l’abri des regards, la photographie et la referme
set -euo pipefail
. "$(dirname "$0")/commun.sh"

image=""
case "${1:-}" in
  "") ;;
  --capture)
    [ $# -eq 2 ] || abandonner "Il manque le nom de l’image : outils/lancer.sh --capture image.png"
    image=$2
    [ -d "$(dirname "$image")" ] || abandonner "Le dossier de l’image n’existe pas : $(dirname "$image")"
    ;;
  *) abandonner "Option inconnue : $1. Essayez outils/lancer.sh, ou outils/lancer.sh --capture image.png" ;;
esac

paquets=("${paquets_construction[@]}" "${paquets_execution[@]}")
sans_ecran=non
[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || sans_ecran=oui
[ -z "$image" ] || sans_ecran=oui
[ $sans_ecran = non ] || paquets+=("${paquets_ecran[@]}")
installer_ce_qui_manque "${paquets[@]}"
construire release

if [ $sans_ecran = non ]; then
  exec "$racine/build/release/keltrove"
fi

trap fermer_l_ecran_virtuel EXIT
ouvrir_un_ecran_virtuel

if [ -z "$image" ]; then
  dire "Aucun écran ici : j’en ai ouvert un virtuel ($DISPLAY). Pour une image : outils/lancer.sh --capture image.png"
  dire "ou, pendant que l’application tourne : import -display $DISPLAY -window root image.png. Ctrl+C pour quitter."
  "$racine/build/release/keltrove" &
  application=$!
  # Le même Ctrl+C atteint l’application, qui quitte poliment : il ne reste qu’à l’attendre.
  trap 'kill -TERM "$application" 2>/dev/null || true' INT TERM HUP
  while kill -0 "$application" 2>/dev/null; do wait "$application" || etat=$?; done
  exit "${etat:-0}"
fi

# Les processus de la page tiennent aussi ce tube : il finit quand le dernier d’entre eux n’est plus là.
exec {journal}< <(exec "$racine/build/release/keltrove" 2>&1 >/dev/null)
application=$!
fermer() {
  kill -TERM "$application" 2>/dev/null || true
  timeout 30 cat <&"$journal" >/dev/null || true
  fermer_l_ecran_virtuel
}
trap fermer EXIT
lignes=""
until [[ $lignes == *"[keltrove] page-contenu "* ]]; do
  IFS= read -r -t 120 -u "$journal" ligne || {
    printf '%s' "$lignes" >&2
    abandonner "La page n’est pas venue : le journal de l’application est juste au-dessus."
  }
  lignes+=$ligne$'\n'
done
import -window root "$image" || abandonner "L’image n’a pas pu être écrite : $image"
dire "Image écrite : $image"
