#include "sample_table.h"

#include "kor_field_schema.h"
#include "kor_table_schema.h"
#include "sample_random.h"

SAMPLE_TABLE::SAMPLE_TABLE(const QString& name) : m_name(name) {}

SAMPLE_TABLE& SAMPLE_TABLE::with(const QList<SAMPLE_FIELD>& fields)
{
    m_fields = fields;
    return *this;
}

SAMPLE_TABLE& SAMPLE_TABLE::in_code(const QString& designer, bool versioned)
{
    m_implemented = true;
    m_destination_pack = QStringLiteral("non-pack");
    m_designer = designer;
    m_versioned = versioned;
    return *this;
}

SAMPLE_TABLE& SAMPLE_TABLE::implemented(const QString& designer, const QString& destination_pack)
{
    m_implemented = true;
    m_destination_pack = destination_pack;
    m_designer = designer;
    return *this;
}

SAMPLE_TABLE& SAMPLE_TABLE::tool_table(const QString& designer)
{
    m_implemented = false;
    m_destination_pack = QStringLiteral("loc-only");
    m_designer = designer;
    return *this;
}

SAMPLE_TABLE& SAMPLE_TABLE::agf(const QString& special_dependencies)
{
    m_agf = special_dependencies;
    return *this;
}

SAMPLE_TABLE& SAMPLE_TABLE::describing_others()
{
    m_describes_others = true;
    return *this;
}

SAMPLE_TABLE& SAMPLE_TABLE::rows(const GENERATOR& generator)
{
    m_generator = generator;
    return *this;
}

SAMPLE_TABLE& SAMPLE_TABLE::bulk_rows(const BULK_GENERATOR& generator)
{
    m_bulk_generator = generator;
    return *this;
}

const SAMPLE_FIELD* SAMPLE_TABLE::field(const QString& name) const
{
    for (const SAMPLE_FIELD& field : m_fields)
        if (field.name == name)
            return &field;
    return nullptr;
}

QStringList SAMPLE_TABLE::key_fields() const
{
    QStringList names;
    for (const SAMPLE_FIELD& field : m_fields)
        if (field.is_key)
            names.append(field.name);
    return names;
}

QStringList SAMPLE_TABLE::localised_fields() const
{
    QStringList names;
    for (const SAMPLE_FIELD& field : m_fields)
        if (field.is_localised())
            names.append(field.name);
    return names;
}

std::unique_ptr<KOR_TABLE_SCHEMA> SAMPLE_TABLE::make_schema(SAMPLE_RANDOM& random) const
{
    auto schema = std::make_unique<KOR_TABLE_SCHEMA>(m_name);
    schema->set_table_unique_id(random.uuid());
    schema->set_agf_special_dependencies(m_agf);
    for (const SAMPLE_FIELD& field : m_fields)
    {
        KOR_FIELD_SCHEMA* made = field.make(random.uuid());
        if (!schema->add_field_schema(made))
            delete made; // a name given twice; the schema check reports the table
    }
    return schema;
}
