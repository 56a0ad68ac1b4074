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

// An Ed25519 key made from a fixed seed, signing as a feed's publisher would.
class SigningKey
{
public:
    explicit SigningKey(char seed)
        : m_key(EVP_PKEY_new_raw_private_key(EVP_PKEY_ED25519, nullptr,
                                             reinterpret_cast<const unsigned char *>(QByteArray(32, seed).constData()),
                                             32),
                EVP_PKEY_free)
    {
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
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> m_key;
};

UpdateCheckResult checkOnce(UpdateChecker &checker)
{
    QSignalSpy finished(&checker, &UpdateChecker::finished);
    checker.check();
    if (finished.isEmpty() && !finished.wait(5000))
        return CheckFailed{QStringLiteral("(no answer)")};
    return finished.first().first().value<UpdateCheckResult>();
}

// The user's own check, as the menu starts it.
UpdateCheckResult userCheck(Updates &updates)
{
    QSignalSpy finished(&updates, &Updates::userCheckFinished);
    updates.checkForUpdates();
    if (finished.isEmpty() && !finished.wait(5000))
        return CheckFailed{QStringLiteral("(no answer)")};
    return finished.first().first().value<UpdateCheckResult>();
}

QPushButton *buttonNamed(const QWidget &window, const QString &text)
{
    for (auto *button : window.findChildren<QPushButton *>()) {
        if (button->text() == text)
            return button;
    }
    return nullptr;
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
    // only up to its limit, and, with a key, counts only when its signature
    // matches.
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

        // Signed feeds.
        const SigningKey publisher('p');
        const SigningKey stranger('s');
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
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^Update check failed: .*signature")));
        QVERIFY(std::holds_alternative<CheckFailed>(userCheck(updates)));
    }

    // The schedule asks at most once a day, only when allowed, and only
    // raises the flag; the user's own check reports what it found and clears
    // the flag; a failed check counts as none.
    void theScheduleRaisesTheFlagAndTheUsersCheckReports()
    {
        FeedServer server;
        server.body = feed({QStringLiteral("0.1.0"), QStringLiteral("9.0")});
        Preferences preferences(prefsPath());
        Updates updates(preferences, server.url(), QStringLiteral("0.1.0"));
        QSignalSpy pending(&updates, &Updates::hasPendingUpdateChanged);

        updates.setScheduleTick(20);
        QTRY_VERIFY(updates.hasPendingUpdate());
        QCOMPARE(updates.pendingUpdate()->version, QStringLiteral("9.0"));
        QVERIFY(updates.lastCheckTime().isValid());
        QTest::qWait(100);
        QCOMPARE(server.requests, 1);

        QVERIFY(std::holds_alternative<UpdateFound>(userCheck(updates)));
        QVERIFY(!updates.hasPendingUpdate());
        QCOMPARE(pending.count(), 2);

        // Turned off, and remembered so: the schedule stays away.
        Preferences off(prefsPath() + QStringLiteral(".off"));
        Updates(off, server.url(), QStringLiteral("0.1.0")).setAutomaticallyChecksForUpdates(false);
        Updates quiet(off, server.url(), QStringLiteral("0.1.0"));
        quiet.runScheduledCheckIfDue();
        QTest::qWait(100);
        QCOMPARE(server.requests, 2);
        // The user may still ask; a broken feed is reported and tried again later.
        server.status = 404;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^Update check failed: ")));
        QVERIFY(std::holds_alternative<CheckFailed>(userCheck(quiet)));
        QVERIFY(!quiet.lastCheckTime().isValid());
        // Up to date counts as a check.
        server.status = 200;
        server.body = feed({QStringLiteral("0.1.0")});
        QVERIFY(std::holds_alternative<UpToDate>(userCheck(quiet)));
        QVERIFY(quiet.lastCheckTime().isValid());

        Updates unconfigured(off, QUrl(), QStringLiteral("0.1.0"));
        QVERIFY(!unconfigured.isConfigured());
        QVERIFY(std::holds_alternative<CheckFailed>(userCheck(unconfigured)));
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
        QPushButton *cancel = buttonNamed(window, QStringLiteral("Cancel"));
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

    // Everything in the feed is someone else's: links that are not web
    // pages are dropped, from the item and from the notes, and the notes
    // load nothing from this machine.
    void theWindowOpensOnlyWebLinks()
    {
        QByteArray xml = feed({QStringLiteral("9.0")});
        xml.replace("https://quillon.app/download/quillon-9.0.tar.gz", "javascript:alert(1)");
        xml.replace("https://quillon.app/notes/9.0", "file:///etc/passwd");
        xml.replace("</title><description>", "</title><link>https://quillon.app/9.0</link><description>");
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("dropped the link \"javascript:")));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("dropped the link \"file:")));
        AppcastItem item = parseAppcast(xml).value().first();
        QVERIFY(item.downloadURL.isEmpty() && item.releaseNotesURL.isEmpty());
        QCOMPARE(item.infoURL, QUrl(QStringLiteral("https://quillon.app/9.0")));

        // Any file of this machine will do, such as this test itself.
        const QUrl secretURL = QUrl::fromLocalFile(QCoreApplication::applicationFilePath());
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
        // With no download link left, Download opens the release's page.
        QPushButton *download = buttonNamed(window, QStringLiteral("Download"));
        QVERIFY(download && download->isVisible());
        download->click();
        QCOMPARE(opened.last(), item.infoURL);

        window.showResult(UpToDate{});
        QCOMPARE(window.headline(), QStringLiteral("You’re up to date!"));
        window.showResult(CheckFailed{QStringLiteral("Host not found")});
        QCOMPARE(window.headline(), QStringLiteral("Update check failed"));
    }
};

QTEST_MAIN(TestUpdates)
#include "test_updates.moc"
