#include "kor_field_data.h"

#include "kor_field_schema.h"

#include <QDateTime>

#include <charconv>

struct KOR_FIELD_DATA::APPROVAL_DATA
{
    QString last_approved_text;
    QString last_edit_user;
    int state = TAS_AWAITING_APPROVAL;
    bool requires_translation = false;
    bool requires_recording = false;

    bool operator==(const APPROVAL_DATA& other) const
    {
        return state == other.state && requires_translation == other.requires_translation &&
               requires_recording == other.requires_recording &&
               last_approved_text == other.last_approved_text && last_edit_user == other.last_edit_user;
    }
};

KOR_FIELD_DATA::KOR_FIELD_DATA(const KOR_FIELD_SCHEMA* field_schema, KOR_RECORD_DATA*)
    : m_field_schema(field_schema)
{
}

KOR_FIELD_DATA::KOR_FIELD_DATA(const KOR_FIELD_DATA& other)
    : m_value(other.m_value), m_field_schema(other.m_field_schema)
{
    if (const APPROVAL_DATA* data = other.approval())
        set_approval(new APPROVAL_DATA(*data));
}

KOR_FIELD_DATA& KOR_FIELD_DATA::operator=(const KOR_FIELD_DATA& other)
{
    if (this == &other)
        return *this;
    m_value = other.m_value;
    if (const APPROVAL_DATA* data = other.approval())
        *approval_for_write() = *data;
    else
        clear_approval_data();
    return *this;
}

KOR_FIELD_DATA::~KOR_FIELD_DATA()
{
    delete approval();
}

void KOR_FIELD_DATA::set_approval(APPROVAL_DATA* data)
{
    m_approval_and_flags = reinterpret_cast<quintptr>(data) | (m_approval_and_flags & 1);
}

KOR_FIELD_DATA::APPROVAL_DATA* KOR_FIELD_DATA::approval_for_write()
{
    if (!approval())
        set_approval(new APPROVAL_DATA);
    return approval();
}

QString KOR_FIELD_DATA::field_name() const
{
    return m_field_schema ? m_field_schema->field_name() : QString();
}

QString KOR_FIELD_DATA::variant_to_text(const QVariant& value)
{
    switch (int(value.type()))
    {
    case QMetaType::UnknownType:
        return QString();
    case QMetaType::QString:
        return value.toString();
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::Int:
        return QString::number(value.toInt());
    case QMetaType::UInt:
        return QString::number(value.toUInt());
    case QMetaType::LongLong:
        return QString::number(value.toLongLong());
    case QMetaType::ULongLong:
        return QString::number(value.toULongLong());
    case QMetaType::Float:
    {
        // The shortest text that reads back as the same float.
        char buffer[32];
        const auto result = std::to_chars(buffer, buffer + sizeof buffer, value.toFloat());
        return QString::fromLatin1(buffer, int(result.ptr - buffer));
    }
    case QMetaType::Double:
    {
        char buffer[40];
        const auto result = std::to_chars(buffer, buffer + sizeof buffer, value.toDouble());
        return QString::fromLatin1(buffer, int(result.ptr - buffer));
    }
    case QMetaType::QDateTime:
        return value.toDateTime().toUTC().toString(Qt::ISODateWithMs);
    default:
        return value.toString();
    }
}

int KOR_FIELD_DATA::approval_state() const
{
    const APPROVAL_DATA* data = approval();
    return data ? data->state : TAS_AWAITING_APPROVAL;
}

void KOR_FIELD_DATA::set_approval_state(int state)
{
    approval_for_write()->state = state;
}

QString KOR_FIELD_DATA::last_approved_text() const
{
    const APPROVAL_DATA* data = approval();
    return data ? data->last_approved_text : QString();
}

void KOR_FIELD_DATA::set_last_approved_text(const QString& text)
{
    approval_for_write()->last_approved_text = text;
}

QString KOR_FIELD_DATA::last_edit_user() const
{
    const APPROVAL_DATA* data = approval();
    return data ? data->last_edit_user : QString();
}

void KOR_FIELD_DATA::set_last_edit_user(const QString& user)
{
    approval_for_write()->last_edit_user = user;
}

bool KOR_FIELD_DATA::requires_translation() const
{
    const APPROVAL_DATA* data = approval();
    return data && data->requires_translation;
}

void KOR_FIELD_DATA::set_requires_translation(bool required)
{
    approval_for_write()->requires_translation = required;
}

bool KOR_FIELD_DATA::requires_recording() const
{
    const APPROVAL_DATA* data = approval();
    return data && data->requires_recording;
}

void KOR_FIELD_DATA::set_requires_recording(bool required)
{
    approval_for_write()->requires_recording = required;
}

void KOR_FIELD_DATA::clear_approval_data()
{
    delete approval();
    set_approval(nullptr);
}

bool KOR_FIELD_DATA::approval_data_equals(const KOR_FIELD_DATA& other) const
{
    const APPROVAL_DATA* mine = approval();
    const APPROVAL_DATA* theirs = other.approval();
    if (!mine || !theirs)
        return mine == theirs;
    return *mine == *theirs;
}
