#include "qt_workarounds.h"

#include <QHeaderView>
#include <QItemSelection>
#include <QSet>

#include <algorithm>

namespace QT_WORKAROUNDS
{
QVector<QModelIndex> selection_indices(const QItemSelection& selection)
{
    // QItemSelection::indexes() repeats cells covered by overlapping ranges and
    // follows the order the ranges were selected in; callers walk cells in
    // reading order and must visit each once.
    QVector<QModelIndex> result;
    for (const QItemSelectionRange& range : selection)
    {
        if (!range.isValid())
            continue;
        const QModelIndex parent = range.parent();
        const QAbstractItemModel* model = range.model();
        for (int row = range.top(); row <= range.bottom(); ++row)
        {
            for (int column = range.left(); column <= range.right(); ++column)
                result.append(model->index(row, column, parent));
        }
    }
    std::sort(result.begin(), result.end(), [](const QModelIndex& left, const QModelIndex& right) {
        if (left.row() != right.row())
            return left.row() < right.row();
        return left.column() < right.column();
    });
    result.erase(std::unique(result.begin(), result.end()), result.end());
    return result;
}

void restore_header_by_column_names(const QList<QString>& saved_names, const QList<QString>& current_names,
                                    QHeaderView* header, QMap<QString, int>* section_sizes)
{
    if (!header)
        return;
    const int sections = header->count();
    // Logical index of a name is its place among the current names; saved
    // names of fields that no longer exist (or are beyond the model) are
    // skipped, and fields added since the layout was saved keep their
    // relative order behind the saved ones.
    int visual = 0;
    QSet<int> placed;
    for (const QString& name : saved_names)
    {
        const int logical = current_names.indexOf(name);
        if (logical < 0 || logical >= sections || placed.contains(logical))
            continue;
        placed.insert(logical);
        const int from = header->visualIndex(logical);
        if (from != visual)
            header->moveSection(from, visual);
        ++visual;
    }
    if (!section_sizes)
        return;
    for (auto it = section_sizes->cbegin(); it != section_sizes->cend(); ++it)
    {
        const int logical = current_names.indexOf(it.key());
        if (logical >= 0 && logical < sections && it.value() > 0)
            header->resizeSection(logical, it.value());
    }
}
} // namespace QT_WORKAROUNDS
