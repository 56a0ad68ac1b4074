#include "app/updates.h"
#include "app/updatewindow.h"
#include "config/preferences.h"
#include "feedserver.h"

#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>

#include <openssl/evp.h>

#include <memory>

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

// An Ed25519 key pair made for the test, signing as a feed's publisher would.
class SigningKey
{
public:
    SigningKey()
    {
        EVP_PKEY_CTX *context = EVP_PKEY_CTX_new_id(EVP_PKEY_ED25519, nullptr);
        EVP_PKEY *key = nullptr;
        if (EVP_PKEY_keygen_init(context) == 1)
            EVP_PKEY_keygen(context, &key);
        EVP_PKEY_CTX_free(context);
        m_key.reset(key);
    }

    QByteArray publicKeyBase64() const
    {
        QByteArray raw(32, '\0');
        size_t size = size_t(raw.size());
        EVP_PKEY_get_raw_public_key(m_key.get(), reinterpret_cast<unsigned char *>(raw.data()), &size);
        return raw.toBase64();
    }

    QByteArray sign(const QByteArray &message) const
    {
        QByteArray signature(64, '\0');
        size_t size = size_t(signature.size());
        EVP_MD_CTX *context = EVP_MD_CTX_new();
        EVP_DigestSignInit(context, nullptr, nullptr, nullptr, m_key.get());
        EVP_DigestSign(context, reinterpret_cast<unsigned char *>(signature.data()), &size,
                       reinterpret_cast<const unsigned char *>(message.constData()), size_t(message.size()));
        EVP_MD_CTX_free(context);
        return signature;
    }

private:
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> m_key{nullptr, EVP_PKEY_free};
};

UpdateCheckResult checkOnce(UpdateChecker &checker)
{
    QSignalSpy finished(&checker, &UpdateChecker::finished);
    checker.check();
    if (finished.isEmpty() && !finished.wait(5000))
        return CheckFailed{QStringLiteral("(no answer)")};
    return finished.first().first().value<UpdateCheckResult>();
}

QString failure(const UpdateCheckResult &result)
{
    const auto *failed = std::get_if<CheckFailed>(&result);
    return failed ? failed->error : QString();
}

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

    // A feed is fetched only over https (http only from this machine), read
    // only up to its limit, opens only web links, and, with a key, counts
    // only when its signature matches.
    void aFeedIsBelievedOnlyWithinItsRules()
    {
        for (const char *insecure : {"http://quillon.app/appcast.xml", "http://127.0.0.1.quillon.app/appcast.xml"}) {
            UpdateChecker checker(QUrl(QString::fromLatin1(insecure)), QStringLiteral("0.1.0"));
            QVERIFY2(failure(checkOnce(checker)).contains(QLatin1String("https")), insecure);
        }

        FeedServer server;
        server.body = QByteArray(2 * 1024 * 1024, ' ');
        server.endless = true;
        UpdateChecker endless(server.url(), QStringLiteral("0.1.0"));
        const QString tooLarge = failure(checkOnce(endless));
        QVERIFY2(tooLarge.contains(QLatin1String("larger than 1 MB")), qPrintable(tooLarge));
        server.endless = false;

        // Links that are not web pages are dropped, from the item and from
        // the notes; the notes load nothing from this machine.
        QByteArray xml = feed({QStringLiteral("9.0")});
        xml.replace("https://quillon.app/download/quillon-9.0.tar.gz", "javascript:alert(1)");
        xml.replace("https://quillon.app/notes/9.0", "file:///etc/passwd");
        xml.replace("</title><description>", "</title><link>https://quillon.app/9.0</link><description>");
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("dropped the link \"javascript:")));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("dropped the link \"file:")));
        AppcastItem item = parseAppcast(xml).value().first();
        QVERIFY(item.downloadURL.isEmpty() && item.releaseNotesURL.isEmpty());
        QCOMPARE(item.infoURL, QUrl(QStringLiteral("https://quillon.app/9.0")));

        QFile secret(m_dir.filePath(QStringLiteral("secret.png")));
        QVERIFY(secret.open(QIODevice::WriteOnly) && secret.write("secret") == 6);
        secret.close();
        const QUrl secretURL = QUrl::fromLocalFile(secret.fileName());
        item.description =
            QStringLiteral("<img src=\"%1\"><a href=\"file:///etc/passwd\">x</a>").arg(secretURL.toString());
        QList<QUrl> opened;
        UpdateWindow window(QStringLiteral("0.1.0"), [&](const QUrl &url) { opened.append(url); });
        window.showResult(UpdateFound{item});
        auto *notes = window.findChild<QTextBrowser *>();
        QVERIFY(notes->document()->resource(QTextDocument::ImageResource, secretURL).toByteArray().isEmpty());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^Did not open \"file:///etc/passwd\"")));
        Q_EMIT notes->anchorClicked(QUrl(QStringLiteral("file:///etc/passwd")));
        Q_EMIT notes->anchorClicked(QUrl(QStringLiteral("https://quillon.app/notes")));
        QCOMPARE(opened, QList{QUrl(QStringLiteral("https://quillon.app/notes"))});

        // Signed feeds.
        const SigningKey publisher;
        const SigningKey stranger;
        QVERIFY(!FeedVerifier::fromBase64Key(publisher.publicKeyBase64().left(40) + "==="));
        server.body = feed({QStringLiteral("9.0")});
        const struct {
            QByteArray signature;
            const char *failure;
        } cases[] = {
            {publisher.sign(server.body), nullptr},
            {publisher.sign(server.body).toBase64() + "\n", nullptr},
            {stranger.sign(server.body), "does not match"},
            {"", "could not be read"},
        };
        for (const auto &signed_ : cases) {
            server.signature = signed_.signature;
            UpdateChecker checker(server.url(), QStringLiteral("0.1.0"),
                                  FeedVerifier::fromBase64Key(publisher.publicKeyBase64()));
            const UpdateCheckResult result = checkOnce(checker);
            if (signed_.failure)
                QVERIFY2(failure(result).contains(QLatin1String(signed_.failure)), qPrintable(failure(result)));
            else
                QVERIFY2(std::holds_alternative<UpdateFound>(result), qPrintable(failure(result)));
        }
        // The build's key reaches the checks: an unsigned feed is not believed.
        server.signature.clear();
        Preferences preferences(prefsPath());
        Updates updates(preferences, server.url(), QStringLiteral("0.1.0"), publisher.publicKeyBase64());
        QSignalSpy finished(&updates, &Updates::userCheckFinished);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^Update check failed: .*signature")));
        updates.checkForUpdates();
        QTRY_COMPARE(finished.count(), 1);
        QVERIFY(std::holds_alternative<CheckFailed>(finished.first().first().value<UpdateCheckResult>()));
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
