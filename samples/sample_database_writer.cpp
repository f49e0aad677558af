#include "sample_database_writer.h"

#include "kor_database_schema.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_file_commit.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_io.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "progress_report_list.h"
#include "sample_catalogue.h"
#include "sample_content.h"
#include "sample_context.h"
#include "sample_random.h"

#include <QDir>
#include <QFile>

namespace
{
} // namespace

bool SAMPLE_DATABASE_WRITER::build_table(QString& error, const KOR_TABLE_SCHEMA& schema,
                                         const SAMPLE_ROWS& rows, KOR_TABLE_DATA& out)
{
    out.clear();
    for (const SAMPLE_ROW& row : rows)
    {
        auto record = std::make_unique<KOR_RECORD_DATA>(&schema, &out, row.uuid);
        for (const QString& name : schema.column_ordering())
        {
            const KOR_FIELD_SCHEMA* field = schema.field_schema_by_name(name);
            QVariant value;
            QString reason;
            const QVariant given =
                row.values.contains(name) ? row.values.value(name) : field->default_value();
            if (!field->stored_value(reason, given, value))
            {
                error = QStringLiteral("Table '%1': %2").arg(schema.get_table_name(), reason);
                return false;
            }
            KOR_FIELD_DATA* data = record->add_field_data(field, value);
            const auto approval = row.approvals.constFind(name);
            if (approval != row.approvals.constEnd())
            {
                data->set_approval_state(approval->state);
                data->set_last_approved_text(approval->last_approved_text);
                data->set_last_edit_user(approval->last_edit_user);
                data->set_requires_translation(approval->requires_translation);
                data->set_requires_recording(approval->requires_recording);
            }
        }
        record->set_modification_msecs(row.modified_msecs);
        QString reason;
        KOR_RECORD_DATA* raw = record.release();
        if (!out.add_record(raw, &reason))
        {
            delete raw;
            error = QStringLiteral("Table '%1': %2").arg(schema.get_table_name(), reason);
            return false;
        }
    }
    return true;
}

QString SAMPLE_DATABASE_WRITER::commit_tables(const QString& path, const QList<const KOR_TABLE_DATA*>& tables)
{
    KOR_FILE_COMMIT commit(path);
    QString error;
    for (const KOR_TABLE_DATA* table : tables)
    {
        const bool staged = commit.stage(error, KOR_TABLE_IO::table_file_relative(table->table_name()),
                                         [table](QIODevice& device, QString& write_error) {
                                             return KOR_TABLE_IO::write_table(write_error, device, *table);
                                         });
        if (!staged)
        {
            commit.abandon();
            return error;
        }
    }
    if (!commit.commit(error))
        return error;
    return QString();
}

namespace
{
// Fills the tables' records on their schemas: generated rows, or a bulk
// generator for tables too large for rows.
QString build_tables(const SAMPLE_CATALOGUE& catalogue, const SAMPLE_CONTENT& content, quint64 seed,
                     const QList<const KOR_TABLE_SCHEMA*>& schemas,
                     std::vector<std::unique_ptr<KOR_TABLE_DATA>>& out)
{
    const SAMPLE_RANDOM root(seed);
    QString error;
    for (const KOR_TABLE_SCHEMA* schema : schemas)
    {
        const QString name = schema->get_table_name();
        out.push_back(std::make_unique<KOR_TABLE_DATA>(schema));
        const SAMPLE_TABLE* table = catalogue.table(name);
        if (table->bulk_generator())
        {
            SAMPLE_CONTEXT context(catalogue, content.tables(), root.fork(name), content.size());
            if (!table->bulk_generator()(error, context, *schema, *out.back()))
                return QStringLiteral("Table '%1': %2").arg(name, error);
        }
        else if (!SAMPLE_DATABASE_WRITER::build_table(error, *schema, content.rows(name), *out.back()))
        {
            return error;
        }
    }
    return QString();
}

QString write_through_operations(const QString& path, const SAMPLE_CATALOGUE& catalogue,
                                 const SAMPLE_CONTENT& content, quint64 seed, const QStringList& order)
{
    PROGRESS_REPORT_LIST progress;
    KOR_XML_QUERY_INTERFACE database(&progress, QString(), false, false);
    QString error = database.connect_without_merge(path, false);
    if (!error.isEmpty())
        return error;
    const SAMPLE_RANDOM root(seed);
    if (!database.begin_transaction(error, true))
        return error;
    for (const QString& name : order)
    {
        SAMPLE_RANDOM random = root.fork(name + QStringLiteral("/schema"));
        const std::unique_ptr<KOR_TABLE_SCHEMA> schema = catalogue.table(name)->make_schema(random);
        error = database.add_table(*schema, QStringLiteral("sample"), QStringLiteral("Sample project"));
        if (!error.isEmpty())
        {
            database.terminate_transaction();
            return QStringLiteral("Table '%1': %2").arg(name, error);
        }
    }
    if (!database.end_transaction(error))
        return error;

    // The records are built on the engine's own schemas, read back from what
    // it wrote, so that what is checked is what a reader will see.
    QList<const KOR_TABLE_SCHEMA*> schemas;
    for (const QString& name : order)
        schemas.append(database.get_table_schema(name));
    std::vector<std::unique_ptr<KOR_TABLE_DATA>> tables;
    error = build_tables(catalogue, content, seed, schemas, tables);
    if (error.isEmpty())
    {
        QList<const KOR_TABLE_DATA*> to_write;
        for (const auto& table : tables)
            to_write.append(table.get());
        error = SAMPLE_DATABASE_WRITER::commit_tables(path, to_write);
    }
    tables.clear();
    database.disconnect();
    if (!error.isEmpty())
        return error;
    QFile::remove(QDir(path).filePath(KOR_TABLE_IO::update_commands_file_name()));
    return progress.texts(PROGRESS_CALLBACK::SEVERITY_WARNING);
}

QString write_in_bulk(const QString& path, const SAMPLE_CATALOGUE& catalogue, const SAMPLE_CONTENT& content,
                      quint64 seed, const QStringList& order)
{
    const SAMPLE_RANDOM root(seed);
    std::vector<std::unique_ptr<KOR_TABLE_SCHEMA>> owned;
    QList<const KOR_TABLE_SCHEMA*> schemas;
    for (const QString& name : order)
    {
        SAMPLE_RANDOM random = root.fork(name + QStringLiteral("/schema"));
        owned.push_back(catalogue.table(name)->make_schema(random));
        QStringList faults;
        if (!owned.back()->is_valid(faults, true))
            return QStringLiteral("Table '%1': %2").arg(name, faults.join(QLatin1Char('\n')));
        schemas.append(owned.back().get());
    }
    std::vector<std::unique_ptr<KOR_TABLE_DATA>> tables;
    QString error = build_tables(catalogue, content, seed, schemas, tables);
    if (!error.isEmpty())
        return error;
    KOR_FILE_COMMIT commit(path);
    for (size_t i = 0; i < tables.size() && error.isEmpty(); ++i)
    {
        const KOR_TABLE_DATA* table = tables[i].get();
        if (commit.stage_bytes(error, KOR_TABLE_IO::schema_file_relative(table->table_name()),
                               KOR_TABLE_IO::schema_bytes(*table->table_schema())))
            commit.stage(error, KOR_TABLE_IO::table_file_relative(table->table_name()),
                         [table](QIODevice& device, QString& write_error) {
                             return KOR_TABLE_IO::write_table(write_error, device, *table);
                         });
    }
    if (!error.isEmpty())
    {
        commit.abandon();
        return error;
    }
    if (!commit.commit(error))
        return error;
    // What the engine reads back is what counts: a relationship to a table
    // that is not there is only a warning to a reader, a fault here.
    KOR_DATABASE_SCHEMA read_back;
    QStringList warnings;
    if (!KOR_TABLE_IO::read_database_schema(error, path, read_back, &warnings))
        return error;
    return warnings.join(QLatin1Char('\n'));
}
} // namespace

QString SAMPLE_DATABASE_WRITER::write(const QString& path, const SAMPLE_CATALOGUE& catalogue,
                                      const SAMPLE_CONTENT& content, quint64 seed, SCHEMAS schemas)
{
    QString error = KOR_XML_QUERY_INTERFACE::create_empty_database(path);
    if (!error.isEmpty())
        return error;
    QStringList order;
    if (!catalogue.creation_order(order, error))
        return error;
    return schemas == BULK ? write_in_bulk(path, catalogue, content, seed, order)
                           : write_through_operations(path, catalogue, content, seed, order);
}

QString SAMPLE_DATABASE_WRITER::rewrite_tables(const QString& path,
                                               const QMap<QString, const SAMPLE_ROWS*>& tables)
{
    KOR_DATABASE_SCHEMA schema;
    QString error;
    if (!KOR_TABLE_IO::read_database_schema(error, path, schema, nullptr))
        return error;
    std::vector<std::unique_ptr<KOR_TABLE_DATA>> built;
    QList<const KOR_TABLE_DATA*> to_write;
    for (auto it = tables.constBegin(); it != tables.constEnd(); ++it)
    {
        const KOR_TABLE_SCHEMA* table_schema = schema.table_schema(it.key());
        if (!table_schema)
            return QStringLiteral("Unknown table '%1'").arg(it.key());
        built.push_back(std::make_unique<KOR_TABLE_DATA>(table_schema));
        if (!build_table(error, *table_schema, **it, *built.back()))
            return error;
        to_write.append(built.back().get());
    }
    return commit_tables(path, to_write);
}
