// Reading the installed applications from the desktop entries that
// $XDG_DATA_HOME and $XDG_DATA_DIRS name, the way Quillon does and the way
// GLib does (every entry, then the ones a menu should show).
//
//   bench_applibrary --first quillon|glib
//       times the first read in this process and prints "<ms> <applications>":
//       what a launcher pays when it starts. Run it in turns with its peers.
//   bench_applibrary [Google Benchmark options]
//       reads again and again in one process.
#include "sources/applibrary.h"

#include <QCoreApplication>

#include <gio/gio.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstring>

namespace {

qsizetype quillonApps()
{
    return AppLibrary::apps(AppLibrary::scan()).size();
}

qsizetype glibApps()
{
    GList *all = g_app_info_get_all();
    qsizetype shown = 0;
    for (GList *item = all; item; item = item->next) {
        if (g_app_info_should_show(G_APP_INFO(item->data)))
            ++shown;
    }
    g_list_free_full(all, g_object_unref);
    return shown;
}

int timeFirst(const char *reader)
{
    qsizetype (*read)() = std::strcmp(reader, "glib") == 0 ? glibApps : quillonApps;
    if (std::strcmp(reader, "glib") != 0 && std::strcmp(reader, "quillon") != 0) {
        std::fprintf(stderr, "unknown reader %s: quillon or glib\n", reader);
        return 2;
    }
    const auto start = std::chrono::steady_clock::now();
    const qsizetype apps = read();
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    std::printf("%.3f %lld\n", took.count(), static_cast<long long>(apps));
    return 0;
}

void quillonScan(benchmark::State &state)
{
    qsizetype apps = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(apps = quillonApps());
    state.counters["apps"] = double(apps);
}
BENCHMARK(quillonScan)->Unit(benchmark::kMillisecond);

// GLib keeps each folder's file names after the first call but parses every
// entry again on each one.
void glibAppInfoAll(benchmark::State &state)
{
    qsizetype apps = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(apps = glibApps());
    state.counters["apps"] = double(apps);
}
BENCHMARK(glibAppInfoAll)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "--first") == 0)
        return timeFirst(argv[2]);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
