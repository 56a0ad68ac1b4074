#include "sources/desktopentries.h"

#include "sources/desktopentryfile.h"
#include "sources/dirreader.h"

#include <QFile>
#include <QHash>

#include <glib.h>

#include <algorithm>
#include <optional>
#include <sys/stat.h>
#include <utility>

namespace {

struct DesktopFile {
    QString id;
    QByteArray path;
};

struct DirectoryKey {
    dev_t device;
    ino_t inode;
    bool operator==(const DirectoryKey &) const = default;
};

size_t qHash(const DirectoryKey &key, size_t seed = 0) noexcept
{
    return qHashMulti(seed, quint64(key.device), quint64(key.inode));
}

// Deep enough for any real tree; the visited set already stops link loops.
constexpr int maximumFolderDepth = 16;

// Collects the .desktop files below one applications folder with their
// desktop file IDs (the relative path with '/' turned into '-'). A name
// ending in .desktop is an entry whatever it is, as GLib takes it; other
// directories are walked, each real one once.
void collectDesktopFiles(const QByteArray &dirPath, const QString &idPrefix, int depth, QSet<DirectoryKey> &visited,
                         QList<DesktopFile> &files, QStringList &directories)
{
    DirReader reader(dirPath, depth == 0 ? DirReader::MissingIs::Silent : DirReader::MissingIs::Logged);
    if (!reader.isOpen())
        return;
    struct stat status { };
    if (::fstat(reader.fd(), &status) != 0 || visited.contains({status.st_dev, status.st_ino}))
        return;
    visited.insert({status.st_dev, status.st_ino});
    directories.append(QFile::decodeName(dirPath));

    QList<std::pair<QByteArray, bool>> children;
    DirReader::Entry entry;
    while (reader.next(entry)) {
        const QByteArray name(entry.name);
        if (name.endsWith(".desktop"))
            children.append({name, false});
        else if (reader.isDirectory(entry))
            children.append({name, true});
    }
    // Listing order is arbitrary; sorting makes "first found" reproducible.
    std::sort(children.begin(), children.end());

    for (const auto &[name, isDirectory] : std::as_const(children)) {
        const QByteArray path = dirPath + '/' + name;
        if (!isDirectory)
            files.append({idPrefix + QFile::decodeName(name), path});
        else if (depth < maximumFolderDepth)
            collectDesktopFiles(path, idPrefix + QFile::decodeName(name) + QLatin1Char('-'), depth + 1, visited, files,
                                directories);
    }
}

// Whether programs named by TryExec and Exec exist. Many entries name the
// same few programs, and PATH does not change during a scan.
class ProgramLookup
{
public:
    bool found(const QByteArray &program)
    {
        const auto known = m_found.constFind(program);
        if (known != m_found.cend())
            return *known;
        char *path = g_find_program_in_path(program.constData());
        g_free(path);
        m_found.insert(program, path != nullptr);
        return path != nullptr;
    }

    // The program an Exec line runs, as a shell would split the line.
    std::optional<QByteArray> execProgram(const QByteArray &exec)
    {
        // Most lines have no quoting at all: the first word is the program.
        if (exec.indexOf('"') < 0 && exec.indexOf('\'') < 0 && exec.indexOf('\\') < 0 && exec.indexOf('#') < 0) {
            const qsizetype start =
                std::find_if(exec.begin(), exec.end(), [](char c) { return !isWordBreak(c); }) - exec.begin();
            if (start == exec.size())
                return std::nullopt;
            const qsizetype end =
                std::find_if(exec.begin() + start, exec.end(), [](char c) { return isWordBreak(c); }) - exec.begin();
            return exec.sliced(start, end - start);
        }
        char **argv = nullptr;
        if (!g_shell_parse_argv(exec.constData(), nullptr, &argv, nullptr))
            return std::nullopt;
        QByteArray program(argv[0]);
        g_strfreev(argv);
        return program;
    }

private:
    static bool isWordBreak(char c) { return c == ' ' || c == '\t' || c == '\n'; }

    QHash<QByteArray, bool> m_found;
};

// The first current desktop named in OnlyShowIn or NotShowIn decides; when
// none is named, any OnlyShowIn key (even an empty one) hides the entry.
bool showsIn(const DesktopEntryFile &file, const QStringList &desktops)
{
    const auto onlyShowIn = file.list("OnlyShowIn");
    const auto notShowIn = file.list("NotShowIn");
    for (const QString &desktop : desktops) {
        if (onlyShowIn && onlyShowIn->contains(desktop))
            return true;
        if (notShowIn && notShowIn->contains(desktop))
            return false;
    }
    return !onlyShowIn;
}

bool programsFound(const DesktopEntryFile &file, ProgramLookup &programs)
{
    const QByteArray tryExec = file.string("TryExec").value_or(QString()).toUtf8();
    if (!tryExec.isEmpty() && !programs.found(tryExec))
        return false;
    const QByteArray exec = file.string("Exec").value_or(QString()).toUtf8();
    if (exec.isEmpty())
        return true;
    const auto program = programs.execProgram(exec);
    return program && programs.found(*program);
}

// Icon is a theme name or an absolute path. Old entries add an image
// extension to theme names, which theme lookups do not expect.
QString iconName(const DesktopEntryFile &file)
{
    QString icon = file.localeString("Icon").value_or(QString());
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

QString unnamed()
{
    return QString::fromUtf8(g_dgettext("glib20", "Unnamed"));
}

std::optional<DesktopApp> readDesktopApp(const DesktopFile &desktopFile, const DesktopEntryRules &rules,
                                         ProgramLookup &programs)
{
    const auto file = DesktopEntryFile::load(desktopFile.path, rules.languages);
    if (!file || !file->startsWithDesktopEntry() || file->string("Type") != QLatin1String("Application")
        || !programsFound(*file, programs) || file->boolean("Hidden") || file->boolean("NoDisplay")
        || !showsIn(*file, rules.desktops)) {
        return std::nullopt;
    }
    return DesktopApp{desktopFile.id, file->localeString("Name").value_or(unnamed()),
                      QUrl::fromLocalFile(QFile::decodeName(desktopFile.path)), iconName(*file),
                      mainCategory(file->list("Categories").value_or(QStringList()))};
}

} // namespace

FolderApps readFolderApps(const QString &dir, const DesktopEntryRules &rules)
{
    QList<DesktopFile> files;
    FolderApps folder;
    QSet<DirectoryKey> visited;
    collectDesktopFiles(QFile::encodeName(dir), QString(), 0, visited, files, folder.directories);
    ProgramLookup programs;
    for (const DesktopFile &file : std::as_const(files)) {
        if (folder.ids.contains(file.id))
            continue;
        folder.ids.insert(file.id);
        if (auto app = readDesktopApp(file, rules, programs))
            folder.apps.append(std::move(*app));
    }
    return folder;
}

QList<DesktopApp> mergeFolderApps(const QList<FolderApps> &folders)
{
    QList<DesktopApp> apps;
    for (qsizetype i = 0; i < folders.size(); ++i) {
        for (const DesktopApp &app : folders[i].apps) {
            const bool masked = std::any_of(folders.begin(), folders.begin() + i,
                                            [&app](const FolderApps &earlier) { return earlier.ids.contains(app.id); });
            if (!masked)
                apps.append(app);
        }
    }
    return apps;
}

QList<DesktopApp> readDesktopApps(const QStringList &applicationDirs, const QStringList &desktops)
{
    const DesktopEntryRules rules{desktops, sessionLanguages()};
    QList<FolderApps> folders;
    for (const QString &dir : applicationDirs)
        folders.append(readFolderApps(dir, rules));
    return mergeFolderApps(folders);
}
