#include "veld_clipboard_tools.h"

#include <QAbstractItemModel>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QTableView>

namespace VELD_CLIPBOARD
{
QString copy_selection(QTableView* view, QAbstractItemModel* model, bool display_text, bool with_headers)
{
    if (!view || !model || !view->selectionModel())
        return QString();
    const QHeaderView* header = view->horizontalHeader();
    VELD_CLIPBOARD_TEXT::CELLS cells;
    QMap<int, QString> names;
    const int role = display_text ? Qt::DisplayRole : Qt::EditRole;
    // The selection's own cells rather than a test of every cell of the
    // model: tables run to a million rows.
    const QModelIndexList selected = view->selectionModel()->selectedIndexes();
    for (const QModelIndex& index : selected)
    {
        if (index.model() != model || view->isRowHidden(index.row()) || view->isColumnHidden(index.column()))
            continue;
        const int visual = header->visualIndex(index.column());
        cells[index.row()].insert(visual, VELD_CLIPBOARD_TEXT::cell_text(model->data(index, role)));
        if (with_headers)
            names.insert(visual,
                         model->headerData(index.column(), Qt::Horizontal, Qt::DisplayRole).toString());
    }
    const QString text = VELD_CLIPBOARD_TEXT::build(cells, names, with_headers);
    if (QClipboard* clipboard = QGuiApplication::clipboard())
        clipboard->setText(text);
    return text;
}

void parse_clipboard(QTableView* view, VELD_CLIPBOARD_TEXT::CELLS& out_rows, const QModelIndex& start_index)
{
    out_rows.clear();
    if (!view || !start_index.isValid())
        return;
    QClipboard* clipboard = QGuiApplication::clipboard();
    const QString text = clipboard ? clipboard->text() : QString();
    const QHeaderView* header = view->horizontalHeader();
    out_rows = VELD_CLIPBOARD_TEXT::parse(text, start_index.row(), header->visualIndex(start_index.column()),
                                          [header](int visual) { return header->logicalIndex(visual); });
}
} // namespace VELD_CLIPBOARD
