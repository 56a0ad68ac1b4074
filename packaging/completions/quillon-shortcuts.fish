# fish completion for quillon-shortcuts

# "identifier<TAB>Name" from the tool's "Name (identifier)" lines, the
# identifier being the text in the last parentheses (a name may hold some).
function __quillon_shortcuts_identifiers
    set -l tool (commandline -opc)[1]
    command $tool list --show-identifiers $argv 2>/dev/null |
        string replace -rf '^(.*) \(([^()]*)\)$' '$2\t$1'
end

function __quillon_shortcuts_folders
    printf '%s\t%s\n' none 'Shortcuts in no folder'
    __quillon_shortcuts_identifiers --folders
end

function __quillon_shortcuts_wants_shortcut
    set -l words (commandline -opc)
    test (count $words) -eq 2; and test "$words[2]" = run
end

function __quillon_shortcuts_list_option
    __fish_seen_subcommand_from list; and not __fish_seen_argument $argv
end

complete -c quillon-shortcuts -f
complete -c quillon-shortcuts -n __fish_use_subcommand -a list -d 'List the shortcuts or their folders'
complete -c quillon-shortcuts -n __fish_use_subcommand -a run -d 'Run a shortcut'
complete -c quillon-shortcuts -n __fish_use_subcommand -a help -d 'Print the usage'
complete -c quillon-shortcuts -n __fish_use_subcommand -s h -l help -d 'Print the usage'

complete -c quillon-shortcuts -n __quillon_shortcuts_wants_shortcut -a '(__quillon_shortcuts_identifiers)'

complete -c quillon-shortcuts -n '__quillon_shortcuts_list_option -l show-identifiers' \
    -l show-identifiers -d 'Print each line as "Name (identifier)"'
# The two folder options exclude each other.
complete -c quillon-shortcuts -n '__quillon_shortcuts_list_option -l folders -l folder-name' \
    -l folders -d 'List the folders instead of the shortcuts'
complete -c quillon-shortcuts -n '__quillon_shortcuts_list_option -l folders -l folder-name' \
    -l folder-name -r -d 'List the shortcuts of one folder'
complete -c quillon-shortcuts -n '__fish_seen_subcommand_from list; and __fish_prev_arg_in --folder-name' \
    -a '(__quillon_shortcuts_folders)'
