#include "sources/appindex.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

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

private:
    std::optional<QTemporaryDir> m_root;
    QString m_home;
    QString m_system;
};

QTEST_GUILESS_MAIN(TestAppIndex)
#include "test_appindex.moc"
