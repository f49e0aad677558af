#pragma once

#include "kor_record_map.h"
#include "kor_record_uuid_index.h"

#include <QHash>
#include <QString>
#include <QUuid>

#include <memory>
#include <vector>

class KOR_RECORD_DATA;
class KOR_TABLE_SCHEMA;
class KOR_MEMORY_POOL;

// The records of one table: ordered by key (`records()`, what the Parts
// iterate) and indexed by uuid (`records_by_uuid()`). The table owns its
// records.
//
// Tables returned by the query interface are const: they change only through
// the interface's operations. The application builds tables of its own (for
// example to gather copies of records) with add_record / take_record.
class KOR_TABLE_DATA
{
public:
    explicit KOR_TABLE_DATA(const KOR_TABLE_SCHEMA* table_schema);
    // A deep copy: every record copied with the same uuid.
    KOR_TABLE_DATA(const KOR_TABLE_DATA& other);
    KOR_TABLE_DATA& operator=(const KOR_TABLE_DATA& other);
    KOR_TABLE_DATA(KOR_TABLE_DATA&& other) noexcept;
    KOR_TABLE_DATA& operator=(KOR_TABLE_DATA&& other) noexcept;
    virtual ~KOR_TABLE_DATA();

    const KOR_TABLE_SCHEMA* table_schema() const { return m_table_schema; }
    QString table_name() const;

    // Key to record, in key order.
    const KOR_RECORD_MAP& records() const { return m_records; }
    // Uuid to record.
    const KOR_RECORD_UUID_INDEX& records_by_uuid() const { return m_records_by_uuid; }
    int record_count() const { return m_records.size(); }
    KOR_RECORD_DATA* record_by_key(const QString& key) const { return m_records.value(key); }
    KOR_RECORD_DATA* record_by_uuid(const QUuid& uuid) const { return m_records_by_uuid.value(uuid); }

    // One more than the largest value of the named autonumber (or integer)
    // field over all records, 1 for an empty table; records added in an open
    // transaction count. 0 when the table has no such field.
    int next_autonumber(const QString& field_name) const;

    // Takes ownership of a record and files it under its key() and uuid. A
    // null uuid is replaced by a fresh one. False (ownership not taken, the
    // reason in `error`) when the key or the uuid is taken, or the record
    // belongs to another table.
    bool add_record(KOR_RECORD_DATA* record, QString* error = nullptr);
    // Takes the record out; ownership passes to the caller. Null when unknown.
    KOR_RECORD_DATA* take_record(const QUuid& uuid);
    // Takes the record out and deletes it; false when unknown.
    bool remove_record(const QUuid& uuid);
    // Deletes every record.
    void clear();

    // Moves whenever records are added, removed or re-keyed, or a value
    // changes through the engine; never the same for two table objects, so
    // whatever a reader derived from a table at one generation cannot be
    // taken for another table's that reused its address.
    quint64 generation() const { return m_generation; }
    // The global search's index of the records, kept with the table (and
    // freed with it) between searches; dropped at every change. Readers on
    // several threads may fetch and set it while none changes the table.
    std::shared_ptr<const void> search_index() const;
    void set_search_index(std::shared_ptr<const void> index) const;

private:
    friend class KOR_ENGINE_ACCESS;
    void destroy_records();
    void copy_records_from(const KOR_TABLE_DATA& other);
    void changed();

    const KOR_TABLE_SCHEMA* m_table_schema;
    KOR_RECORD_MAP m_records;
    KOR_RECORD_UUID_INDEX m_records_by_uuid;
    // Where records loaded from a file keep their fields.
    KOR_MEMORY_POOL* m_pool = nullptr;
    // Records the engine took out of the table while someone may still hold
    // them; freed with the table.
    std::vector<KOR_RECORD_DATA*> m_retired;
    quint64 m_generation;
    mutable std::shared_ptr<const void> m_search_index;
    mutable QHash<QString, QPair<quint64, int>> m_autonumber_cache;
};
