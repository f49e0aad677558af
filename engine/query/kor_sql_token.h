#pragma once

#include <QString>

// One token of a simple SQL statement. Positions are offsets into the
// statement text (counted in QChar units from 0); messages show them from 1.
struct KOR_SQL_TOKEN
{
    enum TYPE
    {
        END,          // past the last character
        WORD,         // a bare word: a keyword or an unbracketed name
        BRACKETED,    // [name] or [table.field]; text holds the inside, "]]" undone
        NUMBER,       // text holds the digits as written, sign included
        TEXT,         // 'quoted'; text holds the value, "''" undone
        COMMA,
        DOT,
        STAR,
        OPEN,         // (
        CLOSE,        // )
        SEMICOLON,
        EQUAL,
        NOT_EQUAL,    // <> or !=
        LESS,
        GREATER,
        LESS_EQUAL,
        GREATER_EQUAL
    };

    TYPE type = END;
    QString text;
    int position = 0;
    int length = 0;
};
