#pragma once

#include <QString>

#include <optional>
#include <utility>

// The outcome of decoding a value: the value, or why it could not be decoded.
template<typename T>
class Decoded
{
public:
    Decoded(T value)
        : m_value(std::move(value))
    {
    }
    static Decoded failure(QString error)
    {
        Decoded result;
        result.m_error = std::move(error);
        return result;
    }
    // Carries another decoding's failure over to this type.
    template<typename U>
    static Decoded failure(const Decoded<U> &other)
    {
        return failure(other.error());
    }

    bool ok() const { return m_value.has_value(); }
    explicit operator bool() const { return ok(); }
    const T &value() const & { return *m_value; }
    T &&value() && { return std::move(*m_value); }
    const QString &error() const { return m_error; }

private:
    Decoded() = default;
    std::optional<T> m_value;
    QString m_error;
};
