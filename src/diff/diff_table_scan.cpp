#include "diff_table_scan.h"

#include <QCryptographicHash>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace
{
struct TABLE_FILE
{
    QString table;
    QString path;
};

QVector<TABLE_FILE> table_files(const QString& directory)
{
    QVector<TABLE_FILE> files;
    QDirIterator it(directory, QDir::Files);
    while (it.hasNext())
    {
        it.next();
        const QString name = it.fileName();
        if (DIFF_TABLE_SCAN::is_table_file_name(name))
            files.append(TABLE_FILE{name.left(name.size() - 4), it.filePath()});
    }
    return files;
}
} // namespace

bool DIFF_TABLE_SCAN::is_table_file_name(const QString& file_name)
{
    return file_name.endsWith(QLatin1String(".xml")) && !file_name.startsWith(QLatin1String("Veld"));
}

QByteArray DIFF_TABLE_SCAN::file_hash(const QString& path)
{
    QCryptographicHash hash(QCryptographicHash::Md5);
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
    {
        // Hashed where the file lies in the page cache: reading it into a
        // buffer first would copy every byte once more.
        const qint64 size = file.size();
        uchar* bytes = size > 0 ? file.map(0, size) : nullptr;
        if (bytes)
        {
            const qint64 step = qint64(1) << 30;
            for (qint64 offset = 0; offset < size; offset += step)
                hash.addData(reinterpret_cast<const char*>(bytes) + offset,
                             int(std::min(step, size - offset)));
            file.unmap(bytes);
        }
        else if (size > 0)
        {
            hash.addData(&file);
        }
    }
    return hash.result();
}

void DIFF_TABLE_SCAN::clear()
{
    m_tables.clear();
    m_tables_only_in_db1.clear();
    m_tables_only_in_db2.clear();
    m_tables_differing.clear();
    m_large_tables.clear();
}

bool DIFF_TABLE_SCAN::scan(QString& error, const QString& db1_directory, const QString& db2_directory,
                           bool diff_large_tables, const PROGRESS& progress)
{
    clear();
    const QString marker = QStringLiteral("/Veld_validation.xml");
    if (!QFileInfo::exists(db1_directory + marker))
    {
        error = QStringLiteral("Invalid path specified for db 1 (no Veld_validation.xml)");
        return false;
    }
    if (!QFileInfo::exists(db2_directory + marker))
    {
        error = QStringLiteral("Invalid path specified for db 2 (no Veld_validation.xml)");
        return false;
    }

    const QVector<TABLE_FILE> files1 = table_files(db1_directory);
    const QVector<TABLE_FILE> files2 = table_files(db2_directory);
    const int count = files1.size() + files2.size();
    int done = 0;
    QMap<QString, QByteArray> hashes1;
    QMap<QString, QByteArray> hashes2;
    for (const TABLE_FILE& file : files1)
    {
        // Whether a table is large is decided by its size in database 1 alone.
        if (!diff_large_tables && QFileInfo(file.path).size() > LARGE_TABLE_BYTES)
            m_large_tables.insert(file.table);
        else
            hashes1.insert(file.table, file_hash(file.path));
        if (progress)
            progress(++done, count);
    }
    for (const TABLE_FILE& file : files2)
    {
        if (!m_large_tables.contains(file.table))
            hashes2.insert(file.table, file_hash(file.path));
        if (progress)
            progress(++done, count);
    }

    for (auto it = hashes1.constBegin(); it != hashes1.constEnd(); ++it)
    {
        m_tables.insert(it.key(), false);
        const auto other = hashes2.constFind(it.key());
        if (other == hashes2.constEnd())
            m_tables_only_in_db1.insert(it.key());
        else if (other.value() != it.value())
            m_tables_differing.insert(it.key());
    }
    for (auto it = hashes2.constBegin(); it != hashes2.constEnd(); ++it)
    {
        if (hashes1.contains(it.key()))
            continue;
        m_tables.insert(it.key(), false);
        m_tables_only_in_db2.insert(it.key());
    }
    return true;
}
