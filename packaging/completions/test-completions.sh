#!/bin/bash
# Completes a few command lines in bash, zsh and fish with the completions in
# this folder and a stand-in quillon-shortcuts, and compares what each offers.
# Needs bash-completion, zsh and fish.
set -u
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The stand-in lists fixed entries. A name may hold parentheses of its own;
# only the last pair is the identifier.
mkdir "$work/bin" "$work/elsewhere"
cat >"$work/bin/quillon-shortcuts" <<'EOF'
#!/bin/sh
case " $* " in
*" --folders "*) printf '%s\n' 'Work (F0A1-WORK)' 'Old (2024) (F0B2-OLD)' ;;
*) printf '%s\n' 'Backup (AB12-BACKUP)' 'Say (hi) (AC34-SAY)' 'Sync (BD56-SYNC)' ;;
esac
EOF
chmod +x "$work/bin/quillon-shortcuts"
cp "$work/bin/quillon-shortcuts" "$work/elsewhere/"
# fish loads completions only for commands it finds.
printf '#!/bin/sh\n' >"$work/bin/quillon"
chmod +x "$work/bin/quillon"
export PATH="$work/bin:$PATH" HOME="$work" XDG_CONFIG_HOME="$work/config" XDG_DATA_HOME="$work/data"

bash_complete() {
    bash --norc --noprofile -c '
        source /usr/share/bash-completion/bash_completion
        source "$1/quillon.bash"
        source "$1/quillon-shortcuts.bash"
        COMP_LINE=$2 COMP_POINT=${#2}
        read -ra COMP_WORDS <<<"$2"
        [[ $2 == *" " ]] && COMP_WORDS+=("")
        COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
        registered=($(complete -p "${COMP_WORDS[0]##*/}"))
        "${registered[-2]}" "${COMP_WORDS[0]}" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD-1]}"
        printf "%s\n" "${COMPREPLY[@]}"' _ "$here" "$1"
}

# zsh completes only in its line editor, so an interactive zsh runs on a
# pseudo-terminal: compadd reports each match it is handed, and the shell
# exits once the completion is done.
zsh_complete() {
    timeout 30 zsh -f -c '
        zmodload zsh/zpty
        zpty z zsh -f -i
        zpty -w z "fpath=($1 \$fpath); autoload -U compinit; compinit -u -D"
        zpty -w z "compadd() { local -a m; builtin compadd -A m \"\$@\"; print -rl -- \${:-MA}TCH:\${^m}; builtin compadd \"\$@\"; }"
        zpty -w z "comppostfuncs=(exit)"
        zpty -w -n z "$2"$'\''\t'\''
        while zpty -r z chunk; do print -rn -- "$chunk"; done' _ "$here" "$1" |
        tr -d '\r' | grep -ao 'MATCH:.*' | cut -d: -f2-
}

fish_complete() {
    fish --no-config -c 'set -p fish_complete_path $argv[1]; complete -C $argv[2]' "$here" "$1" | cut -f1
}

failures=0
check() { # shell, command line, expected matches (any order)
    local got expected
    got=$("$1_complete" "$2" | sort -u | sed '/^$/d')
    expected=$(printf '%s\n' "${@:3}" | sort -u | sed '/^$/d')
    if [[ $got != "$expected" ]]; then
        printf 'FAIL %s: "%s"\n  expected: %s\n  got:      %s\n' "$1" "$2" "${expected//$'\n'/ }" "${got//$'\n'/ }"
        failures=$((failures + 1))
    fi
}

for shell in bash zsh fish; do
    # quillon: options, --depth only beside --print-menu, nothing for free text.
    check $shell 'quillon --tog' --toggle-search
    check $shell 'quillon --print-l' --print-layout
    check $shell 'quillon --de'
    check $shell 'quillon --print-menu --de' --depth
    check $shell 'quillon --search wi'

    # quillon-shortcuts: commands, then identifiers from the last parentheses.
    check $shell 'quillon-shortcuts l' list
    check $shell 'quillon-shortcuts run ' AB12-BACKUP AC34-SAY BD56-SYNC
    check $shell 'quillon-shortcuts run a' AB12-BACKUP AC34-SAY
    check $shell 'quillon-shortcuts run AC34-SAY '
    check $shell 'quillon-shortcuts list --folder-name ' none F0A1-WORK F0B2-OLD
    check $shell 'quillon-shortcuts list --folders --f'
    check $shell 'quillon-shortcuts list --show-identifiers --fo' --folders --folder-name
    check $shell "$work/elsewhere/quillon-shortcuts run b" BD56-SYNC
done

if ((failures)); then
    echo "$failures completion checks failed"
    exit 1
fi
echo "All completion checks passed"
