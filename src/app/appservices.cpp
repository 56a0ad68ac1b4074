#include "app/appservices.h"

#include <QCoreApplication>

namespace {

SourceContext contextOf(MenuStore &store, const ShortcutLibrary &shortcuts, std::function<QList<AppEntry>()> scanApps)
{
    SourceContext context = SourceContext::shared(store, shortcuts);
    if (scanApps)
        context.scanApps = std::move(scanApps);
    return context;
}

} // namespace

AppServices::AppServices(std::function<QList<AppEntry>()> scanApps)
    : store(preferences)
    , updates(preferences, QUrl(QStringLiteral(QUILLON_UPDATE_FEED)), QCoreApplication::applicationVersion())
    , sources(contextOf(store, shortcuts, std::move(scanApps)))
    , opener(launcher, [this](const QString &id) { shortcuts.run(id); })
{
}

StatusMenu::Services AppServices::statusMenuServices()
{
    return StatusMenu::Services{sources, shortcuts, preferences, updates, opener};
}

SettingsServices AppServices::settingsServices(HotKeyCenters &hotKeys)
{
    return SettingsServices{preferences, store, updates, sources, hotKeys};
}
