#include "sample_rows.h"

#include "kor_field_data.h"
#include "sample_table.h"

QString SAMPLE_ROW::text(const QString& field) const
{
    return KOR_FIELD_DATA::variant_to_text(values.value(field));
}

SAMPLE_ROW& SAMPLE_ROWS::add()
{
    m_rows.emplace_back();
    return m_rows.back();
}

QStringList SAMPLE_ROWS::texts(const QString& field) const
{
    QStringList result;
    result.reserve(size());
    for (const SAMPLE_ROW& row : m_rows)
        result.append(row.text(field));
    return result;
}

QString SAMPLE_ROWS::key_of(const SAMPLE_ROW& row) const
{
    QString key;
    if (m_table)
        for (const QString& field : m_table->key_fields())
            key += row.text(field);
    return key;
}

QStringList SAMPLE_ROWS::keys() const
{
    QStringList result;
    result.reserve(size());
    for (const SAMPLE_ROW& row : m_rows)
        result.append(key_of(row));
    return result;
}

const SAMPLE_ROW* SAMPLE_ROWS::find(const QString& field, const QString& text) const
{
    for (const SAMPLE_ROW& row : m_rows)
        if (row.text(field) == text)
            return &row;
    return nullptr;
}
