// Opening the menu, typing into its search and opening the settings tabs,
// over a sizeable setup: the default layout plus 3 custom menus, 4 folders
// and 20 shortcuts; 2,000 applications, the GNOME catalog, 500 shortcuts and
// 4 folders of 200 files.
#include "app/appservices.h"
#include "app/statusmenu.h"
#include "catalog/destination.h"
#include "catalog/systemstrings.h"
#include "config/urls.h"
#include "hotkeys/hotkeycenter.h"
#include "platform/dbusmenuexporter.h"
#include "platform/fileicons.h"
#include "settings/applicationspane.h"
#include "settings/contentpane.h"
#include "settings/favoriteappsmodel.h"
#include "settings/layoutmodel.h"
#include "settings/menuspane.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QListView>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

QTemporaryDir *root;

void write(const QString &path, const QByteArray &contents)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(contents);
}

// A shortcuts tool that lists 500 shortcuts in five folders.
void writeShortcutsTool(const QString &path)
{
    QByteArray script = "#!/bin/sh\ncase \"$*\" in\n";
    script +=
        "*--folders*) for f in 1 2 3 4 5; do echo \"Folder $f (00000000-0000-4000-8000-00000000000$f)\"; done ;;\n";
    script += "*none*) i=0; while [ $i -lt 100 ]; do printf 'Loose %d (00000000-0000-4000-8000-%012d)\\n' $i $i; "
              "i=$((i+1)); done ;;\n";
    script += "*) i=0; while [ $i -lt 80 ]; do printf 'Task %d (10000000-0000-4000-8000-%012d)\\n' $i $i; i=$((i+1)); "
              "done ;;\n";
    script += "esac\n";
    write(path, script);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void prepare()
{
    root = new QTemporaryDir;
    const QString home = root->filePath(QStringLiteral("home"));
    qputenv("HOME", home.toUtf8());
    qputenv("XDG_CONFIG_HOME", (home + QStringLiteral("/.config")).toUtf8());
    qputenv("XDG_DATA_HOME", (home + QStringLiteral("/.local/share")).toUtf8());
    qputenv("XDG_CURRENT_DESKTOP", "GNOME");
    for (int i = 0; i < 2000; ++i) {
        write(home + QStringLiteral("/.local/share/applications/app-%1.desktop").arg(i),
              QStringLiteral("[Desktop Entry]\nType=Application\nName=Application %1\nExec=true\nIcon=app-%1\n"
                             "Categories=%2;\n")
                  .arg(i)
                  .arg(QStringList{"Utility", "Office", "Graphics", "Development", "Game"}.at(i % 5))
                  .toUtf8());
    }
    for (int f = 0; f < 4; ++f) {
        for (int i = 0; i < 200; ++i)
            write(home + QStringLiteral("/Folder%1/Document %2.txt").arg(f).arg(i), "x");
    }
}

struct Setup {
    AppServices services;
    std::unique_ptr<StatusMenu> menu;

    Setup()
    {
        writeShortcutsTool(root->filePath(QStringLiteral("shortcuts-tool")));
        MenuStore &store = services.store;
        if (store.menus().isEmpty()) {
            for (int m = 0; m < 3; ++m) {
                const auto menu = store.addMenu(QStringLiteral("Menu %1").arg(m));
                store.setIncluded(true, QUrl(QStringLiteral("settings://gnome/wifi")), menu.id);
                store.setIncluded(true, QUrl(QStringLiteral("settings://gnome/display")), menu.id);
            }
            for (int f = 0; f < 4; ++f)
                store.addFolder(QUrl::fromLocalFile(QDir::homePath() + QStringLiteral("/Folder%1/").arg(f)));
            for (int s = 0; s < 20; ++s)
                store.addShortcutSource(
                    MenuSource::shortcut({QStringLiteral("10000000-0000-4000-8000-%1").arg(s, 12, 10, QLatin1Char('0')),
                                          QStringLiteral("Task %1").arg(s)}));
        }
        menu = std::make_unique<StatusMenu>(services.statusMenuServices(), [] {});
    }
};

void rebuildTopLevel(benchmark::State &state)
{
    Setup setup;
    for (auto _ : state) {
        setup.menu->rebuild();
        benchmark::DoNotOptimize(setup.menu->menu()->actions().size());
    }
}
BENCHMARK(rebuildTopLevel)->Unit(benchmark::kMillisecond);

// What a panel that draws the menu waits for when the icon is clicked: the
// root rebuilt and its whole layout described (submenus still unfilled).
void exportedMenuOpening(benchmark::State &state)
{
    Setup setup;
    setup.menu->useSearchItem([] {}, [] { return QKeySequence(); });
    DBusMenuExporter exporter(setup.menu->menu());
    for (auto _ : state) {
        exporter.AboutToShow(DBusMenuExporter::rootId);
        DBusMenuLayoutItem layout;
        exporter.GetLayout(DBusMenuExporter::rootId, -1, {}, layout);
        benchmark::DoNotOptimize(layout.children.size());
    }
}
BENCHMARK(exportedMenuOpening)->Unit(benchmark::kMillisecond);

// Opening a folder of 200 documents in such a panel: listed, filled and
// described, icons included.
void exportedFolderSubmenu(benchmark::State &state)
{
    Setup setup;
    setup.menu->useSearchItem([] {}, [] { return QKeySequence(); });
    DBusMenuExporter exporter(setup.menu->menu());
    for (auto _ : state) {
        exporter.AboutToShow(DBusMenuExporter::rootId);
        QAction *folder = nullptr;
        for (QAction *action : setup.menu->menu()->actions()) {
            if (action->menu() && action->text() == QStringLiteral("Folder0"))
                folder = action;
        }
        const int id = exporter.idOf(folder);
        exporter.AboutToShow(id);
        DBusMenuLayoutItem layout;
        exporter.GetLayout(id, -1, {}, layout);
        if (layout.children.size() < 200)
            state.SkipWithError("the folder did not fill");
        benchmark::DoNotOptimize(layout.children.size());
    }
}
BENCHMARK(exportedFolderSubmenu)->Unit(benchmark::kMillisecond);

void loadShortcuts(ShortcutLibrary &library)
{
    library.refresh();
    QElapsedTimer waited;
    waited.start();
    while (!library.hasLoaded() && waited.elapsed() < 10000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
}

void firstSearchWithAppScan(benchmark::State &state)
{
    Setup setup;
    for (auto _ : state) {
        SearchSession session(setup.services.sources);
        benchmark::DoNotOptimize(session.search(QStringLiteral("a"), 12));
    }
}
BENCHMARK(firstSearchWithAppScan)->Unit(benchmark::kMillisecond);

void searchKeystroke(benchmark::State &state)
{
    Setup setup;
    ShortcutLibrary library(root->filePath(QStringLiteral("shortcuts-tool")));
    loadShortcuts(library);
    if (library.allShortcuts().size() != 500)
        state.SkipWithError("the shortcuts tool did not load");
    const ContentSources sources(SourceContext::shared(setup.services.store, library, setup.services.apps));
    SearchSession session(sources);
    session.search(QStringLiteral("d"), 12); // the first keystroke fills the caches
    const QStringList queries{QStringLiteral("do"), QStringLiteral("doc"), QStringLiteral("docu"),
                              QStringLiteral("ta"), QStringLiteral("wi"),  QStringLiteral("app")};
    qsizetype i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(session.search(queries.at(i++ % queries.size()), 12));
}
BENCHMARK(searchKeystroke)->Unit(benchmark::kMillisecond);

SettingsServices settingsServices(Setup &setup)
{
    return setup.services.settingsServices(HotKeyCenters::shared());
}

void openContentTab(benchmark::State &state)
{
    Setup setup;
    for (auto _ : state) {
        ContentPane pane(settingsServices(setup));
        benchmark::DoNotOptimize(pane.model()->rowCount());
    }
}
BENCHMARK(openContentTab)->Unit(benchmark::kMillisecond);

void openMenusTab(benchmark::State &state)
{
    Setup setup;
    for (auto _ : state) {
        MenusPane pane(settingsServices(setup));
        benchmark::DoNotOptimize(&pane);
    }
}
BENCHMARK(openMenusTab)->Unit(benchmark::kMillisecond);

void openApplicationsTab(benchmark::State &state)
{
    Setup setup;
    for (auto _ : state) {
        ApplicationsPane pane(settingsServices(setup));
        pane.model()->load();
        benchmark::DoNotOptimize(pane.model()->rowCount());
    }
}
BENCHMARK(openApplicationsTab)->Unit(benchmark::kMillisecond);

void filterApplications(benchmark::State &state)
{
    Setup setup;
    ApplicationsPane pane(settingsServices(setup));
    pane.model()->load();
    const QStringList queries{QStringLiteral("a"), QStringLiteral("ap"), QStringLiteral("app 1"),
                              QStringLiteral("application 19"), QString()};
    qsizetype i = 0;
    for (auto _ : state) {
        pane.filter()->setText(queries.at(i++ % queries.size()));
        benchmark::DoNotOptimize(pane.view()->model()->rowCount());
    }
}
BENCHMARK(filterApplications)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    prepare();
    QApplication app(argc, argv);
    ensureIconTheme();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    delete root;
    return 0;
}
