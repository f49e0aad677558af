#pragma once

#include "kor_field_type.h"

#include <QCollator>
#include <QHash>
#include <QSet>
#include <QVariant>

#include <optional>
#include <vector>

// The values of one column, by source row, in the form a sort compares them:
// numbers as numbers, texts by their rank in the collation of the system
// locale (the order of QString::localeAwareCompare).
//
// A sort of a million rows compares each row some twenty times. The keys are
// made for all rows at the first comparison, in one pass over the rows; each
// distinct text is placed once, so comparing two rows is comparing two
// numbers. A row whose value changes loses its key (forget_rows) and is
// compared by its value until the keys are made again after clear().
class VELD_SORT_KEYS
{
public:
    enum MODE
    {
        // By the field's type: integers, unsigned 64-bit numbers, doubles,
        // the rest as text.
        BY_FIELD_TYPE,
        // By what each value holds: two unsigned 64-bit numbers or two
        // doubles as numbers, anything else as text.
        BY_HELD_TYPE
    };

    // Gives the values of the rows whose keys are made.
    class VALUES
    {
    public:
        virtual ~VALUES() = default;
        virtual int row_count() const = 0;
        virtual QVariant value(int row) const = 0;
    };

    // Whether the keys are those of this column and role.
    bool is_for(int column, int role) const { return m_column >= 0 && m_column == column && m_role == role; }
    // Starts keys for a column; they are made at the first comparison.
    void start(int column, int role, MODE mode, KOR_FIELD_TYPE type);
    // Forgets every key and the column.
    void clear();
    // Forgets the keys of rows whose values changed.
    void forget_rows(int first, int last);

    // Whether the left row's value sorts before the right one's.
    bool less(int left, int right, const VALUES& values);

private:
    enum KIND : quint8
    {
        MISSING,
        SIGNED,
        UNSIGNED,
        REAL,
        TEXT
    };
    union NUMBER
    {
        qint64 signed_number;
        quint64 unsigned_number;
        double real;
    };
    struct KEY
    {
        KIND kind = MISSING;
        NUMBER number;
    };

    void make_all(const VALUES& values);
    KEY make_key(const QVariant& value) const;
    bool is_made(int row) const
    {
        return row < m_rows && (m_forgotten.isEmpty() || !m_forgotten.contains(row));
    }
    KIND kind_of_made(int row) const { return m_kinds.empty() ? m_kind : KIND(m_kinds[size_t(row)]); }
    KEY key_of(int row, const VALUES& values);
    bool keys_less(const KEY& a, const KEY& b, int left, int right, const VALUES& values);

    int m_column = -1;
    int m_role = -1;
    MODE m_mode = BY_FIELD_TYPE;
    KOR_FIELD_TYPE m_type = KFT_NONE;
    bool m_made = false;
    // Rows with keys; a row at or beyond has none.
    int m_rows = 0;
    // The kind of every row by field type; by held type each row's own.
    KIND m_kind = MISSING;
    std::vector<quint8> m_kinds;
    std::vector<NUMBER> m_numbers;
    // The place of each row's text in the collation; texts the collation
    // finds equal share a place.
    std::vector<qint32> m_ranks;
    // Rows whose values changed since the keys were made, with their new
    // keys once compared.
    QSet<int> m_forgotten;
    QHash<int, KEY> m_changed;
    std::optional<QCollator> m_collator;
};
