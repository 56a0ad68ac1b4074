// From exec of `quillon --autostart` to its icon in the panel, on the
// session bus that DBUS_SESSION_BUS_ADDRESS names (a private one: this
// program owns the panel's StatusNotifierWatcher name there).
//
//   bench_startup [RUNS]
//
// A stand-in watcher says a tray host is present and takes the icon's
// registration. Each run prints one line:
//   bus_name_ms=<exec until app.quillon.Quillon is owned> tray_ms=<exec until the icon registered>
// QUILLON_BINARY names the program; by default the quillon of this build.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QProcess>
#include <QTextStream>
#include <QTimer>

#include <functional>
#include <optional>

namespace {

const QString watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString instanceService = QStringLiteral("app.quillon.Quillon");

QString quillonBinary()
{
    const QString given = qEnvironmentVariable("QUILLON_BINARY");
    if (!given.isEmpty())
        return given;
    // build/<type>/bench/bench_startup next to build/<type>/bin/quillon.
    return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../bin/quillon"));
}

// Just enough of a panel's watcher for an item to register with it.
class FakeWatcher : public QDBusVirtualObject
{
public:
    std::function<void()> itemRegistered;

    QString introspect(const QString &) const override
    {
        return QStringLiteral(
            "<interface name=\"org.kde.StatusNotifierWatcher\">"
            "<method name=\"RegisterStatusNotifierItem\"><arg name=\"service\" type=\"s\" direction=\"in\"/></method>"
            "<method name=\"RegisterStatusNotifierHost\"><arg name=\"service\" type=\"s\" direction=\"in\"/></method>"
            "<property name=\"IsStatusNotifierHostRegistered\" type=\"b\" access=\"read\"/>"
            "<property name=\"ProtocolVersion\" type=\"i\" access=\"read\"/>"
            "<signal name=\"StatusNotifierHostRegistered\"/>"
            "</interface>");
    }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        const QString member = message.member();
        if (member == QLatin1String("RegisterStatusNotifierItem")) {
            connection.send(message.createReply());
            if (itemRegistered)
                itemRegistered();
            return true;
        }
        if (member == QLatin1String("RegisterStatusNotifierHost")) {
            connection.send(message.createReply());
            return true;
        }
        if (member == QLatin1String("Get")) {
            const QString property = message.arguments().value(1).toString();
            const QVariant value = property == QLatin1String("ProtocolVersion") ? QVariant(0) : QVariant(true);
            connection.send(message.createReply(QVariant::fromValue(QDBusVariant(value))));
            return true;
        }
        if (member == QLatin1String("GetAll")) {
            const QVariantMap all{{QStringLiteral("IsStatusNotifierHostRegistered"), true},
                                  {QStringLiteral("ProtocolVersion"), 0}};
            connection.send(message.createReply(all));
            return true;
        }
        return false;
    }
};

// Runs the event loop until `done` holds or the time is up.
bool waitFor(const std::function<bool()> &done, int timeoutMs)
{
    QElapsedTimer waited;
    waited.start();
    while (!done() && waited.elapsed() < timeoutMs)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
    return done();
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int runs = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 10;
    QTextStream out(stdout);
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        out << "bench_startup: skipped, no session bus\n";
        return 0;
    }
    FakeWatcher watcher;
    if (!bus.registerVirtualObject(QStringLiteral("/StatusNotifierWatcher"), &watcher)
        || !bus.registerService(watcherService)) {
        out << "bench_startup: skipped, could not own " << watcherService << '\n';
        return 0;
    }

    QElapsedTimer clock;
    std::optional<qint64> nameOwned;
    std::optional<qint64> iconRegistered;
    watcher.itemRegistered = [&] {
        if (!iconRegistered)
            iconRegistered = clock.nsecsElapsed();
    };
    QDBusServiceWatcher instanceWatcher(instanceService, bus, QDBusServiceWatcher::WatchForOwnerChange);
    QObject::connect(&instanceWatcher, &QDBusServiceWatcher::serviceRegistered, [&] {
        if (!nameOwned)
            nameOwned = clock.nsecsElapsed();
    });

    for (int run = 0; run < runs; ++run) {
        nameOwned.reset();
        iconRegistered.reset();
        QProcess instance;
        instance.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        clock.start();
        instance.start(quillonBinary(), {QStringLiteral("--autostart")});
        const bool started = waitFor([&] { return nameOwned && iconRegistered; }, 20000);
        instance.terminate();
        instance.waitForFinished(5000);
        waitFor([&] { return !bus.interface()->isServiceRegistered(instanceService).value(); }, 5000);
        if (!started) {
            out << "bench_startup: the instance did not " << (nameOwned ? "register its icon" : "take its bus name")
                << " within 20 s\n";
            return 1;
        }
        out << "bus_name_ms=" << double(*nameOwned) / 1e6 << " tray_ms=" << double(*iconRegistered) / 1e6 << '\n';
        out.flush();
    }
    return 0;
}
