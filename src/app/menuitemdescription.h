#pragma once

#include <QString>

class QAction;

// Screen readers learn a menu item's title and state from Qt, but Qt's menu
// items carry no description. This gives one item a description, read after
// its title ("Not Available" beside a source that is gone).
void setAccessibleDescription(QAction *item, const QString &description);
