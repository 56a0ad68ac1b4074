#include "app/lazymenu.h"
#include "app/menubuilder.h"
#include "fixtures.h"
#include "sources/desktopentries.h"
#include "sources/entrybuilders.h"
#include "sources/listingqueue.h"
#include "sources/textmatch.h"

#include <QDir>
#include <QElapsedTimer>
#include <QMenu>
#include <QRegularExpression>
#include <QSemaphore>
#include <QStandardPaths>
#include <QTest>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Generous: each bound is a second or less on an idle machine.
constexpr qint64 boundMs = 3000;

void write(const QString &path, const QByteArray &data)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(data);
}

// What may stand in a folder under a file's name: reading either never ends.
enum class NotAFile { Fifo, DevZero };

void make(NotAFile kind, const QString &path)
{
    if (kind == NotAFile::Fifo)
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    else
        QVERIFY(QFile::link(QStringLiteral("/dev/zero"), path));
}

// A file of `size` bytes that takes no room on disk.
void sparse(const QString &path, const QByteArray &start, qint64 size)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(start);
    QVERIFY(file.resize(size));
}

QByteArray entry(const QByteArray &name)
{
    return "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=sh\n";
}

qint64 peakMemoryKb()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

QStringList titles(const QMenu &menu)
{
    QStringList result;
    for (const QAction *action : menu.actions())
        result.append(action->text());
    return result;
}

} // namespace

// What a local user, a package or a shared folder can put in the folders
// Quillon reads: nothing blocks, nothing is read without bound, nothing is
// silently lost.
class TestHostileSources : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    StoreFixture m_saved;
    TestCatalog m_catalog;

    QString path(const QString &relative) const { return m_dir.filePath(relative); }

private Q_SLOTS:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        m_catalog.set({}, {});
    }

    void init() { m_saved.reset(); }

    // A FIFO, a link to /dev/zero, a 50 MB entry and links that lead back up
    // the tree, beside entries that must still be read.
    void applicationsFolderWithEverythingButEntries()
    {
        const QString apps = path(QStringLiteral("apps"));
        write(apps + QStringLiteral("/good.desktop"), entry("Good"));
        write(apps + QStringLiteral("/sub/inner.desktop"), entry("Inner"));
        make(NotAFile::Fifo, apps + QStringLiteral("/x.desktop"));
        make(NotAFile::DevZero, apps + QStringLiteral("/zero.desktop"));
        sparse(apps + QStringLiteral("/huge.desktop"), entry("Huge"), 50 * 1024 * 1024);
        for (int i = 0; i < 6; ++i)
            QVERIFY(QFile::link(QStringLiteral("."), apps + QStringLiteral("/self%1").arg(i)));
        QVERIFY(QFile::link(QStringLiteral(".."), apps + QStringLiteral("/sub/up")));

        const QRegularExpression notRegular(QStringLiteral("(x|zero)\\.desktop skipped: not a regular file"));
        QTest::ignoreMessage(QtWarningMsg, notRegular);
        QTest::ignoreMessage(QtWarningMsg, notRegular);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("huge\\.desktop skipped: too large")));
        const qint64 memoryBefore = peakMemoryKb();
        QElapsedTimer timer;
        timer.start();
        const FolderApps read = readFolderApps(apps, DesktopEntryRules{{}, {"C"}, QString()});
        QVERIFY2(timer.elapsed() < boundMs, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(peakMemoryKb() - memoryBefore < 20 * 1024);
        QStringList names;
        for (const DesktopApp &app : read.apps)
            names.append(app.name);
        names.sort();
        QCOMPARE(names, (QStringList{QStringLiteral("Good"), QStringLiteral("Inner")}));
        // Each real folder once, however many links lead to it.
        QCOMPARE(read.directories.size(), 2);
        // Skipped entries still mask the same IDs in less important folders.
        QVERIFY(read.ids.contains(QStringLiteral("x.desktop")));
    }

    void hiddenListThatIsNotAFileIsIgnored()
    {
        for (const NotAFile kind : {NotAFile::Fifo, NotAFile::DevZero}) {
            const QString folder = path(QStringLiteral("hidden-%1").arg(int(kind)));
            write(folder + QStringLiteral("/a.txt"), "a");
            write(folder + QStringLiteral("/b.txt"), "b");
            make(kind, folder + QStringLiteral("/.hidden"));
            QTest::ignoreMessage(QtWarningMsg,
                                 QRegularExpression(QStringLiteral("\\.hidden ignored: not a regular file")));
            QElapsedTimer timer;
            timer.start();
            const FolderPage page = FolderListing::page(QUrl::fromLocalFile(folder), FolderSort::Name);
            QVERIFY(timer.elapsed() < boundMs);
            QCOMPARE(page.entries.size(), 2);
        }
    }

    // The menu shows the first part and says what it left out; the search
    // goes through everything.
    void largeFolderSaysWhatItLeavesOut()
    {
        const QString folder = path(QStringLiteral("large"));
        QVERIFY(QDir().mkpath(folder));
        constexpr int count = 100'000;
        for (int i = 0; i < count; ++i) {
            const QByteArray name = QFile::encodeName(folder) + QByteArray("/f") + QByteArray::number(i) + ".txt";
            const int fd = ::open(name.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
            QVERIFY(fd >= 0);
            ::close(fd);
        }
        m_saved.store->addFolder(QUrl::fromLocalFile(folder));
        const MenuSource source = MenuSource::folder(m_saved.store->folders().first().id);
        const ContentSources &sources = m_catalog.sources(*m_saved.store, *m_saved.shortcuts);

        QElapsedTimer timer;
        timer.start();
        const MenuEntries entries = folderEntries(sources.context(), QUrl::fromLocalFile(folder), FolderSort::Name);
        QVERIFY2(timer.elapsed() < boundMs, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(entries.size(), FolderListing::limit + 3);
        const auto &more = std::get<OpenableEntry>(entries.at(FolderListing::limit + 1));
        QVERIFY(!more.enabled);
        QCOMPARE(QString(more.title).remove(QRegularExpression(QStringLiteral("\\D"))), QStringLiteral("99800"));
        const auto &open = std::get<OpenableEntry>(entries.last());
        QVERIFY(open.enabled);
        QCOMPARE(open.url, QUrl::fromLocalFile(folder));

        // The first search of a session reads and sorts the whole folder
        // (under a second on an idle machine); later ones only match.
        timer.restart();
        const auto search = sources.of(source).searchSource(source);
        const QList<SearchResult> found = search->results(TextMatcher(QStringLiteral("f99999")), 10);
        QVERIFY2(timer.elapsed() < 3 * boundMs, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(found.size(), 1);
        QCOMPARE(found.first().title, QStringLiteral("f99999.txt"));
    }

    // A mount that never answers holds up a worker, not the menu; listings
    // stuck behind it are refused rather than queued without end.
    void hungListingCostsALoadingItem()
    {
        QSemaphore gate;
        const auto blocked = [&gate] {
            gate.acquire();
            return MenuEntries{};
        };
        {
            ListingQueue queue;
            int delivered = 0;
            for (int i = 0; i < ListingQueue::maximumPending; ++i)
                queue.run(blocked,
                          [&delivered](const std::optional<MenuEntries> &entries) { delivered += entries ? 1 : 0; });
            bool refused = false;
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("another was refused")));
            queue.run([] { return MenuEntries{}; },
                      [&refused](const std::optional<MenuEntries> &entries) { refused = !entries; });
            QVERIFY(refused);
            gate.release(ListingQueue::maximumPending);
            QTRY_COMPARE(delivered, ListingQueue::maximumPending);
            QCOMPARE(queue.pending(), 0);
        }

        const QString folder = path(QStringLiteral("slow"));
        write(folder + QStringLiteral("/report.txt"), "r");
        m_saved.store->addFolder(QUrl::fromLocalFile(folder));
        ListingQueue queue;
        SourceContext context = m_catalog.sources(*m_saved.store, *m_saved.shortcuts).context();
        context.listings = &queue;
        context.listFolder = [&gate](const QUrl &url, FolderSort sort) {
            gate.acquire();
            return FolderListing::page(url, sort);
        };
        const ContentSources sources(context);
        MenuBuilder builder(sources, [](const QUrl &) {});
        QMenu menu;
        QElapsedTimer timer;
        timer.start();
        const MenuSource source = MenuSource::folder(m_saved.store->folders().first().id);
        auto *submenu = qobject_cast<LazyMenu *>(builder.addSourceItem(&menu, source)->menu());
        QVERIFY(submenu);
        submenu->fillIfNeeded();
        QVERIFY(timer.elapsed() < boundMs);
        QCOMPARE(titles(*submenu), QStringList{QStringLiteral("Loading…")});
        QVERIFY(MenuBuilder::isLoading(submenu));

        gate.release();
        QTRY_VERIFY(!MenuBuilder::isLoading(submenu));
        QCOMPARE(titles(*submenu), QStringList{QStringLiteral("report.txt")});
    }

    // Every script is listed on one line and runs, whatever its name holds
    // and whether or not it says which interpreter it wants.
    void oddShortcutNamesAreListedAndRun()
    {
        const QString home = path(QStringLiteral("home"));
        qputenv("HOME", QFile::encodeName(home));
        qputenv("XDG_DATA_HOME", QFile::encodeName(home + QStringLiteral("/data")));
        const QByteArray root = QFile::encodeName(home) + "/data/quillon/shortcuts";
        QVERIFY(QDir().mkpath(QFile::decodeName(root) + QStringLiteral("/Folder\tTab")));
        const QList<QByteArray> names{"new\nline",        "carriage\rreturn",        "tab\there",
                                      "bad\xff\xfe utf8", "Folder\tTab/inner\nname", "no shebang"};
        for (int i = 0; i < names.size(); ++i) {
            const QByteArray body = "touch \"$HOME/ran" + QByteArray::number(i) + "\"\n";
            const QByteArray text = names[i] == "no shebang" ? body : "#!/bin/sh\n" + body;
            // By bytes: QFile would turn the invalid UTF-8 into another name.
            const int fd = ::open((root + '/' + names[i]).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0700);
            QVERIFY(fd >= 0);
            QCOMPARE(::write(fd, text.constData(), size_t(text.size())), ssize_t(text.size()));
            ::close(fd);
        }

        // The real tool, through the library that lists and runs them.
        ShortcutLibrary library(QStringLiteral(QUILLON_SHORTCUTS_TOOL));
        library.refresh();
        QTRY_VERIFY(library.hasLoaded());
        const ShortcutLibrary::Snapshot &snapshot = library.snapshot();
        QCOMPARE(snapshot.folders.size(), 1);
        QCOMPARE(snapshot.folders.first().ref.name, QStringLiteral("Folder Tab"));
        QStringList listed;
        for (const ShortcutRef &ref : library.allShortcuts())
            listed.append(ref.name);
        listed.sort();
        QCOMPARE(listed, (QStringList{QStringLiteral("bad\uFFFD\uFFFD utf8"), QStringLiteral("carriage return"),
                                      QStringLiteral("inner name"), QStringLiteral("new line"),
                                      QStringLiteral("no shebang"), QStringLiteral("tab here")}));

        for (const ShortcutRef &ref : library.allShortcuts())
            library.run(ref.id);
        for (int i = 0; i < names.size(); ++i)
            QTRY_VERIFY2(QFileInfo::exists(home + QStringLiteral("/ran%1").arg(i)), names[i].constData());
        // QDir cannot name it to remove it with the folder.
        ::unlink((root + "/bad\xff\xfe utf8").constData());
    }
};

QTEST_MAIN(TestHostileSources)
#include "test_hostilesources.moc"
