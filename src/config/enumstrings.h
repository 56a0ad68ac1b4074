#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include <array>
#include <optional>
#include <utility>

// Explicit string conversions for payload-free enumerations. Each enumeration
// specialises EnumCases with its cases, in declaration order, paired with the
// name it is written as.
template<typename E>
struct EnumCases;

template<typename E>
QString toString(E value)
{
    for (const auto &[item, name] : EnumCases<E>::cases) {
        if (item == value)
            return QString::fromLatin1(name);
    }
    return {};
}

template<typename E>
std::optional<E> enumFromString(QStringView text)
{
    for (const auto &[item, name] : EnumCases<E>::cases) {
        if (text == QLatin1String(name))
            return item;
    }
    return std::nullopt;
}

template<typename E>
QList<E> allCases()
{
    QList<E> result;
    result.reserve(qsizetype(EnumCases<E>::cases.size()));
    for (const auto &entry : EnumCases<E>::cases)
        result.append(entry.first);
    return result;
}
