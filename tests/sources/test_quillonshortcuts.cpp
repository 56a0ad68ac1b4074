#include "sources/shortcutparser.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

struct ToolRun {
    int status = -1;
    QStringList lines;
};

// quillon-shortcuts over a scripts folder of loose scripts and two folders.
class TestQuillonShortcuts : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;
    QString m_root;

    static ToolRun tool(const QStringList &arguments, const QString &exitStatus = QStringLiteral("0"))
    {
        QProcess process;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("EXIT_STATUS"), exitStatus);
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(QUILLON_SHORTCUTS_TOOL), arguments);
        if (!process.waitForFinished())
            return {};
        return {process.exitCode(),
                QString::fromUtf8(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts)};
    }

    void writeScript(const QString &relativePath, bool executable = true)
    {
        QFile file(m_root + u'/' + relativePath);
        QVERIFY(QDir().mkpath(QFileInfo(file).path()));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\npwd > \"$HOME/ran\"\nexit \"${EXIT_STATUS:-0}\"\n");
        file.close();
        if (executable)
            QVERIFY(file.setPermissions(file.permissions() | QFile::ExeOwner));
    }

    QString idOf(const QString &name, const QStringList &arguments) const
    {
        for (const ShortcutRef &ref : parseShortcutList(tool(arguments).lines.join(u'\n').toUtf8())) {
            if (ref.name == name)
                return ref.id;
        }
        return {};
    }

private Q_SLOTS:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        qputenv("HOME", QFile::encodeName(m_home.path()));
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_home.filePath(QStringLiteral("data"))));
        m_root = m_home.filePath(QStringLiteral("data/quillon/shortcuts"));
        QCOMPARE(tool({QStringLiteral("list")}).status, 0);
        QVERIFY(QFileInfo(m_root).isDir());

        writeScript(QStringLiteral("Hello.sh"));
        writeScript(QStringLiteral(".hidden.sh"));
        writeScript(QStringLiteral("notes.txt"), false);
        writeScript(QStringLiteral("Work/Build 10.py"));
        writeScript(QStringLiteral("Work/build 9"));
        writeScript(QStringLiteral("Home/Lights (on)"));
    }

    void list_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("status");
        QTest::addColumn<QStringList>("lines");
        const QStringList all{QStringLiteral("build 9"), QStringLiteral("Build 10"), QStringLiteral("Hello"),
                              QStringLiteral("Lights (on)")};
        const QString unknownId = QStringLiteral("00000000-0000-0000-0000-000000000000");
        QTest::newRow("all, in numeric order") << QStringList{"list"} << 0 << all;
        QTest::newRow("folders") << QStringList{"list", "--folders"} << 0 << QStringList{"Home", "Work"};
        QTest::newRow("unfiled") << QStringList{"list", "--folder-name", "none"} << 0 << QStringList{"Hello"};
        QTest::newRow("no command") << QStringList{} << 2 << QStringList{};
        QTest::newRow("unknown flag") << QStringList{"list", "--bogus"} << 2 << QStringList{};
        QTest::newRow("two scopes") << QStringList{"list", "--folders", "--folder-name", "none"} << 2 << QStringList{};
        QTest::newRow("missing folder id") << QStringList{"list", "--folder-name"} << 2 << QStringList{};
        QTest::newRow("unknown folder") << QStringList{"list", "--folder-name", unknownId} << 2 << QStringList{};
        QTest::newRow("unknown shortcut") << QStringList{"run", unknownId} << 2 << QStringList{};
    }

    void list()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, status);
        QFETCH(QStringList, lines);
        const ToolRun run = tool(arguments);
        QCOMPARE(run.status, status);
        QCOMPARE(run.lines, lines);
    }

    // Identifiers are what menus store, so they must never drift. A run
    // starts in the home folder and ends with the script's own status.
    void identifiersAreStableAndRun()
    {
        const QString hello = idOf(QStringLiteral("Hello"), {"list", "--show-identifiers"});
        QCOMPARE(hello, QStringLiteral("FDBAABE8-7917-56E9-9B3C-FF2A4C9FE1CC"));
        const QString work = idOf(QStringLiteral("Work"), {"list", "--show-identifiers", "--folders"});
        QCOMPARE(tool({"list", "--folder-name", work}).lines, (QStringList{"build 9", "Build 10"}));

        QCOMPARE(tool({"run", hello}, QStringLiteral("5")).status, 5);
        QFile marker(m_home.filePath(QStringLiteral("ran")));
        QVERIFY(marker.open(QIODevice::ReadOnly));
        QCOMPARE(marker.readAll().trimmed(), QFile::encodeName(m_home.path()));
    }
};

QTEST_GUILESS_MAIN(TestQuillonShortcuts)
#include "test_quillonshortcuts.moc"
