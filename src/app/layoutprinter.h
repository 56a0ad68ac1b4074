#pragma once

#include <QString>

class MenuStore;

// The effective layout, one line per entry: the style, a tab, the source's
// JSON. What `quillon --print-layout` prints.
QString layoutText(const MenuStore &store);
