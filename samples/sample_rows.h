#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QUuid>
#include <QVariant>
#include <QVariantMap>

#include <vector>

class SAMPLE_TABLE;

// The approval data a localised text is written with.
struct SAMPLE_APPROVAL
{
    int state = 0; // 0 awaiting approval, 1 approved, 2 ignored
    QString last_approved_text;
    QString last_edit_user;
    bool requires_translation = false;
    bool requires_recording = false;
};

// One generated record: values by field name, the approval data of its
// localised texts, and the uuid and modification time it is written with.
struct SAMPLE_ROW
{
    QVariantMap values;
    QMap<QString, SAMPLE_APPROVAL> approvals;
    QUuid uuid;
    qint64 modified_msecs = 0;

    SAMPLE_ROW& set(const QString& field, const QVariant& value)
    {
        values.insert(field, value);
        return *this;
    }
    QVariant value(const QString& field) const { return values.value(field); }
    QString text(const QString& field) const;
};

// The generated records of one table, in the order they were made.
class SAMPLE_ROWS
{
public:
    explicit SAMPLE_ROWS(const SAMPLE_TABLE* table = nullptr) : m_table(table) {}

    const SAMPLE_TABLE* table() const { return m_table; }
    SAMPLE_ROW& add();
    int size() const { return int(m_rows.size()); }
    bool isEmpty() const { return m_rows.empty(); }
    SAMPLE_ROW& operator[](int row) { return m_rows[size_t(row)]; }
    const SAMPLE_ROW& operator[](int row) const { return m_rows[size_t(row)]; }
    std::vector<SAMPLE_ROW>::const_iterator begin() const { return m_rows.begin(); }
    std::vector<SAMPLE_ROW>::const_iterator end() const { return m_rows.end(); }
    std::vector<SAMPLE_ROW>::iterator begin() { return m_rows.begin(); }
    std::vector<SAMPLE_ROW>::iterator end() { return m_rows.end(); }

    // The text of a field in every row, in row order.
    QStringList texts(const QString& field) const;
    // The record key of a row as the engine builds it: the key fields' texts
    // joined with nothing between them, in the table's key order.
    QString key_of(const SAMPLE_ROW& row) const;
    QStringList keys() const;
    // The first row whose field has that text; null when none has.
    const SAMPLE_ROW* find(const QString& field, const QString& text) const;

private:
    const SAMPLE_TABLE* m_table;
    std::vector<SAMPLE_ROW> m_rows;
};
