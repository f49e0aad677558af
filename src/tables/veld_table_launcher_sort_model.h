#pragma once

#include <QSortFilterProxyModel>

class TABLE_LAUNCHER_MODEL;

// The launcher's main list: the tables that are not pinned, narrowed by the
// user's regular expression over the key.
class VELD_TABLE_LAUNCHER_SORT_MODEL : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit VELD_TABLE_LAUNCHER_SORT_MODEL(QObject* parent = nullptr);

    TABLE_LAUNCHER_MODEL* launcher_model() const;

protected:
    bool filterAcceptsRow(int source_row, const QModelIndex& source_parent) const override;
    bool lessThan(const QModelIndex& source_left, const QModelIndex& source_right) const override;
};
