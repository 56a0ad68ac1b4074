#pragma once

#include "catalog/catalog.h"
#include "catalog/osversion.h"
#include "common/decoded.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

// Which catalog document fits the running desktop, and its loading.
//
// Documents live in one folder per desktop, named after the version of that
// desktop's settings program: <root>/gnome/43.json, <root>/kde/5.27.json.

// A desktop's settings program: the catalog folder it serves, the executable
// that tells it is installed and the AppStream files that may give its
// version (distributions install one name or the other).
struct SettingsProgram {
    QString desktop;
    QString executable;
    QStringList metainfoPaths;
    bool operator==(const SettingsProgram &) const = default;
};

size_t qHash(const SettingsProgram &program, size_t seed = 0) noexcept;

// Everything the choice looks at, so that it can be pointed elsewhere.
struct CatalogEnvironment {
    QString resourceRoot;
    // The entries of $XDG_CURRENT_DESKTOP, in order.
    QStringList currentDesktops;
    QList<SettingsProgram> programs;
    // Where executables are looked for; empty means $PATH.
    QStringList searchPaths;
    // Where the answer of a settings program's --version is remembered for
    // as long as the program's file stays the same; empty: never.
    QString versionCache;

    // The compiled-in documents and this session's desktop.
    static CatalogEnvironment system();
};

// The catalog folder to use: the first current desktop that has one, else
// the desktop whose settings program is installed, else "gnome". The reason
// for the choice, in words for the log, goes to reason when given.
QString chooseDesktop(const CatalogEnvironment &environment, QString *reason = nullptr);

// A catalog folder's aliases.json: releases that share an older release's
// document, each to that document's file name ({"49": "48.json"}). Empty when
// the folder has none.
Decoded<QMap<QString, QString>> readAliases(const QString &path);

// The newest release named in an AppStream file, or none when the file is
// missing, unreadable or names no parsable version.
std::optional<OSVersion> metainfoVersion(const QString &path);

// What an installed settings program answers to --version ("gnome-control-center
// 43.6"): its last word as a version. None when it is not installed, fails or
// answers something else. For releases whose AppStream file lists no release.
std::optional<OSVersion> programVersion(const CatalogEnvironment &environment, const QString &executable);

// From documents in listing order, the newest one not newer than the running
// version, else the oldest; also the oldest when the running version is
// unknown.
// Files whose names are not versions do not count. None when none is left.
std::optional<QString> chooseDocument(const QStringList &files, const std::optional<OSVersion> &running);

// Which document was read and why, in words for the log and for bug reports.
struct CatalogChoice {
    QString document; // the folder and file read: "gnome/43.json"
    QString desktopReason;
    QString versionReason;
    bool operator==(const CatalogChoice &) const = default;

    // The choice behind Catalog::current().
    static const CatalogChoice &current();
};

size_t qHash(const CatalogChoice &choice, size_t seed = 0) noexcept;

// The whole choice and decoding; a failure carries the message that ends the
// process. What was chosen goes to choice when given.
Decoded<Catalog> loadCatalog(const CatalogEnvironment &environment, CatalogChoice *choice = nullptr);
