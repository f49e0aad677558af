#pragma once

#include <QHash>
#include <QMap>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

// How the records read from a CSV file go into the table data model: each
// key updates the live row of that key, or a new record when the table has
// none. A row marked for deletion is never revived by an import: a record of
// the same key is added beside it.
class VELD_CSV_MERGE_PLAN
{
public:
    struct STEP
    {
        QString key;
        // The model row to update; -1 to add a record.
        int row = -1;
        // The texts to set, by model column, in column order.
        QVector<QPair<int, QString>> cells;
    };

    // The first row of each key among the rows not marked for deletion.
    static QHash<QString, int> live_rows_by_key(int row_count,
                                                const std::function<QString(int row)>& key_of_row,
                                                const std::function<bool(int row)>& is_deleted);

    // One step per key of `values` (key → field name → text), in key order.
    // `column_names` are the model's header names by column; a value whose
    // field is no column is left out.
    static QVector<STEP> make(const QMap<QString, QMap<QString, QString>>& values,
                              const QStringList& column_names, const QHash<QString, int>& live_rows);
};
