#pragma once

#include <QChar>
#include <QString>
#include <QVector>

// A LIKE pattern, compiled once and matched against many texts.
//
// '%' matches any run of characters (also none), '_' exactly one character
// (a character outside the BMP counts as one). Letters match ignoring case
// (Unicode simple case folding). With an escape character, that character
// makes the next one literal: with escape '!', "5!%" matches "5%" only. An
// escape at the very end stands for itself.
//
// Matching walks text and pattern once, going back only to the last '%', so
// it needs no recursion and at worst text length times pattern length steps.
class KOR_SQL_LIKE_PATTERN
{
public:
    KOR_SQL_LIKE_PATTERN() = default;
    explicit KOR_SQL_LIKE_PATTERN(const QString& pattern, QChar escape = QChar());

    bool matches(const QString& text) const;

private:
    enum : uint
    {
        ANY_ONE = 0xFFFFFFFEu,   // '_'; beyond every Unicode code point
        ANY_RUN = 0xFFFFFFFFu    // '%'
    };
    // Case-folded code points, or one of the two wildcards.
    QVector<uint> m_elements;
};
