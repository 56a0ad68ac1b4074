#include "config/preferences.h"

#include "common/log.h"
#include "config/stalelock.h"

Preferences::Preferences()
    : m_settings(std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Quillon"),
                                             QStringLiteral("Quillon")))
{
}

Preferences::Preferences(const QString &filePath)
    : m_settings(std::make_unique<QSettings>(filePath, QSettings::IniFormat))
{
}

QVariant Preferences::value(const QString &key) const
{
    return m_settings->value(key);
}

bool Preferences::contains(const QString &key) const
{
    return m_settings->contains(key);
}

void Preferences::sync()
{
    // A lock left by a crash would hold this write up for half a minute.
    removeStaleLock(m_settings->fileName() + QStringLiteral(".lock"));
    m_settings->sync();
}

void Preferences::setValue(const QString &key, const QVariant &value)
{
    m_settings->setValue(key, value);
    sync();
    if (m_settings->status() != QSettings::NoError)
        qCWarning(lcConfig, "Preferences %s could not be written", qUtf8Printable(m_settings->fileName()));
}

void Preferences::remove(const QString &key)
{
    m_settings->remove(key);
    sync();
}

QString Preferences::fileName() const
{
    return m_settings->fileName();
}
