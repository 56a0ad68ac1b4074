#!/bin/bash
# Quillon on a real Wayland desktop: headless sway with waybar's tray, Qt on
# its Wayland platform. The tray item exports its menu, waybar draws it at
# the icon (no window of Quillon's own), "Search…" and --toggle-search show
# the panel inside the screen, and without a tray the panel says so at start.
#
#   wayland.sh QUILLON ARTIFACTS
#
# sway refuses to run as root, so as root the test runs as an unprivileged
# user of its own, from a copy of the binaries that user can reach.
set -euo pipefail
quillon=$1
artifacts=$2
here=$(cd "$(dirname "$0")" && pwd)

if [ "$(id -u)" = 0 ]; then
  user=quillon-e2e
  id "$user" >/dev/null 2>&1 || useradd --create-home --shell /bin/bash "$user"
  work=$(mktemp -d /tmp/quillon-wayland.XXXXXX)
  trap 'rm -rf "$work"' EXIT
  # The build tree is laid out as an installed prefix (bin/, lib/, share/),
  # and quillon finds the rest from where it is.
  mkdir -p "$work/artifacts"
  cp -a "$(dirname "$quillon")/../bin" "$(dirname "$quillon")/../lib" "$(dirname "$quillon")/../share" "$work/"
  install -m 755 "$here/wayland.sh" "$here/wlpointer.py" "$work/"
  chown -R "$user" "$work"
  chmod 755 "$work"
  rc=0
  runuser -u "$user" -- "$work/wayland.sh" "$work/bin/quillon" "$work/artifacts" || rc=$?
  mkdir -p "$artifacts"
  rm -f "$artifacts"/*.png
  cp -r "$work/artifacts/." "$artifacts/" 2>/dev/null || true
  exit $rc
fi

if [ -z "${QUILLON_E2E_BUS:-}" ]; then
  QUILLON_E2E_BUS=1 exec dbus-run-session -- "$0" "$@"
fi

home=$(mktemp -d)
export HOME=$home XDG_CONFIG_HOME=$home/config XDG_DATA_HOME=$home/data XDG_CACHE_HOME=$home/cache
export XDG_RUNTIME_DIR=$home/run XDG_CURRENT_DESKTOP=sway XDG_SESSION_TYPE=wayland LANGUAGE=en
mkdir -p "$XDG_CONFIG_HOME/sway" "$XDG_CONFIG_HOME/waybar" "$XDG_DATA_HOME/applications" "$artifacts"
mkdir -m 700 "$XDG_RUNTIME_DIR"
trap 'kill $(jobs -p) 2>/dev/null || true; sleep 0.3; rm -rf "$home"' EXIT

cat >"$XDG_CONFIG_HOME/sway/config" <<'CFG'
output HEADLESS-1 mode 1280x800 bg #336699 solid_color
xwayland disable
bar swaybar_command waybar
CFG
cat >"$XDG_CONFIG_HOME/waybar/config" <<'CFG'
{ "layer": "top", "position": "top", "height": 28,
  "modules-left": ["sway/workspaces"], "modules-right": ["tray"],
  "tray": { "icon-size": 20, "spacing": 8 } }
CFG

fail() {
  echo "FAIL: $*" >&2
  grim "$artifacts/failure.png" 2>/dev/null || true
  [ -f "$home/quillon.log" ] && tail -20 "$home/quillon.log" >&2
  exit 1
}
shot() { grim "$artifacts/$1.png" && echo "screenshot: $artifacts/$1.png"; }
waitfor() { # tenths of a second, then a command
  local tries=$1
  shift
  for _ in $(seq 1 "$tries"); do
    "$@" >/dev/null 2>&1 && return 0
    sleep 0.1
  done
  return 1
}

WLR_BACKENDS=headless WLR_RENDERER=pixman WLR_LIBINPUT_NO_DEVICES=1 sway >"$home/sway.log" 2>&1 &
waitfor 100 compgen -G "$XDG_RUNTIME_DIR/wayland-*" || fail "sway did not start"
socket=$(compgen -G "$XDG_RUNTIME_DIR/wayland-[0-9]" | head -1)
export WAYLAND_DISPLAY=${socket##*/}
waitfor 50 compgen -G "$XDG_RUNTIME_DIR/sway-ipc.*.sock" || fail "sway has no IPC socket"
export SWAYSOCK=$(compgen -G "$XDG_RUNTIME_DIR/sway-ipc.*.sock" | head -1)

bus() { gdbus call --session "$@"; }
watcher_has_host() {
  bus -d org.kde.StatusNotifierWatcher -o /StatusNotifierWatcher -m org.freedesktop.DBus.Properties.Get \
    org.kde.StatusNotifierWatcher IsStatusNotifierHostRegistered | grep -q true
}
waitfor 150 watcher_has_host || fail "waybar's tray did not come up"

start_quillon() {
  QT_QPA_PLATFORM=wayland QT_LOGGING_RULES="quillon.*.debug=true" "$quillon" "$@" >>"$home/quillon.log" 2>&1 &
}
# Quillon's item, as "service path", from the watcher's list: entries are a
# bus name, or a bus name and an object path.
item() {
  local entry svc path
  for entry in $(bus -d org.kde.StatusNotifierWatcher -o /StatusNotifierWatcher -m org.freedesktop.DBus.Properties.Get \
    org.kde.StatusNotifierWatcher RegisteredStatusNotifierItems | grep -o "'[^']*'" | tr -d "'"); do
    svc=${entry%%/*}
    path=/${entry#*/}
    [ "$svc" = "$entry" ] && path=/StatusNotifierItem
    if bus -d "$svc" -o "$path" -m org.freedesktop.DBus.Properties.Get org.kde.StatusNotifierItem Id 2>/dev/null \
      | grep -q Quillon; then
      echo "$svc $path"
      return 0
    fi
  done
  return 1
}
property() {
  local svc path
  read -r svc path <<<"$(item)"
  bus -d "$svc" -o "$path" -m org.freedesktop.DBus.Properties.Get org.kde.StatusNotifierItem "$1"
}
menu_call() {
  local svc path
  read -r svc path <<<"$(item)"
  bus -d "$svc" -o /MenuBar -m "com.canonical.dbusmenu.$1" -- "${@:2}"
}
# Quillon's windows in sway's tree, as "x y width height name".
windows() {
  swaymsg -t get_tree | /usr/bin/python3 -c '
import json, sys
def walk(node):
    if node.get("pid") and node.get("app_id") == "quillon":
        r = node["rect"]
        print(r["x"], r["y"], r["width"], r["height"], node.get("name"))
    for child in node.get("nodes", []) + node.get("floating_nodes", []):
        walk(child)
walk(json.load(sys.stdin))'
}
panel_inside_screen() {
  windows | grep " Quillon Search$" | awk '{ exit !($1 >= 0 && $2 >= 0 && $1 + $3 <= 1280 && $2 + $4 <= 800) }'
}
pointer() { /usr/bin/python3 "$here/wlpointer.py" "$@"; }

# 1. The item registers as a menu and exports the whole top level.
start_quillon --autostart
waitfor 100 item || fail "Quillon's item never reached the watcher"
item | grep -q . || fail "no item"
property ItemIsMenu | grep -q true || fail "ItemIsMenu is not true"
property Menu | grep -q "'/MenuBar'" || fail "no menu path"
layout=$(menu_call GetLayout 0 -1 '[]')
for label in "Search…" "Applications" "System Settings" "Quit Quillon"; do
  grep -q "'label': <'$label'>" <<<"$layout" || fail "the exported menu lacks $label: $layout"
done

# 2. Activate opens no window: the panel draws the menu itself.
read -r svc path <<<"$(item)"
bus -d "$svc" -o "$path" -m org.kde.StatusNotifierItem.Activate 1250 14 >/dev/null
sleep 0.5
[ -z "$(windows)" ] || fail "Activate opened a window: $(windows)"

# 3. A click on the icon: waybar draws the menu at the icon, and still no
#    window of Quillon's. Then a click on "Search…" shows the panel.
shot before-menu
pointer click:1258,14 wait:2.5 click:1140,35 wait:1.5 &
clicker=$!
sleep 1.5
shot menu
[ -z "$(windows)" ] || fail "the open menu is a window: $(windows)"
changed=$(compare -metric AE -crop 300x300+980+28 "$artifacts/before-menu.png" "$artifacts/menu.png" null: 2>&1 || true)
[ "${changed%% *}" -gt 2000 ] || fail "waybar drew no menu below the icon ($changed pixels changed)"
wait $clicker || fail "the virtual pointer failed"
waitfor 50 panel_inside_screen || fail "Search… did not show the panel inside the screen: $(windows)"
shot search-from-menu

# 4. The command a desktop binding runs shows the panel, inside the screen,
#    also once it holds results.
"$quillon" --toggle-search
waitfor 30 sh -c "! swaymsg -t get_tree | grep -q 'Quillon Search'" || fail "--toggle-search did not close the panel"
"$quillon" --toggle-search
waitfor 50 panel_inside_screen || fail "--toggle-search did not show the panel inside the screen"
# The keyboard stays while it is looked at: sway has no keyboard of its own,
# and the virtual one leaving takes the panel's focus with it.
wtype -s 100 "se" -s 3000 &
typist=$!
sleep 1.5
panel_inside_screen || fail "the panel grew off the screen: $(windows)"
shot search-typed
wait $typist || true

# The menu command cannot pop a menu at the pointer here: the panel lists it.
# (The virtual keyboard's leaving took the panel's focus, which closes it.)
waitfor 30 sh -c "! swaymsg -t get_tree | grep -q 'Quillon Search'" || "$quillon" --toggle-search
waitfor 30 sh -c "! swaymsg -t get_tree | grep -q 'Quillon Search'" || fail "the panel did not close"
"$quillon" --menu
waitfor 50 panel_inside_screen || fail "--menu did not list the menu in the panel: $(windows)"
shot menu-in-panel
# Right walks into the selected submenu (Applications), filled as it opens.
wtype -s 300 -k Right -s 2500 &
typist=$!
sleep 1.2
panel_inside_screen || fail "the panel left the screen walking into a submenu: $(windows)"
shot menu-walked
wait $typist || true

# 5. A click the panel forwards opens the item: "Quit Quillon" ends it.
quit=$(menu_call GetLayout 0 1 '["label"]' | grep -o "([0-9]*, {'label': <'Quit Quillon'>" | grep -o "^([0-9]*" | tr -d '(')
[ -n "$quit" ] || fail "no Quit item"
menu_call Event "$quit" clicked '<0>' 0 >/dev/null
waitfor 50 sh -c "! pgrep -u $(id -u) -x quillon" || fail "Quit Quillon did not quit"

# 6. No tray at all: the panel shows at start and says so.
pkill -x waybar || true
waitfor 50 sh -c "! gdbus call --session -d org.freedesktop.DBus -o /org/freedesktop/DBus -m org.freedesktop.DBus.NameHasOwner org.kde.StatusNotifierWatcher | grep -q true" \
  || fail "the watcher did not go away with waybar"
: >"$home/quillon.log"
start_quillon
waitfor 100 panel_inside_screen || fail "without a tray, no panel at start: $(windows)"
grep -q "No system tray is available" "$home/quillon.log" || fail "without a tray, nothing said so"
shot no-tray
# Running it again shows the panel, never nothing.
"$quillon" --toggle-search
waitfor 30 sh -c "! swaymsg -t get_tree | grep -q 'Quillon Search'" || fail "--toggle-search did not close the panel"
"$quillon"
waitfor 50 panel_inside_screen || fail "a second quillon showed nothing"
echo "PASS"
