#include "app/appservices.h"

#include "catalog/destination.h"
#include "catalog/systemstrings.h"

#include <QCoreApplication>

AppServices::AppServices()
    : store(preferences)
    , updates(preferences, QUrl(QStringLiteral(QUILLON_UPDATE_FEED)), QCoreApplication::applicationVersion())
    , opener(launcher, [this](const QString &id) { shortcuts.run(id); })
{
}

SearchContext AppServices::searchContext()
{
    return SearchContext::shared(shortcuts);
}

StatusMenu::Services AppServices::statusMenuServices()
{
    return StatusMenu::Services{
        MenuBuilder::Context{store, shortcuts, SystemStrings::shared(), Catalog::current(), Destination::index()},
        preferences,
        updates,
        opener,
        [this] { return searchContext(); },
    };
}
