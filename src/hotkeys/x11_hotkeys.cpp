#include "hotkeys/x11_hotkeys.h"

#include "common/mainthread.h"
#include "hotkeys/hotkeycombination.h"

#include <QGuiApplication>

#include <X11/keysym.h>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

namespace {

constexpr quint8 badAccess = 10;
constexpr quint16 modifierMask = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;

quint16 xcbMask(quint32 modifiers)
{
    quint16 mask = 0;
    if (modifiers & HotKeyModifier::Shift)
        mask |= XCB_MOD_MASK_SHIFT;
    if (modifiers & HotKeyModifier::Ctrl)
        mask |= XCB_MOD_MASK_CONTROL;
    if (modifiers & HotKeyModifier::Alt)
        mask |= XCB_MOD_MASK_1;
    if (modifiers & HotKeyModifier::Super)
        mask |= XCB_MOD_MASK_4;
    return mask;
}

xcb_keysym_t keysymOf(quint32 key)
{
    if (key >= Qt::Key_A && key <= Qt::Key_Z)
        return XK_a + (key - Qt::Key_A);
    // Latin-1 keys carry their keysym as their value.
    if (key >= 0x20 && key <= 0xff)
        return key;
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35)
        return XK_F1 + (key - Qt::Key_F1);
    static const QHash<quint32, xcb_keysym_t> special{
        {Qt::Key_Escape, XK_Escape},
        {Qt::Key_Tab, XK_Tab},
        {Qt::Key_Backspace, XK_BackSpace},
        {Qt::Key_Return, XK_Return},
        {Qt::Key_Enter, XK_KP_Enter},
        {Qt::Key_Insert, XK_Insert},
        {Qt::Key_Delete, XK_Delete},
        {Qt::Key_Pause, XK_Pause},
        {Qt::Key_Print, XK_Print},
        {Qt::Key_Home, XK_Home},
        {Qt::Key_End, XK_End},
        {Qt::Key_Left, XK_Left},
        {Qt::Key_Up, XK_Up},
        {Qt::Key_Right, XK_Right},
        {Qt::Key_Down, XK_Down},
        {Qt::Key_PageUp, XK_Page_Up},
        {Qt::Key_PageDown, XK_Page_Down},
        {Qt::Key_Menu, XK_Menu},
        {Qt::Key_ScrollLock, XK_Scroll_Lock},
    };
    return special.value(key, XCB_NO_SYMBOL);
}

} // namespace

std::unique_ptr<X11HotKeys> X11HotKeys::create()
{
    const auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (x11 == nullptr || x11->connection() == nullptr)
        return nullptr;
    xcb_connection_t *connection = x11->connection();
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    return std::make_unique<X11HotKeys>(connection, screen->root);
}

X11HotKeys::X11HotKeys(xcb_connection_t *connection, quint32 root)
    : m_connection(connection)
    , m_root(root)
    , m_symbols(xcb_key_symbols_alloc(connection))
    , m_numLock(findNumLockMask())
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11HotKeys::~X11HotKeys()
{
    if (auto *app = QCoreApplication::instance())
        app->removeNativeEventFilter(this);
    for (const auto &[handle, grab] : m_grabs)
        ungrabKeys(grab);
    xcb_flush(m_connection);
    xcb_key_symbols_free(m_symbols);
}

HotKeyGrab X11HotKeys::grab(quint32 keyCode, quint32 modifiers, quint32 id)
{
    QUILLON_ASSERT_MAIN_THREAD();
    Grab grab{keyCode, modifiers, id, 0, {}};
    if (const auto refusal = grabKeys(grab))
        return *refusal;
    const HotKeyHandle handle = m_nextHandle++;
    m_grabs.emplace(handle, grab);
    return handle;
}

void X11HotKeys::release(HotKeyHandle handle)
{
    QUILLON_ASSERT_MAIN_THREAD();
    const auto it = m_grabs.find(handle);
    if (it == m_grabs.end())
        return;
    ungrabKeys(it->second);
    xcb_flush(m_connection);
    m_grabs.erase(it);
}

// Grabs every key that makes the keysym, with CapsLock and NumLock in each
// of their states, so the combination works whatever the lock keys say.
std::optional<HotKeyRefusal> X11HotKeys::grabKeys(Grab &grab)
{
    grab.mask = xcbMask(grab.modifiers);
    grab.keycodes.clear();
    const xcb_keysym_t keysym = keysymOf(grab.keyCode);
    if (keysym == XCB_NO_SYMBOL)
        return HotKeyRefusal::UnknownKey;
    if (xcb_keycode_t *codes = xcb_key_symbols_get_keycode(m_symbols, keysym)) {
        for (const xcb_keycode_t *code = codes; *code != XCB_NO_SYMBOL; ++code)
            grab.keycodes.append(*code);
        free(codes);
    }
    if (grab.keycodes.isEmpty())
        return HotKeyRefusal::UnknownKey;

    QList<xcb_void_cookie_t> cookies;
    for (const quint8 keycode : std::as_const(grab.keycodes)) {
        for (const quint16 mask : lockVariants(grab.mask))
            cookies.append(
                xcb_grab_key_checked(m_connection, 1, m_root, mask, keycode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    std::optional<HotKeyRefusal> refusal;
    for (const xcb_void_cookie_t cookie : std::as_const(cookies)) {
        if (xcb_generic_error_t *error = xcb_request_check(m_connection, cookie)) {
            refusal = error->error_code == badAccess ? HotKeyRefusal::Taken : HotKeyRefusal::UnknownKey;
            free(error);
        }
    }
    if (refusal) {
        // Undo the grabs that did succeed; those that failed are not ours.
        ungrabKeys(grab);
        xcb_flush(m_connection);
        grab.keycodes.clear();
    }
    return refusal;
}

void X11HotKeys::ungrabKeys(const Grab &grab)
{
    for (const quint8 keycode : grab.keycodes) {
        for (const quint16 mask : lockVariants(grab.mask))
            xcb_ungrab_key(m_connection, keycode, m_root, mask);
    }
}

QList<quint16> X11HotKeys::lockVariants(quint16 mask) const
{
    return {mask, quint16(mask | XCB_MOD_MASK_LOCK), quint16(mask | m_numLock),
            quint16(mask | XCB_MOD_MASK_LOCK | m_numLock)};
}

quint16 X11HotKeys::findNumLockMask() const
{
    quint16 result = 0;
    xcb_keycode_t *numLockCodes = xcb_key_symbols_get_keycode(m_symbols, XK_Num_Lock);
    if (numLockCodes == nullptr)
        return result;
    const auto cookie = xcb_get_modifier_mapping(m_connection);
    if (xcb_get_modifier_mapping_reply_t *reply = xcb_get_modifier_mapping_reply(m_connection, cookie, nullptr)) {
        const xcb_keycode_t *codes = xcb_get_modifier_mapping_keycodes(reply);
        const int perModifier = reply->keycodes_per_modifier;
        for (int modifier = 0; modifier < 8; ++modifier) {
            for (int i = 0; i < perModifier; ++i) {
                const xcb_keycode_t code = codes[modifier * perModifier + i];
                for (const xcb_keycode_t *n = numLockCodes; code != 0 && *n != XCB_NO_SYMBOL; ++n) {
                    if (*n == code)
                        result = quint16(1u << modifier);
                }
            }
        }
        free(reply);
    }
    free(numLockCodes);
    return result;
}

// Another layout may put the keys elsewhere: grab them where they are now.
void X11HotKeys::keyboardChanged()
{
    for (auto &[handle, grab] : m_grabs)
        ungrabKeys(grab);
    m_numLock = findNumLockMask();
    for (auto &[handle, grab] : m_grabs)
        grabKeys(grab);
    xcb_flush(m_connection);
}

bool X11HotKeys::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
    if (eventType != "xcb_generic_event_t")
        return false;
    auto *event = static_cast<xcb_generic_event_t *>(message);
    const quint8 type = event->response_type & 0x7f;
    if (type == XCB_MAPPING_NOTIFY) {
        auto *mapping = reinterpret_cast<xcb_mapping_notify_event_t *>(event);
        if (mapping->request == XCB_MAPPING_KEYBOARD || mapping->request == XCB_MAPPING_MODIFIER) {
            xcb_refresh_keyboard_mapping(m_symbols, mapping);
            keyboardChanged();
        }
        return false;
    }
    if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE)
        return false;
    auto *key = reinterpret_cast<xcb_key_press_event_t *>(event);
    const quint16 mask = key->state & modifierMask;
    for (const auto &[handle, grab] : m_grabs) {
        if (grab.mask != mask || !grab.keycodes.contains(key->detail))
            continue;
        if (type == XCB_KEY_RELEASE) {
            m_releaseTimes.insert(key->detail, key->time);
        } else if (m_releaseTimes.value(key->detail) != key->time) {
            Q_EMIT activated(grab.id);
        }
        return true;
    }
    return false;
}
