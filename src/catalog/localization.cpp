#include "catalog/localization.h"

#include <QHash>
#include <QLocale>

namespace {

// A locale name reduced to the form gettext uses for its folders:
// language[_TERRITORY][@modifier], without an encoding.
struct LocaleName {
    QString language;
    QString territory;
    QString modifier;
};

// Scripts that gettext writes as a modifier; other scripts (Hans, Hant) are
// implied by the territory and dropped.
QString scriptModifier(QStringView script)
{
    if (script.compare(u"Latn", Qt::CaseInsensitive) == 0)
        return QStringLiteral("latin");
    if (script.compare(u"Cyrl", Qt::CaseInsensitive) == 0)
        return QStringLiteral("cyrillic");
    return {};
}

LocaleName parseLocaleName(QString name)
{
    LocaleName result;
    const qsizetype at = name.indexOf(u'@');
    if (at >= 0) {
        result.modifier = name.sliced(at + 1).toLower();
        name.truncate(at);
    }
    const qsizetype dot = name.indexOf(u'.');
    if (dot >= 0)
        name.truncate(dot);
    const QStringList pieces = name.replace(u'_', u'-').split(u'-', Qt::SkipEmptyParts);
    if (pieces.isEmpty())
        return result;
    result.language = pieces.first().toLower();
    for (const QString &piece : pieces.sliced(1)) {
        if (piece.size() == 4 && result.modifier.isEmpty())
            result.modifier = scriptModifier(piece);
        else if (piece.size() == 2 || piece.size() == 3)
            result.territory = piece.toUpper();
    }
    return result;
}

QString key(const LocaleName &name)
{
    QString text = name.language;
    if (!name.territory.isEmpty())
        text += u'_' + name.territory;
    if (!name.modifier.isEmpty())
        text += u'@' + name.modifier;
    return text;
}

// The names a language may be found under, most specific first.
QStringList candidates(const QString &language)
{
    const LocaleName full = parseLocaleName(language);
    if (full.language.isEmpty() || full.language == u"c" || full.language == u"posix")
        return {};
    QStringList result;
    for (const LocaleName &name : {full, LocaleName{full.language, full.territory, {}},
                                   LocaleName{full.language, {}, full.modifier}, LocaleName{full.language, {}, {}}}) {
        const QString text = key(name);
        if (!result.contains(text))
            result.append(text);
    }
    return result;
}

} // namespace

QStringList preferredLanguages()
{
    QStringList languages = qEnvironmentVariable("LANGUAGE").split(u':', Qt::SkipEmptyParts);
    for (const QString &language : QLocale::system().uiLanguages()) {
        if (!languages.contains(language))
            languages.append(language);
    }
    return languages;
}

std::optional<QString> preferredLocalization(const QStringList &available, const QStringList &languages)
{
    QHash<QString, QString> byKey;
    for (const QString &name : available) {
        const QString normalized = key(parseLocaleName(name));
        if (!byKey.contains(normalized))
            byKey.insert(normalized, name);
    }
    for (const QString &language : languages) {
        for (const QString &candidate : candidates(language)) {
            const auto it = byKey.constFind(candidate);
            if (it != byKey.constEnd())
                return *it;
        }
    }
    return std::nullopt;
}
