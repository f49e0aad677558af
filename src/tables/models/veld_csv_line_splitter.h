#pragma once

#include <QString>
#include <QStringList>

// One line of a CSV file as values. A value in double quotes may hold commas,
// and a doubled double quote inside it stands for one. Values never span
// lines.
class VELD_CSV_LINE_SPLITTER
{
public:
    static QStringList split(const QString& line);
};
