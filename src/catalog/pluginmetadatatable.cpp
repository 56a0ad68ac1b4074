#include "catalog/pluginmetadatatable.h"

#include <QFileInfo>
#include <QJsonObject>
#include <QPluginLoader>

Decoded<PluginLocalizations> readPluginLocalizations(const QString &path)
{
    if (!QFileInfo(path).isFile())
        return Decoded<PluginLocalizations>::failure(QStringLiteral("no such file"));
    // metaData() reads the file's metadata section and runs none of its code.
    const QPluginLoader loader(path);
    const QJsonObject all = loader.metaData();
    if (all.isEmpty())
        return Decoded<PluginLocalizations>::failure(QStringLiteral("not a Qt plugin"));
    const QJsonObject metadata = all.value(QStringLiteral("MetaData")).toObject();
    // KDE's plugins keep their texts under "KPlugin"; older ones at the top.
    const QJsonObject texts =
        metadata.contains(QStringLiteral("KPlugin")) ? metadata.value(QStringLiteral("KPlugin")).toObject() : metadata;

    PluginLocalizations localizations;
    for (auto it = texts.constBegin(); it != texts.constEnd(); ++it) {
        const QString &name = it.key();
        const qsizetype open = name.indexOf(u'[');
        if (open <= 0 || !name.endsWith(u']') || !it->isString())
            continue;
        const QString locale = name.sliced(open + 1, name.size() - open - 2);
        const QString value = it->toString();
        // An empty translation is no translation.
        if (!locale.isEmpty() && !value.isEmpty())
            localizations[locale].insert(name.first(open), value);
    }
    return localizations;
}

std::optional<QString> resolvePluginPath(const QString &path, const QStringList &pluginFolders)
{
    static const QString placeholder = QStringLiteral("%p/");
    if (!path.startsWith(placeholder))
        return QFileInfo(path).isFile() ? std::optional<QString>(path) : std::nullopt;
    for (const QString &folder : pluginFolders) {
        const QString candidate = folder + u'/' + path.sliced(placeholder.size());
        if (QFileInfo(candidate).isFile())
            return candidate;
    }
    return std::nullopt;
}
