#pragma once

#include "hotkeys/hotkeybackend.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QVariantMap>

#include <map>

class QDBusServiceWatcher;

// Global shortcuts through the desktop portal (org.freedesktop.portal.
// GlobalShortcuts), where programs may not grab keys themselves. A portal
// session binds its shortcuts once, so every change opens a new session
// and binds all current combinations in it.
class PortalHotKeys final : public HotKeyBackend
{
    Q_OBJECT

public:
    static constexpr const char *service = "org.freedesktop.portal.Desktop";
    static constexpr const char *path = "/org/freedesktop/portal/desktop";
    static constexpr const char *interface = "org.freedesktop.portal.GlobalShortcuts";

    explicit PortalHotKeys(const QDBusConnection &bus = QDBusConnection::sessionBus());
    ~PortalHotKeys() override;

    HotKeyGrab grab(quint32 keyCode, quint32 modifiers, quint32 id) override;
    void release(HotKeyHandle handle) override;
    // Until the portal has answered, combinations are requests: `bound` or
    // `refused` tells what became of them.
    bool isAvailable() const override { return m_state == State::Unknown || m_state == State::Present; }
    bool settlesLater() const override { return true; }

    // The portal's name for a shortcut and for its trigger ("CTRL+ALT+space").
    static QString shortcutId(quint32 id);
    static QString trigger(quint32 keyCode, quint32 modifiers);

private Q_SLOTS:
    void sessionCreated(uint response, const QVariantMap &results);
    void shortcutsBound(uint response, const QVariantMap &results);
    void shortcutActivated(const QDBusMessage &message);

private:
    // Absent: no portal at all, though one may still start; Missing: a
    // portal without GlobalShortcuts.
    enum class State { Unknown, Present, Absent, Missing };
    struct Shortcut {
        quint32 id;
        QString trigger;
    };

    void probe();
    void setState(State state);
    // Tells the outcome of every combination sent in the last bind.
    void settle(const QVariantMap &results);
    void refuseAll(const QList<HotKeyHandle> &handles, HotKeyRefusal refusal);
    void scheduleBind();
    void bind();
    void closeSession();
    QString requestPath(const QString &token) const;
    bool watchResponse(const QString &token, const char *slot);
    QString nextToken();

    QDBusConnection m_bus;
    QDBusServiceWatcher *m_watcher;
    State m_state = State::Unknown;
    std::map<HotKeyHandle, Shortcut> m_shortcuts;
    HotKeyHandle m_nextHandle = 1;
    QString m_session;
    QString m_pendingRequest;
    QList<HotKeyHandle> m_inFlight;
    bool m_binding = false;
    bool m_dirty = false;
    bool m_queued = false;
    int m_tokens = 0;
};
