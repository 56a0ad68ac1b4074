#include "sources/desktopentries.h"

#include "sources/dirreader.h"

#include <QFile>
#include <QSet>

#include <glib.h>

#include <algorithm>
#include <memory>
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

struct KeyFileDeleter {
    void operator()(GKeyFile *file) const { g_key_file_free(file); }
};

constexpr const char *group = G_KEY_FILE_DESKTOP_GROUP;

QString takeString(char *value)
{
    const QString result = QString::fromUtf8(value);
    g_free(value);
    return result;
}

QStringList stringList(GKeyFile *file, const char *key)
{
    QStringList result;
    if (!g_key_file_has_key(file, group, key, nullptr))
        return result;
    char **values = g_key_file_get_string_list(file, group, key, nullptr, nullptr);
    for (char **value = values; value && *value; ++value)
        result.append(QString::fromUtf8(*value));
    g_strfreev(values);
    return result;
}

bool boolean(GKeyFile *file, const char *key)
{
    return g_key_file_has_key(file, group, key, nullptr) && g_key_file_get_boolean(file, group, key, nullptr);
}

QByteArray string(GKeyFile *file, const char *key)
{
    if (!g_key_file_has_key(file, group, key, nullptr))
        return {};
    char *value = g_key_file_get_string(file, group, key, nullptr);
    const QByteArray result(value);
    g_free(value);
    return result;
}

// Key[locale] for the user's languages, best match first, then plain Key.
// GKeyFile has this too, but it builds an error message for every locale it
// does not find, which dominates a scan of many entries.
QString localeString(GKeyFile *file, const char *key)
{
    for (const char *const *language = g_get_language_names(); *language; ++language) {
        if (qstrcmp(*language, "C") == 0)
            continue;
        const QByteArray localized = QByteArray(key) + '[' + *language + ']';
        if (g_key_file_has_key(file, group, localized.constData(), nullptr))
            return takeString(g_key_file_get_locale_string(file, group, key, *language, nullptr));
    }
    return QString::fromUtf8(string(file, key));
}

// The first current desktop named in OnlyShowIn or NotShowIn decides; when
// none is named, an OnlyShowIn list hides the entry.
bool showsIn(GKeyFile *file, const QStringList &desktops)
{
    const QStringList onlyShowIn = stringList(file, "OnlyShowIn");
    const QStringList notShowIn = stringList(file, "NotShowIn");
    for (const QString &desktop : desktops) {
        if (onlyShowIn.contains(desktop))
            return true;
        if (notShowIn.contains(desktop))
            return false;
    }
    return onlyShowIn.isEmpty();
}

// TryExec names a program by absolute path or one to find on PATH.
bool tryExecFound(GKeyFile *file)
{
    const QByteArray tryExec = string(file, "TryExec");
    if (tryExec.isEmpty())
        return true;
    char *program = g_find_program_in_path(tryExec.constData());
    g_free(program);
    return program != nullptr;
}

// Icon is a theme name or an absolute path. Old entries add an image
// extension to theme names, which theme lookups do not expect.
QString iconName(GKeyFile *file)
{
    QString icon = localeString(file, "Icon");
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
    // Without KEEP_TRANSLATIONS only the user's languages are kept, which
    // makes loading entries with hundreds of translations cheaper.
    std::unique_ptr<GKeyFile, KeyFileDeleter> file(g_key_file_new());
    if (!g_key_file_load_from_file(file.get(), path.constData(), G_KEY_FILE_NONE, nullptr)
        || !g_key_file_has_group(file.get(), group)) {
        return std::nullopt;
    }
    if (string(file.get(), "Type") != G_KEY_FILE_DESKTOP_TYPE_APPLICATION || boolean(file.get(), "Hidden")
        || boolean(file.get(), "NoDisplay") || !showsIn(file.get(), desktops) || !tryExecFound(file.get())) {
        return std::nullopt;
    }
    const QString name = localeString(file.get(), "Name");
    if (name.isEmpty())
        return std::nullopt;
    return DesktopApp{name, QUrl::fromLocalFile(QFile::decodeName(path)), iconName(file.get()),
                      mainCategory(stringList(file.get(), "Categories"))};
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
