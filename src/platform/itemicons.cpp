#include "platform/itemicons.h"

#include "platform/fileicons.h"
#include "platform/paneicon.h"

#include <QDir>
#include <QHash>
#include <QImage>
#include <QPainter>
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

QIcon symbolIcon(const MenuSymbolIcon &description)
{
    static QHash<QString, QIcon> cache;
    const QString key = description.symbol.value_or(QString()) + QLatin1Char('|')
                        + (description.color ? enumToString(*description.color) : QString());
    if (const auto hit = cache.constFind(key); hit != cache.constEnd())
        return *hit;
    QIcon base = description.symbol ? iconForName(*description.symbol) : QIcon();
    if (base.isNull())
        base = firstThemeIcon({QStringLiteral("folder-symbolic"), QStringLiteral("folder")});
    QIcon tinted;
    for (const qreal scale : {1.0, 2.0}) {
        QImage image = base.pixmap(QSize(symbolSize, symbolSize) * scale)
                           .toImage()
                           .convertToFormat(QImage::Format_ARGB32_Premultiplied);
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
