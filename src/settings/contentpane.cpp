#include "settings/contentpane.h"

#include "catalog/systemstrings.h"
#include "config/menustore.h"
#include "settings/layoutmodel.h"
#include "sources/contentsources.h"
#include "sources/shortcutlibrary.h"

#include <QActionGroup>
#include <QComboBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace {

// Not QPushButton::setMenu: its menu runs a nested event loop, which holds up
// screen readers asking the window anything while it is open.
void popUpBelow(QWidget *button, QMenu *menu)
{
    menu->popup(button->mapToGlobal(QPoint(0, button->height())));
}

} // namespace

ContentPane::ContentPane(const SettingsServices &services, QWidget *parent)
    : QWidget(parent)
    , m_services(services)
    , m_model(new LayoutModel(services.store, services.sources, this))
    , m_view(new QTreeView(this))
{
    SystemStrings &strings = services.sources.context().strings;
    const QString contentTitle = strings.text(SystemString::Content);
    m_view->setAccessibleName(contentTitle);
    m_view->setModel(m_model);
    m_view->setRootIsDecorated(false);
    m_view->setHeaderHidden(true);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setDragDropMode(QAbstractItemView::InternalMove);
    m_view->setDefaultDropAction(Qt::MoveAction);
    m_view->setDropIndicatorShown(true);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setAllColumnsShowFocus(true);
    m_view->header()->setStretchLastSection(false);
    m_view->header()->setSectionResizeMode(LayoutModel::TitleColumn, QHeaderView::Stretch);
    m_view->header()->setSectionResizeMode(LayoutModel::StyleColumn, QHeaderView::ResizeToContents);
    m_view->setIconSize(QSize(16, 16));

    auto *addFolder = new QPushButton(strings.text(SystemString::AddFolder) + QStringLiteral("…"), this);
    addFolder->setAccessibleName(strings.text(SystemString::AddFolder));
    connect(addFolder, &QPushButton::clicked, this, [this, title = strings.text(SystemString::AddFolder)] {
        const QString folder = QFileDialog::getExistingDirectory(this, title);
        if (!folder.isEmpty())
            m_services.store.addFolder(QUrl::fromLocalFile(folder + QLatin1Char('/')));
    });

    m_addShortcut = new QPushButton(strings.text(SystemString::AddShortcut) + QStringLiteral("…"), this);
    m_addShortcut->setAccessibleName(strings.text(SystemString::AddShortcut));
    m_shortcutMenu = new QMenu(m_addShortcut);
    connect(m_addShortcut, &QPushButton::clicked, this, [this] {
        fillShortcutMenu();
        popUpBelow(m_addShortcut, m_shortcutMenu);
    });

    auto *separator = new QPushButton(strings.text(SystemString::Separator), this);
    connect(separator, &QPushButton::clicked, &services.store, &MenuStore::addSeparator);

    m_options = new QPushButton(strings.text(SystemString::Options) + QStringLiteral("…"), this);
    m_options->setAccessibleName(strings.text(SystemString::Options));
    m_optionsMenu = new QMenu(m_options);
    connect(m_options, &QPushButton::clicked, this, [this] {
        fillOptionsMenu();
        popUpBelow(m_options, m_optionsMenu);
    });

    m_style = new QComboBox(this);
    for (const auto style : {SourceStyle::Inline, SourceStyle::Submenu, SourceStyle::Hidden})
        m_style->addItem(m_model->styleName(style), int(style));
    m_style->setAccessibleName(strings.text(SystemString::Show));
    connect(m_style, &QComboBox::currentIndexChanged, this, &ContentPane::applyStyle);
    auto *styleLabel = new QLabel(strings.text(SystemString::Show), this);
    styleLabel->setBuddy(m_style);

    auto *up = new QToolButton(this);
    up->setIcon(QIcon::fromTheme(QStringLiteral("go-up")));
    up->setText(tr("Move Up"));
    up->setToolTip(tr("Move Up") + QStringLiteral(" (Alt+Up)"));
    up->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Up));
    connect(up, &QToolButton::clicked, this, [this] { moveSelected(-1); });
    auto *down = new QToolButton(this);
    down->setIcon(QIcon::fromTheme(QStringLiteral("go-down")));
    down->setText(tr("Move Down"));
    down->setToolTip(tr("Move Down") + QStringLiteral(" (Alt+Down)"));
    down->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Down));
    connect(down, &QToolButton::clicked, this, [this] { moveSelected(1); });

    m_remove = new QPushButton(strings.text(SystemString::Remove), this);
    connect(m_remove, &QPushButton::clicked, this, &ContentPane::removeSelected);

    auto *buttons = new QHBoxLayout;
    for (QWidget *button : std::initializer_list<QWidget *>{addFolder, m_addShortcut, separator, m_options})
        buttons->addWidget(button);
    buttons->addStretch();
    buttons->addWidget(m_remove);
    auto *styleRow = new QHBoxLayout;
    styleRow->addWidget(styleLabel);
    styleRow->addWidget(m_style);
    styleRow->addStretch();
    styleRow->addWidget(up);
    styleRow->addWidget(down);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_view);
    layout->addLayout(styleRow);
    layout->addLayout(buttons);

    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this, &ContentPane::selectionChanged);
    // The store's changes reset the rows; what was selected stays selected.
    connect(m_model, &QAbstractItemModel::modelAboutToBeReset, this, [this] { m_keptSelection = selectedSources(); });
    connect(m_model, &QAbstractItemModel::modelReset, this, [this] {
        select(m_keptSelection);
        selectionChanged();
    });
    selectionChanged();
}

void ContentPane::applyStyle()
{
    if (m_style->currentIndex() < 0)
        return;
    const auto style = SourceStyle(m_style->currentData().toInt());
    for (const auto &source : selectedSources())
        m_services.store.setStyle(style, source);
}

void ContentPane::moveSelected(int step)
{
    const auto rows = m_view->selectionModel()->selectedRows(LayoutModel::TitleColumn);
    if (rows.isEmpty())
        return;
    const QList<MenuSource> moving = selectedSources();
    int first = m_model->rowCount();
    int last = -1;
    for (const auto &index : rows) {
        first = std::min(first, index.row());
        last = std::max(last, index.row());
    }
    // Up: in front of the row above the block; down: in front of the row two
    // below it (the end when there is none).
    std::optional<MenuSource> before;
    if (step < 0 && first > 0)
        before = m_model->source(first - 1);
    else if (step < 0)
        return;
    else if (last + 2 < m_model->rowCount())
        before = m_model->source(last + 2);
    else if (last + 1 >= m_model->rowCount())
        return;
    m_services.store.move(moving, before);
}

void ContentPane::select(const QList<MenuSource> &sources)
{
    QItemSelection selection;
    for (int row = 0; row < m_model->rowCount(); ++row) {
        if (sources.contains(m_model->source(row)))
            selection.select(m_model->index(row, 0), m_model->index(row, LayoutModel::ColumnCount - 1));
    }
    m_view->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (!selection.isEmpty())
        m_view->selectionModel()->setCurrentIndex(selection.first().topLeft(), QItemSelectionModel::NoUpdate);
}

QList<MenuSource> ContentPane::selectedSources() const
{
    QList<MenuSource> sources;
    for (const auto &index : m_view->selectionModel()->selectedRows(LayoutModel::TitleColumn))
        sources.append(m_model->source(index.row()));
    return sources;
}

void ContentPane::selectionChanged()
{
    const auto rows = m_view->selectionModel()->selectedRows(LayoutModel::TitleColumn);
    const bool removable = !rows.isEmpty() && std::all_of(rows.begin(), rows.end(), [](const QModelIndex &index) {
        return index.data(LayoutModel::IsRemovableRole).toBool();
    });
    m_remove->setEnabled(removable);
    // "Show" tells the style of the selection, when the rows agree on one.
    QSet<int> styles;
    for (const auto &index : rows) {
        if (m_model->flags(m_model->index(index.row(), LayoutModel::StyleColumn)) & Qt::ItemIsEditable)
            styles.insert(m_model->index(index.row(), LayoutModel::StyleColumn).data(Qt::EditRole).toInt());
    }
    m_style->setEnabled(!styles.isEmpty());
    const QSignalBlocker blocker(m_style);
    m_style->setCurrentIndex(styles.size() == 1 ? m_style->findData(*styles.begin()) : -1);
    m_options->setEnabled(rows.size() == 1 && m_model->source(rows.first().row()).kind() == MenuSource::Case::Folder);
}

void ContentPane::removeSelected()
{
    QList<MenuSource> removable;
    for (const auto &index : m_view->selectionModel()->selectedRows(LayoutModel::TitleColumn)) {
        if (index.data(LayoutModel::IsRemovableRole).toBool())
            removable.append(m_model->source(index.row()));
    }
    for (const auto &source : std::as_const(removable))
        m_services.store.remove(source);
}

void ContentPane::fillShortcutMenu()
{
    QMenu *menu = m_shortcutMenu;
    menu->clear();
    const ShortcutLibrary &library = m_services.sources.context().shortcuts;
    const auto &snapshot = library.snapshot();
    const auto add = [this, menu](const QString &title, const MenuSource &source) {
        QAction *action = menu->addAction(title);
        // What the layout has already is not offered twice.
        action->setEnabled(!m_services.store.shortcutSources().contains(source));
        connect(action, &QAction::triggered, this, [this, source] { m_services.store.addShortcutSource(source); });
    };
    for (const auto &folder : snapshot.folders)
        add(folder.ref.name, MenuSource::shortcutFolder(folder.ref));
    if (!snapshot.folders.isEmpty())
        menu->addSeparator();
    for (const auto &shortcut : library.allShortcuts())
        add(shortcut.name, MenuSource::shortcut(shortcut));
    if (menu->isEmpty())
        menu->addAction(m_services.sources.context().strings.text(SystemString::NoItems))->setEnabled(false);
}

void ContentPane::fillOptionsMenu()
{
    QMenu *menu = m_optionsMenu;
    menu->clear();
    const auto sources = selectedSources();
    if (sources.size() != 1 || sources.first().kind() != MenuSource::Case::Folder)
        return;
    const auto folder = m_services.store.folder(*sources.first().uuid());
    if (!folder)
        return;
    SystemStrings &strings = m_services.sources.context().strings;
    QMenu *sortBy = menu->addMenu(strings.text(SystemString::SortBy));
    auto *group = new QActionGroup(sortBy);
    const std::pair<FolderSort, SystemString> sorts[] = {{FolderSort::Name, SystemString::Name},
                                                         {FolderSort::DateAdded, SystemString::DateAdded},
                                                         {FolderSort::DateModified, SystemString::DateModified}};
    for (const auto &[sort, text] : sorts) {
        QAction *action = sortBy->addAction(strings.text(text));
        action->setCheckable(true);
        action->setChecked(folder->sort == sort);
        group->addAction(action);
        connect(action, &QAction::triggered, this,
                [this, sort, id = folder->id] { m_services.store.setSort(sort, id); });
    }
}
