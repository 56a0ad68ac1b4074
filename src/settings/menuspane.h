#pragma once

#include "settings/settingsservices.h"

#include <QUuid>
#include <QWidget>

class AddItemButtons;
class CustomMenusModel;
class MenuItemsModel;
class QLabel;
class QLineEdit;
class QListView;
class QStackedWidget;
class QToolButton;
class QTreeView;
class SystemStrings;

// The user's own menus: the list of them on the left; on the right the
// chosen one's name, symbol and colour, and its items by group, with ways to
// add each kind of item. Every change goes to the store at once.
class MenusPane : public QWidget
{
    Q_OBJECT

public:
    explicit MenusPane(const SettingsServices &services, QWidget *parent = nullptr);
    ~MenusPane() override;

    // The menu being edited; null when none is chosen.
    QUuid currentMenu() const { return m_current; }
    void selectMenu(const QUuid &id);

private:
    QWidget *makeList();
    QWidget *makeEditor();
    void showCurrent();
    void commitName();
    void addMenu();
    void deleteMenu();
    void duplicateMenu();
    void chooseSymbol();
    void removeItems();
    // Moves the chosen group, or settings place, one place up or down.
    void moveItem(int step);

    const SettingsServices m_services;
    SystemStrings &m_strings;
    CustomMenusModel *m_menus;
    MenuItemsModel *m_itemsModel;
    QUuid m_current;

    QListView *m_list = nullptr;
    QToolButton *m_delete = nullptr;
    QToolButton *m_duplicate = nullptr;
    QStackedWidget *m_detail = nullptr;
    QLineEdit *m_name = nullptr;
    QToolButton *m_symbol = nullptr;
    QToolButton *m_color = nullptr;
    QStackedWidget *m_itemsStack = nullptr;
    QTreeView *m_items = nullptr;
    QToolButton *m_remove = nullptr;
    AddItemButtons *m_addItems = nullptr;
};
