#pragma once

#include <QList>

#include <QString>
#include <cstddef>
#include <iterator>

#include <vector>

class KOR_RECORD_DATA;

// A table's records by key, in key order (QString order): a sorted array that
// reads like a const QMap<QString, KOR_RECORD_DATA*>:
//
//   for (auto it = map.begin(); it != map.end(); ++it)
//       use(it.key(), it.value());
//   for (KOR_RECORD_DATA* record : map) ...
//   KOR_RECORD_DATA* r = map.value("key");   // null when absent
//
// The table changes it; the records stay writable.
class KOR_RECORD_MAP
{
public:
    struct ENTRY
    {
        QString key;
        KOR_RECORD_DATA* record;
    };

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
        explicit const_iterator(const ENTRY* entry) : m_entry(entry) {}
        const QString& key() const { return m_entry->key; }
        KOR_RECORD_DATA* value() const { return m_entry->record; }
        KOR_RECORD_DATA* operator*() const { return m_entry->record; }
        const_iterator& operator++()
        {
            ++m_entry;
            return *this;
        }
        const_iterator operator++(int)
        {
            const_iterator old = *this;
            ++m_entry;
            return old;
        }
        const_iterator& operator--()
        {
            --m_entry;
            return *this;
        }
        const_iterator operator--(int)
        {
            const_iterator old = *this;
            --m_entry;
            return old;
        }
        const_iterator operator+(int n) const { return const_iterator(m_entry + n); }
        const_iterator operator-(int n) const { return const_iterator(m_entry - n); }
        bool operator==(const const_iterator& other) const { return m_entry == other.m_entry; }
        bool operator!=(const const_iterator& other) const { return m_entry != other.m_entry; }

    private:
        const ENTRY* m_entry = nullptr;
    };
    using iterator = const_iterator;

    int size() const { return int(m_entries.size()); }
    int count() const { return size(); }
    bool isEmpty() const { return m_entries.empty(); }
    bool empty() const { return m_entries.empty(); }

    const_iterator begin() const { return const_iterator(m_entries.data()); }
    const_iterator end() const { return const_iterator(m_entries.data() + m_entries.size()); }
    const_iterator cbegin() const { return begin(); }
    const_iterator cend() const { return end(); }
    const_iterator constBegin() const { return begin(); }
    const_iterator constEnd() const { return end(); }

    const_iterator find(const QString& key) const;
    const_iterator constFind(const QString& key) const { return find(key); }
    // The first entry whose key is not less than the given one.
    const_iterator lowerBound(const QString& key) const;
    const_iterator upperBound(const QString& key) const;
    bool contains(const QString& key) const { return find(key) != end(); }
    KOR_RECORD_DATA* value(const QString& key, KOR_RECORD_DATA* fallback = nullptr) const;
    KOR_RECORD_DATA* operator[](const QString& key) const { return value(key); }
    // The i-th record in key order.
    KOR_RECORD_DATA* at(int index) const { return m_entries[size_t(index)].record; }
    const QString& key_at(int index) const { return m_entries[size_t(index)].key; }
    // The position of a key, or -1.
    int index_of(const QString& key) const;

    QList<QString> keys() const;
    QList<KOR_RECORD_DATA*> values() const;

private:
    friend class KOR_TABLE_DATA;
    friend class KOR_ENGINE_ACCESS;
    bool insert(const QString& key, KOR_RECORD_DATA* record);
    bool remove(const QString& key);
    void clear() { m_entries.clear(); }

    std::vector<ENTRY> m_entries;
};
