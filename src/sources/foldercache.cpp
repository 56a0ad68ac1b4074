#include "sources/foldercache.h"

#include "common/enumstrings.h"
#include "common/log.h"
#include "sources/dirreader.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QSaveFile>

#include <algorithm>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// Found by the QList streaming below, so beside the types, not in a
// namespace of their own.
static QDataStream &operator<<(QDataStream &out, const FileStamp &stamp)
{
    return out << stamp.device << stamp.inode << stamp.size << stamp.seconds << stamp.nanoseconds;
}

static QDataStream &operator>>(QDataStream &in, FileStamp &stamp)
{
    return in >> stamp.device >> stamp.inode >> stamp.size >> stamp.seconds >> stamp.nanoseconds;
}

static QDataStream &operator<<(QDataStream &out, const EntryFacts &facts)
{
    return out << facts.shows << facts.name << facts.icon << facts.category << facts.tryExec << facts.execProgram;
}

static QDataStream &operator>>(QDataStream &in, EntryFacts &facts)
{
    return in >> facts.shows >> facts.name >> facts.icon >> facts.category >> facts.tryExec >> facts.execProgram;
}

namespace {

// Qt's own list reading reserves whatever count the file claims, so one
// damaged count asks for gigabytes. This one reads a count no larger than
// the bytes left could hold, each item taking at least smallestItem bytes.
template<typename List>
bool readList(QDataStream &in, List &list, qint64 smallestItem)
{
    list.clear();
    quint32 count = 0;
    in >> count;
    const QIODevice *device = in.device();
    if (in.status() != QDataStream::Ok || count > (device->size() - device->pos()) / smallestItem) {
        in.setStatus(QDataStream::ReadCorruptData);
        return false;
    }
    for (quint32 i = 0; i < count; ++i) {
        typename List::value_type item;
        in >> item;
        if (in.status() != QDataStream::Ok)
            return false;
        list.append(std::move(item));
    }
    return true;
}

// Every string, byte array and their lists start with a 4-byte length.
constexpr qint64 lengthSize = 4;
constexpr qint64 stampSize = 5 * 8;

constexpr quint32 magic = 0x51415050; // "QAPP"
constexpr quint32 format = 3;
// Damage that still parses (a name's bytes, a flag) is caught by a sum over
// the whole file rather than by reading it.
constexpr qint64 checksumSize = 20;
// Thousands of entries take a few hundred kilobytes.
constexpr qint64 largestCache = 64 * 1024 * 1024;

QByteArray checksum(const QByteArray &body)
{
    return QCryptographicHash::hash(body, QCryptographicHash::Sha1);
}
// Fewer bytes than any record takes: a damaged count cannot make the reader
// reserve more than a few times the file's size.
constexpr qint64 minimumRecordSize = 64;

QString pathFor(const QString &folder, const DesktopEntryRules &rules)
{
    const QByteArray key = QCryptographicHash::hash(QFile::encodeName(folder), QCryptographicHash::Sha1).toHex();
    return rules.cacheFolder + QLatin1Char('/') + QString::fromLatin1(key);
}

} // namespace

FileStamp FileStamp::of(const struct stat &status)
{
    return {quint64(status.st_dev), quint64(status.st_ino), qint64(status.st_size), qint64(status.st_mtim.tv_sec),
            qint64(status.st_mtim.tv_nsec)};
}

FileStamp FileStamp::toKeep(const struct stat &status)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    FileStamp stamp = of(status);
    if (now.tv_sec - stamp.seconds < 2)
        stamp.seconds = -1;
    return stamp;
}

void FolderCache::write(const QString &folder, const DesktopEntryRules &rules) const
{
    QDir().mkpath(rules.cacheFolder);
    QSaveFile file(pathFor(folder, rules));
    if (!file.open(QIODevice::WriteOnly))
        return;
    QByteArray body;
    QDataStream out(&body, QIODevice::WriteOnly);
    out.setVersion(QDataStream::Qt_6_4);
    out << magic << format << folder << rules.languages << rules.desktops << directories << directoryStamps
        << qint64(files.size());
    for (const File &entry : files)
        out << entry.id << entry.directory << entry.name << entry.stamp << entry.facts;
    out << path << pathStamps << programs;
    if (out.status() != QDataStream::Ok || file.write(body + checksum(body)) != body.size() + checksumSize
        || !file.commit())
        qCDebug(lcSources) << "Could not write the application cache for" << folder;
}

std::optional<FolderCache> FolderCache::read(const QString &folder, const DesktopEntryRules &rules)
{
    QFile stored(pathFor(folder, rules));
    if (!stored.open(QIODevice::ReadOnly) || stored.size() > largestCache || stored.size() < checksumSize)
        return std::nullopt;
    QByteArray body = stored.readAll();
    const QByteArray sum = body.sliced(body.size() - checksumSize);
    body.chop(checksumSize);
    if (sum != checksum(body))
        return std::nullopt;
    QBuffer file(&body);
    file.open(QIODevice::ReadOnly);
    QDataStream in(&file);
    in.setVersion(QDataStream::Qt_6_4);
    quint32 fileMagic = 0;
    quint32 fileFormat = 0;
    QString fileFolder;
    QByteArrayList languages;
    QStringList desktops;
    in >> fileMagic >> fileFormat;
    if (fileMagic != magic || fileFormat != format)
        return std::nullopt;
    FolderCache cache;
    qint64 count = 0;
    in >> fileFolder;
    const bool listsRead = readList(in, languages, lengthSize) && readList(in, desktops, lengthSize)
                           && readList(in, cache.directories, lengthSize)
                           && readList(in, cache.directoryStamps, stampSize);
    in >> count;
    if (!listsRead || in.status() != QDataStream::Ok || fileFolder != folder || languages != rules.languages
        || desktops != rules.desktops || cache.directories.size() != cache.directoryStamps.size() || count < 0
        || count > file.size() / minimumRecordSize) {
        return std::nullopt;
    }
    cache.files.reserve(count);
    for (qint64 i = 0; i < count && in.status() == QDataStream::Ok; ++i) {
        File entry;
        in >> entry.id >> entry.directory >> entry.name >> entry.stamp >> entry.facts;
        const auto &categories = EnumCases<AppCategory>::cases;
        const bool knownCategory = std::any_of(categories.begin(), categories.end(), [&entry](const auto &known) {
            return known.first == AppCategory(entry.facts.category);
        });
        if (entry.directory < 0 || entry.directory >= cache.directories.size() || !knownCategory)
            return std::nullopt;
        cache.files.append(std::move(entry));
    }
    in >> cache.path;
    if (!readList(in, cache.pathStamps, stampSize))
        return std::nullopt;
    quint32 programCount = 0;
    in >> programCount;
    if (in.status() != QDataStream::Ok || programCount > (file.size() - file.pos()) / (lengthSize + 1))
        return std::nullopt;
    for (quint32 i = 0; i < programCount && in.status() == QDataStream::Ok; ++i) {
        QByteArray program;
        bool found = false;
        in >> program >> found;
        cache.programs.insert(program, found);
    }
    if (in.status() != QDataStream::Ok)
        return std::nullopt;
    return cache;
}

QList<FileStamp> FolderCache::stampsOfPath(const QByteArray &path)
{
    QList<FileStamp> stamps;
    for (const QByteArray &folder : path.split(':')) {
        struct stat status { };
        if (::stat(folder.isEmpty() ? "." : folder.constData(), &status) == 0)
            stamps.append(FileStamp::toKeep(status));
        else
            stamps.append(FileStamp{0, 0, 0, -1, 0});
    }
    return stamps;
}

bool FolderCache::isCurrent() const
{
    OpenDirectories open;
    QList<int> fds;
    for (qsizetype i = 0; i < directories.size(); ++i) {
        const int fd = ::open(QFile::encodeName(directories[i]).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        struct stat status { };
        const bool same = fd >= 0 && ::fstat(fd, &status) == 0 && FileStamp::of(status) == directoryStamps[i];
        if (fd >= 0) {
            fds.append(open.keep(fd));
            ::close(fd);
        }
        if (!same)
            return false;
    }
    for (const File &entry : files) {
        struct stat status { };
        const int directory = fds[entry.directory];
        const QByteArray name =
            directory == AT_FDCWD ? QFile::encodeName(directories[entry.directory]) + '/' + entry.name : entry.name;
        if (::fstatat(directory, name.constData(), &status, 0) != 0 || FileStamp::of(status) != entry.stamp)
            return false;
    }
    return true;
}
