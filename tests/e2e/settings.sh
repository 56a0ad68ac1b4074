#!/usr/bin/env bash
# The settings window driven through the accessibility tree (AT-SPI) in a
# virtual X session. Run as: xvfb-run -a dbus-run-session -- settings.sh <quillon> <artifacts>
set -euo pipefail
quillon=$1
artifacts=$2
source "$(dirname "$0")/session.sh"
mkdir -p "$home/Reports"
touch "$home/Reports/Q3 figures.ods"
cat > "$XDG_DATA_HOME/applications/org.example.QuillonMarker.desktop" <<ENTRY
[Desktop Entry]
Type=Application
Name=Quillon Marker Probe
Exec=true
Categories=Utility;
ENTRY

# The accessibility bus first, so Quillon finds it at start.
/usr/libexec/at-spi-bus-launcher --launch-immediately >/dev/null 2>&1 &
sleep 1
export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
start_tray
"$quillon" --autostart >"$artifacts/quillon.log" 2>&1 &
sleep 1.5
"$quillon" --settings || fail "quillon --settings did not reach the running Quillon"
# No window manager here to hand the window the keyboard.
xdotool search --sync --name "Quillon Settings" windowfocus --sync
/usr/bin/python3 "$(dirname "$0")/settings.py" "$quillon" "$artifacts" || fail "the settings window did not do what it was told"
