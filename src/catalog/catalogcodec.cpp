#include "catalog/catalogcodec.h"

#include <QJsonDocument>

namespace {

// Moves a decoded value into its field, or keeps the failure's description.
// Chained with &&, the first failure stops the decoding of a record.
template<typename T>
bool take(Decoded<T> decoded, T &target, QString &error)
{
    if (!decoded) {
        error = decoded.error();
        return false;
    }
    target = std::move(decoded).value();
    return true;
}

template<typename T>
bool readField(const QJsonObject &o, const char *name, T &target, QString &error)
{
    return take(field<T>(o, QLatin1StringView(name)), target, error);
}

template<typename T>
bool readOptional(const QJsonObject &o, const char *name, std::optional<T> &target, QString &error)
{
    return take(optionalField<T>(o, QLatin1StringView(name)), target, error);
}

// A record read from one JSON object by fill, which reads its keys in order.
template<typename T, typename Fill>
Decoded<T> decodeRecord(const QJsonValue &json, const char *what, Fill fill)
{
    if (!json.isObject())
        return Decoded<T>::failure(QStringLiteral("expected %1 object").arg(QLatin1String(what)));
    T record;
    QString error;
    if (!fill(json.toObject(), record, error))
        return Decoded<T>::failure(error);
    return record;
}

// A pane that only heads its children has no page of its own, so no URL;
// it stays an empty URL rather than borrowing one of its children's.
bool readPaneUrl(const QJsonObject &o, QUrl &target, QString &error)
{
    std::optional<QUrl> url;
    if (!readOptional(o, "url", url, error))
        return false;
    target = url.value_or(QUrl());
    return true;
}

} // namespace

template<>
Decoded<QList<double>> decode(const QJsonValue &json)
{
    return decodeList<double>(json);
}

template<>
Decoded<QList<QString>> decode(const QJsonValue &json)
{
    return decodeList<QString>(json);
}

template<>
Decoded<Kind> decode(const QJsonValue &json)
{
    return decodeEnum<Kind>(json, "Kind");
}

template<>
Decoded<LabelSource> decode(const QJsonValue &json)
{
    return decodeEnum<LabelSource>(json, "LabelSource");
}

template<>
Decoded<SymbolRendering> decode(const QJsonValue &json)
{
    return decodeEnum<SymbolRendering>(json, "SymbolRendering");
}

template<>
Decoded<StringRef> decode(const QJsonValue &json)
{
    return decodeRecord<StringRef>(
        json, "a string reference", [](const QJsonObject &o, StringRef &ref, QString &error) {
            return readField(o, "table", ref.table, error) && readField(o, "key", ref.key, error);
        });
}

template<>
Decoded<std::optional<StringRef>> decode(const QJsonValue &json)
{
    if (json.isNull())
        return std::optional<StringRef>();
    auto ref = decode<StringRef>(json);
    if (!ref)
        return Decoded<std::optional<StringRef>>::failure(ref);
    return std::optional<StringRef>(std::move(ref).value());
}

template<>
Decoded<QMap<QString, std::optional<StringRef>>> decode(const QJsonValue &json)
{
    using Map = QMap<QString, std::optional<StringRef>>;
    if (!json.isObject())
        return Decoded<Map>::failure(QStringLiteral("expected an object"));
    Map strings;
    const QJsonObject o = json.toObject();
    for (auto it = o.constBegin(); it != o.constEnd(); ++it) {
        auto ref = decode<std::optional<StringRef>>(it.value());
        if (!ref)
            return Decoded<Map>::failure(QStringLiteral("\"%1\": %2").arg(it.key(), ref.error()));
        strings.insert(it.key(), ref.value());
    }
    return strings;
}

Decoded<IconSpec> decodeIconSpec(const QJsonObject &o)
{
    IconSpec icon;
    QString error;
    if (readOptional(o, "bundlePath", icon.bundlePath, error) && readOptional(o, "symbol", icon.symbol, error)
        && readOptional(o, "symbolBackground", icon.symbolBackground, error)
        && readOptional(o, "symbolRendering", icon.symbolRendering, error)
        && readOptional(o, "symbolColor", icon.symbolColor, error)
        && readOptional(o, "symbolMirrored", icon.symbolMirrored, error)
        && readOptional(o, "symbolSize", icon.symbolSize, error)
        && readOptional(o, "symbolPrivate", icon.symbolPrivate, error)
        && readOptional(o, "symbolFallback", icon.symbolFallback, error))
        return icon;
    return Decoded<IconSpec>::failure(error);
}

template<>
Decoded<Item> decode(const QJsonValue &json)
{
    return decodeRecord<Item>(json, "an item", [](const QJsonObject &o, Item &item, QString &error) {
        return readField(o, "label", item.label, error) && readOptional(o, "labelRefs", item.labelRefs, error)
               && readOptional(o, "labelSource", item.labelSource, error) && readField(o, "kind", item.kind, error)
               && readField(o, "url", item.url, error) && take(decodeIconSpec(o), item.icon, error);
    });
}

template<>
Decoded<ItemSection> decode(const QJsonValue &json)
{
    return decodeRecord<ItemSection>(json, "a section", [](const QJsonObject &o, ItemSection &section, QString &error) {
        return readOptional(o, "title", section.title, error) && readOptional(o, "titleRef", section.titleRef, error)
               && readField(o, "items", section.items, error);
    });
}

template<>
Decoded<Pane> decode(const QJsonValue &json)
{
    return decodeRecord<Pane>(json, "a pane", [](const QJsonObject &o, Pane &pane, QString &error) {
        if (!readField(o, "id", pane.id, error))
            return false;
        if (readField(o, "name", pane.name, error) && readOptional(o, "nameRef", pane.nameRef, error)
            && readPaneUrl(o, pane.url, error) && readField(o, "sections", pane.sections, error)
            && readOptional(o, "children", pane.children, error) && take(decodeIconSpec(o), pane.icon, error))
            return true;
        // Past its id, the id says which pane is broken.
        error = QStringLiteral("pane \"%1\": %2").arg(pane.id, error);
        return false;
    });
}

template<>
Decoded<Catalog> decode(const QJsonValue &json)
{
    return decodeRecord<Catalog>(json, "a catalog", [](const QJsonObject &o, Catalog &catalog, QString &error) {
        return readField(o, "osVersion", catalog.osVersion, error) && readField(o, "sections", catalog.sections, error)
               && readField(o, "panes", catalog.panes, error) && readOptional(o, "strings", catalog.strings, error);
    });
}

Decoded<Catalog> decodeCatalog(const QByteArray &document)
{
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(document, &error);
    if (error.error != QJsonParseError::NoError)
        return Decoded<Catalog>::failure(QStringLiteral("%1 at offset %2").arg(error.errorString()).arg(error.offset));
    return decode<Catalog>(json.isObject() ? QJsonValue(json.object()) : QJsonValue(json.array()));
}
