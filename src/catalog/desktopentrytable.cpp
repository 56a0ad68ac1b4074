#include "catalog/desktopentrytable.h"

#include <QFile>

namespace {

// The escapes of desktop entry string values: \s \n \t \r \\.
QString unescaped(QStringView value)
{
    QString result;
    result.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] != u'\\' || i + 1 == value.size()) {
            result.append(value[i]);
            continue;
        }
        const QChar next = value[++i];
        switch (next.unicode()) {
        case 's':
            result.append(u' ');
            break;
        case 'n':
            result.append(u'\n');
            break;
        case 't':
            result.append(u'\t');
            break;
        case 'r':
            result.append(u'\r');
            break;
        default:
            result.append(next);
            break;
        }
    }
    return result;
}

} // namespace

Decoded<DesktopEntryLocalizations> parseDesktopEntryLocalizations(const QByteArray &data)
{
    DesktopEntryLocalizations localizations;
    bool seenGroup = false;
    bool inGroup = false;
    for (const QByteArray &rawLine : data.split('\n')) {
        const QString line = QString::fromUtf8(rawLine).trimmed();
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        if (line.startsWith(u'[')) {
            inGroup = line == u"[Desktop Entry]";
            seenGroup = seenGroup || inGroup;
            continue;
        }
        if (!inGroup)
            continue;
        const qsizetype equals = line.indexOf(u'=');
        if (equals <= 0)
            continue;
        const QStringView name = QStringView(line).first(equals).trimmed();
        const qsizetype open = name.indexOf(u'[');
        if (open <= 0 || !name.endsWith(u']'))
            continue;
        const QString key = name.first(open).toString();
        const QString locale = name.sliced(open + 1, name.size() - open - 2).toString();
        const QString value = unescaped(QStringView(line).sliced(equals + 1).trimmed());
        // An empty translation is no translation.
        if (!locale.isEmpty() && !value.isEmpty())
            localizations[locale].insert(key, value);
    }
    if (!seenGroup)
        return Decoded<DesktopEntryLocalizations>::failure(QStringLiteral("no [Desktop Entry] group"));
    return localizations;
}

Decoded<DesktopEntryLocalizations> readDesktopEntryLocalizations(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Decoded<DesktopEntryLocalizations>::failure(file.errorString());
    return parseDesktopEntryLocalizations(file.readAll());
}
