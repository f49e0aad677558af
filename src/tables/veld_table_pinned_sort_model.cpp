#include "veld_table_pinned_sort_model.h"

#include "table_launcher_model.h"

VELD_TABLE_PINNED_SORT_MODEL::VELD_TABLE_PINNED_SORT_MODEL(QObject* parent) : QSortFilterProxyModel(parent) {}

TABLE_LAUNCHER_MODEL* VELD_TABLE_PINNED_SORT_MODEL::launcher_model() const
{
    return qobject_cast<TABLE_LAUNCHER_MODEL*>(sourceModel());
}

bool VELD_TABLE_PINNED_SORT_MODEL::filterAcceptsRow(int source_row, const QModelIndex& source_parent) const
{
    Q_UNUSED(source_parent)
    const TABLE_LAUNCHER_MODEL* model = launcher_model();
    return model && model->is_pinned(source_row);
}

bool VELD_TABLE_PINNED_SORT_MODEL::lessThan(const QModelIndex& source_left,
                                            const QModelIndex& source_right) const
{
    const TABLE_LAUNCHER_MODEL* model = launcher_model();
    return model ? model->row_less_than(source_left.row(), source_right.row())
                 : QSortFilterProxyModel::lessThan(source_left, source_right);
}
