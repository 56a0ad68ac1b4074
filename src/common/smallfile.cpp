#include "common/smallfile.h"

#include <QString>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace {

SmallFile failed(SmallFile::Failure failure, int error = 0)
{
    SmallFile file;
    file.failure = failure;
    file.error = error;
    return file;
}

} // namespace

QString SmallFile::reason() const
{
    switch (failure) {
    case Failure::None:
        return {};
    case Failure::NotRegular:
        return QStringLiteral("not a regular file");
    case Failure::TooLarge:
        return QStringLiteral("too large");
    case Failure::CannotOpen:
    case Failure::CannotRead:
        break;
    }
    return qt_error_string(error);
}

SmallFile SmallFile::read(int directory, const QByteArray &path, qint64 cap)
{
    const int fd = ::openat(directory, path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0)
        return failed(Failure::CannotOpen, errno);
    struct Closer {
        int fd;
        ~Closer() { ::close(fd); }
    } closer{fd};
    struct stat status { };
    if (::fstat(fd, &status) != 0)
        return failed(Failure::CannotRead, errno);
    if (!S_ISREG(status.st_mode))
        return failed(Failure::NotRegular);
    if (status.st_size > cap)
        return failed(Failure::TooLarge);

    // One byte more than the size seen, to notice a file that grew since;
    // never more than cap + 1 in all.
    SmallFile file;
    file.data.resize(qsizetype(status.st_size) + 1);
    qsizetype filled = 0;
    for (;;) {
        if (filled == file.data.size()) {
            if (file.data.size() > cap)
                return failed(Failure::TooLarge);
            file.data.resize(std::min<qsizetype>(file.data.size() * 2, cap + 1));
        }
        const qsizetype wanted = file.data.size() - filled;
        const ssize_t count = ::read(fd, file.data.data() + filled, size_t(wanted));
        if (count < 0) {
            if (errno == EINTR || errno == EAGAIN)
                continue;
            return failed(Failure::CannotRead, errno);
        }
        filled += count;
        if (count == 0)
            break;
    }
    file.data.truncate(filled);
    return file;
}
