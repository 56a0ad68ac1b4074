#include "hotkeys/gnomeshortcuts.h"

#include "hotkeys/accelerators.h"

#include <gio/gio.h>

namespace {

constexpr const char *keybindingSchemas[] = {
    "org.gnome.desktop.wm.keybindings",
    "org.gnome.shell.keybindings",
    "org.gnome.settings-daemon.plugins.media-keys",
    "org.gnome.mutter.keybindings",
};
constexpr const char *mediaKeys = "org.gnome.settings-daemon.plugins.media-keys";
constexpr const char *customSchema = "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding";
constexpr const char *customList = "custom-keybindings";
const QString customPathBase =
    QStringLiteral("/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/custom%1/");

// GSettings aborts the process on a schema it does not know, so every
// schema is looked up first.
GSettingsSchema *lookupSchema(const char *id)
{
    GSettingsSchemaSource *source = g_settings_schema_source_get_default();
    return source ? g_settings_schema_source_lookup(source, id, TRUE) : nullptr;
}

GSettings *openSettings(const char *id, const char *path = nullptr)
{
    GSettingsSchema *schema = lookupSchema(id);
    if (schema == nullptr)
        return nullptr;
    GSettings *settings = g_settings_new_full(schema, nullptr, path);
    g_settings_schema_unref(schema);
    return settings;
}

QStringList strings(GSettings *settings, const char *key)
{
    QStringList result;
    gchar **values = g_settings_get_strv(settings, key);
    for (gchar **value = values; value && *value; ++value)
        result.append(QString::fromUtf8(*value));
    g_strfreev(values);
    return result;
}

QString string(GSettings *settings, const char *key)
{
    gchar *value = g_settings_get_string(settings, key);
    const QString result = QString::fromUtf8(value);
    g_free(value);
    return result;
}

void setStrings(GSettings *settings, const char *key, const QStringList &values)
{
    QList<QByteArray> utf8;
    for (const QString &value : values)
        utf8.append(value.toUtf8());
    QList<const gchar *> pointers;
    for (const QByteArray &value : utf8)
        pointers.append(value.constData());
    pointers.append(nullptr);
    g_settings_set_strv(settings, key, pointers.constData());
}

// Accelerators of every key of a schema: lists for most, single strings for some.
QStringList accelerators(GSettings *settings)
{
    QStringList result;
    GSettingsSchema *schema = nullptr;
    g_object_get(settings, "settings-schema", &schema, nullptr);
    gchar **keys = g_settings_schema_list_keys(schema);
    for (gchar **key = keys; key && *key; ++key) {
        GSettingsSchemaKey *schemaKey = g_settings_schema_get_key(schema, *key);
        const GVariantType *type = g_settings_schema_key_get_value_type(schemaKey);
        if (g_variant_type_equal(type, G_VARIANT_TYPE_STRING_ARRAY))
            result += strings(settings, *key);
        else if (g_variant_type_equal(type, G_VARIANT_TYPE_STRING))
            result += string(settings, *key);
        g_settings_schema_key_unref(schemaKey);
    }
    g_strfreev(keys);
    g_settings_schema_unref(schema);
    return result;
}

struct Custom {
    QString path;
    QString command;
    QString binding;
};

QList<Custom> customShortcuts(GSettings *media)
{
    QList<Custom> result;
    for (const QString &path : strings(media, customList)) {
        GSettings *custom = openSettings(customSchema, path.toUtf8().constData());
        if (custom == nullptr)
            break;
        result.append({path, string(custom, "command"), string(custom, "binding")});
        g_object_unref(custom);
    }
    return result;
}

} // namespace

QList<HotKeyCombination> GnomeShortcuts::inUse(const QString &ownCommand)
{
    QList<HotKeyCombination> result;
    const auto add = [&result](const QString &accelerator) {
        if (const auto combination = fromGtkAccelerator(accelerator))
            result.append(*combination);
    };
    for (const char *id : keybindingSchemas) {
        if (GSettings *settings = openSettings(id)) {
            for (const QString &accelerator : accelerators(settings))
                add(accelerator);
            g_object_unref(settings);
        }
    }
    if (GSettings *media = openSettings(mediaKeys)) {
        for (const Custom &custom : customShortcuts(media)) {
            if (!custom.command.startsWith(ownCommand))
                add(custom.binding);
        }
        g_object_unref(media);
    }
    return result;
}

bool GnomeShortcuts::canAddCustom()
{
    GSettingsSchema *media = lookupSchema(mediaKeys);
    GSettingsSchema *custom = lookupSchema(customSchema);
    const bool result = media != nullptr && custom != nullptr && g_settings_schema_has_key(media, customList);
    if (media)
        g_settings_schema_unref(media);
    if (custom)
        g_settings_schema_unref(custom);
    return result;
}

bool GnomeShortcuts::addCustom(const QString &name, const QString &command, quint32 keyCode, quint32 modifiers)
{
    if (!canAddCustom())
        return false;
    removeCustom(command);
    GSettings *media = openSettings(mediaKeys);
    QStringList paths = strings(media, customList);
    int number = 0;
    while (paths.contains(customPathBase.arg(number)))
        ++number;
    const QString path = customPathBase.arg(number);
    GSettings *custom = openSettings(customSchema, path.toUtf8().constData());
    g_settings_set_string(custom, "name", name.toUtf8().constData());
    g_settings_set_string(custom, "command", command.toUtf8().constData());
    g_settings_set_string(custom, "binding", gtkAccelerator(keyCode, modifiers).toUtf8().constData());
    paths.append(path);
    setStrings(media, customList, paths);
    g_settings_sync();
    g_object_unref(custom);
    g_object_unref(media);
    return true;
}

bool GnomeShortcuts::removeCustom(const QString &command)
{
    GSettings *media = openSettings(mediaKeys);
    if (media == nullptr)
        return false;
    QStringList paths = strings(media, customList);
    bool removed = false;
    for (const Custom &custom : customShortcuts(media)) {
        if (custom.command != command)
            continue;
        if (GSettings *settings = openSettings(customSchema, custom.path.toUtf8().constData())) {
            for (const char *key : {"name", "command", "binding"})
                g_settings_reset(settings, key);
            g_object_unref(settings);
        }
        paths.removeAll(custom.path);
        removed = true;
    }
    if (removed) {
        setStrings(media, customList, paths);
        g_settings_sync();
    }
    g_object_unref(media);
    return removed;
}

std::optional<QString> GnomeShortcuts::customBinding(const QString &command)
{
    GSettings *media = openSettings(mediaKeys);
    if (media == nullptr)
        return std::nullopt;
    std::optional<QString> result;
    for (const Custom &custom : customShortcuts(media)) {
        if (custom.command == command)
            result = custom.binding;
    }
    g_object_unref(media);
    return result;
}
