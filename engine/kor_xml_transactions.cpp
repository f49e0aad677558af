// Transactions of the XML query interface: the undo log, and the commit that
// writes every touched file at once.

#include "kor_database_schema.h"
#include "kor_engine_access.h"
#include "kor_field_schema.h"
#include "kor_file_commit.h"
#include "kor_table_data.h"
#include "kor_table_io.h"
#include "kor_table_schema.h"
#include "kor_update_command_codec.h"
#include "kor_xml_query_interface.h"
#include "kor_xml_query_interface_p.h"
#include "workspace/kor_workspace_files.h"
#include "progress_callback.h"

#include <QDir>
#include <QFile>
#include <QLockFile>

#include <algorithm>

// ==================================================================== private

KOR_XML_QUERY_INTERFACE_PRIVATE::SAVEPOINT KOR_XML_QUERY_INTERFACE_PRIVATE::savepoint() const
{
    SAVEPOINT point;
    point.undo = tx.undo.size();
    point.after_commit = tx.after_commit.size();
    point.commands = tx.commands.size();
    return point;
}

void KOR_XML_QUERY_INTERFACE_PRIVATE::undo_to(const SAVEPOINT& point)
{
    while (tx.undo.size() > point.undo)
    {
        std::function<void()> step = std::move(tx.undo.back());
        tx.undo.pop_back();
        step();
    }
    tx.after_commit.resize(qMin(tx.after_commit.size(), point.after_commit));
    while (tx.commands.size() > point.commands)
        tx.commands.removeLast();
}

bool KOR_XML_QUERY_INTERFACE_PRIVATE::check_writable(QString& error) const
{
    if (!connected)
        return fail(error, QStringLiteral("The database is not connected"));
    if (read_only)
        return fail(error, QStringLiteral("The database is read-only"));
    return true;
}

bool KOR_XML_QUERY_INTERFACE_PRIVATE::begin(QString& error)
{
    if (!check_writable(error))
        return false;
    // A transaction still open is abandoned: its changes are discarded.
    if (tx.open)
        rollback();
    tx = TRANSACTION();
    tx.open = true;
    return true;
}

void KOR_XML_QUERY_INTERFACE_PRIVATE::rollback()
{
    undo_to(SAVEPOINT());
    tx = TRANSACTION();
}

void KOR_XML_QUERY_INTERFACE_PRIVATE::mark_data_dirty(const QString& table)
{
    tx.dirty_data.insert(table);
    tx.changed_tables.insert(table);
}

void KOR_XML_QUERY_INTERFACE_PRIVATE::mark_schema_dirty(const QString& table)
{
    tx.dirty_schemas.insert(table);
    tx.changed_tables.insert(table);
}

bool KOR_XML_QUERY_INTERFACE_PRIVATE::run(QString& error, const std::function<bool(QString&)>& operation)
{
    if (!check_writable(error))
        return false;
    const bool own_transaction = !tx.open;
    if (own_transaction && !begin(error))
        return false;
    const SAVEPOINT point = savepoint();
    error.clear();
    if (!operation(error))
    {
        undo_to(point);
        if (own_transaction)
            rollback();
        last_error = error;
        return false;
    }
    if (own_transaction && !commit(error))
    {
        rollback();
        return false;
    }
    return true;
}

bool KOR_XML_QUERY_INTERFACE_PRIVATE::commit(QString& error)
{
    if (!tx.open)
        return fail(error, QStringLiteral("No transaction is open"));
    QLockFile lock(QDir(path).filePath(QStringLiteral(".veld_lock")));
    lock.setStaleLockTime(60000);
    if (!lock.tryLock(10000))
        return fail(
            error,
            QStringLiteral("The database '%1' is being written by another program; try again").arg(path));
    QStringList notes;
    if (!KOR_FILE_COMMIT::recover(error, path, &notes))
        return fail(error, error);

    KOR_FILE_COMMIT files(path);
    QStringList data_tables = tx.dirty_data.values();
    std::sort(data_tables.begin(), data_tables.end());
    QStringList schema_tables = tx.dirty_schemas.values();
    std::sort(schema_tables.begin(), schema_tables.end());
    QStringList removed = tx.removed_tables.values();
    std::sort(removed.begin(), removed.end());

    // A file that changed on disk since it was read would be overwritten
    // with stale data: refuse instead.
    auto changed_on_disk = [&](const QString& relative, const KOR_FILE_SIGNATURE& known) {
        const KOR_FILE_SIGNATURE now = KOR_FILE_SIGNATURE::of(QDir(path).filePath(relative));
        if (now == known)
            return false;
        fail(error,
             QStringLiteral("%1 was changed by someone else since it was read; reconnect to see the change")
                 .arg(QDir(path).filePath(relative)));
        return true;
    };

    for (const QString& name : qAsConst(data_tables))
    {
        if (tx.removed_tables.contains(name))
            continue;
        const auto it = tables.find(name);
        if (it == tables.end())
            continue;
        const QString relative = KOR_TABLE_IO::table_file_relative(name);
        if (changed_on_disk(relative, it->second.signature))
            return false;
        emit q->progressUpdate(QStringLiteral("Writing table %1").arg(name));
        const KOR_TABLE_DATA* data = it->second.data.get();
        if (!files.stage(error, relative, [data](QIODevice& device, QString& write_error) {
                return KOR_TABLE_IO::write_table(write_error, device, *data);
            }))
            return fail(error, error);
    }
    for (const QString& name : qAsConst(schema_tables))
    {
        const KOR_TABLE_SCHEMA* table_schema = this->table_schema(name);
        if (!table_schema || tx.removed_tables.contains(name))
            continue;
        const QString relative = KOR_TABLE_IO::schema_file_relative(name);
        if (changed_on_disk(relative, schema_signatures.value(name)))
            return false;
        if (!files.stage_bytes(error, relative, KOR_TABLE_IO::schema_bytes(*table_schema)))
            return fail(error, error);
    }
    for (const QString& name : qAsConst(removed))
    {
        if (table_schema(name))
            continue; // removed and made again in the same transaction
        files.stage_removal(KOR_TABLE_IO::table_file_relative(name));
        files.stage_removal(KOR_TABLE_IO::schema_file_relative(name));
    }
    if (!tx.commands.isEmpty())
    {
        QFile commands_file(QDir(path).filePath(KOR_TABLE_IO::update_commands_file_name()));
        QByteArray bytes;
        if (commands_file.exists())
        {
            if (!commands_file.open(QIODevice::ReadOnly))
                return fail(error, QStringLiteral("%1: cannot be read: %2")
                                       .arg(commands_file.fileName(), commands_file.errorString()));
            bytes = commands_file.readAll();
            commands_file.close();
            // The file holds the commands of the change being prepared: once
            // its content is what the depot already has, those commands went
            // out with an earlier submit and this change starts afresh.
            if (KOR_WORKSPACE_FILES::matches_have_revision(path, commands_file.fileName(), bytes))
                bytes.clear();
            if (!bytes.isEmpty() && !bytes.endsWith('\n'))
                bytes += '\n';
        }
        if (bytes.trimmed().isEmpty())
            bytes = KOR_UPDATE_COMMAND_CODEC::header_line().toUtf8() + '\n';
        for (const QString& line : qAsConst(tx.commands))
            bytes += line.toUtf8() + '\n';
        if (!files.stage_bytes(error, KOR_TABLE_IO::update_commands_file_name(), bytes))
            return fail(error, error);
    }
    if (!files.commit(error))
        return fail(error, error);

    for (const QString& name : qAsConst(data_tables))
    {
        auto it = tables.find(name);
        if (it != tables.end())
            it->second.signature = KOR_FILE_SIGNATURE::of(KOR_TABLE_IO::table_file_path(path, name));
    }
    for (const QString& name : qAsConst(schema_tables))
        if (table_schema(name))
            schema_signatures.insert(name,
                                     KOR_FILE_SIGNATURE::of(KOR_TABLE_IO::schema_file_path(path, name)));
    for (const QString& name : qAsConst(removed))
        if (!table_schema(name))
            schema_signatures.remove(name);
    for (auto& step : tx.after_commit)
        step();
    QStringList changed = tx.changed_tables.values();
    std::sort(changed.begin(), changed.end());
    tx = TRANSACTION();
    for (const QString& name : qAsConst(changed))
        emit q->tableChanged(name);
    return true;
}

// ==================================================================== public

bool KOR_XML_QUERY_INTERFACE::begin_transaction(QString& error, bool)
{
    error.clear();
    return d->begin(error);
}

bool KOR_XML_QUERY_INTERFACE::end_transaction(QString& error)
{
    error.clear();
    if (!d->tx.open)
        return d->fail(error, QStringLiteral("No transaction is open"));
    if (!d->commit(error))
    {
        // Memory goes back to what the files still hold.
        d->rollback();
        d->report(error, PROGRESS_CALLBACK::SEVERITY_ERROR);
        return false;
    }
    return true;
}

bool KOR_XML_QUERY_INTERFACE::in_transaction() const
{
    return d->tx.open;
}

void KOR_XML_QUERY_INTERFACE::terminate_transaction()
{
    if (d->tx.open)
        d->rollback();
}

bool KOR_XML_QUERY_INTERFACE::save_table(QString& error, const QString& table_name)
{
    return d->run(error, [this, &table_name](QString& operation_error) {
        if (!d->table(operation_error, table_name))
            return false;
        d->mark_data_dirty(table_name);
        return true;
    });
}

bool KOR_XML_QUERY_INTERFACE::save_table(QString& error, const QString& table_name,
                                         const KOR_TABLE_DATA& data)
{
    return d->run(error, [this, &table_name, &data](QString& operation_error) {
        KOR_TABLE_DATA* table = d->table(operation_error, table_name);
        if (!table)
            return false;
        const QList<KOR_RECORD_DATA*> existing = table->records().values();
        for (KOR_RECORD_DATA* record : existing)
            if (!d->remove_record(operation_error, table_name, record))
                return false;
        for (const KOR_RECORD_DATA* record : data.records())
            if (!d->add_record(operation_error, table_name, *record))
                return false;
        d->mark_data_dirty(table_name);
        return true;
    });
}

bool KOR_XML_QUERY_INTERFACE::save_schema(QString& error, const QString& table_name)
{
    return d->run(error, [this, &table_name](QString& operation_error) {
        if (!d->table_schema(table_name))
            return d->fail(operation_error, QStringLiteral("Unknown table '%1'").arg(table_name));
        d->mark_schema_dirty(table_name);
        return true;
    });
}

bool KOR_XML_QUERY_INTERFACE::save_schema(QString& error, const KOR_TABLE_SCHEMA& schema)
{
    error = edit_table(schema.get_table_name(), schema, QString(), QString());
    return error.isEmpty();
}

void KOR_XML_QUERY_INTERFACE::write_out_tables_with_uuids()
{
    QString error;
    if (!d->run(error, [this](QString& operation_error) {
            for (const QString& name : d->schema->table_schemas().keys())
            {
                if (!d->table(operation_error, name))
                    return false;
                d->mark_data_dirty(name);
            }
            return true;
        }))
        d->report(error, PROGRESS_CALLBACK::SEVERITY_ERROR);
}

void KOR_XML_QUERY_INTERFACE::write_out_schemas_with_field_uuids()
{
    QString error;
    if (!d->run(error, [this](QString&) {
            for (const QString& name : d->schema->table_schemas().keys())
                d->mark_schema_dirty(name);
            return true;
        }))
        d->report(error, PROGRESS_CALLBACK::SEVERITY_ERROR);
}
