#!/usr/bin/env bash
# The status menu as a person uses it, in a virtual X session with a tray
# host: Quillon opens its menu on start, the Applications submenu fills when
# pointed at, typing replaces the layout with results, Return opens the first
# one. Run as: xvfb-run -a dbus-run-session -- statusmenu.sh <quillon> <artifacts>
set -euo pipefail
quillon=$1
artifacts=$2
mkdir -p "$artifacts"
home=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$home"' EXIT

export HOME="$home" XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data" XDG_CACHE_HOME="$home/cache"
export XDG_CURRENT_DESKTOP=GNOME LANGUAGE=en
mkdir -p "$XDG_DATA_HOME/applications"
marker="$home/opened"
cat > "$XDG_DATA_HOME/applications/org.example.QuillonMarker.desktop" <<ENTRY
[Desktop Entry]
Type=Application
Name=Quillon Marker Probe
Exec=touch $marker
Categories=Utility;
ENTRY

fail() { echo "FAIL: $*" >&2; import -window root "$artifacts/failure.png" 2>/dev/null || true; exit 1; }
shot() { import -window root "$artifacts/$1.png"; echo "screenshot: $artifacts/$1.png"; }

trayer --edge top --align right --widthtype request --height 28 --SetDockType true >/dev/null 2>&1 &
sleep 1
"$quillon" >"$artifacts/quillon.log" 2>&1 &
pid=$!

# The menu opens by itself: a popup window of Quillon's becomes visible.
for _ in $(seq 1 60); do
  xdotool search --onlyvisible --class quillon >/dev/null 2>&1 && break
  sleep 0.1
done
kill -0 "$pid" 2>/dev/null || fail "quillon exited"
sleep 0.5
shot menu

# Point at Applications: its submenu fills on first show.
xdotool key Down Right
sleep 0.7
shot applications
popups=$(xdotool search --onlyvisible --class quillon | wc -l)
[ "$popups" -ge 2 ] || fail "the Applications submenu did not open"
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
