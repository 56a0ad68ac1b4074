#include "platform/x11selection.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

bool x11ScreenSelectionOwned(const QByteArray &prefix)
{
    const auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    xcb_connection_t *connection = x11 ? x11->connection() : nullptr;
    if (!connection)
        return false;
    // The screen of $DISPLAY (":0.1" is screen 1).
    const QByteArray display = qgetenv("DISPLAY");
    const qsizetype dot = display.lastIndexOf('.');
    const int screen = dot > display.lastIndexOf(':') ? display.mid(dot + 1).toInt() : 0;

    const QByteArray name = prefix + QByteArray::number(screen);
    xcb_intern_atom_reply_t *atom = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 1, uint16_t(name.size()), name.constData()), nullptr);
    if (!atom)
        return false;
    const xcb_atom_t selection = atom->atom;
    free(atom);
    if (selection == XCB_ATOM_NONE)
        return false;
    xcb_get_selection_owner_reply_t *owner =
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection), nullptr);
    const bool owned = owner && owner->owner != XCB_WINDOW_NONE;
    free(owner);
    return owned;
}
