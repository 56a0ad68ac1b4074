#pragma once

#include "catalog/catalog.h"
#include "common/jsonfields.h"

#include <QByteArray>

// Reading of catalog documents. Keys are read in a fixed order and the first
// bad value fails the whole document; keys not listed are ignored and a null
// value counts as absent for optional fields.

template<>
Decoded<QList<double>> decode(const QJsonValue &json);
template<>
Decoded<QList<QString>> decode(const QJsonValue &json);
template<>
Decoded<Kind> decode(const QJsonValue &json);
template<>
Decoded<LabelSource> decode(const QJsonValue &json);
template<>
Decoded<SymbolRendering> decode(const QJsonValue &json);
template<>
Decoded<StringRef> decode(const QJsonValue &json);
// A reference that may be JSON null.
template<>
Decoded<std::optional<StringRef>> decode(const QJsonValue &json);
// The catalog's strings map; its values may be JSON null.
template<>
Decoded<QMap<QString, std::optional<StringRef>>> decode(const QJsonValue &json);
template<>
Decoded<Item> decode(const QJsonValue &json);
template<>
Decoded<ItemSection> decode(const QJsonValue &json);
template<>
Decoded<Pane> decode(const QJsonValue &json);
template<>
Decoded<Catalog> decode(const QJsonValue &json);

// The icon keys that stand in a pane's or an item's own object.
Decoded<IconSpec> decodeIconSpec(const QJsonObject &object);

// A whole document: JSON syntax first, then the catalog.
Decoded<Catalog> decodeCatalog(const QByteArray &document);
