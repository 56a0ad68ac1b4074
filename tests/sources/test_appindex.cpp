#include "sources/appindex.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

bool writeEntry(const QString &path, const QByteArray &name, const QByteArray &extra = {})
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    const QByteArray contents = "[Desktop Entry]\nType=Application\nExec=sh\nName=" + name + '\n' + extra;
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size();
}

QStringList names(AppIndex &index)
{
    QStringList result;
    for (const App &app : AppLibrary::apps(index.tree()))
        result.append(app.name);
    result.sort();
    return result;
}

// Sets a file's or folder's time to a moment long past.
bool age(const QString &path, int moment)
{
    const timespec times[2] = {{1'700'000'000 + moment, 0}, {1'700'000'000 + moment, 0}};
    return utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0) == 0;
}

QStringList namesIn(const FolderApps &folder)
{
    QStringList result;
    for (const DesktopApp &app : folder.apps)
        result.append(app.name);
    result.sort();
    return result;
}

} // namespace

class TestAppIndex : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_root.emplace();
        m_home = m_root->filePath(QStringLiteral("home/applications"));
        m_system = m_root->filePath(QStringLiteral("sys/applications"));
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_root->filePath(QStringLiteral("home"))));
        qputenv("XDG_DATA_DIRS", QFile::encodeName(m_root->filePath(QStringLiteral("sys"))));
        qputenv("XDG_CURRENT_DESKTOP", "GNOME");
        qputenv("LANGUAGE", "C");
    }

    // Whatever happens in a watched folder shows in the tree after the
    // index says it changed, without anyone asking it to rescan.
    void followsChangesInTheFolders()
    {
        QVERIFY(writeEntry(m_system + "/editor.desktop", "Editor"));
        QVERIFY(writeEntry(m_system + "/sub/viewer.desktop", "Viewer"));
        QDir().mkpath(m_root->filePath(QStringLiteral("home")));
        AppIndex index;
        QSignalSpy changed(&index, &AppIndex::changed);
        QCOMPARE(names(index), QStringList({"Editor", "Viewer"}));

        const auto after = [&](auto change, const QStringList &expected) {
            changed.clear();
            change();
            QVERIFY2(changed.wait(5000), qPrintable(expected.join(',')));
            QCOMPARE(names(index), expected);
        };
        // Added, by the package manager, in a sub-folder.
        after([&] { QVERIFY(writeEntry(m_system + "/sub/player.desktop", "Player")); }, {"Editor", "Player", "Viewer"});
        // Rewritten in place.
        after([&] { QVERIFY(writeEntry(m_system + "/editor.desktop", "Text Editor")); },
              {"Player", "Text Editor", "Viewer"});
        // Hidden by NoDisplay, then shown again.
        after([&] { QVERIFY(writeEntry(m_system + "/editor.desktop", "Text Editor", "NoDisplay=true\n")); },
              {"Player", "Viewer"});
        after([&] { QVERIFY(writeEntry(m_system + "/editor.desktop", "Text Editor")); },
              {"Player", "Text Editor", "Viewer"});
        // A user's copy in a folder that did not exist when the index started.
        after([&] { QVERIFY(writeEntry(m_home + "/editor.desktop", "My Editor")); }, {"My Editor", "Player", "Viewer"});
        // A user's copy hides one in a sub-folder, known by the same ID.
        after([&] { QVERIFY(writeEntry(m_home + "/sub-viewer.desktop", "Viewer", "Hidden=true\n")); },
              {"My Editor", "Player"});
        // Removing the copy brings the system's back.
        after([&] { QVERIFY(QFile::remove(m_home + "/editor.desktop")); }, {"Player", "Text Editor"});
        // A whole sub-folder goes.
        after([&] { QVERIFY(QDir(m_system + "/sub").removeRecursively()); }, {"Text Editor"});
    }

    // Many files written at once cost one rescan, not one per file.
    void oneRescanForABurst()
    {
        QDir().mkpath(m_system);
        AppIndex index;
        QCOMPARE(names(index), QStringList());
        QSignalSpy changed(&index, &AppIndex::changed);
        for (int i = 0; i < 50; ++i)
            QVERIFY(writeEntry(m_system + QStringLiteral("/app%1.desktop").arg(i), "App " + QByteArray::number(i)));
        QVERIFY(changed.wait(5000));
        QTest::qWait(int(AppIndex::settleTime.count()) * 3);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(names(index).size(), 50);
    }

    // What was read is kept for the next start, but only what is still
    // current is taken from there; programs are looked for every time.
    void cacheServesOnlyWhatIsCurrent()
    {
        const QString cache = m_root->filePath(QStringLiteral("cache"));
        const QString program = m_root->filePath(QStringLiteral("program"));
        QVERIFY(writeEntry(m_system + "/alpha.desktop", "Alpha"));
        QVERIFY(writeEntry(m_system + "/beta.desktop", "Beta", "TryExec=" + QFile::encodeName(program) + '\n'));
        QFile script(program);
        QVERIFY(script.open(QIODevice::WriteOnly) && script.write("#!/bin/sh\n") > 0);
        script.close();
        QVERIFY(script.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
        QVERIFY(age(m_system + "/alpha.desktop", 0) && age(m_system + "/beta.desktop", 0) && age(m_system, 0));
        const DesktopEntryRules rules{{QStringLiteral("GNOME")}, {"C"}, cache};
        QCOMPARE(namesIn(readFolderApps(m_system, rules)), QStringList({"Alpha", "Beta"}));
        QCOMPARE(QDir(cache).entryList(QDir::Files).size(), 1);

        // Changed behind the cache's back (same size, time put back): it answers.
        QVERIFY(writeEntry(m_system + "/alpha.desktop", "Gamma"));
        QVERIFY(age(m_system + "/alpha.desktop", 0) && age(m_system, 0));
        QCOMPARE(namesIn(readFolderApps(m_system, rules)), QStringList({"Alpha", "Beta"}));
        // A change moves the file's time.
        QVERIFY(age(m_system + "/alpha.desktop", 1));
        QCOMPARE(namesIn(readFolderApps(m_system, rules)), QStringList({"Beta", "Gamma"}));
        QVERIFY(QFile::remove(program));
        QCOMPARE(namesIn(readFolderApps(m_system, rules)), QStringList({"Gamma"}));
        // A damaged cache is read past, wherever the damage falls: a length
        // or count of 0xffffffff must not be believed.
        const QStringList caches = QDir(cache).entryList(QDir::Files);
        QCOMPARE(caches.size(), 1);
        QFile cacheFile(cache + '/' + caches.first());
        QVERIFY(cacheFile.open(QIODevice::ReadOnly));
        const QByteArray intact = cacheFile.readAll();
        cacheFile.close();
        for (qsizetype at = 0; at < intact.size(); at += 4) {
            QByteArray damaged = intact;
            damaged.replace(at, 4, QByteArray(4, '\xff'));
            QVERIFY(cacheFile.open(QIODevice::WriteOnly | QIODevice::Truncate));
            cacheFile.write(damaged.left(intact.size()));
            cacheFile.close();
            QCOMPARE(namesIn(readFolderApps(m_system, rules)), QStringList({"Gamma"}));
        }
        // A new entry changes the folder's time.
        QVERIFY(writeEntry(m_system + "/delta.desktop", "Delta"));
        QCOMPARE(namesIn(readFolderApps(m_system, rules)), QStringList({"Delta", "Gamma"}));
    }

    // Programs found on PATH are remembered while PATH's folders keep their
    // times: installing or removing one changes its folder's.
    void programsOnPathAreRememberedWhileThePathIsUnchanged()
    {
        const QString cache = m_root->filePath(QStringLiteral("cache"));
        const QString bin = m_root->filePath(QStringLiteral("bin"));
        QVERIFY(QDir().mkpath(bin));
        QFile program(bin + "/quillon-test-editor");
        QVERIFY(program.open(QIODevice::WriteOnly) && program.write("#!/bin/sh\n") > 0);
        program.close();
        QVERIFY(program.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", QFile::encodeName(bin) + ':' + path);
        QVERIFY(writeEntry(m_system + "/editor.desktop", "Editor", "TryExec=quillon-test-editor\n"));
        QVERIFY(age(m_system + "/editor.desktop", 0) && age(m_system, 0) && age(bin, 0));
        const DesktopEntryRules rules{{QStringLiteral("GNOME")}, {"C"}, cache};
        QCOMPARE(namesIn(readFolderApps(m_system, rules)), QStringList({"Editor"}));

        // Gone, but its folder's time put back: the remembered answer holds.
        QVERIFY(program.remove());
        QVERIFY(age(bin, 0));
        QCOMPARE(namesIn(readFolderApps(m_system, rules)), QStringList({"Editor"}));
        // Gone for real.
        QVERIFY(age(bin, 1));
        QCOMPARE(namesIn(readFolderApps(m_system, rules)), QStringList());
        qputenv("PATH", path);
    }

private:
    std::optional<QTemporaryDir> m_root;
    QString m_home;
    QString m_system;
};

QTEST_GUILESS_MAIN(TestAppIndex)
#include "test_appindex.moc"
