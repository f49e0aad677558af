#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QUuid>

class KOR_FIELD_SCHEMA;

// The schema of one table: its fields, their display order and its key.
//
// Fields are owned by the schema. `field_schemas()` maps field names to fields
// in name order; `column_ordering()` lists the field names in display order
// (a field's row is its place there). Lookups by name ignore case.
class KOR_TABLE_SCHEMA
{
public:
    explicit KOR_TABLE_SCHEMA(const QString& table_name);
    // A deep copy: new field objects with the same names and uuids.
    KOR_TABLE_SCHEMA(const KOR_TABLE_SCHEMA& other);
    KOR_TABLE_SCHEMA& operator=(const KOR_TABLE_SCHEMA& other);
    virtual ~KOR_TABLE_SCHEMA();

    const QString& get_table_name() const { return m_table_name; }
    void set_table_name(const QString& table_name) { m_table_name = table_name; }
    const QUuid& table_unique_id() const { return m_table_unique_id; }
    void set_table_unique_id(const QUuid& uuid) { m_table_unique_id = uuid; }

    int field_count() const { return m_column_ordering.size(); }
    // Null when unknown. The name is matched exactly first, then ignoring case.
    KOR_FIELD_SCHEMA* field_schema_by_name(const QString& name);
    const KOR_FIELD_SCHEMA* field_schema_by_name(const QString& name) const;
    // By display position; null outside 0..field_count()-1.
    KOR_FIELD_SCHEMA* field_schema_by_row(int row);
    const KOR_FIELD_SCHEMA* field_schema_by_row(int row) const;
    KOR_FIELD_SCHEMA* field_schema_by_uuid(const QUuid& uuid);
    const KOR_FIELD_SCHEMA* field_schema_by_uuid(const QUuid& uuid) const;

    // Names of the key fields in display order; a record's key() joins their
    // texts with no separator in this order.
    const QList<QString>& primary_key_fields() const { return m_primary_key_fields; }
    // Field names in display order.
    const QList<QString>& column_ordering() const { return m_column_ordering; }
    // Reorders the columns; false (and no change) unless the list names every
    // field exactly once.
    bool set_column_ordering(const QList<QString>& ordering);
    // Field name to field, in name order.
    const QMap<QString, KOR_FIELD_SCHEMA*>& field_schemas() const { return m_field_schemas; }

    const QString& agf_special_dependencies() const { return m_agf_special_dependencies; }
    void set_agf_special_dependencies(const QString& text) { m_agf_special_dependencies = text; }

    // Other tables whose fields depend on a field of this table: table name to
    // its dependent field names, both sorted. References of the table to
    // itself are left out, as they never stop the table's removal.
    QMap<QString, QStringList> dependent_fields() const;

    // Checks names, key, types and relationships; appends one message a fault.
    // `new_table` adds the checks for a table about to be created.
    bool is_valid(QStringList& errors, bool new_table) const;

    // Takes ownership and appends the field as the last column. Null (and no
    // ownership taken) when the field is null, belongs to another schema, or
    // its name is taken.
    KOR_FIELD_SCHEMA* add_field_schema(KOR_FIELD_SCHEMA* field);
    // Takes the field out; ownership passes to the caller. Null when unknown.
    KOR_FIELD_SCHEMA* remove_field_schema(const QString& name);

private:
    friend class KOR_FIELD_SCHEMA;
    void field_renamed(KOR_FIELD_SCHEMA* field, const QString& old_name);
    void refresh_primary_key_fields();
    void clear();
    void copy_from(const KOR_TABLE_SCHEMA& other);

    QString m_table_name;
    QUuid m_table_unique_id;
    QString m_agf_special_dependencies;
    QMap<QString, KOR_FIELD_SCHEMA*> m_field_schemas;
    QList<QString> m_column_ordering;
    QList<QString> m_primary_key_fields;
};
