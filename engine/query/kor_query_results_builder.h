#pragma once

#include <QString>
#include <QStringList>
#include <QUuid>
#include <QVector>

class KOR_FIELD_SCHEMA;
class KOR_QUERY_RESULTS;
class KOR_RECORD_DATA;

// Fills a KOR_QUERY_RESULTS: first the columns, then the records. The
// results are emptied when the builder starts; whatever is added becomes
// theirs.
class KOR_QUERY_RESULTS_BUILDER
{
public:
    KOR_QUERY_RESULTS_BUILDER(KOR_QUERY_RESULTS& results, const QString& statement, const QStringList& source_tables);

    // Adds a column made from a source field (see KOR_QUERY_RESULTS for what
    // it keeps) under the given name; false when the name is taken.
    bool add_field(const KOR_FIELD_SCHEMA& source, int source_table, const QString& name, const QUuid& uuid);
    int field_count() const;
    const KOR_FIELD_SCHEMA* field(int column) const;

    void reserve(int records);
    // A new record on the results' schema, already part of the results; the
    // uuids of the records that each source table gave it.
    KOR_RECORD_DATA* add_record(const QVector<QUuid>& source_uuids);

private:
    KOR_QUERY_RESULTS& m_results;
    // Records take this uuid with their row number added to its first part:
    // unique within the results at a fraction of the cost of a fresh uuid a
    // row, which dominated large results.
    QUuid m_uuid_base;
};
