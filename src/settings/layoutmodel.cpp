#include "settings/layoutmodel.h"

#include "catalog/systemstrings.h"
#include "config/layoutcodec.h"
#include "config/menustore.h"
#include "platform/itemicons.h"
#include "sources/contentsources.h"

#include <QApplication>
#include <QMimeData>
#include <QStyle>

namespace {

bool isRemovable(const MenuSource &source)
{
    switch (source.kind()) {
    case MenuSource::Case::Folder:
    case MenuSource::Case::ShortcutFolder:
    case MenuSource::Case::Shortcut:
    case MenuSource::Case::Separator:
        return true;
    default:
        // Built-in sources can only be hidden; custom menus are deleted
        // where they are edited.
        return false;
    }
}

} // namespace

LayoutModel::LayoutModel(MenuStore &store, const ContentSources &sources, QObject *parent)
    : QAbstractTableModel(parent)
    , m_store(store)
    , m_sources(sources)
    , m_layout(store.layout())
{
    // Titles and icons change with the menus and folders they name.
    for (const auto signal : {&MenuStore::layoutChanged, &MenuStore::menusChanged, &MenuStore::foldersChanged}) {
        connect(&store, signal, this, [this] {
            beginResetModel();
            m_layout = m_store.layout();
            endResetModel();
        });
    }
}

int LayoutModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_layout.size());
}

int LayoutModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

MenuSource LayoutModel::source(int row) const
{
    return m_layout.at(row).source;
}

QString LayoutModel::styleName(SourceStyle style) const
{
    SystemStrings &strings = m_sources.context().strings;
    switch (style) {
    case SourceStyle::Inline:
        return strings.text(SystemString::Menu);
    case SourceStyle::Submenu:
        return strings.text(SystemString::Submenu);
    case SourceStyle::Hidden:
        return strings.text(SystemString::DontShow);
    }
    return {};
}

QVariant LayoutModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const LayoutEntry &entry = m_layout.at(index.row());
    const MenuSource &source = entry.source;
    const bool separator = source.kind() == MenuSource::Case::Separator;
    const bool available = m_sources.isAvailable(source);
    switch (role) {
    case Qt::DisplayRole:
        if (index.column() == StyleColumn)
            return separator ? QVariant() : styleName(entry.style);
        return separator ? m_sources.context().strings.text(SystemString::Separator) : m_sources.title(source);
    case Qt::EditRole:
        return index.column() == StyleColumn ? QVariant(int(entry.style)) : QVariant();
    case Qt::DecorationRole:
        if (index.column() != TitleColumn)
            return {};
        if (!available)
            return qApp->style()->standardIcon(QStyle::SP_MessageBoxWarning);
        return drawnIcon(m_sources.icon(source));
    case Qt::ToolTipRole:
    case Qt::AccessibleDescriptionRole:
        return available ? QVariant() : m_sources.context().strings.text(SystemString::NotAvailable);
    case SourceRole:
        return QVariant::fromValue(source);
    case IsRemovableRole:
        return isRemovable(source);
    case IsAvailableRole:
        return available;
    default:
        return {};
    }
}

bool LayoutModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || index.column() != StyleColumn
        || !checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return false;
    const int style = value.toInt();
    if (style < int(SourceStyle::Inline) || style > int(SourceStyle::Hidden))
        return false;
    m_store.setStyle(SourceStyle(style), source(index.row()));
    return true;
}

Qt::ItemFlags LayoutModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
    if (index.column() == StyleColumn && source(index.row()).kind() != MenuSource::Case::Separator)
        flags |= Qt::ItemIsEditable;
    return flags;
}

QStringList LayoutModel::mimeTypes() const
{
    return {QLatin1String(DraggedSource::mimeType)};
}

QMimeData *LayoutModel::mimeData(const QModelIndexList &indexes) const
{
    QList<int> rows;
    for (const auto &index : indexes) {
        if (index.isValid() && !rows.contains(index.row()))
            rows.append(index.row());
    }
    std::sort(rows.begin(), rows.end());
    // One DraggedSource per line, in layout order.
    QByteArrayList lines;
    for (const int row : std::as_const(rows))
        lines.append(dragData(DraggedSource{source(row)}));
    auto *data = new QMimeData;
    data->setData(QLatin1String(DraggedSource::mimeType), lines.join('\n'));
    return data;
}

QList<MenuSource> LayoutModel::draggedSources(const QMimeData *data) const
{
    QList<MenuSource> sources;
    if (!data)
        return sources;
    for (const QByteArray &line : data->data(QLatin1String(DraggedSource::mimeType)).split('\n')) {
        if (const auto dragged = draggedSource(line); dragged.ok())
            sources.append(dragged.value().source);
    }
    return sources;
}

bool LayoutModel::canDropMimeData(const QMimeData *data, Qt::DropAction action, int, int, const QModelIndex &) const
{
    return action == Qt::MoveAction && !draggedSources(data).isEmpty();
}

bool LayoutModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int, const QModelIndex &parent)
{
    const QList<MenuSource> sources = draggedSources(data);
    if (action != Qt::MoveAction || sources.isEmpty())
        return false;
    // Dropped onto a row: in front of it; between rows: at that row.
    if (row < 0 && parent.isValid())
        row = parent.row();
    std::optional<MenuSource> before;
    // The first row at or after the drop point that does not move itself.
    for (int r = std::max(row, 0); row >= 0 && r < rowCount(); ++r) {
        if (!sources.contains(source(r))) {
            before = source(r);
            break;
        }
    }
    m_store.move(sources, before);
    // The store has moved the rows; nothing is left for the view to remove.
    return false;
}

Qt::DropActions LayoutModel::supportedDropActions() const
{
    return Qt::MoveAction;
}
