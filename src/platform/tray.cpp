#include "platform/tray.h"

#include "common/log.h"
#include "platform/qt_tray.h"
#include "platform/sni_tray.h"
#include "platform/x11selection.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QGuiApplication>

#include <functional>

namespace {

// No panel to show an icon in: the program is reached through its search
// panel, its hot keys and its command line instead.
class AbsentTray final : public Tray
{
public:
    TrayKind kind() const override { return TrayKind::Absent; }
    void show(const TrayIcon &, const QString &) override
    {
        qCWarning(lcTray) << "No system tray is available: neither a StatusNotifier watcher nor an XEmbed tray";
    }
    std::optional<QRect> iconGeometry() const override { return std::nullopt; }
    void popUp(QMenu *, const QPoint &) override { }
};

struct TrayChoice {
    const char *name;
    std::function<std::unique_ptr<Tray>()> make;
};

// Every tray there is, by the name QUILLON_TRAY gives it.
const TrayChoice trays[] = {
    {"qt", [] { return std::make_unique<QtTray>(); }},
    {"sni", [] { return std::make_unique<SniTray>(SniTray::MenuMode::Exported); }},
    {"sni-popup", [] { return std::make_unique<SniTray>(SniTray::MenuMode::PoppedUp); }},
    {"none", [] { return std::make_unique<AbsentTray>(); }},
};

std::unique_ptr<Tray> named(const char *name)
{
    for (const auto &tray : trays) {
        if (qstrcmp(tray.name, name) == 0)
            return tray.make();
    }
    Q_UNREACHABLE();
}

bool isWaylandSession()
{
    // Under Xwayland Qt speaks X11, yet the panel and the pointer belong to
    // the compositor: a menu Quillon pops itself lands wherever it guesses.
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"))
           || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
           || qEnvironmentVariable("XDG_SESSION_TYPE") == QLatin1String("wayland");
}

bool hasStatusNotifierWatcher()
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    return bus.isConnected() && bus.interface()->isServiceRegistered(QLatin1String(SniTray::watcherService));
}

const char *sessionChoice()
{
    const bool watcher = hasStatusNotifierWatcher();
    if (isWaylandSession())
        return watcher ? "sni" : "none";
    if (watcher)
        return "sni-popup";
    return x11ScreenSelectionOwned("_NET_SYSTEM_TRAY_S") ? "qt" : "none";
}

} // namespace

std::unique_ptr<Tray> Tray::forSession()
{
    const QString wanted = qEnvironmentVariable("QUILLON_TRAY");
    if (!wanted.isEmpty()) {
        for (const auto &tray : trays) {
            if (wanted == QLatin1String(tray.name)) {
                qCDebug(lcTray) << "Using the" << tray.name << "tray, as QUILLON_TRAY asks";
                return tray.make();
            }
        }
        qCWarning(lcTray) << "QUILLON_TRAY names no tray:" << wanted;
    }
    const char *choice = sessionChoice();
    qCDebug(lcTray) << "Using the" << choice << "tray";
    return named(choice);
}
