#include "sources/shortcutparser.h"

#include <QUuid>

#include <benchmark/benchmark.h>

// A listing as a large library prints it: 5,000 lines, names of varied
// length, some with parentheses of their own, and a few lines to skip.
static QByteArray listing(int lines)
{
    QByteArray text;
    for (int i = 0; i < lines; ++i) {
        if (i % 50 == 0) {
            text += "Error: this line is not a shortcut\n";
            continue;
        }
        const QByteArray id = QUuid::createUuid().toByteArray(QUuid::WithoutBraces).toUpper();
        QByteArray name = "Shortcut number " + QByteArray::number(i);
        if (i % 7 == 0)
            name += " (copy)";
        text += name.repeated(1 + i % 3) + " (" + id + ")\n";
    }
    return text;
}

static void parseListing(benchmark::State &state)
{
    const QByteArray text = listing(5000);
    for (auto _ : state)
        benchmark::DoNotOptimize(parseShortcutList(text));
    state.SetItemsProcessed(state.iterations() * 5000);
}
BENCHMARK(parseListing)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
