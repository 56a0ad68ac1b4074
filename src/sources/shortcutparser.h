#pragma once

#include "config/layout.h"

#include <QByteArrayView>
#include <QList>

// Reads the listing printed by `quillon-shortcuts list --show-identifiers`:
// one "Name (IDENTIFIER)" per line. Lines of any other form are skipped;
// order and duplicates are kept. Invalid UTF-8 becomes replacement characters.
QList<ShortcutRef> parseShortcutList(QByteArrayView output);
