#include "sources/appindex.h"

#include "common/log.h"
#include "sources/desktopentryfile.h"
#include "sources/xdgdirs.h"

#include <QDir>
#include <QFileInfo>

#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int backgroundNice = 10;

} // namespace

AppIndex::AppIndex(QObject *parent)
    : QObject(parent)
    , m_dataDirs(xdgDataDirs())
    , m_roots(AppLibrary::scanRoots())
    , m_desktops(currentDesktops())
{
    m_worker.setMaxThreadCount(1);
    m_settle.setSingleShot(true);
    m_settle.setInterval(settleTime);
    connect(&m_settle, &QTimer::timeout, this, [this] {
        if (!m_scanning)
            startScan();
    });
    connect(&m_watch, &DirectoryWatch::changed, this, &AppIndex::folderChanged);
    connect(&m_watch, &DirectoryWatch::overflowed, this, [this] {
        for (qsizetype root = 0; root < m_roots.size(); ++root)
            rescanLater(root);
    });
    startScan();
}

AppIndex::~AppIndex()
{
    m_worker.waitForDone();
}

QList<AppEntry> AppIndex::tree()
{
    if (!m_ready) {
        {
            QMutexLocker locker(&m_mutex);
            while (!m_finishedScan)
                m_scanFinished.wait(&m_mutex);
        }
        takeFinishedScan();
    }
    return m_tree;
}

void AppIndex::startScan()
{
    // Folders that did not change are carried over as they are.
    QList<std::optional<FolderApps>> known;
    for (qsizetype root = 0; root < m_roots.size(); ++root) {
        if (m_ready && !m_staleRoots.contains(root))
            known.append(m_folders[root]);
        else
            known.append(std::nullopt);
    }
    m_staleRoots.clear();
    m_scanning = true;
    // Languages and desktops are the session's; read here, not per file.
    const DesktopEntryRules rules{m_desktops, sessionLanguages(), applicationCacheFolder()};
    m_worker.start([this, known = std::move(known), rules, roots = m_roots, dataDirs = m_dataDirs] {
        // The scan must not slow the start of the tray icon or an opening
        // menu: the UI thread goes first. Threads the scan starts inherit it.
        setpriority(PRIO_PROCESS, gettid(), backgroundNice);
        Scan scan;
        for (qsizetype root = 0; root < roots.size(); ++root)
            scan.folders.append(known[root] ? *known[root] : readFolderApps(roots[root], rules));
        scan.tree = AppLibrary::arrange(mergeFolderApps(scan.folders), CategoryNames(dataDirs, rules.desktops));
        {
            QMutexLocker locker(&m_mutex);
            m_finishedScan = std::move(scan);
            m_scanFinished.wakeAll();
        }
        QMetaObject::invokeMethod(this, &AppIndex::takeFinishedScan, Qt::QueuedConnection);
    });
}

void AppIndex::takeFinishedScan()
{
    std::optional<Scan> scan;
    {
        QMutexLocker locker(&m_mutex);
        scan.swap(m_finishedScan);
    }
    // tree() may have taken it already.
    if (scan)
        apply(std::move(*scan));
}

void AppIndex::apply(Scan scan)
{
    const bool first = !m_ready;
    const bool treeChanged = scan.tree != m_tree;
    m_folders = std::move(scan.folders);
    m_tree = std::move(scan.tree);
    m_ready = true;
    m_scanning = false;
    watchFolders();
    if (!m_staleRoots.isEmpty() && !m_settle.isActive())
        startScan();
    if (first)
        qCDebug(lcSources) << "Application index ready:" << AppLibrary::apps(m_tree).size() << "applications";
    if (first || treeChanged)
        Q_EMIT changed();
}

// Every directory walked, and for a folder that does not exist yet the
// folder it would appear in.
void AppIndex::watchFolders()
{
    QStringList directories;
    for (qsizetype root = 0; root < m_roots.size(); ++root) {
        if (!m_folders[root].directories.isEmpty())
            directories.append(m_folders[root].directories);
        else if (const QString parent = QFileInfo(m_roots[root]).path(); QFileInfo(parent).isDir())
            directories.append(parent);
    }
    m_watch.setDirectories(directories);
}

void AppIndex::folderChanged(const QString &directory)
{
    for (qsizetype root = 0; root < m_roots.size(); ++root) {
        const QString &rootPath = m_roots[root];
        if (directory == rootPath || directory.startsWith(rootPath + QLatin1Char('/'))
            || (m_folders.value(root).directories.isEmpty() && directory == QFileInfo(rootPath).path())) {
            rescanLater(root);
        }
    }
}

void AppIndex::rescanLater(qsizetype root)
{
    m_staleRoots.insert(root);
    if (!m_settle.isActive())
        m_settle.start();
}
