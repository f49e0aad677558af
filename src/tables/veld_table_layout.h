#pragma once

#include <QList>
#include <QMap>
#include <QPair>
#include <QString>
#include <QStringList>

class QHeaderView;

// The remembered column layout of a table: its columns in visual order with
// their widths, kept as one text per table under "TableLayouts", entries
// "field~width" joined by ";".
class VELD_TABLE_LAYOUT
{
public:
    // Columns in visual order with their widths.
    QList<QPair<QString, int>> columns;

    QString to_text() const;
    // Entries that are not "name~width" are dropped; a width that is not a
    // number reads as 0 (and is then not applied).
    static VELD_TABLE_LAYOUT from_text(const QString& text);

    QStringList names() const;
    QMap<QString, int> widths() const;

    // The layout a header shows: each section in visual order, named by the
    // header data of its logical section.
    static VELD_TABLE_LAYOUT of_header(const QHeaderView& header);

    // The stored layout of a table; empty when none was stored.
    static QString stored_text(const QString& table_key);
    static void store_text(const QString& table_key, const QString& text);
};
