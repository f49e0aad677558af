// Records of the XML query interface: adding, removing and editing them
// inside transactions, with re-keying and the cascade of changed keys; and
// text approval.

#include "kor_database_schema.h"
#include "kor_engine_access.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_unique_ids.h"
#include "kor_xml_query_interface.h"
#include "kor_xml_query_interface_p.h"
#include "progress_callback.h"

#include <memory>

namespace
{
bool same_value(const QVariant& a, const QVariant& b)
{
    return a.type() == b.type() && KOR_FIELD_DATA::variant_to_text(a) == KOR_FIELD_DATA::variant_to_text(b);
}

const int MAX_CASCADE_DEPTH = 32;
const char* const REJECTED_MARKER = "text_rejected";
} // namespace

// ==================================================================== private

bool KOR_XML_QUERY_INTERFACE_PRIVATE::normalise_value(QString& error, const KOR_FIELD_SCHEMA& field,
                                                      const QVariant& value, QVariant& out)
{
    return field.stored_value(error, value, out);
}

QVariant KOR_XML_QUERY_INTERFACE_PRIVATE::initial_value(const KOR_FIELD_SCHEMA& field, KOR_TABLE_DATA& table)
{
    switch (field.field_type())
    {
    case KFT_AUTONUMBER:
        return table.next_autonumber(field.field_name());
    case KFT_UNIQUE_ID:
        return qulonglong(KOR_UNIQUE_IDS::next());
    default:
        break;
    }
    QVariant value;
    QString ignored;
    if (field.default_value().isValid() && normalise_value(ignored, field, field.default_value(), value))
        return value;
    return field.field_type() == KFT_TEXT ? QVariant(QString(QLatin1String(""))) : QVariant();
}

void KOR_XML_QUERY_INTERFACE_PRIVATE::snapshot_record(KOR_TABLE_DATA& table, KOR_RECORD_DATA* record)
{
    std::shared_ptr<KOR_RECORD_DATA> copy = std::make_shared<KOR_RECORD_DATA>(*record, nullptr, false);
    KOR_TABLE_DATA* table_pointer = &table;
    push_undo([table_pointer, record, copy]() {
        const QString current_key = record->key();
        QList<QString> surplus;
        for (KOR_FIELD_DATA* field : record->field_map())
        {
            if (const KOR_FIELD_DATA* old = copy->get_field_data(field->field_name()))
                *field = *old;
            else
                surplus.append(field->field_name());
        }
        for (const QString& name : qAsConst(surplus))
            KOR_ENGINE_ACCESS::destroy_field(KOR_ENGINE_ACCESS::take_field(record, name));
        for (const KOR_FIELD_DATA* old : copy->field_map())
            if (!record->get_field_data(old->field_name()))
                KOR_ENGINE_ACCESS::put_field(record, new KOR_FIELD_DATA(*old));
        record->set_modification_msecs(copy->modification_msecs());
        KOR_ENGINE_ACCESS::rekey_record(*table_pointer, record, current_key, record->key());
        KOR_ENGINE_ACCESS::mark_changed(*table_pointer);
    });
}

KOR_RECORD_DATA* KOR_XML_QUERY_INTERFACE_PRIVATE::add_record(QString& error, const QString& table_name,
                                                             const KOR_RECORD_DATA& source)
{
    KOR_TABLE_DATA* table = this->table(error, table_name);
    if (!table)
        return nullptr;
    const KOR_TABLE_SCHEMA* table_schema = table->table_schema();
    for (const KOR_FIELD_DATA* field : source.field_map())
    {
        if (!table_schema->field_schema_by_name(field->field_name()))
        {
            fail(error,
                 QStringLiteral("Field '%1' is not in table '%2'").arg(field->field_name(), table_name));
            return nullptr;
        }
    }
    QUuid uuid = source.uuid();
    // A copy of a record of the same table gets a uuid of its own.
    if (uuid.isNull() || KOR_ENGINE_ACCESS::uuid_taken(*table, uuid))
        uuid = QUuid::createUuid();
    auto record = std::make_unique<KOR_RECORD_DATA>(table_schema, table, uuid);
    for (const QString& name : table_schema->column_ordering())
    {
        const KOR_FIELD_SCHEMA* field_schema = table_schema->field_schema_by_name(name);
        const KOR_FIELD_DATA* given = source.get_field_data(name);
        QVariant value;
        if (given)
        {
            if (!normalise_value(error, *field_schema, given->m_value, value))
            {
                fail(error, error);
                return nullptr;
            }
        }
        else
        {
            value = initial_value(*field_schema, *table);
        }
        KOR_FIELD_DATA* field = record->add_field_data(field_schema, value);
        if (given && given->has_approval_data())
        {
            *field = *given;
            field->m_value = value;
        }
        else if (field_schema->is_localised() && field_schema->field_type() == KFT_TEXT)
        {
            field->set_approval_state(KOR_FIELD_DATA::TAS_AWAITING_APPROVAL);
            field->set_last_edit_user(user_name);
        }
    }
    record->set_modification_msecs(now_msecs());
    const QString key = record->key();
    if (key.isEmpty())
    {
        fail(error, QStringLiteral("Empty primary keys not allowed (table '%1')").arg(table_name));
        return nullptr;
    }
    if (table->records().contains(key))
    {
        fail(error, QStringLiteral("Key '%1' already exists in table '%2'").arg(key, table_name));
        return nullptr;
    }
    KOR_RECORD_DATA* added = record.release();
    KOR_ENGINE_ACCESS::insert_record(*table, added, key);
    push_undo([table, added]() { KOR_ENGINE_ACCESS::retire_record(*table, added, added->key()); });
    mark_data_dirty(table_name);
    return added;
}

bool KOR_XML_QUERY_INTERFACE_PRIVATE::remove_record(QString& error, const QString& table_name,
                                                    KOR_RECORD_DATA* record)
{
    KOR_TABLE_DATA* table = this->table(error, table_name);
    if (!table)
        return false;
    if (!record || table->record_by_uuid(record->uuid()) != record)
        return fail(error, QStringLiteral("The record is not in table '%1'").arg(table_name));
    const QString key = record->key();
    KOR_ENGINE_ACCESS::retire_record(*table, record, key);
    push_undo([table, record, key]() { KOR_ENGINE_ACCESS::restore_record(*table, record, key); });
    mark_data_dirty(table_name);
    return true;
}

bool KOR_XML_QUERY_INTERFACE_PRIVATE::update_record(QString& error, const QString& table_name,
                                                    KOR_RECORD_DATA* record,
                                                    const std::vector<KOR_FIELD_UPDATE>& updates, int depth)
{
    if (depth > MAX_CASCADE_DEPTH)
        return fail(error,
                    QStringLiteral("Changing '%1' carries into referring records too deeply (a cycle of "
                                   "relationships?)")
                        .arg(table_name));
    KOR_TABLE_DATA* table = this->table(error, table_name);
    if (!table)
        return false;

    struct CHANGE
    {
        const KOR_FIELD_SCHEMA* field;
        QVariant value;
        QVariant old_value;
        const KOR_FIELD_DATA* approval_source;
        bool value_changed;
    };
    std::vector<CHANGE> changes;
    for (const KOR_FIELD_UPDATE& update : updates)
    {
        QVariant value;
        if (!normalise_value(error, *update.field, update.value, value))
            return fail(error, error);
        const KOR_FIELD_DATA* current = record->get_field_data(update.field->field_name());
        const bool value_changed = !current || !same_value(current->m_value, value);
        const bool approval_changed =
            update.approval_source && (!current || !current->approval_data_equals(*update.approval_source));
        if (value_changed || approval_changed)
            changes.push_back(CHANGE{update.field, value, current ? current->m_value : QVariant(),
                                     update.approval_source, value_changed});
    }
    if (changes.empty())
        return true;

    snapshot_record(*table, record);
    const QString old_key = record->key();
    for (const CHANGE& change : changes)
    {
        KOR_FIELD_DATA* field = record->get_field_data(change.field->field_name());
        if (!field)
            field = record->add_field_data(change.field, QVariant());
        if (change.approval_source)
            *field = *change.approval_source;
        field->m_value = change.value;
        // A new text needs approval again.
        if (change.value_changed && change.field->field_type() == KFT_TEXT &&
            (field->has_approval_data() || change.field->is_localised()))
        {
            field->set_approval_state(KOR_FIELD_DATA::TAS_AWAITING_APPROVAL);
            field->set_last_edit_user(user_name);
        }
    }
    record->set_modification_msecs(now_msecs());
    const QString new_key = record->key();
    if (new_key.isEmpty())
        return fail(error, QStringLiteral("Empty primary keys not allowed (table '%1')").arg(table_name));
    if (!KOR_ENGINE_ACCESS::rekey_record(*table, record, old_key, new_key))
        return fail(error, QStringLiteral("Key '%1' already exists in table '%2'").arg(new_key, table_name));
    KOR_ENGINE_ACCESS::mark_changed(*table);
    mark_data_dirty(table_name);

    // Records that refer to a changed value follow it.
    for (const CHANGE& change : changes)
    {
        const QString old_text = KOR_FIELD_DATA::variant_to_text(change.old_value);
        if (!change.value_changed || old_text.isEmpty())
            continue;
        for (const auto& dependent : change.field->dependents())
        {
            KOR_TABLE_DATA* referring = this->table(error, dependent.first);
            if (!referring)
                return false;
            const KOR_FIELD_SCHEMA* referring_field =
                referring->table_schema()->field_schema_by_name(dependent.second);
            if (!referring_field)
                continue;
            std::vector<KOR_RECORD_DATA*> matches;
            for (KOR_RECORD_DATA* candidate : referring->records())
            {
                const KOR_FIELD_DATA* value = candidate->get_field_data(dependent.second);
                if (value && value->value_text() == old_text)
                    matches.push_back(candidate);
            }
            for (KOR_RECORD_DATA* match : matches)
            {
                KOR_FIELD_UPDATE update;
                update.field = referring_field;
                update.value = change.value;
                if (!update_record(error, dependent.first, match, {update}, depth + 1))
                    return false;
            }
        }
    }
    return true;
}

KOR_FIELD_DATA* KOR_XML_QUERY_INTERFACE_PRIVATE::approval_field(
    QString& error, const QString& table_name, const QString& field_name, const QString& record_key,
    const QUuid& record_uuid, KOR_TABLE_DATA** table_out, KOR_RECORD_DATA** record_out)
{
    KOR_TABLE_DATA* table = this->table(error, table_name);
    if (!table)
        return nullptr;
    KOR_RECORD_DATA* record = find_record(*table, record_uuid, record_key);
    if (!record)
    {
        fail(error, QStringLiteral("Table '%1' has no record '%2'").arg(table_name, record_key));
        return nullptr;
    }
    KOR_FIELD_DATA* field = record->get_field_data(field_name);
    if (!field)
    {
        fail(error, QStringLiteral("Table '%1' has no field '%2'").arg(table_name, field_name));
        return nullptr;
    }
    if (table_out)
        *table_out = table;
    if (record_out)
        *record_out = record;
    return field;
}

void KOR_XML_QUERY_INTERFACE_PRIVATE::snapshot_field(KOR_FIELD_DATA* field)
{
    std::shared_ptr<KOR_FIELD_DATA> copy = std::make_shared<KOR_FIELD_DATA>(*field);
    push_undo([field, copy]() { *field = *copy; });
}

// ==================================================================== public

QString KOR_XML_QUERY_INTERFACE::add_record(const QString& table_name, const KOR_RECORD_DATA* record)
{
    QString error;
    d->run(error, [&](QString& operation_error) {
        if (!record)
            return d->fail(operation_error, QStringLiteral("No record given"));
        if (!d->permissions.can_add(table_name))
            return d->fail(
                operation_error,
                QStringLiteral("You do not have permission to add records to table '%1'").arg(table_name));
        return d->add_record(operation_error, table_name, *record) != nullptr;
    });
    return error;
}

QString KOR_XML_QUERY_INTERFACE::remove_record(const QString& table_name, const KOR_RECORD_DATA& record)
{
    QString error;
    d->run(error, [&](QString& operation_error) {
        KOR_TABLE_DATA* table = d->table_to_remove_from(operation_error, table_name);
        if (!table)
            return false;
        KOR_RECORD_DATA* target = d->find_record(*table, record.uuid(), record.key());
        if (!target)
            return d->fail(operation_error,
                           QStringLiteral("Table '%1' has no record '%2'").arg(table_name, record.key()));
        return d->remove_record(operation_error, table_name, target);
    });
    return error;
}

QString KOR_XML_QUERY_INTERFACE::edit_record_data(const QString& table_name,
                                                  const KOR_RECORD_DATA* old_record,
                                                  const KOR_RECORD_DATA* new_record)
{
    QString error;
    d->run(error, [&](QString& operation_error) {
        if (!old_record || !new_record)
            return d->fail(operation_error, QStringLiteral("No record given"));
        if (!d->permissions.can_edit(table_name))
            return d->fail(
                operation_error,
                QStringLiteral("You do not have permission to edit records of table '%1'").arg(table_name));
        KOR_TABLE_DATA* table = d->table(operation_error, table_name);
        if (!table)
            return false;
        // The record is found by its uuid: its key may be what changes.
        KOR_RECORD_DATA* target = d->find_record(*table, old_record->uuid(), QString());
        if (!target)
            target = d->find_record(*table, new_record->uuid(), old_record->key());
        if (!target)
            return d->fail(
                operation_error,
                QStringLiteral("Table '%1' has no record '%2'").arg(table_name, old_record->key()));
        std::vector<KOR_FIELD_UPDATE> updates;
        for (const KOR_FIELD_DATA* field : new_record->field_map())
        {
            const KOR_FIELD_SCHEMA* field_schema =
                table->table_schema()->field_schema_by_name(field->field_name());
            if (!field_schema)
                return d->fail(
                    operation_error,
                    QStringLiteral("Field '%1' is not in table '%2'").arg(field->field_name(), table_name));
            KOR_FIELD_UPDATE update;
            update.field = field_schema;
            update.value = field->m_value;
            update.approval_source = field->has_approval_data() ? field : nullptr;
            updates.push_back(update);
        }
        return d->update_record(operation_error, table_name, target, updates);
    });
    return error;
}

QString KOR_XML_QUERY_INTERFACE::edit_field_data(const QString& table_name, const KOR_RECORD_DATA* record,
                                                 const KOR_FIELD_DATA* field_data)
{
    if (!record || !field_data || !field_data->field_schema())
        return d->fail(QStringLiteral("No record or field given"));
    KOR_RECORD_DATA changed(*record, nullptr, false);
    KOR_FIELD_DATA* field = changed.get_field_data(field_data->field_name());
    if (!field)
        field = changed.add_field_data(field_data->field_schema(), QVariant());
    *field = *field_data;
    return edit_record_data(table_name, record, &changed);
}

bool KOR_XML_QUERY_INTERFACE::key_exists_within_transaction(const QString& table_name, const QString& key)
{
    QString error;
    const KOR_TABLE_DATA* table = d->table(error, table_name);
    return table && table->records().contains(key);
}

QUuid KOR_XML_QUERY_INTERFACE::remove_record_within_transaction(const QString& table_name, const QString& key)
{
    QUuid removed;
    QString error;
    d->run(error, [&](QString& operation_error) {
        KOR_TABLE_DATA* table = d->table_to_remove_from(operation_error, table_name);
        if (!table)
            return false;
        KOR_RECORD_DATA* record = table->record_by_key(key);
        if (!record)
            return d->fail(operation_error,
                           QStringLiteral("Table '%1' has no record '%2'").arg(table_name, key));
        removed = record->uuid();
        return d->remove_record(operation_error, table_name, record);
    });
    return error.isEmpty() ? removed : QUuid();
}

QString KOR_XML_QUERY_INTERFACE::approve_text(const QString& table_name, const QString& field_name,
                                              const QString& record_key, const QUuid& record_uuid,
                                              bool requires_translation, bool requires_recording, bool)
{
    QString error;
    d->run(error, [&](QString& operation_error) {
        KOR_TABLE_DATA* table = nullptr;
        KOR_FIELD_DATA* field = d->approval_field(operation_error, table_name, field_name, record_key,
                                                  record_uuid, &table, nullptr);
        if (!field)
            return false;
        emit progressUpdate(
            QStringLiteral("Approving %1.%2 of '%3'").arg(table_name, field_name, record_key));
        d->snapshot_field(field);
        field->set_approval_state(KOR_FIELD_DATA::TAS_APPROVED);
        field->set_last_approved_text(field->value_text());
        field->set_requires_translation(requires_translation);
        field->set_requires_recording(requires_recording);
        KOR_ENGINE_ACCESS::mark_changed(*table);
        d->mark_data_dirty(table_name);
        return true;
    });
    return error;
}

QString KOR_XML_QUERY_INTERFACE::reject_text(const QString& table_name, const QString& field_name,
                                             const QString& record_key, const QUuid& record_uuid)
{
    QString error;
    d->run(error, [&](QString& operation_error) {
        KOR_TABLE_DATA* table = nullptr;
        KOR_RECORD_DATA* record = nullptr;
        KOR_FIELD_DATA* field = d->approval_field(operation_error, table_name, field_name, record_key,
                                                  record_uuid, &table, &record);
        if (!field)
            return false;
        if (field->field_schema()->is_primary_key())
            return d->fail(
                operation_error,
                QStringLiteral("'%1' is a key field; its text cannot be rejected").arg(field_name));
        emit progressUpdate(
            QStringLiteral("Rejecting %1.%2 of '%3'").arg(table_name, field_name, record_key));
        d->snapshot_record(*table, record);
        // A rejected text goes back to its last approved form; without one it
        // keeps its words, marked so that it is found for review again.
        const QString approved = field->last_approved_text();
        const QString marker = QString::fromLatin1(REJECTED_MARKER);
        if (!approved.isEmpty())
            field->m_value = approved;
        else if (!field->value_text().contains(marker))
            field->m_value = marker + QStringLiteral(": ") + field->value_text();
        field->set_approval_state(KOR_FIELD_DATA::TAS_APPROVED);
        record->set_modification_msecs(KOR_XML_QUERY_INTERFACE_PRIVATE::now_msecs());
        KOR_ENGINE_ACCESS::mark_changed(*table);
        d->mark_data_dirty(table_name);
        return true;
    });
    return error;
}

QString KOR_XML_QUERY_INTERFACE::ignore_text(const QString& table_name, const QString& field_name,
                                             const QString& record_key, const QUuid& record_uuid,
                                             const QString& text)
{
    QString error;
    d->run(error, [&](QString& operation_error) {
        KOR_TABLE_DATA* table = nullptr;
        KOR_FIELD_DATA* field = d->approval_field(operation_error, table_name, field_name, record_key,
                                                  record_uuid, &table, nullptr);
        if (!field)
            return false;
        d->snapshot_field(field);
        field->set_approval_state(KOR_FIELD_DATA::TAS_IGNORED);
        if (!text.isEmpty())
            field->set_last_approved_text(text);
        KOR_ENGINE_ACCESS::mark_changed(*table);
        d->mark_data_dirty(table_name);
        return true;
    });
    return error;
}

QString KOR_XML_QUERY_INTERFACE::unapprove_text_that_contains(const QString& text, bool case_sensitive)
{
    QString error;
    if (d->tx.open)
        return d->fail(QStringLiteral("Cannot unapprove texts while a transaction is open"));
    // An empty text is in every text: it would send all approved texts back
    // to approval, which nobody asks for by leaving the box empty.
    if (text.isEmpty())
        return d->fail(QStringLiteral("Nothing to unapprove: the text is empty"));
    d->run(error, [&](QString& operation_error) {
        const Qt::CaseSensitivity sensitivity = case_sensitive ? Qt::CaseSensitive : Qt::CaseInsensitive;
        // Localised fields: those the bookkeeping table lists, and those the
        // schemas mark.
        QMap<QString, QSet<QString>> fields;
        QString ignored;
        if (const KOR_TABLE_DATA* localisable = d->table(ignored, QStringLiteral("TExc_LocalisableFields")))
        {
            for (const KOR_RECORD_DATA* record : localisable->records())
            {
                const KOR_FIELD_DATA* table_field = record->get_field_data(QStringLiteral("table_name"));
                const KOR_FIELD_DATA* field_field = record->get_field_data(QStringLiteral("field"));
                if (table_field && field_field)
                    fields[table_field->value_text()].insert(field_field->value_text());
            }
        }
        for (const KOR_TABLE_SCHEMA* table_schema : d->schema->table_schemas())
            for (const KOR_FIELD_SCHEMA* field : table_schema->field_schemas())
                if (field->is_localised())
                    fields[table_schema->get_table_name()].insert(field->field_name());
        int count = 0;
        for (auto it = fields.constBegin(); it != fields.constEnd(); ++it)
        {
            KOR_TABLE_DATA* table = d->table_schema(it.key()) ? d->table(operation_error, it.key()) : nullptr;
            if (!table)
                continue;
            emit progressUpdate(QStringLiteral("Looking through %1").arg(it.key()));
            for (KOR_RECORD_DATA* record : table->records())
            {
                for (const QString& name : it.value())
                {
                    KOR_FIELD_DATA* field = record->get_field_data(name);
                    if (!field || field->approval_state() != KOR_FIELD_DATA::TAS_APPROVED ||
                        !field->value_text().contains(text, sensitivity))
                        continue;
                    d->snapshot_field(field);
                    field->set_approval_state(KOR_FIELD_DATA::TAS_AWAITING_APPROVAL);
                    d->mark_data_dirty(it.key());
                    ++count;
                }
            }
        }
        operation_error.clear();
        d->report(
            QStringLiteral("%1 text(s) containing '%2' are awaiting approval again").arg(count).arg(text),
            PROGRESS_CALLBACK::SEVERITY_INFORMATION);
        return true;
    });
    return error;
}
