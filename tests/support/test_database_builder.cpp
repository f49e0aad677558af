#include "test_database_builder.h"

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"

#include <QDir>
#include <QUuid>

TEST_FIELD TEST_FIELD::key(const QString& name, KOR_FIELD_TYPE type)
{
    TEST_FIELD field;
    field.name = name;
    field.type = type;
    field.primary_key = true;
    field.is_required = true;
    return field;
}

TEST_FIELD TEST_FIELD::plain(const QString& name, KOR_FIELD_TYPE type)
{
    TEST_FIELD field;
    field.name = name;
    field.type = type;
    return field;
}

TEST_FIELD& TEST_FIELD::required()
{
    is_required = true;
    return *this;
}

TEST_FIELD& TEST_FIELD::localised()
{
    is_localised = true;
    return *this;
}

TEST_FIELD& TEST_FIELD::with_default(const QVariant& value)
{
    default_value = value;
    return *this;
}

TEST_FIELD& TEST_FIELD::refers_to(const QString& table, const QString& field, const QStringList& lookups)
{
    foreign_table = table;
    foreign_field = field;
    lookup_fields = lookups.isEmpty() ? QStringList{field} : lookups;
    return *this;
}

KOR_FIELD_SCHEMA* TEST_FIELD::make() const
{
    KOR_FIELD_SCHEMA* field = new KOR_FIELD_SCHEMA(QUuid::createUuid());
    field->initialise(primary_key, name, type, is_required, default_value, type == KFT_TEXT ? 255 : -1, false,
                      QString(), QString(), QString(), false, false, false);
    field->set_metafield_value(KMF_LOCALISED, is_localised);
    if (!foreign_table.isEmpty())
    {
        field->add_dependency(foreign_table, foreign_field);
        field->set_metafield_value(KMF_LOOKUP_FIELDS, lookup_fields);
    }
    return field;
}

TEST_DATABASE_BUILDER::TEST_DATABASE_BUILDER(const QString& path, PROGRESS_CALLBACK* progress)
    : m_path(path), m_interface(new KOR_XML_QUERY_INTERFACE(progress, QString(), false, false))
{
    note(KOR_XML_QUERY_INTERFACE::create_empty_database(path));
    if (ok())
        note(m_interface->connect_without_merge(path, false));
}

TEST_DATABASE_BUILDER::~TEST_DATABASE_BUILDER() = default;

void TEST_DATABASE_BUILDER::note(const QString& error)
{
    if (!error.isEmpty() && m_error.isEmpty())
        m_error = error;
}

std::unique_ptr<KOR_TABLE_SCHEMA> TEST_DATABASE_BUILDER::make_schema(const QString& name,
                                                                     const QList<TEST_FIELD>& fields)
{
    auto schema = std::make_unique<KOR_TABLE_SCHEMA>(name);
    for (const TEST_FIELD& field : fields)
        schema->add_field_schema(field.make());
    return schema;
}

std::unique_ptr<KOR_RECORD_DATA> TEST_DATABASE_BUILDER::make_record(const KOR_TABLE_SCHEMA* schema,
                                                                    const QVariantMap& values)
{
    auto record = std::make_unique<KOR_RECORD_DATA>(schema, nullptr, QUuid::createUuid());
    for (auto it = values.constBegin(); it != values.constEnd(); ++it)
        record->add_field_data(schema->field_schema_by_name(it.key()), it.value());
    return record;
}

std::unique_ptr<KOR_RECORD_DATA> TEST_DATABASE_BUILDER::changed(const KOR_RECORD_DATA* record,
                                                                const QVariantMap& values)
{
    auto copy = std::make_unique<KOR_RECORD_DATA>(*record, nullptr, false);
    for (auto it = values.constBegin(); it != values.constEnd(); ++it)
        copy->get_field_data(it.key())->m_value = it.value();
    return copy;
}

QString TEST_DATABASE_BUILDER::add_record(KOR_XML_QUERY_INTERFACE& engine, const QString& table,
                                          const QVariantMap& values)
{
    const KOR_TABLE_SCHEMA* schema = engine.get_table_schema(table);
    return schema ? engine.add_record(table, make_record(schema, values).get())
                  : QStringLiteral("no table ") + table;
}

QString TEST_DATABASE_BUILDER::edit_record(KOR_XML_QUERY_INTERFACE& engine, const QString& table,
                                           KOR_RECORD_DATA* record, const QVariantMap& values)
{
    return engine.edit_record_data(table, record, changed(record, values).get());
}

QString TEST_DATABASE_BUILDER::value_text(KOR_XML_QUERY_INTERFACE& engine, const QString& table,
                                          const QString& key, const QString& field)
{
    QString error;
    const KOR_TABLE_DATA* data = engine.get_table_data(error, table);
    const KOR_RECORD_DATA* record = data ? data->record_by_key(key) : nullptr;
    const KOR_FIELD_DATA* value = record ? record->get_field_data(field) : nullptr;
    return value ? value->value_text() : QStringLiteral("<none>");
}

KOR_RECORD_DATA* TEST_DATABASE_BUILDER::find_record(KOR_XML_QUERY_INTERFACE& engine, const QString& table,
                                                    const QString& key)
{
    QString error;
    const KOR_TABLE_DATA* data = engine.get_table_data(error, table);
    return data ? data->record_by_key(key) : nullptr;
}

TEST_DATABASE_BUILDER& TEST_DATABASE_BUILDER::table(const QString& name, const QList<TEST_FIELD>& fields)
{
    if (ok())
        note(m_interface->add_table(*make_schema(name, fields), QStringLiteral("tester"),
                                    QStringLiteral("test")));
    return *this;
}

TEST_DATABASE_BUILDER& TEST_DATABASE_BUILDER::record(const QString& table, const QVariantMap& values)
{
    if (ok())
        note(add_record(*m_interface, table, values));
    return *this;
}

TEST_DATABASE_BUILDER& TEST_DATABASE_BUILDER::reconnect()
{
    if (m_interface->is_connected())
        note(m_interface->disconnect());
    note(m_interface->connect_without_merge(m_path, false));
    return *this;
}
