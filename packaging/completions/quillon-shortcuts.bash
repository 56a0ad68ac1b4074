# bash completion for quillon-shortcuts                    -*- shell-script -*-

# The identifiers the tool lists, each from the last parentheses of a
# "Name (identifier)" line; a name may hold parentheses of its own.
# Identifiers compare case-insensitively, so the typed prefix does too.
_quillon_shortcuts_identifiers()
{
    local tool=${words[0]} id
    while IFS= read -r id; do
        [[ ${id,,} == "${cur,,}"* ]] && COMPREPLY+=("$id")
    done < <("$tool" list --show-identifiers "$@" 2>/dev/null |
        sed -n 's/.*(\([^()]*\))$/\1/p')
}

_quillon_shortcuts()
{
    local cur prev words cword
    _init_completion || return
    COMPREPLY=()

    if ((cword == 1)); then
        COMPREPLY=($(compgen -W 'list run help --help -h' -- "$cur"))
        return
    fi

    case ${words[1]} in
        run)
            ((cword == 2)) && _quillon_shortcuts_identifiers
            ;;
        list)
            if [[ $prev == --folder-name ]]; then
                [[ none == "$cur"* ]] && COMPREPLY+=(none)
                _quillon_shortcuts_identifiers --folders
                return
            fi
            local options='--show-identifiers --folders --folder-name' word
            # Each option once, and the two folder options exclude each other.
            for word in "${words[@]:2:cword-2}"; do
                case $word in
                    --show-identifiers) options=${options/--show-identifiers/} ;;
                    --folders | --folder-name) options=${options/--folders/} options=${options/--folder-name/} ;;
                esac
            done
            COMPREPLY=($(compgen -W "$options" -- "$cur"))
            ;;
    esac
} &&
    complete -F _quillon_shortcuts quillon-shortcuts

# ex: filetype=sh
