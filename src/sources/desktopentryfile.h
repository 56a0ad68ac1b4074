#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

struct _GKeyFile;

// The [Desktop Entry] group of a desktop entry or .directory file, parsed by
// GLib's reader of the format (escapes, lists, localized keys). Only the
// user's languages are kept, which keeps files with hundreds of translations
// cheap to load.
class DesktopEntryFile
{
public:
    // Nothing when the file cannot be read or has no [Desktop Entry] group.
    static std::optional<DesktopEntryFile> load(const QByteArray &path);

    QByteArray string(const char *key) const;
    // Key[locale] for the user's languages (LANGUAGE, LC_ALL, LC_MESSAGES,
    // LANG), best match first, else the plain key.
    QString localeString(const char *key) const;
    QStringList list(const char *key) const;
    bool boolean(const char *key) const;

private:
    struct Free {
        void operator()(_GKeyFile *file) const;
    };
    explicit DesktopEntryFile(_GKeyFile *file)
        : m_file(file)
    {
    }
    bool has(const char *key) const;

    std::unique_ptr<_GKeyFile, Free> m_file;
};
