#pragma once

#include "hotkeys/hotkeybackend.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include <map>

// Global shortcuts through Plasma's shortcut daemon (org.kde.kglobalaccel):
// Quillon becomes the component "quillon" whose actions the user sees, and
// may change, in System Settings → Shortcuts. Works in Plasma 5.27 and 6,
// on Wayland and X11 alike.
class KGlobalAccelHotKeys final : public HotKeyBackend
{
    Q_OBJECT

public:
    static constexpr const char *service = "org.kde.kglobalaccel";
    static constexpr const char *path = "/kglobalaccel";
    static constexpr const char *interface = "org.kde.KGlobalAccel";
    static constexpr const char *componentInterface = "org.kde.kglobalaccel.Component";
    static constexpr const char *component = "quillon";

    explicit KGlobalAccelHotKeys(const QDBusConnection &bus = QDBusConnection::sessionBus());

    HotKeyGrab grab(quint32 keyCode, quint32 modifiers, quint32 id) override;
    void release(HotKeyHandle handle) override;
    bool isAvailable() const override { return m_available; }
    bool settlesLater() const override { return true; }

    // The daemon's names for a shortcut: component, action, and what
    // System Settings shows for both.
    static QString actionName(quint32 id);
    static QStringList actionId(quint32 id);
    // A combination as one Qt key code with Qt's modifier bits, the way the
    // daemon stores keys; and back.
    static int qtKey(quint32 keyCode, quint32 modifiers);
    static std::optional<HotKeyCombination> fromQtKey(int key);

private Q_SLOTS:
    void shortcutPressed(const QString &componentUnique, const QString &actionUnique, qlonglong timestamp);
    void shortcutsChanged(const QDBusMessage &message);

private:
    struct Grab {
        quint32 id;
        int key;
    };

    void keysSet(HotKeyHandle handle, const QDBusMessage &reply);
    void watchComponent();
    QDBusMessage call(const char *method) const;

    QDBusConnection m_bus;
    std::map<HotKeyHandle, Grab> m_grabs;
    HotKeyHandle m_nextHandle = 1;
    bool m_available = true;
    bool m_watchingComponent = false;
};
