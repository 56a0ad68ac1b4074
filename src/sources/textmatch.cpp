#include "sources/textmatch.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <QHashFunctions>
#include <QVarLengthArray>

namespace {

// Full case folding, so ß and ss meet, as ICU does at primary strength.
QString caseFolded(const QString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    const auto *source = reinterpret_cast<const UChar *>(text.utf16());
    QVarLengthArray<UChar, 128> folded(text.size() * 3 + 1);
    const int32_t length = u_strFoldCase(folded.data(), int32_t(folded.size()), source, int32_t(text.size()),
                                         U_FOLD_CASE_DEFAULT, &status);
    if (U_FAILURE(status))
        return text.toCaseFolded();
    return QString(reinterpret_cast<const QChar *>(folded.constData()), length);
}

} // namespace

QString foldForSearch(const QString &text)
{
    // Decompose, drop the accents, fold the case.
    const QString decomposed = text.normalized(QString::NormalizationForm_KD);
    QString bare;
    bare.reserve(decomposed.size());
    for (const QChar c : decomposed) {
        if (c.category() != QChar::Mark_NonSpacing)
            bare.append(c);
    }
    return caseFolded(bare);
}

namespace {

QString withoutPunctuationOrSpaces(const QString &folded)
{
    QString compact;
    compact.reserve(folded.size());
    for (const QChar c : folded) {
        if (!c.isPunct() && !c.isSpace())
            compact.append(c);
    }
    return compact;
}

} // namespace

size_t qHash(const SearchText &text, size_t seed) noexcept
{
    return qHashMulti(seed, text.folded, text.compact);
}

SearchText searchText(const QString &text)
{
    QString folded = foldForSearch(text);
    QString compact = withoutPunctuationOrSpaces(folded);
    return {std::move(folded), std::move(compact)};
}

TextMatcher::TextMatcher(const QString &query)
    : m_folded(foldForSearch(query))
    , m_compact(withoutPunctuationOrSpaces(m_folded))
{
}
