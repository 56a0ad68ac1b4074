#include "fuzzing.h"
#include "sources/shortcutparser.h"

// The listing of the shortcuts helper, which the user may replace.
extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    quietenQt();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto refs = parseShortcutList(QByteArrayView(data, qsizetype(size)));
    for (const ShortcutRef &ref : refs)
        FUZZ_CHECK(ref.id.size() == 36 && !ref.name.isEmpty());
    return 0;
}
