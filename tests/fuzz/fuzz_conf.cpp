#include "config/menustore.h"
#include "config/preferences.h"
#include "fuzzing.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>

// The whole preferences file as Quillon reads it at start: QSettings parses
// the file, the menu store decodes its keys, and the other keys are read
// with the conversions their owners use.
namespace {

QTemporaryDir *folder = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***argv)
{
    quietenQt();
    startCoreApplication((*argv)[0]);
    folder = new QTemporaryDir;
    return folder->isValid() ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // One file, rewritten: QSettings keeps each file it has read, by name,
    // and reads it again only when its size or time changed, so each input
    // gets a time of its own. New names would pile up in that cache.
    static qint64 count = 0;
    const QString path = folder->filePath(QStringLiteral("Quillon.conf"));
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            std::abort();
        file.write(reinterpret_cast<const char *>(data), qint64(size));
        file.setFileTime(QDateTime::fromSecsSinceEpoch(++count), QFileDevice::FileModificationTime);
    }
    {
        Preferences preferences(path);
        MenuStore store(preferences);
        (void)store.layout().size();
        (void)preferences.value(QStringLiteral("ShowSearch")).toBool();
        (void)preferences.value(QStringLiteral("HotKeyKeyCode")).toLongLong();
        (void)preferences.value(QStringLiteral("HotKeyModifiers")).toLongLong();
        (void)preferences.value(QStringLiteral("HotKeyDisplay")).toString();
        (void)preferences.value(QStringLiteral("SettingsWindowGeometry")).toByteArray();
        (void)preferences.value(QStringLiteral("LastUpdateCheckTime")).toString();
    }
    return 0;
}
