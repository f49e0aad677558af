// Lookups, relationships and permissions of the XML query interface.

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "kor_xml_query_interface_p.h"

#include <algorithm>

namespace
{
// The records of a table whose field holds a value, compared as text.
template <typename VISIT>
void for_each_record_with(const KOR_TABLE_DATA& table, const QString& field_name, const QString& text,
                          VISIT visit)
{
    const KOR_TABLE_SCHEMA* schema = table.table_schema();
    if (schema && schema->primary_key_fields() == QList<QString>{field_name})
    {
        if (KOR_RECORD_DATA* record = table.record_by_key(text))
            visit(record);
        return;
    }
    for (KOR_RECORD_DATA* record : table.records())
    {
        const KOR_FIELD_DATA* value = record->get_field_data(field_name);
        if (value && value->value_text() == text)
            visit(record);
    }
}

QString lookup_text(const KOR_RECORD_DATA& record, const QStringList& lookup_fields)
{
    QStringList parts;
    for (const QString& name : lookup_fields)
    {
        const KOR_FIELD_DATA* value = record.get_field_data(name);
        parts.append(value ? value->value_text() : QString());
    }
    return parts.join(QLatin1Char(':'));
}
} // namespace

bool KOR_XML_QUERY_INTERFACE::any_dependents_using_existing_value(QString& error, const QString&,
                                                                  const KOR_FIELD_SCHEMA* field_schema,
                                                                  const QVariant& value)
{
    error.clear();
    const QString text = KOR_FIELD_DATA::variant_to_text(value);
    if (!field_schema || text.isEmpty())
        return false;
    for (const auto& dependent : field_schema->dependents())
    {
        const KOR_TABLE_DATA* table = d->table(error, dependent.first);
        if (!table)
            return false;
        bool used = false;
        for_each_record_with(*table, dependent.second, text, [&used](KOR_RECORD_DATA*) { used = true; });
        if (used)
        {
            error = QStringLiteral("'%1' is used by %2.%3").arg(text, dependent.first, dependent.second);
            return true;
        }
    }
    return false;
}

bool KOR_XML_QUERY_INTERFACE::dependency_value_exists(QString& error, const QString&,
                                                      const KOR_FIELD_SCHEMA* field_schema,
                                                      const QVariant& value)
{
    error.clear();
    if (!field_schema || !field_schema->dependency())
        return true;
    const QString text = KOR_FIELD_DATA::variant_to_text(value);
    if (text.isEmpty())
    {
        // An empty optional foreign key refers to nothing, which is allowed.
        if (!field_schema->is_required())
            return true;
        d->fail(error, QStringLiteral("A value is required"));
        return false;
    }
    const KOR_FIELD_SCHEMA* target = d->foreign_field_of(field_schema);
    if (!target)
    {
        d->fail(error, QStringLiteral("The relationship of '%1' names an unknown table or field")
                           .arg(field_schema->field_name()));
        return false;
    }
    const KOR_TABLE_DATA* table = d->table(error, target->table_name());
    if (!table)
        return false;
    bool found = false;
    for_each_record_with(*table, target->field_name(), text, [&found](KOR_RECORD_DATA*) { found = true; });
    if (!found)
        d->fail(error, QStringLiteral(" '%1' does not exist in %2.%3")
                           .arg(text, target->table_name(), target->field_name()));
    return found;
}

bool KOR_XML_QUERY_INTERFACE::dependents_of_field_using_value(QMap<QString, QSet<QString>>& out,
                                                              const KOR_FIELD_SCHEMA* field_schema,
                                                              const QVariant& value)
{
    out.clear();
    const QString text = KOR_FIELD_DATA::variant_to_text(value);
    if (!field_schema || text.isEmpty())
        return true;
    for (const auto& dependent : field_schema->dependents())
    {
        QString error;
        const KOR_TABLE_DATA* table = d->table(error, dependent.first);
        if (!table)
            return false;
        for_each_record_with(*table, dependent.second, text,
                             [&](KOR_RECORD_DATA* record) { out[dependent.first].insert(record->key()); });
    }
    return true;
}

bool KOR_XML_QUERY_INTERFACE::get_field_lookup_value(QString& error, QString& out,
                                                     const KOR_FIELD_SCHEMA* field_schema,
                                                     const QVariant& value)
{
    error.clear();
    out.clear();
    if (!field_schema || field_schema->source_table().isEmpty())
        return d->fail(error, QStringLiteral("The field looks nothing up"));
    const QString text = KOR_FIELD_DATA::variant_to_text(value);
    if (text.isEmpty())
        return true;
    const KOR_FIELD_SCHEMA* target = d->foreign_field_of(field_schema);
    if (!target)
        return d->fail(error, QStringLiteral("The relationship of '%1' names an unknown table or field")
                                  .arg(field_schema->field_name()));
    const KOR_TABLE_DATA* table = d->table(error, target->table_name());
    if (!table)
        return false;
    const KOR_RECORD_DATA* found = nullptr;
    for_each_record_with(*table, target->field_name(), text, [&found](KOR_RECORD_DATA* record) {
        if (!found)
            found = record;
    });
    if (!found)
        return d->fail(error, QStringLiteral("'%1' does not exist in %2.%3")
                                  .arg(text, target->table_name(), target->field_name()));
    const QStringList fields = field_schema->lookup_fields().isEmpty() ? QStringList{target->field_name()}
                                                                       : field_schema->lookup_fields();
    out = lookup_text(*found, fields);
    return true;
}

bool KOR_XML_QUERY_INTERFACE::get_field_lookup_values(QString& error, QVector<QVariant>& keys,
                                                      QList<QString>& texts,
                                                      const KOR_FIELD_SCHEMA* field_schema)
{
    error.clear();
    keys.clear();
    texts.clear();
    const KOR_FIELD_SCHEMA* target = d->foreign_field_of(field_schema);
    if (!target)
        return d->fail(error, QStringLiteral("The field looks nothing up"));
    const KOR_TABLE_DATA* table = d->table(error, target->table_name());
    if (!table)
        return false;
    const QStringList fields = field_schema->lookup_fields().isEmpty() ? QStringList{target->field_name()}
                                                                       : field_schema->lookup_fields();
    struct CHOICE
    {
        QString text;
        QString key;
        QVariant value;
    };
    std::vector<CHOICE> choices;
    choices.reserve(size_t(table->record_count()));
    for (const KOR_RECORD_DATA* record : table->records())
    {
        const KOR_FIELD_DATA* value = record->get_field_data(target->field_name());
        if (!value)
            continue;
        choices.push_back(CHOICE{lookup_text(*record, fields), record->key(), value->m_value});
    }
    // Display order: by the text shown, ignoring case, then by key.
    std::stable_sort(choices.begin(), choices.end(), [](const CHOICE& a, const CHOICE& b) {
        const int order = QString::compare(a.text, b.text, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : a.key < b.key;
    });
    keys.reserve(int(choices.size()));
    for (const CHOICE& choice : choices)
    {
        keys.append(choice.value);
        texts.append(choice.text);
    }
    return true;
}

bool KOR_XML_QUERY_INTERFACE::get_main_dependency_field_data(QString& error, QVector<QVariant>& out,
                                                             const KOR_FIELD_SCHEMA* field_schema)
{
    error.clear();
    out.clear();
    const KOR_FIELD_SCHEMA* target = d->foreign_field_of(field_schema);
    if (!target)
        return d->fail(error, QStringLiteral("The field depends on no other table"));
    const KOR_TABLE_DATA* table = d->table(error, target->table_name());
    if (!table)
        return false;
    out.reserve(table->record_count());
    for (const KOR_RECORD_DATA* record : table->records())
        if (const KOR_FIELD_DATA* value = record->get_field_data(target->field_name()))
            out.append(value->m_value);
    return true;
}

bool KOR_XML_QUERY_INTERFACE::table_restricted(const QString& table_name) const
{
    return d->permissions.table_restricted(table_name);
}

bool KOR_XML_QUERY_INTERFACE::can_add_table_records(const QString& table_name) const
{
    return d->permissions.can_add(table_name);
}

bool KOR_XML_QUERY_INTERFACE::can_edit_table_records(const QString& table_name) const
{
    return d->permissions.can_edit(table_name);
}

bool KOR_XML_QUERY_INTERFACE::can_remove_table_records(const QString& table_name) const
{
    return d->permissions.can_remove(table_name);
}
