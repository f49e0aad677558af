#pragma once

#include <QSortFilterProxyModel>

class TABLE_LAUNCHER_MODEL;

// The launcher's short list: exactly the pinned tables, never narrowed by
// the text filter.
class VELD_TABLE_PINNED_SORT_MODEL : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit VELD_TABLE_PINNED_SORT_MODEL(QObject* parent = nullptr);

    TABLE_LAUNCHER_MODEL* launcher_model() const;

protected:
    bool filterAcceptsRow(int source_row, const QModelIndex& source_parent) const override;
    bool lessThan(const QModelIndex& source_left, const QModelIndex& source_right) const override;
};
