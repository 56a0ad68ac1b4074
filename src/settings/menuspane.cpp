#include "settings/menuspane.h"

#include "catalog/systemstrings.h"
#include "config/menustore.h"
#include "platform/itemicons.h"
#include "settings/additembuttons.h"
#include "settings/custommenusmodel.h"
#include "settings/labelledbutton.h"
#include "settings/menuitemsmodel.h"
#include "settings/symbolpicker.h"
#include "sources/contentsources.h"

#include <QAction>
#include <QActionGroup>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace {

QLabel *placeholder(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setAccessibleName(text);
    label->setAlignment(Qt::AlignCenter);
    label->setEnabled(false);
    return label;
}

QString colorName(SystemStrings &strings, FolderColor color)
{
    return strings.text(SystemString(int(SystemString::Blue) + int(color)));
}

} // namespace

MenusPane::MenusPane(const SettingsServices &services, QWidget *parent)
    : QWidget(parent)
    , m_services(services)
    , m_strings(services.sources.context().strings)
    , m_menus(new CustomMenusModel(services.store, this))
    , m_itemsModel(new MenuItemsModel(services.sources, this))
{
    auto *splitter = new QSplitter(this);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(makeList());
    m_detail = new QStackedWidget(splitter);
    m_detail->addWidget(placeholder(m_strings.text(SystemString::NoSelection), m_detail));
    m_detail->addWidget(makeEditor());
    splitter->addWidget(m_detail);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({220, 480});
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(splitter);

    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, &MenusPane::showCurrent);
    // The list has caught up by now: it follows the store first.
    connect(&services.store, &MenuStore::menusChanged, this, &MenusPane::showCurrent);
    if (m_menus->rowCount() > 0)
        m_list->setCurrentIndex(m_menus->index(0));
    showCurrent();
}

MenusPane::~MenusPane()
{
    // Closing the window takes the focus from the name field, which would
    // commit into a pane that is half gone.
    m_name->disconnect(this);
}

QWidget *MenusPane::makeList()
{
    auto *box = new QWidget(this);
    auto *layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    m_list = new QListView(box);
    m_list->setAccessibleName(m_strings.text(SystemString::Menus));
    m_list->setModel(m_menus);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::DoubleClicked);
    auto *remove = new QAction(m_list);
    remove->setShortcut(QKeySequence::Delete);
    remove->setShortcutContext(Qt::WidgetShortcut);
    connect(remove, &QAction::triggered, this, &MenusPane::deleteMenu);
    m_list->addAction(remove);
    layout->addWidget(m_list);

    auto *buttons = new QHBoxLayout;
    QToolButton *add = labelledButton(m_strings.text(SystemString::Add), box);
    m_delete = labelledButton(m_strings.text(SystemString::Delete), box);
    m_duplicate = labelledButton(m_strings.text(SystemString::Duplicate), box);
    connect(add, &QToolButton::clicked, this, &MenusPane::addMenu);
    connect(m_delete, &QToolButton::clicked, this, &MenusPane::deleteMenu);
    connect(m_duplicate, &QToolButton::clicked, this, &MenusPane::duplicateMenu);
    buttons->addWidget(add);
    buttons->addWidget(m_delete);
    buttons->addWidget(m_duplicate);
    buttons->addStretch();
    layout->addLayout(buttons);
    return box;
}

QWidget *MenusPane::makeEditor()
{
    auto *editor = new QWidget(this);
    auto *layout = new QVBoxLayout(editor);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *form = new QFormLayout;
    layout->addLayout(form);

    const QString nameTitle = m_strings.text(SystemString::Name);
    m_name = new QLineEdit(editor);
    m_name->setAccessibleName(nameTitle);
    connect(m_name, &QLineEdit::editingFinished, this, &MenusPane::commitName);
    form->addRow(nameTitle, m_name);

    const QString iconTitle = m_strings.text(SystemString::Icon);
    m_symbol = new QToolButton(editor);
    m_symbol->setAccessibleName(iconTitle);
    m_symbol->setIconSize(QSize(32, 32));
    m_symbol->setToolButtonStyle(Qt::ToolButtonIconOnly);
    connect(m_symbol, &QToolButton::clicked, this, &MenusPane::chooseSymbol);

    // The colour is picked from a menu of the eight tints and "None", each
    // drawn with the menu's symbol.
    m_color = labelledButton(tr("Color"), editor);
    m_color->setPopupMode(QToolButton::InstantPopup);
    auto *colors = new QMenu(m_color);
    auto *exclusive = new QActionGroup(colors);
    const auto addColor = [this, colors, exclusive](const QString &title, std::optional<FolderColor> color) {
        QAction *action = colors->addAction(title);
        action->setCheckable(true);
        action->setActionGroup(exclusive);
        connect(action, &QAction::triggered, this, [this, color] { m_services.store.setColor(m_current, color); });
    };
    addColor(m_strings.text(SystemString::None), std::nullopt);
    for (const auto color : allCases<FolderColor>())
        addColor(colorName(m_strings, color), color);
    m_color->setMenu(colors);
    auto *iconRow = new QHBoxLayout;
    iconRow->addWidget(m_symbol);
    iconRow->addWidget(m_color);
    iconRow->addStretch();
    form->addRow(iconTitle, iconRow);

    const QString itemsTitle = tr("Items");
    auto *itemsLabel = new QLabel(itemsTitle, editor);
    // Remove stands over the list so the row of adding buttons below fits a
    // narrow window.
    m_remove = labelledButton(m_strings.text(SystemString::Remove), editor, QStringLiteral("list-remove"));
    connect(m_remove, &QToolButton::clicked, this, &MenusPane::removeItems);
    auto *heading = new QHBoxLayout;
    heading->addWidget(itemsLabel, 1);
    heading->addWidget(m_remove);
    layout->addLayout(heading);
    m_itemsStack = new QStackedWidget(editor);
    m_items = new QTreeView(m_itemsStack);
    m_items->setAccessibleName(itemsTitle);
    itemsLabel->setBuddy(m_items);
    m_items->setModel(m_itemsModel);
    m_items->setHeaderHidden(true);
    m_items->setRootIsDecorated(false);
    m_items->setItemsExpandable(false);
    m_items->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_items->setDragDropMode(QAbstractItemView::InternalMove);
    m_items->setDefaultDropAction(Qt::MoveAction);
    m_items->setDropIndicatorShown(true);
    const auto expand = [this] {
        m_items->expandAll();
        m_itemsStack->setCurrentIndex(m_itemsModel->isEmpty() ? 1 : 0);
        m_remove->setEnabled(m_items->selectionModel()->hasSelection());
    };
    connect(m_itemsModel, &QAbstractItemModel::modelReset, this, expand);
    connect(m_itemsModel, &QAbstractItemModel::layoutChanged, this, expand);
    connect(m_items->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { m_remove->setEnabled(m_items->selectionModel()->hasSelection()); });
    const auto shortcut = [this](const QKeySequence &keys, auto run) {
        auto *action = new QAction(m_items);
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, run);
        m_items->addAction(action);
    };
    shortcut(QKeySequence::Delete, [this] { removeItems(); });
    shortcut(QKeySequence(Qt::ALT | Qt::Key_Up), [this] { moveItem(-1); });
    shortcut(QKeySequence(Qt::ALT | Qt::Key_Down), [this] { moveItem(1); });
    m_itemsStack->addWidget(m_items);
    m_itemsStack->addWidget(placeholder(m_strings.text(SystemString::NoItems), m_itemsStack));
    layout->addWidget(m_itemsStack, 1);
    m_addItems = new AddItemButtons(m_services.sources, editor);
    layout->addWidget(m_addItems);
    expand();
    return editor;
}

void MenusPane::selectMenu(const QUuid &id)
{
    const QModelIndex index = m_menus->indexOf(id);
    m_list->setCurrentIndex(index);
    m_list->selectionModel()->select(index, QItemSelectionModel::ClearAndSelect);
}

void MenusPane::showCurrent()
{
    const QModelIndexList selected = m_list->selectionModel()->selectedIndexes();
    const QUuid id = selected.isEmpty() ? QUuid() : m_menus->idAt(selected.first());
    const auto menu = m_services.store.menu(id);
    m_current = menu ? id : QUuid();
    m_delete->setEnabled(menu.has_value());
    m_duplicate->setEnabled(menu.has_value());
    m_detail->setCurrentIndex(menu ? 1 : 0);
    m_itemsModel->setMenu(m_current);
    m_addItems->setMenu(m_current);
    if (!menu)
        return;
    // A name being typed is kept until it is committed.
    if (!(m_name->hasFocus() && m_name->isModified()))
        m_name->setText(menu->name);
    const QIcon preview = drawnIcon(ItemIcon{MenuSymbolIcon{menu->symbol, menu->color}});
    m_symbol->setIcon(preview);
    m_symbol->setToolTip(menu->symbol.value_or(m_strings.text(SystemString::None)));
    const QList<QAction *> colors = m_color->menu()->actions();
    for (int row = 0; row < colors.size(); ++row) {
        const std::optional<FolderColor> color =
            row == 0 ? std::nullopt : std::optional(allCases<FolderColor>().at(row - 1));
        colors.at(row)->setChecked(color == menu->color);
        colors.at(row)->setIcon(drawnIcon(ItemIcon{MenuSymbolIcon{menu->symbol, color}}));
    }
}

void MenusPane::commitName()
{
    const auto menu = m_services.store.menu(m_current);
    if (!menu)
        return;
    m_name->setModified(false);
    const QString name = m_name->text().trimmed();
    if (name != menu->name && m_menus->setData(m_menus->indexOf(m_current), name))
        return;
    // Refused or unchanged: show what is stored.
    m_name->setText(menu->name);
}

void MenusPane::addMenu()
{
    selectMenu(m_menus->idAt(m_menus->addMenu(m_strings.text(SystemString::Untitled))));
    m_name->setFocus(Qt::OtherFocusReason);
    m_name->selectAll();
}

void MenusPane::deleteMenu()
{
    const auto menu = m_services.store.menu(m_current);
    if (!menu)
        return;
    QMessageBox box(QMessageBox::Warning, windowTitle(),
                    m_strings.text(SystemString::DeleteConfirmation).replace(QStringLiteral("%@"), menu->name),
                    QMessageBox::Cancel, this);
    box.setInformativeText(m_strings.text(SystemString::CantUndo));
    QPushButton *confirm = box.addButton(m_strings.text(SystemString::Delete), QMessageBox::DestructiveRole);
    confirm->setAccessibleName(confirm->text());
    box.setDefaultButton(QMessageBox::Cancel);
    box.exec();
    if (box.clickedButton() != confirm)
        return;
    const int row = m_menus->indexOf(menu->id).row();
    m_services.store.removeMenu(menu->id);
    // The neighbour takes the place, so the keyboard stays in the list.
    if (m_menus->rowCount() > 0)
        selectMenu(m_menus->idAt(m_menus->index(std::min(row, m_menus->rowCount() - 1))));
    m_list->setFocus();
}

void MenusPane::duplicateMenu()
{
    const auto menu = m_services.store.menu(m_current);
    if (!menu)
        return;
    const QString name = m_strings.text(SystemString::CopyOf).replace(QStringLiteral("%@"), menu->name);
    selectMenu(m_menus->idAt(m_menus->duplicateMenu(m_menus->indexOf(menu->id), name)));
}

void MenusPane::chooseSymbol()
{
    const auto menu = m_services.store.menu(m_current);
    if (!menu)
        return;
    SymbolPicker picker(m_strings, menu->symbol, this);
    if (picker.exec() == QDialog::Accepted)
        m_services.store.setSymbol(menu->id, picker.symbol());
}

void MenusPane::removeItems()
{
    m_itemsModel->remove(m_items->selectionModel()->selectedRows());
}

void MenusPane::moveItem(int step)
{
    const QModelIndex current = m_items->currentIndex();
    if (!current.isValid())
        return;
    const int row = current.row();
    // A move goes before the row that is at the destination now.
    const int destination = step < 0 ? row - 1 : row + 2;
    if (destination < 0 || destination > m_itemsModel->rowCount(current.parent()))
        return;
    if (!current.parent().isValid())
        m_itemsModel->moveGroups({row}, destination);
    else if (current.data(MenuItemsModel::KindRole).value<MenuItemKind>() == MenuItemKind::Settings)
        m_itemsModel->moveSettings({row}, destination);
}
