#pragma once

#include <QPersistentModelIndex>
#include <QPointer>
#include <QString>
#include <QVector>

class QTableView;
class QWidget;
class VELD_TABLE_DATA_VIEW_SORT_MODEL;

// The search of a table data editor: walks the cells of its view as the
// user sees them (sorted rows, visual columns), and replaces text in them.
// A match becomes the view's current cell, alone in the selection.
//
// Replacing writes through the proxy, so each cell goes through every check
// of the table data model.
class VELD_TABLE_SEARCH
{
public:
    struct TERMS
    {
        QString text;
        // A field name keeps the walk to that column.
        QString field;
        // 0 up, 1 down, 2 left, 3 right.
        int direction = 1;
        // Tests edit-role values instead of the display texts.
        bool underlying = false;
        bool case_sensitive = false;
        // Tests only the cells selected when the walk began.
        bool in_selection = false;
    };

    // `dialog_parent` owns the warnings of a replacement.
    VELD_TABLE_SEARCH(QTableView* view, VELD_TABLE_DATA_VIEW_SORT_MODEL* proxy, QWidget* dialog_parent);

    // The next matching cell after the current one (or after the first cell
    // when nothing is selected). False when no cell matches.
    bool find(const TERMS& terms);

    // Replaces in the current cell when it holds the text, else in the next
    // match, and moves on to the match after it. False when there was
    // nothing to replace.
    bool replace_current_or_next(const TERMS& terms, const QString& replacement);

    // Replaces in every matching cell (of the selection, with in_selection),
    // walking from the first cell; gives the number of cells matched. Each
    // matching cell is written once, whatever the replacement holds and
    // however the rows sort and filter meanwhile.
    int replace_all(const TERMS& terms, const QString& replacement);

    // Makes a cell the current one, alone in the selection, in sight.
    void make_current(const QModelIndex& index);

    // Forgets the cells left of a selection walk.
    void forget_matches() { m_search_matches.clear(); }
    int matches_left() const { return m_search_matches.size(); }

private:
    bool matches(const QModelIndex& index, const TERMS& terms, bool underlying) const;
    // Tests of the walk, in walk order, until `wanted` cells matched (all
    // of them with -1). In-selection walks use up the cells they test.
    QVector<QModelIndex> walk(const TERMS& terms, int start_row, int start_column, int wanted);
    void fill_matches_from_selection();
    // Writes the replacement into one cell; false (after a warning) when
    // its underlying value does not hold the text.
    bool replace_in_cell(const QModelIndex& index, const TERMS& terms, const QString& replacement);

    QTableView* m_view;
    QPointer<VELD_TABLE_DATA_VIEW_SORT_MODEL> m_proxy;
    QPointer<QWidget> m_dialog_parent;
    // The selected cells a selection walk has yet to test.
    QVector<QPersistentModelIndex> m_search_matches;
};
