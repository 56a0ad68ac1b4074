#include "platform/loginitem.h"

#include "common/log.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>
#include <QStandardPaths>

LoginItem::LoginItem(QString program)
    : m_program(std::move(program))
{
}

QString LoginItem::entryPath()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation))
        .filePath(QStringLiteral("autostart/app.quillon.Quillon.desktop"));
}

std::optional<QString> LoginItem::unavailableReason()
{
    // The nearest folder that exists decides: the entry's own, or the one it
    // would be made in.
    QFileInfo folder(QFileInfo(entryPath()).absolutePath());
    while (!folder.exists() && folder.absoluteFilePath() != QDir::rootPath())
        folder = QFileInfo(folder.absolutePath());
    if (folder.isDir() && folder.isWritable())
        return std::nullopt;
    return QCoreApplication::translate("LoginItem", "%1 cannot be written, so Quillon cannot start at login.")
        .arg(QFileInfo(entryPath()).absolutePath());
}

bool LoginItem::isEnabled() const
{
    const QString path = entryPath();
    if (!QFile::exists(path))
        return false;
    // An entry someone switched off by hand does not start us.
    QSettings entry(path, QSettings::IniFormat);
    entry.beginGroup(QStringLiteral("Desktop Entry"));
    return entry.value(QStringLiteral("Hidden")).toString() != QLatin1String("true")
           && entry.value(QStringLiteral("X-GNOME-Autostart-enabled")).toString() != QLatin1String("false");
}

std::optional<QString> LoginItem::setEnabled(bool enabled) const
{
    const QString path = entryPath();
    if (!enabled) {
        if (QFile::exists(path) && !QFile::remove(path))
            return QStringLiteral("%1 could not be removed").arg(path);
        return std::nullopt;
    }
    if (!QDir().mkpath(QFileInfo(path).absolutePath()))
        return QStringLiteral("%1 could not be created").arg(QFileInfo(path).absolutePath());

    // Quote the program as the desktop entry format wants when it has spaces.
    QString program = m_program;
    program.replace(QLatin1Char('%'), QLatin1String("%%"));
    if (program.contains(QLatin1Char(' ')))
        program = QLatin1Char('"') + program.replace(QLatin1Char('"'), QLatin1String("\\\"")) + QLatin1Char('"');
    const QString text = QStringLiteral("[Desktop Entry]\n"
                                        "Type=Application\n"
                                        "Name=Quillon\n"
                                        "Comment=Launcher in the panel\n"
                                        "Exec=%1 --autostart\n"
                                        "Icon=app.quillon.Quillon\n"
                                        "Terminal=false\n"
                                        "X-GNOME-Autostart-enabled=true\n")
                             .arg(program);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit())
        return QStringLiteral("%1 could not be written: %2").arg(path, file.errorString());
    return std::nullopt;
}
