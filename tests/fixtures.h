#pragma once

// A hand-made settings catalog shared by the tests of the content, the
// menu and the search.

#include "catalog/catalog.h"
#include "catalog/destination.h"
#include "catalog/systemstrings.h"
#include "config/menustore.h"
#include "config/preferences.h"
#include "sources/contentsources.h"
#include "sources/shortcutlibrary.h"

#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <vector>

// A GNOME settings pane opened by settings://gnome/<id>.
inline Pane testPane(const QString &id, const QString &name, const QList<Item> &items = {},
                     const std::optional<QList<QList<QString>>> &children = {})
{
    Pane pane;
    pane.id = id;
    pane.name = name;
    pane.url = QUrl(QStringLiteral("settings://gnome/") + id);
    if (!items.isEmpty())
        pane.sections = {ItemSection{std::nullopt, std::nullopt, items}};
    pane.children = children;
    return pane;
}

// A hand-made catalog with its URL index and the English interface texts,
// and searches over it.
struct TestCatalog {
    Catalog catalog;
    QHash<QUrl, Destination> index;
    std::unique_ptr<SystemStrings> strings;

    void set(const QList<QList<QString>> &sections, const QList<Pane> &panes)
    {
        catalog.sections = sections;
        catalog.panes = panes;
        index = Destination::buildIndex(catalog);
        strings = std::make_unique<SystemStrings>(std::nullopt, QStringList{QStringLiteral("en")});
    }

    // Content sources over this catalog: no applications and real folder
    // listings unless given. Each is kept as long as the catalog.
    const ContentSources &sources(MenuStore &store, const ShortcutLibrary &shortcuts,
                                  std::function<QList<AppEntry>()> scanApps = {},
                                  std::function<QList<FolderEntry>(const QUrl &, FolderSort)> listFolder = {})
    {
        SourceContext context{store, shortcuts, *strings, catalog, index};
        context.scanApps = scanApps ? scanApps : [] { return QList<AppEntry>{}; };
        if (listFolder) {
            context.listFolder = listFolder;
            context.listWholeFolder = listFolder;
        }
        made.push_back(std::make_unique<ContentSources>(context));
        return *made.back();
    }

    std::vector<std::unique_ptr<ContentSources>> made;
};

// A store saved in a temporary folder, made afresh by reset() for each test
// function, and a shortcut library whose tool does not exist.
struct StoreFixture {
    QTemporaryDir dir;
    std::unique_ptr<Preferences> preferences;
    std::unique_ptr<MenuStore> store;
    std::unique_ptr<ShortcutLibrary> shortcuts;

    void reset()
    {
        static int n = 0;
        store.reset();
        preferences = std::make_unique<Preferences>(path(QStringLiteral("p%1.conf").arg(++n)));
        store = std::make_unique<MenuStore>(*preferences);
        shortcuts = std::make_unique<ShortcutLibrary>(path(QStringLiteral("no-tool")));
    }

    QString path(const QString &name) const { return dir.filePath(name); }
};
