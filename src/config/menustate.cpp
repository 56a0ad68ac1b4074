#include "config/menustate.h"

#include "config/layoutcodec.h"
#include "config/urls.h"

#include <QJsonDocument>

namespace {

template<typename T, typename Encode>
void insertList(QJsonObject &object, const char *key, const std::optional<QList<T>> &values, Encode encodeOne)
{
    if (values)
        object.insert(QLatin1String(key), encodeList(*values, encodeOne));
}

template<typename T>
bool read(const QJsonObject &object, const char *key, std::optional<T> &into, QString &error)
{
    auto value = optionalField<T>(object, QLatin1StringView(key));
    if (!value) {
        error = value.error();
        return false;
    }
    into = std::move(value).value();
    return true;
}

} // namespace

QByteArray encodeMenuState(const MenuState &state)
{
    QJsonObject object;
    insertList(object, "layout", state.layout, [](const LayoutEntry &e) { return encode(e); });
    insertList(object, "menus", state.menus, [](const CustomMenu &m) { return encode(m); });
    insertList(object, "folders", state.folders, [](const FolderSource &f) { return encode(f); });
    insertList(object, "shortcuts", state.shortcuts, [](const MenuSource &s) { return encode(s); });
    insertList(object, "separators", state.separators, encodeUuid);
    insertList(object, "favoriteApps", state.favoriteApps, urlString);
    if (state.showsOnlyFavoriteApps)
        object.insert(QStringLiteral("showsOnlyFavoriteApps"), *state.showsOnlyFavoriteApps);
    if (state.recentsLimit)
        object.insert(QStringLiteral("recentsLimit"), *state.recentsLimit);
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

Decoded<MenuState> decodeMenuState(const QByteArray &json)
{
    QJsonParseError parseError;
    const auto document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return Decoded<MenuState>::failure(parseError.errorString());
    if (!document.isObject())
        return Decoded<MenuState>::failure(QStringLiteral("expected an object"));

    const auto object = document.object();
    MenuState state;
    QString error;
    const bool ok = read(object, "layout", state.layout, error) && read(object, "menus", state.menus, error)
                    && read(object, "folders", state.folders, error)
                    && read(object, "shortcuts", state.shortcuts, error)
                    && read(object, "separators", state.separators, error)
                    && read(object, "favoriteApps", state.favoriteApps, error)
                    && read(object, "showsOnlyFavoriteApps", state.showsOnlyFavoriteApps, error)
                    && read(object, "recentsLimit", state.recentsLimit, error);
    if (!ok)
        return Decoded<MenuState>::failure(error);
    return state;
}
