#include "kor_query_results_builder.h"

#include "kor_field_schema.h"
#include "kor_query_results.h"
#include "kor_record_data.h"
#include "kor_table_schema.h"

KOR_QUERY_RESULTS_BUILDER::KOR_QUERY_RESULTS_BUILDER(KOR_QUERY_RESULTS& results, const QString& statement,
                                                     const QStringList& source_tables)
    : m_results(results), m_uuid_base(QUuid::createUuid())
{
    m_results.clear();
    m_results.m_statement = statement;
    m_results.m_source_tables = source_tables;
    m_results.m_schema = std::make_unique<KOR_TABLE_SCHEMA>(QStringLiteral("query_results"));
}

bool KOR_QUERY_RESULTS_BUILDER::add_field(const KOR_FIELD_SCHEMA& source, int source_table, const QString& name,
                                          const QUuid& uuid)
{
    auto* field = new KOR_FIELD_SCHEMA(uuid);
    // The source's attributes, but never a key: the results have none.
    field->initialise(false, name, source.field_type(), source.is_required(), source.default_value(),
                      source.max_length(), source.is_file(), source.relative_path(), source.fragment_path(),
                      source.description(), source.encyclopaedia_export(), source.agf_from_this_field(),
                      source.agf_towards_this_field());
    for (int metafield = 0; metafield < KMF_COUNT; ++metafield)
    {
        if (metafield == KMF_FIELD_NAME || metafield == KMF_PRIMARY_KEY)
            continue;
        field->set_metafield_value(KOR_METAFIELD(metafield), source.get_metafield_value(KOR_METAFIELD(metafield)));
    }
    field->set_fixed_column_values(source.fixed_column_values());
    field->set_dependents(source.dependents());
    field->set_looked_up_by(source.looked_up_by());
    if (!m_results.m_schema->add_field_schema(field))
    {
        delete field;
        return false;
    }
    m_results.m_fields.append(field);
    m_results.m_field_sources.append(source_table);
    m_results.m_source_fields.append(source.field_name());
    return true;
}

int KOR_QUERY_RESULTS_BUILDER::field_count() const
{
    return m_results.m_fields.size();
}

const KOR_FIELD_SCHEMA* KOR_QUERY_RESULTS_BUILDER::field(int column) const
{
    return m_results.field(column);
}

void KOR_QUERY_RESULTS_BUILDER::reserve(int records)
{
    m_results.m_records.reserve(records);
    m_results.m_source_uuids.reserve(records * m_results.m_source_tables.size());
}

KOR_RECORD_DATA* KOR_QUERY_RESULTS_BUILDER::add_record(const QVector<QUuid>& source_uuids)
{
    QUuid uuid = m_uuid_base;
    uuid.data1 += uint(m_results.m_records.size());
    auto* record = new KOR_RECORD_DATA(m_results.m_schema.get(), nullptr, uuid);
    m_results.m_records.append(record);
    // Exactly one uuid a source table, so the index arithmetic of
    // source_record_uuid holds whatever the caller passed.
    for (int i = 0; i < m_results.m_source_tables.size(); ++i)
        m_results.m_source_uuids.append(source_uuids.value(i));
    return record;
}
