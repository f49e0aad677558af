#pragma once

#include <QString>
#include <QStringList>

// One relationship of the database: a field and the foreign field it refers
// to, with the lookup fields shown for it. `relationship_data()` gives them
// per table and field.
struct RELATIONSHIP_DATA
{
    QString table;
    QString field;
    QString foreign_table;
    QString foreign_field;
    QStringList lookup_fields;

    bool operator==(const RELATIONSHIP_DATA& other) const
    {
        return table == other.table && field == other.field && foreign_table == other.foreign_table &&
               foreign_field == other.foreign_field && lookup_fields == other.lookup_fields;
    }
};
