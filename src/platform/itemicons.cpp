#include "platform/itemicons.h"

#include "platform/fileicons.h"
#include "platform/paneicon.h"

#include <QDir>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace {

// The size menus draw icons at; tinted symbols are drawn for it and twice it.
constexpr int symbolSize = 16;

QIcon firstThemeIcon(const QStringList &names)
{
    for (const QString &name : names) {
        if (name.isEmpty())
            continue;
        if (QDir::isAbsolutePath(name)) {
            if (QIcon icon = iconForName(name); !icon.isNull())
                return icon;
        } else if (QIcon::hasThemeIcon(name)) {
            return QIcon::fromTheme(name);
        }
    }
    return {};
}

// Tints that read on light and dark menus alike.
QColor tint(FolderColor color)
{
    switch (color) {
    case FolderColor::Blue:
        return QColor(0x35, 0x84, 0xe4);
    case FolderColor::Purple:
        return QColor(0x91, 0x41, 0xac);
    case FolderColor::Pink:
        return QColor(0xd5, 0x61, 0x99);
    case FolderColor::Red:
        return QColor(0xe0, 0x1b, 0x24);
    case FolderColor::Orange:
        return QColor(0xed, 0x74, 0x00);
    case FolderColor::Yellow:
        return QColor(0xe5, 0xa5, 0x0a);
    case FolderColor::Green:
        return QColor(0x2e, 0xc2, 0x7e);
    case FolderColor::Graphite:
        return QColor(0x77, 0x76, 0x7b);
    }
    return QColor(0x35, 0x84, 0xe4);
}

// A folder's outline, for when the theme has neither the symbol nor a folder
// (no icon theme at all, as off screen).
QImage standInSymbol(int pixels)
{
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixels / 16.0, pixels / 16.0);
    QPainterPath folder;
    folder.addRoundedRect(QRectF(1.5, 2.5, 6, 3), 1, 1);
    folder.addRoundedRect(QRectF(1.5, 4, 13, 9.5), 1.5, 1.5);
    painter.fillPath(folder.simplified(), Qt::black);
    return image;
}

// The theme's image of the first of these names it has, at this size.
QImage themeSymbol(const QStringList &names, int pixels)
{
    for (const QString &name : names) {
        const QIcon icon = QDir::isAbsolutePath(name)  ? iconForName(name)
                           : QIcon::hasThemeIcon(name) ? QIcon::fromTheme(name)
                                                       : QIcon();
        const QPixmap pixmap = icon.pixmap(QSize(pixels, pixels), 1.0);
        if (!pixmap.isNull())
            return pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    }
    return standInSymbol(pixels);
}

QIcon symbolIcon(const MenuSymbolIcon &description)
{
    // The theme is part of the key: another theme draws other images.
    static QHash<QString, QIcon> cache;
    const QString key = description.symbol.value_or(QString()) + QLatin1Char('|')
                        + (description.color ? enumToString(*description.color) : QString()) + QLatin1Char('|')
                        + QIcon::themeName();
    if (const auto hit = cache.constFind(key); hit != cache.constEnd())
        return *hit;
    QStringList names{QStringLiteral("folder-symbolic"), QStringLiteral("folder")};
    if (description.symbol && !description.symbol->isEmpty())
        names.prepend(*description.symbol);
    QIcon tinted;
    for (const qreal scale : {1.0, 2.0}) {
        QImage image = themeSymbol(names, qRound(symbolSize * scale));
        QPainter painter(&image);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(image.rect(), tint(description.color.value_or(FolderColor::Blue)));
        painter.end();
        QPixmap pixmap = QPixmap::fromImage(image);
        pixmap.setDevicePixelRatio(scale);
        tinted.addPixmap(pixmap);
    }
    cache.insert(key, tinted);
    return tinted;
}

} // namespace

QIcon drawnIcon(const ItemIcon &icon)
{
    return std::visit(
        [](const auto &description) -> QIcon {
            using T = std::decay_t<decltype(description)>;
            if constexpr (std::is_same_v<T, FileIcon>)
                return iconForFile(description.path);
            else if constexpr (std::is_same_v<T, NamedIcon>)
                return iconForName(description.name);
            else if constexpr (std::is_same_v<T, CatalogIcon>)
                return PaneIcon::image(description.description);
            else if constexpr (std::is_same_v<T, ThemeIcon>)
                return firstThemeIcon(description.names);
            else if constexpr (std::is_same_v<T, SettingsAppIcon>)
                return PaneIcon::settingsAppIcon();
            else
                return symbolIcon(description);
        },
        icon);
}

QIcon drawnIcon(const std::optional<ItemIcon> &icon)
{
    return icon ? drawnIcon(*icon) : QIcon();
}
