#include "search/menubrowser.h"

MenuBrowser::MenuBrowser(const QString &title, MenuEntries entries)
    : m_top(std::make_unique<Level>())
{
    m_top->title = title;
    m_top->entries = std::move(entries);
    m_top->selected = firstChoosable(m_top->entries);
    m_path.append(m_top.get());
}

MenuBrowser::~MenuBrowser() = default;

const MenuEntries &MenuBrowser::entries() const
{
    return m_path.last()->entries;
}

QStringList MenuBrowser::path() const
{
    QStringList titles;
    for (const Level *level : m_path)
        titles.append(level->title);
    return titles;
}

std::optional<int> MenuBrowser::selected() const
{
    return m_path.last()->selected;
}

bool MenuBrowser::canChoose(const MenuEntry &entry)
{
    if (const auto *item = std::get_if<OpenableEntry>(&entry))
        return item->enabled && !item->url.isEmpty();
    return std::holds_alternative<SubmenuEntry>(entry) || std::holds_alternative<CommandEntry>(entry);
}

std::optional<int> MenuBrowser::firstChoosable(const MenuEntries &entries)
{
    for (qsizetype i = 0; i < entries.size(); ++i) {
        if (canChoose(entries.at(i)))
            return int(i);
    }
    return std::nullopt;
}

void MenuBrowser::select(int entry)
{
    const MenuEntries &shown = entries();
    if (entry >= 0 && entry < shown.size() && canChoose(shown.at(entry)))
        m_path.last()->selected = entry;
}

void MenuBrowser::moveSelection(int step)
{
    const MenuEntries &shown = entries();
    const std::optional<int> current = selected();
    if (!current)
        return;
    for (int i = *current + step; i >= 0 && i < shown.size(); i += step) {
        if (canChoose(shown.at(i))) {
            m_path.last()->selected = i;
            return;
        }
    }
}

bool MenuBrowser::enter(int entry)
{
    Level *level = m_path.last();
    if (entry < 0 || entry >= level->entries.size())
        return false;
    const auto *submenu = std::get_if<SubmenuEntry>(&level->entries.at(entry));
    if (!submenu)
        return false;
    level->selected = entry;
    auto &child = level->submenus[entry];
    if (!child) {
        child = std::make_unique<Level>();
        child->title = submenu->title;
        if (submenu->fill)
            child->entries = submenu->fill();
        child->selected = firstChoosable(child->entries);
    }
    m_path.append(child.get());
    return true;
}

bool MenuBrowser::back()
{
    if (m_path.size() < 2)
        return false;
    m_path.removeLast();
    return true;
}
