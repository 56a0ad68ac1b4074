#!/usr/bin/env bash
# The search panel as a person meets it, inside a virtual X session with a
# tray host and a session bus: `quillon --toggle-search` shows it with the
# keyboard in its field, typing filters, Down and Return open the second
# result, Escape, the command again and a click on the tray icon close it.
# Usage: searchpanel.sh QUILLON_BINARY ARTIFACT_DIR (run under xvfb-run and
# dbus-run-session).
set -euo pipefail
quillon=$1
artifacts=$2
source "$(dirname "$0")/session.sh"
markers="$home/markers"
mkdir -p "$markers"
for name in Reader Writer; do
  lower=$(echo "$name" | tr '[:upper:]' '[:lower:]')
  cat > "$XDG_DATA_HOME/applications/quillmark-$lower.desktop" <<ENTRY
[Desktop Entry]
Type=Application
Name=Quillmark $name
Exec=touch $markers/$lower.opened
Icon=accessories-text-editor
Categories=Utility;
ENTRY
done

# Waits up to about ten seconds for a condition.
wait_for() {
  for _ in $(seq 1 100); do
    if eval "$1"; then return 0; fi
    sleep 0.1
  done
  return 1
}
panel_window() { xdotool search --onlyvisible --name '^Quillon Search$' 2>/dev/null | head -n 1; }
panel_shown() { [ -n "$(panel_window)" ]; }
panel_height() { xdotool getwindowgeometry "$(panel_window)" | awk '/Geometry/ {split($2, s, "x"); print s[2]}'; }

start_tray
# Started as at login, so the menu does not open by itself.
"$quillon" --autostart &
pid=$!
wait_for "dbus-send --session --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.NameHasOwner \
  string:app.quillon.Quillon 2>/dev/null | grep -q true" || fail "quillon did not start"

# Shown, with the keyboard already in it.
"$quillon" --toggle-search
wait_for panel_shown || fail "the panel did not show"
wait_for '[ "$(xdotool getwindowfocus)" = "$(panel_window)" ]' || fail "the panel did not get the keyboard"
empty_height=$(panel_height)
sleep 0.3
shot searchpanel-empty

# Typing filters: both fixtures and their group heading make the panel grow
# downwards.
xdotool type --delay 40 quillmark
wait_for '[ "$(panel_height)" -gt "$empty_height" ]' || fail "typing showed no results"
sleep 0.3
shot searchpanel-results
xdotool key Down
sleep 0.3
shot searchpanel-selection

# Return opens the selected (second) application and closes the panel.
xdotool key Return
wait_for '[ -e "$markers/writer.opened" ]' || fail "Return did not open Quillmark Writer"
[ ! -e "$markers/reader.opened" ] || fail "Return opened the first result instead of the selected one"
wait_for '! panel_shown' || fail "the panel stayed after opening"
grep -q 'quillmark-writer.desktop' "$XDG_CONFIG_HOME/Quillon/Quillon.conf" || fail "the opened item is not among the recents"

# Escape closes; so does the command a second time.
"$quillon" --toggle-search
wait_for panel_shown || fail "the panel did not show again"
# A broad query fills several groups; the list stops growing at its cap,
# and the window stays on the 800 px screen.
xdotool type --delay 40 se
sleep 0.5
shot searchpanel-many
eval "$(xdotool getwindowgeometry --shell "$(panel_window)")"
[ $((Y + HEIGHT)) -le 800 ] || fail "the panel runs off the screen: $Y + $HEIGHT"
xdotool key Escape
wait_for '! panel_shown' || fail "Escape did not close the panel"
"$quillon" --toggle-search
wait_for panel_shown || fail "the panel did not show a third time"
"$quillon" --toggle-search
wait_for '! panel_shown' || fail "the command did not close the shown panel"

# A click outside, on the tray icon: the panel goes, the menu opens.
"$quillon" --toggle-search
wait_for panel_shown || fail "the panel did not show a fourth time"
tray=$(xdotool search --name '^panel$' | head -n 1)
tray_width() { xdotool getwindowgeometry "$tray" | awk '/Geometry/ {split($2, s, "x"); print s[1]}'; }
wait_for '[ "$(tray_width)" -gt 10 ]' || fail "the tray icon never appeared"
eval "$(xdotool getwindowgeometry --shell "$tray")"
xdotool mousemove $((X + WIDTH / 2)) $((Y + HEIGHT / 2)) click 1
wait_for '! panel_shown' || fail "a click on the tray icon did not close the panel"
sleep 0.5
shot searchpanel-closed-by-menu
xdotool key Escape

kill -0 "$pid" 2>/dev/null || fail "quillon exited"
echo "Screenshots in $artifacts"
