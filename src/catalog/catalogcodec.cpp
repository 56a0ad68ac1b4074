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
    using Result = Decoded<StringRef>;
    const auto o = object(json, "a string reference");
    if (!o)
        return Result::failure(o);
    auto table = field<QString>(o.value(), key("table"));
    if (!table)
        return Result::failure(table);
    auto stringKey = field<QString>(o.value(), key("key"));
    if (!stringKey)
        return Result::failure(stringKey);
    return StringRef{std::move(table).value(), std::move(stringKey).value()};
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
    using Result = Decoded<IconSpec>;
    IconSpec icon;
    auto bundlePath = optionalField<QString>(o, key("bundlePath"));
    if (!bundlePath)
        return Result::failure(bundlePath);
    icon.bundlePath = bundlePath.value();
    auto symbol = optionalField<QString>(o, key("symbol"));
    if (!symbol)
        return Result::failure(symbol);
    icon.symbol = symbol.value();
    auto background = optionalField<QList<QList<double>>>(o, key("symbolBackground"));
    if (!background)
        return Result::failure(background);
    icon.symbolBackground = background.value();
    auto rendering = optionalField<SymbolRendering>(o, key("symbolRendering"));
    if (!rendering)
        return Result::failure(rendering);
    icon.symbolRendering = rendering.value();
    auto color = optionalField<QList<double>>(o, key("symbolColor"));
    if (!color)
        return Result::failure(color);
    icon.symbolColor = color.value();
    auto mirrored = optionalField<bool>(o, key("symbolMirrored"));
    if (!mirrored)
        return Result::failure(mirrored);
    icon.symbolMirrored = mirrored.value();
    auto size = optionalField<double>(o, key("symbolSize"));
    if (!size)
        return Result::failure(size);
    icon.symbolSize = size.value();
    auto isPrivate = optionalField<bool>(o, key("symbolPrivate"));
    if (!isPrivate)
        return Result::failure(isPrivate);
    icon.symbolPrivate = isPrivate.value();
    auto fallback = optionalField<QString>(o, key("symbolFallback"));
    if (!fallback)
        return Result::failure(fallback);
    icon.symbolFallback = fallback.value();
    return icon;
}

template<>
Decoded<Item> decode(const QJsonValue &json)
{
    using Result = Decoded<Item>;
    const auto o = object(json, "an item");
    if (!o)
        return Result::failure(o);
    Item item;
    auto label = field<QString>(o.value(), key("label"));
    if (!label)
        return Result::failure(label);
    item.label = label.value();
    auto labelRefs = optionalField<QList<std::optional<StringRef>>>(o.value(), key("labelRefs"));
    if (!labelRefs)
        return Result::failure(labelRefs);
    item.labelRefs = labelRefs.value();
    auto labelSource = optionalField<LabelSource>(o.value(), key("labelSource"));
    if (!labelSource)
        return Result::failure(labelSource);
    item.labelSource = labelSource.value();
    auto kind = field<Kind>(o.value(), key("kind"));
    if (!kind)
        return Result::failure(kind);
    item.kind = kind.value();
    auto url = field<QUrl>(o.value(), key("url"));
    if (!url)
        return Result::failure(url);
    item.url = url.value();
    auto icon = decodeIconSpec(o.value());
    if (!icon)
        return Result::failure(icon);
    item.icon = icon.value();
    return item;
}

template<>
Decoded<ItemSection> decode(const QJsonValue &json)
{
    using Result = Decoded<ItemSection>;
    const auto o = object(json, "a section");
    if (!o)
        return Result::failure(o);
    auto title = optionalField<QString>(o.value(), key("title"));
    if (!title)
        return Result::failure(title);
    auto titleRef = optionalField<StringRef>(o.value(), key("titleRef"));
    if (!titleRef)
        return Result::failure(titleRef);
    auto items = field<QList<Item>>(o.value(), key("items"));
    if (!items)
        return Result::failure(items);
    return ItemSection{title.value(), titleRef.value(), std::move(items).value()};
}

template<>
Decoded<Pane> decode(const QJsonValue &json)
{
    using Result = Decoded<Pane>;
    const auto o = object(json, "a pane");
    if (!o)
        return Result::failure(o);
    Pane pane;
    auto id = field<QString>(o.value(), key("id"));
    if (!id)
        return Result::failure(id);
    pane.id = id.value();
    // From here on the pane's id says which pane is broken.
    const auto failure = [&pane](const QString &error) {
        return Result::failure(QStringLiteral("pane \"%1\": %2").arg(pane.id, error));
    };
    auto name = field<QString>(o.value(), key("name"));
    if (!name)
        return failure(name.error());
    pane.name = name.value();
    auto nameRef = optionalField<StringRef>(o.value(), key("nameRef"));
    if (!nameRef)
        return failure(nameRef.error());
    pane.nameRef = nameRef.value();
    auto url = field<QUrl>(o.value(), key("url"));
    if (!url)
        return failure(url.error());
    pane.url = url.value();
    auto sections = field<QList<ItemSection>>(o.value(), key("sections"));
    if (!sections)
        return failure(sections.error());
    pane.sections = sections.value();
    auto children = optionalField<QList<QList<QString>>>(o.value(), key("children"));
    if (!children)
        return failure(children.error());
    pane.children = children.value();
    auto icon = decodeIconSpec(o.value());
    if (!icon)
        return failure(icon.error());
    pane.icon = icon.value();
    return pane;
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
    using Result = Decoded<Catalog>;
    const auto o = object(json, "a catalog");
    if (!o)
        return Result::failure(o);
    auto osVersion = field<QString>(o.value(), key("osVersion"));
    if (!osVersion)
        return Result::failure(osVersion);
    auto sections = field<QList<QList<QString>>>(o.value(), key("sections"));
    if (!sections)
        return Result::failure(sections);
    auto panes = field<QList<Pane>>(o.value(), key("panes"));
    if (!panes)
        return Result::failure(panes);
    auto strings = decodeStrings(o.value());
    if (!strings)
        return Result::failure(strings);
    return Catalog{osVersion.value(), sections.value(), std::move(panes).value(), strings.value()};
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
