#include "sources/desktopentries.h"

#include "sources/desktopentryfile.h"
#include "sources/dirreader.h"

#include <QFile>
#include <QSet>
#include <QStandardPaths>

#include <algorithm>
#include <optional>
#include <utility>

namespace {

struct DesktopFile {
    QString id;
    QByteArray path;
};

// Sub-folders nest only a level or two in practice; the bound stops a
// symbolic link loop.
constexpr int maximumFolderDepth = 8;

// Collects the .desktop files below one applications folder with their
// desktop file IDs (the relative path with '/' turned into '-').
void collectDesktopFiles(const QByteArray &dirPath, const QString &idPrefix, int depth, QList<DesktopFile> &files)
{
    DirReader reader(dirPath, DirReader::MissingIs::Silent);
    QList<std::pair<QByteArray, bool>> children;
    DirReader::Entry entry;
    while (reader.next(entry)) {
        if (entry.name[0] != '.')
            children.append({QByteArray(entry.name), reader.isDirectory(entry)});
    }
    // Listing order is arbitrary; sorting makes "first found" reproducible.
    std::sort(children.begin(), children.end());

    for (const auto &[name, isDirectory] : std::as_const(children)) {
        const QByteArray path = dirPath + '/' + name;
        if (isDirectory) {
            if (depth < maximumFolderDepth)
                collectDesktopFiles(path, idPrefix + QFile::decodeName(name) + QLatin1Char('-'), depth + 1, files);
        } else if (name.endsWith(".desktop")) {
            files.append({idPrefix + QFile::decodeName(name), path});
        }
    }
}

// The first current desktop named in OnlyShowIn or NotShowIn decides; when
// none is named, an OnlyShowIn list hides the entry.
bool showsIn(const DesktopEntryFile &file, const QStringList &desktops)
{
    const QStringList onlyShowIn = file.list("OnlyShowIn");
    const QStringList notShowIn = file.list("NotShowIn");
    for (const QString &desktop : desktops) {
        if (onlyShowIn.contains(desktop))
            return true;
        if (notShowIn.contains(desktop))
            return false;
    }
    return onlyShowIn.isEmpty();
}

// TryExec names a program by absolute path or one to find on PATH.
bool tryExecFound(const DesktopEntryFile &file)
{
    const QString tryExec = QFile::decodeName(file.string("TryExec"));
    return tryExec.isEmpty() || !QStandardPaths::findExecutable(tryExec).isEmpty();
}

// Icon is a theme name or an absolute path. Old entries add an image
// extension to theme names, which theme lookups do not expect.
QString iconName(const DesktopEntryFile &file)
{
    QString icon = file.localeString("Icon");
    if (!icon.startsWith(QLatin1Char('/'))) {
        for (const char *extension : {".png", ".xpm", ".svg"}) {
            if (icon.endsWith(QLatin1String(extension))) {
                icon.chop(4);
                break;
            }
        }
    }
    return icon;
}

std::optional<DesktopApp> readDesktopApp(const QByteArray &path, const QStringList &desktops)
{
    const auto file = DesktopEntryFile::load(path);
    if (!file || file->string("Type") != "Application" || file->boolean("Hidden") || file->boolean("NoDisplay")
        || !showsIn(*file, desktops) || !tryExecFound(*file)) {
        return std::nullopt;
    }
    const QString name = file->localeString("Name");
    if (name.isEmpty())
        return std::nullopt;
    return DesktopApp{name, QUrl::fromLocalFile(QFile::decodeName(path)), iconName(*file),
                      mainCategory(file->list("Categories"))};
}

} // namespace

QList<DesktopApp> readDesktopApps(const QStringList &applicationDirs, const QStringList &desktops)
{
    QList<DesktopApp> apps;
    QSet<QString> seenIds;
    for (const QString &dir : applicationDirs) {
        QList<DesktopFile> files;
        collectDesktopFiles(QFile::encodeName(dir), QString(), 0, files);
        for (const DesktopFile &file : std::as_const(files)) {
            if (seenIds.contains(file.id))
                continue;
            seenIds.insert(file.id);
            if (auto app = readDesktopApp(file.path, desktops))
                apps.append(std::move(*app));
        }
    }
    return apps;
}
