#pragma once

#include "veld_clipboard_text.h"

#include <QModelIndex>
#include <QPointer>
#include <QString>

#include <functional>

class QTableView;
class QWidget;
class VELD_TABLE_DATA_VIEW_SORT_MODEL;

// The edits of a table data editor that touch many cells at once: copy,
// paste, clearing with the Delete key, typing into several selected cells
// and arithmetic on numbers. Every cell goes through setData, so each passes
// the model's checks on its own; a refused cell says why in the status.
//
// Targets are fixed as records' cells before the first write: a write in the
// sort column re-sorts the rows, and later writes must still reach the
// records the user meant.
class VELD_TABLE_CELL_EDITS
{
public:
    using STATUS = std::function<void(const QString&)>;

    // `dialog_parent` owns the questions of a paste.
    VELD_TABLE_CELL_EDITS(QTableView* view, VELD_TABLE_DATA_VIEW_SORT_MODEL* proxy, QWidget* dialog_parent,
                          const STATUS& status);

    // Puts the selected cells on the clipboard; gives back the text.
    QString copy(bool display_text, bool with_headers) const;

    // Pastes the clipboard's block at the top-left of the selection around
    // the current cell. New records are made for the rows of the block when
    // it starts on a new record and the user wants that; one value pasted on
    // several cells may be copied into each. Stops at the first refused
    // cell, keeping what was pasted.
    void paste();

    // True when every selected row is selected whole: the selection means
    // records, whose removal is the window's (with its question).
    bool selection_is_whole_records() const;
    // Empties the selected cells whose field is not required.
    void clear_selected_cells();

    // Writes `value` into every selected cell but the current one (which
    // gets it through its own editor). Nothing with fewer than two cells.
    void edit_selected_cells(const QString& value);

    // Replaces each selected number by `custom_operator(number, value)`;
    // cells without a number are left alone.
    void apply_arithmetic(double value, const std::function<double(double, double)>& custom_operator);

    // The cell a paste starts at: from the current cell, left and up while
    // the neighbour is selected.
    QModelIndex paste_origin() const;

private:
    QVector<QPersistentModelIndex> selected_source_cells() const;
    void paste_into_selection(const QString& value);
    void paste_rows(const VELD_CLIPBOARD_TEXT::CELLS& rows, bool new_records);

    QTableView* m_view;
    QPointer<VELD_TABLE_DATA_VIEW_SORT_MODEL> m_proxy;
    QPointer<QWidget> m_dialog_parent;
    STATUS m_status;
};
