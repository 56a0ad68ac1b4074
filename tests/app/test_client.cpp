#include "app/singleinstance.h"

#include <QDBusConnection>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

// The real `quillon` started as a second process, while this test is the
// running instance.
class TestClient : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_runtime;

    struct Run {
        int exitCode = -1;
        QString errors;
    };

    // No display and a platform plugin that does not exist, so that only a
    // client that never loads the GUI toolkit gets through.
    static QProcessEnvironment withoutDisplay(const QString &platform = QStringLiteral("nonexistent-plugin"))
    {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
        environment.remove(QStringLiteral("DISPLAY"));
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
        return environment;
    }

    Run runClient(const QStringList &arguments, const Activation &activation = {})
    {
        QProcess quillon;
        auto environment = withoutDisplay();
        environment.insert(QStringLiteral("XDG_ACTIVATION_TOKEN"), activation.token);
        environment.insert(QStringLiteral("DESKTOP_STARTUP_ID"), activation.startupId);
        quillon.setProcessEnvironment(environment);
        // The instance answers from this event loop: wait in it.
        QSignalSpy finished(&quillon, &QProcess::finished);
        quillon.start(QStringLiteral(QUILLON_BINARY), arguments);
        if (!finished.wait(20000))
            return {};
        return {quillon.exitCode(), QString::fromUtf8(quillon.readAllStandardError())};
    }

private Q_SLOTS:
    void initTestCase()
    {
        // The socket of a session without a bus lives here; other tests
        // running beside this one have their own.
        QVERIFY(m_runtime.isValid());
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_runtime.path()));
        QStandardPaths::setTestModeEnabled(false);
    }

    void commandsReachTheRunningInstanceWithoutTheGuiToolkit()
    {
        const Run alone = runClient({QStringLiteral("--toggle-search")});
        QCOMPARE(alone.exitCode, 1);
        QVERIFY2(alone.errors.contains(QStringLiteral("not running")), qPrintable(alone.errors));

        SingleInstance instance;
        QCOMPARE(instance.claim(), SingleInstance::Claim::Claimed);
        QSignalSpy received(&instance, &SingleInstance::commandReceived);

        // One started by a key binding hands its activation on, whatever
        // characters the token holds; one started otherwise has none.
        const Activation activation{QStringLiteral("wl token/1 ü"), QStringLiteral("launcher-1_TIME42")};
        const struct {
            QStringList arguments;
            InstanceCommand command;
            Activation activation;
        } cases[] = {
            {{QStringLiteral("--toggle-search")}, InstanceCommand::ToggleSearch, activation},
            {{QStringLiteral("--menu")}, InstanceCommand::PopUpMenu, {}},
            {{QStringLiteral("--settings")}, InstanceCommand::ShowSettings, {}},
            {{}, InstanceCommand::Reopen, activation},
        };
        for (const auto &c : cases) {
            QCOMPARE(runClient(c.arguments, c.activation).exitCode, 0);
            QTRY_COMPARE(received.size(), 1);
            const auto arrived = received.takeFirst();
            QCOMPARE(arrived.at(0).value<InstanceCommand>(), c.command);
            QCOMPARE(arrived.at(1).value<Activation>(), c.activation);
        }
    }

    // At login the panel may take seconds to offer a tray; the keys must not
    // wait for it.
    void hotKeysDoNotWaitForTheTray()
    {
        if (!QDBusConnection::sessionBus().isConnected())
            QSKIP("the instance is started on the private bus only");
        QProcess quillon;
        auto environment = withoutDisplay(QStringLiteral("offscreen"));
        environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("quillon.*=true"));
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_runtime.filePath(QStringLiteral("config")));
        environment.insert(QStringLiteral("XDG_DATA_HOME"), m_runtime.filePath(QStringLiteral("data")));
        quillon.setProcessEnvironment(environment);
        quillon.start(QStringLiteral(QUILLON_BINARY), {QStringLiteral("--autostart")});
        QString log;
        QTRY_VERIFY_WITH_TIMEOUT((log += QString::fromUtf8(quillon.readAllStandardError()),
                                  log.contains(QStringLiteral("Global shortcuts through"))),
                                 4000);
        // No tray host here: the tray is decided only after its full wait.
        QVERIFY2(!log.contains(QStringLiteral("quillon.tray")), qPrintable(log));
        quillon.terminate();
        QVERIFY(quillon.waitForFinished());
    }
};

QTEST_GUILESS_MAIN(TestClient)
#include "test_client.moc"
