#pragma once

#include "hotkeys/hotkeybackend.h"
#include "hotkeys/hotkeycombination.h"

#include <QHash>

#include <map>

// A desktop that grants every combination but those it is told to refuse;
// with `later` set it answers only when the test settles a handle.
class FakeBackend final : public HotKeyBackend
{
public:
    struct Grabbed {
        quint32 keyCode;
        quint32 modifiers;
        quint32 id;
        bool operator==(const Grabbed &) const = default;
    };

    std::map<HotKeyHandle, Grabbed> grabs;
    QHash<QPair<quint32, quint32>, HotKeyRefusal> refusals;
    bool available = true;
    bool later = false;

    HotKeyGrab grab(quint32 keyCode, quint32 modifiers, quint32 id) override
    {
        if (const auto it = refusals.constFind({keyCode, modifiers}); it != refusals.constEnd())
            return *it;
        grabs.emplace(m_next, Grabbed{keyCode, modifiers, id});
        return m_next++;
    }
    void release(HotKeyHandle handle) override { grabs.erase(handle); }
    bool isAvailable() const override { return available; }
    bool settlesLater() const override { return later; }
    void press(quint32 id) { Q_EMIT activated(id); }
    HotKeyHandle lastHandle() const { return m_next - 1; }

private:
    HotKeyHandle m_next = 1;
};
