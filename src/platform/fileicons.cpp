#include "platform/fileicons.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QMimeDatabase>
#include <QSettings>
#include <QStandardPaths>

namespace {

QString specialFolderIcon(const QString &path)
{
    static const QList<std::pair<QStandardPaths::StandardLocation, const char *>> roles{
        {QStandardPaths::HomeLocation, "user-home"},
        {QStandardPaths::DesktopLocation, "user-desktop"},
        {QStandardPaths::DocumentsLocation, "folder-documents"},
        {QStandardPaths::DownloadLocation, "folder-download"},
        {QStandardPaths::MusicLocation, "folder-music"},
        {QStandardPaths::PicturesLocation, "folder-pictures"},
        {QStandardPaths::MoviesLocation, "folder-videos"},
        {QStandardPaths::TemplatesLocation, "folder-templates"},
        {QStandardPaths::PublicShareLocation, "folder-publicshare"},
    };
    const QString clean = QDir::cleanPath(path);
    for (const auto &[location, icon] : roles) {
        const QString folder = QStandardPaths::writableLocation(location);
        // Unset user folders fall back to home; only home itself is home.
        if (!folder.isEmpty() && QDir::cleanPath(folder) == clean
            && (location == QStandardPaths::HomeLocation || folder != QDir::homePath()))
            return QLatin1String(icon);
    }
    return {};
}

QString desktopEntryIcon(const QString &path)
{
    QSettings entry(path, QSettings::IniFormat);
    return entry.value(QStringLiteral("Desktop Entry/Icon")).toString();
}

QIcon themed(const QStringList &names)
{
    for (const QString &name : names) {
        if (!name.isEmpty() && QIcon::hasThemeIcon(name))
            return QIcon::fromTheme(name);
    }
    return {};
}

} // namespace

QIcon iconForName(const QString &nameOrPath)
{
    if (nameOrPath.isEmpty())
        return {};
    if (QDir::isAbsolutePath(nameOrPath))
        return QFileInfo::exists(nameOrPath) ? QIcon(nameOrPath) : QIcon();
    return QIcon::fromTheme(nameOrPath);
}

QIcon iconForFile(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir()) {
        const QString special = specialFolderIcon(path);
        return themed({special, QStringLiteral("folder")});
    }
    if (info.suffix() == QLatin1String("desktop")) {
        const QIcon icon = iconForName(desktopEntryIcon(path));
        if (!icon.isNull())
            return icon;
        return themed({QStringLiteral("application-x-executable")});
    }
    static QMimeDatabase mimeDatabase;
    const QMimeType type = mimeDatabase.mimeTypeForFile(path, QMimeDatabase::MatchExtension);
    return themed(
        {type.iconName(), type.genericIconName(), QStringLiteral("text-x-generic"), QStringLiteral("unknown")});
}

void ensureIconTheme()
{
    const QString current = QIcon::themeName();
    if (!current.isEmpty() && current != QLatin1String("hicolor"))
        return;
    for (const char *name : {"Adwaita", "breeze", "breeze-dark", "gnome"}) {
        for (const QString &base : QIcon::themeSearchPaths()) {
            if (QFileInfo::exists(QDir(base).filePath(QLatin1String(name) + QLatin1String("/index.theme")))) {
                QIcon::setThemeName(QLatin1String(name));
                return;
            }
        }
    }
}
