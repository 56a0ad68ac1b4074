#pragma once

#include <QString>

// Where the instance socket lives when there is no session bus, and whether
// that place can be trusted: nobody but this user may make, replace or
// listen on a socket there.
struct SocketFolder {
    QString path;
    QString problem; // why the folder cannot be used; empty when it can

    bool isUsable() const { return problem.isEmpty(); }
    bool operator==(const SocketFolder &) const = default;
};

// The session's runtime folder (XDG_RUNTIME_DIR); without one, a folder of
// this user's own in the temporary folder, quillon-<uid>.
SocketFolder socketFolder();

// `path` as a private folder: made with mode 0700 when missing; one that is
// there must be a real folder (not a link to one), this user's, mode 0700.
SocketFolder privateFolder(const QString &path);
