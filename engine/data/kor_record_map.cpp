#include "kor_record_map.h"

#include <algorithm>

namespace
{
bool entry_less(const KOR_RECORD_MAP::ENTRY& entry, const QString& key)
{
    return entry.key < key;
}
bool key_less(const QString& key, const KOR_RECORD_MAP::ENTRY& entry)
{
    return key < entry.key;
}
} // namespace

KOR_RECORD_MAP::const_iterator KOR_RECORD_MAP::lowerBound(const QString& key) const
{
    const auto it = std::lower_bound(m_entries.begin(), m_entries.end(), key, entry_less);
    return const_iterator(m_entries.data() + (it - m_entries.begin()));
}

KOR_RECORD_MAP::const_iterator KOR_RECORD_MAP::upperBound(const QString& key) const
{
    const auto it = std::upper_bound(m_entries.begin(), m_entries.end(), key, key_less);
    return const_iterator(m_entries.data() + (it - m_entries.begin()));
}

int KOR_RECORD_MAP::index_of(const QString& key) const
{
    const auto it = std::lower_bound(m_entries.begin(), m_entries.end(), key, entry_less);
    if (it == m_entries.end() || it->key != key)
        return -1;
    return int(it - m_entries.begin());
}

KOR_RECORD_MAP::const_iterator KOR_RECORD_MAP::find(const QString& key) const
{
    const int index = index_of(key);
    return index < 0 ? end() : const_iterator(m_entries.data() + index);
}

KOR_RECORD_DATA* KOR_RECORD_MAP::value(const QString& key, KOR_RECORD_DATA* fallback) const
{
    const int index = index_of(key);
    return index < 0 ? fallback : m_entries[size_t(index)].record;
}

QList<QString> KOR_RECORD_MAP::keys() const
{
    QList<QString> result;
    result.reserve(size());
    for (const ENTRY& entry : m_entries)
        result.append(entry.key);
    return result;
}

QList<KOR_RECORD_DATA*> KOR_RECORD_MAP::values() const
{
    QList<KOR_RECORD_DATA*> result;
    result.reserve(size());
    for (const ENTRY& entry : m_entries)
        result.append(entry.record);
    return result;
}

bool KOR_RECORD_MAP::insert(const QString& key, KOR_RECORD_DATA* record)
{
    const auto it = std::lower_bound(m_entries.begin(), m_entries.end(), key, entry_less);
    if (it != m_entries.end() && it->key == key)
        return false;
    m_entries.insert(it, ENTRY{key, record});
    return true;
}

bool KOR_RECORD_MAP::remove(const QString& key)
{
    const auto it = std::lower_bound(m_entries.begin(), m_entries.end(), key, entry_less);
    if (it == m_entries.end() || it->key != key)
        return false;
    m_entries.erase(it);
    return true;
}
