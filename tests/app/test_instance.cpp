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

    // Every command arrives, in order. (Activations, and the real client,
    // are test_client's.)
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
        for (const auto command : allCases<InstanceCommand>()) {
            if (!onBus) {
                QVERIFY(SingleInstance::send(command));
                continue;
            }
            // Over the bus the caller is another process, as it is in use.
            QProcess client;
            client.start(QStringLiteral("dbus-send"),
                         {QStringLiteral("--session"), QStringLiteral("--type=method_call"),
                          QStringLiteral("--dest=app.quillon.Quillon"), QStringLiteral("/app/quillon/Quillon"),
                          QStringLiteral("app.quillon.Quillon.") + enumToString(command)});
            QTRY_COMPARE(client.state(), QProcess::NotRunning);
            QCOMPARE(client.exitCode(), 0);
        }
        QTRY_COMPARE(received.count(), allCases<InstanceCommand>().size());
        for (int i = 0; i < received.count(); ++i)
            QCOMPARE(received.at(i).at(0).value<InstanceCommand>(), allCases<InstanceCommand>().at(i));
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

QTEST_GUILESS_MAIN(TestInstance)
#include "test_instance.moc"
