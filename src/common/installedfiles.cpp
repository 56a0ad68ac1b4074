#include "common/installedfiles.h"

#include <QCoreApplication>
#include <QDir>

QString installedDataFolder()
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + QLatin1Char('/')
                           + QLatin1String(QUILLON_DATADIR_FROM_BIN));
}
