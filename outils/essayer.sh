#!/usr/bin/env bash
# Installe ce que les essais demandent, construit, et passe tous les essais, étape par étape.
#   outils/essayer.sh                           toutes les étapes
#   outils/essayer.sh --rapide                  sans les assainisseurs, clang, le paquet ni le bureau macOS
#   outils/essayer.sh unitaires bout-en-bout    celles-ci seulement, dans cet ordre
#   outils/essayer.sh --etapes                  leur liste
set -euo pipefail
. "$(dirname "$0")/commun.sh"
. "$(dirname "$0")/etapes.sh"

devant=() fond=()
for choix in "$@"; do
  case $choix in
    --etapes) lister_les_etapes; exit ;;
    --rapide) devant+=("${etapes_rapides[@]}") construction_native=release ;;
    *)
      [[ " ${etapes[*]} " = *" $choix "* ]] || { lister_les_etapes >&2; abandonner "Je ne connais pas l’étape « $choix »."; }
      devant+=("$choix")
      ;;
  esac
done
if [ $# -eq 0 ]; then
  gnustep_est_connu || dire "Sans le bureau macOS, qui ne s’essaie que sous Debian 12."
  devant=("${etapes_rapides[@]}" "${etapes_lentes[@]}") fond=("${etapes_de_fond[@]}")
fi

# passer <étape> : son état, sa durée et ce qu’elle dit vont dans $bilan. Une étape ratée n’empêche pas les suivantes de dire ce
# qu’elles ont à dire. À part et attendue, et non dans une condition, où bash ne s’arrêterait plus à la première faute.
passer() {
  local debut=$SECONDS etat=0
  dire "=== $1"
  ("etape_${1//-/_}" 2>&1 | tee "$bilan/$1.sortie") &
  wait $! || etat=$?
  echo "$etat $((SECONDS - debut))" >"$bilan/$1.etat"
}

# Ce qui a échoué se redit à la fin : d’une longue sortie, on ne garde et ne lit souvent que cela.
redire_les_echecs() {
  local etape etat
  for etape in "${devant[@]}" "${fond[@]}"; do
    etat=0
    [ ! -e "$bilan/$etape.etat" ] || read -r etat _ <"$bilan/$etape.etat"
    [ "$etat" != 0 ] || continue
    dire "=== L’étape « $etape » a échoué ; seule : outils/essayer.sh $etape"
    grep -aE '^(FAIL|ERROR): |^not ok |\*\*\*(Failed|Timeout|Exception)' "$bilan/$etape.sortie" || true
    tail -n 60 "$bilan/$etape.sortie"
  done
}

resumer() {
  local etape etat duree
  redire_les_echecs
  dire "=== En $((SECONDS / 60)) min $((SECONDS % 60)) s :"
  for etape in "${devant[@]}" "${fond[@]}"; do
    etat='' duree=0
    [ ! -e "$bilan/$etape.etat" ] || read -r etat duree <"$bilan/$etape.etat"
    case $etat in 0) etat="réussie" ;; "") etat="interrompue" ;; *) etat="ÉCHOUÉE" ;; esac
    printf '  %-13s %3d min %02d s  %s\n' "$etape" $((duree / 60)) $((duree % 60)) "$etat"
  done
  rm -rf "$bilan" "$trace_du_fond"
}

paquets=("${paquets_construction[@]}" "${paquets_execution[@]}" "${paquets_ecran[@]}" "${paquets_essais[@]}" "${paquets_linters[@]}")
[ $construction_native = release ] ||
  paquets+=("${paquets_portabilite[@]}" "${paquets_paquet[@]}" "${paquets_macos[@]}")
[[ " ${devant[*]} " != *" cocoa "* ]] || ! gnustep_est_connu || paquets+=("${paquets_cocoa[@]}")
installer_ce_qui_manque "${paquets[@]}"

bilan=$(mktemp -d)
trap resumer EXIT
trap 'trap - INT; kill 0' INT
derriere() {
  renice -n 10 "$BASHPID" >/dev/null
  for etape in "${fond[@]}"; do passer "$etape"; done
}
trace_du_fond=$(mktemp)
derriere >"$trace_du_fond" 2>&1 &
for etape in "${devant[@]}"; do passer "$etape"; done
wait
cat "$trace_du_fond"
! grep -qv '^0 ' "$bilan"/*.etat
