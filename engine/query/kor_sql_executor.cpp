#include "kor_sql_executor.h"

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_query_interface.h"
#include "kor_query_results.h"
#include "kor_query_results_builder.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"

#include <QHash>
#include <QSet>

namespace
{
// The records of one table that passed its own conditions, with the values of
// the plan's columns side by side.
struct SCANNED
{
    std::vector<const KOR_RECORD_DATA*> records;
    std::vector<KOR_SQL_VALUE> values;   // records.size() rows of `width` columns
    size_t width = 0;

    const KOR_SQL_VALUE& at(int row, int slot) const { return values[size_t(row) * width + size_t(slot)]; }
};

// The values of the equalities that join a table, as a hash key.
struct JOIN_KEY
{
    QVector<KOR_SQL_VALUE> values;

    bool operator==(const JOIN_KEY& other) const
    {
        for (int i = 0; i < values.size(); ++i)
        {
            int order = 0;
            if (!KOR_SQL_VALUE::compare(values.at(i), other.values.at(i), order) || order != 0)
                return false;
        }
        return true;
    }
};

uint qHash(const JOIN_KEY& key, uint seed = 0)
{
    uint hash = seed;
    for (const KOR_SQL_VALUE& value : key.values)
        hash = hash * 31u + value.hash();
    return hash;
}

KOR_SQL_VALUE read_slot(const KOR_RECORD_DATA& record, const KOR_SQL_PLAN::COLUMN& slot)
{
    const KOR_FIELD_DATA* data = record.get_field_data(slot.field->field_name());
    const QVariant value = data ? data->value() : QVariant();
    const KOR_FIELD_TYPE type = slot.field->field_type();
    if (type == KFT_TEXT)
    {
        // A text field without a value is an empty text.
        return KOR_SQL_VALUE::from_text(value.toString());
    }
    if (!value.isValid())
        return KOR_SQL_VALUE();
    if (slot.as_text)
        return KOR_SQL_VALUE::from_text(KOR_FIELD_DATA::variant_to_text(value));
    switch (type)
    {
    case KFT_YESNO:
        return KOR_SQL_VALUE::from_boolean(value.toBool());
    case KFT_INTEGER:
    case KFT_UNSIGNED_INTEGER:
    case KFT_AUTONUMBER:
        return KOR_SQL_VALUE::from_integer(value.toLongLong());
    case KFT_UNIQUE_ID:
    case KFT_CARD64:
        return KOR_SQL_VALUE::from_unsigned(value.toULongLong());
    case KFT_SINGLE:
    case KFT_DOUBLE:
    case KFT_DECIMAL:
        return KOR_SQL_VALUE::from_real(value.toDouble());
    default:
        return KOR_SQL_VALUE::from_text(KOR_FIELD_DATA::variant_to_text(value));
    }
}

void scan(const KOR_SQL_PLAN::SOURCE& source, const KOR_TABLE_DATA& table, SCANNED& out)
{
    out.width = source.columns.size();
    std::vector<KOR_SQL_VALUE> row(out.width);
    auto value_of = [&row](int, int slot) -> const KOR_SQL_VALUE& { return row[size_t(slot)]; };
    for (const KOR_RECORD_DATA* record : table.records())
    {
        for (size_t i = 0; i < out.width; ++i)
            row[i] = read_slot(*record, source.columns[i]);
        bool keep = true;
        for (const KOR_SQL_PLAN::CONDITION& filter : source.filters)
        {
            if (!KOR_SQL_PLAN::holds(filter, value_of))
            {
                keep = false;
                break;
            }
        }
        if (!keep)
            continue;
        out.records.push_back(record);
        out.values.insert(out.values.end(), row.begin(), row.end());
    }
}

class EXECUTOR
{
public:
    EXECUTOR(const KOR_SQL_PLAN& plan, KOR_QUERY_INTERFACE& database, QString& error)
        : m_plan(plan), m_database(database), m_error(error), m_scanned(plan.sources.size())
    {
    }

    bool run(KOR_QUERY_RESULTS& results)
    {
        if (!m_plan.never_true && !join())
            return false;
        fill(results);
        return true;
    }

private:
    bool fail(const QString& message)
    {
        m_error = message;
        return false;
    }

    bool scan_source(size_t index)
    {
        const KOR_SQL_PLAN::SOURCE& source = m_plan.sources[index];
        QString error;
        const KOR_TABLE_DATA* table = m_database.get_table_data(error, source.table);
        if (!table)
            return fail(error.isEmpty() ? QStringLiteral("Cannot read the table [%1]").arg(source.table) : error);
        scan(source, *table, m_scanned[index]);
        return true;
    }

    bool too_many_rows()
    {
        return fail(QStringLiteral("The query gives more than %1 rows; narrow it down with WHERE")
                        .arg(KOR_SQL_EXECUTOR::MAX_ROWS));
    }

    // Leaves m_rows holding, for each result row, the row of every source.
    bool join()
    {
        if (!scan_source(0))
            return false;
        const int first_rows = int(m_scanned[0].records.size());
        if (first_rows > KOR_SQL_EXECUTOR::MAX_ROWS)
            return too_many_rows();
        m_width = 1;
        m_rows.resize(size_t(first_rows));
        for (int i = 0; i < first_rows; ++i)
            m_rows[size_t(i)] = i;

        for (size_t k = 1; k < m_plan.sources.size(); ++k)
        {
            // Nothing left to join with: the other tables need not be read.
            if (m_rows.empty())
                return true;
            if (!scan_source(k))
                return false;
            if (!join_one(k))
                return false;
        }
        return true;
    }

    bool join_one(size_t k)
    {
        const KOR_SQL_PLAN::SOURCE& source = m_plan.sources[k];
        const SCANNED& joined = m_scanned[k];

        // File the joined table's rows by their key values, in table order.
        QHash<JOIN_KEY, QVector<int>> buckets;
        buckets.reserve(int(joined.records.size()));
        JOIN_KEY key;
        key.values.resize(int(source.keys.size()));
        for (int row = 0; row < int(joined.records.size()); ++row)
        {
            bool usable = true;
            for (size_t i = 0; i < source.keys.size(); ++i)
            {
                const KOR_SQL_VALUE& value = joined.at(row, source.keys[i].slot);
                // No value equals anything, so such rows can never match.
                if (!value.is_comparable())
                {
                    usable = false;
                    break;
                }
                key.values[int(i)] = value;
            }
            if (usable)
                buckets[key].append(row);
        }

        const size_t old_width = m_width;
        const size_t new_width = m_width + 1;
        std::vector<int> joined_rows;
        const size_t tuples = m_rows.size() / old_width;
        const int* current = nullptr;
        int candidate = -1;
        auto value_of = [&](int s, int slot) -> const KOR_SQL_VALUE& {
            const int row = size_t(s) == k ? candidate : current[s];
            return m_scanned[size_t(s)].at(row, slot);
        };
        for (size_t t = 0; t < tuples; ++t)
        {
            current = &m_rows[t * old_width];
            bool usable = true;
            for (size_t i = 0; i < source.keys.size(); ++i)
            {
                const KOR_SQL_PLAN::ACCESS& other = source.keys[i].other;
                const KOR_SQL_VALUE& value = other.constant ? other.value : value_of(other.source, other.slot);
                if (!value.is_comparable())
                {
                    usable = false;
                    break;
                }
                key.values[int(i)] = value;
            }
            if (!usable)
                continue;
            const auto found = buckets.constFind(key);
            if (found == buckets.constEnd())
                continue;
            for (int match : found.value())
            {
                candidate = match;
                bool keep = true;
                for (const KOR_SQL_PLAN::CONDITION& condition : source.after_join)
                {
                    if (!KOR_SQL_PLAN::holds(condition, value_of))
                    {
                        keep = false;
                        break;
                    }
                }
                if (!keep)
                    continue;
                if (joined_rows.size() / new_width >= size_t(KOR_SQL_EXECUTOR::MAX_ROWS))
                    return too_many_rows();
                joined_rows.insert(joined_rows.end(), current, current + old_width);
                joined_rows.push_back(match);
            }
        }
        m_rows.swap(joined_rows);
        m_width = new_width;
        return true;
    }

    void fill(KOR_QUERY_RESULTS& results)
    {
        QStringList tables;
        for (const KOR_SQL_PLAN::SOURCE& source : m_plan.sources)
            tables << source.table;
        KOR_QUERY_RESULTS_BUILDER builder(results, m_plan.statement, tables);
        QSet<QUuid> used_uuids;
        for (const KOR_SQL_PLAN::OUTPUT& output : m_plan.outputs)
        {
            // A table joined twice gives its fields twice; only the first
            // keeps the field's uuid, so uuids stay unique in the results.
            QUuid uuid = output.field->field_unique_id();
            if (uuid.isNull() || used_uuids.contains(uuid))
                uuid = QUuid::createUuid();
            used_uuids.insert(uuid);
            // The binder refuses names that clash, so every field goes in.
            builder.add_field(*output.field, output.source, output.name, uuid);
        }
        const size_t width = m_plan.sources.size();
        // With no rows the join may have stopped before the last table.
        if (m_plan.never_true || m_rows.empty() || m_width != width)
            return;
        const size_t count = m_rows.size() / width;
        builder.reserve(int(count));
        QVector<QUuid> uuids(static_cast<int>(width));
        for (size_t t = 0; t < count; ++t)
        {
            const int* rows = &m_rows[t * width];
            for (size_t s = 0; s < width; ++s)
                uuids[int(s)] = m_scanned[s].records[size_t(rows[s])]->uuid();
            KOR_RECORD_DATA* record = builder.add_record(uuids);
            for (size_t column = 0; column < m_plan.outputs.size(); ++column)
            {
                const KOR_SQL_PLAN::OUTPUT& output = m_plan.outputs[column];
                const KOR_RECORD_DATA* from = m_scanned[size_t(output.source)].records[size_t(rows[output.source])];
                const KOR_FIELD_DATA* data = from->get_field_data(output.field->field_name());
                record->add_field_data(builder.field(int(column)), data ? data->value() : QVariant());
            }
        }
    }

    const KOR_SQL_PLAN& m_plan;
    KOR_QUERY_INTERFACE& m_database;
    QString& m_error;
    std::vector<SCANNED> m_scanned;
    // The rows of the sources joined so far, m_width to a result row.
    std::vector<int> m_rows;
    size_t m_width = 0;
};
}

bool KOR_SQL_EXECUTOR::run(const KOR_SQL_PLAN& plan, KOR_QUERY_INTERFACE& database, KOR_QUERY_RESULTS& results,
                           QString& error)
{
    results.clear();
    error.clear();
    if (plan.sources.empty())
    {
        error = QStringLiteral("The statement names no table");
        return false;
    }
    EXECUTOR executor(plan, database, error);
    if (executor.run(results))
        return true;
    results.clear();
    return false;
}
