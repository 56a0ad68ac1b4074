#include "settings/additembuttons.h"

#include "catalog/systemstrings.h"
#include "config/menustore.h"
#include "config/urls.h"
#include "platform/itemicons.h"
#include "settings/checkableurlsmodel.h"
#include "settings/itemchooser.h"
#include "settings/labelledbutton.h"
#include "settings/panetreemodel.h"
#include "sources/contentsources.h"
#include "sources/shortcutlibrary.h"

#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QMenu>
#include <QToolButton>
#include <QTreeView>

namespace {

// Applications by category, as the applications menu files them.
QList<CheckableUrlsModel::Entry> appEntries(const QList<AppEntry> &tree)
{
    QList<CheckableUrlsModel::Entry> list;
    for (const AppEntry &entry : tree) {
        if (const App *app = entry.app())
            list.append({app->name, app->url, drawnIcon(ItemIcon{NamedIcon{app->icon}}), {}});
        else if (const AppFolder *folder = entry.folder())
            list.append({folder->name, {}, drawnIcon(ItemIcon{NamedIcon{folder->icon}}), appEntries(folder->entries)});
    }
    return list;
}

// Each shortcut folder with its shortcuts, then the shortcuts in no folder.
QList<CheckableUrlsModel::Entry> shortcutEntries(const ShortcutLibrary &library)
{
    const QIcon shortcutIcon = drawnIcon(ItemIcon{NamedIcon{QStringLiteral("system-run")}});
    const auto entries = [&shortcutIcon](const QList<ShortcutRef> &shortcuts) {
        QList<CheckableUrlsModel::Entry> list;
        for (const ShortcutRef &shortcut : shortcuts)
            list.append({shortcut.name, shortcutURL(shortcut.id), shortcutIcon, {}});
        return list;
    };
    QList<CheckableUrlsModel::Entry> list;
    for (const auto &folder : library.snapshot().folders)
        list.append({folder.ref.name, {}, QIcon::fromTheme(QStringLiteral("folder")), entries(folder.shortcuts)});
    return list + entries(library.snapshot().unfiled);
}

} // namespace

AddItemButtons::AddItemButtons(const ContentSources &sources, QWidget *parent)
    : QWidget(parent)
    , m_sources(sources)
    , m_strings(sources.context().strings)
{
    // Two by two, so that longer words than English ones still fit.
    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    const QString addIcon = QStringLiteral("list-add");
    QToolButton *apps = labelledButton(m_sources.title(MenuSource::applications()), this, addIcon);
    connect(apps, &QToolButton::clicked, this, &AddItemButtons::chooseApplications);
    QToolButton *files = labelledButton(m_strings.text(SystemString::FilesAndFolders), this, addIcon);
    auto *filesMenu = new QMenu(files);
    filesMenu->addAction(tr("Add Files"), this, &AddItemButtons::addFiles);
    filesMenu->addAction(m_strings.text(SystemString::AddFolder), this, &AddItemButtons::addFolder);
    files->setMenu(filesMenu);
    files->setPopupMode(QToolButton::InstantPopup);
    QToolButton *shortcuts = labelledButton(m_sources.title(MenuSource::shortcuts()), this, addIcon);
    connect(shortcuts, &QToolButton::clicked, this, &AddItemButtons::chooseShortcuts);
    QToolButton *settings = labelledButton(m_strings.text(SystemString::SystemSettings), this, addIcon);
    connect(settings, &QToolButton::clicked, this, &AddItemButtons::chooseSettings);
    int at = 0;
    for (QToolButton *widget : {apps, files, shortcuts, settings}) {
        widget->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        layout->addWidget(widget, at / 2, at % 2);
        ++at;
    }
}

void AddItemButtons::addFiles()
{
    const QList<QUrl> urls = QFileDialog::getOpenFileUrls(this, m_strings.text(SystemString::FilesAndFolders),
                                                          QUrl::fromLocalFile(QDir::homePath()));
    for (const QUrl &url : urls)
        m_sources.context().store.setIncluded(true, url, m_menu);
}

void AddItemButtons::addFolder()
{
    const QUrl url = QFileDialog::getExistingDirectoryUrl(this, m_strings.text(SystemString::AddFolder),
                                                          QUrl::fromLocalFile(QDir::homePath()));
    if (!url.isLocalFile())
        return;
    // The trailing slash is how a stored URL says it is a folder.
    QString path = url.toLocalFile();
    if (!path.endsWith(QLatin1Char('/')))
        path.append(QLatin1Char('/'));
    m_sources.context().store.setIncluded(true, QUrl::fromLocalFile(path), m_menu);
}

void AddItemButtons::chooseSettings()
{
    auto *model = new PaneTreeModel(m_sources);
    model->setMenu(m_menu);
    auto *chooser = new ItemChooser(m_strings.text(SystemString::SystemSettings), model, m_strings, -1, this);
    model->setParent(chooser);
    // What the menu already holds is in sight.
    if (const auto menu = m_sources.context().store.menu(m_menu)) {
        for (const QUrl &url : menu->urls) {
            for (QModelIndex above = model->indexOf(url).parent(); above.isValid(); above = above.parent())
                chooser->view()->expand(above);
        }
    }
    chooser->setAttribute(Qt::WA_DeleteOnClose);
    chooser->open();
}

void AddItemButtons::chooseApplications()
{
    const auto &context = m_sources.context();
    auto *model = new CheckableUrlsModel(context.store);
    model->setMenu(m_menu);
    // The application index answers from memory.
    model->setEntries(appEntries(context.scanApps()));
    auto *chooser = new ItemChooser(m_sources.title(MenuSource::applications()), model, m_strings,
                                    CheckableUrlsModel::FoldedTitleRole, this);
    model->setParent(chooser);
    chooser->setAttribute(Qt::WA_DeleteOnClose);
    chooser->open();
}

void AddItemButtons::chooseShortcuts()
{
    const auto &context = m_sources.context();
    const ShortcutLibrary &library = context.shortcuts;
    auto *model = new CheckableUrlsModel(context.store);
    model->setEntries(shortcutEntries(library));
    connect(&library, &ShortcutLibrary::snapshotChanged, model,
            [model, &library] { model->setEntries(shortcutEntries(library)); });
    model->setMenu(m_menu);
    auto *chooser = new ItemChooser(m_sources.title(MenuSource::shortcuts()), model, m_strings, -1, this);
    model->setParent(chooser);
    chooser->setAttribute(Qt::WA_DeleteOnClose);
    chooser->open();
}
