#pragma once

#include <QByteArray>

#include <cerrno>
#include <fcntl.h>

// Reads a small file from a folder someone else fills (applications, the
// user's folders, the scripts folder). Opening never waits (a FIFO has no
// writer to wait for), only regular files are read, and never more than the
// cap: a link to /dev/zero or a 50 MB "desktop entry" costs nothing.
struct SmallFile {
    // Larger than any desktop entry, .directory or .hidden file anyone writes.
    static constexpr qint64 defaultCap = 1024 * 1024;

    enum class Failure { None, CannotOpen, NotRegular, TooLarge, CannotRead };

    QByteArray data;
    Failure failure = Failure::None;
    int error = 0; // errno of CannotOpen and CannotRead

    bool ok() const { return failure == Failure::None; }
    // Nothing of that name: ordinary, and seldom worth a log line.
    bool missing() const { return failure == Failure::CannotOpen && error == ENOENT; }
    // Why the file was not read, for a log line.
    QString reason() const;

    // `path` is relative to `directory` unless absolute.
    static SmallFile read(int directory, const QByteArray &path, qint64 cap = defaultCap);
    static SmallFile read(const QByteArray &path, qint64 cap = defaultCap) { return read(AT_FDCWD, path, cap); }
};
