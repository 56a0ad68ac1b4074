#pragma once

#include <QUuid>
#include <QWidget>

class ContentSources;
class SystemStrings;

// One button per kind of item a custom menu holds, each adding that kind:
// the file chooser for files and folders, a list with check boxes for
// applications, shortcuts and settings places. Changes go to the store at
// once.
class AddItemButtons : public QWidget
{
    Q_OBJECT

public:
    explicit AddItemButtons(const ContentSources &sources, QWidget *parent = nullptr);

    // The menu that items are added to.
    void setMenu(const QUuid &id) { m_menu = id; }

private:
    void addFiles();
    void addFolder();
    void chooseSettings();
    void chooseApplications();
    void chooseShortcuts();

    const ContentSources &m_sources;
    SystemStrings &m_strings;
    QUuid m_menu;
};
