#include "hotkeys/hotkeycombination.h"

// Qt calls the Super (logo) key Meta on X11 and Wayland.
quint32 hotKeyModifiers(Qt::KeyboardModifiers modifiers)
{
    quint32 result = 0;
    if (modifiers & Qt::ControlModifier)
        result |= HotKeyModifier::Ctrl;
    if (modifiers & Qt::AltModifier)
        result |= HotKeyModifier::Alt;
    if (modifiers & Qt::ShiftModifier)
        result |= HotKeyModifier::Shift;
    if (modifiers & Qt::MetaModifier)
        result |= HotKeyModifier::Super;
    return result;
}
