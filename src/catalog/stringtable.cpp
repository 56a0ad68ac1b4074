#include "catalog/stringtable.h"

#include "catalog/desktopentrytable.h"
#include "catalog/localization.h"
#include "catalog/motable.h"
#include "catalog/pluginmetadatatable.h"
#include "common/log.h"
#include "common/mainthread.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

const QString localePlaceholder = QStringLiteral("%l");

using Loaded = Decoded<std::optional<StringTable>>;

Loaded loadGettextTable(const QString &path, const QStringList &languages)
{
    const qsizetype at = path.indexOf(localePlaceholder);
    const QString prefix = path.first(at);
    const QString suffix = path.sliced(at + localePlaceholder.size());
    if (!prefix.endsWith(u'/') || !suffix.startsWith(u'/'))
        return Loaded::failure(QStringLiteral("%l must stand for a whole folder name"));

    QStringList locales;
    const QStringList folders = QDir(prefix).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &folder : folders) {
        if (QFileInfo(prefix + folder + suffix).isFile())
            locales.append(folder);
    }
    if (locales.isEmpty())
        return Loaded::failure(QStringLiteral("no localization of it is installed"));

    const auto locale = preferredLocalization(locales, languages);
    if (!locale)
        return std::optional<StringTable>();
    const QString file = prefix + *locale + suffix;
    auto table = readMoCatalog(file);
    if (!table)
        return Loaded::failure(file + QStringLiteral(": ") + table.error());
    return std::optional<StringTable>(std::move(table).value());
}

Loaded loadDesktopEntryTable(const QString &path, const QStringList &languages)
{
    auto localizations = readDesktopEntryLocalizations(path);
    if (!localizations)
        return Loaded::failure(localizations);
    QStringList locales = localizations.value().keys();
    locales.sort();
    const auto locale = preferredLocalization(locales, languages);
    if (!locale)
        return std::optional<StringTable>();
    return std::optional<StringTable>(localizations.value().value(*locale));
}

Loaded loadPluginTable(const QString &path, const QStringList &languages)
{
    const auto file = resolvePluginPath(path, QCoreApplication::libraryPaths());
    if (!file)
        return Loaded::failure(QStringLiteral("no such plugin"));
    auto localizations = readPluginLocalizations(*file);
    if (!localizations)
        return Loaded::failure(localizations);
    QStringList locales = localizations.value().keys();
    locales.sort();
    const auto locale = preferredLocalization(locales, languages);
    if (!locale)
        return std::optional<StringTable>();
    return std::optional<StringTable>(localizations.value().value(*locale));
}

} // namespace

Decoded<std::optional<StringTable>> loadStringTable(const QString &path, const QStringList &languages)
{
    if (path.contains(localePlaceholder))
        return loadGettextTable(path, languages);
    if (path.endsWith(QStringLiteral(".so")))
        return loadPluginTable(path, languages);
    return loadDesktopEntryTable(path, languages);
}

StringTableCache::StringTableCache(QStringList languages)
    : m_languages(std::move(languages))
{
}

std::optional<StringTable> StringTableCache::table(const QString &path)
{
    QUILLON_ASSERT_MAIN_THREAD();
    const auto cached = m_tables.constFind(path);
    if (cached != m_tables.constEnd())
        return *cached;
    auto loaded = loadStringTable(path, m_languages);
    if (!loaded) {
        qCWarning(lcCatalog, "System string table %s could not be read: %s", qUtf8Printable(path),
                  qUtf8Printable(loaded.error()));
    }
    const std::optional<StringTable> table = loaded ? loaded.value() : std::nullopt;
    m_tables.insert(path, table);
    return table;
}
