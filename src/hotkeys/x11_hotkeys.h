#pragma once

#include "hotkeys/hotkeybackend.h"

#include <QAbstractNativeEventFilter>
#include <QHash>
#include <QList>

#include <map>

struct xcb_connection_t;
typedef struct _XCBKeySymbols xcb_key_symbols_t;

// Global shortcuts on X11: key grabs on the root window, pressed keys seen
// in Qt's stream of X events.
class X11HotKeys final : public HotKeyBackend, public QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    // Null when the application does not run on an X server.
    static std::unique_ptr<X11HotKeys> create();
    X11HotKeys(xcb_connection_t *connection, quint32 root);
    ~X11HotKeys() override;

    HotKeyGrab grab(quint32 keyCode, quint32 modifiers, quint32 id) override;
    void release(HotKeyHandle handle) override;
    bool isAvailable() const override { return true; }

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    struct Grab {
        quint32 keyCode;
        quint32 modifiers;
        quint32 id;
        quint16 mask = 0;
        QList<quint8> keycodes;
    };

    std::optional<HotKeyRefusal> grabKeys(Grab &grab);
    void ungrabKeys(const Grab &grab);
    QList<quint16> lockVariants(quint16 mask) const;
    void keyboardChanged();
    quint16 findNumLockMask() const;

    xcb_connection_t *m_connection;
    quint32 m_root;
    xcb_key_symbols_t *m_symbols;
    quint16 m_numLock;
    HotKeyHandle m_nextHandle = 1;
    std::map<HotKeyHandle, Grab> m_grabs;
    // Held keys repeat as release/press pairs with one time stamp.
    QHash<quint8, quint32> m_releaseTimes;
};
