// quillon-shortcuts: the user's scripts as shortcuts, with the command line
// and output of the shortcuts tool that Quillon reads.
//
//   quillon-shortcuts list [--show-identifiers] [--folders | --folder-name <folder id>|none]
//   quillon-shortcuts run <shortcut id>

#include "scriptfolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>

#include <unistd.h>

namespace {

constexpr int usageStatus = 2;
// What a shell answers for a file it found but could not execute.
constexpr int cannotRunStatus = 126;

const char usage[] = "usage: quillon-shortcuts list [--show-identifiers] [--folders | --folder-name <folder id>|none]\n"
                     "       quillon-shortcuts run <shortcut id>\n";

int usageError(const QString &message)
{
    std::fprintf(stderr, "quillon-shortcuts: %s\n%s", qUtf8Printable(message), usage);
    return usageStatus;
}

std::optional<ScriptEntry> findById(const QList<ScriptEntry> &entries, const QString &id)
{
    for (const ScriptEntry &entry : entries) {
        if (entry.id.compare(id, Qt::CaseInsensitive) == 0)
            return entry;
    }
    return std::nullopt;
}

void print(const QList<ScriptEntry> &entries, bool showIdentifiers)
{
    for (const ScriptEntry &entry : entries) {
        const QString line =
            showIdentifiers ? QStringLiteral("%1 (%2)\n").arg(entry.name, entry.id) : entry.name + u'\n';
        std::fputs(line.toUtf8().constData(), stdout);
    }
}

int list(const ScriptFolder &scripts, const QStringList &arguments)
{
    bool showIdentifiers = false;
    bool folders = false;
    std::optional<QString> folderName;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (argument == QLatin1String("--show-identifiers")) {
            showIdentifiers = true;
        } else if (argument == QLatin1String("--folders")) {
            folders = true;
        } else if (argument == QLatin1String("--folder-name")) {
            if (++i == arguments.size())
                return usageError(QStringLiteral("--folder-name needs a folder identifier or none"));
            folderName = arguments.at(i);
        } else {
            return usageError(QStringLiteral("unknown option %1").arg(argument));
        }
    }
    if (folders && folderName)
        return usageError(QStringLiteral("--folders and --folder-name exclude each other"));

    if (folders) {
        print(scripts.folders(), showIdentifiers);
    } else if (!folderName) {
        print(scripts.allShortcuts(), showIdentifiers);
    } else if (*folderName == QLatin1String("none")) {
        print(scripts.unfiledShortcuts(), showIdentifiers);
    } else {
        const std::optional<ScriptEntry> folder = findById(scripts.folders(), *folderName);
        if (!folder)
            return usageError(QStringLiteral("no folder has the identifier %1").arg(*folderName));
        print(scripts.shortcuts(*folder), showIdentifiers);
    }
    return 0;
}

// Replaces this process with the script, so its exit status (or the signal
// that ended it) is ours and nothing sits in between. A script without a
// "#!" line runs through /bin/sh, as a shell would run it.
int exec(const QByteArray &file)
{
    const QByteArray home = QFile::encodeName(QDir::homePath());
    if (::chdir(home.constData()) != 0) {
        std::fprintf(stderr, "quillon-shortcuts: cannot enter %s: %s\n", home.constData(), std::strerror(errno));
        return cannotRunStatus;
    }
    char *const argv[] = {const_cast<char *>(file.constData()), nullptr};
    std::fflush(stdout);
    ::execv(file.constData(), argv);
    if (errno == ENOEXEC) {
        char *const shellArgv[] = {const_cast<char *>("sh"), const_cast<char *>(file.constData()), nullptr};
        ::execv("/bin/sh", shellArgv);
    }
    std::fprintf(stderr, "quillon-shortcuts: cannot run %s: %s\n", file.constData(), std::strerror(errno));
    return cannotRunStatus;
}

int run(const ScriptFolder &scripts, const QStringList &arguments)
{
    if (arguments.size() != 1)
        return usageError(QStringLiteral("run needs exactly one shortcut identifier"));
    const std::optional<ScriptEntry> shortcut = findById(scripts.allShortcuts(), arguments.first());
    if (!shortcut)
        return usageError(QStringLiteral("no shortcut has the identifier %1").arg(arguments.first()));
    return exec(shortcut->path);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments().mid(1);
    if (arguments.isEmpty())
        return usageError(QStringLiteral("a command is needed"));
    const QString &command = arguments.first();
    if (command == QLatin1String("--help") || command == QLatin1String("-h") || command == QLatin1String("help")) {
        std::fputs(usage, stdout);
        return 0;
    }

    const ScriptFolder scripts(ScriptFolder::defaultRoot());
    // First use makes the folder, so the user finds where scripts go.
    QDir().mkpath(scripts.root());
    if (command == QLatin1String("list"))
        return list(scripts, arguments.mid(1));
    if (command == QLatin1String("run"))
        return run(scripts, arguments.mid(1));
    return usageError(QStringLiteral("unknown command %1").arg(command));
}
