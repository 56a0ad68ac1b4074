// A second `quillon --toggle-search` against `dbus-send` of the same call,
// both to a running instance on a private session bus.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>

#include <optional>

namespace {

QString quillonBinary()
{
    const QString given = qEnvironmentVariable("QUILLON_BINARY");
    if (!given.isEmpty())
        return given;
    // build/<type>/bench/bench_client next to build/<type>/bin/quillon.
    return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../bin/quillon"));
}

// A private bus and an instance drawing off screen, for the whole run.
struct Session {
    QTemporaryDir home;
    QProcess bus;
    QProcess instance;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();

    std::optional<QString> start()
    {
        bus.start(QStringLiteral("dbus-daemon"),
                  {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address")});
        if (!bus.waitForStarted() || !bus.waitForReadyRead(5000))
            return QStringLiteral("dbus-daemon did not start");
        const QString address = QString::fromUtf8(bus.readLine()).trimmed();
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral("config")));
        environment.insert(QStringLiteral("XDG_DATA_HOME"), home.filePath(QStringLiteral("data")));
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), home.path());
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        environment.remove(QStringLiteral("DISPLAY"));
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
        instance.setProcessEnvironment(environment);
        instance.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        instance.start(quillonBinary(), {QStringLiteral("--autostart")});
        if (!instance.waitForStarted())
            return QStringLiteral("%1 did not start").arg(quillonBinary());
        QElapsedTimer waited;
        waited.start();
        while (waited.elapsed() < 20000) {
            if (run(QStringLiteral("dbus-send"),
                    {QStringLiteral("--session"), QStringLiteral("--print-reply"),
                     QStringLiteral("--dest=org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                     QStringLiteral("org.freedesktop.DBus.GetNameOwner"),
                     QStringLiteral("string:app.quillon.Quillon")}))
                return std::nullopt;
            QThread::msleep(50);
        }
        return QStringLiteral("the instance did not take its bus name");
    }

    bool run(const QString &program, const QStringList &arguments) const
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        return process.waitForFinished(10000) && process.exitStatus() == QProcess::NormalExit
               && process.exitCode() == 0;
    }

    ~Session()
    {
        instance.terminate();
        instance.waitForFinished(5000);
        bus.terminate();
        bus.waitForFinished(5000);
    }
};

Session *session = nullptr;

void timeCall(benchmark::State &state, const QString &program, const QStringList &arguments)
{
    for (auto _ : state) {
        if (!session->run(program, arguments)) {
            state.SkipWithError("the call failed");
            return;
        }
    }
}

void quillonToggleSearch(benchmark::State &state)
{
    timeCall(state, quillonBinary(), {QStringLiteral("--toggle-search")});
}
BENCHMARK(quillonToggleSearch)->Unit(benchmark::kMillisecond)->UseRealTime();

void dbusSendToggleSearch(benchmark::State &state)
{
    timeCall(state, QStringLiteral("dbus-send"),
             {QStringLiteral("--session"), QStringLiteral("--print-reply"),
              QStringLiteral("--dest=app.quillon.Quillon"), QStringLiteral("/app/quillon/Quillon"),
              QStringLiteral("app.quillon.Quillon.ToggleSearch")});
}
BENCHMARK(dbusSendToggleSearch)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (QStandardPaths::findExecutable(QStringLiteral("dbus-send")).isEmpty()
        || QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty()) {
        QTextStream(stdout) << "bench_client: skipped, dbus-send or dbus-daemon is missing\n";
        return 0;
    }
    Session running;
    if (const auto failure = running.start()) {
        QTextStream(stdout) << "bench_client: skipped, " << *failure << '\n';
        return 0;
    }
    session = &running;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
