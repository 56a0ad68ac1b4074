#include "platform/loginitem.h"

#include "common/log.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>
#include <QStandardPaths>

#include <gio/gio.h>

#include <algorithm>

namespace {

// One argument as the Desktop Entry format wants it in Exec: in double
// quotes when it has a reserved character, with ", `, $ and \ escaped inside;
// % doubled, since GLib expands field codes before it splits the line.
QString execArgument(const QString &argument)
{
    QString text = argument;
    text.replace(QLatin1Char('%'), QLatin1String("%%"));
    const QString reserved = QStringLiteral(" \t\n\r\"'\\><~|&;$*?#()`");
    if (text.isEmpty() || std::any_of(text.cbegin(), text.cend(), [&](QChar c) { return reserved.contains(c); })) {
        QString quoted = QStringLiteral("\"");
        for (const QChar c : std::as_const(text)) {
            if (c == u'"' || c == u'`' || c == u'$' || c == u'\\')
                quoted += u'\\';
            quoted += c;
        }
        text = quoted + u'"';
    }
    return text;
}

// A value as key files store strings: the escapes are undone before the
// Exec line is split, so backslashes inside the quoting are doubled again.
QString keyFileValue(const QString &value)
{
    QString text;
    for (const QChar c : value) {
        switch (c.unicode()) {
        case '\\':
            text += QLatin1String("\\\\");
            break;
        case '\n':
            text += QLatin1String("\\n");
            break;
        case '\t':
            text += QLatin1String("\\t");
            break;
        case '\r':
            text += QLatin1String("\\r");
            break;
        default:
            text += c;
        }
    }
    return text;
}

// The program the entry's Exec line runs, split as GLib splits it.
std::optional<QString> entryProgram(const QString &path)
{
    GKeyFile *file = g_key_file_new();
    std::optional<QString> program;
    if (g_key_file_load_from_file(file, QFile::encodeName(path).constData(), G_KEY_FILE_NONE, nullptr)) {
        gchar *exec = g_key_file_get_string(file, "Desktop Entry", "Exec", nullptr);
        gchar **argv = nullptr;
        if (exec && g_shell_parse_argv(exec, nullptr, &argv, nullptr))
            program = QFile::decodeName(argv[0]);
        g_strfreev(argv);
        g_free(exec);
    }
    g_key_file_free(file);
    return program;
}

} // namespace

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

    const QString text = QStringLiteral("[Desktop Entry]\n"
                                        "Type=Application\n"
                                        "Name=Quillon\n"
                                        "Comment=Launcher in the panel\n"
                                        "Exec=%1\n"
                                        "Icon=app.quillon.Quillon\n"
                                        "Terminal=false\n"
                                        "X-GNOME-Autostart-enabled=true\n")
                             .arg(keyFileValue(execLine()));
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit())
        return QStringLiteral("%1 could not be written: %2").arg(path, file.errorString());
    return std::nullopt;
}

QString LoginItem::execLine() const
{
    // Installed where the session finds programs: the entry names it as the
    // desktop entry does, so a later version installed elsewhere on PATH
    // still starts.
    const QString onPath = QStandardPaths::findExecutable(QStringLiteral("quillon"));
    const QString program = !onPath.isEmpty() && QFileInfo(m_program).fileName() == QLatin1String("quillon")
                                    && QFileInfo(onPath).canonicalFilePath() == QFileInfo(m_program).canonicalFilePath()
                                ? QStringLiteral("quillon")
                                : m_program;
    return execArgument(program) + QStringLiteral(" --autostart");
}

std::optional<QString> LoginItem::renewIfStale() const
{
    if (!isEnabled())
        return std::nullopt;
    const auto program = entryProgram(entryPath());
    const bool runs = program
                      && (program->contains(QLatin1Char('/')) ? QFileInfo(*program).isExecutable()
                                                              : !QStandardPaths::findExecutable(*program).isEmpty());
    if (runs)
        return std::nullopt;
    qCInfo(lcApp) << "The login entry ran" << program.value_or(QStringLiteral("nothing"))
                  << "which is gone; it now runs" << m_program;
    return setEnabled(true);
}
