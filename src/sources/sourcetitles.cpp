#include "sources/sourcetitles.h"

#include "catalog/systemstrings.h"

#include <QCoreApplication>
#include <QFileInfo>

QString applicationsTitle(SystemStrings &strings)
{
    // GNOME Settings carries the desktop's word for applications; elsewhere
    // our own translation of it stands in.
    return strings.resolve(QStringLiteral("Applications"),
                           StringRef{QStringLiteral("/usr/share/locale/%l/LC_MESSAGES/gnome-control-center-2.0.mo"),
                                     QStringLiteral("Applications")});
}

QString shortcutsTitle()
{
    return QCoreApplication::translate("SourceTitles", "Shortcuts");
}

QString folderTitle(const QUrl &folder)
{
    QString path = folder.isLocalFile() ? folder.toLocalFile() : folder.path();
    while (path.size() > 1 && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    const QString name = QFileInfo(path).fileName();
    return name.isEmpty() ? path : name;
}
