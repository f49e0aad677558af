#pragma once

// The engine's own access to the insides of the data classes: pooled
// construction for the table reader, and the in-place changes that keep
// record pointers valid across edits and failed transactions. Not for use
// outside engine/.

#include "kor_field_data.h"
#include "kor_memory_pool.h"
#include "kor_record_data.h"
#include "kor_table_data.h"

#include <algorithm>
#include <new>
#include <vector>

class KOR_ENGINE_ACCESS
{
public:
    static KOR_MEMORY_POOL& pool(KOR_TABLE_DATA& table)
    {
        if (!table.m_pool)
            table.m_pool = new KOR_MEMORY_POOL;
        return *table.m_pool;
    }

    static KOR_FIELD_DATA* new_pooled_field(KOR_MEMORY_POOL& pool, const KOR_FIELD_SCHEMA* schema)
    {
        void* storage = pool.allocate(sizeof(KOR_FIELD_DATA), alignof(KOR_FIELD_DATA));
        KOR_FIELD_DATA* field = new (storage) KOR_FIELD_DATA(schema);
        field->m_approval_and_flags |= 1;
        return field;
    }

    static KOR_RECORD_DATA* new_pooled_record(KOR_MEMORY_POOL& pool, const KOR_TABLE_SCHEMA* schema,
                                              KOR_TABLE_DATA* table, const QUuid& uuid)
    {
        void* storage = pool.allocate(sizeof(KOR_RECORD_DATA), alignof(KOR_RECORD_DATA));
        KOR_RECORD_DATA* record = new (storage) KOR_RECORD_DATA(schema, table, uuid);
        record->m_flags |= 1;
        return record;
    }

    // Gives a record the fields in `items` (already in name order), whose
    // storage lives in the pool.
    static void set_pooled_fields(KOR_RECORD_DATA* record, KOR_FIELD_DATA** items, quint32 count)
    {
        record->m_fields.release();
        record->m_fields.m_items = items;
        record->m_fields.m_size = count;
        record->m_fields.m_capacity = 0;
    }

    // Files records sorted by key (keys unique) into an empty table; the table
    // owns them afterwards. Answers the first record whose uuid was taken
    // already (left out of the uuid index), or null.
    static const KOR_RECORD_DATA* adopt_sorted_records(KOR_TABLE_DATA& table,
                                                       std::vector<KOR_RECORD_MAP::ENTRY>&& entries)
    {
        const KOR_RECORD_DATA* duplicate = nullptr;
        table.m_records.m_entries = std::move(entries);
        table.m_records_by_uuid.reserve(quint32(table.m_records.m_entries.size()));
        for (const KOR_RECORD_MAP::ENTRY& entry : table.m_records.m_entries)
        {
            entry.record->m_in_table = true;
            entry.record->m_table_data = &table;
            if (!table.m_records_by_uuid.insert(entry.record) && !duplicate)
                duplicate = entry.record;
        }
        table.changed();
        return duplicate;
    }

    static bool uuid_taken(const KOR_TABLE_DATA& table, const QUuid& uuid)
    {
        return table.m_records_by_uuid.contains(uuid);
    }

    // Files a record the engine made under a key; false when key or uuid is taken.
    static bool insert_record(KOR_TABLE_DATA& table, KOR_RECORD_DATA* record, const QString& key)
    {
        if (table.m_records.contains(key) || table.m_records_by_uuid.contains(record->uuid()))
            return false;
        table.m_records.insert(key, record);
        table.m_records_by_uuid.insert(record);
        record->m_table_data = &table;
        record->m_in_table = true;
        table.changed();
        return true;
    }

    // Takes a record out of the maps and keeps it alive with the table:
    // whoever holds it may still read it.
    static void retire_record(KOR_TABLE_DATA& table, KOR_RECORD_DATA* record, const QString& key)
    {
        table.m_records.remove(key);
        table.m_records_by_uuid.remove(record->uuid());
        record->m_in_table = false;
        table.m_retired.push_back(record);
        table.changed();
    }

    // Puts a retired record back under a key (undoing a removal).
    static bool restore_record(KOR_TABLE_DATA& table, KOR_RECORD_DATA* record, const QString& key)
    {
        for (auto it = table.m_retired.begin(); it != table.m_retired.end(); ++it)
        {
            if (*it == record)
            {
                table.m_retired.erase(it);
                break;
            }
        }
        return insert_record(table, record, key);
    }

    // Moves a record from one key to another; false (nothing changed) when
    // the new key is taken by another record.
    static bool rekey_record(KOR_TABLE_DATA& table, KOR_RECORD_DATA* record, const QString& old_key,
                             const QString& new_key)
    {
        if (old_key == new_key)
            return true;
        if (table.m_records.contains(new_key))
            return false;
        table.m_records.remove(old_key);
        table.m_records.insert(new_key, record);
        table.changed();
        return true;
    }

    static void mark_changed(KOR_TABLE_DATA& table) { table.changed(); }

    // Files every record under its key again after key fields changed; false
    // (and the map unchanged) when two records would share a key or one
    // would have none.
    static bool rebuild_keys(KOR_TABLE_DATA& table, QString& error)
    {
        std::vector<KOR_RECORD_MAP::ENTRY> entries;
        entries.reserve(table.m_records.m_entries.size());
        for (const KOR_RECORD_MAP::ENTRY& entry : table.m_records.m_entries)
            entries.push_back(KOR_RECORD_MAP::ENTRY{entry.record->key(), entry.record});
        std::sort(
            entries.begin(), entries.end(),
            [](const KOR_RECORD_MAP::ENTRY& a, const KOR_RECORD_MAP::ENTRY& b) { return a.key < b.key; });
        for (size_t i = 0; i < entries.size(); ++i)
        {
            if (entries[i].key.isEmpty())
            {
                error =
                    QStringLiteral("A record of table '%1' would have an empty key").arg(table.table_name());
                return false;
            }
            if (i > 0 && entries[i].key == entries[i - 1].key)
            {
                error = QStringLiteral("Two records of table '%1' would have the key '%2'")
                            .arg(table.table_name(), entries[i].key);
                return false;
            }
        }
        table.m_records.m_entries = std::move(entries);
        table.changed();
        return true;
    }

    static KOR_FIELD_DATA* take_field(KOR_RECORD_DATA* record, const QString& name)
    {
        return record->m_fields.take(name);
    }
    // Puts a field into a record; returns a replaced field, which the caller
    // now owns.
    static KOR_FIELD_DATA* put_field(KOR_RECORD_DATA* record, KOR_FIELD_DATA* field)
    {
        return record->m_fields.insert(field);
    }
    static void resort_fields(KOR_RECORD_DATA* record) { record->m_fields.resort(); }
    static void destroy_field(KOR_FIELD_DATA* field)
    {
        if (field->is_pooled())
            field->~KOR_FIELD_DATA();
        else
            delete field;
    }
    static bool is_pooled(const KOR_RECORD_DATA* record) { return record->is_pooled(); }
    static void set_table_schema(KOR_RECORD_DATA* record, const KOR_TABLE_SCHEMA* schema)
    {
        record->m_table_schema = schema;
    }
};
