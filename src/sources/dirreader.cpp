#include "sources/dirreader.h"

#include "common/log.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

DirReader::DirReader(const QByteArray &path, MissingIs missing)
    : m_dir(opendir(path.constData()))
{
    if (m_dir)
        return;
    const int error = errno;
    if (missing == MissingIs::Silent && (error == ENOENT || error == ENOTDIR))
        return;
    qCWarning(lcSources, "%s could not be read: %s", qUtf8Printable(QFile::decodeName(path)),
              qUtf8Printable(qt_error_string(error)));
}

DirReader::~DirReader()
{
    if (m_dir)
        closedir(m_dir);
}

bool DirReader::next(Entry &entry)
{
    if (!m_dir)
        return false;
    while (const dirent *found = readdir(m_dir)) {
        const char *name = found->d_name;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
            continue;
        entry.name = name;
        entry.type = found->d_type;
        return true;
    }
    return false;
}

bool DirReader::isDirectory(const Entry &entry) const
{
    if (entry.type == DT_DIR)
        return true;
    if (entry.type != DT_LNK && entry.type != DT_UNKNOWN)
        return false;
    struct stat info;
    return fstatat(fd(), entry.name, &info, 0) == 0 && S_ISDIR(info.st_mode);
}

int DirReader::fd() const
{
    return m_dir ? dirfd(m_dir) : -1;
}

OpenDirectories::~OpenDirectories()
{
    for (const int fd : std::as_const(m_fds))
        ::close(fd);
}

int OpenDirectories::keep(int fd)
{
    if (m_fds.size() >= maximum)
        return AT_FDCWD;
    const int kept = ::fcntl(fd, F_DUPFD_CLOEXEC, 0);
    if (kept < 0)
        return AT_FDCWD;
    m_fds.append(kept);
    return kept;
}
