#include "config/urls.h"

#include <QFileInfo>
#include <QUrlQuery>

QUrl shortcutURL(const QString &id)
{
    QUrl url;
    url.setScheme(QStringLiteral("shortcuts"));
    url.setHost(QStringLiteral("run-shortcut"));
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("id"), id);
    url.setQuery(query);
    return url;
}

std::optional<QString> shortcutID(const QUrl &url)
{
    if (url.scheme() != QLatin1String("shortcuts") || url.host() != QLatin1String("run-shortcut"))
        return std::nullopt;
    const QUrlQuery query(url);
    // The first "id" item decides, as a URL parser would read it.
    for (const auto &[key, value] : query.queryItems(QUrl::FullyDecoded)) {
        if (key == QLatin1String("id"))
            return value.isEmpty() ? std::nullopt : std::optional<QString>(value);
    }
    return std::nullopt;
}

bool isShortcutRunURL(const QUrl &url)
{
    return shortcutID(url).has_value();
}

namespace {

// The local path of a file URL; "localhost" names this machine, as an empty
// host does.
QString localPath(const QUrl &url)
{
    if (url.host().compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0)
        return url.path(QUrl::FullyDecoded);
    return url.toLocalFile();
}

} // namespace

QString urlString(const QUrl &url)
{
    // Fully encoded, but a "#" inside the fragment stays as it is: encoded
    // it would read back as "%23", which QUrl holds apart from "#", and the
    // item would no longer equal itself after a reload.
    if (!url.hasFragment())
        return url.toString(QUrl::FullyEncoded);
    return url.toString(QUrl::FullyEncoded | QUrl::RemoveFragment) + QLatin1Char('#')
           + url.fragment(QUrl::EncodeSpaces | QUrl::EncodeUnicode | QUrl::EncodeReserved);
}

QUrl normalizedURL(const QUrl &url)
{
    if (!url.isLocalFile())
        return url;
    QString path = localPath(url);
    if (path.isEmpty())
        return url;
    const bool directory = path.endsWith(QLatin1Char('/'));
    while (path.size() > 1 && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    QUrl rebuilt = QUrl::fromLocalFile(path);
    if (directory && path != QLatin1String("/"))
        rebuilt.setPath(rebuilt.path() + QLatin1Char('/'));
    return rebuilt;
}

QString comparablePath(const QUrl &url)
{
    QString path = url.isLocalFile() ? localPath(url) : url.path(QUrl::FullyDecoded);
    while (path.size() > 1 && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return path;
}

MenuItemKind kindOf(const QUrl &url)
{
    if (isShortcutRunURL(url))
        return MenuItemKind::Shortcuts;
    if (url.isLocalFile()) {
        // Applications are desktop entries here; the suffix is matched exactly.
        const QString name = QFileInfo(comparablePath(url)).fileName();
        const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
        const bool isApp = dot > 0 && QStringView(name).mid(dot + 1) == QLatin1String("desktop");
        return isApp ? MenuItemKind::Apps : MenuItemKind::Files;
    }
    return MenuItemKind::Settings;
}

bool isSettingsURL(const QUrl &url)
{
    return url.scheme() == QLatin1String("settings");
}
