#include "veld_dropdown_items.h"

#include <algorithm>

QVector<VELD_DROPDOWN_ITEMS::ITEM>
VELD_DROPDOWN_ITEMS::from_fixed_values(const QSet<QString>& values, bool required, const TEXT_TEST& passes)
{
    QStringList kept;
    for (const QString& value : values)
    {
        if (!passes || passes(value))
            kept.append(value);
    }
    // Ordinal, as the combo's item model sorts its column.
    std::sort(kept.begin(), kept.end(), [](const QString& left, const QString& right) {
        return left.compare(right, Qt::CaseSensitive) < 0;
    });
    QVector<ITEM> items;
    items.reserve(kept.size() + 1);
    // The empty choice carries an empty text as its value, so that an empty
    // cell finds it when the box opens.
    if (!required)
        items.append({QString(), QString()});
    for (const QString& value : qAsConst(kept))
        items.append({value, value});
    return items;
}

QVector<VELD_DROPDOWN_ITEMS::ITEM> VELD_DROPDOWN_ITEMS::from_pairs(const QVector<QVariant>* values,
                                                                   const QStringList* texts, bool required,
                                                                   bool show_display_text,
                                                                   const TEXT_TEST& passes)
{
    QVector<ITEM> items;
    if (!values || !texts || values->size() != texts->size() || values->isEmpty())
        return items;
    items.reserve(values->size() + 1);
    for (int i = 0; i < values->size(); ++i)
    {
        const QString& display = texts->at(i);
        if (passes && !passes(display))
            continue;
        const QVariant& value = values->at(i);
        items.append({show_display_text ? display : value.toString(), value});
    }
    if (!required)
        items.append({QString(), QString()});
    return items;
}
