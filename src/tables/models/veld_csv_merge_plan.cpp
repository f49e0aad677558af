#include "veld_csv_merge_plan.h"

QHash<QString, int> VELD_CSV_MERGE_PLAN::live_rows_by_key(int row_count,
                                                          const std::function<QString(int row)>& key_of_row,
                                                          const std::function<bool(int row)>& is_deleted)
{
    // One pass over the table rather than a search per imported line: tables
    // run to a million rows.
    QHash<QString, int> rows;
    for (int row = 0; row < row_count; ++row)
    {
        if (is_deleted(row))
            continue;
        const QString key = key_of_row(row);
        if (!rows.contains(key))
            rows.insert(key, row);
    }
    return rows;
}

QVector<VELD_CSV_MERGE_PLAN::STEP>
VELD_CSV_MERGE_PLAN::make(const QMap<QString, QMap<QString, QString>>& values,
                          const QStringList& column_names, const QHash<QString, int>& live_rows)
{
    QVector<STEP> steps;
    steps.reserve(values.size());
    for (auto record = values.constBegin(); record != values.constEnd(); ++record)
    {
        STEP step;
        step.key = record.key();
        step.row = live_rows.value(record.key(), -1);
        for (int column = 0; column < column_names.size(); ++column)
        {
            const auto text = record.value().constFind(column_names[column]);
            if (text != record.value().constEnd())
                step.cells.append(qMakePair(column, text.value()));
        }
        steps.append(step);
    }
    return steps;
}
