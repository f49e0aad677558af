#include "global_search_index.h"

#include "case_insensitive_compare_string.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"

#include <QHash>
#include <QStringView>
#include <QVariant>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace
{
// The text a variant holds, read where Qt 5 keeps it (as QVariant's own
// inline members do): two library calls a value were a tenth of a walk.
const QString* held_text(const QVariant& value)
{
    const QVariant::Private& held = value.data_ptr();
    if (held.type != QMetaType::QString)
        return nullptr;
    return static_cast<const QString*>(held.is_shared ? held.data.shared->ptr
                                                      : static_cast<const void*>(&held.data.ptr));
}

// Gives each distinct text of a column its number while the column is laid
// out. The reader keeps one copy of a field's repeated values, so most texts
// are known by where they lie before their characters are hashed.
class TEXT_NUMBERS
{
public:
    explicit TEXT_NUMBERS(GLOBAL_SEARCH_INDEX::COLUMN& column) : m_column(column) {}

    quint32 number(const QString& text)
    {
        const QChar* data = text.constData();
        const int length = text.size();
        RECENT& recent = m_recent[(reinterpret_cast<std::uintptr_t>(data) >> 4) & (RECENT_SIZE - 1)];
        if (recent.data == data && recent.length == length)
            return recent.number;
        quint32 found;
        if (m_distinct)
        {
            found = add(data, length);
        }
        else
        {
            found = find_or_add(data, length);
            // Texts that are mostly distinct (keys, names) are laid out as
            // they come: looking each up again would cost more than it saves.
            if (++m_lookups >= 4096 && std::size_t(m_column.text_count()) * 2 > m_lookups)
            {
                m_distinct = true;
                std::vector<quint32>().swap(m_slots);
            }
        }
        recent = RECENT{data, length, found};
        return found;
    }

private:
    struct RECENT
    {
        const QChar* data = nullptr;
        int length = -1;
        quint32 number = 0;
    };
    static const std::size_t RECENT_SIZE = 1024;

    static uint hash(const QChar* data, int length) { return qHash(QStringView(data, length)); }

    bool same(quint32 number, const QChar* data, int length) const
    {
        return m_column.text_length(int(number)) == length &&
               std::memcmp(m_column.text(int(number)), data, std::size_t(length) * sizeof(QChar)) == 0;
    }

    quint32 add(const QChar* data, int length)
    {
        m_column.chars.insert(m_column.chars.end(), data, data + length);
        m_column.starts.push_back(quint32(m_column.chars.size()));
        return quint32(m_column.text_count() - 1);
    }

    quint32 find_or_add(const QChar* data, int length)
    {
        if (m_slots.empty() || 2 * (std::size_t(m_column.text_count()) + 1) > m_slots.size())
            grow();
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t slot = hash(data, length) & mask;; slot = (slot + 1) & mask)
        {
            if (m_slots[slot] == 0)
            {
                const quint32 added = add(data, length);
                m_slots[slot] = added + 1;
                return added;
            }
            if (same(m_slots[slot] - 1, data, length))
                return m_slots[slot] - 1;
        }
    }

    void grow()
    {
        std::vector<quint32> grown(std::max<std::size_t>(64, 2 * m_slots.size()));
        const std::size_t mask = grown.size() - 1;
        for (int number = 0; number < m_column.text_count(); ++number)
        {
            std::size_t slot = hash(m_column.text(number), m_column.text_length(number)) & mask;
            while (grown[slot] != 0)
                slot = (slot + 1) & mask;
            grown[slot] = quint32(number) + 1;
        }
        m_slots.swap(grown);
    }

    GLOBAL_SEARCH_INDEX::COLUMN& m_column;
    std::vector<quint32> m_slots;
    std::size_t m_lookups = 0;
    bool m_distinct = false;
    RECENT m_recent[RECENT_SIZE];
};
} // namespace

std::shared_ptr<const GLOBAL_SEARCH_INDEX> GLOBAL_SEARCH_INDEX::of(const KOR_TABLE_DATA& table)
{
    std::shared_ptr<const GLOBAL_SEARCH_INDEX> held =
        std::static_pointer_cast<const GLOBAL_SEARCH_INDEX>(table.search_index());
    if (held && held->fits(table))
        return held;
    std::shared_ptr<const GLOBAL_SEARCH_INDEX> made(new GLOBAL_SEARCH_INDEX(table));
    table.set_search_index(made);
    return made;
}

GLOBAL_SEARCH_INDEX::GLOBAL_SEARCH_INDEX(const KOR_TABLE_DATA& table)
    : m_generation(table.generation()), m_schema(table.table_schema())
{
    if (!m_schema)
        return;
    m_column_ordering = m_schema->column_ordering();
    m_field_count = m_schema->field_count();
    m_record_count = table.record_count();
    QList<QString> by_name = m_column_ordering;
    std::sort(by_name.begin(), by_name.end(), [](const QString& a, const QString& b) {
        return CASE_INSENSITIVE_COMPARE_STRING::compare(a, b) < 0;
    });
    for (const QString& name : qAsConst(m_column_ordering))
    {
        const KOR_FIELD_SCHEMA* field = m_schema->field_schema_by_name(name);
        if (!field)
            continue;
        COLUMN column;
        column.name = name;
        column.schema = field;
        column.type = field->field_type();
        column.slot = int(by_name.indexOf(name));
        // Values of other types are held as numbers, dates or yes/no; their
        // text is made from the record when a search can match it.
        column.all_other = column.type != KFT_TEXT;
        column.has_other = column.all_other;
        if (!column.all_other)
            column.ids.reserve(std::size_t(m_record_count));
        m_columns.push_back(std::move(column));
    }

    std::vector<COLUMN*> laid_out;
    std::vector<TEXT_NUMBERS> numbers;
    for (COLUMN& column : m_columns)
        if (!column.all_other)
            laid_out.push_back(&column);
    numbers.reserve(laid_out.size());
    for (COLUMN* column : laid_out)
        numbers.emplace_back(*column);
    std::vector<bool> in_order(laid_out.size(), true);
    if (!laid_out.empty())
    {
        quint32 record_number = 0;
        for (const KOR_RECORD_DATA* record : table.records())
        {
            for (std::size_t c = 0; c < laid_out.size(); ++c)
            {
                COLUMN& column = *laid_out[c];
                quint32 id = ABSENT;
                if (const KOR_FIELD_DATA* field = field_of(*record, column))
                {
                    const QString* text = held_text(field->value());
                    id = text ? numbers[c].number(*text) : OTHER;
                }
                column.ids.push_back(id);
                if (id != record_number)
                    in_order[c] = false;
            }
            ++record_number;
        }
    }

    for (std::size_t c = 0; c < laid_out.size(); ++c)
    {
        COLUMN& column = *laid_out[c];
        column.has_other = std::find(column.ids.begin(), column.ids.end(), OTHER) != column.ids.end();
        if (in_order[c])
            std::vector<quint32>().swap(column.ids);
        column.chars.shrink_to_fit();
        column.starts.shrink_to_fit();
        for (int i = 0; i < column.text_count(); ++i)
        {
            const int length = column.text_length(i);
            column.shortest = i == 0 ? length : std::min(column.shortest, length);
            column.longest = std::max(column.longest, length);
        }
    }
}

bool GLOBAL_SEARCH_INDEX::fits(const KOR_TABLE_DATA& table) const
{
    if (table.generation() != m_generation || table.table_schema() != m_schema || !m_schema ||
        table.record_count() != m_record_count || m_schema->column_ordering() != m_column_ordering)
        return false;
    for (const COLUMN& column : m_columns)
        if (m_schema->field_schema_by_name(column.name) != column.schema ||
            column.schema->field_type() != column.type)
            return false;
    return true;
}

const KOR_FIELD_DATA* GLOBAL_SEARCH_INDEX::field_of(const KOR_RECORD_DATA& record, const COLUMN& column) const
{
    const KOR_FIELD_DATA_MAP& fields = record.field_map();
    if (fields.size() == m_field_count)
    {
        const KOR_FIELD_DATA* field = fields.at(column.slot);
        if (field->field_schema() == column.schema)
            return field;
    }
    // A record that lacks a field, or whose fields are not the schema's.
    return fields.value(column.name);
}

std::size_t GLOBAL_SEARCH_INDEX::memory_bytes() const
{
    std::size_t bytes = sizeof(*this) + m_columns.capacity() * sizeof(COLUMN);
    for (const COLUMN& column : m_columns)
        bytes += column.chars.capacity() * sizeof(QChar) + column.starts.capacity() * sizeof(quint32) +
                 column.ids.capacity() * sizeof(quint32);
    return bytes;
}
