#pragma once

#include <QMap>
#include <QString>

class KOR_TABLE_DATA;

// The data of the whole database as far as it is loaded: table name to table
// data, in name order. The query interface owns it and the tables.
class KOR_DATABASE_DATA
{
public:
    const QMap<QString, const KOR_TABLE_DATA*>& loaded_tables() const { return m_loaded_tables; }
    const KOR_TABLE_DATA* table_data(const QString& table_name) const
    {
        return m_loaded_tables.value(table_name);
    }

    void set_table_data(const QString& table_name, const KOR_TABLE_DATA* data);
    void remove_table_data(const QString& table_name) { m_loaded_tables.remove(table_name); }
    void clear() { m_loaded_tables.clear(); }

private:
    QMap<QString, const KOR_TABLE_DATA*> m_loaded_tables;
};
