// What a person waits for right after Quillon has started, over the desktop
// entries that $XDG_DATA_HOME and $XDG_DATA_DIRS name and the default layout:
// the Applications submenu filling as it opens, and the first search over
// every source (applications, the settings catalog, shortcuts, folders).
//
// Each benchmark reports its very first time in the process as the counter
// "first_ms" (nothing warmed up yet, as after a start) beside the usual
// repeated measurement. Run one benchmark per process for that to hold.
#include "app/appservices.h"
#include "app/lazymenu.h"
#include "app/statusmenu.h"
#include "platform/fileicons.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <chrono>

namespace {

// The query of the first search: short, so that every group has matches.
const QString query = QStringLiteral("ta");

double millisecondsOf(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

LazyMenu *applicationsSubmenu(AppServices &services, StatusMenu &menu)
{
    const QString title = services.sources.title(MenuSource::applications());
    for (QAction *action : menu.menu()->actions()) {
        if (action->text() == title) {
            if (auto *submenu = qobject_cast<LazyMenu *>(action->menu()))
                return submenu;
        }
    }
    return nullptr;
}

void applicationsSubmenuOpened(benchmark::State &state)
{
    AppServices services;
    // The index scans right after start; a person opens the menu later.
    services.apps.tree();
    StatusMenu menu(services.statusMenuServices(), [] {});
    // Google Benchmark calls this more than once; only the first call is cold.
    static std::optional<double> first;
    qsizetype items = 0;
    for (auto _ : state) {
        state.PauseTiming();
        menu.rebuild();
        LazyMenu *submenu = applicationsSubmenu(services, menu);
        if (!submenu) {
            state.SkipWithError("the menu has no Applications submenu");
            return;
        }
        state.ResumeTiming();
        const double took = millisecondsOf([submenu] { submenu->fillIfNeeded(); });
        if (!first)
            first = took;
        items = submenu->actions().size();
    }
    state.counters["first_ms"] = first.value_or(0);
    state.counters["folders"] = double(items);
}
BENCHMARK(applicationsSubmenuOpened)->Unit(benchmark::kMillisecond);

void firstSearch(benchmark::State &state)
{
    AppServices services;
    services.apps.tree();
    static std::optional<double> first;
    qsizetype results = 0;
    for (auto _ : state) {
        const double took = millisecondsOf([&services, &results] {
            SearchSession session(services.sources);
            results = 0;
            for (const SearchGroup &group : session.search(query, StatusMenu::maxResults))
                results += group.results.size();
        });
        if (!first)
            first = took;
    }
    state.counters["first_ms"] = first.value_or(0);
    state.counters["results"] = double(results);
}
BENCHMARK(firstSearch)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    app.setOrganizationName(QStringLiteral("Quillon"));
    app.setApplicationName(QStringLiteral("Quillon"));
    ensureIconTheme();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
