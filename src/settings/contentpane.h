#pragma once

#include "config/layout.h"
#include "settings/settingsservices.h"

#include <QWidget>

class LayoutModel;
class QComboBox;
class QPushButton;
class QMenu;
class QTreeView;

// The layout of the status menu: one row per source in menu order, each
// shown inline ("Menu"), as a submenu or not at all. Rows reorder by drag or
// from the keyboard (Alt+Up, Alt+Down); "Show" sets the style of the selected
// rows, so the whole tab works without a mouse. Folders, shortcuts and
// separators are added and removed here.
class ContentPane : public QWidget
{
    Q_OBJECT

public:
    explicit ContentPane(const SettingsServices &services, QWidget *parent = nullptr);

    QTreeView *view() const { return m_view; }
    LayoutModel *model() const { return m_model; }

private:
    void selectionChanged();
    void applyStyle();
    void moveSelected(int step);
    void removeSelected();
    void fillShortcutMenu();
    void fillOptionsMenu();
    QList<MenuSource> selectedSources() const;
    void select(const QList<MenuSource> &sources);

    SettingsServices m_services;
    LayoutModel *m_model;
    QTreeView *m_view;
    QComboBox *m_style;
    QPushButton *m_addShortcut;
    QMenu *m_shortcutMenu;
    QPushButton *m_remove;
    QPushButton *m_options;
    QMenu *m_optionsMenu;
    QList<MenuSource> m_keptSelection;
};
