#pragma once

#include "kor_sql_ast.h"
#include "kor_sql_plan.h"

#include <QString>

class KOR_QUERY_INTERFACE;

// Binds a parsed statement to the schemas of a connected database.
//
// Tables are found by name, exactly or else ignoring case when that is
// unambiguous; fields likewise within their table. A field without a table
// part is looked for in every table of the statement and must be in exactly
// one. Comparisons take their type from the fields they compare:
//  - a number field with a number compares numerically; a quoted text given
//    for a number field is read as a number once, here;
//  - a text field compares as text, also with a number, which then counts as
//    the digits written;
//  - a yes/no field compares with TRUE, FALSE, 0 or 1, or with other fields;
//  - a "single" field meets literals rounded to single precision, so that
//    [t.f] = 0.1 finds the 0.1 that the field holds.
//
// The conditions of WHERE and of every ON are split at their top-level ANDs;
// each part goes to the table it needs (tested while that table is read), to
// the join that completes what it needs, or becomes a hash join key when it
// equates a field of a joined table with a field of an earlier one. Every join
// needs at least one such key.
class KOR_SQL_BINDER
{
public:
    static bool bind(const QString& sql, const KOR_SQL_STATEMENT& statement, const KOR_QUERY_INTERFACE& database,
                     KOR_SQL_PLAN& plan, QString& error);
};
