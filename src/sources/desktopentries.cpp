#include "sources/desktopentries.h"

#include "sources/dirreader.h"

#include <QFile>
#include <QSet>

#include <gio/gdesktopappinfo.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

namespace {

struct ObjectUnref {
    void operator()(gpointer object) const { g_object_unref(object); }
};

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

QString takeString(char *value)
{
    const QString result = QString::fromUtf8(value);
    g_free(value);
    return result;
}

QStringList takeStringList(char **values)
{
    QStringList result;
    for (char **value = values; value && *value; ++value)
        result.append(QString::fromUtf8(*value));
    g_strfreev(values);
    return result;
}

// The first current desktop named in OnlyShowIn or NotShowIn decides; when
// none is named, an OnlyShowIn list hides the entry.
bool showsIn(GDesktopAppInfo *info, const QStringList &desktops)
{
    const QStringList onlyShowIn = takeStringList(g_desktop_app_info_get_string_list(info, "OnlyShowIn", nullptr));
    const QStringList notShowIn = takeStringList(g_desktop_app_info_get_string_list(info, "NotShowIn", nullptr));
    for (const QString &desktop : desktops) {
        if (onlyShowIn.contains(desktop))
            return true;
        if (notShowIn.contains(desktop))
            return false;
    }
    return onlyShowIn.isEmpty();
}

// Icon is a theme name or an absolute path. Old entries add an image
// extension to theme names, which theme lookups do not expect.
QString iconName(GDesktopAppInfo *info)
{
    QString icon = takeString(g_desktop_app_info_get_locale_string(info, "Icon"));
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
    // Loading fails for entries that are not applications and for those whose
    // TryExec program cannot be found.
    std::unique_ptr<GDesktopAppInfo, ObjectUnref> info(g_desktop_app_info_new_from_filename(path.constData()));
    if (!info)
        return std::nullopt;
    if (g_desktop_app_info_get_is_hidden(info.get()) || g_desktop_app_info_get_nodisplay(info.get())
        || !showsIn(info.get(), desktops)) {
        return std::nullopt;
    }

    const QString name = QString::fromUtf8(g_app_info_get_name(G_APP_INFO(info.get())));
    if (name.isEmpty())
        return std::nullopt;
    const QStringList categories = QString::fromUtf8(g_desktop_app_info_get_categories(info.get()))
                                       .split(QLatin1Char(';'), Qt::SkipEmptyParts);
    return DesktopApp{name, QUrl::fromLocalFile(QFile::decodeName(path)), iconName(info.get()),
                      mainCategory(categories)};
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
