#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include <array>
#include <optional>
#include <type_traits>
#include <utility>

// Explicit string conversions for payload-free enumerations. Each enumeration
// specialises EnumCases with its cases, in declaration order, paired with the
// name it is written as.
template<typename E>
struct EnumCases;

// Only enumerations that list their cases take part. The names avoid plain
// toString, which Qt Test looks up for every compared value.
template<typename E>
concept NamedEnum = std::is_enum_v<E> && requires
{
    EnumCases<E>::cases;
};

template<NamedEnum E>
QString enumToString(E value)
{
    for (const auto &[item, name] : EnumCases<E>::cases) {
        if (item == value)
            return QString::fromLatin1(name);
    }
    return {};
}

template<NamedEnum E>
std::optional<E> enumFromString(QStringView text)
{
    for (const auto &[item, name] : EnumCases<E>::cases) {
        if (text == QLatin1String(name))
            return item;
    }
    return std::nullopt;
}

template<NamedEnum E>
QList<E> allCases()
{
    QList<E> result;
    result.reserve(qsizetype(EnumCases<E>::cases.size()));
    for (const auto &entry : EnumCases<E>::cases)
        result.append(entry.first);
    return result;
}
