#pragma once

#include <QString>
#include <QStringList>
#include <QUuid>
#include <QVariant>
#include <QVector>

#include <memory>

class KOR_FIELD_SCHEMA;
class KOR_RECORD_DATA;
class KOR_TABLE_SCHEMA;

// The answer to a query: its fields in order and its records.
//
// Fields. Each result field is a KOR_FIELD_SCHEMA owned by the results and
// named "table.field" (with the name a statement gives a table by AS in
// place of the table's). It carries the source field's type, relationship,
// lookup fields, fixed values and the other attributes, so that editors ask it
// what they ask a table's field; it is no key field. The fields make up the
// results' own table schema, in column order.
//
// Records. Each result record is a KOR_RECORD_DATA owned by the results, on
// the results' table schema, holding a copy of every selected value under the
// result field's name. Rows come in a defined order: the FROM table's records
// in key order, and for each the matching records of each joined table in that
// table's key order. source_record_uuid tells which record of each table of
// the statement a row came from.
//
// A default-constructed KOR_QUERY_RESULTS is empty; the query interface's
// get_query_data* operations fill it, replacing whatever it held, and leave it
// empty when they fail. It moves (leaving the source empty) but does not copy.
// Every pointer it hands out stays valid until it is cleared, refilled,
// assigned to or destroyed; a move carries them along.
class KOR_QUERY_RESULTS
{
public:
    KOR_QUERY_RESULTS();
    ~KOR_QUERY_RESULTS();
    KOR_QUERY_RESULTS(KOR_QUERY_RESULTS&& other) noexcept;
    KOR_QUERY_RESULTS& operator=(KOR_QUERY_RESULTS&& other) noexcept;
    KOR_QUERY_RESULTS(const KOR_QUERY_RESULTS&) = delete;
    KOR_QUERY_RESULTS& operator=(const KOR_QUERY_RESULTS&) = delete;

    void clear();

    // The statement that gave these results, in canonical form; empty while
    // the results are empty.
    const QString& statement() const { return m_statement; }

    // Fields
    int field_count() const { return m_fields.size(); }
    // Null outside 0..field_count()-1.
    const KOR_FIELD_SCHEMA* field(int column) const;
    const QVector<KOR_FIELD_SCHEMA*>& fields() const { return m_fields; }
    QStringList field_names() const;
    // The column of a field name, ignoring case; -1 when there is none.
    int field_index(const QString& name) const;
    // Where a column comes from: the database's name of the table, and the
    // field's name in it. Empty outside the columns.
    QString source_table(int column) const;
    QString source_field(int column) const;
    // The schema of the result records; null while the results are empty.
    const KOR_TABLE_SCHEMA* table_schema() const { return m_schema.get(); }

    // Records
    int record_count() const { return m_records.size(); }
    // Null outside 0..record_count()-1.
    KOR_RECORD_DATA* record(int row) const;
    const QVector<KOR_RECORD_DATA*>& records() const { return m_records; }
    // The value of a cell; invalid outside the rows and columns, and for a
    // value the record does not have.
    QVariant value(int row, int column) const;

    // The tables of the statement in order (FROM, then each JOIN), as the
    // database names them; a table joined twice appears twice.
    const QStringList& source_tables() const { return m_source_tables; }
    // The uuid of the record that a table of the statement gave to a row;
    // null outside the rows or tables.
    QUuid source_record_uuid(int row, int table_index) const;

private:
    // The engine fills results through this one door.
    friend class KOR_QUERY_RESULTS_BUILDER;
    void take(KOR_QUERY_RESULTS& other);

    QString m_statement;
    std::unique_ptr<KOR_TABLE_SCHEMA> m_schema;
    QVector<KOR_FIELD_SCHEMA*> m_fields;   // owned by m_schema
    QStringList m_source_tables;
    QVector<int> m_field_sources;          // index into m_source_tables, per column
    QStringList m_source_fields;           // per column
    QVector<KOR_RECORD_DATA*> m_records;   // owned
    QVector<QUuid> m_source_uuids;         // record_count() x source_tables().size()
};
