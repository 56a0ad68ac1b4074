#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

// One script or one sub-folder of the scripts folder. The path keeps the
// file name's bytes as they are: a name that is not UTF-8 still runs.
struct ScriptEntry {
    QString name;
    QString id;
    QByteArray path;
    bool operator==(const ScriptEntry &) const = default;
};

// The user's scripts folder: every executable file is a shortcut, every
// sub-folder (one level deep) a folder of shortcuts. Identifiers are derived
// from the path inside the folder, so they survive restarts and moves of the
// whole folder. Listings are sorted by name in the user's locale.
class ScriptFolder
{
public:
    explicit ScriptFolder(QString root);

    // $XDG_DATA_HOME/quillon/shortcuts.
    static QString defaultRoot();
    // The upper-case name-based UUID of a path relative to the root.
    static QString identifier(const QByteArray &relativePath);
    // A file name without its interpreter extension ("Backup.sh" → "Backup"),
    // on one line: line breaks, tabs and other control characters become
    // spaces, bytes that are not UTF-8 the replacement character.
    static QString displayName(const QByteArray &fileName);

    const QString &root() const { return m_root; }
    QList<ScriptEntry> folders() const;
    // The scripts directly inside the root (no folder).
    QList<ScriptEntry> unfiledShortcuts() const;
    QList<ScriptEntry> shortcuts(const ScriptEntry &folder) const;
    // Every script, filed or not.
    QList<ScriptEntry> allShortcuts() const;

private:
    QList<ScriptEntry> scripts(const QByteArray &relativeDir) const;

    QString m_root;
};
