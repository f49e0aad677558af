#include "veld_clipboard_text.h"

#include "kor_field_data.h"

#include <QStringList>

QString VELD_CLIPBOARD_TEXT::cell_text(const QVariant& value)
{
    const int type = value.userType();
    if (type == QMetaType::Float || type == QMetaType::Double)
        return KOR_FIELD_DATA::variant_to_text(value);
    return value.toString();
}

QString VELD_CLIPBOARD_TEXT::build(const CELLS& cells, const QMap<int, QString>& header_names,
                                   bool with_headers)
{
    QStringList lines;
    if (with_headers)
    {
        QMap<int, QString> names;
        for (const QMap<int, QString>& row : cells)
            for (auto cell = row.constBegin(); cell != row.constEnd(); ++cell)
                names.insert(cell.key(), header_names.value(cell.key()));
        lines.append(QStringList(names.values()).join(QLatin1Char('\t')));
    }
    for (const QMap<int, QString>& row : cells)
        lines.append(QStringList(row.values()).join(QLatin1Char('\t')));
    return lines.join(QLatin1Char('\n'));
}

VELD_CLIPBOARD_TEXT::CELLS VELD_CLIPBOARD_TEXT::parse(const QString& text, int start_row, int start_visual,
                                                      const std::function<int(int visual)>& logical_of_visual)
{
    // Spreadsheets on other systems end their rows with CR LF: the CR is
    // part of the line end, not of the last cell.
    QString body = text;
    body.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (body.endsWith(QLatin1Char('\n')))
        body.chop(1);

    CELLS cells;
    int row = start_row;
    int visual = start_visual;
    QString cell;
    const auto store = [&]() {
        cells[row].insert(logical_of_visual ? logical_of_visual(visual) : visual, cell);
        cell.clear();
    };
    for (const QChar c : qAsConst(body))
    {
        if (c == QLatin1Char('\t'))
        {
            store();
            ++visual;
        }
        else if (c == QLatin1Char('\n'))
        {
            store();
            ++row;
            visual = start_visual;
        }
        else
            cell.append(c);
    }
    store();
    return cells;
}
