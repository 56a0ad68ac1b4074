#pragma once

#include <QStringList>
#include <QTranslator>

#include <memory>

// The program's own translations, share/quillon/translations/quillon_<locale>.qm
// of the prefix Quillon runs from.
// They translate the program's English texts where the desktop's string
// tables have nothing to lend.

// The translation serving the first of the languages that has one, or null.
std::unique_ptr<QTranslator> loadOwnTranslation(const QStringList &languages);

// Makes that translation the application's, for tr() and
// QCoreApplication::translate everywhere; called once at start-up. False when
// no language has a translation (English texts are then shown as written).
bool installOwnTranslation(const QStringList &languages);
