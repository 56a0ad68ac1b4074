#pragma once

#include "hotkeys/hotkeycombination.h"

#include <QList>
#include <QString>

#include <optional>

// X keysym names ("space", "Page_Up", "a"), the way the desktop portal,
// GNOME's accelerators and its custom shortcuts write keys.
QString keysymName(quint32 qtKey);
std::optional<quint32> keyFromKeysymName(const QString &name);

// GTK accelerators as GNOME stores its shortcuts: "<Control><Alt>space".
std::optional<HotKeyCombination> fromGtkAccelerator(const QString &accelerator);
QString gtkAccelerator(quint32 keyCode, quint32 modifiers);

// KDE's key lists: Qt portable texts joined by tabs, "none" for no key.
QList<HotKeyCombination> fromKdeKeyList(const QString &keys);
