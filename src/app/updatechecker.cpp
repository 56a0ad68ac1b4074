#include "app/updatechecker.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>

UpdateChecker::UpdateChecker(QUrl feed, QString currentVersion, QObject *parent)
    : QObject(parent)
    , m_feed(std::move(feed))
    , m_currentVersion(std::move(currentVersion))
    , m_network(new QNetworkAccessManager(this))
{
}

void UpdateChecker::check()
{
    if (m_reply)
        return;
    QNetworkRequest request(m_feed);
    request.setTransferTimeout(m_timeout);
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Quillon/%1").arg(m_currentVersion));
    m_reply = m_network->get(request);
    connect(m_reply, &QNetworkReply::finished, this, &UpdateChecker::replyFinished);
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

void UpdateChecker::replyFinished()
{
    QNetworkReply *reply = std::exchange(m_reply, nullptr);
    reply->deleteLater();
    if (reply->error() != QNetworkReply::NoError) {
        Q_EMIT finished(CheckFailed{reply->errorString()});
        return;
    }
    const auto items = parseAppcast(reply->readAll());
    if (!items) {
        Q_EMIT finished(CheckFailed{items.error()});
        return;
    }
    if (const auto update = newestUpdate(items.value(), m_currentVersion))
        Q_EMIT finished(UpdateFound{*update});
    else
        Q_EMIT finished(UpToDate{});
}
