#include "platform/paneicon.h"

#include "common/mainthread.h"
#include "platform/fileicons.h"

#include <QFileInfo>
#include <QHash>
#include <QLinearGradient>
#include <QPainter>
#include <QSvgRenderer>

namespace {

// The symbol's extent relative to the tile, unless the icon says otherwise.
constexpr double defaultSizeFactor = 0.595;
constexpr int iconPoints = 16;

std::optional<QColor> colorOf(const QList<double> &rgb)
{
    if (rgb.size() != 3)
        return std::nullopt;
    return QColor::fromRgbF(float(std::clamp(rgb[0], 0.0, 1.0)), float(std::clamp(rgb[1], 0.0, 1.0)),
                            float(std::clamp(rgb[2], 0.0, 1.0)));
}

QSvgRenderer &tileShape()
{
    static QSvgRenderer shape(QStringLiteral(":/icons/paneiconshape.svg"));
    return shape;
}

struct Tile {
    QIcon symbol;
    QList<QColor> gradient;
    std::optional<QColor> tint; // none: the symbol's own colours
    double sizeFactor = defaultSizeFactor;
    bool mirrored = false;
};

QPixmap drawTile(const Tile &tile, qreal scale)
{
    const int pixels = qRound(iconPoints * scale);
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);

    // The tile: 2 points smaller than a small icon, 824/1024 of a large one.
    const double width = iconPoints;
    const double tileSize = width <= 18 ? width - 2 : width * 824.0 / 1024.0;
    const double shapeSize = tileSize * 1024.0 / 824.0;
    const double margin = (width - shapeSize) / 2;
    painter.scale(scale, scale);

    QImage layer(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    layer.fill(Qt::transparent);
    {
        QPainter fill(&layer);
        fill.setRenderHint(QPainter::Antialiasing);
        fill.scale(scale, scale);
        QLinearGradient gradient(0, margin, 0, margin + shapeSize);
        for (qsizetype i = 0; i < tile.gradient.size(); ++i)
            gradient.setColorAt(double(i) / double(tile.gradient.size() - 1), tile.gradient.at(i));
        fill.fillRect(QRectF(0, 0, width, width), gradient);
        fill.setCompositionMode(QPainter::CompositionMode_DestinationIn);
        tileShape().render(&fill, QRectF(margin, margin, shapeSize, shapeSize));
    }
    painter.drawImage(QRectF(0, 0, width, width), layer);

    // The symbol, centred, tinted inside a layer of its own.
    const double symbolPoints = tile.sizeFactor * tileSize;
    const int symbolPixels = std::max(1, qRound(symbolPoints * scale));
    QImage symbol = tile.symbol.pixmap(QSize(symbolPixels, symbolPixels))
                        .toImage()
                        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (tile.tint) {
        QPainter tint(&symbol);
        tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
        tint.fillRect(symbol.rect(), *tile.tint);
    }
    if (tile.mirrored)
        symbol = symbol.mirrored(true, false);
    const QSizeF drawn(symbol.width() / scale, symbol.height() / scale);
    painter.drawImage(QRectF(QPointF((width - drawn.width()) / 2, (width - drawn.height()) / 2), drawn), symbol);
    return pixmap;
}

std::optional<QIcon> render(const IconSpec &description)
{
    const QIcon symbol = PaneIcon::symbolImage(description);
    if (description.symbolBackground && !symbol.isNull()) {
        Tile tile;
        tile.symbol = symbol;
        for (const auto &entry : *description.symbolBackground) {
            if (const auto color = colorOf(entry))
                tile.gradient.append(*color);
        }
        if (tile.gradient.isEmpty() || !tileShape().isValid())
            return std::nullopt;
        if (tile.gradient.size() == 1)
            tile.gradient.append(tile.gradient.first());
        const auto rendering = description.symbolRendering.value_or(SymbolRendering::White);
        if (rendering == SymbolRendering::White)
            tile.tint = QColor(Qt::white);
        else if (rendering == SymbolRendering::Color)
            tile.tint =
                description.symbolColor ? colorOf(*description.symbolColor).value_or(Qt::white) : QColor(Qt::white);
        tile.sizeFactor = description.symbolSize.value_or(defaultSizeFactor);
        tile.mirrored = description.symbolMirrored.value_or(false);
        QIcon icon;
        icon.addPixmap(drawTile(tile, 1));
        icon.addPixmap(drawTile(tile, 2));
        return icon;
    }
    if (description.bundlePath && QFileInfo::exists(*description.bundlePath)) {
        const QIcon icon = iconForFile(*description.bundlePath);
        if (!icon.isNull())
            return icon;
    }
    return std::nullopt;
}

} // namespace

QIcon PaneIcon::image(const IconSpec &description)
{
    QUILLON_ASSERT_MAIN_THREAD();
    // A bare symbol is the theme's icon, drawn like the menu's text.
    if (description.symbol && !description.symbolBackground)
        return symbolImage(description);
    static QHash<IconSpec, QIcon> cache;
    if (const auto hit = cache.constFind(description); hit != cache.constEnd())
        return *hit;
    const auto rendered = render(description);
    if (!rendered)
        return {};
    cache.insert(description, *rendered);
    return *rendered;
}

QIcon PaneIcon::symbolImage(const IconSpec &description)
{
    if (!description.symbol)
        return {};
    if (QIcon::hasThemeIcon(*description.symbol))
        return QIcon::fromTheme(*description.symbol);
    if (description.symbolFallback && QIcon::hasThemeIcon(*description.symbolFallback))
        return QIcon::fromTheme(*description.symbolFallback);
    return {};
}

QIcon PaneIcon::settingsAppIcon()
{
    for (const char *name : {"org.gnome.Settings", "systemsettings", "preferences-system", "preferences-desktop"}) {
        if (QIcon::hasThemeIcon(QLatin1String(name)))
            return QIcon::fromTheme(QLatin1String(name));
    }
    return {};
}
