#include "kor_sql_binder.h"

#include "kor_sql_lexer.h"

#include "kor_field_schema.h"
#include "kor_query_interface.h"
#include "kor_table_schema.h"

#include <QMap>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace
{
QString bracketed(const QString& name)
{
    return QLatin1Char('[') + name + QLatin1Char(']');
}

KOR_SQL_VALUE::KIND natural_kind(KOR_FIELD_TYPE type)
{
    switch (type)
    {
    case KFT_YESNO:
        return KOR_SQL_VALUE::BOOLEAN;
    case KFT_INTEGER:
    case KFT_UNSIGNED_INTEGER:
    case KFT_AUTONUMBER:
        return KOR_SQL_VALUE::INTEGER;
    case KFT_UNIQUE_ID:
    case KFT_CARD64:
        return KOR_SQL_VALUE::UNSIGNED;
    case KFT_SINGLE:
    case KFT_DOUBLE:
    case KFT_DECIMAL:
        return KOR_SQL_VALUE::REAL;
    default:
        // Text, date-times (compared by their ISO text, which orders them in
        // time) and anything outside the enumeration.
        return KOR_SQL_VALUE::TEXT;
    }
}

KOR_SQL_VALUE literal_value(const KOR_SQL_LITERAL& literal)
{
    switch (literal.kind)
    {
    case KOR_SQL_LITERAL::INTEGER: return KOR_SQL_VALUE::from_integer(literal.integer);
    case KOR_SQL_LITERAL::UNSIGNED: return KOR_SQL_VALUE::from_unsigned(literal.unsigned_integer);
    case KOR_SQL_LITERAL::REAL: return KOR_SQL_VALUE::from_real(literal.real);
    case KOR_SQL_LITERAL::TEXT: return KOR_SQL_VALUE::from_text(literal.text);
    case KOR_SQL_LITERAL::BOOLEAN: return KOR_SQL_VALUE::from_boolean(literal.boolean);
    }
    return KOR_SQL_VALUE();
}

// A literal as the text it stands for in a comparison with text: numbers as
// written, booleans as the table files write them.
KOR_SQL_VALUE literal_as_text(const KOR_SQL_LITERAL& literal)
{
    if (literal.kind == KOR_SQL_LITERAL::BOOLEAN)
        return KOR_SQL_VALUE::from_text(literal.boolean ? QStringLiteral("true") : QStringLiteral("false"));
    return KOR_SQL_VALUE::from_text(literal.text);
}

// A quoted text given for a number field, read as a number.
bool text_as_number(const QString& text, KOR_SQL_VALUE& out)
{
    const QString trimmed = text.trimmed();
    bool ok = false;
    const qint64 integer = trimmed.toLongLong(&ok, 10);
    if (ok)
    {
        out = KOR_SQL_VALUE::from_integer(integer);
        return true;
    }
    const quint64 unsigned_integer = trimmed.toULongLong(&ok, 10);
    if (ok && !trimmed.startsWith(QLatin1Char('-')))
    {
        out = KOR_SQL_VALUE::from_unsigned(unsigned_integer);
        return true;
    }
    const double real = trimmed.toDouble(&ok);
    if (ok && std::isfinite(real))
    {
        out = KOR_SQL_VALUE::from_real(real);
        return true;
    }
    return false;
}


class BINDER
{
public:
    BINDER(const QString& sql, const KOR_QUERY_INTERFACE& database, KOR_SQL_PLAN& plan, QString& error)
        : m_sql(sql), m_database(database), m_plan(plan), m_error(error)
    {
    }

    bool bind(const KOR_SQL_STATEMENT& statement)
    {
        m_plan = KOR_SQL_PLAN();
        m_plan.statement = statement.to_text();
        if (!add_source(statement.from))
            return false;
        for (const KOR_SQL_JOIN& join : statement.joins)
        {
            if (!add_source(join.table))
                return false;
        }
        for (const KOR_SQL_NAME& item : statement.select)
        {
            if (!add_outputs(item))
                return false;
        }
        const int last = int(m_plan.sources.size()) - 1;
        for (size_t i = 0; i < statement.joins.size(); ++i)
        {
            if (!add_conjuncts(*statement.joins[i].on, int(i) + 1))
                return false;
        }
        if (statement.where && !add_conjuncts(*statement.where, last))
            return false;
        for (size_t i = 0; i < statement.joins.size(); ++i)
        {
            const KOR_SQL_JOIN& join = statement.joins[i];
            if (m_plan.sources[i + 1].keys.empty())
                return fail(QStringLiteral("The join with %1 at %2 needs an equality between a field of %1 and a "
                                           "field of a table before it, such as [a.key] = [b.key]")
                                .arg(bracketed(m_plan.sources[i + 1].qualifier), where(join.position)));
        }
        return true;
    }

private:
    // What one side of a comparison is, before its type is settled.
    struct OPERAND
    {
        const KOR_SQL_OPERAND* syntax = nullptr;
        int source = -1;
        const KOR_FIELD_SCHEMA* field = nullptr;
        KOR_SQL_VALUE::KIND kind = KOR_SQL_VALUE::NONE;

        bool is_field() const { return field != nullptr; }
    };

    QString where(int offset) const { return KOR_SQL_LEXER::describe_position(m_sql, offset); }

    bool fail(const QString& message)
    {
        m_error = message;
        return false;
    }

    QString field_text(int source, const KOR_FIELD_SCHEMA* field) const
    {
        return bracketed(m_plan.sources[size_t(source)].qualifier + QLatin1Char('.') + field->field_name());
    }

    bool add_source(const KOR_SQL_TABLE_REFERENCE& reference)
    {
        QString table = reference.table;
        const KOR_TABLE_SCHEMA* schema = m_database.get_table_schema(table);
        if (!schema)
        {
            QMap<QString, bool> names;
            m_database.get_table_names(names);
            QStringList matches;
            for (auto it = names.constBegin(); it != names.constEnd(); ++it)
            {
                if (it.key().compare(table, Qt::CaseInsensitive) == 0)
                    matches << it.key();
            }
            if (matches.size() == 1)
            {
                table = matches.front();
                schema = m_database.get_table_schema(table);
            }
        }
        if (!schema)
            return fail(QStringLiteral("Unknown table %1 at %2").arg(bracketed(reference.table), where(reference.position)));

        KOR_SQL_PLAN::SOURCE source;
        source.table = table;
        source.qualifier = reference.alias.isEmpty() ? table : reference.alias;
        source.schema = schema;
        for (const KOR_SQL_PLAN::SOURCE& other : m_plan.sources)
        {
            if (other.qualifier.compare(source.qualifier, Qt::CaseInsensitive) == 0)
                return fail(QStringLiteral("Table %1 at %2 is already in the statement; give one of them another "
                                           "name with AS")
                                .arg(bracketed(source.qualifier), where(reference.position)));
        }
        m_plan.sources.push_back(source);
        return true;
    }

    // The sources a qualifier names: by the name the statement gives them,
    // else by their table's name; exact spelling first, then ignoring case.
    int find_source(const QString& qualifier) const
    {
        const int count = int(m_plan.sources.size());
        for (Qt::CaseSensitivity sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive})
        {
            for (int i = 0; i < count; ++i)
            {
                if (m_plan.sources[size_t(i)].qualifier.compare(qualifier, sensitivity) == 0)
                    return i;
            }
            int found = -1;
            for (int i = 0; i < count; ++i)
            {
                if (m_plan.sources[size_t(i)].table.compare(qualifier, sensitivity) == 0)
                {
                    if (found >= 0)
                        return -2;   // the table is there twice, under two names
                    found = i;
                }
            }
            if (found >= 0)
                return found;
        }
        return -1;
    }

    bool source_of(const KOR_SQL_NAME& name, int& source)
    {
        source = find_source(name.qualifier);
        if (source >= 0)
            return true;
        const QString written = name.to_text();
        if (source == -2)
            return fail(QStringLiteral("%1 at %2 is ambiguous: table %3 is in the statement twice; use the names "
                                       "given with AS")
                            .arg(written, where(name.position), bracketed(name.qualifier)));
        QMap<QString, bool> names;
        m_database.get_table_names(names);
        for (auto it = names.constBegin(); it != names.constEnd(); ++it)
        {
            if (it.key().compare(name.qualifier, Qt::CaseInsensitive) == 0)
                return fail(QStringLiteral("Table %1 of %2 at %3 is not in the FROM or JOIN part of the statement")
                                .arg(bracketed(name.qualifier), written, where(name.position)));
        }
        return fail(QStringLiteral("Unknown table %1 in %2 at %3")
                        .arg(bracketed(name.qualifier), written, where(name.position)));
    }

    bool resolve_field(const KOR_SQL_NAME& name, int& source, const KOR_FIELD_SCHEMA*& field)
    {
        if (!name.qualifier.isEmpty())
        {
            if (!source_of(name, source))
                return false;
            field = m_plan.sources[size_t(source)].schema->field_schema_by_name(name.name);
            if (!field)
                return fail(QStringLiteral("Unknown field %1 at %2: table %3 has no field '%4'")
                                .arg(name.to_text(), where(name.position),
                                     bracketed(m_plan.sources[size_t(source)].table), name.name));
            return true;
        }
        QStringList holders;
        source = -1;
        field = nullptr;
        for (int i = 0; i < int(m_plan.sources.size()); ++i)
        {
            if (const KOR_FIELD_SCHEMA* found = m_plan.sources[size_t(i)].schema->field_schema_by_name(name.name))
            {
                holders << bracketed(m_plan.sources[size_t(i)].qualifier);
                source = i;
                field = found;
            }
        }
        if (holders.isEmpty())
            return fail(QStringLiteral("Unknown field %1 at %2").arg(name.to_text(), where(name.position)));
        if (holders.size() > 1)
            return fail(QStringLiteral("Field %1 at %2 is ambiguous: it is in %3; write it as [table.field]")
                            .arg(name.to_text(), where(name.position), holders.join(QStringLiteral(" and "))));
        return true;
    }

    bool add_output(int source, const KOR_FIELD_SCHEMA* field, int position)
    {
        KOR_SQL_PLAN::OUTPUT output;
        output.source = source;
        output.field = field;
        output.name = m_plan.sources[size_t(source)].qualifier + QLatin1Char('.') + field->field_name();
        for (const KOR_SQL_PLAN::OUTPUT& other : m_plan.outputs)
        {
            // The results' own schema finds fields ignoring case, so two names
            // that differ only in case would clash there.
            if (other.name.compare(output.name, Qt::CaseInsensitive) == 0)
                return fail(QStringLiteral("Field %1 at %2 is already selected")
                                .arg(bracketed(output.name), where(position)));
        }
        m_plan.outputs.push_back(output);
        return true;
    }

    bool add_all_fields(int source, int position)
    {
        const KOR_TABLE_SCHEMA* schema = m_plan.sources[size_t(source)].schema;
        for (const QString& name : schema->column_ordering())
        {
            const KOR_FIELD_SCHEMA* field = schema->field_schema_by_name(name);
            if (field && !add_output(source, field, position))
                return false;
        }
        return true;
    }

    bool add_outputs(const KOR_SQL_NAME& item)
    {
        if (item.star && item.qualifier.isEmpty())
        {
            for (int i = 0; i < int(m_plan.sources.size()); ++i)
            {
                if (!add_all_fields(i, item.position))
                    return false;
            }
            return true;
        }
        int source = -1;
        if (item.star)
            return source_of(item, source) && add_all_fields(source, item.position);
        const KOR_FIELD_SCHEMA* field = nullptr;
        return resolve_field(item, source, field) && add_output(source, field, item.position);
    }

    int slot(int source, const KOR_FIELD_SCHEMA* field, bool as_text)
    {
        // A text field read as text is the field itself.
        if (natural_kind(field->field_type()) == KOR_SQL_VALUE::TEXT)
            as_text = false;
        std::vector<KOR_SQL_PLAN::COLUMN>& columns = m_plan.sources[size_t(source)].columns;
        for (size_t i = 0; i < columns.size(); ++i)
        {
            if (columns[i].field == field && columns[i].as_text == as_text)
                return int(i);
        }
        KOR_SQL_PLAN::COLUMN added;
        added.field = field;
        added.as_text = as_text;
        columns.push_back(added);
        return int(columns.size()) - 1;
    }

    bool operand(const KOR_SQL_OPERAND& syntax, int limit, OPERAND& out, std::vector<int>& used)
    {
        out.syntax = &syntax;
        if (!syntax.is_field)
        {
            out.kind = literal_value(syntax.literal).kind();
            return true;
        }
        if (!resolve_field(syntax.field, out.source, out.field))
            return false;
        if (out.source > limit)
            return fail(QStringLiteral("Field %1 at %2 belongs to a table joined later; an ON condition can only use "
                                       "its own table and the tables before it")
                            .arg(syntax.field.to_text(), where(syntax.position)));
        out.kind = natural_kind(out.field->field_type());
        used.push_back(out.source);
        return true;
    }

    KOR_SQL_PLAN::ACCESS field_access(const OPERAND& operand, bool as_text)
    {
        KOR_SQL_PLAN::ACCESS access;
        access.constant = false;
        access.source = operand.source;
        access.slot = slot(operand.source, operand.field, as_text);
        return access;
    }

    static KOR_SQL_PLAN::ACCESS constant_access(const KOR_SQL_VALUE& value)
    {
        KOR_SQL_PLAN::ACCESS access;
        access.value = value;
        return access;
    }

    // The constant a literal becomes when compared numerically with `other`.
    bool numeric_literal(const OPERAND& literal_side, const OPERAND& other, KOR_SQL_PLAN::ACCESS& out)
    {
        const KOR_SQL_LITERAL& literal = literal_side.syntax->literal;
        KOR_SQL_VALUE value = literal_value(literal);
        if (other.is_field() && other.kind == KOR_SQL_VALUE::BOOLEAN)
        {
            const bool zero_or_one = (literal.kind == KOR_SQL_LITERAL::INTEGER && (literal.integer == 0 || literal.integer == 1))
                                     || literal.kind == KOR_SQL_LITERAL::BOOLEAN;
            if (!zero_or_one)
                return fail(QStringLiteral("Cannot compare the yes/no field %1 with %2 at %3; use TRUE, FALSE, 0 or 1")
                                .arg(field_text(other.source, other.field), literal.to_text(),
                                     where(literal_side.syntax->position)));
            out = constant_access(value);
            return true;
        }
        if (literal.kind == KOR_SQL_LITERAL::TEXT)
        {
            if (!text_as_number(literal.text, value))
                return fail(QStringLiteral("Cannot compare the %1 field %2 with the text %3 at %4")
                                .arg(KOR_FIELD_SCHEMA::field_type_to_string(other.field->field_type()),
                                     field_text(other.source, other.field), literal.to_text(),
                                     where(literal_side.syntax->position)));
        }
        if (other.is_field() && other.field->field_type() == KFT_SINGLE && value.kind() != KOR_SQL_VALUE::BOOLEAN)
            value = KOR_SQL_VALUE::from_real(double(float(value.to_double())));
        out = constant_access(value);
        return true;
    }

    bool comparison(const KOR_SQL_CONDITION& syntax, int limit, KOR_SQL_PLAN::CONDITION& out, std::vector<int>& used)
    {
        OPERAND left;
        OPERAND right;
        if (!operand(syntax.left, limit, left, used) || !operand(syntax.right, limit, right, used))
            return false;
        out.kind = KOR_SQL_PLAN::CONDITION::COMPARE;
        out.op = syntax.op;

        // Numbers (and yes/no, which counts as 0 and 1) compare numerically,
        // unless one side is a text field: then both sides are text. A quoted
        // text against a number field is read as a number (or refused) by
        // numeric_literal; two literals compare as text when either is text.
        const bool any_text_field = (left.is_field() && left.kind == KOR_SQL_VALUE::TEXT)
                                    || (right.is_field() && right.kind == KOR_SQL_VALUE::TEXT);
        const bool both_literals = !left.is_field() && !right.is_field();
        const bool as_text = any_text_field
                             || (both_literals && (left.kind == KOR_SQL_VALUE::TEXT || right.kind == KOR_SQL_VALUE::TEXT));

        if (as_text)
        {
            out.left = left.is_field() ? field_access(left, true) : constant_access(literal_as_text(left.syntax->literal));
            out.right =
                right.is_field() ? field_access(right, true) : constant_access(literal_as_text(right.syntax->literal));
            return true;
        }
        if (left.is_field())
            out.left = field_access(left, false);
        else if (!numeric_literal(left, right, out.left))
            return false;
        if (right.is_field())
            out.right = field_access(right, false);
        else if (!numeric_literal(right, left, out.right))
            return false;
        return true;
    }

    bool compile(const KOR_SQL_CONDITION& syntax, int limit, KOR_SQL_PLAN::CONDITION& out, std::vector<int>& used)
    {
        switch (syntax.kind)
        {
        case KOR_SQL_CONDITION::AND:
        case KOR_SQL_CONDITION::OR:
        case KOR_SQL_CONDITION::NOT:
            out.kind = syntax.kind == KOR_SQL_CONDITION::AND  ? KOR_SQL_PLAN::CONDITION::AND
                       : syntax.kind == KOR_SQL_CONDITION::OR ? KOR_SQL_PLAN::CONDITION::OR
                                                              : KOR_SQL_PLAN::CONDITION::NOT;
            out.children.resize(syntax.children.size());
            for (size_t i = 0; i < syntax.children.size(); ++i)
            {
                if (!compile(*syntax.children[i], limit, out.children[i], used))
                    return false;
            }
            return true;
        case KOR_SQL_CONDITION::COMPARE:
            return comparison(syntax, limit, out, used);
        case KOR_SQL_CONDITION::LIKE:
        {
            OPERAND left;
            if (!operand(syntax.left, limit, left, used))
                return false;
            out.kind = KOR_SQL_PLAN::CONDITION::LIKE;
            out.negated = syntax.negated;
            out.left = left.is_field() ? field_access(left, true) : constant_access(literal_as_text(syntax.left.literal));
            out.pattern = std::make_shared<KOR_SQL_LIKE_PATTERN>(
                syntax.right.literal.text, syntax.escape.isEmpty() ? QChar() : syntax.escape.at(0));
            return true;
        }
        case KOR_SQL_CONDITION::IS_NULL:
        {
            OPERAND left;
            if (!operand(syntax.left, limit, left, used))
                return false;
            out.kind = KOR_SQL_PLAN::CONDITION::IS_NULL;
            out.negated = syntax.negated;
            out.left = left.is_field() ? field_access(left, false) : constant_access(literal_value(syntax.left.literal));
            return true;
        }
        }
        return fail(QStringLiteral("Unsupported condition at %1").arg(where(syntax.position)));
    }

    // Splits a condition at its top-level ANDs and files each part.
    bool add_conjuncts(const KOR_SQL_CONDITION& condition, int limit)
    {
        // Nested ANDs are flattened with an explicit stack; their depth is
        // bounded by the parser, but a stack keeps the walk plain.
        std::vector<const KOR_SQL_CONDITION*> pending{&condition};
        std::vector<const KOR_SQL_CONDITION*> parts;
        while (!pending.empty())
        {
            const KOR_SQL_CONDITION* next = pending.back();
            pending.pop_back();
            if (next->kind == KOR_SQL_CONDITION::AND)
            {
                for (auto it = next->children.rbegin(); it != next->children.rend(); ++it)
                    pending.push_back(it->get());
            }
            else
                parts.push_back(next);
        }
        for (const KOR_SQL_CONDITION* part : parts)
        {
            KOR_SQL_PLAN::CONDITION compiled;
            std::vector<int> used;
            if (!compile(*part, limit, compiled, used))
                return false;
            place(std::move(compiled), used);
        }
        return true;
    }

    void place(KOR_SQL_PLAN::CONDITION&& condition, std::vector<int>& used)
    {
        std::sort(used.begin(), used.end());
        used.erase(std::unique(used.begin(), used.end()), used.end());
        if (used.empty())
        {
            // Nothing varies: decide it once.
            const bool holds = KOR_SQL_PLAN::holds(condition, [](int, int) -> const KOR_SQL_VALUE& {
                static const KOR_SQL_VALUE none;
                return none;
            });
            if (!holds)
                m_plan.never_true = true;
            return;
        }
        const int last = used.back();
        KOR_SQL_PLAN::SOURCE& source = m_plan.sources[size_t(last)];
        if (used.size() == 1)
        {
            source.filters.push_back(std::move(condition));
            return;
        }
        if (condition.kind == KOR_SQL_PLAN::CONDITION::COMPARE && condition.op == KOR_SQL_CONDITION::EQUAL
            && !condition.left.constant && !condition.right.constant
            && (condition.left.source == last) != (condition.right.source == last))
        {
            const bool left_is_joined = condition.left.source == last;
            KOR_SQL_PLAN::KEY key;
            key.slot = left_is_joined ? condition.left.slot : condition.right.slot;
            key.other = left_is_joined ? condition.right : condition.left;
            source.keys.push_back(key);
            return;
        }
        source.after_join.push_back(std::move(condition));
    }

    const QString& m_sql;
    const KOR_QUERY_INTERFACE& m_database;
    KOR_SQL_PLAN& m_plan;
    QString& m_error;
};
}

bool KOR_SQL_BINDER::bind(const QString& sql, const KOR_SQL_STATEMENT& statement, const KOR_QUERY_INTERFACE& database,
                          KOR_SQL_PLAN& plan, QString& error)
{
    error.clear();
    BINDER binder(sql, database, plan, error);
    if (binder.bind(statement))
        return true;
    plan = KOR_SQL_PLAN();
    return false;
}
