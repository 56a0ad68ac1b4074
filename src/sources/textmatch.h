#pragma once

#include <QString>

// Matching as people expect from a search field: case and accents do not
// matter ("e" finds "É", "strasse" finds "Straße"). Texts are folded once and
// compared by plain containment, so a keystroke over thousands of titles
// stays cheap.
QString foldForSearch(const QString &text);

// A title as the search compares it: folded, and folded without its
// punctuation and spaces, so "wifi" can find "Wi-Fi".
struct SearchText {
    QString folded;
    QString compact;
    bool operator==(const SearchText &) const = default;
};

size_t qHash(const SearchText &text, size_t seed = 0) noexcept;

SearchText searchText(const QString &text);

class TextMatcher
{
public:
    explicit TextMatcher(const QString &query);

    bool isEmpty() const { return m_folded.isEmpty(); }
    bool matches(const QString &foldedText) const { return !m_folded.isEmpty() && foldedText.contains(m_folded); }
    bool matches(const SearchText &text) const { return matches(text.folded); }
    // A match only once punctuation and spaces are left out on both sides
    // ("date time" and "Date & Time"); ranked after the plain ones.
    bool matchesLoosely(const SearchText &text) const
    {
        return !m_compact.isEmpty() && !matches(text) && text.compact.contains(m_compact);
    }
    bool isPrefixOf(const QString &foldedText) const { return foldedText.startsWith(m_folded); }

private:
    QString m_folded;
    QString m_compact;
};
