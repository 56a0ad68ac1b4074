#include "catalog/motable.h"
#include "fuzzing.h"

// gettext string tables come from other packages and may be damaged: every
// offset in them is checked before use. The bytes are not NUL-terminated,
// so a read one past the end is caught too.
extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    quietenQt();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto table = parseMoCatalog(QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (table.ok()) {
        for (auto it = table.value().cbegin(); it != table.value().cend(); ++it)
            FUZZ_CHECK(!it.value().isEmpty());
    }
    return 0;
}
