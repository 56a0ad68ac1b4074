#include "platform/systemrelease.h"

#include <QFile>
#include <QHash>
#include <QHashFunctions>
#include <QRegularExpression>
#include <QSysInfo>

namespace {

// KEY=value lines; values may be quoted, with backslash escapes inside.
QHash<QString, QString> osReleaseFields(const QString &text)
{
    QHash<QString, QString> fields;
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (line.startsWith(QLatin1Char('#')) || equals <= 0)
            continue;
        QString value = line.mid(equals + 1).trimmed();
        if (value.size() >= 2 && (value.front() == u'"' || value.front() == u'\'') && value.back() == value.front()) {
            const QString quoted = value.mid(1, value.size() - 2);
            value.clear();
            for (qsizetype i = 0; i < quoted.size(); ++i) {
                if (quoted.at(i) == QLatin1Char('\\') && i + 1 < quoted.size())
                    ++i;
                value.append(quoted.at(i));
            }
        }
        fields.insert(line.left(equals).trimmed(), value);
    }
    return fields;
}

// The numbers of the first version in a text: "22.04.3 LTS" gives 22, 04, 3.
QStringList versionParts(const QString &text)
{
    static const QRegularExpression version(QStringLiteral("\\d+(?:\\.\\d+)*"));
    const QRegularExpressionMatch match = version.match(text);
    return match.hasMatch() ? match.captured().split(QLatin1Char('.')) : QStringList();
}

// Exactly three parts: missing ones are 0, further ones are dropped. The
// parts are kept as written ("24.04" stays "24.04.0").
QString majorMinorPatch(QStringList parts)
{
    while (parts.size() < 3)
        parts.append(QStringLiteral("0"));
    return parts.mid(0, 3).join(QLatin1Char('.'));
}

QString readText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(64 * 1024)) : QString();
}

} // namespace

SystemRelease SystemRelease::from(const QString &osRelease, const QString &debianVersion, const QString &kernelRelease)
{
    const QHash<QString, QString> fields = osReleaseFields(osRelease);
    const QStringList id = versionParts(fields.value(QStringLiteral("VERSION_ID")));
    if (id.isEmpty()) {
        const QStringList kernel = versionParts(kernelRelease);
        return {QStringLiteral("Linux"), kernel.isEmpty() ? QStringLiteral("?") : majorMinorPatch(kernel)};
    }

    const QString name = fields.value(QStringLiteral("ID"), QStringLiteral("linux"));
    QList<QStringList> candidates{versionParts(fields.value(QStringLiteral("VERSION")))};
    // Other distributions keep their Debian base's name in this file.
    if (name == QLatin1String("debian"))
        candidates.append(versionParts(debianVersion.trimmed()));
    // The most precise one that is this release, not another.
    QStringList best = id;
    for (const QStringList &parts : std::as_const(candidates)) {
        if (parts.size() > best.size() && parts.mid(0, id.size()) == id)
            best = parts;
    }
    return {name, majorMinorPatch(best)};
}

SystemRelease SystemRelease::current()
{
    QString osRelease = readText(QStringLiteral("/etc/os-release"));
    if (osRelease.isEmpty())
        osRelease = readText(QStringLiteral("/usr/lib/os-release"));
    return from(osRelease, readText(QStringLiteral("/etc/debian_version")), QSysInfo::kernelVersion());
}

size_t qHash(const SystemRelease &release, size_t seed) noexcept
{
    return qHashMulti(seed, release.name, release.version);
}
