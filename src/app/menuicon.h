#pragma once

#include <QIcon>
#include <QPixmap>

// Menus show icons at 16 × 16: a larger image is replaced by a 16 × 16 copy,
// a smaller one is used as it is.
inline constexpr int menuIconSize = 16;

QPixmap menuSizePixmap(const QPixmap &pixmap);
QIcon menuSizeIcon(const QIcon &icon);
