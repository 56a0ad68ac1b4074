#pragma once

#include "app/appcast.h"
#include "app/feedverifier.h"

#include <QObject>
#include <QUrl>

#include <optional>
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
//
// The feed is only fetched over https (plain http only from this machine,
// which is what tests serve), and only up to maxFeedBytes. With a verifier,
// the feed counts only when "<feed>.sig" holds its signature.
class UpdateChecker : public QObject
{
    Q_OBJECT

public:
    static constexpr qsizetype maxFeedBytes = 1024 * 1024;
    static constexpr qsizetype maxSignatureBytes = 4096;

    UpdateChecker(QUrl feed, QString currentVersion, std::optional<FeedVerifier> verifier = std::nullopt,
                  QObject *parent = nullptr);

    // https, or http to a loopback address.
    static bool isSecureFeed(const QUrl &url);

    bool isRunning() const { return m_reply != nullptr; }
    void check();
    // Drops the running check, if any: finished is not emitted for it.
    void cancel();
    void setTransferTimeout(int milliseconds) { m_timeout = milliseconds; }

Q_SIGNALS:
    void finished(const UpdateCheckResult &result);

private:
    enum class Stage { feed, signature };

    void fetch(const QUrl &url, Stage stage);
    void replyFinished(Stage stage);
    void feedArrived(const QByteArray &feed);

    QUrl m_feed;
    QString m_currentVersion;
    std::optional<FeedVerifier> m_verifier;
    QNetworkAccessManager *m_network;
    QNetworkReply *m_reply = nullptr;
    QByteArray m_received;
    QByteArray m_feedBody;
    bool m_overLimit = false;
    int m_timeout = 30000;
};
