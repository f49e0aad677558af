#include "veld_fixed_filter_row.h"

VELD_FIXED_FILTER_ROW::VELD_FIXED_FILTER_ROW(int column, const QString& pattern,
                                             Qt::CaseSensitivity case_sensitivity)
    : column(column), m_expression(pattern, case_sensitivity)
{
}

void VELD_FIXED_FILTER_ROW::set_pattern(const QString& pattern)
{
    m_expression.setPattern(pattern);
}

bool VELD_FIXED_FILTER_ROW::test(const QString& text) const
{
    if (!enabled)
        return true;
    return (m_expression.indexIn(text) != -1) != inverted;
}

QList<VELD_FILTER_ROW*> VELD_FIXED_FILTER_ROW::pointers(std::vector<VELD_FIXED_FILTER_ROW>& rows)
{
    QList<VELD_FILTER_ROW*> list;
    for (VELD_FIXED_FILTER_ROW& row : rows)
        list.append(&row);
    return list;
}
