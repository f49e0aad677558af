#pragma once

#include "kor_field_type.h"

#include <QChar>
#include <QList>
#include <QString>

#include <cstddef>
#include <memory>
#include <vector>

class KOR_FIELD_DATA;
class KOR_FIELD_SCHEMA;
class KOR_RECORD_DATA;
class KOR_TABLE_DATA;
class KOR_TABLE_SCHEMA;

// The texts of a loaded table laid out for the global search, kept with the
// table between searches. A record's text values lie in objects reached
// through the record, its field list and each field; a search of a large
// table spends its time getting there, not matching. Here each column holds
// its distinct texts one after another, and for every record (in key order)
// the number of the text it holds: a search matches each distinct text once,
// then reads the numbers in record order, which keeps the hits in the order
// of a walk through the records.
//
// Made on the first search that reaches a table, never while loading. Only
// text columns are laid out, and of them the values the variant holds as
// text; the rest (numbers, dates, yes/no) are read from the record when a
// search can match them, as their text is made from the value.
class GLOBAL_SEARCH_INDEX
{
public:
    // What a record holds in a column besides a text's number.
    static constexpr quint32 ABSENT = 0xffffffffu; // no such field in the record
    static constexpr quint32 OTHER = 0xfffffffeu;  // a value not held as text

    struct COLUMN
    {
        QString name;
        const KOR_FIELD_SCHEMA* schema = nullptr;
        KOR_FIELD_TYPE type = KFT_TEXT;
        // Where the field stands in a record's field map (name order,
        // ignoring case) when the record has every field.
        int slot = 0;
        // Distinct texts: text i is chars[starts[i]] .. chars[starts[i + 1]].
        std::vector<QChar> chars;
        std::vector<quint32> starts{0};
        // Per record, a text's number, ABSENT or OTHER. Left empty when
        // record i holds text i (every text distinct, as keys are) or when the
        // column is not laid out.
        std::vector<quint32> ids;
        // Not laid out: every record's value is read from the record (a
        // record may lack the field).
        bool all_other = false;
        bool has_other = false;
        int shortest = 0;
        int longest = -1;

        int text_count() const { return int(starts.size()) - 1; }
        const QChar* text(int i) const { return chars.data() + starts[std::size_t(i)]; }
        int text_length(int i) const { return int(starts[std::size_t(i) + 1] - starts[std::size_t(i)]); }
        quint32 id(int record) const
        {
            if (!ids.empty())
                return ids[std::size_t(record)];
            return all_other ? OTHER : quint32(record);
        }
    };

    // The table's index, made now when it has none or its records or schema
    // changed since.
    static std::shared_ptr<const GLOBAL_SEARCH_INDEX> of(const KOR_TABLE_DATA& table);

    // Whether it still describes the table as it is now.
    bool fits(const KOR_TABLE_DATA& table) const;

    const std::vector<COLUMN>& columns() const { return m_columns; }
    int record_count() const { return m_record_count; }
    // The field of a column in a record, found as the index found it.
    const KOR_FIELD_DATA* field_of(const KOR_RECORD_DATA& record, const COLUMN& column) const;
    // What the index occupies.
    std::size_t memory_bytes() const;

private:
    explicit GLOBAL_SEARCH_INDEX(const KOR_TABLE_DATA& table);

    quint64 m_generation;
    const KOR_TABLE_SCHEMA* m_schema;
    QList<QString> m_column_ordering;
    int m_field_count = 0;
    int m_record_count = 0;
    std::vector<COLUMN> m_columns;
};
