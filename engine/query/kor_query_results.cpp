#include "kor_query_results.h"

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_schema.h"

KOR_QUERY_RESULTS::KOR_QUERY_RESULTS() = default;

KOR_QUERY_RESULTS::~KOR_QUERY_RESULTS()
{
    clear();
}

KOR_QUERY_RESULTS::KOR_QUERY_RESULTS(KOR_QUERY_RESULTS&& other) noexcept
{
    take(other);
}

KOR_QUERY_RESULTS& KOR_QUERY_RESULTS::operator=(KOR_QUERY_RESULTS&& other) noexcept
{
    if (this != &other)
    {
        clear();
        take(other);
    }
    return *this;
}

void KOR_QUERY_RESULTS::take(KOR_QUERY_RESULTS& other)
{
    m_statement = std::move(other.m_statement);
    m_schema = std::move(other.m_schema);
    m_fields = std::move(other.m_fields);
    m_source_tables = std::move(other.m_source_tables);
    m_field_sources = std::move(other.m_field_sources);
    m_source_fields = std::move(other.m_source_fields);
    m_records = std::move(other.m_records);
    m_source_uuids = std::move(other.m_source_uuids);
    // Moved-from Qt containers are empty already; clearing says so plainly.
    other.clear();
}

void KOR_QUERY_RESULTS::clear()
{
    // Records point at the schema's fields, so they go first.
    qDeleteAll(m_records);
    m_records.clear();
    m_source_uuids.clear();
    m_fields.clear();
    m_schema.reset();
    m_source_tables.clear();
    m_field_sources.clear();
    m_source_fields.clear();
    m_statement.clear();
}

const KOR_FIELD_SCHEMA* KOR_QUERY_RESULTS::field(int column) const
{
    return column >= 0 && column < m_fields.size() ? m_fields.at(column) : nullptr;
}

QStringList KOR_QUERY_RESULTS::field_names() const
{
    QStringList names;
    names.reserve(m_fields.size());
    for (const KOR_FIELD_SCHEMA* field : m_fields)
        names << field->field_name();
    return names;
}

int KOR_QUERY_RESULTS::field_index(const QString& name) const
{
    for (int i = 0; i < m_fields.size(); ++i)
    {
        if (m_fields.at(i)->field_name().compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

QString KOR_QUERY_RESULTS::source_table(int column) const
{
    if (column < 0 || column >= m_field_sources.size())
        return QString();
    return m_source_tables.value(m_field_sources.at(column));
}

QString KOR_QUERY_RESULTS::source_field(int column) const
{
    return m_source_fields.value(column);
}

KOR_RECORD_DATA* KOR_QUERY_RESULTS::record(int row) const
{
    return row >= 0 && row < m_records.size() ? m_records.at(row) : nullptr;
}

QVariant KOR_QUERY_RESULTS::value(int row, int column) const
{
    const KOR_RECORD_DATA* result = record(row);
    const KOR_FIELD_SCHEMA* result_field = field(column);
    if (!result || !result_field)
        return QVariant();
    const KOR_FIELD_DATA* data = result->get_field_data(result_field->field_name());
    return data ? data->value() : QVariant();
}

QUuid KOR_QUERY_RESULTS::source_record_uuid(int row, int table_index) const
{
    const int tables = m_source_tables.size();
    if (row < 0 || row >= m_records.size() || table_index < 0 || table_index >= tables)
        return QUuid();
    return m_source_uuids.value(row * tables + table_index);
}
