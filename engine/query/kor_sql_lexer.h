#pragma once

#include "kor_sql_token.h"

#include <QString>
#include <QVector>

// Splits a simple SQL statement into tokens. The token list always ends with
// one END token. Errors are returned as the complete message users see.
class KOR_SQL_LEXER
{
public:
    // False with error set when the text holds something that is no token,
    // an unclosed [name] or 'text', or a malformed number.
    static bool tokenise(const QString& sql, QVector<KOR_SQL_TOKEN>& tokens, QString& error);

    // "position 27", or "position 27 (line 2, column 5)" for statements of
    // several lines, so that a message can be matched to what the user typed.
    static QString describe_position(const QString& sql, int offset);

    // "Syntax error at <position>: <what>".
    static QString syntax_error(const QString& sql, int offset, const QString& what);

    // How a token is named in "but found ..." parts of messages.
    static QString describe_token(const KOR_SQL_TOKEN& token);
};
