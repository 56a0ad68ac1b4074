#pragma once

#include <QString>

// Matching as people expect from a search field: case and accents do not
// matter ("e" finds "É", "strasse" finds "Straße"). Texts are folded once and
// compared by plain containment, so a keystroke over thousands of titles
// stays cheap.
QString foldForSearch(const QString &text);

class TextMatcher
{
public:
    explicit TextMatcher(const QString &query);

    bool isEmpty() const { return m_folded.isEmpty(); }
    bool matches(const QString &foldedText) const { return !m_folded.isEmpty() && foldedText.contains(m_folded); }
    bool isPrefixOf(const QString &foldedText) const { return foldedText.startsWith(m_folded); }

private:
    QString m_folded;
};
