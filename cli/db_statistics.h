#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

// The size of a database folder: its tables, their records and fields, and
// the bytes of their files. Every table file is read by the engine's reader
// (one at a time), so the counts are the engine's.
class DB_STATISTICS
{
public:
    struct TABLE
    {
        QString name;
        int fields = 0;
        int records = -1; // -1 when the table could not be read
        qint64 data_bytes = 0;
        qint64 schema_bytes = 0;
    };
    typedef std::function<void(const QString& table, int done, int count)> PROGRESS;

    bool gather(QString& error, const QString& path, const PROGRESS& progress = PROGRESS());

    // In name order.
    const QVector<TABLE>& tables() const { return m_tables; }
    // Tables whose schema or file could not be read, with the reason.
    const QStringList& problems() const { return m_problems; }
    qint64 record_count() const;
    qint64 field_count() const;
    qint64 data_bytes() const;
    qint64 schema_bytes() const;
    // The largest table files first (ties by name); at most `count`.
    QVector<TABLE> largest(int count) const;

private:
    QVector<TABLE> m_tables;
    QStringList m_problems;
};
