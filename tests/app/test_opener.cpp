#include "config/urls.h"
#include "fakelauncher.h"
#include "fixtures.h"
#include "platform/giolauncher.h"
#include "platform/opener.h"
#include "platform/settingscommand.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

} // namespace

class TestOpener : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachKindOfURLGoesToItsOwnPlace_data()
    {
        QTest::addColumn<QUrl>("url");
        QTest::addColumn<QString>("call");
        QTest::newRow("application") << QUrl(
            QStringLiteral("file:///usr/share/applications/org.gnome.Terminal.desktop"))
                                     << "launch /usr/share/applications/org.gnome.Terminal.desktop";
        QTest::newRow("application via localhost")
            << QUrl(QStringLiteral("file://localhost/usr/share/applications/gimp.desktop"))
            << "launch /usr/share/applications/gimp.desktop";
        QTest::newRow("text file") << QUrl(QStringLiteral("file:///home/u/notes.txt"))
                                   << "default file:///home/u/notes.txt";
        QTest::newRow("folder") << QUrl(QStringLiteral("file:///home/u/Music/")) << "default file:///home/u/Music/";
        QTest::newRow("web") << QUrl(QStringLiteral("https://example.org/a?b=1"))
                             << "default https://example.org/a?b=1";
        QTest::newRow("gnome panel") << QUrl(QStringLiteral("settings://gnome/wifi"))
                                     << "start gnome-control-center|wifi";
        QTest::newRow("gnome sub-page") << QUrl(QStringLiteral("settings://gnome/online-accounts/add/google"))
                                        << "start gnome-control-center|online-accounts|add|google";
        QTest::newRow("gnome settings alone")
            << QUrl(QStringLiteral("settings://gnome")) << "start gnome-control-center";
        QTest::newRow("kde module") << QUrl(QStringLiteral("settings://kde/kcm_kscreen"))
                                    << "start systemsettings|kcm_kscreen";
        QTest::newRow("kde tab") << QUrl(QStringLiteral("settings://kde/kcm_keyboard/--tab=layouts"))
                                 << "start systemsettings|kcm_keyboard|--args|--tab=layouts";
        QTest::newRow("shortcut URL without id")
            << QUrl(QStringLiteral("shortcuts://run-shortcut")) << "default shortcuts://run-shortcut";
    }

    void eachKindOfURLGoesToItsOwnPlace()
    {
        QFETCH(QUrl, url);
        QFETCH(QString, call);
        FakeLauncher launcher;
        QStringList shortcuts;
        Opener opener(launcher, [&](const QString &id) { shortcuts.append(id); });
        opener.open(url);
        QCOMPARE(launcher.calls, QStringList{call});
        QVERIFY(shortcuts.isEmpty());
    }

    void shortcutsRunThroughTheLibrary()
    {
        FakeLauncher launcher;
        QStringList shortcuts;
        Opener opener(launcher, [&](const QString &id) { shortcuts.append(id); });
        const QString id = QStringLiteral("A1B2C3D4-0000-4000-8000-000000000001");
        QCOMPARE(shortcutID(shortcutURL(id)), id);
        opener.open(shortcutURL(id));
        QCOMPARE(shortcuts, QStringList{id});
        QVERIFY(launcher.calls.isEmpty());
        // Identifiers survive percent-encoding.
        QCOMPARE(shortcutID(shortcutURL(QStringLiteral("a b&c"))), QStringLiteral("a b&c"));
        QVERIFY(!shortcutID(QUrl(QStringLiteral("shortcuts://run-shortcut?name=x"))));
        QVERIFY(!shortcutID(QUrl(QStringLiteral("shortcuts://other?id=x"))));
    }

    void aFailureIsLoggedOnce()
    {
        FakeLauncher launcher;
        launcher.failure = QStringLiteral("No such file or directory");
        Opener opener(launcher, [](const QString &) {});
        QTest::ignoreMessage(QtWarningMsg, "Could not open file:///nowhere/x.pdf: No such file or directory");
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        opener.open(QUrl(QStringLiteral("file:///nowhere/x.pdf")));
        QCOMPARE(launcher.calls.size(), 1);
    }

    void gioLaunchesDesktopEntriesForReal()
    {
        QTemporaryDir dir;
        const QString marker = dir.filePath(QStringLiteral("launched"));
        const QString entry = dir.filePath(QStringLiteral("marker.desktop"));
        QFile file(entry);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(
            QStringLiteral("[Desktop Entry]\nType=Application\nName=Marker\nExec=touch %1\n").arg(marker).toUtf8());
        file.close();

        GioLauncher launcher;
        std::optional<QString> result = QStringLiteral("not called");
        launcher.launchApplication(entry, [&](const std::optional<QString> &error) { result = error; });
        QCOMPARE(result, std::nullopt);
        QTRY_VERIFY(QFile::exists(marker));

        launcher.launchApplication(dir.filePath(QStringLiteral("missing.desktop")),
                                   [&](const std::optional<QString> &error) { result = error; });
        QVERIFY(result.has_value());

        launcher.startProgram(QStringLiteral("quillon-no-such-program"), {},
                              [&](const std::optional<QString> &error) { result = error; });
        QCOMPARE(result, QStringLiteral("quillon-no-such-program is not installed"));
    }

    void gioReportsURLsNothingCanOpen()
    {
        GioLauncher launcher;
        std::optional<std::optional<QString>> result;
        launcher.openWithDefaultHandler(QUrl(QStringLiteral("quillon-unknown-scheme://x")),
                                        [&](const std::optional<QString> &error) { result = error; });
        QTRY_VERIFY(result.has_value());
        QVERIFY(result->has_value());
    }
};

QTEST_GUILESS_MAIN(TestOpener)
#include "test_opener.moc"
