#pragma once

#include <QString>
#include <QUuid>
#include <QVariant>

#include <memory>

class KOR_FIELD_DATA;
class KOR_RECORD_DATA;

// One row of the table data model: a record of the table, or a new record
// the user added, with the private copy that edits go to until they are
// applied.
//
// Values come from the original record while it is unchanged or locked, and
// from the private copy once edited or new. The first edit of an existing
// record makes the copy; the original (the engine's) is never written.
class EDITED_RECORD
{
public:
    enum STATE
    {
        UNCHANGED = 0,
        EDITED = 1,
        NEW = 2,
        // Edits are ignored and reported as successful.
        LOCKED = 3
    };

    // A record of the table, unchanged. The record stays the engine's.
    EDITED_RECORD(const QString& key, const KOR_RECORD_DATA* original);
    // A new record, owned.
    EDITED_RECORD(const QString& key, std::unique_ptr<KOR_RECORD_DATA> new_record);
    EDITED_RECORD(EDITED_RECORD&&) noexcept;
    EDITED_RECORD& operator=(EDITED_RECORD&&) noexcept;
    ~EDITED_RECORD();

    // The row's key: the record's key text for a record of the table (kept up
    // to date when key fields change), the new-record key for a new record.
    const QString& key() const { return m_key; }
    void set_key(const QString& key) { m_key = key; }
    STATE state() const { return m_state; }
    void lock() { m_state = LOCKED; }

    // The engine's record; null for a new record.
    const KOR_RECORD_DATA* original_record() const { return m_original; }
    // The same record as found again by a reload.
    void set_original(const KOR_RECORD_DATA* original) { m_original = original; }
    // The record's uuid, from the private copy when there is one.
    QUuid uuid() const;
    // The private copy; null while unchanged.
    const KOR_RECORD_DATA* edited_record() const { return m_edited.get(); }
    // Where the row's values come from in its state.
    const KOR_RECORD_DATA* value_record() const;

    // The stored value of a field; invalid when the record lacks it.
    QVariant value(const QString& field_name) const;
    const KOR_FIELD_DATA* field_data(const QString& field_name) const;

    // Writes one field. An unchanged record first becomes a private copy and
    // turns EDITED. False with `error` set when the record has no such field.
    bool set_value(const QString& field_name, const QVariant& value, QString& error);

    // A detached copy of the private copy as it stands, for the apply that
    // sends every edit of an existing record in turn.
    std::unique_ptr<KOR_RECORD_DATA> snapshot() const;

private:
    QString m_key;
    STATE m_state = UNCHANGED;
    const KOR_RECORD_DATA* m_original = nullptr;
    std::unique_ptr<KOR_RECORD_DATA> m_edited;
};
