#pragma once

#include <QWidget>

class HotKeyCenters;
class HotKeyRecorder;
class QTabWidget;

// The settings window: general options, the user's menus, the content and
// layout of the status menu, and the applications with their favourites.
class SettingsWindow : public QWidget
{
    Q_OBJECT

public:
    explicit SettingsWindow(HotKeyCenters &hotKeys, QWidget *parent = nullptr);

    QTabWidget *tabs() const { return m_tabs; }
    HotKeyRecorder *searchHotKey() const { return m_searchHotKey; }
    HotKeyRecorder *menuHotKey() const { return m_menuHotKey; }
    // Shows the window in front, with the keyboard.
    void present();

private:
    QWidget *makeGeneralTab(HotKeyCenters &hotKeys);

    QTabWidget *m_tabs;
    HotKeyRecorder *m_searchHotKey = nullptr;
    HotKeyRecorder *m_menuHotKey = nullptr;
};
