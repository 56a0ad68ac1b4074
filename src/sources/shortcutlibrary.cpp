#include "sources/shortcutlibrary.h"

#include "common/log.h"
#include "common/mainthread.h"
#include "sources/shortcutparser.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>

#include <algorithm>

namespace {

const auto toolName = QStringLiteral("quillon-shortcuts");

void logListingFailure(const ToolFailure &failure)
{
    qCWarning(lcSources, "Shortcuts could not be listed: %s", qUtf8Printable(description(failure)));
}

} // namespace

QString ToolError::description() const
{
    return QStringLiteral("shortcuts exited with status %1").arg(status);
}

QString description(const ToolFailure &failure)
{
    if (const auto *error = std::get_if<ToolError>(&failure))
        return error->description();
    return std::get<ToolRunError>(failure).description;
}

size_t qHash(const ShortcutLibrary::Folder &folder, size_t seed) noexcept
{
    return qHashMulti(seed, folder.ref, folder.shortcuts);
}

ShortcutLibrary::ShortcutLibrary(QObject *parent)
    : ShortcutLibrary(QString(), parent)
{
}

ShortcutLibrary::ShortcutLibrary(const QString &toolPath, QObject *parent)
    : QObject(parent)
    , m_toolPath(toolPath)
{
}

ShortcutLibrary::~ShortcutLibrary()
{
    for (QProcess *process : findChildren<QProcess *>(Qt::FindDirectChildrenOnly)) {
        process->disconnect(this);
        process->kill();
        process->waitForFinished(1000);
    }
}

QString ShortcutLibrary::defaultToolPath()
{
    const QFileInfo besideApp(QCoreApplication::applicationDirPath() + QLatin1Char('/') + toolName);
    if (besideApp.isFile() && besideApp.isExecutable())
        return besideApp.filePath();
    const QString onPath = QStandardPaths::findExecutable(toolName);
    // A bare name is looked up on PATH again at each start, so a tool that is
    // installed later is still found.
    return onPath.isEmpty() ? toolName : onPath;
}

QString ShortcutLibrary::toolPath() const
{
    if (m_toolPath.isEmpty())
        m_toolPath = defaultToolPath();
    return m_toolPath;
}

void ShortcutLibrary::setToolTimeout(std::chrono::milliseconds timeout)
{
    m_toolTimeout = timeout;
}

std::optional<ShortcutLibrary::Folder> ShortcutLibrary::folder(const QString &id) const
{
    QUILLON_ASSERT_MAIN_THREAD();
    for (const Folder &folder : m_snapshot.folders) {
        if (folder.ref.id == id)
            return folder;
    }
    return std::nullopt;
}

QList<ShortcutRef> ShortcutLibrary::allShortcuts() const
{
    QUILLON_ASSERT_MAIN_THREAD();
    QList<ShortcutRef> all;
    for (const Folder &folder : m_snapshot.folders)
        all.append(folder.shortcuts);
    all.append(m_snapshot.unfiled);
    return all;
}

bool ShortcutLibrary::contains(const QString &id) const
{
    const QList<ShortcutRef> all = allShortcuts();
    return std::any_of(all.cbegin(), all.cend(), [&id](const ShortcutRef &ref) { return ref.id == id; });
}

void ShortcutLibrary::refresh()
{
    QUILLON_ASSERT_MAIN_THREAD();
    // A reload in flight already answers this request.
    if (m_isRefreshing)
        return;
    setRefreshing(true);
    // One tool run after another: the folders, each folder's contents, then
    // the unfiled shortcuts. Any failure abandons the whole load.
    runTool({QStringLiteral("--folders")}, [this](const ToolOutcome &outcome) {
        if (const auto *failure = std::get_if<ToolFailure>(&outcome))
            return abandonRefresh(*failure);
        Snapshot loading;
        for (const ShortcutRef &ref : std::get<QList<ShortcutRef>>(outcome))
            loading.folders.append(Folder{ref, {}});
        loadFolder(std::move(loading), 0);
    });
}

void ShortcutLibrary::loadFolder(Snapshot loading, qsizetype index)
{
    if (index == loading.folders.size())
        return loadUnfiled(std::move(loading));
    // The folder is named by its identifier, which stays unique where names need not.
    const QStringList arguments{QStringLiteral("--folder-name"), loading.folders.at(index).ref.id};
    runTool(arguments, [this, loading = std::move(loading), index](const ToolOutcome &outcome) mutable {
        if (const auto *failure = std::get_if<ToolFailure>(&outcome))
            return abandonRefresh(*failure);
        loading.folders[index].shortcuts = std::get<QList<ShortcutRef>>(outcome);
        loadFolder(std::move(loading), index + 1);
    });
}

void ShortcutLibrary::loadUnfiled(Snapshot loading)
{
    const QStringList arguments{QStringLiteral("--folder-name"), QStringLiteral("none")};
    runTool(arguments, [this, loading = std::move(loading)](const ToolOutcome &outcome) mutable {
        if (const auto *failure = std::get_if<ToolFailure>(&outcome))
            return abandonRefresh(*failure);
        loading.unfiled = std::get<QList<ShortcutRef>>(outcome);
        finishRefresh(loading);
    });
}

void ShortcutLibrary::finishRefresh(const Snapshot &loaded)
{
    if (loaded != m_snapshot) {
        m_snapshot = loaded;
        Q_EMIT snapshotChanged();
    }
    setHasLoaded(true);
    setRefreshing(false);
}

void ShortcutLibrary::abandonRefresh(const ToolFailure &failure)
{
    logListingFailure(failure);
    setRefreshing(false);
}

void ShortcutLibrary::run(const QString &id)
{
    QUILLON_ASSERT_MAIN_THREAD();
    // A fresh listing of every shortcut, not the snapshot, decides whether it still exists.
    runTool({}, [this, id](const ToolOutcome &outcome) {
        if (const auto *failure = std::get_if<ToolFailure>(&outcome))
            return logListingFailure(*failure);
        const auto &listing = std::get<QList<ShortcutRef>>(outcome);
        if (std::any_of(listing.cbegin(), listing.cend(), [&id](const ShortcutRef &ref) { return ref.id == id; }))
            return launch(id);
        qCWarning(lcSources, "Shortcut %s is no longer in the library", qUtf8Printable(id));
        refresh();
    });
}

void ShortcutLibrary::runTool(const QStringList &arguments, std::function<void(const ToolOutcome &)> done)
{
    QUILLON_ASSERT_MAIN_THREAD();
    auto *process = new QProcess(this);
    process->setProgram(toolPath());
    process->setArguments(QStringList{QStringLiteral("list"), QStringLiteral("--show-identifiers")} + arguments);
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());

    auto *deadline = new QTimer(process);
    deadline->setSingleShot(true);
    connect(deadline, &QTimer::timeout, process, &QProcess::kill);

    // Reports once and lets the process go. The library is the receiver, so a
    // library being destroyed hears nothing from the processes it kills.
    auto report = [this, process, deadline, done](const ToolOutcome &outcome) {
        deadline->stop();
        disconnect(process, nullptr, this, nullptr);
        process->deleteLater();
        done(outcome);
    };
    connect(process, &QProcess::finished, this, [=, this](int status, QProcess::ExitStatus) {
        // The deadline stops counting only when it has fired.
        if (!deadline->isActive()) {
            const auto limit = QString::number(m_toolTimeout.count());
            return report(
                ToolRunError{QStringLiteral("shortcuts did not finish within %1 ms and was stopped").arg(limit)});
        }
        if (status != 0)
            return report(ToolError{status});
        report(parseShortcutList(process->readAllStandardOutput()));
    });
    connect(process, &QProcess::errorOccurred, this, [=](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            report(ToolRunError{process->errorString()});
    });
    // A listing is a few bytes a shortcut; a tool that prints without end
    // is stopped before it fills the memory.
    connect(process, &QProcess::readyReadStandardOutput, this, [=] {
        if (process->bytesAvailable() <= maximumToolOutput)
            return;
        report(ToolRunError{
            QStringLiteral("shortcuts printed more than %1 bytes and was stopped").arg(maximumToolOutput)});
        process->kill();
    });

    deadline->start(m_toolTimeout);
    process->start();
}

void ShortcutLibrary::launch(const QString &id)
{
    // Nothing owns the process but itself: a shortcut keeps running when the
    // library or the whole application goes away before it ends.
    auto *process = new QProcess;
    process->setProgram(toolPath());
    process->setArguments({QStringLiteral("run"), id});
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    connect(process, &QProcess::finished, process, [process, id](int status) {
        if (status != 0)
            qCWarning(lcSources, "Shortcut %s ended with status %d", qUtf8Printable(id), status);
        process->deleteLater();
    });
    connect(process, &QProcess::errorOccurred, process, [process, id](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        qCWarning(lcSources, "Shortcut %s could not run: %s", qUtf8Printable(id),
                  qUtf8Printable(process->errorString()));
        process->deleteLater();
    });
    process->start();
}

void ShortcutLibrary::setHasLoaded(bool hasLoaded)
{
    if (m_hasLoaded == hasLoaded)
        return;
    m_hasLoaded = hasLoaded;
    Q_EMIT hasLoadedChanged(hasLoaded);
}

void ShortcutLibrary::setRefreshing(bool refreshing)
{
    if (m_isRefreshing == refreshing)
        return;
    m_isRefreshing = refreshing;
    Q_EMIT isRefreshingChanged(refreshing);
}
