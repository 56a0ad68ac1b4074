#include "catalog/catalogcodec.h"

#include <QJsonDocument>

namespace {

template<typename E>
Decoded<E> decodeCase(const QJsonValue &json, const char *typeName)
{
    const auto value = json.isString() ? enumFromString<E>(json.toString()) : std::nullopt;
    if (!value)
        return Decoded<E>::failure(QStringLiteral("expected a %1 case").arg(QLatin1String(typeName)));
    return *value;
}

Decoded<QJsonObject> object(const QJsonValue &json, const char *what)
{
    if (!json.isObject())
        return Decoded<QJsonObject>::failure(QStringLiteral("expected %1 object").arg(QLatin1String(what)));
    return json.toObject();
}

QLatin1StringView key(const char *name)
{
    return QLatin1StringView(name);
}

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
    return take(field<T>(o, key(name)), target, error);
}

template<typename T>
bool readOptional(const QJsonObject &o, const char *name, std::optional<T> &target, QString &error)
{
    return take(optionalField<T>(o, key(name)), target, error);
}

} // namespace

template<>
Decoded<double> decode(const QJsonValue &json)
{
    if (!json.isDouble())
        return Decoded<double>::failure(QStringLiteral("expected a number"));
    return json.toDouble();
}

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
    return decodeCase<Kind>(json, "Kind");
}

template<>
Decoded<LabelSource> decode(const QJsonValue &json)
{
    return decodeCase<LabelSource>(json, "LabelSource");
}

template<>
Decoded<SymbolRendering> decode(const QJsonValue &json)
{
    return decodeCase<SymbolRendering>(json, "SymbolRendering");
}

template<>
Decoded<StringRef> decode(const QJsonValue &json)
{
    const auto o = object(json, "a string reference");
    if (!o)
        return Decoded<StringRef>::failure(o);
    StringRef ref;
    QString error;
    if (readField(o.value(), "table", ref.table, error) && readField(o.value(), "key", ref.key, error))
        return ref;
    return Decoded<StringRef>::failure(error);
}

template<>
Decoded<std::optional<StringRef>> decode(const QJsonValue &json)
{
    using Result = Decoded<std::optional<StringRef>>;
    if (json.isNull())
        return std::optional<StringRef>();
    auto ref = decode<StringRef>(json);
    if (!ref)
        return Result::failure(ref);
    return std::optional<StringRef>(std::move(ref).value());
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
    const auto o = object(json, "an item");
    if (!o)
        return Decoded<Item>::failure(o);
    Item item;
    QString error;
    if (readField(o.value(), "label", item.label, error) && readOptional(o.value(), "labelRefs", item.labelRefs, error)
        && readOptional(o.value(), "labelSource", item.labelSource, error)
        && readField(o.value(), "kind", item.kind, error) && readField(o.value(), "url", item.url, error)
        && take(decodeIconSpec(o.value()), item.icon, error))
        return item;
    return Decoded<Item>::failure(error);
}

template<>
Decoded<ItemSection> decode(const QJsonValue &json)
{
    const auto o = object(json, "a section");
    if (!o)
        return Decoded<ItemSection>::failure(o);
    ItemSection section;
    QString error;
    if (readOptional(o.value(), "title", section.title, error)
        && readOptional(o.value(), "titleRef", section.titleRef, error)
        && readField(o.value(), "items", section.items, error))
        return section;
    return Decoded<ItemSection>::failure(error);
}

template<>
Decoded<Pane> decode(const QJsonValue &json)
{
    const auto o = object(json, "a pane");
    if (!o)
        return Decoded<Pane>::failure(o);
    Pane pane;
    QString error;
    if (!readField(o.value(), "id", pane.id, error))
        return Decoded<Pane>::failure(error);
    if (readField(o.value(), "name", pane.name, error) && readOptional(o.value(), "nameRef", pane.nameRef, error)
        && readField(o.value(), "url", pane.url, error) && readField(o.value(), "sections", pane.sections, error)
        && readOptional(o.value(), "children", pane.children, error) && take(decodeIconSpec(o.value()), pane.icon, error))
        return pane;
    // Past its id, the pane's id says which pane is broken.
    return Decoded<Pane>::failure(QStringLiteral("pane \"%1\": %2").arg(pane.id, error));
}

namespace {

Decoded<std::optional<QMap<QString, std::optional<StringRef>>>> decodeStrings(const QJsonObject &catalog)
{
    using Map = QMap<QString, std::optional<StringRef>>;
    using Result = Decoded<std::optional<Map>>;
    const QJsonValue json = catalog.value(key("strings"));
    if (json.isUndefined() || json.isNull())
        return std::optional<Map>();
    if (!json.isObject())
        return Result::failure(QStringLiteral("\"strings\": expected an object"));
    Map strings;
    const QJsonObject o = json.toObject();
    for (auto it = o.constBegin(); it != o.constEnd(); ++it) {
        auto ref = decode<std::optional<StringRef>>(it.value());
        if (!ref)
            return Result::failure(QStringLiteral("\"strings\": \"%1\": %2").arg(it.key(), ref.error()));
        strings.insert(it.key(), ref.value());
    }
    return std::optional<Map>(std::move(strings));
}

} // namespace

template<>
Decoded<Catalog> decode(const QJsonValue &json)
{
    const auto o = object(json, "a catalog");
    if (!o)
        return Decoded<Catalog>::failure(o);
    Catalog catalog;
    QString error;
    if (!readField(o.value(), "osVersion", catalog.osVersion, error)
        || !readField(o.value(), "sections", catalog.sections, error)
        || !readField(o.value(), "panes", catalog.panes, error))
        return Decoded<Catalog>::failure(error);
    auto strings = decodeStrings(o.value());
    if (!strings)
        return Decoded<Catalog>::failure(strings);
    catalog.strings = strings.value();
    return catalog;
}

Decoded<Catalog> decodeCatalog(const QByteArray &document)
{
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(document, &error);
    if (error.error != QJsonParseError::NoError)
        return Decoded<Catalog>::failure(QStringLiteral("%1 at offset %2").arg(error.errorString()).arg(error.offset));
    if (!json.isObject())
        return Decoded<Catalog>::failure(QStringLiteral("expected a catalog object"));
    return decode<Catalog>(json.object());
}
