#pragma once

#include "hotkeys/hotkeybackend.h"

// A session without any way to global shortcuts: every combination is
// refused, so the settings show the desktop's own route instead.
class NoHotKeys final : public HotKeyBackend
{
    Q_OBJECT

public:
    using HotKeyBackend::HotKeyBackend;

    HotKeyGrab grab(quint32, quint32, quint32) override { return HotKeyRefusal::Unavailable; }
    void release(HotKeyHandle) override { }
    bool isAvailable() const override { return false; }
};
