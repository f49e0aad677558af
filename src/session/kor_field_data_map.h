#pragma once

#include "case_insensitive_compare_string.h"

#include <QList>

#include <QtGlobal>
#include <cstddef>
#include <iterator>

class KOR_FIELD_DATA;

// A record's fields by name: a compact map from CASE_INSENSITIVE_COMPARE_STRING
// to KOR_FIELD_DATA*, kept as a sorted array of pointers (the name comes from
// each field's schema). It reads like a const QMap:
//
//   for (auto it = map.begin(); it != map.end(); ++it)
//       use(it.key().string(), it.value());
//   for (KOR_FIELD_DATA* field : map) ...
//   KOR_FIELD_DATA* f = map.value("Unit_Name");   // null when absent
//
// Iteration is in field name order, ignoring case. operator[] never inserts.
// The record owns the fields; they are added and removed through
// KOR_RECORD_DATA. The pointed-to fields stay writable.
class KOR_FIELD_DATA_MAP
{
public:
    class const_iterator
    {
    public:
        // Values are handed out as pointers, so the iterator reads like an
        // input iterator for the standard algorithms.
        using iterator_category = std::input_iterator_tag;
        using value_type = KOR_FIELD_DATA*;
        using difference_type = std::ptrdiff_t;
        using pointer = const value_type*;
        using reference = value_type;

        const_iterator() = default;
        explicit const_iterator(KOR_FIELD_DATA* const* item) : m_item(item) {}
        CASE_INSENSITIVE_COMPARE_STRING key() const;
        KOR_FIELD_DATA* value() const { return *m_item; }
        KOR_FIELD_DATA* operator*() const { return *m_item; }
        const_iterator& operator++()
        {
            ++m_item;
            return *this;
        }
        const_iterator operator++(int)
        {
            const_iterator old = *this;
            ++m_item;
            return old;
        }
        const_iterator& operator--()
        {
            --m_item;
            return *this;
        }
        const_iterator operator--(int)
        {
            const_iterator old = *this;
            --m_item;
            return old;
        }
        bool operator==(const const_iterator& other) const { return m_item == other.m_item; }
        bool operator!=(const const_iterator& other) const { return m_item != other.m_item; }

    private:
        KOR_FIELD_DATA* const* m_item = nullptr;
    };
    using iterator = const_iterator;

    KOR_FIELD_DATA_MAP() = default;
    KOR_FIELD_DATA_MAP(const KOR_FIELD_DATA_MAP&) = delete;
    KOR_FIELD_DATA_MAP& operator=(const KOR_FIELD_DATA_MAP&) = delete;
    ~KOR_FIELD_DATA_MAP();

    int size() const { return int(m_size); }
    int count() const { return int(m_size); }
    bool isEmpty() const { return m_size == 0; }
    bool empty() const { return m_size == 0; }

    const_iterator begin() const { return const_iterator(m_items); }
    const_iterator end() const { return const_iterator(m_items + m_size); }
    const_iterator cbegin() const { return begin(); }
    const_iterator cend() const { return end(); }
    const_iterator constBegin() const { return begin(); }
    const_iterator constEnd() const { return end(); }

    const_iterator find(const CASE_INSENSITIVE_COMPARE_STRING& name) const;
    const_iterator constFind(const CASE_INSENSITIVE_COMPARE_STRING& name) const { return find(name); }
    bool contains(const CASE_INSENSITIVE_COMPARE_STRING& name) const { return find(name) != end(); }
    KOR_FIELD_DATA* value(const CASE_INSENSITIVE_COMPARE_STRING& name,
                          KOR_FIELD_DATA* fallback = nullptr) const;
    KOR_FIELD_DATA* operator[](const CASE_INSENSITIVE_COMPARE_STRING& name) const { return value(name); }
    // The i-th field in name order.
    KOR_FIELD_DATA* at(int index) const { return m_items[index]; }

    QList<CASE_INSENSITIVE_COMPARE_STRING> keys() const;
    QList<KOR_FIELD_DATA*> values() const;

private:
    friend class KOR_RECORD_DATA;
    friend class KOR_ENGINE_ACCESS;
    // Inserts in name order; a field of the same name is replaced and returned.
    KOR_FIELD_DATA* insert(KOR_FIELD_DATA* field);
    // Takes the field of that name out; null when absent.
    KOR_FIELD_DATA* take(const CASE_INSENSITIVE_COMPARE_STRING& name);
    // Restores name order after a field was renamed.
    void resort();
    // Empties the map without touching the fields.
    void release();
    int lower_bound(const QString& name) const;
    void reserve(quint32 capacity);

    KOR_FIELD_DATA** m_items = nullptr;
    quint32 m_size = 0;
    // Zero while m_items points at storage borrowed from a table's memory pool.
    quint32 m_capacity = 0;
};
