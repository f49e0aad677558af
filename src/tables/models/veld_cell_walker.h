#pragma once

#include <QtGlobal>

#include <functional>

// The order in which a search of the table data editor visits cells, in
// positions as the user sees them (sorted rows, visual columns).
//
// Up and Down walk a column and go on in the previous or next column; Left
// and Right walk a row and go on in the row above or below; at a corner of
// the table the walk wraps to the opposite corner. Restricted to one column,
// the walk goes up (Up, Left) or down (Down, Right) that column and wraps at
// both ends.
//
// Every cell of the walk is visited once, the start cell last, and then the
// walk ends: a search that finds nothing always stops.
class VELD_CELL_WALKER
{
public:
    enum DIRECTION
    {
        UP = 0,
        DOWN = 1,
        LEFT = 2,
        RIGHT = 3
    };

    // `field_column` >= 0 keeps the walk to that column, starting at
    // `start_row`. A start outside the table starts at the first cell.
    VELD_CELL_WALKER(int rows, int columns, int start_row, int start_column, int direction,
                     int field_column = -1);

    // Moves on to the next cell; false once the walk is over.
    bool next();
    int row() const { return m_row; }
    int column() const { return m_column; }

    // The first cell of the walk for which `test` holds; false when none does.
    static bool find(int rows, int columns, int start_row, int start_column, int direction, int field_column,
                     const std::function<bool(int row, int column)>& test, int& found_row, int& found_column);

private:
    void step_row(int step);
    void step_column(int step);

    const int m_rows;
    const int m_columns;
    const int m_direction;
    const bool m_one_column;
    int m_row = 0;
    int m_column = 0;
    qint64 m_remaining = 0;
};
