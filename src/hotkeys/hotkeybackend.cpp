#include "hotkeys/hotkeybackend.h"

#include "hotkeys/portal_hotkeys.h"
#include "hotkeys/x11_hotkeys.h"

std::unique_ptr<HotKeyBackend> HotKeyBackend::forSession()
{
    if (auto x11 = X11HotKeys::create())
        return x11;
    return std::make_unique<PortalHotKeys>();
}
