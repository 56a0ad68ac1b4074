#!/usr/bin/env bash
# Start-up as a person meets it: a login launch shows only the icon; starting
# quillon again opens the running one's menu and leaves at once; a launch by
# hand opens the menu by itself; one instance only.
# Run as: xvfb-run -a dbus-run-session -- startup.sh <quillon> <artifacts>
set -euo pipefail
quillon=$1
artifacts=$2
source "$(dirname "$0")/session.sh"

# A saved menu hot key (Ctrl+Alt+M) comes back at start.
mkdir -p "$XDG_CONFIG_HOME/Quillon"
printf '[General]\nMenuHotKeyKeyCode=77\nMenuHotKeyModifiers=6144\nMenuHotKeyDisplay=Ctrl+Alt+M\n' \
  >"$XDG_CONFIG_HOME/Quillon/Quillon.conf"

start_tray
"$quillon" --autostart >"$artifacts/quillon.log" 2>&1 &
first=$!
sleep 3
kill -0 "$first" 2>/dev/null || fail "quillon --autostart exited"
[ "$(menus)" -eq 0 ] || fail "a login launch opened the menu"
shot login

xdotool mousemove 400 300 key ctrl+alt+m
wait_for_menus 1 30 || fail "the menu hot key did not pop the menu up"
shot hotkey
xdotool key Escape
sleep 0.5

# A second quillon hands over to the first and leaves.
timeout 10 "$quillon" || fail "the second quillon did not leave cleanly"
wait_for_menus 1 30 || fail "the second launch did not open the first one's menu"
shot reopened
kill -0 "$first" 2>/dev/null || fail "the first quillon went away"
xdotool key Escape
sleep 0.5
[ "$(menus)" -eq 0 ] || fail "Escape did not close the menu"

# The commands for desktop keyboard settings reach the running one.
timeout 10 "$quillon" --settings || fail "quillon --settings failed"
for _ in $(seq 1 30); do
  xdotool search --onlyvisible --name "Quillon Settings" >/dev/null 2>&1 && break
  sleep 0.1
done
xdotool search --onlyvisible --name "Quillon Settings" >/dev/null || fail "the settings window did not show"
shot settings

# This build has no update feed: the distribution brings new versions, and
# the menu offers no update item.
"$quillon" --print-menu --depth 0 >"$artifacts/menu.txt"
grep -q "Quit Quillon" "$artifacts/menu.txt" || fail "the running one printed no menu"
if grep -q "Update" "$artifacts/menu.txt"; then fail "a build without a feed offers updates"; fi
kill "$first"
wait "$first" 2>/dev/null || true
if timeout 10 "$quillon" --menu 2>/dev/null; then fail "--menu succeeded with nothing running"; fi

# Started by hand, it opens its menu by itself.
"$quillon" >>"$artifacts/quillon.log" 2>&1 &
wait_for_menus 1 80 || fail "a launch by hand did not open the menu"
shot manual
echo "1 passed, 0 failed"
