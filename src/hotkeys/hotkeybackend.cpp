#include "hotkeys/hotkeybackend.h"

#include "common/log.h"
#include "hotkeys/hotkeymechanism.h"
#include "hotkeys/kglobalaccel_hotkeys.h"
#include "hotkeys/no_hotkeys.h"
#include "hotkeys/portal_hotkeys.h"
#include "hotkeys/x11_hotkeys.h"

std::unique_ptr<HotKeyBackend> HotKeyBackend::forSession()
{
    const HotKeyMechanism mechanism = hotKeyMechanism(HotKeySession::current());
    qCInfo(lcHotKeys, "Global shortcuts through %s", qPrintable(enumToString(mechanism)));
    switch (mechanism) {
    case HotKeyMechanism::X11Grabs:
        if (auto x11 = X11HotKeys::create())
            return x11;
        break;
    case HotKeyMechanism::KGlobalAccel:
        return std::make_unique<KGlobalAccelHotKeys>();
    case HotKeyMechanism::Portal:
        return std::make_unique<PortalHotKeys>();
    case HotKeyMechanism::None:
        break;
    }
    return std::make_unique<NoHotKeys>();
}
