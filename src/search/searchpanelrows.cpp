#include "search/searchpanelrows.h"

#include "platform/itemicons.h"
#include "search/searchpanelmodel.h"

#include <QPainter>
#include <QPainterPath>

SearchPanelRows::SearchPanelRows(SearchPanelModel *model, QObject *parent)
    : QAbstractListModel(parent)
    , m_model(model)
{
    connect(model, &SearchPanelModel::groupsChanged, this, &SearchPanelRows::rebuild);
    connect(model, &SearchPanelModel::selectionChanged, this, &SearchPanelRows::selectionMoved);
    rebuild();
}

int SearchPanelRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant SearchPanelRows::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Row &row = m_rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return row.title;
    case Qt::DecorationRole:
        return row.icon;
    case UrlRole:
        return row.url ? QVariant(*row.url) : QVariant();
    case IsHeaderRole:
        return row.kind == Kind::Heading;
    case IsSelectedRole:
        return isSelected(row);
    case KindRole:
        return int(row.kind);
    case EntryRole:
        return row.entry;
    case IsEnabledRole:
        return row.enabled;
    default:
        return {};
    }
}

bool SearchPanelRows::isSelected(const Row &row) const
{
    if (!m_model)
        return false;
    if (m_model->isBrowsing())
        return row.entry >= 0 && m_model->browser()->selected() == row.entry;
    return row.url && row.entry < 0 && row.url == m_model->selection();
}

QModelIndex SearchPanelRows::selectedIndex() const
{
    for (qsizetype i = 0; i < m_rows.size(); ++i) {
        if (isSelected(m_rows.at(i)))
            return index(int(i));
    }
    return {};
}

void SearchPanelRows::rebuild()
{
    beginResetModel();
    m_rows.clear();
    if (m_model->isBrowsing())
        addMenuLevel();
    else
        addGroups();
    endResetModel();
}

void SearchPanelRows::addGroups()
{
    for (const auto &group : m_model->groups()) {
        m_rows.append(Row{Kind::Heading, group.title, std::nullopt, {}});
        for (const auto &result : group.results)
            m_rows.append(Row{Kind::Item, result.title, result.url, iconFor(result.url, result.icon)});
    }
}

void SearchPanelRows::addMenuLevel()
{
    const MenuBrowser *browser = m_model->browser();
    // Where in the menu this is: the way back up reads from the left.
    m_rows.append(Row{Kind::Heading, browser->path().join(QStringLiteral("  \u203a  ")), std::nullopt, {}});
    const MenuEntries &entries = browser->entries();
    for (qsizetype i = 0; i < entries.size(); ++i) {
        const int entry = int(i);
        std::visit(
            [&](const auto &item) {
                using T = std::decay_t<decltype(item)>;
                if constexpr (std::is_same_v<T, OpenableEntry>) {
                    m_rows.append(Row{Kind::Item, item.title, item.url, iconFor(item.url, item.icon), entry,
                                      MenuBrowser::canChoose(entries.at(i))});
                } else if constexpr (std::is_same_v<T, SubmenuEntry>) {
                    m_rows.append(Row{Kind::Submenu, item.title, std::nullopt, drawnIcon(item.icon), entry});
                } else if constexpr (std::is_same_v<T, SectionEntry>) {
                    m_rows.append(Row{Kind::Heading, item.title, std::nullopt, {}});
                } else if constexpr (std::is_same_v<T, SeparatorEntry>) {
                    // As in a menu: never first, never two in a row.
                    if (m_rows.size() > 1 && m_rows.last().kind != Kind::Separator)
                        m_rows.append(Row{Kind::Separator, {}, std::nullopt, {}});
                } else {
                    m_rows.append(Row{Kind::Command, item.title, std::nullopt, {}, entry});
                }
            },
            static_cast<const MenuEntry::variant &>(entries.at(i)));
    }
    if (!m_rows.isEmpty() && m_rows.last().kind == Kind::Separator)
        m_rows.removeLast();
}

void SearchPanelRows::selectionMoved()
{
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1), {IsSelectedRole});
}

QIcon SearchPanelRows::iconFor(const QUrl &url, const std::optional<ItemIcon> &icon)
{
    if (url.isEmpty())
        return drawnIcon(icon);
    if (const auto cached = m_icons.constFind(url); cached != m_icons.constEnd())
        return *cached;
    // Shortcuts come without an icon; a generic one keeps the titles aligned
    // and says "this runs something".
    QIcon drawn = icon ? drawnIcon(*icon)
                       : QIcon::fromTheme(QStringLiteral("system-run"),
                                          QIcon::fromTheme(QStringLiteral("application-x-executable")));
    m_icons.insert(url, drawn);
    return drawn;
}

void SearchPanelDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QPalette &palette = option.palette;
    const QString title = index.data(Qt::DisplayRole).toString();
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);

    if (index.data(SearchPanelRows::IsHeaderRole).toBool()) {
        QFont font = option.font;
        font.setBold(true);
        font.setPointSizeF(font.pointSizeF() * 0.85);
        painter->setFont(font);
        QColor color = palette.color(QPalette::WindowText);
        color.setAlphaF(0.55);
        painter->setPen(color);
        const QRect text = option.rect.adjusted(20, 8, -20, -2);
        painter->drawText(text, Qt::AlignLeft | Qt::AlignVCenter,
                          QFontMetrics(font).elidedText(title, Qt::ElideRight, text.width()));
        painter->restore();
        return;
    }

    const auto kind = SearchPanelRows::Kind(index.data(SearchPanelRows::KindRole).toInt());
    if (kind == SearchPanelRows::Kind::Separator) {
        QColor line = palette.color(QPalette::WindowText);
        line.setAlphaF(0.12);
        const int y = option.rect.center().y();
        painter->fillRect(QRect(option.rect.left() + 20, y, option.rect.width() - 40, 1), line);
        painter->restore();
        return;
    }

    const bool selected = index.data(SearchPanelRows::IsSelectedRole).toBool();
    const bool enabled = index.data(SearchPanelRows::IsEnabledRole).toBool();
    const QRectF body = QRectF(option.rect).adjusted(8, 1, -8, -1);
    if (selected || (enabled && (option.state & QStyle::State_MouseOver))) {
        QColor fill = palette.color(QPalette::Highlight);
        if (!selected) {
            fill = palette.color(QPalette::WindowText);
            fill.setAlphaF(0.07);
        }
        QPainterPath path;
        path.addRoundedRect(body, 8, 8);
        painter->fillPath(path, fill);
    }

    const QRect iconRect(option.rect.left() + 20, option.rect.top() + (option.rect.height() - iconSize) / 2, iconSize,
                         iconSize);
    const QIcon icon = index.data(Qt::DecorationRole).value<QIcon>();
    icon.paint(painter, iconRect, Qt::AlignCenter, enabled ? QIcon::Normal : QIcon::Disabled);

    QFont font = option.font;
    font.setPointSizeF(font.pointSizeF() * 1.1);
    painter->setFont(font);
    QColor pen = palette.color(selected ? QPalette::HighlightedText : QPalette::WindowText);
    if (!enabled)
        pen.setAlphaF(0.4);
    painter->setPen(pen);
    int right = option.rect.right() - 20;
    if (kind == SearchPanelRows::Kind::Submenu) {
        // An arrow, as a menu draws one: this row leads somewhere.
        const QString arrow = QStringLiteral("\u203a");
        const int arrowWidth = QFontMetrics(font).horizontalAdvance(arrow);
        painter->drawText(QRect(right - arrowWidth, option.rect.top(), arrowWidth, option.rect.height()),
                          Qt::AlignRight | Qt::AlignVCenter, arrow);
        right -= arrowWidth + 12;
    }
    const QRect text(iconRect.right() + 14, option.rect.top(), right - (iconRect.right() + 14), option.rect.height());
    painter->drawText(text, Qt::AlignLeft | Qt::AlignVCenter,
                      QFontMetrics(font).elidedText(title, Qt::ElideRight, text.width()));
    painter->restore();
}

QSize SearchPanelDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    switch (SearchPanelRows::Kind(index.data(SearchPanelRows::KindRole).toInt())) {
    case SearchPanelRows::Kind::Heading:
        return QSize(option.rect.width(), headerHeight);
    case SearchPanelRows::Kind::Separator:
        return QSize(option.rect.width(), separatorHeight);
    default:
        return QSize(option.rect.width(), rowHeight);
    }
}
