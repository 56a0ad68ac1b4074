#include "settings/menuitemsmodel.h"

#include "catalog/systemstrings.h"
#include "config/menustore.h"
#include "config/urls.h"
#include "platform/itemicons.h"
#include "sources/contentsources.h"
#include "sources/shortcutlibrary.h"
#include "sources/sourcetitles.h"

#include <QApplication>
#include <QFileInfo>
#include <QFont>
#include <QMimeData>
#include <QStyle>

namespace {

// Groups carry no parent; an item's internal id is its group's row plus one.
constexpr quintptr groupId = 0;

QString encodeRows(const QUuid &menu, const QString &what, const QList<int> &rows)
{
    QStringList parts{menu.toString(QUuid::WithoutBraces), what};
    for (const int row : rows)
        parts.append(QString::number(row));
    return parts.join(QLatin1Char(' '));
}

} // namespace

MenuItemsModel::MenuItemsModel(const ContentSources &sources, QObject *parent)
    : QAbstractItemModel(parent)
    , m_sources(sources)
{
    connect(&sources.context().store, &MenuStore::menusChanged, this, &MenuItemsModel::reload);
    connect(&sources.context().shortcuts, &ShortcutLibrary::snapshotChanged, this, &MenuItemsModel::reload);
    // The first answer may list nothing new, yet tells which shortcuts are gone.
    connect(&sources.context().shortcuts, &ShortcutLibrary::hasLoadedChanged, this, &MenuItemsModel::reload);
}

void MenuItemsModel::setMenu(const QUuid &id)
{
    if (id == m_menu)
        return;
    beginResetModel();
    m_menu = id;
    m_groups = load();
    endResetModel();
}

QList<MenuItemsModel::Group> MenuItemsModel::load() const
{
    const auto menu = m_sources.context().store.menu(m_menu);
    if (!menu)
        return {};
    QList<Group> groups;
    for (const auto kind : MenuStore::groupOrder(*menu)) {
        Group group{kind, {}};
        for (const QUrl &url : MenuStore::urls(kind, *menu))
            group.items.append(describe(kind, url));
        if (!group.items.isEmpty())
            groups.append(group);
    }
    return groups;
}

MenuItemsModel::Item MenuItemsModel::describe(MenuItemKind kind, const QUrl &url) const
{
    if (const auto described = m_sources.describe(url))
        return Item{url, described->title, drawnIcon(described->icon), false};
    Item item{url, url.toDisplayString(), QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning), true};
    if (kind == MenuItemKind::Files || kind == MenuItemKind::Apps) {
        item.title = folderTitle(url);
    } else if (const auto id = shortcutID(url)) {
        item.title = *id;
        // Until the shortcuts tool has answered, a shortcut is not known to be gone.
        if (!m_sources.context().shortcuts.hasLoaded()) {
            item.unavailable = false;
            item.icon = drawnIcon(ItemIcon{NamedIcon{QStringLiteral("system-run")}});
        }
    }
    return item;
}

// Rows keep their selection across a move: when the menu still holds the
// same groups and items, only their places change.
void MenuItemsModel::reload()
{
    QList<Group> groups = load();
    const auto identities = [](const QList<Group> &list) {
        QSet<QString> keys;
        for (const auto &group : list) {
            keys.insert(enumToString(group.kind));
            for (const auto &item : group.items)
                keys.insert(enumToString(group.kind) + QLatin1Char(' ') + item.url.toString());
        }
        return keys;
    };
    if (identities(groups) != identities(m_groups)) {
        beginResetModel();
        m_groups = groups;
        endResetModel();
        return;
    }
    Q_EMIT layoutAboutToBeChanged();
    const QList<Group> old = std::exchange(m_groups, groups);
    QModelIndexList from = persistentIndexList();
    QModelIndexList to;
    for (const QModelIndex &index : from) {
        if (index.internalId() == groupId) {
            to.append(groupIndex(old.at(index.row()).kind));
        } else {
            const Group &group = old.at(int(index.internalId() - 1));
            to.append(itemIndex(group.items.at(index.row()).url));
        }
    }
    changePersistentIndexList(from, to);
    Q_EMIT layoutChanged();
}

QModelIndex MenuItemsModel::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    return createIndex(row, column, parent.isValid() ? quintptr(parent.row() + 1) : groupId);
}

QModelIndex MenuItemsModel::parent(const QModelIndex &child) const
{
    if (!child.isValid() || child.internalId() == groupId)
        return {};
    return createIndex(int(child.internalId() - 1), 0, groupId);
}

int MenuItemsModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return int(m_groups.size());
    if (parent.internalId() != groupId || parent.column() != 0)
        return 0;
    return int(m_groups.at(parent.row()).items.size());
}

int MenuItemsModel::columnCount(const QModelIndex &) const
{
    return 1;
}

QString MenuItemsModel::groupTitle(MenuItemKind kind) const
{
    SystemStrings &strings = m_sources.context().strings;
    switch (kind) {
    case MenuItemKind::Apps:
        return m_sources.title(MenuSource::applications());
    case MenuItemKind::Files:
        return strings.text(SystemString::FilesAndFolders);
    case MenuItemKind::Shortcuts:
        return m_sources.title(MenuSource::shortcuts());
    case MenuItemKind::Settings:
        return strings.text(SystemString::SystemSettings);
    }
    return {};
}

QVariant MenuItemsModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    if (index.internalId() == groupId) {
        const Group &group = m_groups.at(index.row());
        switch (role) {
        case Qt::DisplayRole:
        case Qt::AccessibleTextRole:
            return groupTitle(group.kind);
        case KindRole:
            return QVariant::fromValue(group.kind);
        case Qt::FontRole: {
            // Groups read as headings over their items.
            QFont font = QApplication::font();
            font.setBold(true);
            return font;
        }
        default:
            return {};
        }
    }
    const Group &group = m_groups.at(int(index.internalId() - 1));
    const Item &item = group.items.at(index.row());
    const QString unavailable = m_sources.context().strings.text(SystemString::ItemUnavailable);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return item.title;
    case Qt::DecorationRole:
        return item.icon;
    case Qt::ToolTipRole:
    case Qt::AccessibleDescriptionRole:
        return item.unavailable ? unavailable : item.url.toDisplayString(QUrl::PreferLocalFile);
    case UrlRole:
        return item.url;
    case KindRole:
        return QVariant::fromValue(group.kind);
    case UnavailableRole:
        return item.unavailable;
    default:
        return {};
    }
}

Qt::ItemFlags MenuItemsModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    const bool isGroup = index.internalId() == groupId;
    const MenuItemKind kind = m_groups.at(isGroup ? index.row() : int(index.internalId() - 1)).kind;
    if (isGroup)
        flags |= Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
    else if (kind == MenuItemKind::Settings)
        flags |= Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled | Qt::ItemNeverHasChildren;
    else
        flags |= Qt::ItemNeverHasChildren;
    return flags;
}

Qt::DropActions MenuItemsModel::supportedDropActions() const
{
    return Qt::MoveAction;
}

QStringList MenuItemsModel::mimeTypes() const
{
    return {QString::fromLatin1(mimeType)};
}

QMimeData *MenuItemsModel::mimeData(const QModelIndexList &indexes) const
{
    QList<int> groups;
    QList<int> settings;
    for (const QModelIndex &index : indexes) {
        if (!checkIndex(index, CheckIndexOption::IndexIsValid))
            return nullptr;
        if (index.internalId() == groupId)
            groups.append(index.row());
        else if (m_groups.at(int(index.internalId() - 1)).kind == MenuItemKind::Settings)
            settings.append(index.row());
        else
            return nullptr;
    }
    // Groups and places do not move together.
    if (groups.isEmpty() == settings.isEmpty())
        return nullptr;
    auto *data = new QMimeData;
    const QString text = groups.isEmpty() ? encodeRows(m_menu, QStringLiteral("settings"), settings)
                                          : encodeRows(m_menu, QStringLiteral("groups"), groups);
    data->setData(QString::fromLatin1(mimeType), text.toUtf8());
    return data;
}

std::optional<std::pair<std::optional<MenuItemKind>, QList<int>>> MenuItemsModel::decode(const QMimeData *data) const
{
    if (!data || !data->hasFormat(QString::fromLatin1(mimeType)))
        return std::nullopt;
    const QStringList parts = QString::fromUtf8(data->data(QString::fromLatin1(mimeType))).split(QLatin1Char(' '));
    if (parts.size() < 3 || QUuid::fromString(parts.at(0)) != m_menu)
        return std::nullopt;
    std::optional<MenuItemKind> kind;
    if (parts.at(1) == QLatin1String("settings"))
        kind = MenuItemKind::Settings;
    else if (parts.at(1) != QLatin1String("groups"))
        return std::nullopt;
    QList<int> rows;
    for (const QString &part : parts.mid(2)) {
        bool ok = false;
        rows.append(part.toInt(&ok));
        if (!ok)
            return std::nullopt;
    }
    return std::pair{kind, rows};
}

std::optional<int> MenuItemsModel::dropRow(std::optional<MenuItemKind> dragged, int row,
                                           const QModelIndex &parent) const
{
    if (!dragged) {
        if (!parent.isValid())
            return row < 0 ? rowCount() : row;
        // On a group's heading: before it; among its items: after it.
        if (parent.internalId() == groupId)
            return row < 0 ? parent.row() : parent.row() + 1;
        return std::nullopt;
    }
    const QModelIndex settings = groupIndex(MenuItemKind::Settings);
    if (!settings.isValid())
        return std::nullopt;
    if (parent == settings)
        return row < 0 ? rowCount(settings) : row;
    // Dropped on a place: before it.
    if (parent.parent() == settings && row < 0)
        return parent.row();
    return std::nullopt;
}

bool MenuItemsModel::canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int,
                                     const QModelIndex &parent) const
{
    const auto decoded = decode(data);
    return action == Qt::MoveAction && decoded && dropRow(decoded->first, row, parent).has_value();
}

bool MenuItemsModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int, const QModelIndex &parent)
{
    const auto decoded = decode(data);
    if (action != Qt::MoveAction || !decoded)
        return false;
    const auto destination = dropRow(decoded->first, row, parent);
    if (!destination)
        return false;
    return decoded->first ? moveSettings(decoded->second, *destination) : moveGroups(decoded->second, *destination);
}

QModelIndex MenuItemsModel::groupIndex(MenuItemKind kind) const
{
    for (int row = 0; row < m_groups.size(); ++row) {
        if (m_groups.at(row).kind == kind)
            return index(row, 0);
    }
    return {};
}

QModelIndex MenuItemsModel::itemIndex(const QUrl &url) const
{
    for (int row = 0; row < m_groups.size(); ++row) {
        const auto &items = m_groups.at(row).items;
        for (int item = 0; item < items.size(); ++item) {
            if (items.at(item).url == url)
                return index(item, 0, index(row, 0));
        }
    }
    return {};
}

bool MenuItemsModel::moveGroups(const QList<int> &rows, int destination)
{
    if (m_groups.isEmpty() || rows.isEmpty())
        return false;
    QList<MenuItemKind> visible;
    for (const auto &group : std::as_const(m_groups))
        visible.append(group.kind);
    m_sources.context().store.moveGroups(m_menu, visible, rows, destination);
    return true;
}

bool MenuItemsModel::moveSettings(const QList<int> &rows, int destination)
{
    if (!groupIndex(MenuItemKind::Settings).isValid() || rows.isEmpty())
        return false;
    m_sources.context().store.moveSettings(m_menu, rows, destination);
    return true;
}

void MenuItemsModel::remove(const QModelIndexList &indexes)
{
    QList<QUrl> urls;
    for (const QModelIndex &index : indexes) {
        if (!checkIndex(index, CheckIndexOption::IndexIsValid))
            continue;
        if (index.internalId() == groupId) {
            for (const auto &item : m_groups.at(index.row()).items)
                urls.append(item.url);
        } else {
            urls.append(m_groups.at(int(index.internalId() - 1)).items.at(index.row()).url);
        }
    }
    if (urls.isEmpty())
        return;
    // One change, so the menu is saved once and the URLs go exactly as stored.
    m_sources.context().store.updateMenu(m_menu, [&urls](CustomMenu &menu) {
        menu.urls.removeIf([&urls](const QUrl &url) { return urls.contains(url); });
    });
}
