#include "app/updates.h"
#include "app/updatewindow.h"
#include "config/preferences.h"

#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

namespace {

QByteArray feed(const QStringList &versions)
{
    QByteArray xml =
        "<?xml version=\"1.0\"?>\n<rss version=\"2.0\" "
        "xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel><title>Quillon</title>";
    for (const QString &version : versions) {
        xml += QStringLiteral(
                   "<item><title>Version %1</title><description><![CDATA[<p>Fixes for %1</p>]]></description>"
                   "<sparkle:releaseNotesLink>https://quillon.app/notes/%1</sparkle:releaseNotesLink>"
                   "<enclosure url=\"https://quillon.app/download/quillon-%1.tar.gz\" sparkle:version=\"%1\" "
                   "sparkle:shortVersionString=\"%1 beta\" length=\"1\" type=\"application/octet-stream\"/></item>")
                   .arg(version)
                   .toUtf8();
    }
    return xml + "</channel></rss>";
}

// A one-page web server on the loopback address, counting its requests.
// While holding, requests wait for answerHeld().
class FeedServer : public QTcpServer
{
public:
    QByteArray body;
    int status = 200;
    int requests = 0;
    bool holding = false;

    FeedServer()
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                    if (!socket->readAll().contains("\r\n\r\n"))
                        return;
                    ++requests;
                    if (holding)
                        m_held.append(socket);
                    else
                        answer(socket);
                });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }
    QUrl url() const { return QUrl(QStringLiteral("http://127.0.0.1:%1/appcast.xml").arg(serverPort())); }

    void answerHeld()
    {
        for (const auto &socket : std::exchange(m_held, {})) {
            if (socket && socket->state() == QAbstractSocket::ConnectedState)
                answer(socket);
        }
    }

private:
    void answer(QTcpSocket *socket)
    {
        socket->write(QStringLiteral("HTTP/1.1 %1 X\r\nContent-Length: %2\r\nConnection: close\r\n\r\n")
                          .arg(status)
                          .arg(body.size())
                          .toUtf8()
                      + body);
        socket->disconnectFromHost();
    }

    QList<QPointer<QTcpSocket>> m_held;
};

} // namespace

class TestUpdates : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString prefsPath() const { return m_dir.filePath(QStringLiteral("%1.conf").arg(QTest::currentTestFunction())); }

private Q_SLOTS:
    void feedsAreReadAndCompared()
    {
        const auto items = parseAppcast(feed({QStringLiteral("0.9"), QStringLiteral("1.10"), QStringLiteral("1.2")}));
        QVERIFY2(items.ok(), qPrintable(items.error()));
        QCOMPARE(items.value().size(), 3);
        const AppcastItem &first = items.value().first();
        QCOMPARE(first.version, QStringLiteral("0.9"));
        QCOMPARE(first.shortVersion, QStringLiteral("0.9 beta"));
        QCOMPARE(first.downloadURL, QUrl(QStringLiteral("https://quillon.app/download/quillon-0.9.tar.gz")));
        QCOMPARE(first.releaseNotesURL, QUrl(QStringLiteral("https://quillon.app/notes/0.9")));
        QCOMPARE(first.description, QStringLiteral("<p>Fixes for 0.9</p>"));

        QCOMPARE(newestUpdate(items.value(), QStringLiteral("1.2"))->version, QStringLiteral("1.10"));
        QVERIFY(!newestUpdate(items.value(), QStringLiteral("1.10.0")));
        QCOMPARE(compareVersions(QStringLiteral("1.2"), QStringLiteral("1.2.0")), 0);
        QCOMPARE(compareVersions(QStringLiteral("1.2.1"), QStringLiteral("1.2")), 1);
        QCOMPARE(compareVersions(QStringLiteral("2"), QStringLiteral("10")), -1);

        QVERIFY(!parseAppcast("<rss><channel><item>").ok());
        QVERIFY(!parseAppcast("<html><body>Not found</body></html>").ok());
        QCOMPARE(parseAppcast("<rss><channel><item><title>no version</title></item></channel></rss>").value().size(),
                 0);
    }

    void aScheduledCheckRaisesTheFlagAndTheUsersCheckClearsIt()
    {
        FeedServer server;
        server.body = feed({QStringLiteral("0.1.0"), QStringLiteral("9.0")});
        Preferences preferences(prefsPath());
        Updates updates(preferences, server.url(), QStringLiteral("0.1.0"));
        QVERIFY(updates.isConfigured());
        QVERIFY(updates.automaticallyChecksForUpdates());
        QSignalSpy pending(&updates, &Updates::hasPendingUpdateChanged);

        updates.setScheduleTick(20);
        QTRY_VERIFY(updates.hasPendingUpdate());
        QCOMPARE(updates.pendingUpdate()->version, QStringLiteral("9.0"));
        QVERIFY(updates.lastCheckTime().isValid());
        // A day has not passed: the schedule does not ask again.
        QTest::qWait(100);
        QCOMPARE(server.requests, 1);

        QSignalSpy finished(&updates, &Updates::userCheckFinished);
        updates.checkForUpdates();
        QVERIFY(!updates.hasPendingUpdate());
        QTRY_COMPARE(finished.count(), 1);
        QVERIFY(std::holds_alternative<UpdateFound>(finished.first().first().value<UpdateCheckResult>()));
        QVERIFY(!updates.hasPendingUpdate());
        QCOMPARE(pending.count(), 2);
    }

    void quietCases()
    {
        FeedServer server;
        server.body = feed({QStringLiteral("0.1.0")});
        {
            // Up to date: nothing to flag.
            Preferences preferences(prefsPath() + QStringLiteral(".a"));
            Updates updates(preferences, server.url(), QStringLiteral("0.1.0"));
            updates.runScheduledCheckIfDue();
            QTRY_COMPARE(server.requests, 1);
            QTRY_VERIFY(updates.lastCheckTime().isValid());
            QVERIFY(!updates.hasPendingUpdate());
        }
        {
            // Turned off: the schedule stays away from the network.
            Preferences preferences(prefsPath() + QStringLiteral(".b"));
            Updates updates(preferences, server.url(), QStringLiteral("0.1.0"));
            updates.setAutomaticallyChecksForUpdates(false);
            QVERIFY(!Updates(preferences, server.url(), QStringLiteral("0.1.0")).automaticallyChecksForUpdates());
            updates.runScheduledCheckIfDue();
            QTest::qWait(100);
            QCOMPARE(server.requests, 1);
        }
        {
            // A broken feed is reported to the user and tried again later.
            server.status = 404;
            Preferences preferences(prefsPath() + QStringLiteral(".c"));
            Updates updates(preferences, server.url(), QStringLiteral("0.1.0"));
            QSignalSpy finished(&updates, &Updates::userCheckFinished);
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^Update check failed: ")));
            updates.checkForUpdates();
            QTRY_COMPARE(finished.count(), 1);
            QVERIFY(std::holds_alternative<CheckFailed>(finished.first().first().value<UpdateCheckResult>()));
            QVERIFY(!updates.lastCheckTime().isValid());
        }
        {
            Preferences preferences(prefsPath() + QStringLiteral(".d"));
            Updates updates(preferences, QUrl(), QStringLiteral("0.1.0"));
            QVERIFY(!updates.isConfigured());
            QSignalSpy finished(&updates, &Updates::userCheckFinished);
            updates.checkForUpdates();
            QCOMPARE(finished.count(), 1);
        }
    }

    // Cancel ends the check: a late answer opens no window, and the next
    // check asks the feed again.
    void cancelStopsTheCheck()
    {
        FeedServer server;
        server.body = feed({QStringLiteral("9.0")});
        server.holding = true;
        Preferences preferences(prefsPath());
        Updates updates(preferences, server.url(), QStringLiteral("0.1.0"));
        UpdateWindow window(QStringLiteral("0.1.0"), [](const QUrl &) {});
        connect(&updates, &Updates::userCheckStarted, &window, &UpdateWindow::showChecking);
        connect(&updates, &Updates::userCheckFinished, &window, &UpdateWindow::showResult);
        connect(&window, &UpdateWindow::checkCancelled, &updates, &Updates::cancelUserCheck);
        QSignalSpy finished(&updates, &Updates::userCheckFinished);

        updates.checkForUpdates();
        QTRY_COMPARE(server.requests, 1);
        QPushButton *cancel = nullptr;
        for (auto *button : window.findChildren<QPushButton *>()) {
            if (button->text() == QLatin1String("Cancel"))
                cancel = button;
        }
        QVERIFY(cancel && cancel->isVisible());
        cancel->click();
        QVERIFY(!window.isVisible());
        server.answerHeld();
        QTest::qWait(200);
        QCOMPARE(finished.count(), 0);
        QVERIFY(!window.isVisible());
        QVERIFY(!updates.hasPendingUpdate());

        server.holding = false;
        updates.checkForUpdates();
        QTRY_COMPARE(finished.count(), 1);
        QCOMPARE(server.requests, 2);
        QCOMPARE(window.headline(), QStringLiteral("Quillon 9.0 beta is available"));
    }

    void theWindowSaysWhatWasFound()
    {
        QList<QUrl> opened;
        UpdateWindow window(QStringLiteral("0.1.0"), [&](const QUrl &url) { opened.append(url); });
        window.showChecking();
        QCOMPARE(window.headline(), QStringLiteral("Checking for updates…"));
        window.showResult(UpToDate{});
        QCOMPARE(window.headline(), QStringLiteral("You’re up to date!"));
        window.showResult(CheckFailed{QStringLiteral("Host not found")});
        QCOMPARE(window.headline(), QStringLiteral("Update check failed"));

        AppcastItem item;
        item.version = QStringLiteral("9.0");
        item.shortVersion = QStringLiteral("9.0");
        item.infoURL = QUrl(QStringLiteral("https://quillon.app/releases/9.0"));
        window.showResult(UpdateFound{item});
        QCOMPARE(window.headline(), QStringLiteral("Quillon 9.0 is available"));
        QPushButton *download = nullptr;
        for (auto *button : window.findChildren<QPushButton *>()) {
            if (button->text() == QLatin1String("Download"))
                download = button;
        }
        QVERIFY(download && download->isVisible());
        download->click();
        QCOMPARE(opened, QList{item.infoURL});
    }
};

QTEST_MAIN(TestUpdates)
#include "test_updates.moc"
