#include "app/appcast.h"
#include "fuzzing.h"

// The update feed comes over the network. Its versions are compared with
// each other and with ours, whatever text they hold.
extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    quietenQt();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto items = parseAppcast(QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (!items.ok())
        return 0;
    for (const AppcastItem &item : items.value()) {
        FUZZ_CHECK(compareVersions(item.version, item.version) == 0);
        FUZZ_CHECK(compareVersions(item.version, QStringLiteral("0.1.0"))
                   == -compareVersions(QStringLiteral("0.1.0"), item.version));
    }
    (void)newestUpdate(items.value(), QStringLiteral("0.1.0"));
    return 0;
}
