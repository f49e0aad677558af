// Schema changes of the XML query interface: tables made, changed and removed,
// each also written as update commands, and the commands applied back.

#include "kor_database_schema.h"
#include "kor_engine_access.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_file_commit.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_io.h"
#include "kor_table_schema.h"
#include "kor_unique_ids.h"
#include "kor_update_command_codec.h"
#include "kor_xml_output.h"
#include "kor_xml_query_interface.h"
#include "kor_xml_query_interface_p.h"
#include "progress_callback.h"
#include "update_command_item.h"
#include "update_command_items.h"

#include <QBuffer>

#include <algorithm>
#include <memory>

namespace
{
bool same_metafield_value(KOR_METAFIELD metafield, const QVariant& a, const QVariant& b)
{
    return KOR_UPDATE_COMMAND_CODEC::metafield_text(metafield, a) ==
           KOR_UPDATE_COMMAND_CODEC::metafield_text(metafield, b);
}

QString sorted_text(QList<QPair<QString, QString>> references)
{
    QStringList texts;
    for (const auto& reference : references)
        texts.append(reference.first + QLatin1Char('.') + reference.second);
    return texts.join(QStringLiteral(", "));
}
} // namespace

// ==================================================================== private

void KOR_XML_QUERY_INTERFACE_PRIVATE::retire_field(KOR_FIELD_SCHEMA* field)
{
    retired_fields.emplace_back(field);
}

void KOR_XML_QUERY_INTERFACE_PRIVATE::unretire_field(KOR_FIELD_SCHEMA* field)
{
    for (auto it = retired_fields.begin(); it != retired_fields.end(); ++it)
    {
        if (it->get() == field)
        {
            it->release();
            retired_fields.erase(it);
            return;
        }
    }
}

void KOR_XML_QUERY_INTERFACE_PRIVATE::snapshot_schema(KOR_TABLE_SCHEMA* table_schema)
{
    struct FIELD_STATE
    {
        KOR_FIELD_SCHEMA* field;
        std::shared_ptr<KOR_FIELD_SCHEMA> copy;
    };
    auto state = std::make_shared<std::vector<FIELD_STATE>>();
    for (const QString& name : table_schema->column_ordering())
    {
        KOR_FIELD_SCHEMA* field = table_schema->field_schema_by_name(name);
        state->push_back(FIELD_STATE{field, std::make_shared<KOR_FIELD_SCHEMA>(*field)});
    }
    const QString agf = table_schema->agf_special_dependencies();
    const QUuid uuid = table_schema->table_unique_id();
    push_undo([this, table_schema, state, agf, uuid]() {
        const QList<QString> current = table_schema->column_ordering();
        for (const QString& name : current)
        {
            KOR_FIELD_SCHEMA* field = table_schema->remove_field_schema(name);
            const bool original =
                std::any_of(state->begin(), state->end(),
                            [field](const FIELD_STATE& entry) { return entry.field == field; });
            if (!original)
                retire_field(field);
        }
        for (const FIELD_STATE& entry : *state)
        {
            unretire_field(entry.field);
            *entry.field = *entry.copy;
            table_schema->add_field_schema(entry.field);
        }
        table_schema->set_agf_special_dependencies(agf);
        table_schema->set_table_unique_id(uuid);
        if (schema)
            schema->rebuild_relations();
    });
}

bool KOR_XML_QUERY_INTERFACE_PRIVATE::fill_value(QString& error, const KOR_FIELD_SCHEMA& field,
                                                 KOR_TABLE_DATA& table, QVariant& out)
{
    Q_UNUSED(table);
    QVariant value;
    QString ignored;
    if (!field.default_value().toString().isEmpty() &&
        normalise_value(ignored, field, field.default_value(), value))
    {
        out = value;
        return true;
    }
    if (const KOR_FIELD_SCHEMA* target = foreign_field_of(&field))
    {
        KOR_TABLE_DATA* foreign = this->table(error, target->table_name());
        if (!foreign)
            return false;
        if (foreign->records().isEmpty())
            return fail(error, QStringLiteral(
                                   "Required field %1 doesn't have a valid default value(first record in the "
                                   "table %2) for updating existing records")
                                   .arg(field.field_name(), target->table_name()));
        const KOR_FIELD_DATA* first = foreign->records().at(0)->get_field_data(target->field_name());
        if (!first || !normalise_value(error, field, first->m_value, out))
            return fail(error,
                        QStringLiteral("Required field %1 cannot take the value of the first record of %2")
                            .arg(field.field_name(), target->table_name()));
        return true;
    }
    return fail(error,
                QStringLiteral("Required field %1 doesn't have a valid default value for updating existing "
                               "records.")
                    .arg(field.field_name()));
}

bool KOR_XML_QUERY_INTERFACE_PRIVATE::change_schema(
    QString& error, const QString& table_name, const QString& agf,
    const QList<const KOR_FIELD_SCHEMA*>& new_fields, const QSet<QString>& removed_fields,
    const QList<QPair<KOR_FIELD_SCHEMA*, QPair<KOR_METAFIELD, QVariant>>>& changes,
    const QStringList* column_order, const QString& user, const QString& description)
{
    KOR_TABLE_SCHEMA* table_schema = this->table_schema(table_name);
    if (!table_schema)
        return fail(error, QStringLiteral("Unknown table '%1'").arg(table_name));
    KOR_TABLE_DATA* table = this->table(error, table_name);
    if (!table)
        return false;
    const KOR_COMMAND_ORIGIN command_origin = origin(user, description);
    const std::vector<KOR_RECORD_DATA*> records(table->records().begin(), table->records().end());

    // Undone last: records back in name order and under their keys.
    push_undo([table]() {
        for (KOR_RECORD_DATA* record : table->records())
            KOR_ENGINE_ACCESS::resort_fields(record);
        QString ignored;
        KOR_ENGINE_ACCESS::rebuild_keys(*table, ignored);
        // The values the later steps put back are new to readers even if
        // the keys could not be filed again.
        KOR_ENGINE_ACCESS::mark_changed(*table);
    });
    snapshot_schema(table_schema);
    auto keep_value = [this](KOR_FIELD_DATA* field) {
        const QVariant old_value = field->m_value;
        push_undo([field, old_value]() { field->m_value = old_value; });
    };
    bool data_changed = false;

    // Removed fields.
    QStringList removed = removed_fields.values();
    std::sort(removed.begin(), removed.end());
    for (const QString& name : qAsConst(removed))
    {
        KOR_FIELD_SCHEMA* field = table_schema->field_schema_by_name(name);
        if (!field)
            return fail(error, QStringLiteral("Table '%1' has no field '%2'").arg(table_name, name));
        QList<QPair<QString, QString>> users;
        for (const auto& reference : field->dependents() + field->looked_up_by())
            if (!(reference.first == table_name && removed_fields.contains(reference.second)) &&
                !users.contains(reference))
                users.append(reference);
        if (!users.isEmpty())
            return fail(
                error,
                QStringLiteral("Field '%1' cannot be removed: %2 refer to it").arg(name, sorted_text(users)));
        auto taken = std::make_shared<std::vector<std::pair<KOR_RECORD_DATA*, KOR_FIELD_DATA*>>>();
        for (KOR_RECORD_DATA* record : records)
            if (KOR_FIELD_DATA* data = KOR_ENGINE_ACCESS::take_field(record, field->field_name()))
                taken->emplace_back(record, data);
        push_undo([taken]() {
            for (const auto& entry : *taken)
                KOR_ENGINE_ACCESS::put_field(entry.first, entry.second);
        });
        after_commit([taken]() {
            for (const auto& entry : *taken)
                KOR_ENGINE_ACCESS::destroy_field(entry.second);
        });
        add_command(KOR_UPDATE_COMMAND_CODEC::remove_field(table_name, field->field_name(),
                                                           field->field_unique_id(), command_origin));
        retire_field(table_schema->remove_field_schema(field->field_name()));
        data_changed = true;
    }

    // Changed metafields, in the order given.
    QList<KOR_FIELD_SCHEMA*> made_required;
    QSet<QString> renamed_in;
    for (const auto& change : changes)
    {
        KOR_FIELD_SCHEMA* field = change.first;
        const KOR_METAFIELD metafield = change.second.first;
        const QVariant& value = change.second.second;
        if (!field || field->owner() != table_schema)
            continue; // a field removed above
        const QVariant old_value = field->get_metafield_value(metafield);
        if (same_metafield_value(metafield, old_value, value))
            continue;
        if (metafield == KMF_FOREIGN_TABLE && !value.toString().isEmpty() &&
            !this->table_schema(value.toString()))
            return fail(error, QStringLiteral("Field '%1' cannot refer to the unknown table '%2'")
                                   .arg(field->field_name(), value.toString()));
        const QString old_name = field->field_name();
        if (!field->set_metafield_value(metafield, value))
            return fail(error, QStringLiteral("'%1' is not a valid %2 for field '%3'")
                                   .arg(KOR_UPDATE_COMMAND_CODEC::metafield_text(metafield, value),
                                        KOR_FIELD_SCHEMA::metafield_to_string(metafield), old_name));
        add_command(KOR_UPDATE_COMMAND_CODEC::change_field(table_name, old_name, field->field_unique_id(),
                                                           metafield, old_value, value, command_origin));
        switch (metafield)
        {
        case KMF_FIELD_TYPE:
            for (KOR_RECORD_DATA* record : records)
            {
                KOR_FIELD_DATA* data = record->get_field_data(field->field_name());
                if (!data)
                    continue;
                QVariant converted;
                QString reason;
                if (!normalise_value(reason, *field, data->m_value, converted))
                    return fail(error,
                                QStringLiteral("Cannot change field '%1' to %2: record '%3' holds '%4'")
                                    .arg(field->field_name(),
                                         KOR_FIELD_SCHEMA::field_type_to_string(field->field_type()),
                                         record->key(), data->value_text()));
                keep_value(data);
                data->m_value = converted;
            }
            data_changed = true;
            break;
        case KMF_FIELD_NAME:
            // Relationships and lookups of other tables follow the new name.
            for (KOR_TABLE_SCHEMA* other : schema->table_schemas())
            {
                for (KOR_FIELD_SCHEMA* other_field : other->field_schemas())
                {
                    const bool refers = other_field->dependency() &&
                                        other_field->dependency()->first == table_name &&
                                        other_field->dependency()->second == old_name;
                    const bool looks_up = other_field->source_table() == table_name &&
                                          other_field->lookup_fields().contains(old_name);
                    if (!refers && !looks_up)
                        continue;
                    if (other != table_schema && !renamed_in.contains(other->get_table_name()))
                    {
                        snapshot_schema(other);
                        renamed_in.insert(other->get_table_name());
                    }
                    if (refers)
                        other_field->set_metafield_value(KMF_FOREIGN_FIELD, field->field_name());
                    if (looks_up)
                    {
                        QStringList lookups = other_field->lookup_fields();
                        for (QString& lookup : lookups)
                            if (lookup == old_name)
                                lookup = field->field_name();
                        other_field->set_metafield_value(KMF_LOOKUP_FIELDS, lookups);
                    }
                    mark_schema_dirty(other->get_table_name());
                }
            }
            data_changed = true;
            break;
        case KMF_REQUIRED:
            if (value.toBool())
                made_required.append(field);
            break;
        case KMF_PRIMARY_KEY:
            data_changed = true;
            break;
        default:
            break;
        }
    }

    // New fields, filled in every record.
    for (const KOR_FIELD_SCHEMA* given : new_fields)
    {
        if (!given)
            continue;
        KOR_FIELD_SCHEMA* field = new KOR_FIELD_SCHEMA(*given);
        if (field->field_unique_id().isNull())
            field->set_field_unique_id(QUuid::createUuid());
        if (!KOR_FIELD_SCHEMA::is_valid_name(field->field_name()) || field->field_type() < KFT_YESNO ||
            field->field_type() > KFT_CARD64)
        {
            const QString name = field->field_name();
            delete field;
            return fail(error, QStringLiteral("The new field '%1' needs a valid name and type").arg(name));
        }
        if (!field->source_table().isEmpty() && !this->table_schema(field->source_table()) &&
            field->source_table() != table_name)
        {
            const QString text = QStringLiteral("Field '%1' cannot refer to the unknown table '%2'")
                                     .arg(field->field_name(), field->source_table());
            delete field;
            return fail(error, text);
        }
        if (!table_schema->add_field_schema(field))
        {
            const QString name = field->field_name();
            delete field;
            return fail(error, QStringLiteral("Field name '%1' is not unique.").arg(name));
        }
        int next_number = 1;
        for (KOR_RECORD_DATA* record : records)
        {
            QVariant value;
            if (field->field_type() == KFT_AUTONUMBER)
                value = next_number++;
            else if (field->field_type() == KFT_UNIQUE_ID)
                value = qulonglong(KOR_UNIQUE_IDS::next());
            else if (field->is_required())
            {
                if (!fill_value(error, *field, *table, value))
                    return false;
            }
            else
                value = initial_value(*field, *table);
            KOR_FIELD_DATA* data = new KOR_FIELD_DATA(field);
            data->m_value = value;
            if (field->is_localised() && field->field_type() == KFT_TEXT)
            {
                data->set_approval_state(KOR_FIELD_DATA::TAS_AWAITING_APPROVAL);
                data->set_last_edit_user(user_name);
            }
            if (KOR_FIELD_DATA* replaced = KOR_ENGINE_ACCESS::put_field(record, data))
                KOR_ENGINE_ACCESS::destroy_field(replaced);
        }
        const QString name = field->field_name();
        push_undo([records, name]() {
            for (KOR_RECORD_DATA* record : records)
                if (KOR_FIELD_DATA* data = KOR_ENGINE_ACCESS::take_field(record, name))
                    KOR_ENGINE_ACCESS::destroy_field(data);
        });
        add_command(KOR_UPDATE_COMMAND_CODEC::add_field(table_name, *field, command_origin));
        data_changed = true;
    }

    // Fields made required take a value where they have none.
    for (KOR_FIELD_SCHEMA* field : qAsConst(made_required))
    {
        if (field->owner() != table_schema)
            continue;
        for (KOR_RECORD_DATA* record : records)
        {
            KOR_FIELD_DATA* data = record->get_field_data(field->field_name());
            if (!data || !data->value_text().isEmpty())
                continue;
            QVariant value;
            if (field->field_type() == KFT_AUTONUMBER || field->field_type() == KFT_UNIQUE_ID)
                value = initial_value(*field, *table);
            else if (!fill_value(error, *field, *table, value))
                return false;
            keep_value(data);
            data->m_value = value;
            data_changed = true;
        }
    }

    if (agf != table_schema->agf_special_dependencies())
    {
        add_command(KOR_UPDATE_COMMAND_CODEC::change_table_agf(
            table_name, table_schema->agf_special_dependencies(), agf, command_origin));
        table_schema->set_agf_special_dependencies(agf);
    }
    if (column_order && *column_order != table_schema->column_ordering())
    {
        if (!table_schema->set_column_ordering(*column_order))
            return fail(
                error,
                QStringLiteral("The new column order of '%1' must name every field once").arg(table_name));
        add_command(KOR_UPDATE_COMMAND_CODEC::reorder_fields(table_name, *column_order, command_origin));
        data_changed = true;
    }

    schema->rebuild_relations();
    for (KOR_RECORD_DATA* record : records)
        KOR_ENGINE_ACCESS::resort_fields(record);
    if (!KOR_ENGINE_ACCESS::rebuild_keys(*table, error))
        return fail(error, error);
    mark_schema_dirty(table_name);
    if (data_changed)
        mark_data_dirty(table_name);
    return true;
}

bool KOR_XML_QUERY_INTERFACE_PRIVATE::add_table(QString& error, const KOR_TABLE_SCHEMA& new_schema,
                                                const QString& user, const QString& description)
{
    QStringList errors;
    if (!new_schema.is_valid(errors, true))
        return fail(error, errors.join(QLatin1Char('\n')));
    const QString name = new_schema.get_table_name();
    // Files whose names begin with "Veld" are the database's own, never tables.
    if (name.startsWith(QLatin1String("Veld")))
        return fail(error, QStringLiteral("Table names may not begin with 'Veld' ('%1')").arg(name));
    if (schema->table_schema_ignoring_case(name))
        return fail(error, QStringLiteral("Table already exists with the name '%1'").arg(name));
    for (const KOR_FIELD_SCHEMA* field : new_schema.field_schemas())
        if (!field->source_table().isEmpty() && field->source_table() != name &&
            !table_schema(field->source_table()))
            return fail(error, QStringLiteral("Field '%1' refers to the unknown table '%2'")
                                   .arg(field->field_name(), field->source_table()));
    const QString file = KOR_TABLE_IO::table_file_path(path, name);
    if (KOR_FILE_SIGNATURE::of(file).exists && !tx.removed_tables.contains(name))
        return fail(error,
                    QStringLiteral("%1 exists already without a schema; move it away first").arg(file));

    KOR_TABLE_SCHEMA* copy = new KOR_TABLE_SCHEMA(new_schema);
    if (copy->table_unique_id().isNull())
        copy->set_table_unique_id(QUuid::createUuid());
    for (KOR_FIELD_SCHEMA* field : copy->field_schemas())
        if (field->field_unique_id().isNull())
            field->set_field_unique_id(QUuid::createUuid());
    schema->add_table_schema(copy);
    schema->rebuild_relations();
    LOADED_TABLE& loaded = tables[name];
    loaded.data = std::make_unique<KOR_TABLE_DATA>(copy);
    loaded.signature = KOR_FILE_SIGNATURE::of(file);
    loaded.keys_checked = true;
    database_data.set_table_data(name, loaded.data.get());
    const bool was_removed = tx.removed_tables.remove(name);
    const KOR_FILE_SIGNATURE old_schema_signature = schema_signatures.value(name);
    schema_signatures.insert(name, KOR_FILE_SIGNATURE::of(KOR_TABLE_IO::schema_file_path(path, name)));
    push_undo([this, name, was_removed, old_schema_signature]() {
        auto it = tables.find(name);
        if (it != tables.end())
        {
            retired_tables.push_back(std::move(it->second.data));
            tables.erase(it);
        }
        database_data.remove_table_data(name);
        retired_schemas.emplace_back(schema->take_table_schema(name));
        schema->rebuild_relations();
        schema_signatures.insert(name, old_schema_signature);
        if (was_removed)
            tx.removed_tables.insert(name);
    });
    mark_schema_dirty(name);
    mark_data_dirty(name);
    add_command(KOR_UPDATE_COMMAND_CODEC::add_table(*copy, origin(user, description)));
    return true;
}

bool KOR_XML_QUERY_INTERFACE_PRIVATE::remove_table(QString& error, const QString& table_name,
                                                   const QString& user, const QString& reason)
{
    KOR_TABLE_SCHEMA* table_schema = this->table_schema(table_name);
    if (!table_schema)
        return fail(error, QStringLiteral("Unknown table '%1'").arg(table_name));
    const QMap<QString, QStringList> dependents = table_schema->dependent_fields();
    if (!dependents.isEmpty())
    {
        QStringList lines;
        for (auto it = dependents.constBegin(); it != dependents.constEnd(); ++it)
            for (const QString& field : it.value())
                lines.append(QStringLiteral("Table key (%1), Dependent Field (%2)").arg(it.key(), field));
        return fail(error,
                    QStringLiteral("Cannot remove the '%1' table because other tables depend upon it\n")
                            .arg(table_name) +
                        lines.join(QLatin1Char('\n')));
    }
    std::unique_ptr<KOR_TABLE_DATA> data;
    auto it = tables.find(table_name);
    if (it != tables.end())
    {
        data = std::move(it->second.data);
        tables.erase(it);
    }
    KOR_TABLE_DATA* data_pointer = data.get();
    retired_tables.push_back(std::move(data));
    database_data.remove_table_data(table_name);
    retired_schemas.emplace_back(schema->take_table_schema(table_name));
    schema->rebuild_relations();
    const bool was_dirty_data = tx.dirty_data.remove(table_name);
    const bool was_dirty_schema = tx.dirty_schemas.remove(table_name);
    tx.removed_tables.insert(table_name);
    tx.changed_tables.insert(table_name);
    push_undo([this, table_name, table_schema, data_pointer, was_dirty_data, was_dirty_schema]() {
        for (auto retired = retired_schemas.begin(); retired != retired_schemas.end(); ++retired)
            if (retired->get() == table_schema)
            {
                retired->release();
                retired_schemas.erase(retired);
                break;
            }
        schema->add_table_schema(table_schema);
        schema->rebuild_relations();
        for (auto retired = retired_tables.begin(); retired != retired_tables.end(); ++retired)
            if (retired->get() == data_pointer && data_pointer)
            {
                LOADED_TABLE& loaded = tables[table_name];
                loaded.data = std::move(*retired);
                loaded.signature = KOR_FILE_SIGNATURE::of(KOR_TABLE_IO::table_file_path(path, table_name));
                database_data.set_table_data(table_name, data_pointer);
                retired_tables.erase(retired);
                break;
            }
        tx.removed_tables.remove(table_name);
        if (was_dirty_data)
            tx.dirty_data.insert(table_name);
        if (was_dirty_schema)
            tx.dirty_schemas.insert(table_name);
    });
    add_command(KOR_UPDATE_COMMAND_CODEC::remove_table(table_name, origin(user, reason)));
    return true;
}

// ==================================================================== public

QString KOR_XML_QUERY_INTERFACE::add_table(const KOR_TABLE_SCHEMA& schema, const QString& edit_user,
                                           const QString& edit_description)
{
    QString error;
    d->run(error, [&](QString& operation_error) {
        return d->add_table(operation_error, schema, edit_user, edit_description);
    });
    return error;
}

QString KOR_XML_QUERY_INTERFACE::edit_table(const QString& table_name, const KOR_TABLE_SCHEMA& schema,
                                            const QString& edit_user, const QString& edit_description)
{
    QString error;
    d->run(error, [&](QString& operation_error) {
        KOR_TABLE_SCHEMA* current = d->table_schema(table_name);
        if (!current)
            return d->fail(operation_error, QStringLiteral("Unknown table '%1'").arg(table_name));
        if (schema.get_table_name() != table_name)
            return d->fail(operation_error, QStringLiteral("A table cannot be renamed ('%1' to '%2')")
                                                .arg(table_name, schema.get_table_name()));
        // The fields are matched by uuid, then by name.
        QSet<QString> removed;
        QList<const KOR_FIELD_SCHEMA*> added;
        QList<QPair<KOR_FIELD_SCHEMA*, QPair<KOR_METAFIELD, QVariant>>> changes;
        QSet<const KOR_FIELD_SCHEMA*> matched;
        for (KOR_FIELD_SCHEMA* field : current->field_schemas())
        {
            const KOR_FIELD_SCHEMA* wanted = schema.field_schema_by_uuid(field->field_unique_id());
            if (!wanted)
                wanted = schema.field_schema_by_name(field->field_name());
            if (!wanted)
            {
                removed.insert(field->field_name());
                continue;
            }
            matched.insert(wanted);
            for (int metafield = 0; metafield < KMF_COUNT; ++metafield)
            {
                const QVariant value = wanted->get_metafield_value(KOR_METAFIELD(metafield));
                if (!same_metafield_value(KOR_METAFIELD(metafield),
                                          field->get_metafield_value(KOR_METAFIELD(metafield)), value))
                    changes.append(qMakePair(field, qMakePair(KOR_METAFIELD(metafield), value)));
            }
        }
        for (const KOR_FIELD_SCHEMA* field : schema.field_schemas())
            if (!matched.contains(field))
                added.append(field);
        const QStringList order = schema.column_ordering();
        return d->change_schema(operation_error, table_name, schema.agf_special_dependencies(), added,
                                removed, changes, &order, edit_user, edit_description);
    });
    return error;
}

QString KOR_XML_QUERY_INTERFACE::remove_table(const QString& table_name, const QString& edit_user,
                                              const QString& reason)
{
    QString error;
    d->run(error, [&](QString& operation_error) {
        return d->remove_table(operation_error, table_name, edit_user, reason);
    });
    return error;
}

bool KOR_XML_QUERY_INTERFACE::change_schema(QString& error, const KOR_TABLE_SCHEMA* schema,
                                            const QString& agf_special_dependencies,
                                            const QList<KOR_FIELD_SCHEMA*>& new_fields,
                                            const QSet<QString>& removed_fields,
                                            const QMap<METAFIELD_AND_SCHEMA, QVariant>& changes,
                                            const QString& edit_user, const QString& edit_description)
{
    error.clear();
    if (!schema)
        return d->fail(error, QStringLiteral("No schema given"));
    const QString table_name = schema->get_table_name();
    return d->run(error, [&](QString& operation_error) {
        KOR_TABLE_SCHEMA* current = d->table_schema(table_name);
        if (!current)
            return d->fail(operation_error, QStringLiteral("Unknown table '%1'").arg(table_name));
        // The changes may name this interface's fields or those of a copy.
        QList<QPair<KOR_FIELD_SCHEMA*, QPair<KOR_METAFIELD, QVariant>>> resolved;
        for (auto it = changes.constBegin(); it != changes.constEnd(); ++it)
        {
            KOR_FIELD_SCHEMA* given = it.key().field_schema;
            if (!given)
                continue;
            KOR_FIELD_SCHEMA* field = given->owner() == current ? given : nullptr;
            if (!field)
                field = current->field_schema_by_uuid(given->field_unique_id());
            if (!field && !new_fields.contains(given))
                field = current->field_schema_by_name(given->field_name());
            if (!field)
                continue; // a new field's own values travel with it
            resolved.append(qMakePair(field, qMakePair(it.key().metafield, it.value())));
        }
        QList<const KOR_FIELD_SCHEMA*> added;
        for (const KOR_FIELD_SCHEMA* field : new_fields)
            if (field && !removed_fields.contains(field->field_name()))
                added.append(field);
        return d->change_schema(operation_error, table_name, agf_special_dependencies, added, removed_fields,
                                resolved, nullptr, edit_user, edit_description);
    });
}

QString KOR_XML_QUERY_INTERFACE::set_field_description(const QString& table_name, const QString& field_name,
                                                       const QUuid& field_uuid, const QString& description)
{
    QString error;
    d->run(error, [&](QString& operation_error) {
        KOR_TABLE_SCHEMA* table_schema = d->table_schema(table_name);
        if (!table_schema)
            return d->fail(operation_error, QStringLiteral("Unknown table '%1'").arg(table_name));
        KOR_FIELD_SCHEMA* field = table_schema->field_schema_by_uuid(field_uuid);
        if (!field)
            field = table_schema->field_schema_by_name(field_name);
        if (!field)
            return d->fail(operation_error,
                           QStringLiteral("Table '%1' has no field '%2'").arg(table_name, field_name));
        if (field->description() == description)
            return true;
        d->snapshot_schema(table_schema);
        d->add_command(KOR_UPDATE_COMMAND_CODEC::change_field(
            table_name, field->field_name(), field->field_unique_id(), KMF_DESCRIPTION, field->description(),
            description, d->origin(QString(), QString())));
        field->set_metafield_value(KMF_DESCRIPTION, description);
        d->mark_schema_dirty(table_name);
        return true;
    });
    return error;
}

bool KOR_XML_QUERY_INTERFACE::apply_edit_commands(const QString& file, bool quiet)
{
    QString error;
    if (!d->check_writable(error))
        return false;
    UPDATE_COMMAND_ITEMS items(d->progress);
    if (!items.parse_commands_file_for_schema_changes(file))
    {
        d->fail(items.last_error());
        return false;
    }
    // What later commands of the file undo or replace: an addition that a
    // later removal takes away again, a change that a later change of the
    // same attribute overrides. Such commands are passed over, so that a
    // file applied twice changes nothing the second time.
    auto field_key = [](const UPDATE_COMMAND_ITEM* item) {
        return item->field_uuid().isNull() ? item->table_name() + QLatin1Char('.') + item->field_name()
                                           : item->field_uuid().toString();
    };
    QVector<bool> removed_later(items.command_count(), false);
    QVector<bool> overridden(items.command_count(), false);
    {
        QSet<QString> removed_tables;
        QSet<QString> removed_fields;
        QSet<QString> changed;
        for (int i = items.command_count() - 1; i >= 0; --i)
        {
            const UPDATE_COMMAND_ITEM* item = items.item_at(i);
            const QString table = item->table_name();
            QString key = field_key(item);
            if (item->command_type == UPDATE_COMMAND_ITEM::UCT_ADD_FIELD && item->field_schema())
                key = item->field_schema()->field_unique_id().toString();
            removed_later[i] = removed_tables.contains(table) || removed_fields.contains(key);
            QString change_key;
            switch (item->command_type)
            {
            case UPDATE_COMMAND_ITEM::UCT_REMOVE_TABLE:
                removed_tables.insert(table);
                break;
            case UPDATE_COMMAND_ITEM::UCT_REMOVE_FIELD:
                removed_fields.insert(key);
                break;
            case UPDATE_COMMAND_ITEM::UCT_CHANGE_FIELD:
                change_key = key + QLatin1Char('/') + QString::number(item->metafield());
                break;
            case UPDATE_COMMAND_ITEM::UCT_REORDER_FIELDS:
            case UPDATE_COMMAND_ITEM::UCT_CHANGE_TABLE:
                change_key = table + QLatin1Char('/') + QString::number(item->command_type);
                break;
            default:
                break;
            }
            if (!change_key.isEmpty())
            {
                overridden[i] = changed.contains(change_key);
                changed.insert(change_key);
            }
        }
    }
    for (int i = 0; i < items.command_count(); ++i)
    {
        const UPDATE_COMMAND_ITEM* item = items.item_at(i);
        const QString table_name = item->table_name();
        const QString where = QStringLiteral("%1, line %2").arg(file).arg(item->line());
        // Commands already in effect are passed over, so a file can be applied
        // again, or to a database that has some of its changes.
        QString skipped;
        const bool ok = d->run(error, [&](QString& operation_error) {
            KOR_TABLE_SCHEMA* current = d->table_schema(table_name);
            KOR_FIELD_SCHEMA* field = nullptr;
            if (current)
            {
                field = current->field_schema_by_uuid(item->field_uuid());
                if (!field && !item->field_name().isEmpty())
                    field = current->field_schema_by_name(item->field_name());
            }
            if (overridden[i])
            {
                skipped = QStringLiteral("a later command changes the same");
                return true;
            }
            const bool field_absent =
                !field && !(current && item->field_schema() &&
                            current->field_schema_by_uuid(item->field_schema()->field_unique_id()));
            const bool table_command = item->command_type == UPDATE_COMMAND_ITEM::UCT_ADD_TABLE ||
                                       item->command_type == UPDATE_COMMAND_ITEM::UCT_REMOVE_TABLE ||
                                       item->command_type == UPDATE_COMMAND_ITEM::UCT_REORDER_FIELDS ||
                                       item->command_type == UPDATE_COMMAND_ITEM::UCT_CHANGE_TABLE;
            if (removed_later[i] && (!current || (!table_command && field_absent)))
            {
                skipped = QStringLiteral("a later command removes it again");
                return true;
            }
            if (item->command_type != UPDATE_COMMAND_ITEM::UCT_ADD_TABLE &&
                item->command_type != UPDATE_COMMAND_ITEM::UCT_REMOVE_TABLE && !current)
                return d->fail(operation_error, QStringLiteral("Unknown table '%1'").arg(table_name));
            const QString user = item->edit_user();
            const QString description = item->edit_description();
            switch (item->command_type)
            {
            case UPDATE_COMMAND_ITEM::UCT_ADD_TABLE:
                if (current)
                {
                    skipped = QStringLiteral("table '%1' exists").arg(table_name);
                    return true;
                }
                return d->add_table(operation_error, *item->table_schema(), user, description);
            case UPDATE_COMMAND_ITEM::UCT_ADD_FIELD:
            {
                const KOR_FIELD_SCHEMA* added = item->field_schema();
                if (current->field_schema_by_uuid(added->field_unique_id()) ||
                    current->field_schema_by_name(added->field_name()))
                {
                    skipped = QStringLiteral("field '%1.%2' exists").arg(table_name, added->field_name());
                    return true;
                }
                return d->change_schema(operation_error, table_name, current->agf_special_dependencies(),
                                        {added}, {}, {}, nullptr, user, description);
            }
            case UPDATE_COMMAND_ITEM::UCT_CHANGE_FIELD:
                if (!field)
                    return d->fail(
                        operation_error,
                        QStringLiteral("Table '%1' has no field '%2'").arg(table_name, item->field_name()));
                if (same_metafield_value(item->metafield(), field->get_metafield_value(item->metafield()),
                                         item->new_value()))
                {
                    skipped = QStringLiteral("field '%1.%2' has the value already")
                                  .arg(table_name, field->field_name());
                    return true;
                }
                return d->change_schema(operation_error, table_name, current->agf_special_dependencies(), {},
                                        {},
                                        {qMakePair(field, qMakePair(item->metafield(), item->new_value()))},
                                        nullptr, user, description);
            case UPDATE_COMMAND_ITEM::UCT_REMOVE_FIELD:
                if (!field)
                {
                    skipped =
                        QStringLiteral("field '%1.%2' is gone already").arg(table_name, item->field_name());
                    return true;
                }
                return d->change_schema(operation_error, table_name, current->agf_special_dependencies(), {},
                                        {field->field_name()}, {}, nullptr, user, description);
            case UPDATE_COMMAND_ITEM::UCT_REORDER_FIELDS:
            {
                // Fields the command names that this table lacks are left
                // out; fields it does not name keep their order behind.
                QStringList order;
                for (const QString& name : item->new_value().toStringList())
                    if (current->field_schemas().contains(name))
                        order.append(name);
                for (const QString& name : current->column_ordering())
                    if (!order.contains(name))
                        order.append(name);
                if (order == current->column_ordering())
                {
                    skipped = QStringLiteral("the fields of '%1' are in that order").arg(table_name);
                    return true;
                }
                return d->change_schema(operation_error, table_name, current->agf_special_dependencies(), {},
                                        {}, {}, &order, user, description);
            }
            case UPDATE_COMMAND_ITEM::UCT_REMOVE_TABLE:
                if (!current)
                {
                    skipped = QStringLiteral("table '%1' is gone already").arg(table_name);
                    return true;
                }
                return d->remove_table(operation_error, table_name, user, description);
            case UPDATE_COMMAND_ITEM::UCT_CHANGE_TABLE:
                if (current->agf_special_dependencies() == item->new_value().toString())
                {
                    skipped = QStringLiteral("table '%1' has those AGF dependencies").arg(table_name);
                    return true;
                }
                return d->change_schema(operation_error, table_name, item->new_value().toString(), {}, {}, {},
                                        nullptr, user, description);
            }
            return d->fail(operation_error,
                           QStringLiteral("Unknown command type %1").arg(item->command_type));
        });
        if (!ok)
        {
            d->fail(where + QStringLiteral(": ") + error);
            d->report(d->last_error, PROGRESS_CALLBACK::SEVERITY_ERROR);
            return false;
        }
        if (!skipped.isEmpty() && !quiet)
            d->report(where + QStringLiteral(": passed over, ") + skipped,
                      PROGRESS_CALLBACK::SEVERITY_INFORMATION);
    }
    return true;
}

void KOR_XML_QUERY_INTERFACE::add_dependent_tables_to_set(QSet<QString>& tables,
                                                          const QString& table_name) const
{
    const KOR_TABLE_SCHEMA* table_schema = d->table_schema(table_name);
    if (!table_schema)
        return;
    for (const KOR_FIELD_SCHEMA* field : table_schema->field_schemas())
        for (const auto& dependent : field->dependents())
            if (dependent.first != table_name)
                tables.insert(dependent.first);
}

void KOR_XML_QUERY_INTERFACE::add_dependency_tables_to_set(QSet<QString>& tables,
                                                           const QString& table_name) const
{
    const KOR_TABLE_SCHEMA* table_schema = d->table_schema(table_name);
    if (!table_schema)
        return;
    for (const KOR_FIELD_SCHEMA* field : table_schema->field_schemas())
        if (field->dependency() && field->dependency()->first != table_name &&
            d->table_schema(field->dependency()->first))
            tables.insert(field->dependency()->first);
}

namespace
{
int collect_tables(QList<QString>& out, const QString& start,
                   const std::function<void(QSet<QString>&, const QString&)>& neighbours)
{
    // Breadth first, each level in name order, every table once.
    QSet<QString> seen{start};
    QStringList level{start};
    int found = 0;
    while (!level.isEmpty())
    {
        QSet<QString> next_set;
        for (const QString& table : qAsConst(level))
            neighbours(next_set, table);
        QStringList next = next_set.values();
        std::sort(next.begin(), next.end());
        level.clear();
        for (const QString& table : qAsConst(next))
        {
            if (seen.contains(table))
                continue;
            seen.insert(table);
            level.append(table);
            if (!out.contains(table))
            {
                out.append(table);
                ++found;
            }
        }
    }
    return found;
}
} // namespace

int KOR_XML_QUERY_INTERFACE::collect_dependant_tables(QList<QString>& out, const KOR_TABLE_DATA* table_data,
                                                      QString& error)
{
    if (!table_data || !table_data->table_schema())
    {
        d->fail(error, QStringLiteral("No table given"));
        return 0;
    }
    return collect_tables(out, table_data->table_name(), [this](QSet<QString>& set, const QString& table) {
        add_dependent_tables_to_set(set, table);
    });
}

int KOR_XML_QUERY_INTERFACE::collect_dependency_tables(QList<QString>& out, const KOR_TABLE_DATA* table_data,
                                                       QString& error)
{
    if (!table_data || !table_data->table_schema())
    {
        d->fail(error, QStringLiteral("No table given"));
        return 0;
    }
    return collect_tables(out, table_data->table_name(), [this](QSet<QString>& set, const QString& table) {
        add_dependency_tables_to_set(set, table);
    });
}

QMap<QString, QMap<QString, RELATIONSHIP_DATA>> KOR_XML_QUERY_INTERFACE::relationship_data() const
{
    QMap<QString, QMap<QString, RELATIONSHIP_DATA>> result;
    if (!d->schema)
        return result;
    for (const KOR_TABLE_SCHEMA* table_schema : d->schema->table_schemas())
    {
        for (const KOR_FIELD_SCHEMA* field : table_schema->field_schemas())
        {
            if (!field->dependency())
                continue;
            RELATIONSHIP_DATA relationship;
            relationship.table = table_schema->get_table_name();
            relationship.field = field->field_name();
            relationship.foreign_table = field->dependency()->first;
            const KOR_FIELD_SCHEMA* target = d->foreign_field_of(field);
            relationship.foreign_field = target ? target->field_name() : field->dependency()->second;
            relationship.lookup_fields = field->lookup_fields();
            result[relationship.table].insert(relationship.field, relationship);
        }
    }
    return result;
}

namespace
{
bool write_derived_file(QString& error, const QString& root, const QString& relative, const QByteArray& bytes)
{
    KOR_FILE_COMMIT files(root);
    return files.stage_bytes(error, relative, bytes) && files.commit(error);
}
} // namespace

bool KOR_XML_QUERY_INTERFACE::save_relationships(QString& error)
{
    error.clear();
    if (!d->check_writable(error))
        return false;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    KOR_XML_OUTPUT output(&buffer);
    output.raw("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<relationships>\n");
    const auto relationships = relationship_data();
    for (const auto& table : relationships)
    {
        for (const RELATIONSHIP_DATA& relationship : table)
        {
            output.raw("  <relationship");
            output.attribute("table", relationship.table);
            output.attribute("field", relationship.field);
            output.attribute("foreign_table", relationship.foreign_table);
            output.attribute("foreign_field", relationship.foreign_field);
            if (!relationship.lookup_fields.isEmpty())
                output.attribute("lookup_fields", relationship.lookup_fields.join(QLatin1Char(':')));
            output.raw("/>\n");
        }
    }
    output.raw("</relationships>\n");
    if (!output.flush(error))
        return d->fail(error, error);
    if (!write_derived_file(error, d->path, QStringLiteral("Veld_relationships.xml"), bytes))
        return d->fail(error, error);
    return true;
}

bool KOR_XML_QUERY_INTERFACE::save_veld_tables_xml(QString& error)
{
    error.clear();
    if (!d->check_writable(error))
        return false;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    KOR_XML_OUTPUT output(&buffer);
    output.raw("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<tables>\n");
    for (const KOR_TABLE_SCHEMA* table_schema : d->schema->table_schemas())
    {
        output.raw("  <table");
        output.attribute("name", table_schema->get_table_name());
        output.attribute("uuid", table_schema->table_unique_id().toString(QUuid::WithoutBraces));
        output.attribute("fields", QString::number(table_schema->field_count()));
        output.raw("/>\n");
    }
    output.raw("</tables>\n");
    if (!output.flush(error))
        return d->fail(error, error);
    if (!write_derived_file(error, d->path, QStringLiteral("Veld_tables.xml"), bytes))
        return d->fail(error, error);
    return true;
}

void KOR_XML_QUERY_INTERFACE::refresh_unique_id_lookups_table()
{
    // The lookup table, when a database has one, lists every unique id with
    // the table and record that hold it.
    const QString lookup_table = QStringLiteral("unique_id_lookups");
    const KOR_TABLE_SCHEMA* lookup_schema = d->table_schema(lookup_table);
    if (!lookup_schema)
    {
        d->report(QStringLiteral("This database has no table '%1'; nothing to refresh").arg(lookup_table),
                  PROGRESS_CALLBACK::SEVERITY_INFORMATION);
        return;
    }
    const KOR_FIELD_SCHEMA* id_field = lookup_schema->field_schema_by_name(QStringLiteral("unique_id"));
    const KOR_FIELD_SCHEMA* table_field = lookup_schema->field_schema_by_name(QStringLiteral("table_name"));
    const KOR_FIELD_SCHEMA* key_field = lookup_schema->field_schema_by_name(QStringLiteral("record_key"));
    if (!id_field || !table_field || !key_field)
    {
        d->report(QStringLiteral("The table '%1' needs the fields unique_id, table_name and record_key")
                      .arg(lookup_table),
                  PROGRESS_CALLBACK::SEVERITY_WARNING);
        return;
    }
    QString error;
    const bool ok = d->run(error, [&](QString& operation_error) {
        KOR_TABLE_DATA* lookups = d->table(operation_error, lookup_table);
        if (!lookups)
            return false;
        const QList<KOR_RECORD_DATA*> old_records = lookups->records().values();
        for (KOR_RECORD_DATA* record : old_records)
            if (!d->remove_record(operation_error, lookup_table, record))
                return false;
        for (const KOR_TABLE_SCHEMA* table_schema : d->schema->table_schemas())
        {
            if (table_schema == lookup_schema)
                continue;
            QStringList id_fields;
            for (const KOR_FIELD_SCHEMA* field : table_schema->field_schemas())
                if (field->field_type() == KFT_UNIQUE_ID)
                    id_fields.append(field->field_name());
            if (id_fields.isEmpty())
                continue;
            KOR_TABLE_DATA* table = d->table(operation_error, table_schema->get_table_name());
            if (!table)
                return false;
            for (const KOR_RECORD_DATA* record : table->records())
            {
                for (const QString& name : qAsConst(id_fields))
                {
                    const KOR_FIELD_DATA* value = record->get_field_data(name);
                    if (!value || value->value_text().isEmpty())
                        continue;
                    KOR_RECORD_DATA entry(lookup_schema, nullptr, QUuid());
                    entry.add_field_data(id_field, value->m_value);
                    entry.add_field_data(table_field, table_schema->get_table_name());
                    entry.add_field_data(key_field, record->key());
                    if (!d->add_record(operation_error, lookup_table, entry))
                        return false;
                }
            }
        }
        return true;
    });
    if (!ok)
        d->report(error, PROGRESS_CALLBACK::SEVERITY_ERROR);
}
