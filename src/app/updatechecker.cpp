#include "app/updatechecker.h"

#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkReply>

namespace {

QUrl signatureURL(QUrl feed)
{
    feed.setPath(feed.path() + QStringLiteral(".sig"));
    return feed;
}

} // namespace

UpdateChecker::UpdateChecker(QUrl feed, QString currentVersion, std::optional<FeedVerifier> verifier, QObject *parent)
    : QObject(parent)
    , m_feed(std::move(feed))
    , m_currentVersion(std::move(currentVersion))
    , m_verifier(std::move(verifier))
    , m_network(new QNetworkAccessManager(this))
{
}

bool UpdateChecker::isSecureFeed(const QUrl &url)
{
    if (!url.isValid() || url.host().isEmpty())
        return false;
    if (url.scheme().compare(QLatin1String("https"), Qt::CaseInsensitive) == 0)
        return true;
    if (url.scheme().compare(QLatin1String("http"), Qt::CaseInsensitive) != 0)
        return false;
    const QString host = url.host();
    return host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 || QHostAddress(host).isLoopback();
}

void UpdateChecker::check()
{
    if (m_reply)
        return;
    if (!isSecureFeed(m_feed)) {
        Q_EMIT finished(CheckFailed{tr("The update feed %1 is not an https address.").arg(m_feed.toString())});
        return;
    }
    fetch(m_feed, Stage::feed);
}

void UpdateChecker::fetch(const QUrl &url, Stage stage)
{
    QNetworkRequest request(url);
    request.setTransferTimeout(m_timeout);
    // A redirect may move the feed, never from https down to http.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Quillon/%1").arg(m_currentVersion));
    m_received.clear();
    m_overLimit = false;
    m_reply = m_network->get(request);
    const qsizetype limit = stage == Stage::feed ? maxFeedBytes : maxSignatureBytes;
    // Read as it comes, so an endless answer is cut off at the limit instead
    // of filling memory.
    connect(m_reply, &QNetworkReply::readyRead, this, [this, limit] {
        m_received += m_reply->readAll();
        if (m_received.size() > limit) {
            m_overLimit = true;
            m_reply->abort();
        }
    });
    connect(m_reply, &QNetworkReply::finished, this, [this, stage] { replyFinished(stage); });
}

void UpdateChecker::cancel()
{
    QNetworkReply *reply = std::exchange(m_reply, nullptr);
    if (!reply)
        return;
    disconnect(reply, nullptr, this, nullptr);
    reply->abort();
    reply->deleteLater();
}

void UpdateChecker::replyFinished(Stage stage)
{
    QNetworkReply *reply = std::exchange(m_reply, nullptr);
    reply->deleteLater();
    const QByteArray body = std::exchange(m_received, {});
    if (stage == Stage::feed) {
        if (m_overLimit) {
            Q_EMIT finished(CheckFailed{tr("The update feed is larger than %1 MB.").arg(maxFeedBytes / (1024 * 1024))});
        } else if (reply->error() != QNetworkReply::NoError) {
            Q_EMIT finished(CheckFailed{reply->errorString()});
        } else if (m_verifier) {
            m_feedBody = body;
            fetch(signatureURL(m_feed), Stage::signature);
        } else {
            feedArrived(body);
        }
        return;
    }
    const QByteArray feed = std::exchange(m_feedBody, {});
    if (m_overLimit || reply->error() != QNetworkReply::NoError)
        Q_EMIT finished(CheckFailed{tr("The update feed was ignored: its signature could not be read (%1).")
                                        .arg(m_overLimit ? tr("too large") : reply->errorString())});
    else if (!m_verifier->verifies(feed, body))
        Q_EMIT finished(CheckFailed{tr("The update feed was ignored: its signature does not match.")});
    else
        feedArrived(feed);
}

void UpdateChecker::feedArrived(const QByteArray &feed)
{
    const auto items = parseAppcast(feed);
    if (!items) {
        Q_EMIT finished(CheckFailed{items.error()});
        return;
    }
    if (const auto update = newestUpdate(items.value(), m_currentVersion))
        Q_EMIT finished(UpdateFound{*update});
    else
        Q_EMIT finished(UpToDate{});
}
