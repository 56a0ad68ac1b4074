#pragma once

#include "common/decoded.h"
#include "common/enumstrings.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QUrl>
#include <QUuid>

#include <optional>

// Reading and writing JSON documents field by field: enumerations as their
// case names, UUIDs upper-case, URLs as absolute strings. A failure says
// which value was wrong and why.

template<typename E>
QJsonValue encodeEnum(E value)
{
    return enumToString(value);
}

// An enumeration written as its case name; `typeName` names it in errors.
template<NamedEnum E>
Decoded<E> decodeEnum(const QJsonValue &json, const char *typeName)
{
    if (!json.isString())
        return Decoded<E>::failure(QStringLiteral("expected a %1 string").arg(QLatin1String(typeName)));
    if (const auto value = enumFromString<E>(json.toString()))
        return *value;
    return Decoded<E>::failure(QStringLiteral("unknown %1 \"%2\"").arg(QLatin1String(typeName), json.toString()));
}

QString encodeUuid(const QUuid &id);

// Decoders, one per type; documents add their own records.
template<typename T>
Decoded<T> decode(const QJsonValue &json);

template<>
Decoded<QString> decode(const QJsonValue &json);
template<>
Decoded<bool> decode(const QJsonValue &json);
template<>
Decoded<int> decode(const QJsonValue &json);
template<>
Decoded<double> decode(const QJsonValue &json);
template<>
Decoded<QUuid> decode(const QJsonValue &json);
template<>
Decoded<QUrl> decode(const QJsonValue &json);

// A JSON array whose every element decodes as T.
template<typename T>
Decoded<QList<T>> decodeList(const QJsonValue &json)
{
    if (!json.isArray())
        return Decoded<QList<T>>::failure(QStringLiteral("expected an array"));
    QList<T> result;
    const auto array = json.toArray();
    result.reserve(array.size());
    for (qsizetype i = 0; i < array.size(); ++i) {
        auto element = decode<T>(array.at(i));
        if (!element)
            return Decoded<QList<T>>::failure(QStringLiteral("[%1]: %2").arg(i).arg(element.error()));
        result.append(std::move(element).value());
    }
    return result;
}

// Decoders usable generically, lists included.
template<typename T>
struct Decoder {
    static Decoded<T> run(const QJsonValue &json) { return decode<T>(json); }
};
template<typename T>
struct Decoder<QList<T>> {
    static Decoded<QList<T>> run(const QJsonValue &json) { return decodeList<T>(json); }
};

// A required key of an object.
template<typename T>
Decoded<T> field(const QJsonObject &object, QLatin1StringView key)
{
    const auto it = object.constFind(key);
    if (it == object.constEnd())
        return Decoded<T>::failure(QStringLiteral("missing key \"%1\"").arg(key));
    auto value = Decoder<T>::run(*it);
    if (!value)
        return Decoded<T>::failure(QStringLiteral("\"%1\": %2").arg(key, value.error()));
    return value;
}

// An optional key of an object: absent or null reads as not set.
template<typename T>
Decoded<std::optional<T>> optionalField(const QJsonObject &object, QLatin1StringView key)
{
    const auto it = object.constFind(key);
    if (it == object.constEnd() || it->isNull())
        return std::optional<T>();
    auto value = Decoder<T>::run(*it);
    if (!value)
        return Decoded<std::optional<T>>::failure(QStringLiteral("\"%1\": %2").arg(key, value.error()));
    return std::optional<T>(std::move(value).value());
}

template<typename T, typename Encode>
QJsonArray encodeList(const QList<T> &values, Encode encodeOne)
{
    QJsonArray array;
    for (const auto &value : values)
        array.append(encodeOne(value));
    return array;
}
