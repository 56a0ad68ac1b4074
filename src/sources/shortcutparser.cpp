#include "sources/shortcutparser.h"

#include <QRegularExpression>
#include <QString>

QList<ShortcutRef> parseShortcutList(QByteArrayView output)
{
    // The name is greedy, so "A (b) (ID)" keeps "A (b)" as its name.
    static const QRegularExpression line(
        QRegularExpression::anchoredPattern(QStringLiteral(R"((.+) \(([0-9A-Fa-f-]{36})\))")));

    const QString text = QString::fromUtf8(output);
    QList<ShortcutRef> refs;
    for (const QStringView piece : QStringView(text).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QRegularExpressionMatch match = line.match(piece);
        if (match.hasMatch())
            refs.append(ShortcutRef{match.captured(2), match.captured(1)});
    }
    return refs;
}
