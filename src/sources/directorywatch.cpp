#include "sources/directorywatch.h"

#include "common/log.h"

#include <QFile>
#include <QSet>
#include <QSocketNotifier>

#include <cerrno>
#include <cstring>
#include <sys/inotify.h>
#include <unistd.h>

namespace {

constexpr uint32_t watchedEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE | IN_ATTRIB
                                   | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

} // namespace

DirectoryWatch::DirectoryWatch(QObject *parent)
    : QObject(parent)
    , m_fd(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
    if (m_fd < 0) {
        qCWarning(lcSources) << "Folders cannot be watched for changes:" << strerror(errno);
        return;
    }
    m_notifier = new QSocketNotifier(m_fd, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &DirectoryWatch::readEvents);
}

DirectoryWatch::~DirectoryWatch()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

void DirectoryWatch::setDirectories(const QStringList &directories)
{
    if (m_fd < 0)
        return;
    const QSet<QString> wanted(directories.begin(), directories.end());
    for (const QString &path : m_watchOf.keys()) {
        if (wanted.contains(path))
            continue;
        const int watch = m_watchOf.take(path);
        QStringList &paths = m_pathsOf[watch];
        paths.removeAll(path);
        if (paths.isEmpty()) {
            m_pathsOf.remove(watch);
            inotify_rm_watch(m_fd, watch);
        }
    }
    for (const QString &path : wanted) {
        if (m_watchOf.contains(path))
            continue;
        const int watch = inotify_add_watch(m_fd, QFile::encodeName(path).constData(), watchedEvents);
        if (watch < 0) {
            // ENOSPC: the user's inotify watches are used up.
            qCWarning(lcSources) << path << "cannot be watched for changes:" << strerror(errno);
            continue;
        }
        m_watchOf.insert(path, watch);
        if (!m_pathsOf[watch].contains(path))
            m_pathsOf[watch].append(path);
    }
}

void DirectoryWatch::readEvents()
{
    alignas(inotify_event) char buffer[16 * 1024];
    QSet<QString> changedPaths;
    bool overflow = false;
    for (;;) {
        const ssize_t length = ::read(m_fd, buffer, sizeof buffer);
        if (length <= 0) {
            if (length < 0 && errno == EINTR)
                continue;
            break;
        }
        for (ssize_t offset = 0; offset < length;) {
            const auto *event = reinterpret_cast<const inotify_event *>(buffer + offset);
            offset += ssize_t(sizeof(inotify_event) + event->len);
            if (event->mask & IN_Q_OVERFLOW)
                overflow = true;
            else if (event->wd >= 0) {
                for (const QString &path : m_pathsOf.value(event->wd))
                    changedPaths.insert(path);
            }
            if (event->mask & IN_IGNORED) {
                // The directory went away; its watch is gone with it.
                for (const QString &path : m_pathsOf.take(event->wd))
                    m_watchOf.remove(path);
            }
        }
    }
    if (overflow)
        Q_EMIT overflowed();
    for (const QString &path : std::as_const(changedPaths))
        Q_EMIT changed(path);
}
