#pragma once

#include <QColor>
#include <QString>

// The style of a spreadsheet cell as EXCEL_OBJECT reads and writes it.
struct EO_STYLE_PROPERTIES
{
    QString text;
    QColor text_colour;
    QColor fill_colour;
    bool fill_colour_set = false;
    bool bold = false;
};
