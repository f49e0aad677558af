#pragma once

#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include <functional>

// The choices a cell's dropdown offers, worked out apart from any widget.
//
// Each item has the text the box shows and the value written to the cell.
// The filter test is given the text a user reads (display text of a lookup,
// the value itself of a fixed list), whatever the box shows. A field that is
// not required offers an empty choice: first in a fixed list, last after
// lookups and dependencies.
class VELD_DROPDOWN_ITEMS
{
public:
    struct ITEM
    {
        QString text;
        QVariant value;
        bool operator==(const ITEM& other) const { return text == other.text && value == other.value; }
    };
    using TEXT_TEST = std::function<bool(const QString& text)>;

    // A fixed list of allowed values, sorted as the box's model sorts text.
    static QVector<ITEM> from_fixed_values(const QSet<QString>& values, bool required,
                                           const TEXT_TEST& passes);

    // Pairs of value and display text (lookups or dependencies). Missing
    // lists, lists of different lengths or empty lists give no items at all.
    // `show_display_text` false shows each value's own text instead.
    static QVector<ITEM> from_pairs(const QVector<QVariant>* values, const QStringList* texts, bool required,
                                    bool show_display_text, const TEXT_TEST& passes);
};
