#include "db_statistics.h"

#include "kor_table_data.h"
#include "kor_table_io.h"
#include "kor_table_schema.h"

#include <QFileInfo>

#include <algorithm>
#include <memory>

bool DB_STATISTICS::gather(QString& error, const QString& path, const PROGRESS& progress)
{
    m_tables.clear();
    m_problems.clear();
    if (!QFileInfo(path).isDir())
    {
        error = QStringLiteral("'%1' is not a folder").arg(path);
        return false;
    }
    if (!KOR_TABLE_IO::is_database(error, path))
        return false;
    const QStringList names = KOR_TABLE_IO::schema_table_names(path);
    for (int i = 0; i < names.size(); ++i)
    {
        const QString& name = names.at(i);
        if (progress)
            progress(name, i, names.size());
        TABLE table;
        table.name = name;
        const QString schema_file = KOR_TABLE_IO::schema_file_path(path, name);
        const QString data_file = KOR_TABLE_IO::table_file_path(path, name);
        table.schema_bytes = QFileInfo(schema_file).size();
        table.data_bytes = QFileInfo::exists(data_file) ? QFileInfo(data_file).size() : 0;
        std::unique_ptr<KOR_TABLE_SCHEMA> schema;
        QString problem;
        if (KOR_TABLE_IO::read_schema_file(problem, schema_file, schema))
        {
            table.fields = schema->field_count();
            KOR_TABLE_DATA data(schema.get());
            if (KOR_TABLE_IO::read_table_file(problem, data_file, *schema, data))
                table.records = data.record_count();
        }
        if (table.records < 0)
            m_problems.append(problem);
        m_tables.append(table);
    }
    return true;
}

qint64 DB_STATISTICS::record_count() const
{
    qint64 count = 0;
    for (const TABLE& table : m_tables)
        count += qMax(0, table.records);
    return count;
}

qint64 DB_STATISTICS::field_count() const
{
    qint64 count = 0;
    for (const TABLE& table : m_tables)
        count += table.fields;
    return count;
}

qint64 DB_STATISTICS::data_bytes() const
{
    qint64 bytes = 0;
    for (const TABLE& table : m_tables)
        bytes += table.data_bytes;
    return bytes;
}

qint64 DB_STATISTICS::schema_bytes() const
{
    qint64 bytes = 0;
    for (const TABLE& table : m_tables)
        bytes += table.schema_bytes;
    return bytes;
}

QVector<DB_STATISTICS::TABLE> DB_STATISTICS::largest(int count) const
{
    QVector<TABLE> sorted = m_tables;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const TABLE& a, const TABLE& b) { return a.data_bytes > b.data_bytes; });
    return sorted.mid(0, qMax(0, count));
}
