#pragma once

class ContentSources;
class HotKeyCenters;
class MenuStore;
class Preferences;
class UpdateSettings;

// What the settings window and its tabs edit and read. Every change goes
// through the store, which saves it at once and tells every view.
struct SettingsServices {
    Preferences &preferences;
    MenuStore &store;
    UpdateSettings &updates;
    const ContentSources &sources;
    HotKeyCenters &hotKeys;
};
