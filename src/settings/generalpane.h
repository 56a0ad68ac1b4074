#pragma once

#include <QWidget>

class HotKeyCenters;
class HotKeyRecorder;
class HotKeyRouteNotice;
class MenuStore;
class Preferences;
class QFormLayout;
class SystemStrings;
class UpdateSettings;

// General options: start at login, the menu's search field, update checks
// and the recent items. A switch that cannot work here says why instead of
// sitting there dead.
class GeneralPane : public QWidget
{
    Q_OBJECT

public:
    GeneralPane(Preferences &preferences, MenuStore &store, UpdateSettings &updates, SystemStrings &strings,
                QWidget *parent = nullptr);

    // More rows go here.
    QFormLayout *form() const { return m_form; }
    // A bold line over the rows that follow.
    void addHeading(const QString &text);

    // The "Keyboard Shortcut" section: a recorder for each hot key and,
    // where the desktop will not bind them, how to bind Quillon's commands
    // in the desktop's own settings.
    void addHotKeyRows(HotKeyCenters &hotKeys, SystemStrings &strings);
    HotKeyRecorder *searchHotKey() const { return m_searchHotKey; }
    HotKeyRecorder *menuHotKey() const { return m_menuHotKey; }
    HotKeyRouteNotice *hotKeyRoute() const { return m_hotKeyRoute; }

private:
    void addLoginRow(SystemStrings &strings);
    void addUpdateRows(UpdateSettings &updates, SystemStrings &strings);
    void addRecentsRows(MenuStore &store, SystemStrings &strings);

    QFormLayout *m_form;
    HotKeyRecorder *m_searchHotKey = nullptr;
    HotKeyRecorder *m_menuHotKey = nullptr;
    HotKeyRouteNotice *m_hotKeyRoute = nullptr;
};
