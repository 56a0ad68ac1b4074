#pragma once

#include <QObject>
#include <QTimer>

// Qt decides once per process between the panel's D-Bus tray and the old
// XEmbed tray, when the first tray icon is made. At login the panel may come
// up after us, so the icon is made only once a StatusNotifier host is
// registered on the session bus, or after a bounded wait without one.
class TrayHostWatch : public QObject
{
    Q_OBJECT

public:
    explicit TrayHostWatch(int timeoutMs = 5000, QObject *parent = nullptr);

    // Emits ready() once, at the latest after the timeout.
    void start();

Q_SIGNALS:
    void ready(bool hostFound);

private Q_SLOTS:
    void hostRegistered();

private:
    void askWatcher();
    void finish(bool hostFound);

    QTimer m_timeout;
    bool m_done = false;
};
