// Lists folders of 250 and 100,000 files by name and by date.
#include "sources/folderlisting.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <map>
#include <memory>

namespace {

// One generated folder per size, made on first use and kept for the run.
QString folderOf(int files)
{
    static std::map<int, std::unique_ptr<QTemporaryDir>> folders;
    auto &dir = folders[files];
    if (!dir) {
        dir = std::make_unique<QTemporaryDir>();
        const QByteArray path = QFile::encodeName(dir->path());
        for (int i = 0; i < files; ++i) {
            const QByteArray name = path + "/Document " + QByteArray::number(i * 7919 % files) + ".txt";
            const int fd = open(name.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
            if (fd >= 0)
                close(fd);
        }
        QDir(dir->path()).mkdir(QStringLiteral("A folder"));
    }
    return dir->path();
}

void list(benchmark::State &state, FolderSort sort)
{
    const QUrl url = QUrl::fromLocalFile(folderOf(int(state.range(0))));
    for (auto _ : state) {
        const QList<FolderEntry> entries = FolderListing::list(url, sort);
        benchmark::DoNotOptimize(entries.size());
        if (entries.size() != FolderListing::limit) {
            state.SkipWithError("unexpected number of entries");
            break;
        }
    }
}

} // namespace

BENCHMARK_CAPTURE(list, name, FolderSort::Name)
    ->Arg(250)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);
BENCHMARK_CAPTURE(list, dateAdded, FolderSort::DateAdded)
    ->Arg(250)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);
BENCHMARK_CAPTURE(list, dateModified, FolderSort::DateModified)
    ->Arg(250)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

BENCHMARK_MAIN();
