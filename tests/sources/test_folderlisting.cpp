#include "sources/folderlisting.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <algorithm>

namespace {

QStringList names(const QList<FolderEntry> &entries)
{
    QStringList result;
    for (const FolderEntry &entry : entries)
        result.append(entry.name);
    return result;
}

bool touch(const QString &path, const QByteArray &contents = {})
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size();
}

bool setModified(const QString &path, const QDateTime &time)
{
    QFile file(path);
    return file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFileDevice::FileModificationTime);
}

} // namespace

class TestFolderListing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_dir.emplace();
        QVERIFY(m_dir->isValid());
    }

    void nameSortIsNumericCaselessAndCapped()
    {
        // Created out of order so the listing order cannot pass for sorted.
        for (int i = 250; i >= 1; --i)
            QVERIFY(touch(m_dir->filePath(QStringLiteral("File %1").arg(i))));
        QVERIFY(touch(m_dir->filePath(QStringLiteral("a note"))));
        QVERIFY(touch(m_dir->filePath(QStringLiteral("B note"))));

        const QList<FolderEntry> entries = FolderListing::list(QUrl::fromLocalFile(m_dir->path()), FolderSort::Name);
        QCOMPARE(entries.size(), FolderListing::limit);
        QStringList expected{QStringLiteral("a note"), QStringLiteral("B note")};
        for (int i = 1; expected.size() < FolderListing::limit; ++i)
            expected.append(QStringLiteral("File %1").arg(i));
        QCOMPARE(names(entries), expected);
        QCOMPARE(entries.first().url, QUrl::fromLocalFile(m_dir->filePath(QStringLiteral("a note"))));
        QCOMPARE(FolderListing::contents(QUrl::fromLocalFile(m_dir->path())).size(), 252);
    }

    void hiddenItemsAndFolderKinds()
    {
        const QDir dir(m_dir->path());
        for (const char *folder : {"Folder", ".config", "snap"})
            QVERIFY(dir.mkdir(QLatin1String(folder)));
        for (const char *file : {"file.txt", ".profile", "secret.txt"})
            QVERIFY(touch(dir.filePath(QLatin1String(file))));
        QVERIFY(QFile::link(dir.filePath(QStringLiteral("Folder")), dir.filePath(QStringLiteral("Folder link"))));
        QVERIFY(QFile::link(dir.filePath(QStringLiteral("gone")), dir.filePath(QStringLiteral("broken link"))));
        QVERIFY(touch(dir.filePath(QStringLiteral(".hidden")), "snap\r\nsecret.txt\n\nnot-there\n"));

        const QStringList visible{"broken link", "file.txt", "Folder", "Folder link"};
        const QList<bool> isFolder{false, false, true, true};
        for (const FolderSort sort : allCases<FolderSort>()) {
            const QList<FolderEntry> entries = FolderListing::list(QUrl::fromLocalFile(dir.path()), sort);
            QStringList sortedNames = names(entries);
            sortedNames.sort(Qt::CaseInsensitive);
            QCOMPARE(sortedNames, visible);
            for (const FolderEntry &entry : entries)
                QCOMPARE(entry.isFolder, isFolder.at(visible.indexOf(entry.name)));
        }
        QCOMPARE(FolderListing::list(QUrl::fromLocalFile(dir.path()), FolderSort::Name),
                 FolderListing::list(QUrl::fromLocalFile(dir.path() + QLatin1Char('/')), FolderSort::Name));
        QStringList listed = names(FolderListing::contents(QUrl::fromLocalFile(dir.path())));
        listed.sort(Qt::CaseInsensitive);
        QCOMPARE(listed, visible);
    }

    // Files made in one order and modified in another, so each sort shows
    // which date it read.
    void dateSortsAreNewestFirstAndStable()
    {
        const QDateTime base = QDateTime::currentDateTimeUtc().addDays(-10);
        const QDir dir(m_dir->path());
        QStringList created;
        for (const auto &[name, days] :
             {std::pair{"old", 1}, {"newest", 5}, {"tie 1", 3}, {"tie 2", 3}, {"tie 3", 3}, {"middle", 4}}) {
            const QString path = dir.filePath(QLatin1String(name));
            QVERIFY(touch(path));
            QVERIFY(setModified(path, base.addDays(days)));
            created.prepend(QLatin1String(name));
            // Apart by more than the file system's clock step.
            QThread::msleep(20);
        }
        // No date to read: sorts after everything else.
        QVERIFY(QFile::link(dir.filePath(QStringLiteral("gone")), dir.filePath(QStringLiteral("broken"))));
        const QUrl folder = QUrl::fromLocalFile(dir.path());

        // Equal dates keep the order in which the folder lists them.
        QStringList ties;
        for (const QString &name : names(FolderListing::contents(folder))) {
            if (name.startsWith(QLatin1String("tie")))
                ties.append(name);
        }
        const QStringList expected = QStringList{"newest", "middle"} + ties + QStringList{"old", "broken"};
        QCOMPARE(names(FolderListing::list(folder, FolderSort::DateModified)), expected);
        if (!QFileInfo(dir.filePath(QStringLiteral("old"))).birthTime().isValid())
            QSKIP("this file system records no birth times");
        QCOMPARE(names(FolderListing::list(folder, FolderSort::DateAdded)), created << QStringLiteral("broken"));
    }

    void unreadableFolderListsEmptyWithOneLine_data()
    {
        QTest::addColumn<QString>("child");
        QTest::newRow("missing") << QStringLiteral("deleted");
        // A link to itself cannot be opened, whoever runs the test.
        QTest::newRow("unreadable") << QStringLiteral("loop");
    }

    void unreadableFolderListsEmptyWithOneLine()
    {
        QFETCH(QString, child);
        const QString path = m_dir->filePath(child);
        if (child == QLatin1String("loop"))
            QVERIFY(QFile::link(path, path));
        const QRegularExpression line(QRegularExpression::escape(path) + QStringLiteral(" could not be read: .+"));
        QTest::ignoreMessage(QtWarningMsg, line);
        QVERIFY(FolderListing::list(QUrl::fromLocalFile(path), FolderSort::DateAdded).isEmpty());
        QTest::ignoreMessage(QtWarningMsg, line);
        QVERIFY(FolderListing::contents(QUrl::fromLocalFile(path)).isEmpty());
    }

private:
    std::optional<QTemporaryDir> m_dir;
};

QTEST_GUILESS_MAIN(TestFolderListing)
#include "test_folderlisting.moc"
