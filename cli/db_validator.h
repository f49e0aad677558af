#pragma once

#include "kor_database_schema.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QVector>

#include <functional>

class KOR_TABLE_SCHEMA;

// One problem a validation found: where (table, record key, field; each
// empty when the finding is about something larger) and what.
struct DB_FINDING
{
    QString table;
    QString key;
    QString field;
    QString message;

    // "table[key].field: message", leaving out what is empty.
    QString text() const;
};

// Checks a database folder without connecting to it: every schema file
// (readable, valid, names that clash, relationships to tables and fields
// that exist), every table file (the engine's reader refuses what it cannot
// take: malformed XML, values of the wrong type, keys or uuids used twice,
// empty keys), and every value: required fields that are empty, values
// outside a field's fixed values, texts over their maximum length, and
// foreign keys that name no record. Nothing is written.
//
// Tables are read one at a time, each table a field refers to before the
// table that refers to it, so memory holds one table and the values that
// foreign keys are checked against.
class DB_VALIDATOR
{
public:
    typedef std::function<void(const QString& table, int done, int count)> PROGRESS;

    // False, with the reason, when the folder is no database at all; every
    // other problem is a finding.
    bool validate(QString& error, const QString& path, const PROGRESS& progress = PROGRESS());

    // In table order, then record key order, then column order.
    const QVector<DB_FINDING>& findings() const { return m_findings; }
    int table_count() const { return m_table_count; }
    qint64 record_count() const { return m_record_count; }

private:
    struct ORDERED_FINDING
    {
        DB_FINDING finding;
        int record;
        int column;
        int sequence;
    };
    // A foreign key value waiting for its target table (a cycle of references).
    struct PENDING
    {
        DB_FINDING place;
        QString value;
        int record;
        int column;
    };

    void add(const QString& table, const QString& key, const QString& field, const QString& message,
             int record = -1, int column = -1);
    void read_schemas(const QString& path);
    void check_relationships();
    void order(const QString& table, QSet<QString>& visited, QStringList& ordered) const;
    void check_table(const QString& path, const KOR_TABLE_SCHEMA& schema);
    QString missing_reference(const QString& value, const QString& target) const;

    KOR_DATABASE_SCHEMA m_schema;
    // "table.field" of every field a foreign key names, and its values once
    // its table was read.
    QSet<QString> m_targets;
    QHash<QString, QSet<QString>> m_target_values;
    QSet<QString> m_unreadable;
    QHash<QString, QVector<PENDING>> m_pending;
    QVector<ORDERED_FINDING> m_ordered;
    QVector<DB_FINDING> m_findings;
    int m_table_count = 0;
    qint64 m_record_count = 0;
};
