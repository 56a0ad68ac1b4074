#pragma once

#include "hotkeys/hotkeycombination.h"

#include <QList>
#include <QString>

// Combinations the desktop keeps for itself: GNOME's keybindings and KDE's
// global shortcuts. Whatever cannot be read counts as nothing in use.
QList<HotKeyCombination> desktopShortcuts();

// The active keys of every action in a kglobalshortcutsrc file.
QList<HotKeyCombination> kdeShortcuts(const QString &fileName);
