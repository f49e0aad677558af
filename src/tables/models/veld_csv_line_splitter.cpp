#include "veld_csv_line_splitter.h"

QStringList VELD_CSV_LINE_SPLITTER::split(const QString& line)
{
    const QStringList pieces = line.split(QLatin1Char(','), Qt::KeepEmptyParts);
    QStringList values;
    for (int i = 0; i < pieces.size(); ++i)
    {
        // A comma inside quotes split a value: an odd count of quotes means
        // the value goes on in the next piece. An unclosed quote on the last
        // piece keeps what there is.
        QString value = pieces[i];
        while (value.count(QLatin1Char('"')) % 2 != 0 && i + 1 < pieces.size())
            value += QLatin1Char(',') + pieces[++i];
        if (value.startsWith(QLatin1Char('"')))
            value.remove(0, 1);
        if (value.endsWith(QLatin1Char('"')))
            value.chop(1);
        value.replace(QStringLiteral("\"\""), QStringLiteral("\""));
        values.append(value);
    }
    return values;
}
