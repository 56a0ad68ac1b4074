#include "config/layout.h"

std::optional<QUuid> MenuSource::uuid() const
{
    if (const auto *id = std::get_if<QUuid>(&m_payload))
        return *id;
    return std::nullopt;
}

std::optional<ShortcutRef> MenuSource::shortcutRef() const
{
    if (const auto *ref = std::get_if<ShortcutRef>(&m_payload))
        return *ref;
    return std::nullopt;
}

size_t qHash(const ShortcutRef &ref, size_t seed) noexcept
{
    return qHashMulti(seed, ref.id, ref.name);
}

size_t qHash(const MenuSource &source, size_t seed) noexcept
{
    seed = qHash(int(source.kind()), seed);
    if (const auto id = source.uuid())
        return qHash(*id, seed);
    if (const auto ref = source.shortcutRef())
        return qHash(*ref, seed);
    return seed;
}

size_t qHash(const LayoutEntry &entry, size_t seed) noexcept
{
    return qHashMulti(seed, entry.source, int(entry.style));
}

size_t qHash(const CustomMenu &menu, size_t seed) noexcept
{
    seed = qHashMulti(seed, menu.id, menu.name, qHashRange(menu.urls.begin(), menu.urls.end()));
    if (menu.groupOrder) {
        for (const auto kind : *menu.groupOrder)
            seed = qHash(int(kind), seed);
    }
    seed = qHash(menu.symbol.value_or(QString()), seed);
    return qHash(menu.color ? int(*menu.color) : -1, seed);
}

size_t qHash(const FolderSource &folder, size_t seed) noexcept
{
    return qHashMulti(seed, folder.id, folder.url, int(folder.sort));
}

size_t qHash(const DraggedSource &dragged, size_t seed) noexcept
{
    return qHash(dragged.source, seed);
}
