# bash completion for quillon                              -*- shell-script -*-

_quillon()
{
    local cur prev words cword
    _init_completion || return

    case $prev in
        --depth | --search)
            # A number or free text: nothing to offer.
            return
            ;;
    esac

    if [[ $cur == -* ]]; then
        local options='--autostart --toggle-search --menu --settings
            --print-menu --search --print-layout
            -h --help --help-all -v --version'
        # Submenu levels only mean something to --print-menu.
        [[ " ${words[*]} " == *" --print-menu "* ]] && options+=' --depth'
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
    fi
} &&
    complete -F _quillon quillon

# ex: filetype=sh
