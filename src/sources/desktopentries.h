#pragma once

#include "sources/appcategories.h"

#include <QByteArrayList>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QUrl>

// One application the user should see in menus, read from its desktop entry.
struct DesktopApp {
    QString id;   // the desktop file ID, e.g. "org.gnome.Maps.desktop"
    QString name; // the localized Name
    QUrl url;     // the desktop file
    QString icon; // a theme icon name or an absolute path; may be empty
    AppCategory category = AppCategory::Other;
    bool operator==(const DesktopApp &) const = default;
};

// What one applications folder holds.
struct FolderApps {
    // Every desktop file ID below the folder, shown or not: each masks the
    // same ID in less important folders.
    QSet<QString> ids;
    // The entries to show, files by path.
    QList<DesktopApp> apps;
    // The real directories walked (the folder and its sub-folders), each
    // once however many links lead to it.
    QStringList directories;
    bool operator==(const FolderApps &) const = default;
};

// Which entries show, decided as GLib decides: first group [Desktop Entry],
// Type=Application, TryExec and the Exec program found on PATH, not Hidden,
// not NoDisplay, and OnlyShowIn/NotShowIn for the first current desktop they
// name. A missing Name reads as GLib's "Unnamed".
struct DesktopEntryRules {
    QStringList desktops;     // XDG_CURRENT_DESKTOP, in order
    QByteArrayList languages; // for translated keys, best first
    // Where what was read is kept for the next start; empty: nowhere.
    QString cacheFolder;
};

// The user's cache folder for what readFolderApps read.
QString applicationCacheFolder();

// Reads the desktop entries below one applications folder. A missing folder
// is empty and not logged; an unreadable one is logged.
FolderApps readFolderApps(const QString &dir, const DesktopEntryRules &rules);

// The entries of several folders, most important first, each desktop file ID
// counting once: the most important file decides, so a Hidden copy (or one
// that cannot be loaded) masks the others.
QList<DesktopApp> mergeFolderApps(const QList<FolderApps> &folders);

// Both at once for the given folders and the session's desktops and languages.
QList<DesktopApp> readDesktopApps(const QStringList &applicationDirs, const QStringList &desktops);
