#include "platform/tray.h"

#include "common/log.h"
#include "platform/qt_tray.h"

#include <functional>

namespace {

struct TrayChoice {
    const char *name;
    std::function<std::unique_ptr<Tray>()> make;
};

// Every tray there is, by the name QUILLON_TRAY gives it.
const TrayChoice trays[] = {
    {"qt", [] { return std::make_unique<QtTray>(); }},
};

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
    return std::make_unique<QtTray>();
}
