#pragma once

#include <QByteArray>
#include <QMap>
#include <QSet>
#include <QString>

#include <functional>

// The table level of a comparison of two database folders: every table file
// of both folders hashed (MD5) and every table name sorted into one group:
// the same in both, differing, only in database 1, only in database 2. No
// table is parsed, so whole databases compare at the speed of reading them.
//
// A table file is a top-level "*.xml" whose name does not start with "Veld"
// (both case-sensitive); its table name is the file name less ".xml". Unless
// large tables are compared, a table whose file in database 1 is larger than
// LARGE_TABLE_BYTES is left out of both sides and of every result.
class DIFF_TABLE_SCAN
{
public:
    static constexpr qint64 LARGE_TABLE_BYTES = 15000000;

    // Progress: files hashed so far and in all (both folders).
    typedef std::function<void(int done, int count)> PROGRESS;

    // Checks that both folders are databases (db 1 first) and fills the
    // groups. False with the message for the user when a folder has no
    // "Veld_validation.xml"; the groups are then empty.
    bool scan(QString& error, const QString& db1_directory, const QString& db2_directory,
              bool diff_large_tables, const PROGRESS& progress = PROGRESS());

    // Every table met in either database, in name order; the value carries
    // nothing.
    const QMap<QString, bool>& tables() const { return m_tables; }
    const QSet<QString>& tables_only_in_db1() const { return m_tables_only_in_db1; }
    const QSet<QString>& tables_only_in_db2() const { return m_tables_only_in_db2; }
    const QSet<QString>& tables_differing() const { return m_tables_differing; }
    // Tables left out for their size in database 1.
    const QSet<QString>& large_tables() const { return m_large_tables; }

    // Whether a top-level file name names a table file.
    static bool is_table_file_name(const QString& file_name);
    // The MD5 of a file's bytes; that of no bytes when it cannot be read.
    static QByteArray file_hash(const QString& path);

private:
    void clear();

    QMap<QString, bool> m_tables;
    QSet<QString> m_tables_only_in_db1;
    QSet<QString> m_tables_only_in_db2;
    QSet<QString> m_tables_differing;
    QSet<QString> m_large_tables;
};
