#include "kor_record_data.h"

#include "kor_engine_access.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_table_schema.h"

KOR_RECORD_DATA::KOR_RECORD_DATA(const KOR_TABLE_SCHEMA* table_schema, KOR_TABLE_DATA* table_data,
                                 const QUuid& uuid)
    : m_table_schema(table_schema), m_table_data(table_data), m_uuid(uuid)
{
}

KOR_RECORD_DATA::KOR_RECORD_DATA(const KOR_RECORD_DATA& other, KOR_TABLE_DATA* table_data, bool new_uuid)
    : m_table_schema(other.m_table_schema), m_table_data(table_data),
      m_uuid(new_uuid ? QUuid::createUuid() : other.m_uuid), m_modification_msecs(other.m_modification_msecs)
{
    m_fields.reserve(quint32(other.m_fields.size()));
    for (KOR_FIELD_DATA* field : other.m_fields)
        m_fields.insert(new KOR_FIELD_DATA(*field));
}

KOR_RECORD_DATA::~KOR_RECORD_DATA()
{
    for (KOR_FIELD_DATA* field : m_fields)
        destroy_field(field);
    m_fields.release();
}

void KOR_RECORD_DATA::fields_changed()
{
    // What readers derived from the table's values (the search index) must
    // not survive a field added, replaced or removed in one of its records.
    if (m_in_table && m_table_data)
        KOR_ENGINE_ACCESS::mark_changed(*m_table_data);
}

QString KOR_RECORD_DATA::key() const
{
    if (!m_table_schema || m_table_schema->primary_key_fields().isEmpty())
        return m_uuid.toString(QUuid::WithoutBraces);
    const QList<QString>& key_fields = m_table_schema->primary_key_fields();
    if (key_fields.size() == 1)
    {
        const KOR_FIELD_DATA* field = m_fields.value(key_fields.first());
        return field ? field->value_text() : QString();
    }
    QString key;
    for (const QString& name : key_fields)
        if (const KOR_FIELD_DATA* field = m_fields.value(name))
            key += field->value_text();
    return key;
}

bool KOR_RECORD_DATA::set_uuid(const QUuid& uuid)
{
    if (m_in_table)
        return false;
    m_uuid = uuid;
    return true;
}

QDateTime KOR_RECORD_DATA::modification_time() const
{
    if (m_modification_msecs == 0)
        return QDateTime();
    return QDateTime::fromMSecsSinceEpoch(m_modification_msecs, Qt::UTC);
}

KOR_FIELD_DATA* KOR_RECORD_DATA::get_field_data(const QString& field_name)
{
    return m_fields.value(field_name);
}

const KOR_FIELD_DATA* KOR_RECORD_DATA::get_field_data(const QString& field_name) const
{
    return m_fields.value(field_name);
}

KOR_FIELD_DATA* KOR_RECORD_DATA::add_field_data(const KOR_FIELD_SCHEMA* field_schema, const QVariant& value)
{
    if (!field_schema)
        return nullptr;
    KOR_FIELD_DATA* field = new KOR_FIELD_DATA(field_schema, this);
    field->m_value = value;
    if (KOR_FIELD_DATA* replaced = m_fields.insert(field))
        destroy_field(replaced);
    fields_changed();
    return field;
}

bool KOR_RECORD_DATA::insert_field_data(KOR_FIELD_DATA* field)
{
    if (!field || !field->field_schema())
        return false;
    KOR_FIELD_DATA* replaced = m_fields.insert(field);
    if (replaced && replaced != field)
        destroy_field(replaced);
    fields_changed();
    return true;
}

bool KOR_RECORD_DATA::remove_field_data(const QString& field_name)
{
    KOR_FIELD_DATA* field = m_fields.take(field_name);
    if (!field)
        return false;
    destroy_field(field);
    fields_changed();
    return true;
}

bool KOR_RECORD_DATA::convert_string_to_field_type(QString& error, QVariant& out, const QString& field_name,
                                                   const QString& text) const
{
    const KOR_FIELD_SCHEMA* field =
        m_table_schema ? m_table_schema->field_schema_by_name(field_name) : nullptr;
    if (!field)
    {
        error = QStringLiteral("Unknown field '%1'").arg(field_name);
        return false;
    }
    return convert_string_to_type(error, out, field->field_type(), text);
}

bool KOR_RECORD_DATA::convert_string_to_type(QString& error, QVariant& out, KOR_FIELD_TYPE type,
                                             const QString& text)
{
    if (text.isEmpty())
    {
        out = type == KFT_TEXT ? QVariant(QString(QLatin1String(""))) : QVariant();
        return true;
    }
    bool ok = false;
    switch (type)
    {
    case KFT_YESNO:
        if (text == QLatin1String("1") || text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
            out = true;
        else if (text == QLatin1String("0") || text.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
            out = false;
        else
        {
            error = QStringLiteral("Not a valid boolean value: ") + text;
            return false;
        }
        return true;
    case KFT_INTEGER:
    case KFT_AUTONUMBER:
    {
        const int value = text.toInt(&ok);
        if (!ok)
        {
            error = QStringLiteral("Not a valid integer value: ") + text;
            return false;
        }
        out = value;
        return true;
    }
    case KFT_UNSIGNED_INTEGER:
    {
        const int value = text.toInt(&ok);
        if (!ok || value < 0)
        {
            error = QStringLiteral("Not a valid unsigned integer value: ") + text;
            return false;
        }
        out = value;
        return true;
    }
    case KFT_SINGLE:
    {
        const float value = text.toFloat(&ok);
        if (!ok)
        {
            error = QStringLiteral("Not a valid float value: ") + text;
            return false;
        }
        out = value;
        return true;
    }
    case KFT_DOUBLE:
    case KFT_DECIMAL:
    {
        const double value = text.toDouble(&ok);
        if (!ok)
        {
            error = QStringLiteral("Not a valid double value: ") + text;
            return false;
        }
        out = value;
        return true;
    }
    case KFT_TEXT:
        out = text;
        return true;
    case KFT_DATE_TIME:
    {
        QDateTime value = QDateTime::fromString(text, Qt::ISODateWithMs);
        if (!value.isValid())
        {
            error = QStringLiteral("Not a valid date-time value: ") + text;
            return false;
        }
        out = value.toUTC();
        return true;
    }
    case KFT_UNIQUE_ID:
    case KFT_CARD64:
    {
        const qulonglong value = text.toULongLong(&ok);
        if (!ok)
        {
            error = QStringLiteral("Not a valid card64 value: ") + text;
            return false;
        }
        out = value;
        return true;
    }
    case KFT_NONE:
        break;
    }
    error = QStringLiteral("Unknown field type %1").arg(int(type));
    return false;
}

void KOR_RECORD_DATA::destroy_field(KOR_FIELD_DATA* field)
{
    // Fields read from a table file live in the table's pool.
    if (field->is_pooled())
        field->~KOR_FIELD_DATA();
    else
        delete field;
}
