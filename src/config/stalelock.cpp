#include "config/stalelock.h"

#include "common/log.h"

#include <QFile>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

// QSettings guards each write with a QLockFile, which holds an flock() on the
// lock file for as long as the lock lives. A crash leaves the file behind;
// when it is empty QLockFile cannot tell whose it was and waits until the
// file is 30 s old before it breaks it, all that time on the UI thread.
//
// A lock file that can be flock()ed is therefore held by nobody. Before it is
// removed, the name must still lead to the file that is locked here: another
// Quillon may have removed the same stale file meanwhile and a third made a
// fresh lock under that name, which must stay. While this process holds the
// flock, nobody else can remove the name (Qt breaks a lock only with the
// flock held) nor create it anew (the name is taken), so the check cannot
// go stale before the unlink.
bool removeStaleLock(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    const int fd = ::open(name.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return false; // the usual case: no lock file at all
    bool removed = false;
    struct stat opened { };
    struct stat named { };
    if (::flock(fd, LOCK_EX | LOCK_NB) == 0 && ::fstat(fd, &opened) == 0 && S_ISREG(opened.st_mode)
        && ::lstat(name.constData(), &named) == 0 && named.st_dev == opened.st_dev && named.st_ino == opened.st_ino) {
        removed = ::unlink(name.constData()) == 0;
        if (removed)
            qCWarning(lcConfig, "Removed the stale lock %s left by a process that ended", name.constData());
        else
            qCWarning(lcConfig, "Could not remove the stale lock %s: %s", name.constData(), strerror(errno));
    }
    ::close(fd);
    return removed;
}
