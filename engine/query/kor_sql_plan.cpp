#include "kor_sql_plan.h"

bool KOR_SQL_PLAN::holds_for_values(const CONDITION& condition, const KOR_SQL_VALUE& left,
                                    const KOR_SQL_VALUE& right)
{
    switch (condition.kind)
    {
    case CONDITION::IS_NULL:
    {
        // An empty text counts as no value: table files cannot tell the two
        // apart, and users mean both when they ask for missing values.
        const bool missing = left.is_none() || (left.kind() == KOR_SQL_VALUE::TEXT && left.text().isEmpty());
        return missing != condition.negated;
    }
    case CONDITION::LIKE:
        // No value matches no pattern, also under NOT LIKE.
        if (left.is_none())
            return false;
        return condition.pattern->matches(left.text()) != condition.negated;
    case CONDITION::COMPARE:
    {
        int order = 0;
        // A missing value (or a NaN) compares with nothing: every comparison
        // with it is false, <> included.
        if (!KOR_SQL_VALUE::compare(left, right, order))
            return false;
        switch (condition.op)
        {
        case KOR_SQL_CONDITION::EQUAL: return order == 0;
        case KOR_SQL_CONDITION::NOT_EQUAL: return order != 0;
        case KOR_SQL_CONDITION::LESS: return order < 0;
        case KOR_SQL_CONDITION::GREATER: return order > 0;
        case KOR_SQL_CONDITION::LESS_EQUAL: return order <= 0;
        case KOR_SQL_CONDITION::GREATER_EQUAL: return order >= 0;
        }
        return false;
    }
    default:
        return false;
    }
}
