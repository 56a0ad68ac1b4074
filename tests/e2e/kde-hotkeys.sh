#!/bin/bash
# Quillon's hot keys on KWin (Wayland, virtual output) with Plasma's shortcut
# daemon: after start the daemon lists the component "quillon" with both
# actions and their keys, and invoking the search action opens the panel.
# Too heavy for every CI run: `make test-kde` runs it (as root it installs
# what it needs first).
# Usage: kde-hotkeys.sh QUILLON_BINARY [ARTIFACTS_DIR]
set -u
binary=$(readlink -f "$1")
artifacts=$(readlink -f "${2:-build/debug/tests/artifacts/kde-hotkeys}")
user=quillon-e2e

if [ "$(id -u)" = 0 ] && [ -z "${KDE_HOTKEYS_INNER:-}" ]; then
  packages="kwin-wayland libkf5globalaccel-bin xwayland qt6-wayland qtwayland5 dbus libglib2.0-bin"
  missing=$(for p in $packages; do dpkg -s "$p" >/dev/null 2>&1 || echo "$p"; done)
  if [ -n "$missing" ]; then
    DEBIAN_FRONTEND=noninteractive apt-get install -y $missing >/dev/null || { echo "FAIL: could not install $missing" >&2; exit 1; }
  fi
  # KWin and the session belong to an ordinary user, who must reach the binary.
  id "$user" >/dev/null 2>&1 || useradd -m -s /bin/bash "$user"
  work=$(mktemp -d /tmp/quillon-kde.XXXXXX)
  chmod 755 "$work"
  # The build tree is laid out as an installed prefix (bin/, lib/, share/),
  # and quillon finds the rest from where it is.
  cp -a "$(dirname "$binary")/../bin" "$(dirname "$binary")/../lib" "$(dirname "$binary")/../share" "$work/"
  install -m 755 "$0" "$work/kde-hotkeys.sh"
  mkdir -p "$artifacts"
  chown "$user" "$work" "$artifacts"
  runuser -u "$user" -- env KDE_HOTKEYS_INNER=1 bash "$work/kde-hotkeys.sh" "$work/bin/quillon" "$artifacts"
  status=$?
  rm -rf "$work"
  exit $status
fi

if [ "${KDE_HOTKEYS_INNER:-}" != session ]; then
  # Outside the session: bring KWin up with its own bus and run this script inside it.
  work=$(mktemp -d /tmp/quillon-kde-session.XXXXXX)
  mkdir -p "$work/run" "$artifacts"
  rm -f "$artifacts/session.log"
  chmod 700 "$work/run"
  kwin=kwin_wayland
  # KWin's binary carries file capabilities that a container may refuse to run: use a plain copy.
  if ! "$kwin" --help >/dev/null 2>&1; then cp "$(command -v kwin_wayland)" "$work/kwin_wayland"; kwin="$work/kwin_wayland"; fi
  env -u DISPLAY -u WAYLAND_DISPLAY XDG_RUNTIME_DIR="$work/run" HOME="$work" KDE_HOTKEYS_INNER=session \
    KDE_HOTKEYS_WORK="$work" timeout 120 dbus-run-session -- "$kwin" --virtual --xwayland --width 1280 --height 800 \
    --socket wayland-quillon --exit-with-session "bash $(readlink -f "$0") $binary $artifacts" \
    > "$artifacts/kwin.log" 2>&1
  cp "$work/quillon.log" "$artifacts/quillon.log" 2>/dev/null
  rm -rf "$work"
  log="$artifacts/session.log"
  grep -h "^\(FAIL\|STEP\)" "$log"
  # KWin prints what its scripts print: Quillon's windows before and after.
  counts=$(grep -o "QUILLONWINDOWS [0-9]*" "$artifacts/kwin.log" | awk '{print $2}' | tr '\n' ' ')
  echo "Quillon windows before and after invokeShortcut show-search: $counts"
  set -- $counts
  if grep -q "^FAIL" "$log" || ! grep -q "^STEP: done" "$log"; then
    echo "FAIL: kde-hotkeys (see $log and $artifacts/quillon.log)"; exit 1
  fi
  if [ "${1:-x}" != 0 ] || [ "${2:-0}" -lt 1 ]; then
    echo "FAIL: invoking show-search did not open the search panel (see $log)"; exit 1
  fi
  echo "PASS: kde-hotkeys"
  exit 0
fi

# Inside the session; what it says goes to session.log.
exec >> "$artifacts/session.log" 2>&1
export XDG_CONFIG_HOME="$HOME/config" XDG_DATA_HOME="$HOME/data" XDG_CACHE_HOME="$HOME/cache"
export XDG_CURRENT_DESKTOP=KDE KDE_SESSION_VERSION=5 XDG_SESSION_TYPE=wayland LANGUAGE=en
export QT_QPA_PLATFORM=wayland QT_LOGGING_RULES="quillon.*=true"
mkdir -p "$XDG_CONFIG_HOME/Quillon" "$XDG_DATA_HOME" "$XDG_CACHE_HOME"
fail() { echo "FAIL: $*"; kill "$quillon" 2>/dev/null; exit 1; }
step() { echo "STEP: $*"; }
daemon() { gdbus call --session -d org.kde.kglobalaccel "$@" 2>&1; }

# Saved keys: Ctrl+Alt+Space for the search panel, Meta+M for the menu; and
# not the first login, so no notice about the missing tray opens the panel.
cat > "$XDG_CONFIG_HOME/Quillon/Quillon.conf" <<CONF
[General]
NoTrayNoticeShown=true
HotKeyKeyCode=32
HotKeyModifiers=6144
HotKeyDisplay=Ctrl+Alt+Space
MenuHotKeyKeyCode=77
MenuHotKeyModifiers=256
MenuHotKeyDisplay=Super+M
CONF

# KWin 5.27 hosts the daemon itself; start the standalone one only if absent.
sleep 2
if ! gdbus call --session -d org.freedesktop.DBus -o /org/freedesktop/DBus \
    -m org.freedesktop.DBus.NameHasOwner org.kde.kglobalaccel | grep -q true; then
  (kglobalaccel5 > "$KDE_HOTKEYS_WORK/kglobalaccel.log" 2>&1 &)
  sleep 1
fi

"$binary" --autostart > "$KDE_HOTKEYS_WORK/quillon.log" 2>&1 &
quillon=$!

components=""
for _ in $(seq 1 50); do
  components=$(daemon -o /kglobalaccel -m org.kde.KGlobalAccel.allComponents)
  echo "$components" | grep -q "/component/quillon" && break
  sleep 0.2
done
echo "$components" | grep -q "/component/quillon" || fail "no component quillon: $components"
step "component: $(daemon -o /component/quillon -m org.freedesktop.DBus.Properties.Get org.kde.kglobalaccel.Component friendlyName)"

names=$(daemon -o /component/quillon -m org.kde.kglobalaccel.Component.shortcutNames)
step "actions: $names"
echo "$names" | grep -q "show-search" && echo "$names" | grep -q "show-menu" || fail "actions missing: $names"

# allShortcutInfos: (action, friendly action, component, friendly component,
# context, friendly context, keys, default keys); keys as Qt key codes.
infos=$(daemon -o /component/quillon -m org.kde.kglobalaccel.Component.allShortcutInfos)
step "infos: $infos"
ctrl_alt_space=$((0x04000000 + 0x08000000 + 0x20))
meta_m=$((0x10000000 + 0x4d))
echo "$infos" | grep -q "('show-search', [^)]*, \[$ctrl_alt_space\], " || fail "show-search is not on Ctrl+Alt+Space"
echo "$infos" | grep -q "('show-menu', [^)]*, \[$meta_m\], " || fail "show-menu is not on Meta+M"

# Quillon's windows, through a KWin script that prints them to KWin's log.
windows() {
  local js name id
  js=$(mktemp --suffix=.js)
  chmod 644 "$js"
  echo 'var n = 0; var cs = workspace.clientList(); for (var i = 0; i < cs.length; i++) { if (String(cs[i].resourceClass).indexOf("quillon") >= 0 && !cs[i].minimized) n++; } print("QUILLONWINDOWS " + n);' > "$js"
  name=count$RANDOM
  id=$(gdbus call --session -d org.kde.KWin -o /Scripting -m org.kde.kwin.Scripting.loadScript "$js" "$name" | grep -o "[0-9]\+" | head -1)
  gdbus call --session -d org.kde.KWin -o "/Scripting/Script$id" -m org.kde.kwin.Script.run >/dev/null 2>&1 \
    || gdbus call --session -d org.kde.KWin -o "/$id" -m org.kde.kwin.Script.run >/dev/null 2>&1
  sleep 0.5
  gdbus call --session -d org.kde.KWin -o /Scripting -m org.kde.kwin.Scripting.unloadScript "$name" >/dev/null 2>&1
  rm -f "$js"
}
windows
daemon -o /component/quillon -m org.kde.kglobalaccel.Component.invokeShortcut show-search >/dev/null
sleep 1.5
windows
# What System Settings does when the user gives the menu action Meta+F.
meta_f=$((0x10000000 + 0x46))
daemon -o /kglobalaccel -m org.kde.KGlobalAccel.setForeignShortcutKeys \
  "['quillon', 'show-menu', 'Quillon', 'Show Menu at Mouse']" "[([$meta_f, 0, 0, 0],)]" >/dev/null
for _ in $(seq 1 20); do
  grep -q "^MenuHotKeyKeyCode=70$" "$XDG_CONFIG_HOME/Quillon/Quillon.conf" && break
  sleep 0.2
done
grep -q "^MenuHotKeyKeyCode=70$" "$XDG_CONFIG_HOME/Quillon/Quillon.conf" \
  || fail "the key set in System Settings was not saved: $(grep MenuHotKey "$XDG_CONFIG_HOME/Quillon/Quillon.conf")"
step "saved after the change in System Settings: $(grep "^MenuHotKey" "$XDG_CONFIG_HOME/Quillon/Quillon.conf" | tr '\n' ' ')"
step done
kill "$quillon"
wait "$quillon" 2>/dev/null
exit 0
