#pragma once

#include <QString>

// The databases the figures run on: the sample generator's scale project
// (some 850 tables and one of a million records) and a second copy of its
// database with a few tables changed, added and removed, for the comparison
// and for the figures that write. Both are kept in the folder and reused.
class BENCH_DATABASE
{
public:
    bool prepare(QString& error, const QString& folder, int scale_tables, int scale_rows);

    // The project's database, read only by the figures.
    const QString& database() const { return m_database; }
    // The changed copy; the figures that write, write here.
    const QString& copy() const { return m_copy; }
    // The table of many records.
    QString big_table() const;

private:
    bool make_copy(QString& error);

    QString m_database;
    QString m_copy;
};
