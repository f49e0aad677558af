#include "kor_field_data_map.h"

#include "kor_field_data.h"
#include "kor_field_schema.h"

#include <algorithm>
#include <cstring>

namespace
{
const QString& name_of(const KOR_FIELD_DATA* field)
{
    return field->field_schema()->field_name();
}
} // namespace

CASE_INSENSITIVE_COMPARE_STRING KOR_FIELD_DATA_MAP::const_iterator::key() const
{
    return CASE_INSENSITIVE_COMPARE_STRING(name_of(*m_item));
}

KOR_FIELD_DATA_MAP::~KOR_FIELD_DATA_MAP()
{
    release();
}

void KOR_FIELD_DATA_MAP::release()
{
    if (m_capacity > 0)
        delete[] m_items;
    m_items = nullptr;
    m_size = 0;
    m_capacity = 0;
}

int KOR_FIELD_DATA_MAP::lower_bound(const QString& name) const
{
    int low = 0;
    int high = int(m_size);
    while (low < high)
    {
        const int middle = (low + high) / 2;
        if (CASE_INSENSITIVE_COMPARE_STRING::compare(name_of(m_items[middle]), name) < 0)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

KOR_FIELD_DATA_MAP::const_iterator KOR_FIELD_DATA_MAP::find(const CASE_INSENSITIVE_COMPARE_STRING& name) const
{
    const int index = lower_bound(name.string());
    if (index < int(m_size) &&
        CASE_INSENSITIVE_COMPARE_STRING::compare(name_of(m_items[index]), name.string()) == 0)
        return const_iterator(m_items + index);
    return end();
}

KOR_FIELD_DATA* KOR_FIELD_DATA_MAP::value(const CASE_INSENSITIVE_COMPARE_STRING& name,
                                          KOR_FIELD_DATA* fallback) const
{
    const const_iterator it = find(name);
    return it == end() ? fallback : it.value();
}

QList<CASE_INSENSITIVE_COMPARE_STRING> KOR_FIELD_DATA_MAP::keys() const
{
    QList<CASE_INSENSITIVE_COMPARE_STRING> result;
    result.reserve(int(m_size));
    for (quint32 i = 0; i < m_size; ++i)
        result.append(CASE_INSENSITIVE_COMPARE_STRING(name_of(m_items[i])));
    return result;
}

QList<KOR_FIELD_DATA*> KOR_FIELD_DATA_MAP::values() const
{
    QList<KOR_FIELD_DATA*> result;
    result.reserve(int(m_size));
    for (quint32 i = 0; i < m_size; ++i)
        result.append(m_items[i]);
    return result;
}

void KOR_FIELD_DATA_MAP::reserve(quint32 capacity)
{
    if (capacity <= m_capacity)
        return;
    KOR_FIELD_DATA** items = new KOR_FIELD_DATA*[capacity];
    if (m_size > 0)
        std::memcpy(items, m_items, m_size * sizeof(KOR_FIELD_DATA*));
    if (m_capacity > 0)
        delete[] m_items;
    m_items = items;
    m_capacity = capacity;
}

KOR_FIELD_DATA* KOR_FIELD_DATA_MAP::insert(KOR_FIELD_DATA* field)
{
    const QString& name = name_of(field);
    const int index = lower_bound(name);
    if (index < int(m_size) && CASE_INSENSITIVE_COMPARE_STRING::compare(name_of(m_items[index]), name) == 0)
    {
        KOR_FIELD_DATA* replaced = m_items[index];
        m_items[index] = field;
        return replaced;
    }
    // Storage borrowed from a pool has no capacity to spare: move it out first.
    if (m_size + 1 > m_capacity)
        reserve(qMax<quint32>(4, qMax(m_size + 1, m_capacity * 2)));
    std::memmove(m_items + index + 1, m_items + index, (m_size - quint32(index)) * sizeof(KOR_FIELD_DATA*));
    m_items[index] = field;
    ++m_size;
    return nullptr;
}

KOR_FIELD_DATA* KOR_FIELD_DATA_MAP::take(const CASE_INSENSITIVE_COMPARE_STRING& name)
{
    const int index = lower_bound(name.string());
    if (index >= int(m_size) ||
        CASE_INSENSITIVE_COMPARE_STRING::compare(name_of(m_items[index]), name.string()) != 0)
        return nullptr;
    KOR_FIELD_DATA* field = m_items[index];
    std::memmove(m_items + index, m_items + index + 1,
                 (m_size - quint32(index) - 1) * sizeof(KOR_FIELD_DATA*));
    --m_size;
    return field;
}

void KOR_FIELD_DATA_MAP::resort()
{
    std::stable_sort(m_items, m_items + m_size,
                     [](const KOR_FIELD_DATA* a, const KOR_FIELD_DATA* b)
                     { return CASE_INSENSITIVE_COMPARE_STRING::compare(name_of(a), name_of(b)) < 0; });
}
