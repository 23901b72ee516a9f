# Completion of brindle's one argument for bash.
_brindle() {
    [ "$COMP_CWORD" -eq 1 ] || return
    local word=${COMP_WORDS[1]}
    mapfile -t COMPREPLY < <(compgen -W 'paste copy preferences log quit --help --version' -- "$word")
}
complete -F _brindle brindle
