#pragma once

#include "common/decoded.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

// One localization of one of the desktop's string tables: key to text.
using StringTable = QHash<QString, QString>;

// A table is named by a path of one of two kinds:
// - a gettext catalog with %l where the locale folder goes
//   (/usr/share/locale/%l/LC_MESSAGES/gnome-control-center-2.0.mo): its
//   localizations are the locale folders that hold the file, keys are msgids;
// - a desktop entry file (/usr/share/applications/kcm_kscreen.desktop): its
//   localizations are the locales of its Key[locale] lines, keys are key names;
// - a Qt plugin (%p/plasma/kcms/systemsettings/kcm_kscreen.so, %p standing for
//   Qt's plugin folders): the same, from the KPlugin object of its metadata.
//
// The localization best serving the languages is loaded. No table (without an
// error) when none serves them; an error when the table cannot be read.
Decoded<std::optional<StringTable>> loadStringTable(const QString &path, const QStringList &languages);

// Tables by path, each loaded at most once: a table that could not be read is
// logged once and remembered as missing. Main-thread state.
class StringTableCache
{
public:
    explicit StringTableCache(QStringList languages);

    // The table at the path, or none. Tables are implicitly shared, so the
    // copy is cheap.
    std::optional<StringTable> table(const QString &path);

private:
    QStringList m_languages;
    QHash<QString, std::optional<StringTable>> m_tables;
};
