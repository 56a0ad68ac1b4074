#include "sources/listingqueue.h"

#include "common/log.h"
#include "common/mainthread.h"

#include <QCoreApplication>
#include <QThreadPool>

ListingQueue::ListingQueue(QObject *parent)
    : QObject(parent)
    , m_pool(new QThreadPool)
    , m_alive(std::make_shared<ListingQueue *>(this))
{
    m_pool->setMaxThreadCount(maximumThreads);
}

ListingQueue::~ListingQueue()
{
    m_alive.reset();
    m_pool->clear();
    // A worker stuck in a dead mount may never return; its pool is left
    // behind rather than waited for.
    if (m_pool->waitForDone(1000))
        delete m_pool;
}

ListingQueue &ListingQueue::shared()
{
    static auto *queue = new ListingQueue;
    return *queue;
}

void ListingQueue::run(Work work, Done done)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (m_pending >= maximumPending) {
        qCWarning(lcSources, "%d folder listings are waiting; another was refused", m_pending);
        done(std::nullopt);
        return;
    }
    ++m_pending;
    std::weak_ptr<ListingQueue *> alive = m_alive;
    m_pool->start([work = std::move(work), done = std::move(done), alive]() mutable {
        MenuEntries entries = work();
        // Asked now, not when started: the application may have gone since.
        QObject *const mainThread = QCoreApplication::instance();
        if (!mainThread || alive.expired())
            return;
        QMetaObject::invokeMethod(
            mainThread,
            [entries = std::move(entries), done = std::move(done), alive] {
                const auto queue = alive.lock();
                if (!queue)
                    return;
                --(*queue)->m_pending;
                done(entries);
            },
            Qt::QueuedConnection);
    });
}
