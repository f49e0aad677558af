#pragma once

#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QUuid>

class KOR_RECORD_DATA;
class KOR_TABLE_DATA;
class VELD_DIFF_DATA;

// The comparison of one table record by record. A record is the same record
// in both databases when it has the same uuid, whatever its key or place.
// Two records differ when they hold a different number of fields, or when a
// field of database 1's record is missing from database 2's (names ignoring
// case) or shows another text (QVariant::toString, compared exactly): an
// integer 1 and a text "1" are equal. Schemas are not compared.
class VELD_TABLE_DIFF_DATA : public QObject
{
    Q_OBJECT

public:
    // Reads the table through both query interfaces of the comparison.
    VELD_TABLE_DIFF_DATA(VELD_DIFF_DATA* diff_data, const QString& table_name);
    // Compares two tables read elsewhere; either may be null.
    VELD_TABLE_DIFF_DATA(const KOR_TABLE_DATA* db1_table, const KOR_TABLE_DATA* db2_table,
                         const QString& table_name);

    // Fills the three sets. A table missing on one side counts as empty.
    void process_table_diff();

    // Whether both tables could be read; without them there is nothing to show.
    bool has_both_tables() const { return m_db1_table && m_db2_table; }

    const KOR_TABLE_DATA* db1_table() const { return m_db1_table; }
    const KOR_TABLE_DATA* db2_table() const { return m_db2_table; }
    const QString& table_name() const { return m_table_name; }
    const QSet<QUuid>& records_only_in_db1() const { return m_records_only_in_db1; }
    const QSet<QUuid>& records_only_in_db2() const { return m_records_only_in_db2; }
    const QSet<QUuid>& records_differing() const { return m_records_differing; }

    // Every field that differs between the two records of a uuid: database
    // 1's fields in their order, then those only database 2's record has.
    // Empty unless the uuid is in both tables.
    QStringList differing_fields(const QUuid& uuid) const;

    // Whether two records differ, stopping at the first difference.
    static bool records_differ(const KOR_RECORD_DATA& db1_record, const KOR_RECORD_DATA& db2_record);

private:
    QSet<QUuid> m_records_only_in_db1;
    QSet<QUuid> m_records_only_in_db2;
    QSet<QUuid> m_records_differing;
    const KOR_TABLE_DATA* m_db1_table = nullptr;
    const KOR_TABLE_DATA* m_db2_table = nullptr;
    QString m_table_name;
    VELD_DIFF_DATA* m_diff_data = nullptr;
};
