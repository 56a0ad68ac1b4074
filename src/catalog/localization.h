#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// The user's preferred languages, most preferred first: the $LANGUAGE list as
// gettext reads it, then the languages of the system locale.
QStringList preferredLanguages();

// The available localization that best serves the preferred languages. Each
// language is tried in turn, most specific form first (sr_RS@latin, sr_RS,
// sr@latin, sr); names compare without regard to case, "-" or "_", and an
// encoding suffix (.UTF-8) is ignored. None when no language is served.
std::optional<QString> preferredLocalization(const QStringList &available, const QStringList &languages);
