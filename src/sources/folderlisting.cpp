#include "sources/folderlisting.h"

#include "common/log.h"
#include "common/smallfile.h"
#include "sources/dirreader.h"
#include "sources/naturalorder.h"

#include <QFile>
#include <QSet>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <vector>

namespace {

// Sorts before every real date: items whose date cannot be read go last.
constexpr qint64 distantPast = std::numeric_limits<qint64>::min();

struct Child {
    QString name;
    bool isFolder = false;
    qint64 date = distantPast; // nanoseconds since the epoch, read for date sorts only
};

// The names a folder's .hidden file lists, one per line, as file managers
// hide them. Anything but a small regular file is ignored, with a line.
QSet<QByteArray> hiddenNames(int dirFd, const QString &folderPath)
{
    QSet<QByteArray> names;
    const SmallFile file = SmallFile::read(dirFd, ".hidden");
    if (!file.ok()) {
        if (!file.missing())
            qCWarning(lcSources, "%s/.hidden ignored: %s", qUtf8Printable(folderPath), qUtf8Printable(file.reason()));
        return names;
    }
    for (QByteArray line : file.data.split('\n')) {
        if (line.endsWith('\r'))
            line.chop(1);
        if (!line.isEmpty())
            names.insert(line);
    }
    return names;
}

qint64 nanoseconds(const struct statx_timestamp &time)
{
    return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

// Reads the date a sort needs and, while at it, whether the child is a
// folder. Links are followed; a broken link has no date and is a file.
void readDate(int dirFd, const char *name, FolderSort sort, Child &child)
{
    const unsigned int mask = sort == FolderSort::DateAdded ? STATX_BTIME : STATX_MTIME;
    struct statx info;
    if (statx(dirFd, name, AT_NO_AUTOMOUNT, mask | STATX_TYPE, &info) != 0)
        return;
    child.isFolder = S_ISDIR(info.stx_mode);
    // Not every file system records birth times.
    if (info.stx_mask & mask)
        child.date = nanoseconds(sort == FolderSort::DateAdded ? info.stx_btime : info.stx_mtime);
}

struct Listing {
    QString path; // without a trailing slash, "" for the root
    QList<Child> children;
};

std::optional<Listing> readFolder(const QUrl &url, FolderSort sort)
{
    if (!url.isLocalFile()) {
        qCWarning(lcSources, "%s could not be read: %s", qUtf8Printable(url.toString()), "not a local folder");
        return std::nullopt;
    }
    Listing listing;
    listing.path = url.toLocalFile();
    while (listing.path.endsWith(QLatin1Char('/')))
        listing.path.chop(1);

    DirReader reader(listing.path.isEmpty() ? QByteArray("/") : QFile::encodeName(listing.path),
                     DirReader::MissingIs::Logged);
    if (!reader.isOpen())
        return std::nullopt;

    const QSet<QByteArray> hidden = hiddenNames(reader.fd(), listing.path);
    const bool byDate = sort != FolderSort::Name;
    DirReader::Entry entry;
    while (reader.next(entry)) {
        if (entry.name[0] == '.' || (!hidden.isEmpty() && hidden.contains(QByteArray(entry.name))))
            continue;
        Child child;
        child.name = QFile::decodeName(entry.name);
        if (byDate)
            readDate(reader.fd(), entry.name, sort, child);
        else
            child.isFolder = reader.isDirectory(entry);
        listing.children.append(std::move(child));
    }
    return listing;
}

FolderEntry makeEntry(const QString &folderPath, Child &child)
{
    const QUrl url = QUrl::fromLocalFile(folderPath + QLatin1Char('/') + child.name);
    return FolderEntry{std::move(child.name), url, child.isFolder};
}

// Orders the positions up to `middle`; a whole list sorts faster than a
// partial sort of all of it would.
template<typename Less>
void sortFirst(std::vector<qsizetype> &order, std::vector<qsizetype>::iterator middle, Less less)
{
    if (middle == order.end())
        std::sort(order.begin(), order.end(), less);
    else
        std::partial_sort(order.begin(), middle, order.end(), less);
}

// The positions of the first `count` children in sorted order. Only those
// are ordered, which keeps folders of many thousands of items fast.
std::vector<qsizetype> firstInOrder(const QList<Child> &children, FolderSort sort, qsizetype count)
{
    std::vector<qsizetype> order(size_t(children.size()));
    for (qsizetype i = 0; i < children.size(); ++i)
        order[size_t(i)] = i;
    const auto middle = order.begin() + count;

    if (sort == FolderSort::Name && children.size() <= FolderListing::limit) {
        const QCollator collator = naturalOrder();
        sortFirst(order, middle, [&](qsizetype a, qsizetype b) {
            const int result = collator.compare(children[a].name, children[b].name);
            // Names equal but for case still list the same way every time.
            return result != 0 ? result < 0 : children[a].name < children[b].name;
        });
    } else if (sort == FolderSort::Name) {
        // Comparing keys made once per name is many times faster than
        // collating name pairs, which large folders need.
        const QCollator collator = naturalOrder();
        std::vector<QCollatorSortKey> keys;
        keys.reserve(size_t(children.size()));
        for (const Child &child : children)
            keys.push_back(collator.sortKey(child.name));
        sortFirst(order, middle, [&](qsizetype a, qsizetype b) {
            const int result = keys[size_t(a)].compare(keys[size_t(b)]);
            return result != 0 ? result < 0 : children[a].name < children[b].name;
        });
    } else {
        // Newest first; the position breaks ties, which makes this the stable
        // sort of the listing.
        sortFirst(order, middle, [&](qsizetype a, qsizetype b) {
            const qint64 dateA = children[a].date;
            const qint64 dateB = children[b].date;
            return dateA != dateB ? dateA > dateB : a < b;
        });
    }
    order.resize(size_t(count));
    return order;
}

// The first `count` children of a listing in sorted order.
QList<FolderEntry> inOrder(Listing &listing, FolderSort sort, qsizetype count)
{
    count = std::min(listing.children.size(), count);
    QList<FolderEntry> entries;
    entries.reserve(count);
    for (const qsizetype index : firstInOrder(listing.children, sort, count))
        entries.append(makeEntry(listing.path, listing.children[index]));
    return entries;
}

} // namespace

size_t qHash(const FolderEntry &entry, size_t seed) noexcept
{
    return qHashMulti(seed, entry.name, entry.url, entry.isFolder);
}

QList<FolderEntry> FolderListing::contents(const QUrl &folder)
{
    auto listing = readFolder(folder, FolderSort::Name);
    if (!listing)
        return {};
    QList<FolderEntry> entries;
    entries.reserve(listing->children.size());
    for (Child &child : listing->children)
        entries.append(makeEntry(listing->path, child));
    return entries;
}

QList<FolderEntry> FolderListing::list(const QUrl &folder, FolderSort sort)
{
    return page(folder, sort).entries;
}

FolderPage FolderListing::page(const QUrl &folder, FolderSort sort)
{
    auto listing = readFolder(folder, sort);
    if (!listing)
        return {};
    return FolderPage(inOrder(*listing, sort, limit), listing->children.size());
}

QList<FolderEntry> FolderListing::all(const QUrl &folder, FolderSort sort)
{
    auto listing = readFolder(folder, sort);
    if (!listing)
        return {};
    return inOrder(*listing, sort, listing->children.size());
}
