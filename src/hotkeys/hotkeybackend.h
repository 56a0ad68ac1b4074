#pragma once

#include "common/enumstrings.h"
#include "hotkeys/hotkeycombination.h"

#include <QObject>

#include <memory>
#include <variant>

// Why the desktop did not take a combination.
enum class HotKeyRefusal {
    Taken,       // another program holds it
    UnknownKey,  // the keyboard has no such key
    Unavailable, // this session offers no global shortcuts to programs
};

template<>
struct EnumCases<HotKeyRefusal> {
    static constexpr std::array<std::pair<HotKeyRefusal, const char *>, 3> cases{{
        {HotKeyRefusal::Taken, "taken"},
        {HotKeyRefusal::UnknownKey, "unknownKey"},
        {HotKeyRefusal::Unavailable, "unavailable"},
    }};
};

using HotKeyHandle = quint32;
using HotKeyGrab = std::variant<HotKeyHandle, HotKeyRefusal>;

// The desktop's global-shortcut facility: register a combination under an
// identifier, unregister it by its handle, and hear `activated` with the
// identifier when it is pressed anywhere. Lives on the main thread.
//
// Some desktops answer over D-Bus, later: their grab() hands out a handle at
// once (settlesLater() is true) and reports what the desktop really did with
// it through `bound` or `refused`, as often as that changes.
class HotKeyBackend : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // The facility of the running session (see hotkeymechanism.h).
    static std::unique_ptr<HotKeyBackend> forSession();

    // keyCode: a Qt key; modifiers: HotKeyModifier values summed.
    virtual HotKeyGrab grab(quint32 keyCode, quint32 modifiers, quint32 id) = 0;
    virtual void release(HotKeyHandle handle) = 0;
    // False when programs cannot have global shortcuts in this session, so
    // the user has to bind Quillon's commands in the desktop's settings.
    virtual bool isAvailable() const = 0;
    // True when a handle from grab() is only a request the desktop has yet
    // to answer.
    virtual bool settlesLater() const { return false; }

Q_SIGNALS:
    void activated(quint32 id);
    // The desktop bound the handle's combination; description is how the
    // desktop itself shows the keys ("Ctrl+Alt+Space").
    void bound(HotKeyHandle handle, const QString &description);
    void refused(HotKeyHandle handle, HotKeyRefusal refusal);
    // The user gave shortcut `id` other keys in the desktop's own settings;
    // no combination when the user removed its keys there.
    void rebound(quint32 id, const std::optional<HotKeyCombination> &combination);
    // isAvailable() changed, typically once the desktop has been asked.
    void availabilityChanged();
};
