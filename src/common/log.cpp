#include "common/log.h"

Q_LOGGING_CATEGORY(lcConfig, "quillon.config")
Q_LOGGING_CATEGORY(lcCatalog, "quillon.catalog")
Q_LOGGING_CATEGORY(lcSources, "quillon.sources")
Q_LOGGING_CATEGORY(lcSearch, "quillon.search")
Q_LOGGING_CATEGORY(lcHotKeys, "quillon.hotkeys")
Q_LOGGING_CATEGORY(lcTray, "quillon.tray")
Q_LOGGING_CATEGORY(lcApp, "quillon.app")
