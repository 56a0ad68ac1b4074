// Scans 2,000 generated desktop entries spread over 20 categories.
#include "sources/applibrary.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

constexpr int entryCount = 2000;

// The eleven main categories, the two that imply AudioVideo and seven
// additional ones that fall into Other.
const char *const categories[] = {
    "AudioVideo", "Development", "Education", "Game",    "Graphics",   "Network", "Office",
    "Science",    "Settings",    "System",    "Utility", "Audio",      "Video",   "Building",
    "Debugger",   "IDE",         "Chat",      "Email",   "Calculator", "Player",
};

bool writeFile(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size();
}

bool generate(const QString &root)
{
    const QString home = root + QLatin1String("/home");
    const QString share = root + QLatin1String("/share");
    if (!QDir().mkpath(home) || !QDir().mkpath(share + QLatin1String("/applications"))
        || !QDir().mkpath(share + QLatin1String("/desktop-directories"))) {
        return false;
    }
    for (int i = 0; i < entryCount; ++i) {
        const QByteArray number = QByteArray::number(i);
        const QByteArray entry = "[Desktop Entry]\nType=Application\nName=Application " + number
                                 + "\nName[de]=Anwendung " + number + "\nName[fr]=Application " + number
                                 + "\nGenericName=Tool\nComment=Does thing number " + number
                                 + "\nExec=true --app=" + number + " %U\nIcon=app-" + number + "\nCategories=GTK;"
                                 + categories[i % 20] + ";\nKeywords=thing;tool;" + number + ";\n";
        if (!writeFile(share + QStringLiteral("/applications/app-%1.desktop").arg(i), entry))
            return false;
    }
    for (const char *category : categories) {
        const QByteArray directory = "[Desktop Entry]\nType=Directory\nName=" + QByteArray(category)
                                     + "\nName[de]=" + category + "\nIcon=applications-other\n";
        if (!writeFile(share + QLatin1String("/desktop-directories/%1.directory").arg(QLatin1String(category)),
                       directory)) {
            return false;
        }
    }
    qputenv("XDG_DATA_HOME", home.toUtf8());
    qputenv("XDG_DATA_DIRS", share.toUtf8());
    qputenv("XDG_CURRENT_DESKTOP", "GNOME");
    return true;
}

void scan(benchmark::State &state)
{
    // Generated once for all repetitions.
    static QTemporaryDir root;
    static const bool generated = root.isValid() && generate(root.path());
    if (!generated) {
        state.SkipWithError("could not generate the desktop entries");
        return;
    }
    qsizetype apps = 0;
    for (auto _ : state) {
        const QList<AppEntry> tree = AppLibrary::scan();
        apps = AppLibrary::apps(tree).size();
        benchmark::DoNotOptimize(apps);
    }
    if (apps != entryCount)
        state.SkipWithError("the scan missed applications");
}

} // namespace

BENCHMARK(scan)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

BENCHMARK_MAIN();
