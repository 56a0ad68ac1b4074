#include "fuzzing.h"
#include "sources/desktopentryfile.h"

// Desktop entries are written by every package on the system. The languages
// cover each form a translated key is looked up in.
extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    quietenQt();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QByteArrayList languages{"de_AT@euro", "de@euro", "de_AT", "de", "C"};
    const auto entry =
        DesktopEntryFile::parse(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)), languages);
    if (!entry)
        return 0;
    (void)entry->startsWithDesktopEntry();
    (void)entry->string("Exec");
    (void)entry->localeString("Name");
    (void)entry->localeString("Keywords");
    (void)entry->list("Categories");
    (void)entry->list("OnlyShowIn");
    (void)entry->boolean("NoDisplay");
    return 0;
}
