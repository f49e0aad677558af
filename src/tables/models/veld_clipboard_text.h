#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

#include <functional>

// Cells as clipboard text and back, as spreadsheets exchange them: cells
// separated by a tab, rows by a line feed.
class VELD_CLIPBOARD_TEXT
{
public:
    // Row → column → text. Rows and columns in ascending order are the order
    // of the text.
    typedef QMap<int, QMap<int, QString>> CELLS;

    // Rows by row number, cells by visual column; only the cells given make
    // text, so a ragged selection gives rows of differing width. With
    // `with_headers` a first row names every visual column that holds a cell,
    // from `header_names` (by visual column). No line feed after the last row.
    static QString build(const CELLS& cells, const QMap<int, QString>& header_names = QMap<int, QString>(),
                         bool with_headers = false);

    // A cell's value as text to copy, search or compare: floating values as
    // the shortest text that reads back the same, not with the digits of
    // their conversion to double ("3.299999952316284" for 3.3).
    static QString cell_text(const QVariant& value);

    // Cells of `text` from `start_row` and the visual column `start_visual`:
    // a tab moves one visual column right, a line feed one row down and back
    // to the start column. Each cell is stored under its row and the logical
    // column `logical_of_visual` gives (-1 past the last column). A final
    // line feed adds no row; an empty text is one empty cell.
    static CELLS parse(const QString& text, int start_row, int start_visual,
                       const std::function<int(int visual)>& logical_of_visual);
};
