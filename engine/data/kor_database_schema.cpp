#include "kor_database_schema.h"

#include "case_insensitive_compare_string.h"
#include "kor_field_schema.h"
#include "kor_table_schema.h"

#include <algorithm>

KOR_DATABASE_SCHEMA::~KOR_DATABASE_SCHEMA()
{
    clear();
}

KOR_TABLE_SCHEMA* KOR_DATABASE_SCHEMA::table_schema_ignoring_case(const QString& table_name) const
{
    if (KOR_TABLE_SCHEMA* exact = m_table_schemas.value(table_name))
        return exact;
    for (KOR_TABLE_SCHEMA* schema : m_table_schemas)
        if (CASE_INSENSITIVE_COMPARE_STRING::compare(schema->get_table_name(), table_name) == 0)
            return schema;
    return nullptr;
}

bool KOR_DATABASE_SCHEMA::add_table_schema(KOR_TABLE_SCHEMA* schema)
{
    if (!schema || table_schema_ignoring_case(schema->get_table_name()))
        return false;
    m_table_schemas.insert(schema->get_table_name(), schema);
    return true;
}

KOR_TABLE_SCHEMA* KOR_DATABASE_SCHEMA::take_table_schema(const QString& table_name)
{
    return m_table_schemas.take(table_name);
}

void KOR_DATABASE_SCHEMA::clear()
{
    qDeleteAll(m_table_schemas);
    m_table_schemas.clear();
}

void KOR_DATABASE_SCHEMA::rebuild_relations()
{
    typedef QList<QPair<QString, QString>> REFERENCES;
    QHash<KOR_FIELD_SCHEMA*, REFERENCES> dependents;
    QHash<KOR_FIELD_SCHEMA*, REFERENCES> looked_up_by;
    for (KOR_TABLE_SCHEMA* table : qAsConst(m_table_schemas))
    {
        for (KOR_FIELD_SCHEMA* field : table->field_schemas())
        {
            const QPair<QString, QString>* dependency = field->dependency();
            if (!dependency)
                continue;
            KOR_TABLE_SCHEMA* foreign = m_table_schemas.value(dependency->first);
            if (!foreign)
                continue;
            QString foreign_field = dependency->second;
            if (foreign_field.isEmpty() && !foreign->primary_key_fields().isEmpty())
                foreign_field = foreign->primary_key_fields().first();
            if (KOR_FIELD_SCHEMA* target = foreign->field_schema_by_name(foreign_field))
                dependents[target].append(qMakePair(table->get_table_name(), field->field_name()));
            for (const QString& lookup : field->lookup_fields())
                if (KOR_FIELD_SCHEMA* target = foreign->field_schema_by_name(lookup))
                    looked_up_by[target].append(qMakePair(table->get_table_name(), field->field_name()));
        }
    }
    for (KOR_TABLE_SCHEMA* table : qAsConst(m_table_schemas))
    {
        for (KOR_FIELD_SCHEMA* field : table->field_schemas())
        {
            REFERENCES field_dependents = dependents.value(field);
            REFERENCES field_looked_up_by = looked_up_by.value(field);
            std::sort(field_dependents.begin(), field_dependents.end());
            std::sort(field_looked_up_by.begin(), field_looked_up_by.end());
            field->set_dependents(field_dependents);
            field->set_looked_up_by(field_looked_up_by);
        }
    }
}
