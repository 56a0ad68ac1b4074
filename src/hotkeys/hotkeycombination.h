#pragma once

#include <QHashFunctions>
#include <QString>
#include <Qt>

// One encoding of modifiers everywhere: in the preferences, in the backends
// and in the conflict checks.
struct HotKeyModifier {
    static constexpr quint32 Super = 256;
    static constexpr quint32 Shift = 512;
    static constexpr quint32 Alt = 2048;
    static constexpr quint32 Ctrl = 4096;
    static constexpr quint32 All = Super | Shift | Alt | Ctrl;
};

// A key combination: a Qt key value, the modifiers above summed, and the
// text the user was shown for it.
struct HotKeyCombination {
    quint32 keyCode = 0;
    quint32 modifiers = 0;
    QString display;

    bool operator==(const HotKeyCombination &) const = default;
    // Same keys, whatever the display says.
    bool sameKeys(const HotKeyCombination &other) const
    {
        return keyCode == other.keyCode && modifiers == other.modifiers;
    }
};

inline size_t qHash(const HotKeyCombination &combination, size_t seed = 0) noexcept
{
    return qHashMulti(seed, combination.keyCode, combination.modifiers, combination.display);
}

quint32 hotKeyModifiers(Qt::KeyboardModifiers modifiers);
