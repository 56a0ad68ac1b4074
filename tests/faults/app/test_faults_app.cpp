#include "app/instancesocket.h"
#include "app/singleinstance.h"
#include "app/socketfolder.h"

#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

#include <sys/stat.h>
#include <unistd.h>

// What another local user, a misbehaving client or the session manager can
// do to the one instance, without a session bus.
class TestFaultsApp : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    // The real `quillon` as the running instance, its socket in the private
    // folder under `temp` as in a session without XDG_RUNTIME_DIR.
    void startInstance(QProcess &quillon, const QString &temp)
    {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("XDG_RUNTIME_DIR"));
        environment.insert(QStringLiteral("TMPDIR"), temp);
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_dir.filePath(QStringLiteral("config")));
        environment.insert(QStringLiteral("XDG_DATA_HOME"), m_dir.filePath(QStringLiteral("data")));
        environment.insert(QStringLiteral("QUILLON_TRAY"), QStringLiteral("none"));
        environment.remove(QStringLiteral("DISPLAY"));
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
        quillon.setProcessEnvironment(environment);
        quillon.start(QStringLiteral(QUILLON_BINARY), {QStringLiteral("--autostart")});
    }

    static mode_t modeOf(const QString &path)
    {
        struct stat status { };
        return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
    }

    static QString privatePath(const QString &temp) { return temp + QStringLiteral("/quillon-%1").arg(getuid()); }
    static QString socketIn(const QString &temp)
    {
        return privatePath(temp) + QStringLiteral("/quillon-%1.socket").arg(getuid());
    }

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_dir.filePath(QStringLiteral("runtime"))));
        QVERIFY(QDir().mkpath(m_dir.filePath(QStringLiteral("runtime"))));
        QFile::setPermissions(m_dir.filePath(QStringLiteral("runtime")),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QStandardPaths::setTestModeEnabled(false);
    }

    // A client that sends no line end is cut off once it has sent more than
    // any command needs; the instance goes on answering others.
    void anEndlessLineClosesItsConnection()
    {
        SingleInstance instance;
        QCOMPARE(instance.claim(), SingleInstance::Claim::Claimed);
        QSignalSpy received(&instance, &SingleInstance::commandReceived);

        const QByteArray chunk(64 * 1024, 'x');
        for (const QByteArray &tail : {QByteArray(), QByteArray("\nReopen\n")}) {
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("line longer than 4096 bytes")));
            QLocalSocket hostile;
            hostile.connectToServer(SingleInstance::socketPath());
            QVERIFY(hostile.waitForConnected(1000));
            for (int i = 0; i < 16 && hostile.state() == QLocalSocket::ConnectedState; ++i) {
                hostile.write(chunk);
                QTest::qWait(10);
            }
            hostile.write(tail);
            QTRY_COMPARE_WITH_TIMEOUT(hostile.state(), QLocalSocket::UnconnectedState, 3000);
        }
        QCOMPARE(received.size(), 0);

        // A line just within the bound is still read.
        QLocalSocket client;
        client.connectToServer(SingleInstance::socketPath());
        QVERIFY(client.waitForConnected(1000));
        client.write("x=" + QByteArray(InstanceSocket::maxLineBytes - 3, 'y') + "\nPopUpMenu\n");
        QTRY_COMPARE(received.size(), 1);
        QCOMPARE(received.first().at(0).value<InstanceCommand>(), InstanceCommand::PopUpMenu);
    }

    // In the shared temporary folder only a folder that is really this
    // user's, and only his, holds the socket.
    void thePrivateFolderIsTrustedOnlyWhenItIsPrivate()
    {
        const QString fresh = m_dir.filePath(QStringLiteral("fresh"));
        QCOMPARE(privateFolder(fresh), (SocketFolder{fresh, {}}));
        QCOMPARE(modeOf(fresh), mode_t(0700));
        QCOMPARE(privateFolder(fresh), (SocketFolder{fresh, {}}));

        const QString link = m_dir.filePath(QStringLiteral("link"));
        QVERIFY(QFile::link(fresh, link));
        const QString file = m_dir.filePath(QStringLiteral("file"));
        QVERIFY(QFile(file).open(QIODevice::WriteOnly));
        const QString open = m_dir.filePath(QStringLiteral("open"));
        QVERIFY(QDir().mkdir(open));
        ::chmod(QFile::encodeName(open).constData(), 0755);
        // Another user's: root can make one, anyone else finds one in "/".
        QString foreign = QDir::rootPath();
        if (::getuid() == 0) {
            foreign = m_dir.filePath(QStringLiteral("foreign"));
            QVERIFY(QDir().mkdir(foreign));
            ::chmod(QFile::encodeName(foreign).constData(), 0700);
            QCOMPARE(::chown(QFile::encodeName(foreign).constData(), 65534, 65534), 0);
        }
        const std::pair<QString, QString> refused[] = {
            {link, QStringLiteral("symbolic link")},
            {file, QStringLiteral("not a folder")},
            {open, QStringLiteral("0755")},
            {foreign, QStringLiteral("another user")},
        };
        for (const auto &[path, why] : refused) {
            const SocketFolder folder = privateFolder(path);
            QVERIFY2(!folder.isUsable(), qPrintable(path));
            QVERIFY2(folder.problem.contains(path) && folder.problem.contains(why), qPrintable(folder.problem));
        }
    }

    // Without XDG_RUNTIME_DIR: a squatted folder stops Quillon with a
    // message that names it; a signal ends a running Quillon cleanly.
    void theInstanceRefusesSquattersAndLeavesCleanly()
    {
        const QString squatted = m_dir.filePath(QStringLiteral("squatted"));
        QVERIFY(QDir().mkpath(squatted));
        QVERIFY(QFile::link(m_dir.filePath(QStringLiteral("runtime")), privatePath(squatted)));
        QProcess refused;
        startInstance(refused, squatted);
        QVERIFY(refused.waitForFinished(20000));
        QCOMPARE(refused.exitCode(), 1);
        const QString errors = QString::fromLocal8Bit(refused.readAllStandardError());
        QVERIFY2(errors.contains(privatePath(squatted)) && errors.contains(QStringLiteral("symbolic link")),
                 qPrintable(errors));

        const QString temp = m_dir.filePath(QStringLiteral("temp"));
        QVERIFY(QDir().mkpath(temp));
        for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
            QProcess quillon;
            startInstance(quillon, temp);
            QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(socketIn(temp)), 20000);
            QCOMPARE(modeOf(privatePath(temp)), mode_t(0700));
            ::kill(pid_t(quillon.processId()), signal);
            QVERIFY(quillon.waitForFinished(10000));
            QCOMPARE(quillon.exitStatus(), QProcess::NormalExit);
            QCOMPARE(quillon.exitCode(), 0);
            QVERIFY2(!QFileInfo::exists(socketIn(temp)),
                     qPrintable(QString::fromLocal8Bit(quillon.readAllStandardError())));
        }
    }
};

QTEST_GUILESS_MAIN(TestFaultsApp)
#include "test_faults_app.moc"
