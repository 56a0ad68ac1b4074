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
        return row.title;
    case Qt::DecorationRole:
        return row.icon;
    case UrlRole:
        return row.url ? QVariant(*row.url) : QVariant();
    case IsHeaderRole:
        return !row.url.has_value();
    case IsSelectedRole:
        return row.url && m_model && row.url == m_model->selection();
    default:
        return {};
    }
}

QModelIndex SearchPanelRows::selectedIndex() const
{
    const int row = m_model ? rowOf(m_model->selection()) : -1;
    return row < 0 ? QModelIndex() : index(row);
}

void SearchPanelRows::rebuild()
{
    beginResetModel();
    m_rows.clear();
    for (const auto &group : m_model->groups()) {
        m_rows.append(Row{group.title, std::nullopt, {}});
        for (const auto &result : group.results)
            m_rows.append(Row{result.title, result.url, iconFor(result)});
    }
    m_painted = m_model->selection();
    endResetModel();
}

void SearchPanelRows::selectionMoved()
{
    for (const int row : {rowOf(m_painted), rowOf(m_model->selection())}) {
        if (row >= 0)
            Q_EMIT dataChanged(index(row), index(row), {IsSelectedRole});
    }
    m_painted = m_model->selection();
}

int SearchPanelRows::rowOf(const std::optional<QUrl> &url) const
{
    if (!url)
        return -1;
    for (qsizetype i = 0; i < m_rows.size(); ++i) {
        if (m_rows.at(i).url == url)
            return int(i);
    }
    return -1;
}

QIcon SearchPanelRows::iconFor(const SearchResult &result)
{
    if (const auto cached = m_icons.constFind(result.url); cached != m_icons.constEnd())
        return *cached;
    // Shortcuts come without an icon; a generic one keeps the titles aligned
    // and says "this runs something".
    QIcon icon = result.icon ? drawnIcon(*result.icon)
                             : QIcon::fromTheme(QStringLiteral("system-run"),
                                                QIcon::fromTheme(QStringLiteral("application-x-executable")));
    m_icons.insert(result.url, icon);
    return icon;
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

    const bool selected = index.data(SearchPanelRows::IsSelectedRole).toBool();
    const QRectF body = QRectF(option.rect).adjusted(8, 1, -8, -1);
    if (selected || (option.state & QStyle::State_MouseOver)) {
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
    icon.paint(painter, iconRect, Qt::AlignCenter);

    QFont font = option.font;
    font.setPointSizeF(font.pointSizeF() * 1.1);
    painter->setFont(font);
    painter->setPen(palette.color(selected ? QPalette::HighlightedText : QPalette::WindowText));
    const QRect text(iconRect.right() + 14, option.rect.top(), option.rect.right() - 20 - (iconRect.right() + 14),
                     option.rect.height());
    painter->drawText(text, Qt::AlignLeft | Qt::AlignVCenter,
                      QFontMetrics(font).elidedText(title, Qt::ElideRight, text.width()));
    painter->restore();
}

QSize SearchPanelDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const bool header = index.data(SearchPanelRows::IsHeaderRole).toBool();
    return QSize(option.rect.width(), header ? headerHeight : rowHeight);
}
