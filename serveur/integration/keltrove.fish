# Dit à Keltrove où commencent chaque invite, chaque commande et sa sortie, et comment elle finit. Dans
# ~/.config/fish/config.fish :
#   test -z "$KELTROVE_INTEGRATION"; or source "$KELTROVE_INTEGRATION/keltrove.fish"

# À partir de la version 4, fish dit tout cela de lui-même.
if status is-interactive; and test "$TERM" != dumb; and string match -qr '^[0-3]\.' -- $version
    function __keltrove_finit --on-event fish_postexec
        printf '\e]133;D;%s\a' $status
    end

    function __keltrove_invite --on-event fish_prompt
        printf '\e]133;A\a'
    end

    # Une ligne tenue secrète par une espace reste sans nom.
    function __keltrove_commence --on-event fish_preexec
        set -l ligne ''
        string match -q ' *' -- $argv[1]
        or set ligne (string replace -ar '\s+' ' ' -- $argv[1] | string sub -l 300 | string escape --style=url)
        printf '\e]133;C;cmdline_url=%s\a' $ligne
    end
end
