#include "platform/ownicons.h"

#include "common/installedfiles.h"

#include <QDir>
#include <QFileInfo>

namespace {

const QString applicationIconName = QStringLiteral("app.quillon.Quillon");
const QString symbolicIconName = QStringLiteral("app.quillon.Quillon-symbolic");

QString ownIconFolder()
{
    return installedDataFolder() + QStringLiteral("/icons");
}

} // namespace

void addOwnIconFolder()
{
    const QString folder = ownIconFolder();
    QStringList paths = QIcon::themeSearchPaths();
    if (!QFileInfo(folder).isDir() || paths.contains(folder))
        return;
    // After the usual folders: an installed theme's own icon wins.
    paths.append(folder);
    QIcon::setThemeSearchPaths(paths);
}

QIcon applicationIcon()
{
    return QIcon::fromTheme(applicationIconName, QIcon(QStringLiteral(":/icons/app.quillon.Quillon.svg")));
}

TrayIcon trayIcon()
{
    TrayIcon icon{QIcon(QStringLiteral(":/icons/quillon.svg")), {}, {}};
    const QString folder = ownIconFolder();
    const bool ownCopy = QFileInfo::exists(folder + QStringLiteral("/hicolor/symbolic/apps/") + symbolicIconName
                                           + QStringLiteral(".svg"));
    if (ownCopy || QIcon::hasThemeIcon(symbolicIconName)) {
        icon.symbolicName = symbolicIconName;
        // The panel searches its own folders first; ours is for a copy
        // installed where it would not look.
        if (ownCopy)
            icon.themeFolder = folder;
    }
    return icon;
}
