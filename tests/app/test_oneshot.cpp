#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString serviceName = QStringLiteral("app.quillon.Quillon");
const QString objectPath = QStringLiteral("/app/quillon/Quillon");

} // namespace

// `quillon --search` and `--print-menu` as a person runs them: answered by a
// running instance when there is one, else by the process itself, with the
// same text either way. Over a private session bus and without any bus.
class TestOneShot : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;
    // What the process printed for itself, per question.
    QHash<QStringList, QString> m_local;

    const QList<QStringList> m_questions{
        {QStringLiteral("--search"), QStringLiteral("edit")},
        {QStringLiteral("--search"), QStringLiteral(" back ")},
        {QStringLiteral("--print-menu")},
        {QStringLiteral("--print-menu"), QStringLiteral("--depth"), QStringLiteral("3")},
    };

    QString path(const QString &name) const { return m_root.filePath(name); }

    bool write(const QString &name, const QByteArray &content, bool executable = false)
    {
        QDir().mkpath(QFileInfo(path(name)).path());
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            return false;
        file.close();
        return !executable || file.setPermissions(file.permissions() | QFile::ExeOwner);
    }

    static QByteArray desktopEntry(const QByteArray &name, const QByteArray &category)
    {
        return "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=true\nCategories=" + category + ";\n";
    }

    // The fixture's applications, shortcuts and preferences, or (for a
    // client that must ask) none of the data.
    QProcessEnvironment environment(bool withData = true) const
    {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), path(QStringLiteral("home")));
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), path(QStringLiteral("config")));
        environment.insert(QStringLiteral("XDG_CACHE_HOME"), path(QStringLiteral("cache")));
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), path(QStringLiteral("runtime")));
        environment.insert(QStringLiteral("XDG_DATA_HOME"),
                           path(withData ? QStringLiteral("data") : QStringLiteral("none")));
        environment.insert(QStringLiteral("XDG_DATA_DIRS"),
                           path(withData ? QStringLiteral("system") : QStringLiteral("none")));
        environment.insert(QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("GNOME"));
        environment.insert(QStringLiteral("LANGUAGE"), QStringLiteral("en"));
        environment.remove(QStringLiteral("DISPLAY"));
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
        environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
        environment.remove(QStringLiteral("QT_LOGGING_RULES"));
        return environment;
    }

    struct Run {
        int exitCode = -1;
        QString out;
        QString errors;
    };

    static Run quillon(const QStringList &arguments, const QProcessEnvironment &environment)
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        // A fake instance in this process answers from this event loop.
        QSignalSpy finished(&process, &QProcess::finished);
        process.start(QStringLiteral(QUILLON_BINARY), arguments);
        if (!finished.wait(30000)) {
            process.kill();
            process.waitForFinished();
            return {};
        }
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    static bool onBus() { return QDBusConnection::sessionBus().isConnected(); }

    // Every question gets the text the process printed for itself, with
    // nothing on stderr but the expected warning.
    void answersAsTheProcessItself(const QProcessEnvironment &environment, const QString &warning = {})
    {
        for (const QStringList &question : m_questions) {
            const Run run = quillon(question, environment);
            QCOMPARE(run.exitCode, 0);
            QCOMPARE(run.out, m_local.value(question));
            QVERIFY2(warning.isEmpty() ? run.errors.isEmpty() : run.errors.contains(warning), qPrintable(run.errors));
        }
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        for (const char *folder : {"home", "config", "cache", "runtime", "none"})
            QVERIFY(QDir().mkpath(path(QString::fromLatin1(folder))));
        QVERIFY(QFile::setPermissions(path(QStringLiteral("runtime")),
                                      QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QVERIFY(write(QStringLiteral("data/applications/org.example.TextEditor.desktop"),
                      desktopEntry("Text Editor", "Utility")));
        QVERIFY(write(QStringLiteral("system/applications/org.example.Calculator.desktop"),
                      desktopEntry("Calculator", "Utility")));
        QVERIFY(
            write(QStringLiteral("system/applications/org.example.Notes.desktop"), desktopEntry("Notes", "Office")));
        QVERIFY(write(QStringLiteral("data/quillon/shortcuts/Backup"), "#!/bin/sh\n", true));
        QVERIFY(write(QStringLiteral("data/quillon/shortcuts/Work/Deploy"), "#!/bin/sh\n", true));

        // With nothing running, the process answers for itself.
        for (const QStringList &question : m_questions) {
            const Run run = quillon(question, environment());
            QCOMPARE(run.exitCode, 0);
            m_local.insert(question, run.out);
        }
    }

    void theProcessAnswersForItself()
    {
        const QString editor =
            QUrl::fromLocalFile(path(QStringLiteral("data/applications/org.example.TextEditor.desktop"))).toString();
        QVERIFY2(m_local.value(m_questions.at(0)).contains(QStringLiteral("\n  Text Editor  <%1>\n").arg(editor)),
                 qPrintable(m_local.value(m_questions.at(0))));
        // The shortcuts tool has been waited for.
        QVERIFY2(m_local.value(m_questions.at(1)).contains(QStringLiteral("\n  Backup  <shortcuts://run-shortcut?id=")),
                 qPrintable(m_local.value(m_questions.at(1))));
        const QString menu = m_local.value(m_questions.at(3));
        for (const QString &line :
             {QStringLiteral("\n    Text Editor  <%1>\n").arg(editor), QStringLiteral("\n  Work  ▸\n"),
              QStringLiteral("\n    Deploy  <shortcuts://"), QStringLiteral("\n  Backup  <shortcuts://")})
            QVERIFY2(menu.contains(line), qPrintable(line + QStringLiteral(" in\n") + menu));
        // Two levels unless asked for more.
        QVERIFY(!m_local.value(m_questions.at(2)).contains(QStringLiteral("\n    ")));
    }

    void aRunningInstanceAnswersTheSame()
    {
        if (!onBus())
            QSKIP("questions go over the session bus only");
        // One from before the questions has no method to answer them: the
        // process answers for itself, and says so.
        QObject mute;
        QDBusConnection bus = QDBusConnection::sessionBus();
        QVERIFY(bus.registerObject(objectPath, &mute));
        QVERIFY(bus.registerService(serviceName));
        answersAsTheProcessItself(environment(), QStringLiteral("answering here"));
        QVERIFY(bus.unregisterService(serviceName));
        bus.unregisterObject(objectPath);

        QProcess instance;
        auto environment = this->environment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        instance.setProcessEnvironment(environment);
        instance.start(QStringLiteral(QUILLON_BINARY), {QStringLiteral("--autostart")});
        QTRY_VERIFY_WITH_TIMEOUT(bus.interface()->isServiceRegistered(serviceName).value(), 15000);
        // The client has none of the data: only the instance can know it.
        answersAsTheProcessItself(this->environment(false));
        instance.terminate();
        QVERIFY(instance.waitForFinished());
    }
};

QTEST_GUILESS_MAIN(TestOneShot)
#include "test_oneshot.moc"
