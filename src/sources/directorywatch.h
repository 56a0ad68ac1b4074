#pragma once

#include <QHash>
#include <QObject>
#include <QStringList>

class QSocketNotifier;

// Reports what happens inside a set of directories (not below them): an
// entry added, removed, renamed, written and closed, or its attributes
// changed. One inotify watch per directory. A file rewritten in place counts
// too, which a plain directory watch misses.
class DirectoryWatch : public QObject
{
    Q_OBJECT

public:
    explicit DirectoryWatch(QObject *parent = nullptr);
    ~DirectoryWatch() override;
    DirectoryWatch(const DirectoryWatch &) = delete;
    DirectoryWatch &operator=(const DirectoryWatch &) = delete;

    // Watches exactly these directories from now on; ones that cannot be
    // watched are logged and left out.
    void setDirectories(const QStringList &directories);
    QStringList directories() const { return m_watchOf.keys(); }

Q_SIGNALS:
    void changed(const QString &directory);
    // The kernel dropped events: anything may have changed.
    void overflowed();

private:
    void readEvents();

    int m_fd = -1;
    QSocketNotifier *m_notifier = nullptr;
    QHash<QString, int> m_watchOf;
    // Two paths to one directory share a watch.
    QHash<int, QStringList> m_pathsOf;
};
