#pragma once

#include <QMap>
#include <QString>

class KOR_TABLE_SCHEMA;

// The schemas of every table of a database, owned here, in name order.
class KOR_DATABASE_SCHEMA
{
public:
    KOR_DATABASE_SCHEMA() = default;
    KOR_DATABASE_SCHEMA(const KOR_DATABASE_SCHEMA&) = delete;
    KOR_DATABASE_SCHEMA& operator=(const KOR_DATABASE_SCHEMA&) = delete;
    virtual ~KOR_DATABASE_SCHEMA();

    // Table name to schema, in name order.
    const QMap<QString, KOR_TABLE_SCHEMA*>& table_schemas() const { return m_table_schemas; }
    int table_count() const { return m_table_schemas.size(); }
    // Null when unknown; the name is matched exactly.
    KOR_TABLE_SCHEMA* table_schema(const QString& table_name) const
    {
        return m_table_schemas.value(table_name);
    }
    // A table whose name equals the given one ignoring case, or null.
    KOR_TABLE_SCHEMA* table_schema_ignoring_case(const QString& table_name) const;

    // Takes ownership. False (and no ownership taken) when the name is taken,
    // also ignoring case.
    bool add_table_schema(KOR_TABLE_SCHEMA* schema);
    // Ownership passes to the caller; null when unknown.
    KOR_TABLE_SCHEMA* take_table_schema(const QString& table_name);
    void clear();

    // Recomputes every field's "is a dependency of" and "looked up by" lists
    // from the relationships of all tables.
    void rebuild_relations();

private:
    QMap<QString, KOR_TABLE_SCHEMA*> m_table_schemas;
};
