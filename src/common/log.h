#pragma once

#include <QLoggingCategory>

// The one logging category of the application. Failures of ordinary work are
// logged here and otherwise absorbed.
Q_DECLARE_LOGGING_CATEGORY(lcApp)
