#pragma once

#include <QString>
#include <QVariant>
#include <QtGlobal>

class KOR_FIELD_SCHEMA;
class KOR_RECORD_DATA;

// One value of a record: the field's schema and its QVariant, plus, for
// localised text, the approval data (state, last approved text, last edit
// user, requires translation, requires recording). Approval data is allocated
// only when a field has any, so plain fields stay small.
class KOR_FIELD_DATA
{
public:
    enum TEXT_APPROVAL_STATE
    {
        TAS_AWAITING_APPROVAL = 0,
        TAS_APPROVED = 1,
        TAS_IGNORED = 2
    };

    // The record argument is accepted for the contract; a field joins a record
    // only through KOR_RECORD_DATA::add_field_data or insert_field_data.
    explicit KOR_FIELD_DATA(const KOR_FIELD_SCHEMA* field_schema, KOR_RECORD_DATA* record = nullptr);
    // Copies the value and the approval data.
    KOR_FIELD_DATA(const KOR_FIELD_DATA& other);
    // Copies the value and the approval data; the schema stays.
    KOR_FIELD_DATA& operator=(const KOR_FIELD_DATA& other);
    virtual ~KOR_FIELD_DATA();

    // The value, read and written directly. Engine-owned records are changed
    // through the query interface; writing them here bypasses transactions.
    QVariant m_value;
    QVariant& value() { return m_value; }
    const QVariant& value() const { return m_value; }
    void set_value(const QVariant& value) { m_value = value; }
    // The value as text, as keys, lookups and table files show it: "true" or
    // "false", decimal numbers, shortest round-trip floats, ISO date-times.
    QString value_text() const { return variant_to_text(m_value); }
    static QString variant_to_text(const QVariant& value);

    const KOR_FIELD_SCHEMA* field_schema() const { return m_field_schema; }
    // The field's name from its schema; empty without a schema.
    QString field_name() const;

    // Text approval. A field without approval data answers state 0, empty
    // texts and false flags; any setter gives it approval data.
    bool has_approval_data() const { return approval() != nullptr; }
    int approval_state() const;
    void set_approval_state(int state);
    QString last_approved_text() const;
    void set_last_approved_text(const QString& text);
    QString last_edit_user() const;
    void set_last_edit_user(const QString& user);
    bool requires_translation() const;
    void set_requires_translation(bool required);
    bool requires_recording() const;
    void set_requires_recording(bool required);
    void clear_approval_data();
    // Whether both fields hold equal approval data (none equals none).
    bool approval_data_equals(const KOR_FIELD_DATA& other) const;

private:
    friend class KOR_RECORD_DATA;
    friend class KOR_ENGINE_ACCESS;
    struct APPROVAL_DATA;
    APPROVAL_DATA* approval() const
    {
        return reinterpret_cast<APPROVAL_DATA*>(m_approval_and_flags & ~quintptr(1));
    }
    APPROVAL_DATA* approval_for_write();
    void set_approval(APPROVAL_DATA* data);
    // Fields of records loaded from a table file live in the table's memory
    // pool; their storage is not freed one by one.
    bool is_pooled() const { return (m_approval_and_flags & 1) != 0; }

    const KOR_FIELD_SCHEMA* m_field_schema;
    quintptr m_approval_and_flags = 0;
};
