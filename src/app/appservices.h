#pragma once

#include "app/statusmenu.h"
#include "app/updates.h"
#include "config/menustore.h"
#include "config/preferences.h"
#include "platform/giolauncher.h"
#include "platform/opener.h"
#include "settings/settingswindow.h"
#include "sources/contentsources.h"
#include "sources/shortcutlibrary.h"

// The long-lived objects of the program, made once, in dependency order,
// and shared by the menu, the search panel and the settings window.
class AppServices
{
public:
    // scanApps stands in for the applications scan of the sources: a one-off
    // run starts it early, on a thread of its own.
    explicit AppServices(std::function<QList<AppEntry>()> scanApps = {});
    AppServices(const AppServices &) = delete;
    AppServices &operator=(const AppServices &) = delete;

    Preferences preferences;
    MenuStore store;
    Updates updates;
    ShortcutLibrary shortcuts;
    ContentSources sources;
    GioLauncher launcher;
    Opener opener;

    StatusMenu::Services statusMenuServices();
    SettingsServices settingsServices(HotKeyCenters &hotKeys);
};
