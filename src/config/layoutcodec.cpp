#include "config/layoutcodec.h"

#include "config/urls.h"

#include <QJsonDocument>

namespace {

const QString payloadKey = QStringLiteral("_0");

bool hasPayload(MenuSource::Case c)
{
    switch (c) {
    case MenuSource::Case::CustomMenu:
    case MenuSource::Case::Folder:
    case MenuSource::Case::Separator:
    case MenuSource::Case::ShortcutFolder:
    case MenuSource::Case::Shortcut:
        return true;
    case MenuSource::Case::SystemSettings:
    case MenuSource::Case::Applications:
    case MenuSource::Case::Shortcuts:
    case MenuSource::Case::Recents:
        return false;
    }
    return false;
}

Decoded<MenuSource> decodePayload(MenuSource::Case c, const QJsonObject &inner)
{
    switch (c) {
    case MenuSource::Case::CustomMenu:
    case MenuSource::Case::Folder:
    case MenuSource::Case::Separator: {
        auto id = field<QUuid>(inner, QLatin1StringView("_0"));
        if (!id)
            return Decoded<MenuSource>::failure(id);
        if (c == MenuSource::Case::CustomMenu)
            return MenuSource::customMenu(id.value());
        if (c == MenuSource::Case::Folder)
            return MenuSource::folder(id.value());
        return MenuSource::separator(id.value());
    }
    case MenuSource::Case::ShortcutFolder:
    case MenuSource::Case::Shortcut: {
        auto ref = field<ShortcutRef>(inner, QLatin1StringView("_0"));
        if (!ref)
            return Decoded<MenuSource>::failure(ref);
        return c == MenuSource::Case::Shortcut ? MenuSource::shortcut(ref.value())
                                               : MenuSource::shortcutFolder(ref.value());
    }
    case MenuSource::Case::SystemSettings:
        return MenuSource::systemSettings();
    case MenuSource::Case::Applications:
        return MenuSource::applications();
    case MenuSource::Case::Shortcuts:
        return MenuSource::shortcuts();
    case MenuSource::Case::Recents:
        return MenuSource::recents();
    }
    return Decoded<MenuSource>::failure(QStringLiteral("unknown menu source"));
}

} // namespace

QJsonObject encode(const ShortcutRef &ref)
{
    return {{QStringLiteral("id"), ref.id}, {QStringLiteral("name"), ref.name}};
}

QJsonObject encode(const MenuSource &source)
{
    QJsonObject inner;
    if (const auto id = source.uuid())
        inner.insert(payloadKey, encodeUuid(*id));
    else if (const auto ref = source.shortcutRef())
        inner.insert(payloadKey, encode(*ref));
    return {{enumToString(source.kind()), inner}};
}

QJsonObject encode(const LayoutEntry &entry)
{
    return {{QStringLiteral("source"), encode(entry.source)}, {QStringLiteral("style"), encodeEnum(entry.style)}};
}

QJsonObject encode(const CustomMenu &menu)
{
    QJsonObject object{
        {QStringLiteral("id"), encodeUuid(menu.id)},
        {QStringLiteral("name"), menu.name},
        {QStringLiteral("urls"), encodeList(menu.urls, urlString)},
    };
    if (menu.groupOrder)
        object.insert(QStringLiteral("groupOrder"), encodeList(*menu.groupOrder, encodeEnum<MenuItemKind>));
    if (menu.symbol)
        object.insert(QStringLiteral("symbol"), *menu.symbol);
    if (menu.color)
        object.insert(QStringLiteral("color"), encodeEnum(*menu.color));
    return object;
}

QJsonObject encode(const FolderSource &folder)
{
    return {
        {QStringLiteral("id"), encodeUuid(folder.id)},
        {QStringLiteral("url"), urlString(folder.url)},
        {QStringLiteral("sort"), encodeEnum(folder.sort)},
    };
}

QJsonObject encode(const DraggedSource &dragged)
{
    return {{QStringLiteral("source"), encode(dragged.source)}};
}

template<>
Decoded<SourceStyle> decode(const QJsonValue &json)
{
    return decodeEnum<SourceStyle>(json, "SourceStyle");
}

template<>
Decoded<MenuItemKind> decode(const QJsonValue &json)
{
    return decodeEnum<MenuItemKind>(json, "MenuItemKind");
}

template<>
Decoded<FolderColor> decode(const QJsonValue &json)
{
    return decodeEnum<FolderColor>(json, "FolderColor");
}

template<>
Decoded<FolderSort> decode(const QJsonValue &json)
{
    return decodeEnum<FolderSort>(json, "FolderSort");
}

template<>
Decoded<ShortcutRef> decode(const QJsonValue &json)
{
    if (!json.isObject())
        return Decoded<ShortcutRef>::failure(QStringLiteral("expected a shortcut object"));
    const auto object = json.toObject();
    auto id = field<QString>(object, QLatin1StringView("id"));
    if (!id)
        return Decoded<ShortcutRef>::failure(id);
    auto name = field<QString>(object, QLatin1StringView("name"));
    if (!name)
        return Decoded<ShortcutRef>::failure(name);
    return ShortcutRef{std::move(id).value(), std::move(name).value()};
}

template<>
Decoded<MenuSource> decode(const QJsonValue &json)
{
    if (!json.isObject())
        return Decoded<MenuSource>::failure(QStringLiteral("expected a menu source object"));
    const auto object = json.toObject();

    // Only case names count; any other key is ignored.
    std::optional<MenuSource::Case> found;
    int recognised = 0;
    for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
        if (const auto c = enumFromString<MenuSource::Case>(it.key())) {
            found = c;
            ++recognised;
        }
    }
    if (recognised != 1)
        return Decoded<MenuSource>::failure(QStringLiteral("Invalid number of keys found, expected one."));

    const QJsonValue inner = object.value(enumToString(*found));
    if (!inner.isObject())
        return Decoded<MenuSource>::failure(QStringLiteral("\"%1\": expected an object").arg(enumToString(*found)));
    if (!hasPayload(*found))
        return decodePayload(*found, {});
    auto source = decodePayload(*found, inner.toObject());
    if (!source)
        return Decoded<MenuSource>::failure(QStringLiteral("\"%1\": %2").arg(enumToString(*found), source.error()));
    return source;
}

template<>
Decoded<LayoutEntry> decode(const QJsonValue &json)
{
    if (!json.isObject())
        return Decoded<LayoutEntry>::failure(QStringLiteral("expected a layout entry object"));
    const auto object = json.toObject();
    auto source = field<MenuSource>(object, QLatin1StringView("source"));
    if (!source)
        return Decoded<LayoutEntry>::failure(source);
    auto style = field<SourceStyle>(object, QLatin1StringView("style"));
    if (!style)
        return Decoded<LayoutEntry>::failure(style);
    return LayoutEntry{std::move(source).value(), style.value()};
}

template<>
Decoded<CustomMenu> decode(const QJsonValue &json)
{
    if (!json.isObject())
        return Decoded<CustomMenu>::failure(QStringLiteral("expected a menu object"));
    const auto object = json.toObject();
    auto id = field<QUuid>(object, QLatin1StringView("id"));
    auto name = field<QString>(object, QLatin1StringView("name"));
    auto urls = field<QList<QUrl>>(object, QLatin1StringView("urls"));
    auto groupOrder = optionalField<QList<MenuItemKind>>(object, QLatin1StringView("groupOrder"));
    auto symbol = optionalField<QString>(object, QLatin1StringView("symbol"));
    auto color = optionalField<FolderColor>(object, QLatin1StringView("color"));
    for (const QString *error :
         {&id.error(), &name.error(), &urls.error(), &groupOrder.error(), &symbol.error(), &color.error()}) {
        if (!error->isEmpty())
            return Decoded<CustomMenu>::failure(*error);
    }
    return CustomMenu{id.value(),         std::move(name).value(), std::move(urls).value(),
                      groupOrder.value(), symbol.value(),          color.value()};
}

template<>
Decoded<FolderSource> decode(const QJsonValue &json)
{
    if (!json.isObject())
        return Decoded<FolderSource>::failure(QStringLiteral("expected a folder object"));
    const auto object = json.toObject();
    auto id = field<QUuid>(object, QLatin1StringView("id"));
    if (!id)
        return Decoded<FolderSource>::failure(id);
    auto url = field<QUrl>(object, QLatin1StringView("url"));
    if (!url)
        return Decoded<FolderSource>::failure(url);
    auto sort = field<FolderSort>(object, QLatin1StringView("sort"));
    if (!sort)
        return Decoded<FolderSource>::failure(sort);
    return FolderSource{id.value(), url.value(), sort.value()};
}

template<>
Decoded<DraggedSource> decode(const QJsonValue &json)
{
    if (!json.isObject())
        return Decoded<DraggedSource>::failure(QStringLiteral("expected a dragged source object"));
    auto source = field<MenuSource>(json.toObject(), QLatin1StringView("source"));
    if (!source)
        return Decoded<DraggedSource>::failure(source);
    return DraggedSource{std::move(source).value()};
}

QByteArray dragData(const DraggedSource &dragged)
{
    return QJsonDocument(encode(dragged)).toJson(QJsonDocument::Compact);
}

Decoded<DraggedSource> draggedSource(const QByteArray &data)
{
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(data, &error);
    if (error.error != QJsonParseError::NoError)
        return Decoded<DraggedSource>::failure(error.errorString());
    return decode<DraggedSource>(document.object());
}
