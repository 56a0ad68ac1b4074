#pragma once

#include "config/layout.h"

#include <QList>
#include <QString>
#include <QUrl>

// One item of a listed folder. name is the file name as file managers show
// it; isFolder marks directories (and links to them), which the menu lists
// in turn.
struct FolderEntry {
    QString name;
    QUrl url;
    bool isFolder = false;
    bool operator==(const FolderEntry &) const = default;
};

size_t qHash(const FolderEntry &entry, size_t seed = 0) noexcept;

// Lists one level of a user's folder for the menu and the search. Hidden
// items (dot names and the names in the folder's .hidden file) are left out.
// An unreadable or missing folder is logged and lists as empty. Keeps no
// state; safe on any thread.
class FolderListing
{
public:
    FolderListing() = delete;

    // Most entries one folder shows; enough for a menu, and it bounds the
    // work for very large folders.
    static constexpr int limit = 200;

    // Every visible child, in the order the file system returns them.
    static QList<FolderEntry> contents(const QUrl &folder);

    // The visible children sorted by sort and cut to the first limit:
    // by file name as people expect ("File 2" before "File 10", case
    // ignored), or newest first by the date the item was added (its birth
    // time) or modified. Date sorts keep the listing order among equal dates
    // and put items without a readable date last.
    static QList<FolderEntry> list(const QUrl &folder, FolderSort sort);
};
