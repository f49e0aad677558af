#include "kor_field_schema.h"

#include "case_insensitive_compare_string.h"
#include "kor_field_data.h"
#include "kor_record_data.h"
#include "kor_table_schema.h"

namespace
{
const char* const TYPE_NAMES[] = {"",           "yesno",     "integer",   "unsigned_integer",
                                  "single",     "double",    "decimal",   "text",
                                  "autonumber", "date_time", "unique_id", "card64"};

const char* const METAFIELD_NAMES[] = {
    "Default Value",         "Required",          "Localised",     "Spreadsheet",
    "Primary Key",           "Field Name",        "Field Type",    "Max Length",
    "Foreign Table",         "Foreign Field",     "Lookup Fields", "Is File",
    "Relative Path",         "Fragment Path",     "Description",   "Encyclopaedia Export",
    "AGF this -> other",     "AGF this <- other", "AGF Done",      "Startpos Reprocess",
    "Campaign Map Reprocess"};

QStringList to_string_list(const QVariant& value)
{
    if (!value.isValid())
        return QStringList();
    if (value.type() == QVariant::StringList || value.type() == QVariant::List)
        return value.toStringList();
    return value.toString().split(QLatin1Char(':'), Qt::SkipEmptyParts);
}

const QString& empty_string()
{
    static const QString empty;
    return empty;
}
} // namespace

KOR_FIELD_SCHEMA::KOR_FIELD_SCHEMA(const QUuid& field_unique_id) : m_field_unique_id(field_unique_id) {}

KOR_FIELD_SCHEMA::KOR_FIELD_SCHEMA(const KOR_FIELD_SCHEMA& other)
{
    copy_attributes(other);
}

KOR_FIELD_SCHEMA& KOR_FIELD_SCHEMA::operator=(const KOR_FIELD_SCHEMA& other)
{
    if (this == &other)
        return *this;
    const QString old_name = m_field_name;
    const bool was_key = m_primary_key;
    copy_attributes(other);
    if (m_owner)
    {
        if (old_name != m_field_name)
            m_owner->field_renamed(this, old_name);
        else if (was_key != m_primary_key)
            m_owner->refresh_primary_key_fields();
    }
    return *this;
}

KOR_FIELD_SCHEMA::~KOR_FIELD_SCHEMA() = default;

void KOR_FIELD_SCHEMA::copy_attributes(const KOR_FIELD_SCHEMA& other)
{
    m_field_name = other.m_field_name;
    m_field_unique_id = other.m_field_unique_id;
    m_field_type = other.m_field_type;
    m_default_value = other.m_default_value;
    m_spreadsheet = other.m_spreadsheet;
    m_dependency = other.m_dependency;
    m_lookup_fields = other.m_lookup_fields;
    m_relative_path = other.m_relative_path;
    m_fragment_path = other.m_fragment_path;
    m_description = other.m_description;
    m_fixed_column_values = other.m_fixed_column_values;
    m_dependents = other.m_dependents;
    m_looked_up_by = other.m_looked_up_by;
    m_max_length = other.m_max_length;
    m_row = other.m_row;
    m_required = other.m_required;
    m_localised = other.m_localised;
    m_primary_key = other.m_primary_key;
    m_is_file = other.m_is_file;
    m_encyclopaedia_export = other.m_encyclopaedia_export;
    m_agf_from_this_field = other.m_agf_from_this_field;
    m_agf_towards_this_field = other.m_agf_towards_this_field;
    m_agf_done = other.m_agf_done;
    m_startpos_reprocess = other.m_startpos_reprocess;
    m_campaign_map_reprocess = other.m_campaign_map_reprocess;
}

void KOR_FIELD_SCHEMA::initialise(bool primary_key, QString field_name, KOR_FIELD_TYPE field_type,
                                  bool required, const QVariant& default_value, int max_length, bool is_file,
                                  const QString& relative_path, const QString& fragment_path,
                                  const QString& description, bool encyclopaedia_export,
                                  bool agf_from_this_field, bool agf_towards_this_field)
{
    const QString old_name = m_field_name;
    const bool was_key = m_primary_key;
    m_primary_key = primary_key;
    m_field_name = field_name;
    m_field_type = field_type;
    m_required = required;
    m_default_value = default_value;
    m_max_length = max_length;
    m_is_file = is_file;
    m_relative_path = relative_path;
    m_fragment_path = fragment_path;
    m_description = description;
    m_encyclopaedia_export = encyclopaedia_export;
    m_agf_from_this_field = agf_from_this_field;
    m_agf_towards_this_field = agf_towards_this_field;
    m_localised = false;
    m_spreadsheet.clear();
    m_dependency = QPair<QString, QString>();
    m_lookup_fields.clear();
    m_agf_done = false;
    m_startpos_reprocess = false;
    m_campaign_map_reprocess = false;
    if (m_owner)
    {
        if (old_name != m_field_name)
            m_owner->field_renamed(this, old_name);
        else if (was_key != m_primary_key)
            m_owner->refresh_primary_key_fields();
    }
}

const QString& KOR_FIELD_SCHEMA::table_name() const
{
    return m_owner ? m_owner->get_table_name() : empty_string();
}

const QPair<QString, QString>* KOR_FIELD_SCHEMA::dependency() const
{
    return m_dependency.first.isEmpty() ? nullptr : &m_dependency;
}

void KOR_FIELD_SCHEMA::add_dependency(const QString& foreign_table, const QString& foreign_field)
{
    m_dependency = qMakePair(foreign_table, foreign_table.isEmpty() ? QString() : foreign_field);
}

void KOR_FIELD_SCHEMA::remove_dependency()
{
    m_dependency = QPair<QString, QString>();
}

QVariant KOR_FIELD_SCHEMA::get_metafield_value(KOR_METAFIELD metafield) const
{
    switch (metafield)
    {
    case KMF_DEFAULT_VALUE:
        return m_default_value;
    case KMF_REQUIRED:
        return m_required;
    case KMF_LOCALISED:
        return m_localised;
    case KMF_SPREADSHEET:
        return m_spreadsheet;
    case KMF_PRIMARY_KEY:
        return m_primary_key;
    case KMF_FIELD_NAME:
        return m_field_name;
    case KMF_FIELD_TYPE:
        return int(m_field_type);
    case KMF_MAX_LENGTH:
        return m_max_length;
    case KMF_FOREIGN_TABLE:
        return m_dependency.first;
    case KMF_FOREIGN_FIELD:
        return m_dependency.second;
    case KMF_LOOKUP_FIELDS:
        return m_lookup_fields;
    case KMF_IS_FILE:
        return m_is_file;
    case KMF_RELATIVE_PATH:
        return m_relative_path;
    case KMF_FRAGMENT_PATH:
        return m_fragment_path;
    case KMF_DESCRIPTION:
        return m_description;
    case KMF_ENCYCLOPAEDIA_EXPORT:
        return m_encyclopaedia_export;
    case KMF_AGF_FROM_THIS_FIELD:
        return m_agf_from_this_field;
    case KMF_AGF_TOWARDS_THIS_FIELD:
        return m_agf_towards_this_field;
    case KMF_AGF_DONE:
        return m_agf_done;
    case KMF_STARTPOS_REPROCESS:
        return m_startpos_reprocess;
    case KMF_CAMPAIGN_MAP_REPROCESS:
        return m_campaign_map_reprocess;
    case KMF_COUNT:
        break;
    }
    return QVariant();
}

bool KOR_FIELD_SCHEMA::set_metafield_value(KOR_METAFIELD metafield, const QVariant& value)
{
    switch (metafield)
    {
    case KMF_DEFAULT_VALUE:
        m_default_value = value;
        return true;
    case KMF_REQUIRED:
        m_required = value.toBool();
        return true;
    case KMF_LOCALISED:
        m_localised = value.toBool();
        return true;
    case KMF_SPREADSHEET:
        m_spreadsheet = value.toString();
        return true;
    case KMF_PRIMARY_KEY:
        if (m_primary_key != value.toBool())
        {
            m_primary_key = value.toBool();
            if (m_owner)
                m_owner->refresh_primary_key_fields();
        }
        return true;
    case KMF_FIELD_NAME:
    {
        const QString name = value.toString();
        if (name == m_field_name)
            return true;
        if (!is_valid_name(name))
            return false;
        if (m_owner)
        {
            const KOR_FIELD_SCHEMA* other = m_owner->field_schema_by_name(name);
            if (other && other != this)
                return false;
        }
        const QString old_name = m_field_name;
        m_field_name = name;
        if (m_owner)
            m_owner->field_renamed(this, old_name);
        return true;
    }
    case KMF_FIELD_TYPE:
    {
        bool ok = false;
        int type = value.toInt(&ok);
        if (!ok && value.type() == QVariant::String)
            type = string_to_field_type(value.toString());
        if (type < KFT_YESNO || type > KFT_CARD64)
            return false;
        m_field_type = KOR_FIELD_TYPE(type);
        return true;
    }
    case KMF_MAX_LENGTH:
    {
        if (!value.isValid() || value.toString().isEmpty())
        {
            m_max_length = -1;
            return true;
        }
        bool ok = false;
        const int length = value.toInt(&ok);
        if (!ok)
            return false;
        m_max_length = length;
        return true;
    }
    case KMF_FOREIGN_TABLE:
    {
        const QString table = value.toString();
        if (table.isEmpty())
            m_dependency = QPair<QString, QString>();
        else
            m_dependency.first = table;
        return true;
    }
    case KMF_FOREIGN_FIELD:
        m_dependency.second = value.toString();
        return true;
    case KMF_LOOKUP_FIELDS:
        m_lookup_fields = to_string_list(value);
        return true;
    case KMF_IS_FILE:
        m_is_file = value.toBool();
        return true;
    case KMF_RELATIVE_PATH:
        m_relative_path = value.toString();
        return true;
    case KMF_FRAGMENT_PATH:
        m_fragment_path = value.toString();
        return true;
    case KMF_DESCRIPTION:
        m_description = value.toString();
        return true;
    case KMF_ENCYCLOPAEDIA_EXPORT:
        m_encyclopaedia_export = value.toBool();
        return true;
    case KMF_AGF_FROM_THIS_FIELD:
        m_agf_from_this_field = value.toBool();
        return true;
    case KMF_AGF_TOWARDS_THIS_FIELD:
        m_agf_towards_this_field = value.toBool();
        return true;
    case KMF_AGF_DONE:
        m_agf_done = value.toBool();
        return true;
    case KMF_STARTPOS_REPROCESS:
        m_startpos_reprocess = value.toBool();
        return true;
    case KMF_CAMPAIGN_MAP_REPROCESS:
        m_campaign_map_reprocess = value.toBool();
        return true;
    case KMF_COUNT:
        break;
    }
    return false;
}

QString KOR_FIELD_SCHEMA::field_type_to_string(KOR_FIELD_TYPE type)
{
    if (type < KFT_YESNO || type > KFT_CARD64)
        return QString();
    return QString::fromLatin1(TYPE_NAMES[type]);
}

KOR_FIELD_TYPE KOR_FIELD_SCHEMA::string_to_field_type(const QString& name)
{
    for (int type = KFT_YESNO; type <= KFT_CARD64; ++type)
        if (name.compare(QLatin1String(TYPE_NAMES[type]), Qt::CaseInsensitive) == 0)
            return KOR_FIELD_TYPE(type);
    return KFT_NONE;
}

QString KOR_FIELD_SCHEMA::metafield_to_string(KOR_METAFIELD metafield)
{
    if (metafield < KMF_DEFAULT_VALUE || metafield >= KMF_COUNT)
        return QString();
    return QString::fromLatin1(METAFIELD_NAMES[metafield]);
}

bool KOR_FIELD_SCHEMA::is_valid_name(const QString& name)
{
    if (name.isEmpty() || name.size() > 100)
        return false;
    for (int i = 0; i < name.size(); ++i)
    {
        const ushort c = name.at(i).unicode();
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
        const bool digit = c >= '0' && c <= '9';
        if (!letter && !(digit && i > 0))
            return false;
    }
    return true;
}

int KOR_FIELD_SCHEMA::stored_type(KOR_FIELD_TYPE type)
{
    switch (type)
    {
    case KFT_YESNO:
        return QMetaType::Bool;
    case KFT_INTEGER:
    case KFT_UNSIGNED_INTEGER:
    case KFT_AUTONUMBER:
        return QMetaType::Int;
    case KFT_SINGLE:
        return QMetaType::Float;
    case KFT_DOUBLE:
    case KFT_DECIMAL:
        return QMetaType::Double;
    case KFT_TEXT:
        return QMetaType::QString;
    case KFT_DATE_TIME:
        return QMetaType::QDateTime;
    case KFT_UNIQUE_ID:
    case KFT_CARD64:
        return QMetaType::ULongLong;
    case KFT_NONE:
        break;
    }
    return QMetaType::UnknownType;
}

bool KOR_FIELD_SCHEMA::stored_value(QString& error, const QVariant& value, QVariant& out) const
{
    const int type = stored_type(field_type());
    if (type == QMetaType::UnknownType)
    {
        error = QStringLiteral("Field '%1' has no valid type").arg(field_name());
        return false;
    }
    if (!value.isValid() || value.isNull())
    {
        out = field_type() == KFT_TEXT ? QVariant(QString(QLatin1String(""))) : QVariant();
        return true;
    }
    // An unsigned integer is held as an int, so a negative int has the right
    // type but is no valid value: the table file could not be read back.
    if (int(value.type()) == type && !(field_type() == KFT_UNSIGNED_INTEGER && value.toInt() < 0))
    {
        out = field_type() == KFT_DATE_TIME ? QVariant(value.toDateTime().toUTC()) : value;
        return true;
    }
    QString reason;
    if (!KOR_RECORD_DATA::convert_string_to_type(reason, out, field_type(), KOR_FIELD_DATA::variant_to_text(value)))
    {
        error = QStringLiteral("'%1' is not a valid value for field '%2': %3")
                    .arg(KOR_FIELD_DATA::variant_to_text(value), field_name(), reason);
        return false;
    }
    return true;
}
