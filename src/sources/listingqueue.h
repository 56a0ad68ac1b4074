#pragma once

#include "sources/menuentry.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

class QThreadPool;

// Reads folders for menus on worker threads, so a slow or hung mount costs a
// "Loading…" item, never a frozen menu. A few listings run at once and a
// bounded number wait; beyond that a listing is refused at once rather than
// queued without end behind a mount that never answers.
class ListingQueue : public QObject
{
    Q_OBJECT

public:
    static constexpr int maximumThreads = 4;
    static constexpr int maximumPending = 64;

    // Runs on a worker; must not touch main-thread objects.
    using Work = std::function<MenuEntries()>;
    // Runs on the main thread: the entries, or nothing when refused.
    using Done = std::function<void(std::optional<MenuEntries>)>;

    explicit ListingQueue(QObject *parent = nullptr);
    ~ListingQueue() override;
    ListingQueue(const ListingQueue &) = delete;
    ListingQueue &operator=(const ListingQueue &) = delete;

    // The process's queue. Never destroyed: a listing stuck on a dead mount
    // must not hold up quitting.
    static ListingQueue &shared();

    void run(Work work, Done done);
    // Listings started and not yet delivered.
    int pending() const { return m_pending; }

private:
    QThreadPool *m_pool;
    int m_pending = 0;
    // Workers deliver only while this lives.
    std::shared_ptr<ListingQueue *> m_alive;
};
