#pragma once

#include <QWidget>

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

    // More rows (the keyboard shortcuts) go here.
    QFormLayout *form() const { return m_form; }
    // A bold line over the rows that follow.
    void addHeading(const QString &text);

private:
    void addLoginRow(SystemStrings &strings);
    void addUpdateRows(UpdateSettings &updates, SystemStrings &strings);
    void addRecentsRows(MenuStore &store, SystemStrings &strings);

    QFormLayout *m_form;
};
