#pragma once

#include "kor_sql_ast.h"
#include "kor_sql_like_pattern.h"
#include "kor_sql_value.h"

#include <QString>
#include <QVector>

#include <memory>
#include <vector>

class KOR_FIELD_SCHEMA;
class KOR_TABLE_SCHEMA;

// A statement bound to the schemas: every name resolved, every comparison
// typed, every condition placed where it is cheapest to test. The binder
// makes it, the executor runs it.
//
// Each table of the statement is a source. Scanning a source reads a fixed set
// of columns from every record, addressed by slot number: a column is one
// field in one representation (its own kind, or text for comparisons with
// text), so no value is converted twice and nothing is parsed per row.
struct KOR_SQL_PLAN
{
    // Where a value comes from while a condition is tested.
    struct ACCESS
    {
        bool constant = true;
        KOR_SQL_VALUE value;   // when constant
        int source = -1;       // otherwise the source and slot
        int slot = -1;
    };

    struct CONDITION
    {
        enum KIND
        {
            AND,
            OR,
            NOT,
            COMPARE,
            LIKE,
            IS_NULL,
            CONSTANT
        };

        KIND kind = CONSTANT;
        std::vector<CONDITION> children;
        KOR_SQL_CONDITION::OPERATOR op = KOR_SQL_CONDITION::EQUAL;
        ACCESS left;
        ACCESS right;
        std::shared_ptr<const KOR_SQL_LIKE_PATTERN> pattern;
        bool negated = false;
        bool constant_value = true;
    };

    struct COLUMN
    {
        const KOR_FIELD_SCHEMA* field = nullptr;
        bool as_text = false;   // read as text whatever the field's type
    };

    // An equality that joins a source to the ones before it: the slot of the
    // joined source and where the other side comes from.
    struct KEY
    {
        int slot = -1;
        ACCESS other;
    };

    struct SOURCE
    {
        QString table;       // as the database names it
        QString qualifier;   // as the statement names it (the alias, if any)
        const KOR_TABLE_SCHEMA* schema = nullptr;
        std::vector<COLUMN> columns;
        // Conditions on this source alone, tested while it is scanned.
        std::vector<CONDITION> filters;
        // For every source but the first: the hash join keys, and the
        // conditions that need this source and earlier ones, tested on each
        // joined row.
        std::vector<KEY> keys;
        std::vector<CONDITION> after_join;
    };

    struct OUTPUT
    {
        QString name;   // "qualifier.field"
        int source = -1;
        const KOR_FIELD_SCHEMA* field = nullptr;
    };

    std::vector<SOURCE> sources;
    std::vector<OUTPUT> outputs;
    // A condition without fields that is false: no row can qualify.
    bool never_true = false;
    // The statement in canonical form.
    QString statement;

    // Whether a condition holds for one combination of rows. `value_of`
    // gives the value of a source's slot in the current combination.
    template <typename VALUE_OF>
    static bool holds(const CONDITION& condition, const VALUE_OF& value_of);
    static bool holds_for_values(const CONDITION& condition, const KOR_SQL_VALUE& left, const KOR_SQL_VALUE& right);
};

template <typename VALUE_OF>
bool KOR_SQL_PLAN::holds(const CONDITION& condition, const VALUE_OF& value_of)
{
    switch (condition.kind)
    {
    case CONDITION::AND:
        for (const CONDITION& child : condition.children)
        {
            if (!holds(child, value_of))
                return false;
        }
        return true;
    case CONDITION::OR:
        for (const CONDITION& child : condition.children)
        {
            if (holds(child, value_of))
                return true;
        }
        return false;
    case CONDITION::NOT:
        return !holds(condition.children.front(), value_of);
    case CONDITION::CONSTANT:
        return condition.constant_value;
    default:
        break;
    }
    const KOR_SQL_VALUE& left =
        condition.left.constant ? condition.left.value : value_of(condition.left.source, condition.left.slot);
    if (condition.kind == CONDITION::IS_NULL || condition.kind == CONDITION::LIKE)
        return holds_for_values(condition, left, left);
    const KOR_SQL_VALUE& right =
        condition.right.constant ? condition.right.value : value_of(condition.right.source, condition.right.slot);
    return holds_for_values(condition, left, right);
}
