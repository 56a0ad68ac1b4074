#pragma once

#include <QString>

// The running system as a bug report names it: the distribution (its
// os-release ID) and its release as major.minor.patch, or "Linux" and the
// kernel's release where the distribution names no version (rolling ones).
struct SystemRelease {
    QString name;
    QString version;
    bool operator==(const SystemRelease &) const = default;

    // This machine's, from /etc/os-release, /etc/debian_version and the kernel.
    static SystemRelease current();
    // From those texts: a Debian point release is only in debian_version
    // ("12.5"), an Ubuntu one only in VERSION ("22.04.3 LTS").
    static SystemRelease from(const QString &osRelease, const QString &debianVersion, const QString &kernelRelease);
};

size_t qHash(const SystemRelease &release, size_t seed = 0) noexcept;
