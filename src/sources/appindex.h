#pragma once

#include "sources/applibrary.h"
#include "sources/desktopentries.h"
#include "sources/directorywatch.h"

#include <QMutex>
#include <QObject>
#include <QSet>
#include <QThreadPool>
#include <QTimer>
#include <QWaitCondition>

#include <chrono>
#include <optional>

// The installed applications, held in memory for the menu, the search and
// the settings. The first scan runs on a worker thread as soon as the index
// exists; after that the applications folders are watched, and a change
// rescans only the folder it happened in, on the worker, once the folder
// has been quiet for a moment. Reading the index never touches the disk.
class AppIndex : public QObject
{
    Q_OBJECT

public:
    // A package manager writes many files at once; one rescan follows.
    static constexpr std::chrono::milliseconds settleTime{200};

    explicit AppIndex(QObject *parent = nullptr);
    ~AppIndex() override;
    AppIndex(const AppIndex &) = delete;
    AppIndex &operator=(const AppIndex &) = delete;

    // The application tree. Until the first scan has finished this waits
    // for it, which only a caller in the first moments after start sees.
    QList<AppEntry> tree();
    bool isReady() const { return m_ready; }

Q_SIGNALS:
    // The tree changed: an application was installed, removed or edited.
    void changed();

private:
    struct Scan {
        QList<FolderApps> folders;
        QList<AppEntry> tree;
    };

    void startScan();
    void takeFinishedScan();
    void apply(Scan scan);
    void watchFolders();
    void folderChanged(const QString &directory);
    void rescanLater(qsizetype root);

    const QStringList m_dataDirs;
    const QStringList m_roots;
    const QStringList m_desktops;
    QList<FolderApps> m_folders;
    QList<AppEntry> m_tree;
    bool m_ready = false;
    bool m_scanning = false;
    QSet<qsizetype> m_staleRoots;
    QTimer m_settle;
    DirectoryWatch m_watch;

    QThreadPool m_worker;
    QMutex m_mutex;
    QWaitCondition m_scanFinished;
    std::optional<Scan> m_finishedScan; // guarded by m_mutex
};
