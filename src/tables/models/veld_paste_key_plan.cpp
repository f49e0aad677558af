#include "veld_paste_key_plan.h"

VELD_PASTE_KEY_PLAN VELD_PASTE_KEY_PLAN::make(const QList<QString>& primary_key_fields,
                                              const QMap<QString, int>& column_of_field,
                                              const QMap<QString, QString>& current_texts,
                                              const QMap<int, QString>& pasted, const QString& record_key,
                                              const std::function<bool(const QString& key)>& key_in_use)
{
    VELD_PASTE_KEY_PLAN plan;
    for (const QString& field : primary_key_fields)
    {
        const int column = column_of_field.value(field, -1);
        const auto text = pasted.constFind(column);
        if (column >= 0 && text != pasted.constEnd())
        {
            plan.m_composite_key += text.value();
            plan.m_key_columns.insert(column);
        }
        else
            plan.m_composite_key += current_texts.value(field);
    }
    plan.m_key_refused = plan.m_composite_key != record_key && key_in_use && key_in_use(plan.m_composite_key);
    return plan;
}

QString VELD_PASTE_KEY_PLAN::refusal_text(int row) const
{
    return QLatin1Char('\'') + m_composite_key +
           QStringLiteral("' key already exists, key will not be pasted for row (") + QString::number(row) +
           QStringLiteral(").");
}
