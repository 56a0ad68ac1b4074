#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <QStringList>
#include <QVarLengthArray>

#include <optional>

// The languages translated keys are looked up in, best first, as GLib
// derives them from LANGUAGE, LC_ALL, LC_MESSAGES and LANG
// ("de_AT.UTF-8@euro": de_AT@euro, de@euro, de_AT, de, then C).
QByteArrayList sessionLanguages();

// The [Desktop Entry] group of a desktop entry or .directory file.
//
// Read the way GLib's key-file reader reads it, because the applications
// people see elsewhere on the desktop are the ones GLib loads: a line that is
// neither comment, group nor well-formed key rejects the whole file; the last
// of duplicate keys wins; values are checked for UTF-8 and unescaped only
// when asked for; translations are looked up in the session's languages in
// order. Translations into other languages, most key lines of real entries,
// are dropped while the file is split into lines, before anything is copied.
class DesktopEntryFile
{
public:
    // Larger files are not desktop entries anyone wrote; they are skipped
    // rather than read into memory.
    static constexpr qint64 maximumSize = 1024 * 1024;

    // Nothing when the file is not a regular file, cannot be read, is larger
    // than maximumSize, does not parse, or has no [Desktop Entry] group.
    // Never blocks on a FIFO or device.
    static std::optional<DesktopEntryFile> load(const QByteArray &path,
                                                const QByteArrayList &languages = sessionLanguages());
    // The same for a path relative to an open directory.
    static std::optional<DesktopEntryFile> loadAt(int directory, const QByteArray &path,
                                                  const QByteArrayList &languages);
    static std::optional<DesktopEntryFile> parse(QByteArray data, const QByteArrayList &languages);

    // GLib loads an application only from a file whose first group is
    // [Desktop Entry].
    bool startsWithDesktopEntry() const { return m_startsWithDesktopEntry; }

    // The key's value unescaped; nothing when the key is missing or its value
    // is not UTF-8. An unknown escape stays as written, as GLib leaves it.
    std::optional<QString> string(const char *key) const;
    // Key[language] for the first of the session's languages that has a
    // readable one, else the plain key.
    std::optional<QString> localeString(const char *key) const;
    // A ';'-separated list; nothing when missing, not UTF-8 or badly escaped.
    std::optional<QStringList> list(const char *key) const;
    // "true" or "1"; anything else, or no key, is false.
    bool boolean(const char *key) const;

private:
    struct Pair {
        int keyStart = 0;
        int keyLength = 0;
        int valueStart = 0;
        int valueLength = 0;
    };

    DesktopEntryFile() = default;
    const Pair *find(QByteArrayView key) const;
    const Pair *findTranslation(QByteArrayView key, QByteArrayView language) const;
    std::optional<QString> decodedString(const Pair *pair) const;
    QByteArrayView keyOf(const Pair &pair) const
    {
        return QByteArrayView(m_data).sliced(pair.keyStart, pair.keyLength);
    }
    QByteArrayView valueOf(const Pair &pair) const
    {
        return QByteArrayView(m_data).sliced(pair.valueStart, pair.valueLength);
    }

    QByteArray m_data;
    QByteArrayList m_languages;
    QVarLengthArray<Pair, 24> m_pairs;
    bool m_startsWithDesktopEntry = false;
};
