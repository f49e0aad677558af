#include "kor_record_uuid_index.h"

#include "kor_record_data.h"

#include <cstring>

namespace
{
quint64 mix(quint64 value)
{
    value ^= value >> 33;
    value *= 0xff51afd7ed558ccdULL;
    value ^= value >> 33;
    value *= 0xc4ceb9fe1a85ec53ULL;
    value ^= value >> 33;
    return value;
}

quint64 hash_of(const QUuid& uuid)
{
    quint64 parts[2];
    static_assert(sizeof(QUuid) == sizeof(parts), "QUuid is 16 bytes");
    std::memcpy(parts, &uuid, sizeof parts);
    return mix(parts[0] ^ mix(parts[1]));
}
} // namespace

const QUuid& KOR_RECORD_UUID_INDEX::const_iterator::key() const
{
    return (*m_slot)->uuid();
}

KOR_RECORD_UUID_INDEX::~KOR_RECORD_UUID_INDEX()
{
    delete[] m_slots;
}

quint32 KOR_RECORD_UUID_INDEX::slot_of(const QUuid& uuid) const
{
    const quint32 mask = m_capacity - 1;
    quint32 slot = quint32(hash_of(uuid)) & mask;
    while (m_slots[slot] && m_slots[slot]->uuid() != uuid)
        slot = (slot + 1) & mask;
    return slot;
}

KOR_RECORD_UUID_INDEX::const_iterator KOR_RECORD_UUID_INDEX::find(const QUuid& uuid) const
{
    if (m_size == 0)
        return end();
    const quint32 slot = slot_of(uuid);
    if (!m_slots[slot])
        return end();
    return const_iterator(m_slots + slot, m_slots + m_capacity);
}

KOR_RECORD_DATA* KOR_RECORD_UUID_INDEX::value(const QUuid& uuid, KOR_RECORD_DATA* fallback) const
{
    if (m_size == 0)
        return fallback;
    KOR_RECORD_DATA* record = m_slots[slot_of(uuid)];
    return record ? record : fallback;
}

QList<QUuid> KOR_RECORD_UUID_INDEX::keys() const
{
    QList<QUuid> result;
    result.reserve(int(m_size));
    for (auto it = begin(); it != end(); ++it)
        result.append(it.key());
    return result;
}

QList<KOR_RECORD_DATA*> KOR_RECORD_UUID_INDEX::values() const
{
    QList<KOR_RECORD_DATA*> result;
    result.reserve(int(m_size));
    for (KOR_RECORD_DATA* record : *this)
        result.append(record);
    return result;
}

void KOR_RECORD_UUID_INDEX::reserve(quint32 count)
{
    quint32 capacity = 16;
    while (capacity < count * 2)
        capacity *= 2;
    if (capacity <= m_capacity)
        return;
    KOR_RECORD_DATA** old_slots = m_slots;
    const quint32 old_capacity = m_capacity;
    m_slots = new KOR_RECORD_DATA*[capacity]();
    m_capacity = capacity;
    for (quint32 i = 0; i < old_capacity; ++i)
        if (old_slots[i])
            m_slots[slot_of(old_slots[i]->uuid())] = old_slots[i];
    delete[] old_slots;
}

bool KOR_RECORD_UUID_INDEX::insert(KOR_RECORD_DATA* record)
{
    if ((m_size + 1) * 2 > m_capacity)
        reserve(m_size + 1);
    const quint32 slot = slot_of(record->uuid());
    if (m_slots[slot])
        return false;
    m_slots[slot] = record;
    ++m_size;
    return true;
}

bool KOR_RECORD_UUID_INDEX::remove(const QUuid& uuid)
{
    if (m_size == 0)
        return false;
    const quint32 mask = m_capacity - 1;
    quint32 hole = slot_of(uuid);
    if (!m_slots[hole])
        return false;
    m_slots[hole] = nullptr;
    --m_size;
    // Linear probing without tombstones: pull later members of the probe run
    // back over the hole when their home slot allows it.
    quint32 next = (hole + 1) & mask;
    while (m_slots[next])
    {
        const quint32 home = quint32(hash_of(m_slots[next]->uuid())) & mask;
        const bool home_between =
            hole <= next ? (hole < home && home <= next) : (hole < home || home <= next);
        if (!home_between)
        {
            m_slots[hole] = m_slots[next];
            m_slots[next] = nullptr;
            hole = next;
        }
        next = (next + 1) & mask;
    }
    return true;
}

void KOR_RECORD_UUID_INDEX::clear()
{
    delete[] m_slots;
    m_slots = nullptr;
    m_capacity = 0;
    m_size = 0;
}
