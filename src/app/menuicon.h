#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>

// Menus show icons at 16 × 16: a larger image is replaced by a 16 × 16 copy,
// a smaller one is used as it is.
inline constexpr int menuIconSize = 16;

QPixmap menuSizePixmap(const QPixmap &pixmap);

// Menus read "&" as the mark of a keyboard mnemonic; names such as
// "Mouse & Touchpad" must show it as it is.
QString menuTitle(QString text);
QIcon menuSizeIcon(const QIcon &icon);
