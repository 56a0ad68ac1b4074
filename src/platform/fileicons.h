#pragma once

#include <QIcon>
#include <QString>

// The icon the desktop's file manager would show for a path: the special
// user folders by role, other folders as folders, desktop entries by their
// Icon, files by their type.
QIcon iconForFile(const QString &path);

// An icon named the way desktop entries name them: a theme name, or an
// absolute path to an image.
QIcon iconForName(const QString &nameOrPath);

// Chooses an icon theme when the session names none (a bare X server), so
// icons by name still resolve.
void ensureIconTheme();
