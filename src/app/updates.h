#pragma once

#include "app/updatechecker.h"
#include "settings/updatesettings.h"

#include <QDateTime>
#include <QObject>
#include <QTimer>

#include <optional>

class Preferences;

// Update checking for an app that lives in the panel: scheduled checks never
// interrupt; a found update only raises hasPendingUpdate, which the menu
// turns into its "Update Available" item. The user's own check (that item)
// counts as attending to the update and clears the flag.
class Updates : public QObject, public UpdateSettings
{
    Q_OBJECT

public:
    static constexpr qint64 checkIntervalSeconds = 24 * 60 * 60;

    // An empty feed turns checking off. A key (base64 of a raw Ed25519 public
    // key) makes every check require the feed's signature.
    Updates(Preferences &preferences, const QUrl &feed, const QString &currentVersion, QByteArrayView updateKey = {},
            QObject *parent = nullptr);

    bool isConfigured() const override { return m_checker != nullptr; }
    bool hasPendingUpdate() const { return m_hasPendingUpdate; }
    const std::optional<AppcastItem> &pendingUpdate() const { return m_pendingUpdate; }
    bool automaticallyChecksForUpdates() const override;
    void setAutomaticallyChecksForUpdates(bool enabled) override;
    QDateTime lastCheckTime() const;

    // The user asked: check now and report through userCheckFinished.
    void checkForUpdates() override;
    // The user gave up waiting: the check stops and reports nothing. The
    // schedule tries again at its next look.
    void cancelUserCheck();
    // A check due by the schedule, run now if it is due.
    void runScheduledCheckIfDue();
    // How often the schedule looks whether a check is due.
    void setScheduleTick(int milliseconds);

Q_SIGNALS:
    void hasPendingUpdateChanged(bool pending);
    void userCheckStarted();
    void userCheckFinished(const UpdateCheckResult &result);

private:
    void setHasPendingUpdate(bool pending);
    void checkFinished(const UpdateCheckResult &result);

    Preferences &m_preferences;
    UpdateChecker *m_checker = nullptr;
    QTimer m_schedule;
    bool m_hasPendingUpdate = false;
    bool m_userIsWaiting = false;
    std::optional<AppcastItem> m_pendingUpdate;
};
