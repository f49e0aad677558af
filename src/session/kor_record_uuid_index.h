#pragma once

#include <QList>

#include <QUuid>
#include <QtGlobal>
#include <cstddef>
#include <iterator>

class KOR_RECORD_DATA;

// A table's records by uuid: a compact hash that reads like a const
// QHash<QUuid, KOR_RECORD_DATA*>. Iteration order is that of the hash: sort
// before showing it to anyone.
class KOR_RECORD_UUID_INDEX
{
public:
    class const_iterator
    {
    public:
        // Values are handed out as pointers, so the iterator reads like an
        // input iterator for the standard algorithms.
        using iterator_category = std::input_iterator_tag;
        using value_type = KOR_RECORD_DATA*;
        using difference_type = std::ptrdiff_t;
        using pointer = const value_type*;
        using reference = value_type;

        const_iterator() = default;
        const_iterator(KOR_RECORD_DATA* const* slot, KOR_RECORD_DATA* const* end) : m_slot(slot), m_end(end)
        {
            skip_empty();
        }
        const QUuid& key() const;
        KOR_RECORD_DATA* value() const { return *m_slot; }
        KOR_RECORD_DATA* operator*() const { return *m_slot; }
        const_iterator& operator++()
        {
            ++m_slot;
            skip_empty();
            return *this;
        }
        const_iterator operator++(int)
        {
            const_iterator old = *this;
            ++*this;
            return old;
        }
        bool operator==(const const_iterator& other) const { return m_slot == other.m_slot; }
        bool operator!=(const const_iterator& other) const { return m_slot != other.m_slot; }

    private:
        void skip_empty()
        {
            while (m_slot != m_end && *m_slot == nullptr)
                ++m_slot;
        }
        KOR_RECORD_DATA* const* m_slot = nullptr;
        KOR_RECORD_DATA* const* m_end = nullptr;
    };
    using iterator = const_iterator;

    KOR_RECORD_UUID_INDEX() = default;
    KOR_RECORD_UUID_INDEX(const KOR_RECORD_UUID_INDEX&) = delete;
    KOR_RECORD_UUID_INDEX& operator=(const KOR_RECORD_UUID_INDEX&) = delete;
    ~KOR_RECORD_UUID_INDEX();

    int size() const { return int(m_size); }
    int count() const { return int(m_size); }
    bool isEmpty() const { return m_size == 0; }
    bool empty() const { return m_size == 0; }

    const_iterator begin() const { return const_iterator(m_slots, m_slots + m_capacity); }
    const_iterator end() const { return const_iterator(m_slots + m_capacity, m_slots + m_capacity); }
    const_iterator cbegin() const { return begin(); }
    const_iterator cend() const { return end(); }
    const_iterator constBegin() const { return begin(); }
    const_iterator constEnd() const { return end(); }

    const_iterator find(const QUuid& uuid) const;
    const_iterator constFind(const QUuid& uuid) const { return find(uuid); }
    bool contains(const QUuid& uuid) const { return find(uuid) != end(); }
    KOR_RECORD_DATA* value(const QUuid& uuid, KOR_RECORD_DATA* fallback = nullptr) const;
    KOR_RECORD_DATA* operator[](const QUuid& uuid) const { return value(uuid); }

    QList<QUuid> keys() const;
    QList<KOR_RECORD_DATA*> values() const;

private:
    friend class KOR_TABLE_DATA;
    friend class KOR_ENGINE_ACCESS;
    // False when a record of that uuid is present already.
    bool insert(KOR_RECORD_DATA* record);
    bool remove(const QUuid& uuid);
    void clear();
    void reserve(quint32 count);
    quint32 slot_of(const QUuid& uuid) const;

    KOR_RECORD_DATA** m_slots = nullptr;
    quint32 m_capacity = 0; // a power of two, or 0
    quint32 m_size = 0;
};
