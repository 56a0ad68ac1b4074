# fish completion for quillon

complete -c quillon -f
complete -c quillon -s h -l help -d 'Print the options'
complete -c quillon -l help-all -d 'Print the options, with those of Qt'
complete -c quillon -s v -l version -d 'Print the version'
complete -c quillon -l autostart -d 'Start as at login, with only the icon'
complete -c quillon -l toggle-search -d 'Show or hide the search panel'
complete -c quillon -l menu -d 'Pop the menu up at the mouse'
complete -c quillon -l settings -d 'Show the settings window'
complete -c quillon -l print-menu -d 'Print the menu as it would open now'
complete -c quillon -l depth -x -n '__fish_seen_argument -l print-menu' -d 'Submenu levels --print-menu fills (default 2)'
complete -c quillon -l search -x -d 'Print what the search shows for TEXT'
complete -c quillon -l print-layout -d 'Print the effective menu layout'
