#include "sources/desktopentryfile.h"

#include <glib.h>

namespace {

constexpr const char *group = G_KEY_FILE_DESKTOP_GROUP;

QString takeString(char *value)
{
    const QString result = QString::fromUtf8(value);
    g_free(value);
    return result;
}

} // namespace

void DesktopEntryFile::Free::operator()(GKeyFile *file) const
{
    g_key_file_free(file);
}

std::optional<DesktopEntryFile> DesktopEntryFile::load(const QByteArray &path)
{
    DesktopEntryFile entry(g_key_file_new());
    if (!g_key_file_load_from_file(entry.m_file.get(), path.constData(), G_KEY_FILE_NONE, nullptr)
        || !g_key_file_has_group(entry.m_file.get(), group)) {
        return std::nullopt;
    }
    return entry;
}

// GKeyFile's getters build an error message for every key they do not find,
// which dominates a scan of many entries, so every lookup asks first.
bool DesktopEntryFile::has(const char *key) const
{
    return g_key_file_has_key(m_file.get(), group, key, nullptr);
}

QByteArray DesktopEntryFile::string(const char *key) const
{
    if (!has(key))
        return {};
    char *value = g_key_file_get_string(m_file.get(), group, key, nullptr);
    const QByteArray result(value);
    g_free(value);
    return result;
}

QString DesktopEntryFile::localeString(const char *key) const
{
    for (const char *const *language = g_get_language_names(); *language; ++language) {
        if (qstrcmp(*language, "C") == 0)
            continue;
        const QByteArray localized = QByteArray(key) + '[' + *language + ']';
        if (has(localized.constData()))
            return takeString(g_key_file_get_locale_string(m_file.get(), group, key, *language, nullptr));
    }
    return QString::fromUtf8(string(key));
}

QStringList DesktopEntryFile::list(const char *key) const
{
    QStringList result;
    if (!has(key))
        return result;
    char **values = g_key_file_get_string_list(m_file.get(), group, key, nullptr, nullptr);
    for (char **value = values; value && *value; ++value)
        result.append(QString::fromUtf8(*value));
    g_strfreev(values);
    return result;
}

bool DesktopEntryFile::boolean(const char *key) const
{
    return has(key) && g_key_file_get_boolean(m_file.get(), group, key, nullptr);
}
