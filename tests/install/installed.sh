#!/usr/bin/env bash
# installed.sh <build dir> <artifacts dir>
# Installs to a temporary prefix, hides the build tree's bin/, lib/ and share/,
# and checks what a user of the installed copy sees: the version, the help,
# a usage error, the menu (with the installed translation), the D-Bus service
# starting Quillon for a key binding's command, and an uninstall that leaves
# nothing behind.
set -euo pipefail
build=$(cd "$1" && pwd)
artifacts=$2
mkdir -p "$artifacts"
work=$(mktemp -d)
prefix="$work/prefix with space"
hidden=()
restore() {
  for dir in "${hidden[@]}"; do mv "$build/.hidden-$dir" "$build/$dir"; done
  rm -rf "$work"
}
trap restore EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$prefix" >"$artifacts/install.log"
for file in bin/quillon bin/quillon-shortcuts share/applications/app.quillon.Quillon.desktop \
    share/metainfo/app.quillon.Quillon.metainfo.xml share/dbus-1/services/app.quillon.Quillon.service \
    share/icons/hicolor/48x48/apps/app.quillon.Quillon.png share/icons/hicolor/scalable/apps/app.quillon.Quillon.svg \
    share/icons/hicolor/symbolic/apps/app.quillon.Quillon-symbolic.svg share/man/man1/quillon.1.gz \
    share/man/man1/quillon-shortcuts.1.gz share/quillon/translations/quillon_de.qm \
    share/bash-completion/completions/quillon share/zsh/vendor-completions/_quillon \
    share/fish/vendor_completions.d/quillon.fish share/doc/quillon/copyright; do
  [ -f "$prefix/$file" ] || fail "$file was not installed"
done
ls "$prefix"/lib*/quillon/libquillon.so >/dev/null || fail "libquillon.so was not installed"
grep -qxF "Exec='$prefix/bin/quillon' --autostart" "$prefix/share/dbus-1/services/app.quillon.Quillon.service" ||
  fail "the D-Bus service does not start the installed quillon"
if command -v desktop-file-validate >/dev/null; then
  desktop-file-validate "$prefix/share/applications/app.quillon.Quillon.desktop"
fi
if command -v appstreamcli >/dev/null; then
  appstreamcli validate --no-net --explain "$prefix/share/metainfo/app.quillon.Quillon.metainfo.xml" >"$artifacts/appstream.log" ||
    { cat "$artifacts/appstream.log"; fail "the AppStream metadata does not validate"; }
fi

for dir in bin lib share; do
  if [ -e "$build/$dir" ]; then mv "$build/$dir" "$build/.hidden-$dir"; hidden+=("$dir"); fi
done

export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_DATA_HOME="$work/home/.local/share" \
  XDG_CACHE_HOME="$work/home/.cache" QT_QPA_PLATFORM=offscreen XDG_CURRENT_DESKTOP=GNOME
mkdir -p "$HOME"
quillon="$prefix/bin/quillon"

[ "$("$quillon" --version)" = "quillon $(sed -n 's/^project(Quillon VERSION \([0-9.]*\).*/\1/p' "$(dirname "$0")/../../CMakeLists.txt")" ] ||
  fail "--version says $("$quillon" --version)"
"$quillon" --help >"$artifacts/help.txt"
for word in --toggle-search --menu --settings --print-menu --search --autostart "$XDG_CONFIG_HOME/Quillon/Quillon.conf"; do
  grep -qF -- "$word" "$artifacts/help.txt" || fail "--help does not mention $word"
done
status=0
"$quillon" --no-such-option 2>"$work/error" >/dev/null || status=$?
[ "$status" = 2 ] || fail "an unknown option ended with status $status, not 2"
[ "$(wc -l <"$work/error")" = 1 ] || fail "an unknown option printed $(wc -l <"$work/error") lines"
"$prefix/bin/quillon-shortcuts" list >/dev/null

# The menu as it opens, in English and with the installed German translation.
"$quillon" --print-menu --depth 1 >"$artifacts/menu.txt"
grep -q "Quit Quillon" "$artifacts/menu.txt" || fail "the menu has no Quit item: $(cat "$artifacts/menu.txt")"
LANGUAGE=de LANG=de_DE.UTF-8 "$quillon" --print-menu --depth 1 >"$artifacts/menu-de.txt"
grep -q "Quillon beenden" "$artifacts/menu-de.txt" ||
  fail "the installed German translation was not used: $(cat "$artifacts/menu-de.txt")"

# A key binding's command with nothing running: the bus starts the installed
# Quillon through its service file, which then takes the command.
XDG_DATA_DIRS="$prefix/share:/usr/share" QUILLON_TRAY=none dbus-run-session -- bash -c '
  set -e
  "$1" --settings
  owner=$(dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
    org.freedesktop.DBus.GetConnectionUnixProcessID string:app.quillon.Quillon | sed -n "s/.*uint32 //p")
  [ -n "$owner" ] || { echo "nothing owns the name after the command" >&2; exit 1; }
  trap "kill $owner 2>/dev/null" EXIT
  [ "$(readlink "/proc/$owner/exe")" = "$1" ] || { echo "the instance runs $(readlink "/proc/$owner/exe")" >&2; exit 1; }
  tr "\0" " " <"/proc/$owner/cmdline" >"$2/activated-cmdline.txt"
  "$1" --print-menu --depth 0 >"$2/activated-menu.txt"
' activation "$quillon" "$artifacts" >"$artifacts/activation.log" 2>&1 ||
  { cat "$artifacts/activation.log"; fail "the D-Bus service did not start the installed quillon"; }
grep -q -- "--autostart" "$artifacts/activated-cmdline.txt" || fail "the service started $(cat "$artifacts/activated-cmdline.txt")"

# A plain start with the service installed becomes the instance itself; the
# bus must not start another one for it.
XDG_DATA_DIRS="$prefix/share:/usr/share" QUILLON_TRAY=none dbus-run-session -- bash -c '
  "$1" --autostart & started=$!
  trap "kill $started 2>/dev/null" EXIT
  for _ in $(seq 1 100); do
    owner=$(dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
      org.freedesktop.DBus.GetConnectionUnixProcessID string:app.quillon.Quillon 2>/dev/null | sed -n "s/.*uint32 //p")
    [ -n "$owner" ] && break
    sleep 0.1
  done
  [ "$owner" = "$started" ] || { echo "the instance is $owner, not the started $started" >&2; exit 1; }
' plain "$quillon" >"$artifacts/plain-start.log" 2>&1 ||
  { cat "$artifacts/plain-start.log"; fail "a plain start was not the instance"; }
if grep -q "Activating service name='app.quillon.Quillon'" "$artifacts/plain-start.log"; then
  fail "a plain start had the bus start another Quillon"
fi

# Uninstalling removes every file the install wrote.
cmake -DMANIFEST="$build/install_manifest.txt" -P "$(dirname "$0")/../../cmake/QuillonUninstall.cmake" >/dev/null
left=$(find "$prefix" -type f)
[ -z "$left" ] || fail "uninstall left $left"
echo "installed copy: version, help, usage error, menu, translation, D-Bus start and uninstall checked"
