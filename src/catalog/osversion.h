#pragma once

#include <QList>
#include <QStringView>

#include <optional>

// A version number, most significant part first. Missing trailing parts count
// as zero, so 15, 15.0 and 15.0.0 are the same version.
struct OSVersion {
    QList<qint64> parts;

    // Dot-separated integers; empty pieces are ignored. None when any piece is
    // not a base-10 integer or there is no piece at all.
    static std::optional<OSVersion> parse(QStringView text);

    friend bool operator<(const OSVersion &a, const OSVersion &b);
    friend bool operator>(const OSVersion &a, const OSVersion &b) { return b < a; }
    friend bool operator<=(const OSVersion &a, const OSVersion &b) { return !(b < a); }
    friend bool operator>=(const OSVersion &a, const OSVersion &b) { return !(a < b); }
    friend bool operator==(const OSVersion &a, const OSVersion &b) { return !(a < b) && !(b < a); }
};

// Consistent with equality: trailing zero parts do not change the hash.
size_t qHash(const OSVersion &version, size_t seed = 0) noexcept;
