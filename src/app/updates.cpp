#include "app/updates.h"

#include "common/log.h"
#include "common/mainthread.h"
#include "config/preferences.h"

namespace {
const QString automaticKey = QStringLiteral("AutomaticallyChecksForUpdates");
const QString lastCheckKey = QStringLiteral("LastUpdateCheckTime");
// The first look comes soon after start, then hourly; a check runs only
// when the last one is a day old, so sleeping machines catch up on waking.
constexpr int firstTickMs = 10 * 1000;
constexpr int tickMs = 60 * 60 * 1000;
} // namespace

Updates::Updates(Preferences &preferences, const QUrl &feed, const QString &currentVersion, QByteArrayView updateKey,
                 QObject *parent)
    : QObject(parent)
    , m_preferences(preferences)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (feed.isEmpty() || !feed.isValid())
        return;
    std::optional<FeedVerifier> verifier;
    if (!updateKey.isEmpty()) {
        verifier = FeedVerifier::fromBase64Key(updateKey);
        // Checking without the key the build asks for would trust any feed.
        if (!verifier) {
            qCWarning(lcApp, "Update checks are off: the update key of this build is not a base64 Ed25519 key");
            return;
        }
    }
    m_checker = new UpdateChecker(feed, currentVersion, std::move(verifier), this);
    connect(m_checker, &UpdateChecker::finished, this, &Updates::checkFinished);
    connect(&m_schedule, &QTimer::timeout, this, [this] {
        m_schedule.setInterval(tickMs);
        runScheduledCheckIfDue();
    });
    m_schedule.start(firstTickMs);
}

bool Updates::automaticallyChecksForUpdates() const
{
    const QVariant stored = m_preferences.value(automaticKey);
    return !stored.isValid() || stored.toBool();
}

void Updates::setAutomaticallyChecksForUpdates(bool enabled)
{
    QUILLON_ASSERT_MAIN_THREAD();
    m_preferences.setValue(automaticKey, enabled);
}

QDateTime Updates::lastCheckTime() const
{
    return QDateTime::fromString(m_preferences.value(lastCheckKey).toString(), Qt::ISODate);
}

void Updates::setScheduleTick(int milliseconds)
{
    if (!m_checker)
        return;
    disconnect(&m_schedule, &QTimer::timeout, this, nullptr);
    connect(&m_schedule, &QTimer::timeout, this, &Updates::runScheduledCheckIfDue);
    m_schedule.start(milliseconds);
}

void Updates::runScheduledCheckIfDue()
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (!m_checker || !automaticallyChecksForUpdates())
        return;
    const QDateTime last = lastCheckTime();
    if (last.isValid() && last.secsTo(QDateTime::currentDateTimeUtc()) < checkIntervalSeconds)
        return;
    m_checker->check();
}

void Updates::checkForUpdates()
{
    QUILLON_ASSERT_MAIN_THREAD();
    // Choosing the item is attending to the update.
    setHasPendingUpdate(false);
    if (!m_checker) {
        Q_EMIT userCheckFinished(CheckFailed{tr("Update checks are turned off in this build.")});
        return;
    }
    m_userIsWaiting = true;
    Q_EMIT userCheckStarted();
    m_checker->check();
}

void Updates::cancelUserCheck()
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (!std::exchange(m_userIsWaiting, false))
        return;
    m_checker->cancel();
}

void Updates::checkFinished(const UpdateCheckResult &result)
{
    // A failed check is tried again at the next tick, not a day later.
    if (!std::holds_alternative<CheckFailed>(result))
        m_preferences.setValue(lastCheckKey, QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
    if (const auto *found = std::get_if<UpdateFound>(&result))
        m_pendingUpdate = found->item;
    if (const auto *failed = std::get_if<CheckFailed>(&result))
        qCWarning(lcApp, "Update check failed: %s", qUtf8Printable(failed->error));

    if (std::exchange(m_userIsWaiting, false)) {
        Q_EMIT userCheckFinished(result);
        return;
    }
    if (std::holds_alternative<UpdateFound>(result))
        setHasPendingUpdate(true);
}

void Updates::setHasPendingUpdate(bool pending)
{
    if (m_hasPendingUpdate == pending)
        return;
    m_hasPendingUpdate = pending;
    Q_EMIT hasPendingUpdateChanged(pending);
}
