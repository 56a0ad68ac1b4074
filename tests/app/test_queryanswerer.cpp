#include "app/queryanswerer.h"
#include "app/updates.h"
#include "fakelauncher.h"
#include "fixtures.h"
#include "platform/opener.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

namespace {

const QString backupId = QStringLiteral("A1B2C3D4-0000-4000-8000-000000000001");

} // namespace

// The answers to `quillon --search` and `--print-menu` wait for the shortcuts
// they show, but never for a listing that does not end.
class TestQueryAnswerer : public QObject
{
    Q_OBJECT

private:
    StoreFixture m_saved;
    TestCatalog m_catalog;
    std::unique_ptr<Updates> m_updates;
    FakeLauncher m_launcher;
    std::unique_ptr<Opener> m_opener;

    // A listing tool that takes `seconds` and knows one unfiled shortcut.
    std::unique_ptr<ShortcutLibrary> slowTool(const QString &seconds)
    {
        const QString tool = m_saved.path(QStringLiteral("quillon-shortcuts"));
        QFile script(tool);
        if (!script.open(QIODevice::WriteOnly))
            return nullptr;
        script.write(QStringLiteral("#!/bin/sh\nsleep %1\ncase \"$*\" in *none) printf 'Backup (%2)\\n';; esac\n")
                         .arg(seconds, backupId)
                         .toUtf8());
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return std::make_unique<ShortcutLibrary>(tool);
    }

    StatusMenu::Services services(ShortcutLibrary &shortcuts)
    {
        return {m_catalog.sources(*m_saved.store, shortcuts), shortcuts, *m_saved.preferences, *m_updates, *m_opener};
    }

    struct Answer {
        QString text;
        int replies = 0;
        bool immediate = false; // before answer() returned
    };

    static Answer ask(QueryAnswerer &answerer, const InstanceQuery &query, int timeoutMs = 10000)
    {
        auto answer = std::make_shared<Answer>();
        answerer.answer(query, [answer](const QString &text) {
            answer->text = text;
            ++answer->replies;
        });
        answer->immediate = answer->replies > 0;
        (void)QTest::qWaitFor([&answer] { return answer->replies > 0; }, timeoutMs);
        // Once only, also when both the listing and the time limit end.
        QTest::qWait(50);
        return *answer;
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_catalog.set({{QStringLiteral("wifi")}}, {testPane(QStringLiteral("wifi"), QStringLiteral("Wi-Fi"))});
        m_opener = std::make_unique<Opener>(m_launcher, [](const QString &) {});
    }

    void init()
    {
        m_saved.reset();
        m_updates = std::make_unique<Updates>(*m_saved.preferences, QUrl(), QStringLiteral("1.0"));
    }

    void aSearchWaitsForTheListingUnderWay()
    {
        const auto shortcuts = slowTool(QStringLiteral("0.3"));
        QVERIFY(shortcuts);
        QueryAnswerer answerer(services(*shortcuts));

        // Nothing running: answered at once, from what is known.
        const Answer before = ask(answerer, SearchQuery{QStringLiteral(" wi ")});
        QVERIFY(before.immediate);
        QCOMPARE(before.replies, 1);
        QCOMPARE(before.text, QStringLiteral("System Settings\n  Wi-Fi  <settings://gnome/wifi>\n"));

        shortcuts->refresh();
        const Answer during = ask(answerer, SearchQuery{QStringLiteral("back")});
        QVERIFY(!during.immediate);
        QCOMPARE(during.replies, 1);
        QCOMPARE(during.text, QStringLiteral("Shortcuts\n  Backup  <shortcuts://run-shortcut?id=%1>\n").arg(backupId));
    }

    // The opening lists the shortcuts again; the submenus show that listing.
    void theMenuShowsTheListingItsOpeningStarts()
    {
        const auto shortcuts = slowTool(QStringLiteral("0"));
        QVERIFY(shortcuts);
        QueryAnswerer answerer(services(*shortcuts));
        QVERIFY(!shortcuts->hasLoaded());

        const Answer menu = ask(answerer, MenuQuery{2});
        QCOMPARE(menu.replies, 1);
        const QStringList lines = menu.text.split(QLatin1Char('\n'));
        const qsizetype submenu = lines.indexOf(QStringLiteral("Shortcuts  ▸"));
        QVERIFY2(submenu > 0, qPrintable(lines.join(QLatin1Char('\n'))));
        QVERIFY2(
            lines.mid(submenu + 1).contains(QStringLiteral("  Backup  <shortcuts://run-shortcut?id=%1>").arg(backupId)),
            qPrintable(lines.join(QLatin1Char('\n'))));

        // No depth is the top level only.
        const QString top = ask(answerer, MenuQuery{0}).text;
        QVERIFY2(top.contains(QStringLiteral("Shortcuts  ▸\n")), qPrintable(top));
        QVERIFY2(!top.contains(QStringLiteral("\n  ")), qPrintable(top));
    }

    void aListingThatHangsDoesNotHoldTheAnswer()
    {
        const auto shortcuts = slowTool(QStringLiteral("30"));
        QVERIFY(shortcuts);
        QueryAnswerer answerer(services(*shortcuts), std::chrono::milliseconds(500));
        shortcuts->refresh();
        QElapsedTimer waited;
        waited.start();
        const Answer answer = ask(answerer, MenuQuery{2}, 5000);
        const qint64 elapsed = waited.elapsed() - 50;
        QCOMPARE(answer.replies, 1);
        QVERIFY2(answer.text.contains(QStringLiteral("Quit Quillon")), qPrintable(answer.text));
        // One limit for the whole question, not one per wait.
        QVERIFY2(elapsed >= 500 && elapsed < 950, qPrintable(QString::number(elapsed)));
    }
};

QTEST_MAIN(TestQueryAnswerer)
#include "test_queryanswerer.moc"
