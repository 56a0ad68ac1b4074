#include "app/appcast.h"

#include "common/log.h"

#include <QXmlStreamReader>

namespace {

const QString sparkleNamespace = QStringLiteral("http://www.andymatuschak.org/xml-namespaces/sparkle");

// Feeds name the namespace by prefix; an unbound prefix still counts.
bool isSparkle(const QXmlStreamAttribute &attribute, QLatin1String name)
{
    return attribute.name() == name
           && (attribute.namespaceUri() == sparkleNamespace || attribute.prefix() == QLatin1String("sparkle"));
}

bool isSparkleElement(const QXmlStreamReader &xml, QLatin1String name)
{
    return xml.name() == name && (xml.namespaceUri() == sparkleNamespace || xml.prefix() == QLatin1String("sparkle"));
}

void dropUnlessWebLink(QUrl &url)
{
    if (url.isEmpty() || isWebLink(url))
        return;
    qCWarning(lcApp, "Update feed: dropped the link \"%s\": only http and https links are opened",
              qUtf8Printable(url.toString()));
    url.clear();
}

AppcastItem readItem(QXmlStreamReader &xml)
{
    AppcastItem item;
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("title") && xml.namespaceUri().isEmpty()) {
            item.title = xml.readElementText().trimmed();
        } else if (xml.name() == QLatin1String("description") && xml.namespaceUri().isEmpty()) {
            item.description = xml.readElementText().trimmed();
        } else if (xml.name() == QLatin1String("link") && xml.namespaceUri().isEmpty()) {
            item.infoURL = QUrl(xml.readElementText().trimmed());
        } else if (isSparkleElement(xml, QLatin1String("version"))) {
            item.version = xml.readElementText().trimmed();
        } else if (isSparkleElement(xml, QLatin1String("shortVersionString"))) {
            item.shortVersion = xml.readElementText().trimmed();
        } else if (isSparkleElement(xml, QLatin1String("releaseNotesLink"))) {
            item.releaseNotesURL = QUrl(xml.readElementText().trimmed());
        } else if (xml.name() == QLatin1String("enclosure")) {
            for (const auto &attribute : xml.attributes()) {
                if (attribute.name() == QLatin1String("url") && attribute.namespaceUri().isEmpty())
                    item.downloadURL = QUrl(attribute.value().toString());
                else if (isSparkle(attribute, QLatin1String("version")) && item.version.isEmpty())
                    item.version = attribute.value().toString();
                else if (isSparkle(attribute, QLatin1String("shortVersionString")) && item.shortVersion.isEmpty())
                    item.shortVersion = attribute.value().toString();
            }
            xml.skipCurrentElement();
        } else {
            xml.skipCurrentElement();
        }
    }
    if (item.shortVersion.isEmpty())
        item.shortVersion = item.version;
    dropUnlessWebLink(item.downloadURL);
    dropUnlessWebLink(item.releaseNotesURL);
    dropUnlessWebLink(item.infoURL);
    return item;
}

} // namespace

size_t qHash(const AppcastItem &item, size_t seed) noexcept
{
    return qHashMulti(seed, item.title, item.version, item.shortVersion, item.downloadURL, item.releaseNotesURL,
                      item.infoURL, item.description);
}

Decoded<QList<AppcastItem>> parseAppcast(const QByteArray &data)
{
    QXmlStreamReader xml(data);
    QList<AppcastItem> items;
    bool sawChannel = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement())
            continue;
        if (xml.name() == QLatin1String("channel"))
            sawChannel = true;
        else if (xml.name() == QLatin1String("item")) {
            AppcastItem item = readItem(xml);
            // An item without a version cannot be compared, so it is no update.
            if (!item.version.isEmpty())
                items.append(item);
        }
    }
    if (xml.hasError())
        return Decoded<QList<AppcastItem>>::failure(QStringLiteral("The update feed is not valid XML (line %1): %2")
                                                        .arg(xml.lineNumber())
                                                        .arg(xml.errorString()));
    if (!sawChannel)
        return Decoded<QList<AppcastItem>>::failure(QStringLiteral("The update feed has no channel"));
    return items;
}

bool isWebLink(const QUrl &url)
{
    const QString scheme = url.scheme();
    return url.isValid() && !url.host().isEmpty()
           && (scheme.compare(QLatin1String("https"), Qt::CaseInsensitive) == 0
               || scheme.compare(QLatin1String("http"), Qt::CaseInsensitive) == 0);
}

int compareVersions(const QString &a, const QString &b)
{
    const QStringList left = a.split(QLatin1Char('.'));
    const QStringList right = b.split(QLatin1Char('.'));
    for (qsizetype i = 0; i < std::max(left.size(), right.size()); ++i) {
        const QString l = i < left.size() ? left.at(i).trimmed() : QStringLiteral("0");
        const QString r = i < right.size() ? right.at(i).trimmed() : QStringLiteral("0");
        bool leftNumeric = false;
        bool rightNumeric = false;
        const qlonglong ln = l.toLongLong(&leftNumeric);
        const qlonglong rn = r.toLongLong(&rightNumeric);
        if (leftNumeric && rightNumeric) {
            if (ln != rn)
                return ln < rn ? -1 : 1;
        } else if (const int text = l.compare(r); text != 0) {
            return text < 0 ? -1 : 1;
        }
    }
    return 0;
}

std::optional<AppcastItem> newestUpdate(const QList<AppcastItem> &items, const QString &currentVersion)
{
    std::optional<AppcastItem> newest;
    for (const auto &item : items) {
        if (compareVersions(item.version, currentVersion) > 0
            && (!newest || compareVersions(item.version, newest->version) > 0))
            newest = item;
    }
    return newest;
}
