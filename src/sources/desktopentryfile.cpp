#include "sources/desktopentryfile.h"

#include "common/log.h"
#include "common/smallfile.h"

#include <glib.h>

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr QByteArrayView desktopEntryGroup("Desktop Entry");

// GLib's idea of white space around keys and values.
bool isAsciiSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

bool isAsciiControl(char c)
{
    return (static_cast<unsigned char>(c) < 0x20) || c == 0x7f;
}

// The character at `p` may appear in a locale: a letter or digit in any
// script, or one of - _ . @
bool isLocaleCharacter(const char *p, const char *end, const char **next)
{
    const auto byte = static_cast<unsigned char>(*p);
    if (byte < 0x80) {
        *next = p + 1;
        return g_ascii_isalnum(*p) || *p == '-' || *p == '_' || *p == '.' || *p == '@';
    }
    const gunichar character = g_utf8_get_char_validated(p, end - p);
    const char *following = g_utf8_find_next_char(p, end);
    *next = following ? following : end;
    return character < 0x110000 && g_unichar_isalnum(character);
}

// Key names: anything but '=', '[' and ']', not starting or ending in a
// space, optionally followed by one [locale] suffix, which `locale` then
// holds.
bool isKeyName(const char *start, const char *end, QByteArrayView &locale)
{
    const char *q = start;
    while (q < end && *q != '=' && *q != '[' && *q != ']')
        ++q;
    if (q == start || *start == ' ' || q[-1] == ' ')
        return false;
    if (q < end && *q == '[') {
        const char *const open = ++q;
        const char *next = nullptr;
        while (q < end && isLocaleCharacter(q, end, &next))
            q = next;
        if (q >= end || *q != ']')
            return false;
        locale = QByteArrayView(open, q);
        ++q;
    }
    return q == end;
}

bool isGroupName(QByteArrayView name)
{
    if (name.isEmpty())
        return false;
    for (const char c : name) {
        if (c == '[' || c == ']' || isAsciiControl(c))
            return false;
    }
    return true;
}

// A group header: '[', a name, ']', then at most spaces and tabs.
std::optional<QByteArrayView> groupHeader(const char *start, const char *end)
{
    if (*start != '[')
        return std::nullopt;
    const auto *close = static_cast<const char *>(memchr(start, ']', end - start));
    if (!close)
        return std::nullopt;
    for (const char *p = close + 1; p < end; ++p) {
        if (*p != ' ' && *p != '\t')
            return std::nullopt;
    }
    return QByteArrayView(start + 1, close);
}

bool isInteresting(QByteArrayView locale, const QByteArrayList &languages)
{
    for (const QByteArray &language : languages) {
        if (language.size() == locale.size() && qstrnicmp(language.constData(), locale.data(), locale.size()) == 0)
            return true;
    }
    return false;
}

// Undoes the escapes \s \n \t \r \\ and, in lists, \; — splitting lists at
// the other semicolons. False when the value has an escape that means
// nothing; `text` then keeps it as written, or ends before a lone trailing
// backslash.
bool unescape(QByteArrayView value, QByteArray &text, QByteArrayList *pieces)
{
    text.reserve(value.size());
    bool readable = true;
    qsizetype pieceStart = 0;
    for (qsizetype i = 0; i < value.size(); ++i) {
        const char c = value[i];
        if (c != '\\') {
            text.append(c);
            if (pieces && c == ';') {
                pieces->append(text.sliced(pieceStart, text.size() - 1 - pieceStart));
                pieceStart = text.size();
            }
            continue;
        }
        if (++i == value.size()) {
            readable = false;
            break;
        }
        switch (const char escaped = value[i]) {
        case 's':
            text.append(' ');
            break;
        case 'n':
            text.append('\n');
            break;
        case 't':
            text.append('\t');
            break;
        case 'r':
            text.append('\r');
            break;
        case '\\':
            text.append('\\');
            break;
        default:
            if (pieces && escaped == ';') {
                text.append(';');
            } else {
                text.append('\\');
                text.append(escaped);
                readable = false;
            }
        }
    }
    if (pieces && pieceStart < text.size())
        pieces->append(text.sliced(pieceStart));
    return readable;
}

bool isUtf8(QByteArrayView value)
{
    return g_utf8_validate_len(value.data(), gsize(value.size()), nullptr);
}

} // namespace

QByteArrayList sessionLanguages()
{
    QByteArrayList languages;
    for (const char *const *language = g_get_language_names(); *language; ++language)
        languages.append(QByteArray(*language));
    return languages;
}

std::optional<DesktopEntryFile> DesktopEntryFile::load(const QByteArray &path, const QByteArrayList &languages)
{
    return loadAt(AT_FDCWD, path, languages);
}

std::optional<DesktopEntryFile> DesktopEntryFile::loadAt(int directory, const QByteArray &path,
                                                         const QByteArrayList &languages)
{
    SmallFile read = SmallFile::read(directory, path, maximumSize);
    if (!read.ok()) {
        // Missing files are ordinary (a link to a removed entry); anything
        // else in an applications folder is worth a line.
        if (!read.missing())
            qCWarning(lcSources, "%s skipped: %s", qUtf8Printable(QFile::decodeName(path)),
                      qUtf8Printable(read.reason()));
        return std::nullopt;
    }
    auto file = parse(std::move(read.data), languages);
    if (!file)
        qCDebug(lcSources) << QFile::decodeName(path) << "is not a readable desktop entry";
    return file;
}

std::optional<DesktopEntryFile> DesktopEntryFile::parse(QByteArray data, const QByteArrayList &languages)
{
    DesktopEntryFile file;
    file.m_data = std::move(data);
    file.m_languages = languages;

    const char *const begin = file.m_data.constData();
    const char *const dataEnd = begin + file.m_data.size();
    std::optional<QByteArrayView> startGroup;
    const bool hasNul = memchr(begin, '\0', dataEnd - begin) != nullptr;
    bool hasDesktopEntry = false;
    bool inDesktopEntry = false;
    bool inStartGroup = false;

    for (const char *line = begin; line < dataEnd;) {
        const auto *newline = static_cast<const char *>(memchr(line, '\n', dataEnd - line));
        const char *end = newline ? newline : dataEnd;
        const char *const next = newline ? newline + 1 : dataEnd;
        if (newline && end > line && end[-1] == '\r')
            --end;
        // Lines are C strings to GLib: nothing after a NUL counts.
        if (hasNul) {
            if (const auto *nul = static_cast<const char *>(memchr(line, '\0', end - line)))
                end = nul;
        }
        const char *start = line;
        line = next;
        while (start < end && isAsciiSpace(*start))
            ++start;
        if (start == end || *start == '#')
            continue;

        if (const auto group = groupHeader(start, end)) {
            if (!isGroupName(*group))
                return std::nullopt;
            if (!startGroup)
                startGroup = *group;
            inStartGroup = *group == *startGroup;
            inDesktopEntry = *group == desktopEntryGroup;
            hasDesktopEntry = hasDesktopEntry || inDesktopEntry;
            continue;
        }

        const auto *equals = static_cast<const char *>(memchr(start, '=', end - start));
        if (!equals || equals == start || !startGroup)
            return std::nullopt;
        const char *keyEnd = equals;
        while (isAsciiSpace(keyEnd[-1]))
            --keyEnd;
        QByteArrayView locale;
        if (!isKeyName(start, keyEnd, locale))
            return std::nullopt;
        const QByteArrayView key(start, keyEnd);
        const char *value = equals + 1;
        while (value < end && isAsciiSpace(*value))
            ++value;
        const QByteArrayView valueView(value, end);
        if (inStartGroup && key == "Encoding" && valueView.compare("UTF-8", Qt::CaseInsensitive) != 0)
            return std::nullopt;
        if (!inDesktopEntry)
            continue;
        // "Key[]" is a key of its own, not a translation.
        if (!locale.isEmpty() && !isInteresting(locale, file.m_languages))
            continue;
        file.m_pairs.append(Pair{int(start - begin), int(key.size()), int(value - begin), int(valueView.size())});
    }
    if (!hasDesktopEntry)
        return std::nullopt;
    file.m_startsWithDesktopEntry = *startGroup == desktopEntryGroup;
    return file;
}

const DesktopEntryFile::Pair *DesktopEntryFile::find(QByteArrayView key) const
{
    // The last of duplicate keys wins.
    for (auto pair = m_pairs.crbegin(); pair != m_pairs.crend(); ++pair) {
        if (keyOf(*pair) == key)
            return &*pair;
    }
    return nullptr;
}

const DesktopEntryFile::Pair *DesktopEntryFile::findTranslation(QByteArrayView key, QByteArrayView language) const
{
    const qsizetype size = key.size() + language.size() + 2;
    for (auto pair = m_pairs.crbegin(); pair != m_pairs.crend(); ++pair) {
        const QByteArrayView candidate = keyOf(*pair);
        if (candidate.size() == size && candidate.startsWith(key) && candidate[key.size()] == '['
            && candidate.sliced(key.size() + 1, language.size()) == language && candidate.back() == ']') {
            return &*pair;
        }
    }
    return nullptr;
}

std::optional<QString> DesktopEntryFile::decodedString(const Pair *pair) const
{
    if (!pair || !isUtf8(valueOf(*pair)))
        return std::nullopt;
    QByteArray text;
    unescape(valueOf(*pair), text, nullptr);
    return QString::fromUtf8(text);
}

std::optional<QString> DesktopEntryFile::string(const char *key) const
{
    return decodedString(find(key));
}

std::optional<QString> DesktopEntryFile::localeString(const char *key) const
{
    for (const QByteArray &language : m_languages) {
        if (auto translated = decodedString(findTranslation(key, language)))
            return translated;
    }
    return string(key);
}

std::optional<QStringList> DesktopEntryFile::list(const char *key) const
{
    const Pair *pair = find(key);
    if (!pair || !isUtf8(valueOf(*pair)))
        return std::nullopt;
    QByteArray text;
    QByteArrayList pieces;
    if (!unescape(valueOf(*pair), text, &pieces))
        return std::nullopt;
    QStringList values;
    values.reserve(pieces.size());
    for (const QByteArray &piece : std::as_const(pieces))
        values.append(QString::fromUtf8(piece));
    return values;
}

bool DesktopEntryFile::boolean(const char *key) const
{
    const Pair *pair = find(key);
    if (!pair)
        return false;
    QByteArrayView value = valueOf(*pair);
    while (!value.isEmpty() && isAsciiSpace(value.back()))
        value.chop(1);
    return value == "true" || value == "1";
}
