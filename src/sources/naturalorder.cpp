#include "sources/naturalorder.h"

#include <QLocale>

QCollator naturalOrder()
{
    // The C locale compares code points and ignores numeric mode, so a
    // session without a language set gets English rules instead.
    QLocale locale;
    if (locale.language() == QLocale::C)
        locale = QLocale(QLocale::English, QLocale::UnitedStates);
    QCollator collator(locale);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}
