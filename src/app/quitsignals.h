#pragma once

#include <QObject>

class QSocketNotifier;

// SIGTERM, SIGINT and SIGHUP end the event loop, so the process leaves as
// Quit leaves it: the instance socket removed, every object torn down, the
// preferences closed. Should that way out hang, a second signal ends the
// process at once, as it would by default. One per process.
class QuitSignals : public QObject
{
    Q_OBJECT

public:
    explicit QuitSignals(QObject *parent = nullptr);
    ~QuitSignals() override;

private:
    void handle();

    QSocketNotifier *m_notifier = nullptr;
};
