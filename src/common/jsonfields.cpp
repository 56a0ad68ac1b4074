#include "common/jsonfields.h"

#include <QRegularExpression>

#include <cmath>
#include <limits>

QString encodeUuid(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces).toUpper();
}

template<>
Decoded<QString> decode(const QJsonValue &json)
{
    if (!json.isString())
        return Decoded<QString>::failure(QStringLiteral("expected a string"));
    return json.toString();
}

template<>
Decoded<bool> decode(const QJsonValue &json)
{
    if (!json.isBool())
        return Decoded<bool>::failure(QStringLiteral("expected a Boolean"));
    return json.toBool();
}

template<>
Decoded<int> decode(const QJsonValue &json)
{
    const double number = json.toDouble(std::nan(""));
    if (!json.isDouble() || std::trunc(number) != number || number < std::numeric_limits<int>::min()
        || number > std::numeric_limits<int>::max())
        return Decoded<int>::failure(QStringLiteral("expected an integer"));
    return int(number);
}

template<>
Decoded<double> decode(const QJsonValue &json)
{
    if (!json.isDouble())
        return Decoded<double>::failure(QStringLiteral("expected a number"));
    return json.toDouble();
}

template<>
Decoded<QUuid> decode(const QJsonValue &json)
{
    static const QRegularExpression form(
        QStringLiteral("^[0-9A-Fa-f]{8}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{12}$"));
    const QString text = json.toString();
    if (!json.isString() || !form.match(text).hasMatch())
        return Decoded<QUuid>::failure(QStringLiteral("expected a UUID string"));
    return QUuid::fromString(text);
}

template<>
Decoded<QUrl> decode(const QJsonValue &json)
{
    const QString text = json.toString();
    const QUrl url(text, QUrl::StrictMode);
    if (!json.isString() || text.isEmpty() || !url.isValid())
        return Decoded<QUrl>::failure(QStringLiteral("expected a URL string"));
    return url;
}
