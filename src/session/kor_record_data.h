#pragma once

#include "kor_field_data_map.h"
#include "kor_field_type.h"

#include <QDateTime>
#include <QString>
#include <QUuid>
#include <QVariant>

class KOR_FIELD_DATA;
class KOR_FIELD_SCHEMA;
class KOR_TABLE_DATA;
class KOR_TABLE_SCHEMA;

// One record of a table: its uuid, its fields and when it was last changed.
//
// Read directly: `table_schema()`, `uuid()`, `field_map()` (field name to
// KOR_FIELD_DATA*, ignoring case). A record owns its fields.
//
// Records returned by the query interface belong to it and stay valid until
// the next disconnect or schema change, also across edit_record_data and
// across a transaction that fails. The application changes them only through
// the query interface; it makes its own records with the constructors below
// (a copy with a null table is a detached record for editing).
class KOR_RECORD_DATA
{
public:
    KOR_RECORD_DATA(const KOR_TABLE_SCHEMA* table_schema, KOR_TABLE_DATA* table_data, const QUuid& uuid);
    // Copies every field with its approval data. `new_uuid` gives the copy a
    // fresh uuid instead of the original's. The copy belongs to no table's
    // maps: `table_data` is only noted (add it with KOR_TABLE_DATA::add_record).
    KOR_RECORD_DATA(const KOR_RECORD_DATA& other, KOR_TABLE_DATA* table_data = nullptr,
                    bool new_uuid = false);
    KOR_RECORD_DATA& operator=(const KOR_RECORD_DATA&) = delete;
    virtual ~KOR_RECORD_DATA();

    // The key fields' texts joined with no separator, in primary_key_fields
    // order. A table without key fields keys its records by uuid text.
    QString key() const;
    const QUuid& uuid() const { return m_uuid; }
    // Only for a record that is not in a table; false otherwise.
    bool set_uuid(const QUuid& uuid);
    const KOR_TABLE_SCHEMA* table_schema() const { return m_table_schema; }
    KOR_TABLE_DATA* table_data() const { return m_table_data; }

    // When the record was last changed, in milliseconds since the epoch (UTC);
    // 0 when unknown.
    qint64 modification_msecs() const { return m_modification_msecs; }
    QDateTime modification_time() const;
    void set_modification_msecs(qint64 msecs) { m_modification_msecs = msecs; }

    const KOR_FIELD_DATA_MAP& field_map() const { return m_fields; }
    int field_count() const { return m_fields.size(); }
    // Null when the record has no such field; the name is matched ignoring case.
    KOR_FIELD_DATA* get_field_data(const QString& field_name);
    const KOR_FIELD_DATA* get_field_data(const QString& field_name) const;
    // Adds a field with that value, replacing a field of the same name; the
    // new field is returned. Null for a null schema.
    KOR_FIELD_DATA* add_field_data(const KOR_FIELD_SCHEMA* field_schema, const QVariant& value);
    // Takes ownership of a field made by the caller (replacing a field of the
    // same name). False, ownership not taken, for a null field or schema.
    bool insert_field_data(KOR_FIELD_DATA* field);
    // Deletes the field of that name; false when there is none.
    bool remove_field_data(const QString& field_name);

    // Converts a text to the type of the named field: false with an error text
    // when the field is unknown or the text does not fit the type.
    bool convert_string_to_field_type(QString& error, QVariant& out, const QString& field_name,
                                      const QString& text) const;
    // The same for a type. Empty text gives an empty QString for text and an
    // invalid QVariant (no value) for every other type.
    static bool convert_string_to_type(QString& error, QVariant& out, KOR_FIELD_TYPE type,
                                       const QString& text);

private:
    friend class KOR_TABLE_DATA;
    friend class KOR_ENGINE_ACCESS;
    void resort_fields() { m_fields.resort(); }
    void fields_changed();
    bool is_pooled() const { return (m_flags & 1) != 0; }
    static void destroy_field(KOR_FIELD_DATA* field);

    const KOR_TABLE_SCHEMA* m_table_schema;
    KOR_TABLE_DATA* m_table_data;
    QUuid m_uuid;
    qint64 m_modification_msecs = 0;
    KOR_FIELD_DATA_MAP m_fields;
    quint32 m_flags = 0;
    bool m_in_table = false;
};
