#include "sources/desktopentries.h"

#include "sources/desktopentryfile.h"
#include "sources/dirreader.h"
#include "sources/foldercache.h"

#include <QFile>
#include <QHash>
#include <QStandardPaths>
#include <QThread>

#include <glib.h>

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <future>
#include <mutex>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

struct DesktopFile {
    QString id;
    QByteArray path;
    int directory = AT_FDCWD; // open, holding the file
    QByteArray name;          // within `directory`
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

struct Collection {
    QSet<DirectoryKey> visited;
    OpenDirectories open;
    QList<DesktopFile> files;
    QStringList directories;
    QList<FileStamp> directoryStamps; // taken before listing
};

// Collects the .desktop files below one applications folder with their
// desktop file IDs (the relative path with '/' turned into '-'). A name
// ending in .desktop is an entry whatever it is, as GLib takes it; other
// directories are walked, each real one once.
void collectDesktopFiles(const QByteArray &dirPath, const QString &idPrefix, int depth, Collection &collection)
{
    DirReader reader(dirPath, depth == 0 ? DirReader::MissingIs::Silent : DirReader::MissingIs::Logged);
    if (!reader.isOpen())
        return;
    struct stat status { };
    if (::fstat(reader.fd(), &status) != 0 || collection.visited.contains({status.st_dev, status.st_ino}))
        return;
    collection.visited.insert({status.st_dev, status.st_ino});
    collection.directories.append(QFile::decodeName(dirPath));
    collection.directoryStamps.append(FileStamp::toKeep(status));

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

    const int directory = collection.open.keep(reader.fd());
    for (const auto &[name, isDirectory] : std::as_const(children)) {
        const QByteArray path = dirPath + '/' + name;
        if (!isDirectory) {
            collection.files.append(
                {idPrefix + QFile::decodeName(name), path, directory, directory == AT_FDCWD ? path : name});
        } else if (depth < maximumFolderDepth) {
            collectDesktopFiles(path, idPrefix + QFile::decodeName(name) + QLatin1Char('-'), depth + 1, collection);
        }
    }
}

// The programs in the folders of PATH, listed once per scan: probing every
// folder for every entry's program costs more than reading the entries.
class PathListing
{
    // Listed when first asked: a folder without entries asks nothing.
    void list() const
    {
        const QByteArray path = qgetenv("PATH");
        // GLib's default when PATH is unset.
        const QByteArrayList folders = (path.isNull() ? QByteArray("/bin:/usr/bin:.") : path).split(':');
        for (const QByteArray &folder : folders) {
            Folder listed{folder.isEmpty() ? QByteArray(".") : folder, AT_FDCWD, {}};
            // Not DirReader: a folder of PATH we may not list is no news.
            if (DIR *dir = ::opendir(listed.path.constData())) {
                while (const dirent *entry = ::readdir(dir)) {
                    if (entry->d_type != DT_DIR)
                        listed.types.insert(QByteArray(entry->d_name), entry->d_type);
                }
                listed.fd = m_open.keep(::dirfd(dir));
                ::closedir(dir);
            }
            m_folders.append(std::move(listed));
        }
    }

public:
    // Whether g_find_program_in_path would find the program: an executable
    // file of that name in a folder of PATH.
    bool found(const QByteArray &program) const
    {
        std::call_once(m_listed, [this] { list(); });
        if (program.contains('/')) {
            char *path = g_find_program_in_path(program.constData());
            g_free(path);
            return path != nullptr;
        }
        return std::any_of(m_folders.begin(), m_folders.end(), [&program](const Folder &folder) {
            // A folder that could not be listed may still hold it.
            if (folder.fd == AT_FDCWD)
                return isExecutableFile(AT_FDCWD, folder.path + '/' + program, DT_UNKNOWN);
            const auto type = folder.types.constFind(program);
            return type != folder.types.cend() && isExecutableFile(folder.fd, program, *type);
        });
    }

private:
    struct Folder {
        QByteArray path;
        int fd = AT_FDCWD; // AT_FDCWD when it could not be listed
        QHash<QByteArray, unsigned char> types;
    };

    static bool isExecutableFile(int folder, const QByteArray &name, unsigned char type)
    {
        static const bool root = ::getuid() == 0;
        struct stat status { };
        // A link may lead to a folder; a regular file needs no second look
        // unless access() is root's, which lets root execute anything.
        if ((type != DT_REG || root)
            && (::fstatat(folder, name.constData(), &status, 0) != 0 || S_ISDIR(status.st_mode)))
            return false;
        if (::faccessat(folder, name.constData(), X_OK, 0) != 0)
            return false;
        return !root || (S_ISREG(status.st_mode) && (status.st_mode & 0111));
    }

    mutable std::once_flag m_listed;
    mutable OpenDirectories m_open;
    mutable QList<Folder> m_folders;
};

// Whether programs named by TryExec and Exec exist, remembered for the
// scan: entries often name the same program.
class ProgramLookup
{
public:
    explicit ProgramLookup(const PathListing &path, QHash<QByteArray, bool> known = {})
        : m_path(path)
        , m_found(std::move(known))
    {
    }

    const QHash<QByteArray, bool> &answers() const { return m_found; }

    bool found(const QByteArray &program)
    {
        const auto known = m_found.constFind(program);
        if (known != m_found.cend())
            return *known;
        const bool found = m_path.found(program);
        m_found.insert(program, found);
        return found;
    }

    // The program an Exec line runs, as a shell would split the line.
    static std::optional<QByteArray> execProgram(const QByteArray &exec)
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

    const PathListing &m_path;
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

EntryFacts readFacts(const DesktopFile &desktopFile, const DesktopEntryRules &rules)
{
    const auto file = DesktopEntryFile::loadAt(desktopFile.directory, desktopFile.name, rules.languages);
    if (!file || !file->startsWithDesktopEntry() || file->string("Type") != QLatin1String("Application")
        || file->boolean("Hidden") || file->boolean("NoDisplay") || !showsIn(*file, rules.desktops)) {
        return {};
    }
    const QByteArray exec = file->string("Exec").value_or(QString()).toUtf8();
    const auto program = exec.isEmpty() ? std::optional<QByteArray>() : ProgramLookup::execProgram(exec);
    if (!exec.isEmpty() && !program)
        return {}; // an Exec line no shell could split
    return EntryFacts{true,
                      file->localeString("Name").value_or(unnamed()),
                      iconName(*file),
                      qint32(mainCategory(file->list("Categories").value_or(QStringList()))),
                      file->string("TryExec").value_or(QString()).toUtf8(),
                      program.value_or(QByteArray())};
}

std::optional<DesktopApp> appOf(const QString &id, const QByteArray &path, const EntryFacts &facts,
                                ProgramLookup &programs)
{
    if (!facts.shows || (!facts.tryExec.isEmpty() && !programs.found(facts.tryExec))
        || (!facts.execProgram.isEmpty() && !programs.found(facts.execProgram))) {
        return std::nullopt;
    }
    return DesktopApp{id, facts.name, QUrl::fromLocalFile(QFile::decodeName(path)), facts.icon,
                      AppCategory(facts.category)};
}

} // namespace

namespace {

FolderApps fromCache(const FolderCache &cache)
{
    FolderApps folder;
    folder.directories = cache.directories;
    if (cache.files.isEmpty())
        return folder;
    const PathListing path;
    // The answers of the read that wrote the cache hold while no PATH
    // folder changed since.
    const QByteArray currentPath = qgetenv("PATH");
    const bool sameProgams = cache.path == currentPath && FolderCache::stampsOfPath(currentPath) == cache.pathStamps;
    ProgramLookup programs(path, sameProgams ? cache.programs : QHash<QByteArray, bool>());
    for (const FolderCache::File &entry : cache.files) {
        folder.ids.insert(entry.id);
        const QByteArray filePath = QFile::encodeName(cache.directories[entry.directory]) + '/' + entry.name;
        if (auto app = appOf(entry.id, filePath, entry.facts, programs))
            folder.apps.append(std::move(*app));
    }
    return folder;
}

} // namespace

FolderApps readFolderApps(const QString &dir, const DesktopEntryRules &rules)
{
    const bool cached = !rules.cacheFolder.isEmpty();
    if (cached) {
        if (const auto cache = FolderCache::read(dir, rules); cache && cache->isCurrent())
            return fromCache(*cache);
    }

    Collection collection;
    collectDesktopFiles(QFile::encodeName(dir), QString(), 0, collection);
    FolderApps folder;
    folder.directories = collection.directories;
    QList<DesktopFile> files;
    for (DesktopFile &file : collection.files) {
        if (!folder.ids.contains(file.id)) {
            folder.ids.insert(file.id);
            files.append(std::move(file));
        }
    }

    // Reading is mostly waiting on system calls; the cores share it.
    const PathListing path;
    // Stamped before programs are looked for: a change in between makes
    // the answers stale, never wrong.
    const QByteArray currentPath = qgetenv("PATH");
    const QList<FileStamp> pathStamps = cached ? FolderCache::stampsOfPath(currentPath) : QList<FileStamp>();
    QList<FolderCache::File> read(files.size());
    QList<std::optional<DesktopApp>> apps(files.size());
    constexpr qsizetype filesPerThread = 100;
    const qsizetype threads =
        std::clamp<qsizetype>(files.size() / filesPerThread, 1, std::min(4, QThread::idealThreadCount()));
    std::vector<ProgramLookup> lookups(size_t(threads), ProgramLookup{path});
    const auto readRange = [&](qsizetype thread, qsizetype from, qsizetype to) {
        ProgramLookup &programs = lookups[size_t(thread)];
        for (qsizetype i = from; i < to; ++i) {
            const DesktopFile &file = files[i];
            struct stat status { };
            // Taken before reading: a change in between makes the cache stale, never wrong.
            if (::fstatat(file.directory, file.name.constData(), &status, 0) == 0)
                read[i].stamp = FileStamp::toKeep(status);
            read[i].facts = readFacts(file, rules);
            apps[i] = appOf(file.id, file.path, read[i].facts, programs);
        }
    };
    const qsizetype chunk = (files.size() + threads - 1) / threads;
    std::vector<std::future<void>> others;
    for (qsizetype t = 1; t < threads; ++t) {
        others.push_back(
            std::async(std::launch::async, readRange, t, t * chunk, std::min(files.size(), (t + 1) * chunk)));
    }
    readRange(0, 0, std::min(files.size(), chunk));
    for (auto &other : others)
        other.wait();

    for (auto &app : apps) {
        if (app)
            folder.apps.append(std::move(*app));
    }

    if (cached && !collection.directories.isEmpty()) {
        FolderCache cache{collection.directories, collection.directoryStamps, {}, currentPath, pathStamps, {}};
        // Programs named by path are not in PATH's folders: those are asked again.
        for (const ProgramLookup &lookup : lookups) {
            for (auto answer = lookup.answers().cbegin(); answer != lookup.answers().cend(); ++answer) {
                if (!answer.key().contains('/'))
                    cache.programs.insert(answer.key(), answer.value());
            }
        }
        QHash<QString, qint32> directoryIndex;
        for (qsizetype i = 0; i < collection.directories.size(); ++i)
            directoryIndex.insert(collection.directories[i], qint32(i));
        for (qsizetype i = 0; i < files.size(); ++i) {
            const QString parent = QFile::decodeName(files[i].path.left(files[i].path.lastIndexOf('/')));
            read[i].id = files[i].id;
            read[i].directory = directoryIndex.value(parent, -1);
            read[i].name = files[i].path.mid(files[i].path.lastIndexOf('/') + 1);
            if (read[i].directory < 0)
                return folder; // not a walked folder: leave the cache as it was
            cache.files.append(read[i]);
        }
        cache.write(dir, rules);
    }
    return folder;
}

QString applicationCacheFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)
           + QStringLiteral("/quillon/applications");
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
    const DesktopEntryRules rules{desktops, sessionLanguages(), applicationCacheFolder()};
    QList<FolderApps> folders;
    for (const QString &dir : applicationDirs)
        folders.append(readFolderApps(dir, rules));
    return mergeFolderApps(folders);
}
