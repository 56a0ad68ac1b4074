#pragma once

#include "sources/appcategories.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <variant>

// One application: its localized name, the file URL of its desktop entry and
// its icon (a theme icon name or an absolute path; may be empty).
struct App {
    QString name;
    QUrl url;
    QString icon;
    bool operator==(const App &) const = default;
};

size_t qHash(const App &app, size_t seed = 0) noexcept;

class AppEntry;
struct DesktopApp;

// A folder of the application tree: one menu category, named and drawn as
// the desktop presents it. url is its .directory file, empty when the desktop
// has none installed.
struct AppFolder {
    QString name;
    QUrl url;
    QString icon;
    QList<AppEntry> entries;
    bool operator==(const AppFolder &) const = default;
};

// One node of the application tree: an application or a folder.
class AppEntry
{
public:
    AppEntry(App app)
        : m_node(std::move(app))
    {
    }
    AppEntry(AppFolder folder)
        : m_node(std::move(folder))
    {
    }

    const App *app() const { return std::get_if<App>(&m_node); }
    const AppFolder *folder() const { return std::get_if<AppFolder>(&m_node); }
    const QString &name() const;
    const QUrl &url() const;

    bool operator==(const AppEntry &) const = default;

private:
    std::variant<App, AppFolder> m_node;
};

size_t qHash(const AppEntry &entry, size_t seed = 0) noexcept;
size_t qHash(const AppFolder &folder, size_t seed = 0) noexcept;

// Finds the applications installed for the user from their desktop entries
// and arranges them by menu category. Keeps no state: every call scans the
// file system afresh, and a scan may run on any thread.
class AppLibrary
{
public:
    AppLibrary() = delete;

    // The applications folders, most important first: the user's own, then
    // those of every system data directory.
    static QStringList scanRoots();

    // The application tree: one folder per main category that holds an
    // application, at most one application per name within a folder, each
    // level sorted by name as people expect ("App 2" before "App 10").
    static QList<AppEntry> scan();

    // The tree of the given applications, most important first; folders
    // named as `categoryNames` says.
    static QList<AppEntry> arrange(const QList<DesktopApp> &apps, const CategoryNames &categoryNames);

    // The applications of a tree, in tree order.
    static QList<App> apps(const QList<AppEntry> &entries);
};
