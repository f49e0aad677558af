#pragma once

#include <QList>
#include <QMap>
#include <QModelIndex>
#include <QString>
#include <QVector>

class QItemSelection;
class QHeaderView;

// Helpers around the item views. Declared with the contract; implemented in
// the widget layer (the table editing library), since they work on views.
namespace QT_WORKAROUNDS
{
// Every index of a selection, each once, in row then column order.
QVector<QModelIndex> selection_indices(const QItemSelection& selection);
// Restores a header's visual order from saved column names, matching them to
// the current ones (a name's logical index is its place among the current
// names); `section_sizes` (if given) holds saved widths by name, applied to the
// sections that still exist.
void restore_header_by_column_names(const QList<QString>& saved_names, const QList<QString>& current_names,
                                    QHeaderView* header, QMap<QString, int>* section_sizes);
} // namespace QT_WORKAROUNDS
