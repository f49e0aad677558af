#pragma once

#include "kor_field_type.h"
#include "kor_metafield.h"

#include <QList>
#include <QPair>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QUuid>
#include <QVariant>

class KOR_TABLE_SCHEMA;

// The schema of one field of a table: its name, type and the 21 metafields.
//
// A field owned by a KOR_TABLE_SCHEMA tells that schema when its name or its
// primary-key flag changes, so the table's maps stay right. Fields that the
// application creates for the schema editor stand alone until they are added
// to a table schema (add_field_schema).
//
// The relationship of a field is its foreign table (metafield 8) and foreign
// field (metafield 9): `dependency()` is that pair, null when there is no
// foreign table. An empty foreign field means the foreign table's first
// primary key field. `source_table()` is the foreign table, also for a field
// that only looks values up (metafield 10).
class KOR_FIELD_SCHEMA
{
public:
    explicit KOR_FIELD_SCHEMA(const QUuid& field_unique_id = QUuid());
    // A copy stands alone: it belongs to no table schema until added to one.
    KOR_FIELD_SCHEMA(const KOR_FIELD_SCHEMA& other);
    // Copies every attribute but keeps this field's owner.
    KOR_FIELD_SCHEMA& operator=(const KOR_FIELD_SCHEMA& other);
    virtual ~KOR_FIELD_SCHEMA();

    // Sets the attributes the schema editor gives a new field; the others
    // return to their defaults.
    virtual void initialise(bool primary_key, QString field_name, KOR_FIELD_TYPE field_type, bool required,
                            const QVariant& default_value, int max_length, bool is_file,
                            const QString& relative_path, const QString& fragment_path,
                            const QString& description, bool encyclopaedia_export, bool agf_from_this_field,
                            bool agf_towards_this_field);

    const QString& field_name() const { return m_field_name; }
    const QUuid& field_unique_id() const { return m_field_unique_id; }
    void set_field_unique_id(const QUuid& uuid) { m_field_unique_id = uuid; }
    // The table this field belongs to; empty for a field of no table.
    const QString& table_name() const;
    const KOR_TABLE_SCHEMA* owner() const { return m_owner; }

    // Read directly by the application.
    KOR_FIELD_TYPE field_type() const { return m_field_type; }
    bool is_required() const { return m_required; }
    bool is_primary_key() const { return m_primary_key; }
    bool is_file() const { return m_is_file; }
    bool encyclopaedia_export() const { return m_encyclopaedia_export; }
    bool agf_from_this_field() const { return m_agf_from_this_field; }
    bool agf_towards_this_field() const { return m_agf_towards_this_field; }
    bool agf_done() const { return m_agf_done; }
    bool startpos_reprocess() const { return m_startpos_reprocess; }
    bool campaign_map_reprocess() const { return m_campaign_map_reprocess; }

    const QVariant& default_value() const { return m_default_value; }
    bool is_localised() const { return m_localised; }
    const QString& spreadsheet() const { return m_spreadsheet; }
    int max_length() const { return m_max_length; }
    const QStringList& lookup_fields() const { return m_lookup_fields; }
    const QString& relative_path() const { return m_relative_path; }
    const QString& fragment_path() const { return m_fragment_path; }
    const QString& description() const { return m_description; }

    // The foreign table, empty when there is none.
    const QString& source_table() const { return m_dependency.first; }
    // Foreign table and field; null when the field has no foreign table.
    const QPair<QString, QString>* dependency() const;
    void add_dependency(const QString& foreign_table, const QString& foreign_field);
    void remove_dependency();

    // The allowed values of a field with a fixed list; empty for most fields.
    const QSet<QString>& fixed_column_values() const { return m_fixed_column_values; }
    void set_fixed_column_values(const QSet<QString>& values) { m_fixed_column_values = values; }

    // "Is a dependency of": the (table, field) pairs whose relationship names
    // this field, sorted. Kept by the database schema; empty on a standalone field.
    const QList<QPair<QString, QString>>& dependents() const { return m_dependents; }
    // "Looked up by": the (table, field) pairs that look up values through
    // this field (this field is among their lookup fields), sorted.
    const QList<QPair<QString, QString>>& looked_up_by() const { return m_looked_up_by; }
    void set_dependents(const QList<QPair<QString, QString>>& dependents) { m_dependents = dependents; }
    void set_looked_up_by(const QList<QPair<QString, QString>>& looked_up_by)
    {
        m_looked_up_by = looked_up_by;
    }

    QVariant get_metafield_value(KOR_METAFIELD metafield) const;
    // False when the value is refused: an unknown metafield, a type outside
    // 1..11, a name that is not a valid field name or is taken in the owning
    // table. A refused value changes nothing.
    bool set_metafield_value(KOR_METAFIELD metafield, const QVariant& value);

    // A row number the schema editor keeps with a field it made; not stored.
    int row() const { return m_row; }
    void set_row(int row) { m_row = row; }

    // "yesno", "integer", "unsigned_integer", "single", "double", "decimal",
    // "text", "autonumber", "date_time", "unique_id", "card64"; empty for
    // anything else.
    static QString field_type_to_string(KOR_FIELD_TYPE type);
    // The reverse, ignoring case; KFT_NONE for an unknown name.
    static KOR_FIELD_TYPE string_to_field_type(const QString& name);
    // The display name of a metafield, e.g. "Primary Key".
    static QString metafield_to_string(KOR_METAFIELD metafield);
    // Whether a name may name a field or a table: a letter or underscore,
    // then letters, digits and underscores, at most 100 characters. Such a
    // name can never reach outside the database folder as a file name.
    static bool is_valid_name(const QString& name);

    // The QMetaType a field of that type keeps its values in, UnknownType for
    // no type.
    static int stored_type(KOR_FIELD_TYPE type);
    // A value as this field keeps it: converted to the stored type (texts
    // parsed, date-times in UTC), empty values as an empty text for a text
    // field and as no value otherwise. False with the reason when the value
    // does not fit, also for a negative unsigned integer.
    bool stored_value(QString& error, const QVariant& value, QVariant& out) const;

private:
    friend class KOR_TABLE_SCHEMA;
    void copy_attributes(const KOR_FIELD_SCHEMA& other);

    KOR_TABLE_SCHEMA* m_owner = nullptr;
    QString m_field_name;
    QUuid m_field_unique_id;
    KOR_FIELD_TYPE m_field_type = KFT_NONE;
    QVariant m_default_value;
    QString m_spreadsheet;
    QPair<QString, QString> m_dependency;
    QStringList m_lookup_fields;
    QString m_relative_path;
    QString m_fragment_path;
    QString m_description;
    QSet<QString> m_fixed_column_values;
    QList<QPair<QString, QString>> m_dependents;
    QList<QPair<QString, QString>> m_looked_up_by;
    int m_max_length = -1;
    int m_row = -1;
    bool m_required = false;
    bool m_localised = false;
    bool m_primary_key = false;
    bool m_is_file = false;
    bool m_encyclopaedia_export = false;
    bool m_agf_from_this_field = false;
    bool m_agf_towards_this_field = false;
    bool m_agf_done = false;
    bool m_startpos_reprocess = false;
    bool m_campaign_map_reprocess = false;
};
