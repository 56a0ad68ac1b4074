#!/usr/bin/env bash
# The status menu as a person uses it, in a virtual X session with a tray
# host: Quillon opens its menu on start, the Applications submenu fills when
# pointed at, typing replaces the layout with results, Return opens the first
# one, and the About window opens from the menu.
# Run as: xvfb-run -a dbus-run-session -- statusmenu.sh <quillon> <artifacts>
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

# A layout that shows what is easy to get wrong: a custom menu's symbol, a
# place under its pane's header in a menu spread inline, a folder that is
# gone, and recents (four shown) with a deleted shortcut and a place the
# catalog does not have among them.
touch "$home/notes.txt"
mkdir -p "$XDG_CONFIG_HOME/Quillon"
work=6F9A3C1E-2B4D-4E8A-9C7B-1D2E3F4A5B6C places=0B1C2D3E-4F50-4A61-8B72-93A4B5C6D7E8
gone=5A6B7C8D-9E0F-4A1B-8C2D-3E4F5A6B7C8D
state='{"recentsLimit":4,'\
'"menus":[{"id":"'$work'","name":"Work","urls":[],"symbol":"starred-symbolic","color":"red"},'\
'{"id":"'$places'","name":"Places","urls":["settings://gnome/camera"]}],'\
'"folders":[{"id":"'$gone'","url":"file://'$home'/gone/","sort":"name"}],'\
'"layout":[{"source":{"applications":{}},"style":"submenu"},{"source":{"systemSettings":{}},"style":"submenu"},'\
'{"source":{"recents":{}},"style":"inline"},{"source":{"customMenu":{"_0":"'$places'"}},"style":"inline"}]}'
cat > "$XDG_CONFIG_HOME/Quillon/Quillon.conf" <<CONF
[General]
MenuState="${state//\"/\\\"}"
Recents="settings://gnome/wifi", "shortcuts://run-shortcut?id=DEADBEEF-0000-4000-8000-000000000000", "settings://gnome/no-such-panel", "file://$home/notes.txt", "settings://gnome/bluetooth", "settings://gnome/sound"
CONF

start_tray
"$quillon" >"$artifacts/quillon.log" 2>&1 &
pid=$!

# Started by hand, it opens its menu by itself.
wait_for_menus 1 80 || fail "the menu did not open on start"
kill -0 "$pid" 2>/dev/null || fail "quillon exited"
sleep 0.5
shot menu
printed=$("$quillon" --print-menu)
echo "$printed" >"$artifacts/menu.txt"
grep -qx "\[Privacy\]" <<<"$printed" || fail "the inline menu lost its pane header"
[ "$(grep -c "^[^ ].*<\(settings://gnome/\(wifi\|bluetooth\|sound\)\|file://.*notes.txt\)>" <<<"$printed")" = 4 ] ||
  fail "the recents do not show four items"

# Punctuation and spaces aside, "wifi" finds Wi-Fi.
xdotool type --delay 60 "wifi"
sleep 0.7
shot search-wifi
"$quillon" --search wifi | grep -q "Wi-Fi" || fail "wifi does not find Wi-Fi"
xdotool key BackSpace BackSpace BackSpace BackSpace
sleep 0.3

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

# The About window, from the menu's command block: the last item but three
# (this build has no update feed, so no update item).
"$quillon"
wait_for_menus 1 50 || fail "quillon did not open its menu again"
sleep 0.5
xdotool key Up Up Up Up Return
for _ in $(seq 1 50); do
  xdotool search --onlyvisible --name "About Quillon" >/dev/null 2>&1 && break
  sleep 0.1
done
xdotool search --onlyvisible --name "About Quillon" >/dev/null || fail "no About window"
sleep 0.5
shot about
echo "1 passed, 0 failed"
