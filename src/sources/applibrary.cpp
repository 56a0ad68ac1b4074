#include "sources/applibrary.h"

#include "sources/appcategories.h"
#include "sources/desktopentries.h"
#include "sources/naturalorder.h"
#include "sources/xdgdirs.h"

#include <QHash>
#include <QMap>
#include <QSet>

#include <algorithm>

size_t qHash(const App &app, size_t seed) noexcept
{
    return qHashMulti(seed, app.name, app.url, app.icon);
}

size_t qHash(const AppFolder &folder, size_t seed) noexcept
{
    return qHashMulti(seed, folder.name, folder.url, folder.icon,
                      qHashRange(folder.entries.begin(), folder.entries.end()));
}

size_t qHash(const AppEntry &entry, size_t seed) noexcept
{
    if (const App *app = entry.app())
        return qHash(*app, seed);
    return qHash(*entry.folder(), seed ^ 1);
}

const QString &AppEntry::name() const
{
    return std::visit([](const auto &node) -> const QString & { return node.name; }, m_node);
}

const QUrl &AppEntry::url() const
{
    return std::visit([](const auto &node) -> const QUrl & { return node.url; }, m_node);
}

namespace {

void sortByName(QList<AppEntry> &entries)
{
    const QCollator collator = naturalOrder();
    std::sort(entries.begin(), entries.end(),
              [&collator](const AppEntry &a, const AppEntry &b) { return collator.compare(a.name(), b.name()) < 0; });
}

QStringList applicationDirs(const QStringList &dataDirs)
{
    QStringList roots;
    for (const QString &dir : dataDirs)
        roots.append(dir + QLatin1String("/applications"));
    return roots;
}

} // namespace

QStringList AppLibrary::scanRoots()
{
    return applicationDirs(xdgDataDirs());
}

QList<AppEntry> AppLibrary::scan()
{
    const QStringList dataDirs = xdgDataDirs();
    const QStringList desktops = currentDesktops();
    return arrange(readDesktopApps(applicationDirs(dataDirs), desktops), CategoryNames(dataDirs, desktops));
}

QList<AppEntry> AppLibrary::arrange(const QList<DesktopApp> &apps, const CategoryNames &categoryNames)
{
    // Applications in precedence order go to their category; the first of
    // several with the same name in a category is the one kept.
    QMap<AppCategory, QList<AppEntry>> byCategory;
    QHash<AppCategory, QSet<QString>> namesByCategory;
    for (const DesktopApp &app : apps) {
        QSet<QString> &names = namesByCategory[app.category];
        if (names.contains(app.name))
            continue;
        names.insert(app.name);
        byCategory[app.category].append(App{app.name, app.url, app.icon});
    }

    QList<AppEntry> tree;
    for (auto it = byCategory.begin(); it != byCategory.end(); ++it) {
        CategoryFolder folder = categoryNames.folder(it.key());
        sortByName(it.value());
        tree.append(
            AppFolder{std::move(folder.name), std::move(folder.url), std::move(folder.icon), std::move(it.value())});
    }
    sortByName(tree);
    return tree;
}

QList<App> AppLibrary::apps(const QList<AppEntry> &entries)
{
    QList<App> result;
    for (const AppEntry &entry : entries) {
        if (const App *app = entry.app())
            result.append(*app);
        else
            result.append(apps(entry.folder()->entries));
    }
    return result;
}
