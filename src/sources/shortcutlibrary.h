#pragma once

#include "config/layout.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <optional>
#include <variant>

// The tool ran and reported failure through its exit status.
struct ToolError {
    qint32 status = 0;
    QString description() const;
    bool operator==(const ToolError &) const = default;
};

// The tool gave no status at all: it could not be started, or it ran past
// its time limit and was stopped.
struct ToolRunError {
    QString description;
    bool operator==(const ToolRunError &) const = default;
};

using ToolFailure = std::variant<ToolError, ToolRunError>;
QString description(const ToolFailure &failure);

// One run of the listing tool: the parsed entries, or why there are none.
using ToolOutcome = std::variant<QList<ShortcutRef>, ToolFailure>;

// Knows which shortcuts the user has and how they are filed, and starts them.
// Both go through the quillon-shortcuts tool, run as asynchronous processes so
// that the main thread never waits on it. Main thread only.
class ShortcutLibrary : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool hasLoaded READ hasLoaded NOTIFY hasLoadedChanged)
    Q_PROPERTY(bool isRefreshing READ isRefreshing NOTIFY isRefreshingChanged)

public:
    struct Folder {
        ShortcutRef ref;
        QList<ShortcutRef> shortcuts;
        bool operator==(const Folder &) const = default;
    };

    struct Snapshot {
        QList<Folder> folders;
        QList<ShortcutRef> unfiled;
        bool operator==(const Snapshot &) const = default;
    };

    // A listing that takes longer than this is stopped and counts as failed.
    static constexpr std::chrono::milliseconds defaultToolTimeout{30'000};
    // Far more than a listing of every shortcut anyone keeps.
    static constexpr qint64 maximumToolOutput = 16 * 1024 * 1024;

    // The tool next to the quillon binary, else the one on PATH.
    explicit ShortcutLibrary(QObject *parent = nullptr);
    ShortcutLibrary(const QString &toolPath, QObject *parent = nullptr);
    // Stops a listing still running: its answer has nobody left to hear it.
    ~ShortcutLibrary() override;

    static QString defaultToolPath();
    QString toolPath() const;
    void setToolTimeout(std::chrono::milliseconds timeout);

    const Snapshot &snapshot() const { return m_snapshot; }
    bool hasLoaded() const { return m_hasLoaded; }
    bool isRefreshing() const { return m_isRefreshing; }

    std::optional<Folder> folder(const QString &id) const;
    // Every shortcut: each folder's in folder order, then the unfiled ones.
    QList<ShortcutRef> allShortcuts() const;
    bool contains(const QString &id) const;

    // Reloads the library in the background; ignored while a reload runs.
    void refresh();
    // Starts the shortcut if a fresh listing still has it, else refreshes.
    void run(const QString &id);
    // Runs "list --show-identifiers <arguments>" and hands the parsed
    // listing to done, on the main thread, once the tool has finished.
    void runTool(const QStringList &arguments, std::function<void(const ToolOutcome &)> done);

Q_SIGNALS:
    void snapshotChanged();
    void hasLoadedChanged(bool hasLoaded);
    void isRefreshingChanged(bool isRefreshing);

private:
    void loadFolder(Snapshot loading, qsizetype index);
    void loadUnfiled(Snapshot loading);
    void finishRefresh(const Snapshot &loaded);
    void abandonRefresh(const ToolFailure &failure);
    void launch(const QString &id);
    void setHasLoaded(bool hasLoaded);
    void setRefreshing(bool refreshing);

    mutable QString m_toolPath;
    std::chrono::milliseconds m_toolTimeout = defaultToolTimeout;
    Snapshot m_snapshot;
    bool m_hasLoaded = false;
    bool m_isRefreshing = false;
};

size_t qHash(const ShortcutLibrary::Folder &folder, size_t seed = 0) noexcept;
