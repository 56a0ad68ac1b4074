#pragma once

#include "app/appcast.h"

#include <QObject>
#include <QUrl>

#include <variant>

class QNetworkAccessManager;
class QNetworkReply;

// What one look at the update feed found.
struct UpToDate {
    bool operator==(const UpToDate &) const = default;
};
struct UpdateFound {
    AppcastItem item;
    bool operator==(const UpdateFound &) const = default;
};
struct CheckFailed {
    QString error;
    bool operator==(const CheckFailed &) const = default;
};
using UpdateCheckResult = std::variant<UpToDate, UpdateFound, CheckFailed>;

// Fetches the feed and compares it with the running version. One check at a
// time; a check that is already running is not started again.
class UpdateChecker : public QObject
{
    Q_OBJECT

public:
    UpdateChecker(QUrl feed, QString currentVersion, QObject *parent = nullptr);

    bool isRunning() const { return m_reply != nullptr; }
    void check();
    // Drops the running check, if any: finished is not emitted for it.
    void cancel();
    void setTransferTimeout(int milliseconds) { m_timeout = milliseconds; }

Q_SIGNALS:
    void finished(const UpdateCheckResult &result);

private:
    void replyFinished();

    QUrl m_feed;
    QString m_currentVersion;
    QNetworkAccessManager *m_network;
    QNetworkReply *m_reply = nullptr;
    int m_timeout = 30000;
};
