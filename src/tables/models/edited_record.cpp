#include "edited_record.h"

#include "kor_field_data.h"
#include "kor_record_data.h"

EDITED_RECORD::EDITED_RECORD(const QString& key, const KOR_RECORD_DATA* original)
    : m_key(key), m_state(UNCHANGED), m_original(original)
{
}

EDITED_RECORD::EDITED_RECORD(const QString& key, std::unique_ptr<KOR_RECORD_DATA> new_record)
    : m_key(key), m_state(NEW), m_edited(std::move(new_record))
{
}

EDITED_RECORD::EDITED_RECORD(EDITED_RECORD&&) noexcept = default;
EDITED_RECORD& EDITED_RECORD::operator=(EDITED_RECORD&&) noexcept = default;
EDITED_RECORD::~EDITED_RECORD() = default;

const KOR_RECORD_DATA* EDITED_RECORD::value_record() const
{
    switch (m_state)
    {
    case EDITED:
    case NEW:
        return m_edited.get();
    default:
        return m_original;
    }
}

QUuid EDITED_RECORD::uuid() const
{
    if (m_edited)
        return m_edited->uuid();
    return m_original ? m_original->uuid() : QUuid();
}

const KOR_FIELD_DATA* EDITED_RECORD::field_data(const QString& field_name) const
{
    const KOR_RECORD_DATA* record = value_record();
    return record ? record->get_field_data(field_name) : nullptr;
}

QVariant EDITED_RECORD::value(const QString& field_name) const
{
    const KOR_FIELD_DATA* field = field_data(field_name);
    return field ? field->value() : QVariant();
}

bool EDITED_RECORD::set_value(const QString& field_name, const QVariant& value, QString& error)
{
    if (m_state == LOCKED)
        return true;
    if (m_state == UNCHANGED)
    {
        if (!m_original || !m_original->get_field_data(field_name))
        {
            error = QStringLiteral("The record has no field '") + field_name + QLatin1Char('\'');
            return false;
        }
        // A detached copy: it belongs to no table, so writing it never
        // touches the engine's data.
        m_edited.reset(new KOR_RECORD_DATA(*m_original, nullptr, false));
        m_state = EDITED;
    }
    KOR_FIELD_DATA* field = m_edited ? m_edited->get_field_data(field_name) : nullptr;
    if (!field)
    {
        error = QStringLiteral("The record has no field '") + field_name + QLatin1Char('\'');
        return false;
    }
    field->set_value(value);
    return true;
}

std::unique_ptr<KOR_RECORD_DATA> EDITED_RECORD::snapshot() const
{
    if (!m_edited)
        return nullptr;
    return std::unique_ptr<KOR_RECORD_DATA>(new KOR_RECORD_DATA(*m_edited, nullptr, false));
}
