#pragma once

#include <QString>

// Removes the lock file at `path` when no live process holds it: one left
// by a crash. True when one was removed.
bool removeStaleLock(const QString &path);
