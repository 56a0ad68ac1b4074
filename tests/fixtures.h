#pragma once

// Small stand-ins shared by the tests of the menu, the search and opening.

#include "catalog/catalog.h"
#include "catalog/destination.h"
#include "catalog/systemstrings.h"
#include "platform/launcher.h"
#include "sources/contentsources.h"

#include <functional>
#include <memory>
#include <vector>

// Records what would have been started ("launch <file>", "default <url>",
// "start <program>|<arguments>"), with what `witness` says at that moment,
// and fails when told to.
class FakeLauncher final : public Launcher
{
public:
    QStringList calls;
    std::optional<QString> failure;
    std::function<QString()> witness;

    void launchApplication(const QString &desktopFile, const Done &done) override
    {
        record(QStringLiteral("launch ") + desktopFile, done);
    }
    void openWithDefaultHandler(const QUrl &url, const Done &done) override
    {
        record(QStringLiteral("default ") + url.toString(), done);
    }
    void startProgram(const QString &program, const QStringList &arguments, const Done &done) override
    {
        record(QStringLiteral("start ") + (QStringList{program} + arguments).join(QLatin1Char('|')), done);
    }

private:
    void record(const QString &call, const Done &done)
    {
        calls.append(witness ? call + QLatin1Char(' ') + witness() : call);
        done(failure);
    }
};

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
        if (listFolder)
            context.listFolder = listFolder;
        made.push_back(std::make_unique<ContentSources>(context));
        return *made.back();
    }

    std::vector<std::unique_ptr<ContentSources>> made;
};
