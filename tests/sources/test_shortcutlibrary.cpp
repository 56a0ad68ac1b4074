#include "sources/shortcutlibrary.h"
#include "sources/shortcutparser.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace std::chrono_literals;
using Snapshot = ShortcutLibrary::Snapshot;

namespace {

QStringList logged;

void captureMessage(QtMsgType, const QMessageLogContext &, const QString &message)
{
    logged.append(message);
}

// A 36-character identifier made of one repeated hex digit.
QString uid(char digit)
{
    const QString d(QChar::fromLatin1(digit));
    return d.repeated(8) + u'-' + d.repeated(4) + u'-' + d.repeated(4) + u'-' + d.repeated(4) + u'-' + d.repeated(12);
}

ShortcutRef ref(const QString &name, char digit)
{
    return ShortcutRef{uid(digit), name};
}

// A fake tool body answering each listing with canned lines.
QByteArray listings(const QString &folders, const QString &work, const QString &unfiled, const QString &all = {})
{
    return QStringLiteral("case \"$*\" in\n*--folders) printf '%1';;\n*%2) printf '%3';;\n*none) printf '%4';;\n"
                          "'list --show-identifiers') printf '%5';;\nesac\n")
        .arg(folders, uid('1'), work, unfiled, all)
        .toUtf8();
}

const QString workLine = QStringLiteral("Work (%1)\\n").arg(uid('1'));
const QString buildLine = QStringLiteral("Build (%1)\\n").arg(uid('A'));
const QString helloLine = QStringLiteral("Hello (%1)\\n").arg(uid('B'));
const Snapshot workAndHello{{{ref("Work", '1'), {ref("Build", 'A')}}}, {ref("Hello", 'B')}};

} // namespace

class TestShortcutLibrary : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_tool;

    // The fake tool records each argument list in "<tool>.calls", then runs body.
    void writeTool(const QByteArray &body, bool executable = true)
    {
        QFile file(m_tool);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("#!/bin/sh\necho \"$*\" >> \"$0.calls\"\n" + body);
        file.close();
        const auto readWrite = QFile::ReadOwner | QFile::WriteOwner;
        QVERIFY(file.setPermissions(executable ? readWrite | QFile::ExeOwner : readWrite));
    }

    QStringList calls() const
    {
        QFile file(m_tool + QStringLiteral(".calls"));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)
                                              : QStringList();
    }

    // Whether the lines logged so far are, in order, one for each pattern.
    static bool loggedExactly(const QStringList &patterns)
    {
        const QRegularExpression lines(QRegularExpression::anchoredPattern(patterns.join(u'\n')));
        return lines.match(logged.join(u'\n')).hasMatch();
    }

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_tool = m_dir->filePath(QStringLiteral("quillon-shortcuts"));
        logged.clear();
        qInstallMessageHandler(captureMessage);
    }

    void cleanup() { qInstallMessageHandler(nullptr); }

    void parse_data()
    {
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<QList<ShortcutRef>>("expected");
        const QByteArray id = uid('A').toLatin1();
        QTest::newRow("blank lines") << QByteArray("\n\n\n") << QList<ShortcutRef>{};
        QTest::newRow("one line") << "Backup (" + id + ")\n" << QList<ShortcutRef>{ref("Backup", 'A')};
        QTest::newRow("lower-case digits, no final newline")
            << "x (" + id.toLower() + ")" << QList<ShortcutRef>{{id.toLower(), "x"}};
        QTest::newRow("greedy name keeps its parentheses")
            << "A (b) (" + id + ")" << QList<ShortcutRef>{ref("A (b)", 'A')};
        QTest::newRow("names are not trimmed") << "  Pad  (" + id + ")" << QList<ShortcutRef>{ref("  Pad ", 'A')};
        QTest::newRow("35 digits") << "x (" + id.chopped(1) + ")" << QList<ShortcutRef>{};
        QTest::newRow("37 digits") << "x (" + id + "0)" << QList<ShortcutRef>{};
        QTest::newRow("trailing text") << "x (" + id + ") " << QList<ShortcutRef>{};
        QTest::newRow("no name") << " (" + id + ")" << QList<ShortcutRef>{};
        QTest::newRow("bad lines skipped, order and duplicates kept")
            << "b (" + id + ")\ngarbage\nb (" + id + ")\na (" + uid('B').toLatin1() + ")"
            << QList<ShortcutRef>{ref("b", 'A'), ref("b", 'A'), ref("a", 'B')};
        QTest::newRow("invalid UTF-8 is replaced")
            << "Caf\xe9 (" + id + ")" << QList<ShortcutRef>{ref("Caf\uFFFD", 'A')};
    }

    void parse()
    {
        QFETCH(QByteArray, output);
        QFETCH(QList<ShortcutRef>, expected);
        QCOMPARE(parseShortcutList(output), expected);
    }

    void load_data()
    {
        QTest::addColumn<QByteArray>("tool");
        QTest::addColumn<int>("folderRuns");
        QTest::addColumn<Snapshot>("expected");
        QTest::newRow("folder, then unfiled") << listings(workLine, buildLine, helloLine) << 1 << workAndHello;
        QTest::newRow("no folders") << listings({}, {}, helloLine) << 0 << Snapshot{{}, {ref("Hello", 'B')}};
        QTest::newRow("garbage output") << QByteArray("echo 'not a listing'\n") << 0 << Snapshot{};
    }

    // Loads run one after another, and a refresh asked for during a load is
    // dropped; observers hear of changes only.
    void load()
    {
        QFETCH(QByteArray, tool);
        QFETCH(int, folderRuns);
        QFETCH(Snapshot, expected);
        writeTool(tool);
        ShortcutLibrary library(m_tool);
        QSignalSpy refreshing(&library, &ShortcutLibrary::isRefreshingChanged);
        QSignalSpy loaded(&library, &ShortcutLibrary::hasLoadedChanged);
        QSignalSpy changed(&library, &ShortcutLibrary::snapshotChanged);

        library.refresh();
        library.refresh();
        QTRY_COMPARE(refreshing.count(), 2);
        QStringList oneLoad{QStringLiteral("list --show-identifiers --folders")};
        if (folderRuns == 1)
            oneLoad << QStringLiteral("list --show-identifiers --folder-name ") + uid('1');
        oneLoad << QStringLiteral("list --show-identifiers --folder-name none");
        QCOMPARE(calls(), oneLoad);
        QCOMPARE(library.snapshot(), expected);
        QVERIFY(library.hasLoaded());
        QCOMPARE(loaded.count(), 1);

        library.refresh();
        QTRY_COMPARE(refreshing.count(), 4);
        QCOMPARE(calls(), oneLoad + oneLoad);
        QCOMPARE(loaded.count(), 1);
        QCOMPARE(changed.count(), expected == Snapshot{} ? 0 : 1);
        QVERIFY(logged.isEmpty());
    }

    void failedLoad_data()
    {
        QTest::addColumn<QByteArray>("tool");
        QTest::addColumn<bool>("executable");
        QTest::addColumn<QString>("message");
        QTest::newRow("non-zero exit") << QByteArray("exit 3\n") << true
                                       << QStringLiteral("shortcuts exited with status 3");
        // A partial library would show the new folder.
        QTest::newRow("a later folder fails")
            << "case \"$*\" in *--folders) echo 'New (" + uid('7').toUtf8() + ")';; *) exit 1;; esac\n"
            << true << QStringLiteral("shortcuts exited with status 1");
        QTest::newRow("cannot start") << QByteArray() << false << QStringLiteral(".+");
        QTest::newRow("hangs") << QByteArray("exec sleep 30\n") << true
                               << QStringLiteral("shortcuts did not finish within 1000 ms and was stopped");
    }

    // A failed load keeps whatever was there before, loaded or not.
    void failedLoad()
    {
        QFETCH(QByteArray, tool);
        QFETCH(bool, executable);
        QFETCH(QString, message);
        const QStringList failure{QStringLiteral("Shortcuts could not be listed: ") + message};
        ShortcutLibrary library(m_tool);
        library.setToolTimeout(1000ms);

        writeTool(tool, executable);
        library.refresh();
        QTRY_VERIFY(loggedExactly(failure));
        QVERIFY(!library.isRefreshing());
        QVERIFY(!library.hasLoaded());
        QCOMPARE(library.snapshot(), Snapshot{});

        writeTool(listings(workLine, buildLine, helloLine));
        library.refresh();
        QTRY_VERIFY(library.hasLoaded());
        writeTool(tool, executable);
        library.refresh();
        QTRY_VERIFY(loggedExactly(failure + failure));
        QVERIFY(!library.isRefreshing());
        QCOMPARE(library.snapshot(), workAndHello);
    }

    void run_data()
    {
        QTest::addColumn<QByteArray>("tool");
        QTest::addColumn<QStringList>("expectedCalls");
        QTest::addColumn<QStringList>("messages");
        const QString list = QStringLiteral("list --show-identifiers");
        const QString run = QStringLiteral("run ") + uid('B');
        const QString id = uid('B');
        QTest::newRow("listed") << listings({}, {}, {}, helloLine) << QStringList{list, run} << QStringList{};
        QTest::newRow("ends with a status")
            << "[ \"$1\" = run ] && exit 4\n" + listings({}, {}, {}, helloLine) << QStringList{list, run}
            << QStringList{QStringLiteral("Shortcut %1 ended with status 4").arg(id)};
        QTest::newRow("tool vanishes before the run")
            << "rm \"$0\"\n" + listings({}, {}, {}, helloLine) << QStringList{list}
            << QStringList{QStringLiteral("Shortcut %1 could not run: .+").arg(id)};
        QTest::newRow("listing fails") << QByteArray("exit 2\n") << QStringList{list}
                                       << QStringList{QStringLiteral(
                                              "Shortcuts could not be listed: shortcuts exited with status 2")};
        QTest::newRow("no longer listed, so one refresh")
            << listings({}, {}, {}, buildLine)
            << QStringList{list, list + QStringLiteral(" --folders"), list + QStringLiteral(" --folder-name none")}
            << QStringList{QStringLiteral("Shortcut %1 is no longer in the library").arg(id)};
    }

    void run()
    {
        QFETCH(QByteArray, tool);
        QFETCH(QStringList, expectedCalls);
        QFETCH(QStringList, messages);
        writeTool(tool);
        ShortcutLibrary library(m_tool);
        library.run(uid('B'));
        QTRY_COMPARE(calls(), expectedCalls);
        QTRY_VERIFY(loggedExactly(messages));
        QTRY_VERIFY(!library.isRefreshing());
    }
};

QTEST_GUILESS_MAIN(TestShortcutLibrary)
#include "test_shortcutlibrary.moc"
