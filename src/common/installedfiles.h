#pragma once

#include <QString>

// The share folder of the prefix Quillon runs from, found from the folder of
// the running program (bin/ or, for tests, its sibling), so a copy installed
// under any prefix, or the build tree laid out the same way, uses its own
// files and never another copy's.
QString installedDataFolder();
