# Dit à Keltrove où commencent chaque invite, chaque commande et sa sortie, et comment elle finit. À la fin de ~/.bashrc :
#   [ -z "$KELTROVE_INTEGRATION" ] || . "$KELTROVE_INTEGRATION/keltrove.bash"

[[ $- == *i* && ${TERM-} != dumb && -z ${__keltrove_pret-} ]] || return 0
((BASH_VERSINFO[0] * 100 + BASH_VERSINFO[1] >= 501)) && shopt -q promptvars || return 0
__keltrove_pret=1

__keltrove_finit() {
  builtin printf '\e]133;D;%s\a' "$?"
}

# Une invite peut être refaite à chaque fois par un autre : la nôtre l’entoure de nouveau.
__keltrove_invite() {
  [[ $PS1 == *'133;A'* ]] || PS1='\[\e]133;A\a\]'$PS1'\[\e]133;B\a\]'
  [[ ${PS0-} == *__keltrove_commence* ]] || PS0=${PS0-}'$(__keltrove_commence)'
  __keltrove_rang='\!'
  __keltrove_rang=${__keltrove_rang@P}
  # Vide, l’historique dit « 1 », comme avec une seule ligne.
  [[ $__keltrove_rang != 1 || -n $(builtin history 1) ]] || __keltrove_rang=0
}

# Une ligne que l’historique n’a pas voulue est répétée, ou tenue secrète par une espace : elle reste sans nom.
__keltrove_commence() {
  local rang='\!' ligne=''
  if [[ ${rang@P} != "$__keltrove_rang" ]]; then
    ligne=$(HISTTIMEFORMAT='' builtin history 1)
    [[ $ligne =~ ^\ *[0-9]+\*?\ +(.*) ]] && ligne=${BASH_REMATCH[1]:0:300}
  fi
  ligne=${ligne//%/%25}
  ligne=${ligne//;/%3B}
  builtin printf '\e]133;C;cmdline_url=%s\a' "${ligne//[[:cntrl:]]/ }"
}

# D’abord le statut, que rien n’a encore changé ; l’invite après tous ceux qui la refont.
PROMPT_COMMAND=(__keltrove_finit ${PROMPT_COMMAND[@]+"${PROMPT_COMMAND[@]}"} __keltrove_invite)
