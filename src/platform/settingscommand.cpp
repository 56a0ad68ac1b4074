#include "platform/settingscommand.h"

#include "config/urls.h"

std::optional<SettingsCommand> settingsCommand(const QUrl &url)
{
    if (!isSettingsURL(url))
        return std::nullopt;
    QStringList parts;
    for (const QString &part : url.path(QUrl::FullyEncoded).split(QLatin1Char('/'), Qt::SkipEmptyParts))
        parts.append(QUrl::fromPercentEncoding(part.toUtf8()));

    const QString desktop = url.host().toLower();
    if (desktop == QLatin1String("gnome"))
        return SettingsCommand{QStringLiteral("gnome-control-center"), parts};
    if (desktop == QLatin1String("kde")) {
        SettingsCommand command{QStringLiteral("systemsettings"), {}};
        if (!parts.isEmpty()) {
            command.arguments.append(parts.takeFirst());
            if (!parts.isEmpty())
                command.arguments += {QStringLiteral("--args"), parts.join(QLatin1Char(' '))};
        }
        return command;
    }
    return std::nullopt;
}
