#include "global_search.h"

#include "global_search_index.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_query_interface.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"

#include <vector>

namespace
{
// A column a search tests, with the answer for each of its distinct texts.
struct TESTED_COLUMN
{
    const GLOBAL_SEARCH_INDEX::COLUMN* column;
    // Per distinct text: its place in the search's matched values, or -1.
    std::vector<int> answers;
};

// A hit before it is made: the record's place, the column, the value.
struct HIT_PLACE
{
    int record;
    int column;
    int value;
};

// Where a QString keeps its characters and count, read without going there.
inline const void* shared_data_of(const QString& text)
{
    return *reinterpret_cast<const void* const*>(&text);
}
} // namespace

GLOBAL_SEARCH::GLOBAL_SEARCH(const QString& text, Qt::CaseSensitivity case_sensitivity, bool exact_match)
    : m_pattern(text, case_sensitivity, exact_match)
{
}

int GLOBAL_SEARCH::search_table(const KOR_TABLE_DATA& table, QVector<GLOBAL_SEARCH_HIT>& hits) const
{
    const KOR_TABLE_SCHEMA* schema = table.table_schema();
    if (!schema)
        return 0;
    // Held while searching, should another reader give the table a new one.
    const std::shared_ptr<const GLOBAL_SEARCH_INDEX> index = GLOBAL_SEARCH_INDEX::of(table);

    std::vector<TESTED_COLUMN> tested;
    QVector<QString> values;
    for (const GLOBAL_SEARCH_INDEX::COLUMN& column : index->columns())
    {
        // Values a field's type can never spell out are not made into text.
        if (!m_pattern.can_match_type(column.type))
            continue;
        TESTED_COLUMN test{&column, {}};
        bool any = false;
        if (column.text_count() > 0 && m_pattern.can_match_length(column.shortest, column.longest))
        {
            test.answers.assign(std::size_t(column.text_count()), -1);
            for (int i = 0; i < column.text_count(); ++i)
            {
                if (m_pattern.matches(column.text(i), column.text_length(i)))
                {
                    test.answers[std::size_t(i)] = values.size();
                    values.append(QString(column.text(i), column.text_length(i)));
                    any = true;
                }
            }
        }
        if (!any)
        {
            if (!column.has_other)
                continue;
            test.answers.clear();
        }
        tested.push_back(std::move(test));
    }
    if (tested.empty())
        return 0;

    // The numbers are read in record order first; only then are the hits
    // made, each needing its record's key from wherever the record lies.
    const KOR_RECORD_MAP& records = table.records();
    const int count = index->record_count();
    std::vector<HIT_PLACE> places;
    for (int record = 0; record < count; ++record)
    {
        for (int c = 0; c < int(tested.size()); ++c)
        {
            const TESTED_COLUMN& test = tested[std::size_t(c)];
            const quint32 id = test.column->id(record);
            if (id < GLOBAL_SEARCH_INDEX::OTHER)
            {
                if (!test.answers.empty() && test.answers[id] >= 0)
                    places.push_back(HIT_PLACE{record, c, test.answers[id]});
                continue;
            }
            if (id != GLOBAL_SEARCH_INDEX::OTHER)
                continue;
            const KOR_FIELD_DATA* field = index->field_of(*records.at(record), *test.column);
            if (!field)
                continue;
            const QString text = field->value_text();
            if (m_pattern.matches(text))
            {
                places.push_back(HIT_PLACE{record, c, values.size()});
                values.append(text);
            }
        }
    }

    // Keys lie one cache miss away, and their entry another: both are asked
    // for some hits ahead, so that the misses overlap.
    const QString table_name = schema->get_table_name();
    const int found = int(places.size());
    if (hits.capacity() < hits.size() + found)
        hits.reserve(qMax(hits.size() + found, 2 * hits.capacity()));
    const int entry_ahead = 16;
    const int key_ahead = 8;
    for (int i = 0; i < found; ++i)
    {
        if (i + entry_ahead < found)
            __builtin_prefetch(&records.key_at(places[std::size_t(i + entry_ahead)].record));
        if (i + key_ahead < found)
            __builtin_prefetch(shared_data_of(records.key_at(places[std::size_t(i + key_ahead)].record)), 1);
        const HIT_PLACE& place = places[std::size_t(i)];
        hits.append(GLOBAL_SEARCH_HIT{table_name, tested[std::size_t(place.column)].column->name,
                                      records.key_at(place.record), values.at(place.value)});
    }
    return found;
}

bool GLOBAL_SEARCH::search(KOR_QUERY_INTERFACE& query_interface, QVector<GLOBAL_SEARCH_HIT>& hits,
                           const HOOKS& hooks) const
{
    QMap<QString, bool> names;
    query_interface.get_table_names(names);
    int index = 0;
    for (auto it = names.constBegin(); it != names.constEnd(); ++it, ++index)
    {
        if (hooks.before_table)
            hooks.before_table(it.key(), index, names.size());
        QString error;
        const KOR_TABLE_DATA* table = query_interface.get_table_data(error, it.key());
        if (!table)
        {
            if (hooks.table_failed)
                hooks.table_failed(it.key(),
                                   error.isEmpty() ? QStringLiteral("The table cannot be read") : error);
            continue;
        }
        search_table(*table, hits);
        if (hooks.after_table && !hooks.after_table(it.key(), hits.size()))
            return false;
    }
    return true;
}
