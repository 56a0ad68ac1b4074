#pragma once

#include "settings/settingsservices.h"

#include <QWidget>

class ApplicationsPane;
class ContentPane;
class GeneralPane;
class HotKeyRecorder;
class MenusPane;
class QTabWidget;

// The settings window: general options, the user's menus, the content and
// layout of the status menu, and the applications with their favourites.
// Every tab edits the store directly and follows it, so there is nothing to
// apply or cancel. Remembers where it was.
class SettingsWindow : public QWidget
{
    Q_OBJECT

public:
    explicit SettingsWindow(SettingsServices services, QWidget *parent = nullptr);

    QTabWidget *tabs() const { return m_tabs; }
    GeneralPane *general() const { return m_general; }
    MenusPane *menus() const { return m_menus; }
    ContentPane *content() const { return m_content; }
    ApplicationsPane *applications() const { return m_applications; }
    HotKeyRecorder *searchHotKey() const { return m_searchHotKey; }
    HotKeyRecorder *menuHotKey() const { return m_menuHotKey; }
    // Shows the window in front, with the keyboard.
    void present();

protected:
    void hideEvent(QHideEvent *event) override;

private:
    SettingsServices m_services;
    QTabWidget *m_tabs;
    GeneralPane *m_general;
    MenusPane *m_menus;
    ContentPane *m_content;
    ApplicationsPane *m_applications;
    HotKeyRecorder *m_searchHotKey = nullptr;
    HotKeyRecorder *m_menuHotKey = nullptr;
};
