#include "sources/xdgdirs.h"

#include <QDir>

QStringList xdgDataDirs()
{
    QStringList dirs;
    const auto add = [&dirs](const QString &path) {
        if (!QDir::isAbsolutePath(path))
            return;
        const QString dir = QDir::cleanPath(path);
        if (!dirs.contains(dir))
            dirs.append(dir);
    };

    const QString home = qEnvironmentVariable("XDG_DATA_HOME");
    add(home.isEmpty() ? QDir::homePath() + QLatin1String("/.local/share") : home);

    QString system = qEnvironmentVariable("XDG_DATA_DIRS");
    if (system.isEmpty())
        system = QStringLiteral("/usr/local/share/:/usr/share/");
    for (const QString &dir : system.split(QLatin1Char(':'), Qt::SkipEmptyParts))
        add(dir);
    return dirs;
}

QStringList currentDesktops()
{
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(QLatin1Char(':'), Qt::SkipEmptyParts);
}
