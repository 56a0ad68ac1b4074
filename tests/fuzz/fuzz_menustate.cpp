#include "config/layoutcodec.h"
#include "config/menustate.h"
#include "fuzzing.h"

// The stored menu state and the drag data of a layout row: whatever decodes
// must come back unchanged from its own encoding, or a save would silently
// change the user's menus.
extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    quietenQt();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));

    const auto state = decodeMenuState(bytes);
    if (state.ok()) {
        const auto again = decodeMenuState(encodeMenuState(state.value()));
        FUZZ_CHECK(again.ok());
        FUZZ_CHECK(again.value() == state.value());
    }

    const auto dragged = draggedSource(bytes);
    if (dragged.ok()) {
        const auto again = draggedSource(dragData(dragged.value()));
        FUZZ_CHECK(again.ok());
        FUZZ_CHECK(again.value() == dragged.value());
    }
    return 0;
}
