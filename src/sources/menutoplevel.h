#pragma once

#include "sources/menuentry.h"

class ContentSources;

// The top level of the menu as the user laid it out, as plain entries: a
// source shown as a submenu (or one that is a single item wherever it stands)
// is one entry, an inline source spreads its items, hidden sources are left
// out. A source that is not available stays, disabled, so the layout keeps
// its shape. Separators never start, end or double up. Submenus are filled
// only when asked.
MenuEntries menuTopLevel(const ContentSources &sources);
