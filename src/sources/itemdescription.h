#pragma once

#include "sources/searchresult.h"

#include <QHash>

class ShortcutLibrary;
class SystemStrings;
struct Destination;

// The title and icon of a stored item address (a shortcut, a settings
// place, a file or an application), or nothing when it no longer exists.
std::optional<SearchResult> describeItem(const QUrl &url, const ShortcutLibrary *shortcuts,
                                         const QHash<QUrl, Destination> *destinations, SystemStrings &strings);

// A settings place's title: the pane's name, then " › " and the item's
// label, with "…" for a place that opens as a sheet.
QString placeTitle(SystemStrings &strings, const Pane &pane, const std::optional<Item> &item);
