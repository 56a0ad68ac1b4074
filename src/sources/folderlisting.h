#pragma once

#include "config/layout.h"

#include <QList>
#include <QString>
#include <QUrl>

#include <utility>

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

// The part of a folder a menu shows, and how much there is in all, so the
// menu can say what it left out.
struct FolderPage {
    QList<FolderEntry> entries;
    qsizetype total = 0; // every visible child, shown or not

    FolderPage() = default;
    FolderPage(QList<FolderEntry> shown, qsizetype all)
        : entries(std::move(shown))
        , total(all)
    {
    }
    // A page that shows everything it has.
    FolderPage(QList<FolderEntry> all)
        : entries(std::move(all))
        , total(entries.size())
    {
    }
    qsizetype more() const { return total - entries.size(); }
    bool operator==(const FolderPage &) const = default;
};

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
    // The same, with the number of children left out.
    static FolderPage page(const QUrl &folder, FolderSort sort);
    // Every visible child in that order, uncut: what a search goes through.
    static QList<FolderEntry> all(const QUrl &folder, FolderSort sort);
};
