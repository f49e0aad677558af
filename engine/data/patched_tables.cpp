#include "patched_tables.h"

#include <QDir>
#include <QFile>

#include <algorithm>

PATCHED_TABLES& PATCHED_TABLES::instance()
{
    static PATCHED_TABLES tables;
    return tables;
}

bool PATCHED_TABLES::is_patched_table(const QString& table_name) const
{
    return m_tables.contains(table_name);
}

void PATCHED_TABLES::load_from_database(const QString& database_path)
{
    m_tables.clear();
    QFile file(QDir(database_path).filePath(QStringLiteral("Veld_patched_tables.txt")));
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray& line : lines)
    {
        const QString name = QString::fromUtf8(line).trimmed();
        if (!name.isEmpty() && !name.startsWith(QLatin1Char('#')))
            m_tables.insert(name);
    }
}

QStringList PATCHED_TABLES::patched_tables() const
{
    QStringList names = m_tables.values();
    std::sort(names.begin(), names.end());
    return names;
}
