#pragma once

#include "sources/menuentry.h"

#include <QStringList>

#include <map>
#include <memory>
#include <optional>

// Walks a menu one level at a time, as a keyboard would: the entries of the
// level shown, the titles of the levels above it, and the selected entry.
// A submenu is filled the first time it is entered and kept, so going back
// and in again reads nothing twice. Each level remembers its selection.
class MenuBrowser
{
public:
    MenuBrowser(const QString &title, MenuEntries entries);
    ~MenuBrowser();
    MenuBrowser(const MenuBrowser &) = delete;
    MenuBrowser &operator=(const MenuBrowser &) = delete;

    const MenuEntries &entries() const;
    // The titles from the top down to the level shown.
    QStringList path() const;
    int depth() const { return int(m_path.size()) - 1; }

    // An index into entries(), if anything there can be chosen.
    std::optional<int> selected() const;
    void select(int entry);
    // To the next (+1) or previous (-1) entry that can be chosen, stopping at
    // either end.
    void moveSelection(int step);

    // Shows the submenu at `entry`; false when it is no submenu.
    bool enter(int entry);
    // Back to the level above; false at the top.
    bool back();

    // Items that open, submenus and commands; not headings, lines or
    // disabled items.
    static bool canChoose(const MenuEntry &entry);

private:
    struct Level {
        QString title;
        MenuEntries entries;
        std::optional<int> selected;
        std::map<int, std::unique_ptr<Level>> submenus;
    };

    static std::optional<int> firstChoosable(const MenuEntries &entries);

    std::unique_ptr<Level> m_top;
    QList<Level *> m_path;
};
