#include "app/socketfolder.h"

#include "common/log.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <cerrno>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace {

SocketFolder refused(const QString &path, const QString &why)
{
    return {path, QStringLiteral("Quillon cannot keep its socket in %1: %2.").arg(path, why)};
}

} // namespace

SocketFolder privateFolder(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    bool made = ::mkdir(name.constData(), 0700) == 0;
    if (!made && errno != EEXIST)
        return refused(path, QStringLiteral("it could not be made (%1)").arg(QString::fromLocal8Bit(strerror(errno))));
    // The temporary folder is everyone's: what stands there under our name
    // may be another user's, or a link into one of theirs.
    struct stat status { };
    if (::lstat(name.constData(), &status) != 0)
        return refused(path, QString::fromLocal8Bit(strerror(errno)));
    if (S_ISLNK(status.st_mode))
        return refused(path, QStringLiteral("it is a symbolic link, not a folder"));
    if (!S_ISDIR(status.st_mode))
        return refused(path, QStringLiteral("it is not a folder"));
    if (status.st_uid != ::getuid())
        return refused(path, QStringLiteral("it belongs to another user (uid %1)").arg(status.st_uid));
    // The umask may have taken more than the mode we asked for; ours to set.
    if (made && (status.st_mode & 07777) != 0700 && ::chmod(name.constData(), 0700) == 0)
        status.st_mode = (status.st_mode & ~07777) | 0700;
    if ((status.st_mode & 07777) != 0700) {
        return refused(path, QStringLiteral("its mode is %1, not 0700; only its owner may use it")
                                 .arg(status.st_mode & 07777, 4, 8, QLatin1Char('0')));
    }
    return {path, {}};
}

SocketFolder socketFolder()
{
    // Qt checks the owner and mode of the session's folder itself and gives
    // nothing for one it does not trust.
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
        if (!runtime.isEmpty())
            return {runtime, {}};
        qCWarning(lcApp, "XDG_RUNTIME_DIR is not usable; using a private folder instead");
    }
    return privateFolder(QDir(QDir::tempPath()).filePath(QStringLiteral("quillon-%1").arg(::getuid())));
}
