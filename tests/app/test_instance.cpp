#include "app/singleinstance.h"
#include "platform/loginitem.h"

#include <QDBusConnection>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <glib.h>

namespace {

// Run as `test_instance --send COMMAND`, the test is the second `quillon`.
const QString clientArgument = QStringLiteral("--send");

} // namespace

class TestInstance : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_home;

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("XDG_CONFIG_HOME", m_home.filePath(QStringLiteral("config")).toUtf8());
        qputenv("XDG_RUNTIME_DIR", m_home.path().toUtf8());
        QStandardPaths::setTestModeEnabled(false);
    }

    // Every command arrives in order with the activation it was sent with
    // (a `quillon` started by a key binding hands its token on), and none is
    // left over for the next. Over the bus the sender is another process, as
    // it is in use; this is the full program's client, the light front's is
    // test_client's.
    void commandsReachTheRunningInstance()
    {
        const bool onBus = QDBusConnection::sessionBus().isConnected();
        qInfo() << (onBus ? "over the session bus" : "over a local socket");
        if (!onBus) {
            // A socket left by a crashed instance does not stop a new one.
            QFile stale(SingleInstance::socketPath());
            QVERIFY(stale.open(QIODevice::WriteOnly));
        }
        SingleInstance first;
        QCOMPARE(first.claim(), SingleInstance::Claim::Claimed);
        QSignalSpy received(&first, &SingleInstance::commandReceived);
        const Activation activation{QStringLiteral("wl token/1 ü"), QStringLiteral("launcher-1_TIME42")};
        QList<std::pair<InstanceCommand, Activation>> sent{{InstanceCommand::ToggleSearch, activation},
                                                           {InstanceCommand::Reopen, activation}};
        for (const auto command : allCases<InstanceCommand>())
            sent.append({command, Activation()});
        for (const auto &[command, with] : sent) {
            if (!onBus) {
                QVERIFY(SingleInstance::send(command, with));
                continue;
            }
            QProcess client;
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert(QStringLiteral("XDG_ACTIVATION_TOKEN"), with.token);
            environment.insert(QStringLiteral("DESKTOP_STARTUP_ID"), with.startupId);
            client.setProcessEnvironment(environment);
            client.start(QCoreApplication::applicationFilePath(), {clientArgument, enumToString(command)});
            QTRY_COMPARE(client.state(), QProcess::NotRunning);
            QCOMPARE(client.exitCode(), 0);
        }
        QTRY_COMPARE(received.count(), sent.size());
        for (qsizetype i = 0; i < sent.size(); ++i) {
            QCOMPARE(received.at(i).at(0).value<InstanceCommand>(), sent.at(i).first);
            QCOMPARE(received.at(i).at(1).value<Activation>(), sent.at(i).second);
        }
        received.clear();

        if (onBus) {
            // A name that is no command is refused, and nothing happens.
            QProcess client;
            client.start(QStringLiteral("gdbus"),
                         {QStringLiteral("call"), QStringLiteral("--session"), QStringLiteral("--dest"),
                          QStringLiteral("app.quillon.Quillon"), QStringLiteral("--object-path"),
                          QStringLiteral("/app/quillon/Quillon"), QStringLiteral("--method"),
                          QStringLiteral("org.freedesktop.Application.ActivateAction"), QStringLiteral("Quit"),
                          QStringLiteral("[]"), QStringLiteral("{}")});
            QTRY_COMPARE(client.state(), QProcess::NotRunning);
            QVERIFY(client.exitCode() != 0);
        } else {
            SingleInstance second;
            QCOMPARE(second.claim(), SingleInstance::Claim::Elsewhere);
        }
        QTest::qWait(50);
        QCOMPARE(received.count(), 0);
    }

    void theTokenIsOfferedOnlyWhileTheCommandRuns()
    {
        qunsetenv("XDG_ACTIVATION_TOKEN");
        {
            const ActivationScope scope(Activation{QStringLiteral("abc"), {}});
            QCOMPARE(qEnvironmentVariable("XDG_ACTIVATION_TOKEN"), QStringLiteral("abc"));
        }
        QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
        // Started with a token that no window used: not offered later either.
        qputenv("XDG_ACTIVATION_TOKEN", "stale");
        {
            const ActivationScope scope(Activation{});
        }
        QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
    }

    // What the session runs at login, as GLib reads and splits the entry.
    static QStringList autostartCommand()
    {
        GKeyFile *file = g_key_file_new();
        g_key_file_load_from_file(file, QFile::encodeName(LoginItem::entryPath()), G_KEY_FILE_NONE, nullptr);
        gchar **argv = nullptr;
        gchar *exec = g_key_file_get_string(file, "Desktop Entry", "Exec", nullptr);
        QStringList command;
        if (exec && g_shell_parse_argv(exec, nullptr, &argv, nullptr)) {
            for (gchar **word = argv; *word; ++word)
                command.append(QFile::decodeName(*word).replace(QLatin1String("%%"), QLatin1String("%")));
        }
        g_strfreev(argv);
        g_free(exec);
        g_key_file_free(file);
        return command;
    }

    void openAtLoginWritesAndRemovesTheAutostartEntry()
    {
        // Every character the format reserves, in a path that exists.
        const QString program =
            m_home.filePath(QStringLiteral("My \"Apps\" $HOME `x` 100% \\ a'b;c&(d)|<e>~*?#/quillon"));
        QVERIFY(QDir().mkpath(QFileInfo(program).absolutePath()));
        QVERIFY(QFile::copy(QStringLiteral("/bin/true"), program));
        LoginItem item(program);
        QVERIFY(LoginItem::entryPath().startsWith(m_home.path()));
        QVERIFY(!item.isEnabled());
        QCOMPARE(item.setEnabled(true), std::nullopt);
        QVERIFY(item.isEnabled());
        QCOMPARE(autostartCommand(), QStringList({program, QStringLiteral("--autostart")}));
        QCOMPARE(item.renewIfStale(), std::nullopt);

        // The quillon on PATH is named as the desktop entry names it, so a
        // later version installed elsewhere on PATH starts too.
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", QFile::encodeName(QFileInfo(program).absolutePath()) + ':' + path);
        QCOMPARE(item.setEnabled(true), std::nullopt);
        QCOMPARE(autostartCommand(), QStringList({QStringLiteral("quillon"), QStringLiteral("--autostart")}));
        // Gone from PATH since (and none installed here): written again for
        // the program that runs now.
        qputenv("PATH", "/nonexistent");
        LoginItem moved(QStringLiteral("/opt/quillon/bin/quillon"));
        QCOMPARE(moved.renewIfStale(), std::nullopt);
        qputenv("PATH", path);
        QCOMPARE(autostartCommand(),
                 QStringList({QStringLiteral("/opt/quillon/bin/quillon"), QStringLiteral("--autostart")}));

        // Switched off by hand in another tool: not enabled.
        QFile file(LoginItem::entryPath());
        QVERIFY(file.open(QIODevice::Append));
        file.write("Hidden=true\n");
        file.close();
        QVERIFY(!item.isEnabled());

        QCOMPARE(item.setEnabled(false), std::nullopt);
        QVERIFY(!QFile::exists(LoginItem::entryPath()));
        QCOMPARE(item.setEnabled(false), std::nullopt);
    }
};

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (arguments.size() == 3 && arguments.at(1) == clientArgument) {
        const auto command = enumFromString<InstanceCommand>(arguments.at(2));
        return command && SingleInstance::send(*command, Activation::fromEnvironment()) ? 0 : 1;
    }
    TestInstance test;
    return QTest::qExec(&test, argc, argv);
}
#include "test_instance.moc"
