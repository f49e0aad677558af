#pragma once

#include "kor_sql_ast.h"

#include <QString>

// Reads a simple SQL statement into its syntax tree by recursive descent.
//
//   statement  := SELECT items FROM table join* [WHERE condition] [';']
//   items      := item (',' item)*          item := '*' | field | [table.*]
//   table      := name [AS alias]
//   join       := [INNER] JOIN table ON condition
//   condition  := and (OR and)*             and := not (AND not)*
//   not        := NOT not | '(' condition ')' | predicate
//   predicate  := operand (= | <> | != | < | > | <= | >=) operand
//               | operand [NOT] LIKE 'pattern' [ESCAPE 'c']
//               | operand IS [NOT] NULL
//   operand    := field | number | 'text' | TRUE | FALSE
//
// Keywords are matched in any case. Brackets and NOT may nest MAX_DEPTH deep;
// deeper statements are refused rather than risking the stack.
class KOR_SQL_PARSER
{
public:
    static constexpr int MAX_DEPTH = 64;

    // False with a message naming the position and the offending token.
    static bool parse(const QString& sql, KOR_SQL_STATEMENT& statement, QString& error);

    // Whether a bare word is reserved and so cannot name a table or field
    // without brackets.
    static bool is_keyword(const QString& word);
};
