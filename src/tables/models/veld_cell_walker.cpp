#include "veld_cell_walker.h"

VELD_CELL_WALKER::VELD_CELL_WALKER(int rows, int columns, int start_row, int start_column, int direction,
                                   int field_column)
    : m_rows(qMax(0, rows)), m_columns(qMax(0, columns)),
      m_direction(direction >= UP && direction <= RIGHT ? direction : DOWN),
      m_one_column(field_column >= 0 && field_column < columns)
{
    if (m_rows == 0 || m_columns == 0 || (field_column >= columns))
        return;
    const bool inside = start_row >= 0 && start_row < m_rows && start_column >= 0 && start_column < m_columns;
    m_row = inside ? start_row : 0;
    m_column = inside ? start_column : 0;
    if (m_one_column)
    {
        m_column = field_column;
        m_remaining = m_rows;
    }
    else
        m_remaining = qint64(m_rows) * qint64(m_columns);
}

void VELD_CELL_WALKER::step_row(int step)
{
    m_row += step;
    if (m_row >= m_rows)
    {
        m_row = 0;
        if (++m_column >= m_columns)
            m_column = 0;
    }
    else if (m_row < 0)
    {
        m_row = m_rows - 1;
        if (--m_column < 0)
            m_column = m_columns - 1;
    }
}

void VELD_CELL_WALKER::step_column(int step)
{
    m_column += step;
    if (m_column >= m_columns)
    {
        m_column = 0;
        if (++m_row >= m_rows)
            m_row = 0;
    }
    else if (m_column < 0)
    {
        m_column = m_columns - 1;
        if (--m_row < 0)
            m_row = m_rows - 1;
    }
}

bool VELD_CELL_WALKER::next()
{
    if (m_remaining <= 0)
        return false;
    --m_remaining;
    const int step = (m_direction == UP || m_direction == LEFT) ? -1 : 1;
    if (m_one_column)
        m_row = (m_row + step + m_rows) % m_rows;
    else if (m_direction == UP || m_direction == DOWN)
        // Wrapping the rows moves to the next column only: moving the row on
        // as well would skip a corner cell and never come back to the start.
        step_row(step);
    else
        step_column(step);
    return true;
}

bool VELD_CELL_WALKER::find(int rows, int columns, int start_row, int start_column, int direction,
                            int field_column, const std::function<bool(int row, int column)>& test,
                            int& found_row, int& found_column)
{
    VELD_CELL_WALKER walker(rows, columns, start_row, start_column, direction, field_column);
    while (walker.next())
    {
        if (test(walker.row(), walker.column()))
        {
            found_row = walker.row();
            found_column = walker.column();
            return true;
        }
    }
    return false;
}
