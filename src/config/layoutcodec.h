#pragma once

#include "common/jsonfields.h"
#include "config/layout.h"

#include <QByteArray>

// The JSON form of the layout vocabulary: records are objects keyed by field
// name, enumerations are their case names, a MenuSource is a one-key object
// whose payload sits under "_0", UUIDs are upper-case, URLs absolute strings.

QJsonObject encode(const ShortcutRef &ref);
QJsonObject encode(const MenuSource &source);
QJsonObject encode(const LayoutEntry &entry);
QJsonObject encode(const CustomMenu &menu);
QJsonObject encode(const FolderSource &folder);
QJsonObject encode(const DraggedSource &dragged);

// Decoders, one per type. A failure says which value was wrong and why.
template<>
Decoded<SourceStyle> decode(const QJsonValue &json);
template<>
Decoded<MenuItemKind> decode(const QJsonValue &json);
template<>
Decoded<FolderColor> decode(const QJsonValue &json);
template<>
Decoded<FolderSort> decode(const QJsonValue &json);
template<>
Decoded<ShortcutRef> decode(const QJsonValue &json);
template<>
Decoded<MenuSource> decode(const QJsonValue &json);
template<>
Decoded<LayoutEntry> decode(const QJsonValue &json);
template<>
Decoded<CustomMenu> decode(const QJsonValue &json);
template<>
Decoded<FolderSource> decode(const QJsonValue &json);
template<>
Decoded<DraggedSource> decode(const QJsonValue &json);

// The bytes a drag of a layout row carries, and their reading.
QByteArray dragData(const DraggedSource &dragged);
Decoded<DraggedSource> draggedSource(const QByteArray &data);
