#include "catalog/osversion.h"

#include <QHashFunctions>

namespace {

// An optional sign and at least one ASCII digit, nothing else; overflow fails.
std::optional<qint64> parseInteger(QStringView piece)
{
    const QStringView digits = (piece.startsWith(u'+') || piece.startsWith(u'-')) ? piece.sliced(1) : piece;
    if (digits.isEmpty())
        return std::nullopt;
    for (const QChar c : digits) {
        if (c < u'0' || c > u'9')
            return std::nullopt;
    }
    bool ok = false;
    const qint64 value = piece.toLongLong(&ok, 10);
    if (!ok)
        return std::nullopt;
    return value;
}

} // namespace

std::optional<OSVersion> OSVersion::parse(QStringView text)
{
    OSVersion version;
    for (const QStringView piece : text.split(u'.', Qt::SkipEmptyParts)) {
        const auto value = parseInteger(piece);
        if (!value)
            return std::nullopt;
        version.parts.append(*value);
    }
    if (version.parts.isEmpty())
        return std::nullopt;
    return version;
}

bool operator<(const OSVersion &a, const OSVersion &b)
{
    const qsizetype count = std::max(a.parts.size(), b.parts.size());
    for (qsizetype i = 0; i < count; ++i) {
        const qint64 left = a.parts.value(i, 0);
        const qint64 right = b.parts.value(i, 0);
        if (left != right)
            return left < right;
    }
    return false;
}

size_t qHash(const OSVersion &version, size_t seed) noexcept
{
    qsizetype significant = version.parts.size();
    while (significant > 0 && version.parts.at(significant - 1) == 0)
        --significant;
    return qHashRange(version.parts.cbegin(), version.parts.cbegin() + significant, seed);
}
