#pragma once

#include <QCoreApplication>
#include <QThread>

// Store, menus, panel, hot keys and caches live on the main thread only; every
// entry point calls this so a stray caller fails loudly in debug builds.
inline bool isMainThread()
{
    const auto *app = QCoreApplication::instance();
    return app == nullptr || QThread::currentThread() == app->thread();
}

#define QUILLON_ASSERT_MAIN_THREAD() Q_ASSERT_X(isMainThread(), Q_FUNC_INFO, "called off the main thread")
