#include "app/singleinstance.h"
#include "platform/loginitem.h"

#include <QDBusConnection>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

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
        QVERIFY(first.claim());
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
        QTRY_COMPARE(received.count(), 4);
        for (int i = 0; i < 4; ++i)
            QCOMPARE(received.at(i).first().value<InstanceCommand>(), allCases<InstanceCommand>().at(i));

        if (!onBus) {
            SingleInstance second;
            QVERIFY(!second.claim());
            QTest::qWait(50);
            QCOMPARE(received.count(), 4);
        }
    }

    void nothingAnswersWhenNothingRuns()
    {
        if (QDBusConnection::sessionBus().isConnected())
            QSKIP("the bus case is covered by starting quillon twice");
        QVERIFY(!SingleInstance::send(InstanceCommand::Reopen));
    }

    void openAtLoginWritesAndRemovesTheAutostartEntry()
    {
        LoginItem item(QStringLiteral("/opt/My Apps/quillon"));
        QVERIFY(LoginItem::entryPath().startsWith(m_home.path()));
        QVERIFY(!item.isEnabled());
        QCOMPARE(item.setEnabled(true), std::nullopt);
        QVERIFY(item.isEnabled());
        QFile written(LoginItem::entryPath());
        QVERIFY(written.open(QIODevice::ReadOnly));
        QVERIFY(written.readAll().contains("\nExec=\"/opt/My Apps/quillon\" --autostart\n"));

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
