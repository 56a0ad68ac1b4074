#include "app/appservices.h"

#include <QCoreApplication>

AppServices::AppServices()
    : store(preferences)
    , updates(preferences, QUrl(QStringLiteral(QUILLON_UPDATE_FEED)), QCoreApplication::applicationVersion(),
              QUILLON_UPDATE_KEY)
    , sources(SourceContext::shared(store, shortcuts, apps))
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
