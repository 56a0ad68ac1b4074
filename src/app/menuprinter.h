#pragma once

#include <QString>

class QMenu;

// A menu as text, the way a person reads it: one item per line, indented by
// depth, separators as ---, section headers in brackets, disabled items
// marked, each openable item followed by its URL. Lazy submenus are filled
// down to `depth` levels.
QString menuText(QMenu *menu, int depth);
