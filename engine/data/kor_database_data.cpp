#include "kor_database_data.h"

void KOR_DATABASE_DATA::set_table_data(const QString& table_name, const KOR_TABLE_DATA* data)
{
    if (data)
        m_loaded_tables.insert(table_name, data);
    else
        m_loaded_tables.remove(table_name);
}
