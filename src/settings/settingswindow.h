#pragma once

#include "settings/settingsservices.h"

#include <QWidget>

class GeneralPane;
class HotKeyRecorder;
class QTabWidget;

// The settings window: general options, the user's menus, the content and
// layout of the status menu, and the applications with their favourites.
class SettingsWindow : public QWidget
{
    Q_OBJECT

public:
    explicit SettingsWindow(SettingsServices services, QWidget *parent = nullptr);

    QTabWidget *tabs() const { return m_tabs; }
    GeneralPane *general() const { return m_general; }
    HotKeyRecorder *searchHotKey() const { return m_searchHotKey; }
    HotKeyRecorder *menuHotKey() const { return m_menuHotKey; }
    // Shows the window in front, with the keyboard.
    void present();

private:
    QTabWidget *m_tabs;
    GeneralPane *m_general;
    HotKeyRecorder *m_searchHotKey = nullptr;
    HotKeyRecorder *m_menuHotKey = nullptr;
};
