#include "veld_sort_keys.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>
#include <functional>
#include <numeric>

void VELD_SORT_KEYS::start(int column, int role, MODE mode, KOR_FIELD_TYPE type)
{
    clear();
    m_column = column;
    m_role = role;
    m_mode = mode;
    m_type = type;
}

void VELD_SORT_KEYS::clear()
{
    m_column = -1;
    m_role = -1;
    m_made = false;
    m_rows = 0;
    m_kind = MISSING;
    std::vector<quint8>().swap(m_kinds);
    std::vector<NUMBER>().swap(m_numbers);
    std::vector<qint32>().swap(m_ranks);
    m_forgotten.clear();
    m_changed.clear();
    m_collator.reset();
}

void VELD_SORT_KEYS::forget_rows(int first, int last)
{
    if (!m_made)
        return;
    for (int row = qMax(0, first); row <= last && row < m_rows; ++row)
    {
        m_forgotten.insert(row);
        m_changed.remove(row);
    }
}

VELD_SORT_KEYS::KEY VELD_SORT_KEYS::make_key(const QVariant& value) const
{
    KEY key;
    if (m_mode == BY_FIELD_TYPE)
    {
        switch (m_type)
        {
        case KFT_INTEGER:
        case KFT_UNSIGNED_INTEGER:
        case KFT_AUTONUMBER:
            key.number.signed_number = value.toInt();
            key.kind = SIGNED;
            break;
        case KFT_UNIQUE_ID:
        case KFT_CARD64:
            key.number.unsigned_number = value.toULongLong();
            key.kind = UNSIGNED;
            break;
        case KFT_SINGLE:
        case KFT_DOUBLE:
            key.number.real = value.toDouble();
            key.kind = REAL;
            break;
        default:
            key.kind = TEXT;
            break;
        }
    }
    else if (value.type() == QVariant::ULongLong)
    {
        key.number.unsigned_number = value.toULongLong();
        key.kind = UNSIGNED;
    }
    else if (value.type() == QVariant::Double)
    {
        key.number.real = value.toDouble();
        key.kind = REAL;
    }
    else
    {
        key.kind = TEXT;
    }
    return key;
}

void VELD_SORT_KEYS::make_all(const VALUES& values)
{
    // QString::localeAwareCompare orders by the system locale's collation.
    m_collator.emplace(QLocale::system());
    m_rows = values.row_count();
    const bool by_field_type = m_mode == BY_FIELD_TYPE;
    m_kind = make_key(QVariant()).kind;
    const bool numbers = !by_field_type || m_kind != TEXT;
    const bool texts = !by_field_type || m_kind == TEXT;
    if (!by_field_type)
        m_kinds.assign(size_t(m_rows), MISSING);
    if (numbers)
        m_numbers.assign(size_t(m_rows), NUMBER{0});
    // Distinct texts are found through an open-addressed table of their
    // indexes: with a million distinct keys, the nodes of a QHash (made,
    // searched and freed one by one) took most of the time of a sort.
    std::vector<QString> distinct_texts;
    std::vector<uint> distinct_hashes;
    std::vector<qint32> slots_of_texts;
    size_t mask = 0;
    std::vector<qint32> distinct_of_row;
    if (texts)
    {
        distinct_of_row.assign(size_t(m_rows), -1);
        size_t capacity = 16;
        while (capacity < size_t(m_rows) * 2)
            capacity *= 2;
        slots_of_texts.assign(capacity, -1);
        mask = capacity - 1;
    }

    for (int row = 0; row < m_rows; ++row)
    {
        const QVariant value = values.value(row);
        const KEY key = make_key(value);
        if (!by_field_type)
            m_kinds[size_t(row)] = key.kind;
        if (numbers)
            m_numbers[size_t(row)] = key.number;
        if (!texts)
            continue;
        // By held type every row keeps a text too, for comparing with a row
        // that holds another type.
        const QString text = value.toString();
        const uint hash = qHash(text);
        size_t slot = hash & mask;
        qint32 index = slots_of_texts[slot];
        while (index >= 0 &&
               !(distinct_hashes[size_t(index)] == hash && distinct_texts[size_t(index)] == text))
        {
            slot = (slot + 1) & mask;
            index = slots_of_texts[slot];
        }
        if (index < 0)
        {
            index = qint32(distinct_texts.size());
            slots_of_texts[slot] = index;
            distinct_texts.push_back(text);
            distinct_hashes.push_back(hash);
        }
        distinct_of_row[size_t(row)] = index;
    }
    std::vector<qint32>().swap(slots_of_texts);

    // Values of one kind (the usual case by held type too) compare without
    // looking at kinds.
    if (!by_field_type &&
        std::adjacent_find(m_kinds.begin(), m_kinds.end(), std::not_equal_to<quint8>()) == m_kinds.end())
    {
        m_kind = m_kinds.empty() ? TEXT : KIND(m_kinds.front());
        std::vector<quint8>().swap(m_kinds);
    }

    // Each distinct text is placed once.
    if (texts)
    {
        std::vector<QCollatorSortKey> keys;
        keys.reserve(size_t(distinct_texts.size()));
        for (const QString& text : distinct_texts)
            keys.push_back(m_collator->sortKey(text));
        std::vector<int> order(keys.size());
        std::iota(order.begin(), order.end(), 0);
        std::sort(order.begin(), order.end(),
                  [&](int a, int b) { return keys[size_t(a)].compare(keys[size_t(b)]) < 0; });
        std::vector<qint32> rank_of(keys.size());
        qint32 rank = 0;
        for (size_t i = 0; i < order.size(); ++i)
        {
            if (i > 0 && keys[size_t(order[i - 1])].compare(keys[size_t(order[i])]) < 0)
                ++rank;
            rank_of[size_t(order[i])] = rank;
        }
        m_ranks.resize(size_t(m_rows));
        for (int row = 0; row < m_rows; ++row)
            m_ranks[size_t(row)] = rank_of[size_t(distinct_of_row[size_t(row)])];
    }
    m_made = true;
}

VELD_SORT_KEYS::KEY VELD_SORT_KEYS::key_of(int row, const VALUES& values)
{
    if (is_made(row))
    {
        KEY key;
        key.kind = kind_of_made(row);
        if (!m_numbers.empty())
            key.number = m_numbers[size_t(row)];
        return key;
    }
    // A row changed or added since the keys were made.
    auto found = m_changed.constFind(row);
    if (found == m_changed.constEnd())
        found = m_changed.insert(row, make_key(values.value(row)));
    return found.value();
}

bool VELD_SORT_KEYS::keys_less(const KEY& a, const KEY& b, int left, int right, const VALUES& values)
{
    if (a.kind == b.kind)
    {
        switch (a.kind)
        {
        case SIGNED:
            return a.number.signed_number < b.number.signed_number;
        case UNSIGNED:
            return a.number.unsigned_number < b.number.unsigned_number;
        case REAL:
            return a.number.real < b.number.real;
        default:
            break;
        }
    }
    if (is_made(left) && is_made(right))
        return m_ranks[size_t(left)] < m_ranks[size_t(right)];
    return m_collator->compare(values.value(left).toString(), values.value(right).toString()) < 0;
}

bool VELD_SORT_KEYS::less(int left, int right, const VALUES& values)
{
    if (!m_made)
        make_all(values);
    // Two rows with keys of one kind: the common case, and the fast one.
    if (m_kinds.empty() && is_made(left) && is_made(right))
    {
        switch (m_kind)
        {
        case SIGNED:
            return m_numbers[size_t(left)].signed_number < m_numbers[size_t(right)].signed_number;
        case UNSIGNED:
            return m_numbers[size_t(left)].unsigned_number < m_numbers[size_t(right)].unsigned_number;
        case REAL:
            return m_numbers[size_t(left)].real < m_numbers[size_t(right)].real;
        default:
            return m_ranks[size_t(left)] < m_ranks[size_t(right)];
        }
    }
    return keys_less(key_of(left, values), key_of(right, values), left, right, values);
}
