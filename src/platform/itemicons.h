#pragma once

#include "sources/itemicon.h"

#include <QIcon>

// The image an icon description stands for, as the desktop's theme draws it.
QIcon drawnIcon(const ItemIcon &icon);
// No description, no icon.
QIcon drawnIcon(const std::optional<ItemIcon> &icon);
