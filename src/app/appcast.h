#pragma once

#include "common/decoded.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

// One release in an update feed: an RSS item whose enclosure carries
// sparkle:version (the build number compared) and sparkle:shortVersionString
// (what people read).
struct AppcastItem {
    QString title;
    QString version;
    QString shortVersion;
    QUrl downloadURL;
    QUrl releaseNotesURL;
    QUrl infoURL;
    QString description;
    bool operator==(const AppcastItem &) const = default;
};

size_t qHash(const AppcastItem &item, size_t seed = 0) noexcept;

// Links of an item that are not web links (isWebLink) are dropped with a
// log line: a feed must not make us open a local file or run a script.
Decoded<QList<AppcastItem>> parseAppcast(const QByteArray &xml);

// An http or https address with a host: the only links a feed may have us open.
bool isWebLink(const QUrl &url);

// Compares dotted versions part by part as numbers ("1.10" > "1.9"); a
// missing part counts as 0. Non-numeric parts compare as text.
int compareVersions(const QString &a, const QString &b);

// The newest item that is newer than `currentVersion`, if any.
std::optional<AppcastItem> newestUpdate(const QList<AppcastItem> &items, const QString &currentVersion);
