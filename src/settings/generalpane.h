#pragma once

#include <QWidget>

class MenuStore;
class Preferences;
class QFormLayout;
class UpdateSettings;

// General options: start at login, the menu's search field, automatic
// update checks and how many recent items the menu shows.
class GeneralPane : public QWidget
{
    Q_OBJECT

public:
    GeneralPane(Preferences &preferences, MenuStore &store, UpdateSettings &updates, QWidget *parent = nullptr);

    // More rows (the keyboard shortcuts) go here.
    QFormLayout *form() const { return m_form; }

private:
    QFormLayout *m_form;
};
