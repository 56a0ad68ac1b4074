#include "app/singleinstance.h"

#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

// The real `quillon` started as a second process, while this test is the
// running instance. It is given a platform plugin that does not exist: a
// client that loaded the GUI toolkit would abort instead of passing the
// command on.
class TestClient : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_runtime;

    struct Run {
        int exitCode = -1;
        QString errors;
    };

    Run runClient(const QStringList &arguments, const QString &token = {})
    {
        QProcess quillon;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("nonexistent-plugin"));
        environment.remove(QStringLiteral("DISPLAY"));
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
        environment.remove(QStringLiteral("DESKTOP_STARTUP_ID"));
        if (token.isEmpty())
            environment.remove(QStringLiteral("XDG_ACTIVATION_TOKEN"));
        else
            environment.insert(QStringLiteral("XDG_ACTIVATION_TOKEN"), token);
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
        SingleInstance instance;
        QVERIFY(instance.claim());
        QSignalSpy received(&instance, &SingleInstance::commandReceived);

        const std::pair<QStringList, InstanceCommand> cases[] = {
            {{QStringLiteral("--toggle-search")}, InstanceCommand::ToggleSearch},
            {{QStringLiteral("--menu")}, InstanceCommand::PopUpMenu},
            {{QStringLiteral("--settings")}, InstanceCommand::ShowSettings},
            {{}, InstanceCommand::Reopen},
        };
        for (const auto &[arguments, command] : cases) {
            const Run run = runClient(arguments, QStringLiteral("token-%1").arg(enumToString(command)));
            QCOMPARE(run.exitCode, 0);
            QTRY_COMPARE(received.size(), 1);
            const auto arrived = received.takeFirst();
            QCOMPARE(arrived.at(0).value<InstanceCommand>(), command);
            // The activation read from the environment travels along.
            QCOMPARE(arrived.at(1).value<Activation>().token, QStringLiteral("token-%1").arg(enumToString(command)));
        }
    }

    void commandWithoutInstanceFailsWithoutTheGuiToolkit()
    {
        const Run run = runClient({QStringLiteral("--toggle-search")});
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.errors.contains(QStringLiteral("not running")), qPrintable(run.errors));
    }
};

QTEST_GUILESS_MAIN(TestClient)
#include "test_client.moc"
