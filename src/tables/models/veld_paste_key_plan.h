#pragma once

#include <QList>
#include <QMap>
#include <QSet>
#include <QString>

#include <functional>

// What a pasted row does to its record's key. The key after the paste is
// the record's key fields with the pasted texts in place of the current ones,
// joined in key-field order. When that key is another record's, the key cells
// of the row are not pasted and the rest of the row is.
class VELD_PASTE_KEY_PLAN
{
public:
    // `primary_key_fields` in key order; `column_of_field` gives each key
    // field's logical column; `current_texts` each key field's text now;
    // `pasted` the row's texts by logical column.
    static VELD_PASTE_KEY_PLAN make(const QList<QString>& primary_key_fields,
                                    const QMap<QString, int>& column_of_field,
                                    const QMap<QString, QString>& current_texts,
                                    const QMap<int, QString>& pasted, const QString& record_key,
                                    const std::function<bool(const QString& key)>& key_in_use);

    const QString& composite_key() const { return m_composite_key; }
    // The pasted columns that are key fields.
    const QSet<int>& key_columns() const { return m_key_columns; }
    // The key is in use by another record: the key columns are left out.
    bool key_refused() const { return m_key_refused; }
    // Whether the cell of `column` is written.
    bool writes(int column) const { return !(m_key_refused && m_key_columns.contains(column)); }

    // The status line of a refused key for a row.
    QString refusal_text(int row) const;

private:
    QString m_composite_key;
    QSet<int> m_key_columns;
    bool m_key_refused = false;
};
