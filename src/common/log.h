#pragma once

#include <QLoggingCategory>

// One logging category per subsystem, so QT_LOGGING_RULES can single one out
// ("quillon.search.debug=true"). Failures of ordinary work are logged and
// otherwise absorbed.
Q_DECLARE_LOGGING_CATEGORY(lcConfig)
Q_DECLARE_LOGGING_CATEGORY(lcCatalog)
Q_DECLARE_LOGGING_CATEGORY(lcSources)
Q_DECLARE_LOGGING_CATEGORY(lcSearch)
Q_DECLARE_LOGGING_CATEGORY(lcHotKeys)
Q_DECLARE_LOGGING_CATEGORY(lcTray)
Q_DECLARE_LOGGING_CATEGORY(lcApp)
