#include "app/menuicon.h"

QPixmap menuSizePixmap(const QPixmap &pixmap)
{
    const QSizeF size = pixmap.deviceIndependentSize();
    if (size.width() <= menuIconSize && size.height() <= menuIconSize)
        return pixmap;
    const qreal ratio = pixmap.devicePixelRatio();
    QPixmap copy =
        pixmap.scaled(QSize(menuIconSize, menuIconSize) * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    copy.setDevicePixelRatio(ratio);
    return copy;
}

QIcon menuSizeIcon(const QIcon &icon)
{
    // A theme icon draws itself at any size, and keeps its name for panels
    // that draw the menu from the theme themselves.
    if (icon.isNull() || !icon.name().isEmpty())
        return icon;
    // The largest image the icon has, so the copy is drawn from the best source.
    const QList<QSize> sizes = icon.availableSizes();
    QSize largest(menuIconSize, menuIconSize);
    for (const QSize &size : sizes) {
        if (size.width() * size.height() > largest.width() * largest.height())
            largest = size;
    }
    const QPixmap pixmap = icon.pixmap(largest);
    if (pixmap.isNull())
        return icon;
    return QIcon(menuSizePixmap(pixmap));
}

QString menuTitle(QString text)
{
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}
