# Complète « keltrove verifier-inventaire <dossier> <clé> ».
_keltrove() {
  local mot=${COMP_WORDS[COMP_CWORD]}
  COMPREPLY=()
  case $COMP_CWORD in
    1) mapfile -t COMPREPLY < <(compgen -W verifier-inventaire -- "$mot") ;;
    2) [ "${COMP_WORDS[1]}" = verifier-inventaire ] && compopt -o filenames && mapfile -t COMPREPLY < <(compgen -d -- "$mot") ;;
    3) [ "${COMP_WORDS[1]}" = verifier-inventaire ] && compopt -o filenames && mapfile -t COMPREPLY < <(compgen -f -- "$mot") ;;
  esac
}
complete -F _keltrove keltrove
