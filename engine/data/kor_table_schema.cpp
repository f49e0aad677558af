#include "kor_table_schema.h"

#include "case_insensitive_compare_string.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"

#include <QSet>

KOR_TABLE_SCHEMA::KOR_TABLE_SCHEMA(const QString& table_name) : m_table_name(table_name) {}

KOR_TABLE_SCHEMA::KOR_TABLE_SCHEMA(const KOR_TABLE_SCHEMA& other)
{
    copy_from(other);
}

KOR_TABLE_SCHEMA& KOR_TABLE_SCHEMA::operator=(const KOR_TABLE_SCHEMA& other)
{
    if (this != &other)
    {
        clear();
        copy_from(other);
    }
    return *this;
}

KOR_TABLE_SCHEMA::~KOR_TABLE_SCHEMA()
{
    clear();
}

void KOR_TABLE_SCHEMA::clear()
{
    for (KOR_FIELD_SCHEMA* field : qAsConst(m_field_schemas))
    {
        field->m_owner = nullptr;
        delete field;
    }
    m_field_schemas.clear();
    m_column_ordering.clear();
    m_primary_key_fields.clear();
}

void KOR_TABLE_SCHEMA::copy_from(const KOR_TABLE_SCHEMA& other)
{
    m_table_name = other.m_table_name;
    m_table_unique_id = other.m_table_unique_id;
    m_agf_special_dependencies = other.m_agf_special_dependencies;
    for (const QString& name : other.m_column_ordering)
        add_field_schema(new KOR_FIELD_SCHEMA(*other.m_field_schemas.value(name)));
}

KOR_FIELD_SCHEMA* KOR_TABLE_SCHEMA::field_schema_by_name(const QString& name)
{
    return const_cast<KOR_FIELD_SCHEMA*>(
        static_cast<const KOR_TABLE_SCHEMA*>(this)->field_schema_by_name(name));
}

const KOR_FIELD_SCHEMA* KOR_TABLE_SCHEMA::field_schema_by_name(const QString& name) const
{
    auto it = m_field_schemas.constFind(name);
    if (it != m_field_schemas.constEnd())
        return it.value();
    for (const KOR_FIELD_SCHEMA* field : m_field_schemas)
        if (CASE_INSENSITIVE_COMPARE_STRING::compare(field->field_name(), name) == 0)
            return field;
    return nullptr;
}

KOR_FIELD_SCHEMA* KOR_TABLE_SCHEMA::field_schema_by_row(int row)
{
    return const_cast<KOR_FIELD_SCHEMA*>(
        static_cast<const KOR_TABLE_SCHEMA*>(this)->field_schema_by_row(row));
}

const KOR_FIELD_SCHEMA* KOR_TABLE_SCHEMA::field_schema_by_row(int row) const
{
    if (row < 0 || row >= m_column_ordering.size())
        return nullptr;
    return m_field_schemas.value(m_column_ordering.at(row));
}

KOR_FIELD_SCHEMA* KOR_TABLE_SCHEMA::field_schema_by_uuid(const QUuid& uuid)
{
    return const_cast<KOR_FIELD_SCHEMA*>(
        static_cast<const KOR_TABLE_SCHEMA*>(this)->field_schema_by_uuid(uuid));
}

const KOR_FIELD_SCHEMA* KOR_TABLE_SCHEMA::field_schema_by_uuid(const QUuid& uuid) const
{
    if (uuid.isNull())
        return nullptr;
    for (const KOR_FIELD_SCHEMA* field : m_field_schemas)
        if (field->field_unique_id() == uuid)
            return field;
    return nullptr;
}

bool KOR_TABLE_SCHEMA::set_column_ordering(const QList<QString>& ordering)
{
    if (ordering.size() != m_column_ordering.size())
        return false;
    QSet<QString> seen;
    for (const QString& name : ordering)
    {
        if (!m_field_schemas.contains(name) || seen.contains(name))
            return false;
        seen.insert(name);
    }
    m_column_ordering = ordering;
    refresh_primary_key_fields();
    return true;
}

QMap<QString, QStringList> KOR_TABLE_SCHEMA::dependent_fields() const
{
    QMap<QString, QStringList> result;
    for (const KOR_FIELD_SCHEMA* field : m_field_schemas)
        for (const auto& dependent : field->dependents())
            if (dependent.first != m_table_name && !result.value(dependent.first).contains(dependent.second))
                result[dependent.first].append(dependent.second);
    for (QStringList& fields : result)
        fields.sort();
    return result;
}

bool KOR_TABLE_SCHEMA::is_valid(QStringList& errors, bool new_table) const
{
    const int errors_before = errors.size();
    if (!KOR_FIELD_SCHEMA::is_valid_name(m_table_name))
        errors.append(QStringLiteral("Table name '%1' is not valid: use letters, digits and underscores, "
                                     "beginning with a letter or an underscore")
                          .arg(m_table_name));
    if (m_field_schemas.isEmpty())
        errors.append(QStringLiteral("The table '%1' has no fields").arg(m_table_name));
    if (new_table && m_primary_key_fields.isEmpty() && !m_field_schemas.isEmpty())
        errors.append(QStringLiteral("The table '%1' has no primary key field").arg(m_table_name));

    QSet<QString> folded_names;
    for (const QString& name : m_column_ordering)
    {
        const KOR_FIELD_SCHEMA* field = m_field_schemas.value(name);
        if (!KOR_FIELD_SCHEMA::is_valid_name(name))
            errors.append(QStringLiteral("Field name '%1' is not valid: use letters, digits and underscores, "
                                         "beginning with a letter or an underscore")
                              .arg(name));
        const QString folded = name.toLower();
        if (folded_names.contains(folded))
            errors.append(QStringLiteral("Field name '%1' is not unique.").arg(name));
        folded_names.insert(folded);
        if (field->field_type() < KFT_YESNO || field->field_type() > KFT_CARD64)
        {
            errors.append(QStringLiteral("Field '%1' has no valid type").arg(name));
            continue;
        }
        const QString default_text = field->default_value().toString();
        if (field->default_value().isValid() && !default_text.isEmpty() &&
            field->field_type() != KFT_AUTONUMBER && field->field_type() != KFT_UNIQUE_ID)
        {
            QString conversion_error;
            QVariant converted;
            if (!KOR_RECORD_DATA::convert_string_to_type(conversion_error, converted, field->field_type(),
                                                         default_text))
                errors.append(QStringLiteral("The default value of field '%1' is not valid: %2")
                                  .arg(name, conversion_error));
        }
        if (field->field_type() == KFT_TEXT && field->max_length() >= 0 &&
            default_text.size() > field->max_length())
            errors.append(QStringLiteral("The default value of field '%1' is longer than its maximum length")
                              .arg(name));
        if (field->source_table().isEmpty() && !field->lookup_fields().isEmpty())
            errors.append(QStringLiteral("Field '%1' has lookup fields but no foreign table").arg(name));
        if (!field->source_table().isEmpty() && !KOR_FIELD_SCHEMA::is_valid_name(field->source_table()))
            errors.append(
                QStringLiteral("Field '%1' names a foreign table that is not a valid table name: '%2'")
                    .arg(name, field->source_table()));
    }
    return errors.size() == errors_before;
}

KOR_FIELD_SCHEMA* KOR_TABLE_SCHEMA::add_field_schema(KOR_FIELD_SCHEMA* field)
{
    if (!field || field->m_owner)
        return nullptr;
    if (field_schema_by_name(field->field_name()))
        return nullptr;
    field->m_owner = this;
    m_field_schemas.insert(field->field_name(), field);
    m_column_ordering.append(field->field_name());
    if (field->is_primary_key())
        refresh_primary_key_fields();
    return field;
}

KOR_FIELD_SCHEMA* KOR_TABLE_SCHEMA::remove_field_schema(const QString& name)
{
    KOR_FIELD_SCHEMA* field = field_schema_by_name(name);
    if (!field)
        return nullptr;
    m_field_schemas.remove(field->field_name());
    m_column_ordering.removeAll(field->field_name());
    field->m_owner = nullptr;
    refresh_primary_key_fields();
    return field;
}

void KOR_TABLE_SCHEMA::field_renamed(KOR_FIELD_SCHEMA* field, const QString& old_name)
{
    m_field_schemas.remove(old_name);
    m_field_schemas.insert(field->field_name(), field);
    const int column = m_column_ordering.indexOf(old_name);
    if (column >= 0)
        m_column_ordering[column] = field->field_name();
    refresh_primary_key_fields();
}

void KOR_TABLE_SCHEMA::refresh_primary_key_fields()
{
    m_primary_key_fields.clear();
    for (const QString& name : qAsConst(m_column_ordering))
        if (m_field_schemas.value(name)->is_primary_key())
            m_primary_key_fields.append(name);
}
