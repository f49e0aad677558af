#pragma once

#include "veld_clipboard_text.h"

#include <QModelIndex>
#include <QString>

class QAbstractItemModel;
class QTableView;

// Copying the selected cells of a table view to the clipboard and reading a
// block back from it, tab and line-feed separated, for every window with a
// grid: the table data editor, form grids, the query editor, the table
// differences window.
namespace VELD_CLIPBOARD
{
// Puts the selected cells of `view` on the clipboard: display texts or
// underlying (edit-role) values of `model`, in rows and visual columns, with
// a first row of field names from the horizontal header when asked. Gives
// back the text; without a clipboard nothing is put anywhere.
QString copy_selection(QTableView* view, QAbstractItemModel* model, bool display_text, bool with_headers);

// Reads the clipboard text into `out_rows` (row → logical column → text),
// from the row of `start_index` and its visual column in `view`.
void parse_clipboard(QTableView* view, VELD_CLIPBOARD_TEXT::CELLS& out_rows, const QModelIndex& start_index);
} // namespace VELD_CLIPBOARD
