# Dit à Keltrove où commencent chaque invite, chaque commande et sa sortie, et comment elle finit. À la fin de ~/.zshrc :
#   [ -z "$KELTROVE_INTEGRATION" ] || . "$KELTROVE_INTEGRATION/keltrove.zsh"

[[ -o interactive && ${TERM-} != dumb && -z ${__keltrove_pret-} ]] || return 0
__keltrove_pret=1

__keltrove_finit() {
  builtin printf '\e]133;D;%s\a' $?
}

# Une invite peut être refaite à chaque fois par un autre : la nôtre l’entoure de nouveau.
__keltrove_invite() {
  [[ $PS1 == *'133;A'* ]] || PS1=$'%{\e]133;A\a%}'$PS1$'%{\e]133;B\a%}'
}

# Une ligne tenue secrète par une espace reste sans nom.
__keltrove_commence() {
  local ligne=''
  [[ -o hist_ignore_space && $1 == ' '* ]] || ligne=${1[1,300]}
  ligne=${ligne//\%/%25}
  ligne=${ligne//;/%3B}
  builtin printf '\e]133;C;cmdline_url=%s\a' ${ligne//[[:cntrl:]]/ }
}

# D’abord le statut, que rien n’a encore changé ; l’invite après tous ceux qui la refont.
precmd_functions=(__keltrove_finit $precmd_functions __keltrove_invite)
preexec_functions+=(__keltrove_commence)
