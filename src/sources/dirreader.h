#pragma once

#include <QByteArray>
#include <QList>

#include <dirent.h>

// Reads one directory level straight from the file system: QDir and
// QFileInfo cost a stat per entry, which large folders cannot afford.
// Failing to open the directory is logged as "<path> could not be read:
// <reason>", except a missing directory when the caller expects those.
class DirReader
{
public:
    enum class MissingIs { Silent, Logged };

    struct Entry {
        const char *name = nullptr; // valid until the next call of next()
        unsigned char type = DT_UNKNOWN;
    };

    DirReader(const QByteArray &path, MissingIs missing);
    ~DirReader();
    DirReader(const DirReader &) = delete;
    DirReader &operator=(const DirReader &) = delete;

    bool isOpen() const { return m_dir != nullptr; }
    // The next entry other than "." and "..", or false at the end.
    bool next(Entry &entry);
    // Whether an entry is a directory, following symbolic links; a broken
    // link is not one.
    bool isDirectory(const Entry &entry) const;
    // The file descriptor of the open directory, for *at() calls.
    int fd() const;

private:
    DIR *m_dir = nullptr;
};

// Directories kept open while their entries are read, so each file opens
// relative to its folder rather than by a full path the kernel walks again.
class OpenDirectories
{
public:
    // More would risk the process's limit on open files; entries of further
    // folders open by path.
    static constexpr qsizetype maximum = 256;

    OpenDirectories() = default;
    ~OpenDirectories();
    OpenDirectories(const OpenDirectories &) = delete;
    OpenDirectories &operator=(const OpenDirectories &) = delete;

    // A descriptor of its own for an open directory, or AT_FDCWD when it
    // cannot have one.
    int keep(int fd);

private:
    QList<int> m_fds;
};
