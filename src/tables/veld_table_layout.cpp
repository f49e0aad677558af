#include "veld_table_layout.h"

#include "orbin_settings.h"

#include <QHeaderView>

namespace
{
const char* const layouts_path = "Northfold\\Quill\\Veld\\TableLayouts";
}

QString VELD_TABLE_LAYOUT::to_text() const
{
    QStringList entries;
    entries.reserve(columns.size());
    for (const auto& column : columns)
        entries << column.first + QLatin1Char('~') + QString::number(column.second);
    return entries.join(QLatin1Char(';'));
}

VELD_TABLE_LAYOUT VELD_TABLE_LAYOUT::from_text(const QString& text)
{
    VELD_TABLE_LAYOUT layout;
    const QStringList entries = text.split(QLatin1Char(';'));
    for (const QString& entry : entries)
    {
        const QStringList parts = entry.split(QLatin1Char('~'));
        if (parts.size() != 2)
            continue;
        layout.columns.append({parts[0], parts[1].toInt()});
    }
    return layout;
}

QStringList VELD_TABLE_LAYOUT::names() const
{
    QStringList result;
    for (const auto& column : columns)
        result << column.first;
    return result;
}

QMap<QString, int> VELD_TABLE_LAYOUT::widths() const
{
    QMap<QString, int> result;
    for (const auto& column : columns)
        result.insert(column.first, column.second);
    return result;
}

VELD_TABLE_LAYOUT VELD_TABLE_LAYOUT::of_header(const QHeaderView& header)
{
    VELD_TABLE_LAYOUT layout;
    const QAbstractItemModel* model = header.model();
    if (!model)
        return layout;
    for (int visual = 0; visual < header.count(); ++visual)
    {
        const int logical = header.logicalIndex(visual);
        layout.columns.append({model->headerData(logical, header.orientation(), Qt::DisplayRole).toString(),
                               header.sectionSize(logical)});
    }
    return layout;
}

QString VELD_TABLE_LAYOUT::stored_text(const QString& table_key)
{
    ORBIN_SETTINGS settings(QString::fromLatin1(layouts_path));
    return settings.value(table_key).toString();
}

void VELD_TABLE_LAYOUT::store_text(const QString& table_key, const QString& text)
{
    ORBIN_SETTINGS settings(QString::fromLatin1(layouts_path));
    settings.setValue(table_key, text);
}
