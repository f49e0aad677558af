#pragma once

#include "kor_field_type.h"

#include <QRegExp>
#include <QString>
#include <QVector>

// The text a global search looks for, as a wildcard pattern: "*" stands for
// any run of characters and "?" for one. It answers exactly what a QRegExp
// with wildcard syntax answers (exactMatch for an exact match, otherwise a
// match anywhere in the text), comparing characters one by one in lower case
// when the case is ignored, as QRegExp does.
//
// Searches test millions of values, so patterns of literal text, "*" and "?"
// are matched here directly; the rest (character sets in brackets, where
// QRegExp's rules are richer) go to QRegExp itself.
class GLOBAL_SEARCH_PATTERN
{
public:
    GLOBAL_SEARCH_PATTERN(const QString& pattern, Qt::CaseSensitivity case_sensitivity, bool exact_match);

    const QString& pattern() const { return m_pattern; }
    Qt::CaseSensitivity case_sensitivity() const { return m_case_sensitivity; }
    bool exact_match() const { return m_exact_match; }

    bool matches(const QString& text) const { return matches(text.constData(), text.size()); }
    bool matches(const QChar* text, int length) const
    {
        // Most values of a large search are shorter than what is sought.
        if (length < m_shortest || (m_longest >= 0 && length > m_longest))
            return false;
        return match(text, length);
    }

    // False when no text of a length from `shortest` to `longest` (-1: any
    // length) can match.
    bool can_match_length(int shortest, int longest) const
    {
        return (longest < 0 || longest >= m_shortest) && (m_longest < 0 || shortest <= m_longest);
    }

    // False when no value of the type can match, whatever its value: the
    // pattern holds a character that the type's text never shows (a letter
    // for a number). Lets a search skip turning such values into text.
    bool can_match_type(KOR_FIELD_TYPE type) const;

private:
    // A run of the pattern between stars; '?' matches any one character.
    struct PIECE
    {
        QString text; // lower case when the case is ignored
        bool has_any = false;
    };

    bool match(const QChar* text, int length) const;
    bool piece_at(const PIECE& piece, const QChar* text) const;
    // The first place at or after `from` where the piece matches, or -1.
    int find_piece(const PIECE& piece, const QChar* text, int from, int length) const;

    QString m_pattern;
    Qt::CaseSensitivity m_case_sensitivity;
    bool m_exact_match;
    // Set when the pattern is handed to QRegExp.
    bool m_use_regexp = false;
    mutable QRegExp m_regexp;
    QVector<PIECE> m_pieces;
    bool m_leading_star = false;
    bool m_trailing_star = false;
    // The pattern's literal characters (lower case when the case is ignored).
    QString m_literals;
    // The lengths a matching text can have (-1: any length above the shortest).
    int m_shortest = 0;
    int m_longest = -1;
};
