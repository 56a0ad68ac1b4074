#pragma once

#include "sources/desktopentries.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

struct stat;

// When a file or folder last changed, as far as a cache needs to know.
struct FileStamp {
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0;
    qint64 seconds = 0;
    qint64 nanoseconds = 0;
    bool operator==(const FileStamp &) const = default;

    static FileStamp of(const struct stat &status);
    // The stamp to keep for what is read now. File times tick in steps of a
    // few milliseconds, so a change just after reading can leave the time as
    // it was: whatever changed in the last seconds gets a stamp that never
    // matches, and is read again next time.
    static FileStamp toKeep(const struct stat &status);
};

// What an entry says, as far as the menu cares. Whether its programs exist
// is asked anew each time: they come and go without the entry changing.
struct EntryFacts {
    bool shows = false; // an application not hidden from these desktops
    QString name;
    QString icon;
    qint32 category = 0;
    QByteArray tryExec;     // empty: none
    QByteArray execProgram; // empty: no Exec line
    bool operator==(const EntryFacts &) const = default;
};

// One applications folder's entries as last read, kept in the user's cache
// folder: a start then costs a stat per file instead of reading every entry.
// Used only while every folder and file is as it was, and for the same
// languages and desktops; anything unreadable is ignored and written anew.
struct FolderCache {
    struct File {
        QString id;
        qint32 directory = 0; // index into directories
        QByteArray name;
        FileStamp stamp;
        EntryFacts facts;
    };

    QStringList directories;
    QList<FileStamp> directoryStamps;
    QList<File> files;
    // Whether each program the entries name was found. Installing or
    // removing a program changes its PATH folder's time, so the answers hold
    // while PATH and its folders' stamps are the same.
    QByteArray path;
    QList<FileStamp> pathStamps;
    QHash<QByteArray, bool> programs;

    // The stamps of PATH's folders, now; a folder that cannot be read gets
    // one that never matches.
    static QList<FileStamp> stampsOfPath(const QByteArray &path);

    void write(const QString &folder, const DesktopEntryRules &rules) const;
    static std::optional<FolderCache> read(const QString &folder, const DesktopEntryRules &rules);
    // Whether nothing was added, removed or changed since: a folder's time
    // changes with its list of names, a file's with its contents.
    bool isCurrent() const;
};
