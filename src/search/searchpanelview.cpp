#include "search/searchpanelview.h"

#include "search/searchpanelmodel.h"
#include "search/searchpanelnotice.h"
#include "search/searchpanelrows.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QScrollBar>
#include <QVBoxLayout>

namespace {

constexpr int listPadding = 6;
constexpr int emptyHeight = 48;

QIcon searchIcon()
{
    return QIcon::fromTheme(QStringLiteral("edit-find-symbolic"), QIcon::fromTheme(QStringLiteral("edit-find")));
}

} // namespace

SearchPanelView::SearchPanelView(SearchPanelModel *model, const QString &placeholder, const QString &emptyText,
                                 QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_field(new QLineEdit(this))
    , m_divider(new QWidget(this))
    , m_list(new QListView(this))
    , m_empty(new QLabel(emptyText, this))
    , m_rows(new SearchPanelRows(model, this))
{
    // The panel paints its own body; everything on it is see-through.
    QPalette clear = palette();
    clear.setColor(QPalette::Base, Qt::transparent);

    m_field->setPlaceholderText(placeholder);
    m_field->setFrame(false);
    m_field->setPalette(clear);
    QFont large = m_field->font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    m_field->setFont(large);
    m_field->setTextMargins(6, 0, 0, 0);
    if (const QIcon icon = searchIcon(); !icon.isNull())
        m_field->addAction(icon, QLineEdit::LeadingPosition);
    auto *fieldRow = new QWidget(this);
    fieldRow->setFixedHeight(fieldHeight);
    auto *fieldLayout = new QVBoxLayout(fieldRow);
    fieldLayout->setContentsMargins(16, 0, 20, 0);
    fieldLayout->addWidget(m_field, 0, Qt::AlignVCenter);

    m_divider->setFixedHeight(1);
    m_divider->setAutoFillBackground(true);
    QPalette line = palette();
    QColor lineColor = line.color(QPalette::WindowText);
    lineColor.setAlphaF(0.12);
    line.setColor(QPalette::Window, lineColor);
    m_divider->setPalette(line);

    m_list->setModel(m_rows);
    m_list->setItemDelegate(new SearchPanelDelegate(m_list));
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setPalette(clear);
    m_list->viewport()->setAutoFillBackground(false);
    m_list->viewport()->setAttribute(Qt::WA_Hover);
    m_list->setMouseTracking(true);
    m_list->setSelectionMode(QAbstractItemView::NoSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // The field keeps the keyboard; the list is only pointed at and clicked.
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setContentsMargins(0, listPadding, 0, listPadding);
    connect(m_list, &QListView::clicked, this, &SearchPanelView::rowClicked);

    QColor dim = m_empty->palette().color(QPalette::WindowText);
    dim.setAlphaF(0.55);
    QPalette emptyPalette = m_empty->palette();
    emptyPalette.setColor(QPalette::WindowText, dim);
    m_empty->setPalette(emptyPalette);
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setFixedHeight(emptyHeight);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(fieldRow);
    layout->addWidget(m_divider);
    layout->addWidget(m_list);
    layout->addWidget(m_empty);
    layout->addStretch();

    connect(m_field, &QLineEdit::textChanged, model, &SearchPanelModel::setQuery);
    connect(model, &SearchPanelModel::groupsChanged, this, &SearchPanelView::showResults);
    connect(model, &SearchPanelModel::selectionChanged, this, &SearchPanelView::revealSelection);
    showResults();
}

void SearchPanelView::rowClicked(const QModelIndex &index)
{
    // The second click of a double click lands on whatever the first one
    // brought up; one act per double click.
    if (m_sinceLevelChange.isValid() && m_sinceLevelChange.elapsed() < QApplication::doubleClickInterval())
        return;
    const int entry = index.data(SearchPanelRows::EntryRole).toInt();
    if (entry >= 0) {
        if (index.data(SearchPanelRows::IsEnabledRole).toBool()) {
            m_sinceLevelChange.start();
            Q_EMIT entryActivated(entry);
        }
        return;
    }
    const QUrl url = index.data(SearchPanelRows::UrlRole).toUrl();
    if (!url.isEmpty())
        Q_EMIT openRequested(url);
}

void SearchPanelView::setNotice(const PanelNotice &notice)
{
    if (m_notice) {
        // Later: a notice's own button may be what replaces it.
        m_notice->hide();
        layout()->removeWidget(m_notice);
        m_notice->deleteLater();
    }
    m_notice = new SearchPanelNotice(notice, this);
    m_notice->setFixedHeight(m_notice->hasHeightForWidth() ? m_notice->heightForWidth(width)
                                                           : m_notice->sizeHint().height());
    static_cast<QVBoxLayout *>(layout())->insertWidget(0, m_notice);
    Q_EMIT contentSizeChanged(contentSize());
}

int SearchPanelView::fixedHeight() const
{
    return (m_notice ? m_notice->minimumHeight() : 0) + fieldHeight + 1;
}

void SearchPanelView::setMaxResultsHeight(int height)
{
    m_maxResultsHeight = std::max(0, height);
    showResults();
}

QSize SearchPanelView::contentSize() const
{
    int height = (m_notice ? m_notice->minimumHeight() : 0) + fieldHeight;
    if (m_list->isVisibleTo(this) || m_empty->isVisibleTo(this))
        height += 1;
    if (m_list->isVisibleTo(this))
        height += m_resultsHeight;
    if (m_empty->isVisibleTo(this))
        height += emptyHeight;
    return QSize(width, height);
}

int SearchPanelView::resultsHeight() const
{
    int rows = 0;
    for (int row = 0; row < m_rows->rowCount(); ++row)
        rows += m_list->sizeHintForRow(row);
    return std::min(m_maxResultsHeight, rows + 2 * listPadding);
}

void SearchPanelView::showResults()
{
    const bool hasResults = m_rows->rowCount() > 0;
    const bool browsing = m_model->isBrowsing();
    const bool nothingFound =
        browsing ? m_model->browser()->entries().isEmpty() : !hasResults && !m_model->query().trimmed().isEmpty();
    m_list->setVisible(hasResults);
    m_empty->setVisible(nothingFound);
    m_divider->setVisible(hasResults || nothingFound);
    m_resultsHeight = hasResults ? resultsHeight() : 0;
    if (hasResults)
        m_list->setFixedHeight(m_resultsHeight);
    revealSelection();
    Q_EMIT contentSizeChanged(contentSize());
}

void SearchPanelView::revealSelection()
{
    const QModelIndex selected = m_rows->selectedIndex();
    if (!selected.isValid())
        return;
    // Entering a group from above, or the first row of the list: show its
    // heading too.
    const QModelIndex above = selected.siblingAtRow(selected.row() - 1);
    if (above.isValid() && above.data(SearchPanelRows::IsHeaderRole).toBool())
        m_list->scrollTo(above);
    m_list->scrollTo(selected);
}
