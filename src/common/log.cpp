#include "common/log.h"

Q_LOGGING_CATEGORY(lcApp, "app.quillon.Quillon.app")
