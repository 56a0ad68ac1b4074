#include "scriptfolder.h"

#include <QCollator>
#include <QFile>
#include <QLocale>
#include <QStandardPaths>
#include <QUuid>

#include <algorithm>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Our own namespace for name-based identifiers; never change it, or every
// shortcut a user has placed in a menu loses its identity.
const QUuid identifierNamespace(QStringLiteral("88BEF240-D942-41A7-A113-2DFE463659AC"));

// A listing line holds one name: whatever would end or garble the line is
// shown as a space.
QString onOneLine(QString name)
{
    for (QChar &c : name) {
        const QChar::Category category = c.category();
        if (category == QChar::Other_Control || category == QChar::Separator_Line
            || category == QChar::Separator_Paragraph)
            c = QLatin1Char(' ');
    }
    return name;
}

// The visible entries of a folder: sub-folders (links to folders count) or
// executable regular files. Names are bytes, as the file system has them.
QByteArrayList entriesOf(const QByteArray &dirPath, bool folders)
{
    QByteArrayList names;
    DIR *dir = ::opendir(dirPath.constData());
    if (!dir)
        return names;
    while (const dirent *entry = ::readdir(dir)) {
        if (entry->d_name[0] == '.')
            continue;
        struct stat status { };
        if (::fstatat(::dirfd(dir), entry->d_name, &status, 0) != 0)
            continue;
        const bool wanted = folders ? S_ISDIR(status.st_mode)
                                    : S_ISREG(status.st_mode) && ::faccessat(::dirfd(dir), entry->d_name, X_OK, 0) == 0;
        if (wanted)
            names.append(QByteArray(entry->d_name));
    }
    ::closedir(dir);
    return names;
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

QString ScriptFolder::identifier(const QByteArray &relativePath)
{
    return QUuid::createUuidV5(identifierNamespace, relativePath).toString(QUuid::WithoutBraces).toUpper();
}

QString ScriptFolder::displayName(const QByteArray &fileBytes)
{
    const QString fileName = onOneLine(QString::fromUtf8(fileBytes));
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
    const QByteArray root = QFile::encodeName(m_root);
    for (const QByteArray &name : entriesOf(root, true))
        entries.append(ScriptEntry{onOneLine(QString::fromUtf8(name)), identifier(name), root + '/' + name});
    sortByName(entries);
    return entries;
}

QList<ScriptEntry> ScriptFolder::unfiledShortcuts() const
{
    return scripts(QByteArray());
}

QList<ScriptEntry> ScriptFolder::shortcuts(const ScriptEntry &folder) const
{
    return scripts(folder.path.mid(folder.path.lastIndexOf('/') + 1));
}

QList<ScriptEntry> ScriptFolder::allShortcuts() const
{
    QList<ScriptEntry> entries = unfiledShortcuts();
    for (const ScriptEntry &folder : folders())
        entries.append(shortcuts(folder));
    sortByName(entries);
    return entries;
}

QList<ScriptEntry> ScriptFolder::scripts(const QByteArray &relativeDir) const
{
    QList<ScriptEntry> entries;
    const QByteArray dir = QFile::encodeName(m_root) + (relativeDir.isEmpty() ? QByteArray() : '/' + relativeDir);
    for (const QByteArray &fileName : entriesOf(dir, false)) {
        const QByteArray relativePath = relativeDir.isEmpty() ? fileName : relativeDir + '/' + fileName;
        entries.append(ScriptEntry{displayName(fileName), identifier(relativePath), dir + '/' + fileName});
    }
    sortByName(entries);
    return entries;
}
