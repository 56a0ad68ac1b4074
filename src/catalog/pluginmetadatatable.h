#pragma once

#include "common/decoded.h"

#include <QHash>
#include <QString>
#include <QStringList>

// The localized texts in the metadata compiled into a Qt plugin, as Plasma 6
// keeps its settings modules' names: {"KPlugin": {"Name": "Display
// Configuration", "Name[de]": "Anzeige-Einrichtung", …}}. For each locale that
// some Key[locale] entry names, the keys it localizes and their values.
// The metadata is read from the file; the plugin is not loaded.
using PluginLocalizations = QHash<QString, QHash<QString, QString>>;

Decoded<PluginLocalizations> readPluginLocalizations(const QString &path);

// A plugin table path may start with %p/, standing for each of Qt's plugin
// folders in turn (distributions put them in different places). The first
// existing file, or none.
std::optional<QString> resolvePluginPath(const QString &path, const QStringList &pluginFolders);
