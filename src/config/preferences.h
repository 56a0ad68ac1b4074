#pragma once

#include <QSettings>
#include <QString>
#include <QVariant>

#include <memory>

// The per-user preferences file (~/.config/Quillon/Quillon.conf). Every write
// reaches the disk before it returns; QSettings replaces the file atomically.
class Preferences
{
public:
    // The user's own preferences file.
    Preferences();
    // A preferences file at a given path, for tests and tools.
    explicit Preferences(const QString &filePath);

    QVariant value(const QString &key) const;
    bool contains(const QString &key) const;
    void setValue(const QString &key, const QVariant &value);
    void remove(const QString &key);
    QString fileName() const;

private:
    void sync();

    std::unique_ptr<QSettings> m_settings;
};
