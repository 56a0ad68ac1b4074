#include "scriptfolder.h"

#include <QCollator>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>
#include <QUuid>

#include <algorithm>

namespace {

// Our own namespace for name-based identifiers; never change it, or every
// shortcut a user has placed in a menu loses its identity.
const QUuid identifierNamespace(QStringLiteral("88BEF240-D942-41A7-A113-2DFE463659AC"));

// A listing line holds one name, so names that would break the line are left out.
bool isPrintable(const QString &name)
{
    return std::none_of(name.cbegin(), name.cend(), [](QChar c) { return c.category() == QChar::Other_Control; });
}

void sortByName(QList<ScriptEntry> &entries)
{
    // The C locale collates by code point, ignoring the options below; sort
    // as English does instead, so "9" still comes before "10".
    const QLocale locale = QLocale().language() == QLocale::C ? QLocale(QLocale::English) : QLocale();
    QCollator collator(locale);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(entries.begin(), entries.end(), [&collator](const ScriptEntry &a, const ScriptEntry &b) {
        const int order = collator.compare(a.name, b.name);
        return order != 0 ? order < 0 : a.path < b.path;
    });
}

} // namespace

ScriptFolder::ScriptFolder(QString root)
    : m_root(std::move(root))
{
}

QString ScriptFolder::defaultRoot()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/quillon/shortcuts");
}

QString ScriptFolder::identifier(const QString &relativePath)
{
    return QUuid::createUuidV5(identifierNamespace, relativePath).toString(QUuid::WithoutBraces).toUpper();
}

QString ScriptFolder::displayName(const QString &fileName)
{
    static const QStringList interpreterSuffixes{
        QStringLiteral("sh"),  QStringLiteral("bash"), QStringLiteral("zsh"), QStringLiteral("ksh"),
        QStringLiteral("csh"), QStringLiteral("fish"), QStringLiteral("py"),  QStringLiteral("py3"),
        QStringLiteral("pl"),  QStringLiteral("rb"),   QStringLiteral("js"),  QStringLiteral("mjs"),
        QStringLiteral("lua"), QStringLiteral("php"),  QStringLiteral("tcl"), QStringLiteral("awk"),
    };
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    if (dot <= 0 || !interpreterSuffixes.contains(fileName.mid(dot + 1), Qt::CaseInsensitive))
        return fileName;
    return fileName.left(dot);
}

QList<ScriptEntry> ScriptFolder::folders() const
{
    QList<ScriptEntry> entries;
    const QDir dir(m_root);
    for (const QString &name : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (isPrintable(name))
            entries.append(ScriptEntry{name, identifier(name), dir.filePath(name)});
    }
    sortByName(entries);
    return entries;
}

QList<ScriptEntry> ScriptFolder::unfiledShortcuts() const
{
    return scripts(QString());
}

QList<ScriptEntry> ScriptFolder::shortcuts(const ScriptEntry &folder) const
{
    return scripts(QFileInfo(folder.path).fileName());
}

QList<ScriptEntry> ScriptFolder::allShortcuts() const
{
    QList<ScriptEntry> entries = unfiledShortcuts();
    for (const ScriptEntry &folder : folders())
        entries.append(shortcuts(folder));
    sortByName(entries);
    return entries;
}

QList<ScriptEntry> ScriptFolder::scripts(const QString &relativeDir) const
{
    QList<ScriptEntry> entries;
    const QDir dir(relativeDir.isEmpty() ? m_root : m_root + QLatin1Char('/') + relativeDir);
    for (const QString &fileName : dir.entryList(QDir::Files | QDir::Executable)) {
        const QString name = displayName(fileName);
        if (!isPrintable(name))
            continue;
        const QString relativePath = relativeDir.isEmpty() ? fileName : relativeDir + QLatin1Char('/') + fileName;
        entries.append(ScriptEntry{name, identifier(relativePath), dir.filePath(fileName)});
    }
    sortByName(entries);
    return entries;
}
