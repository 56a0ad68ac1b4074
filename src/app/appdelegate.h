#pragma once

#include "app/appservices.h"
#include "app/singleinstance.h"

#include <QObject>

#include <memory>

class SearchPanelController;
class SettingsWindow;
class UpdateWindow;
class StatusMenuController;
class TrayHostWatch;

// Owns everything the user sees and starts it in order: the shortcut
// library's first load, the tray icon and its menu, and on a launch by hand
// (not at login) the menu itself, once the panel has placed the icon.
class AppDelegate : public QObject
{
    Q_OBJECT

public:
    explicit AppDelegate(bool launchedAtLogin, QObject *parent = nullptr);
    ~AppDelegate() override;

    void start();
    // Another `quillon` was started, or asked for something.
    void handle(InstanceCommand command);

    AppServices &services() { return m_services; }
    StatusMenuController *statusMenu() const { return m_statusMenu.get(); }
    void showSettings();
    // The search hot key: shows the search panel, or closes it when shown.
    void toggleSearchPanel();

private:
    void finishLaunching();
    void installHotKeys();
    void openMenuWhenPlaced(int attempt);
    bool popsOwnMenu() const;
    void showMenuPanel();
    void showNoTrayNotice();
    MenuEntries menuCommands();
    UpdateWindow &updateWindow();
    SearchPanelController &searchPanel();

    bool m_launchedAtLogin;
    AppServices m_services;
    std::unique_ptr<TrayHostWatch> m_trayWatch;
    std::unique_ptr<StatusMenuController> m_statusMenu;
    std::unique_ptr<SettingsWindow> m_settings;
    std::unique_ptr<UpdateWindow> m_updateWindow;
    std::unique_ptr<SearchPanelController> m_searchPanel;
};
