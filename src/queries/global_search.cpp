#include "global_search.h"

#include "case_insensitive_compare_string.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_query_interface.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"

#include <algorithm>
#include <cstdint>
#include <memory>

namespace
{
// The text a variant holds, read where Qt 5 keeps it (as QVariant's own
// inline members do): two library calls a value were a tenth of a search.
const QString* held_text(const QVariant& value)
{
    const QVariant::Private& held = value.data_ptr();
    if (held.type != QMetaType::QString)
        return nullptr;
    return static_cast<const QString*>(held.is_shared ? held.data.shared->ptr
                                                      : static_cast<const void*>(&held.data.ptr));
}

// Answers for the texts a table shares between its records (the reader
// keeps one copy of a field's repeated values): a field of a few hundred
// distinct values over a million records is matched a few hundred times.
// Keyed by where a text lies, which stays while the table is searched; a
// field whose texts are mostly distinct stops asking.
class SHARED_TEXT_ANSWERS
{
public:
    // 1 match, 0 no match, -1 not known.
    int find(const QString& text)
    {
        if (!m_on)
            return -1;
        const std::size_t slot = slot_of(text);
        if (m_keys[slot] == text.constData())
        {
            ++m_found;
            return m_answers[slot];
        }
        if (++m_missed > 4096 && m_missed > 4 * m_found)
            m_on = false;
        return -1;
    }
    void keep(const QString& text, bool answer)
    {
        const std::size_t slot = slot_of(text);
        m_keys[slot] = text.constData();
        m_answers[slot] = answer;
    }

private:
    static const std::size_t SIZE = 1024;
    static std::size_t slot_of(const QString& text)
    {
        return (reinterpret_cast<std::uintptr_t>(text.constData()) >> 4) & (SIZE - 1);
    }
    const QChar* m_keys[SIZE] = {};
    bool m_answers[SIZE] = {};
    int m_found = 0;
    int m_missed = 0;
    bool m_on = true;
};

struct COLUMN
{
    const KOR_FIELD_SCHEMA* schema;
    QString name;
    // Where the field stands in a record's field map, which is in name
    // order ignoring case; the name is looked up when a record differs.
    int slot;
    std::shared_ptr<SHARED_TEXT_ANSWERS> answers;
};
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
    QList<QString> by_name = schema->column_ordering();
    std::sort(by_name.begin(), by_name.end(), [](const QString& a, const QString& b) {
        return CASE_INSENSITIVE_COMPARE_STRING::compare(a, b) < 0;
    });
    std::vector<COLUMN> columns;
    for (const QString& name : schema->column_ordering())
    {
        const KOR_FIELD_SCHEMA* field = schema->field_schema_by_name(name);
        // Values a field's type can never spell out are not made into text.
        if (field && m_pattern.can_match_type(field->field_type()))
            columns.push_back(
                COLUMN{field, name, int(by_name.indexOf(name)), std::make_shared<SHARED_TEXT_ANSWERS>()});
    }
    if (columns.empty())
        return 0;
    const int field_count = schema->field_count();
    const QString table_name = schema->get_table_name();
    const int before = hits.size();
    const KOR_RECORD_MAP& records = table.records();
    for (auto it = records.begin(); it != records.end(); ++it)
    {
        const KOR_RECORD_DATA* record = it.value();
        const KOR_FIELD_DATA_MAP& fields = record->field_map();
        const bool complete = fields.size() == field_count;
        for (const COLUMN& column : columns)
        {
            const KOR_FIELD_DATA* field = nullptr;
            if (complete)
            {
                field = fields.at(column.slot);
                if (field->field_schema() != column.schema)
                    field = nullptr;
            }
            if (!field)
                field = fields.value(column.name);
            if (!field)
                continue;
            // Texts are tested where they lie, without a copy.
            if (const QString* text = held_text(field->value()))
            {
                int answer = column.answers->find(*text);
                if (answer < 0)
                {
                    answer = m_pattern.matches(*text) ? 1 : 0;
                    column.answers->keep(*text, answer == 1);
                }
                if (answer == 1)
                    hits.append(GLOBAL_SEARCH_HIT{table_name, column.name, it.key(), *text});
                continue;
            }
            const QString text = field->value_text();
            if (m_pattern.matches(text))
                hits.append(GLOBAL_SEARCH_HIT{table_name, column.name, it.key(), text});
        }
    }
    return hits.size() - before;
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
