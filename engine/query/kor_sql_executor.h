#pragma once

#include "kor_sql_plan.h"

#include <QString>

class KOR_QUERY_INTERFACE;
class KOR_QUERY_RESULTS;

// Runs a bound statement on a connected database.
//
// Each table is read once, in key order, keeping the slots the plan names and
// only the records that pass the conditions on that table alone. Joins are
// hash joins: the joined table's surviving records are filed by their key
// values, and each row so far looks its partners up; conditions spanning
// tables are tested on each joined row. Rows keep the FROM table's key order,
// then each joined table's.
class KOR_SQL_EXECUTOR
{
public:
    // A guard against runaway joins filling memory: more rows than this are
    // refused with a message.
    static constexpr int MAX_ROWS = 2000000;

    // Fills `results` (emptied first) or returns false with the error set and
    // the results empty.
    static bool run(const KOR_SQL_PLAN& plan, KOR_QUERY_INTERFACE& database, KOR_QUERY_RESULTS& results,
                    QString& error);
};
