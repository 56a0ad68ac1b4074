#!/usr/bin/env bash
# The status menu as a person uses it, in a virtual X session with a tray
# host: Quillon opens its menu on start, the Applications submenu fills when
# pointed at, typing replaces the layout with results, Return opens the first
# one. Run as: xvfb-run -a dbus-run-session -- statusmenu.sh <quillon> <artifacts>
set -euo pipefail
quillon=$1
artifacts=$2
source "$(dirname "$0")/session.sh"
marker="$home/opened"
cat > "$XDG_DATA_HOME/applications/org.example.QuillonMarker.desktop" <<ENTRY
[Desktop Entry]
Type=Application
Name=Quillon Marker Probe
Exec=touch $marker
Categories=Utility;
ENTRY

start_tray
"$quillon" >"$artifacts/quillon.log" 2>&1 &
pid=$!

# Started by hand, it opens its menu by itself.
wait_for_menus 1 80 || fail "the menu did not open on start"
kill -0 "$pid" 2>/dev/null || fail "quillon exited"
sleep 0.5
shot menu

# Point at Applications: its submenu fills on first show.
xdotool key Down Right
sleep 0.7
shot applications
[ "$(menus)" -ge 2 ] || fail "the Applications submenu did not open"
xdotool key Escape
sleep 0.3

# Typing goes to the search field and shows results; Return opens the first.
xdotool type --delay 60 "marker probe"
sleep 0.7
shot search
xdotool key Return
for _ in $(seq 1 50); do
  [ -e "$marker" ] && break
  sleep 0.1
done
[ -e "$marker" ] || fail "Return did not open the first result"

# What was opened is now a recent item.
grep -q "QuillonMarker" "$XDG_CONFIG_HOME/Quillon/Quillon.conf" || fail "the opened item was not recorded"
echo "1 passed, 0 failed"
