#pragma once

#include "app/statusmenu.h"
#include "app/updates.h"
#include "config/menustore.h"
#include "config/preferences.h"
#include "platform/giolauncher.h"
#include "platform/opener.h"
#include "settings/settingswindow.h"
#include "sources/appindex.h"
#include "sources/contentsources.h"
#include "sources/shortcutlibrary.h"

// The long-lived objects of the program, made once, in dependency order,
// and shared by the menu, the search panel and the settings window.
class AppServices
{
public:
    AppServices();
    AppServices(const AppServices &) = delete;
    AppServices &operator=(const AppServices &) = delete;

    Preferences preferences;
    MenuStore store;
    Updates updates;
    ShortcutLibrary shortcuts;
    AppIndex apps;
    ContentSources sources;
    GioLauncher launcher;
    Opener opener;

    StatusMenu::Services statusMenuServices();
    SettingsServices settingsServices(HotKeyCenters &hotKeys);
};
