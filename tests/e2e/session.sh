# Shared by the end-to-end scripts: a clean profile, a tray host, and ways to
# look at the screen. Sourced with the artifacts folder in $artifacts.
home=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$home"' EXIT
export HOME="$home" XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data" XDG_CACHE_HOME="$home/cache"
export XDG_CURRENT_DESKTOP=GNOME LANGUAGE=en
mkdir -p "$artifacts" "$XDG_DATA_HOME/applications"
rm -f "$artifacts"/*.png

fail() { echo "FAIL: $*" >&2; import -window root "$artifacts/failure.png" 2>/dev/null || true; exit 1; }
shot() { import -window root "$artifacts/$1.png"; echo "screenshot: $artifacts/$1.png"; }

# Quillon's visible menus: its windows wider than the tray icon.
menus() {
  local count=0 w width
  for w in $(xdotool search --onlyvisible --class quillon 2>/dev/null); do
    width=$(xdotool getwindowgeometry "$w" | awk '/Geometry/ {split($2, s, "x"); print s[1]}')
    [ "${width:-0}" -gt 40 ] && count=$((count + 1))
  done
  echo "$count"
}

# Waits up to $2 tenths of a second for at least $1 menus.
wait_for_menus() {
  for _ in $(seq 1 "$2"); do
    [ "$(menus)" -ge "$1" ] && return 0
    sleep 0.1
  done
  return 1
}

start_tray() {
  trayer --edge top --align right --widthtype request --height 28 --SetDockType true >/dev/null 2>&1 &
  sleep 1
}
