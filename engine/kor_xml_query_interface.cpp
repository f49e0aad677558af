#include "kor_xml_query_interface.h"

#include "case_insensitive_compare_string.h"
#include "kor_database_schema.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_file_commit.h"
#include "kor_library_dialog_factory.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_io.h"
#include "kor_table_schema.h"
#include "kor_unique_ids.h"
#include "kor_xml_query_interface_p.h"
#include "orbin_user.h"
#include "patched_tables.h"
#include "progress_callback.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

// ==================================================================== private

KOR_FILE_SIGNATURE KOR_FILE_SIGNATURE::of(const QString& path)
{
    const QFileInfo info(path);
    KOR_FILE_SIGNATURE signature;
    signature.exists = info.exists();
    if (signature.exists)
    {
        signature.size = info.size();
        signature.modified_msecs = info.lastModified().toMSecsSinceEpoch();
    }
    return signature;
}

KOR_XML_QUERY_INTERFACE_PRIVATE::KOR_XML_QUERY_INTERFACE_PRIVATE(KOR_XML_QUERY_INTERFACE* query_interface,
                                                                 PROGRESS_CALLBACK* progress_callback)
    : q(query_interface), progress(progress_callback), user_name(ORBIN_USER::login_name())
{
}

KOR_XML_QUERY_INTERFACE_PRIVATE::~KOR_XML_QUERY_INTERFACE_PRIVATE()
{
    close();
}

void KOR_XML_QUERY_INTERFACE_PRIVATE::report(const QString& text, int severity) const
{
    if (progress)
        progress->report(text.toUtf8().constData(), severity);
}

QString KOR_XML_QUERY_INTERFACE_PRIVATE::fail(const QString& text) const
{
    last_error = text;
    return text;
}

bool KOR_XML_QUERY_INTERFACE_PRIVATE::fail(QString& error, const QString& text) const
{
    error = text;
    last_error = text;
    return false;
}

QString KOR_XML_QUERY_INTERFACE_PRIVATE::open(const QString& database_path, bool for_reading)
{
    if (connected)
        return fail(QStringLiteral("Database [%1] is already connected").arg(path));
    const QString folder = QDir::cleanPath(QDir(database_path).absolutePath());
    QString error;
    if (!QFileInfo(folder).isDir())
        return fail(QStringLiteral("The database folder '%1' does not exist").arg(database_path));
    if (!KOR_TABLE_IO::is_database(error, folder))
        return fail(error);
    QStringList notes;
    if (for_reading)
    {
        if (QFileInfo::exists(QDir(folder).filePath(KOR_FILE_COMMIT::journal_name())))
            return fail(QStringLiteral("%1: a change was interrupted and is not complete; connect to the "
                                       "database for editing once to complete it")
                            .arg(folder));
    }
    else if (!KOR_FILE_COMMIT::recover(error, folder, &notes))
    {
        report(error, PROGRESS_CALLBACK::SEVERITY_ERROR);
        return fail(error);
    }
    for (const QString& note : qAsConst(notes))
        report(note, PROGRESS_CALLBACK::SEVERITY_WARNING);

    auto loaded_schema = std::make_unique<KOR_DATABASE_SCHEMA>();
    QStringList warnings;
    if (!KOR_TABLE_IO::read_database_schema(error, folder, *loaded_schema, &warnings))
    {
        report(error, PROGRESS_CALLBACK::SEVERITY_ERROR);
        return fail(error);
    }
    KOR_PERMISSIONS loaded_permissions;
    if (!loaded_permissions.load(error, folder, user_name))
    {
        report(error, PROGRESS_CALLBACK::SEVERITY_ERROR);
        return fail(error);
    }
    for (const QString& warning : qAsConst(warnings))
        report(warning, PROGRESS_CALLBACK::SEVERITY_WARNING);

    path = folder;
    if (original_path.isEmpty())
        original_path = folder;
    schema = std::move(loaded_schema);
    permissions = loaded_permissions;
    schema_signatures.clear();
    for (const KOR_TABLE_SCHEMA* table_schema : schema->table_schemas())
        schema_signatures.insert(
            table_schema->get_table_name(),
            KOR_FILE_SIGNATURE::of(KOR_TABLE_IO::schema_file_path(path, table_schema->get_table_name())));
    PATCHED_TABLES::instance().load_from_database(path);
    connected = true;
    const QString queries_error = open_queries();
    if (!queries_error.isEmpty())
    {
        report(queries_error, PROGRESS_CALLBACK::SEVERITY_ERROR);
        close();
        return fail(queries_error);
    }
    return QString();
}

void KOR_XML_QUERY_INTERFACE_PRIVATE::close()
{
    if (tx.open)
        rollback();
    if (connected)
        close_queries();
    database_data.clear();
    tables.clear();
    retired_tables.clear();
    schema.reset();
    retired_schemas.clear();
    retired_fields.clear();
    schema_signatures.clear();
    load_failures.clear();
    permissions.clear();
    connected = false;
}

KOR_TABLE_SCHEMA* KOR_XML_QUERY_INTERFACE_PRIVATE::table_schema(const QString& name) const
{
    return schema ? schema->table_schema(name) : nullptr;
}

KOR_TABLE_DATA* KOR_XML_QUERY_INTERFACE_PRIVATE::loaded_table(const QString& name) const
{
    const auto it = tables.find(name);
    return it == tables.end() ? nullptr : it->second.data.get();
}

KOR_TABLE_DATA* KOR_XML_QUERY_INTERFACE_PRIVATE::table_to_remove_from(QString& error, const QString& name)
{
    if (!permissions.can_remove(name))
    {
        fail(error, QStringLiteral("You do not have permission to remove records from table '%1'").arg(name));
        return nullptr;
    }
    return table(error, name);
}

KOR_TABLE_DATA* KOR_XML_QUERY_INTERFACE_PRIVATE::table(QString& error, const QString& name, bool check_keys)
{
    if (!connected)
    {
        fail(error, QStringLiteral("The database is not connected"));
        return nullptr;
    }
    KOR_TABLE_SCHEMA* table_schema = this->table_schema(name);
    if (!table_schema)
    {
        fail(error, QStringLiteral("Unknown table '%1'").arg(name));
        return nullptr;
    }
    auto it = tables.find(name);
    if (it != tables.end())
    {
        if (check_keys && !it->second.keys_checked)
        {
            it->second.keys_checked = true;
            check_foreign_keys(name, {});
        }
        return it->second.data.get();
    }
    if (load_failures.contains(name))
    {
        fail(error, load_failures.value(name));
        return nullptr;
    }
    const QString file = KOR_TABLE_IO::table_file_path(path, name);
    auto data = std::make_unique<KOR_TABLE_DATA>(table_schema);
    KOR_TABLE_READ_DETAILS details;
    details.want_record_offsets = check_keys;
    const KOR_FILE_SIGNATURE signature = KOR_FILE_SIGNATURE::of(file);
    if (!KOR_TABLE_IO::read_table_file(error, file, *table_schema, *data, &details))
    {
        report(error, PROGRESS_CALLBACK::SEVERITY_ERROR);
        last_error = error;
        load_failures.insert(name, error);
        return nullptr;
    }
    if (details.records_given_uuids > 0)
        report(QStringLiteral(
                   "%1: %2 records had no uuid and were given one; write the tables with uuids to keep them")
                   .arg(file)
                   .arg(details.records_given_uuids),
               PROGRESS_CALLBACK::SEVERITY_INFORMATION);
    LOADED_TABLE& loaded = tables[name];
    loaded.data = std::move(data);
    loaded.signature = signature;
    database_data.set_table_data(name, loaded.data.get());
    if (check_keys)
    {
        loaded.keys_checked = true;
        check_foreign_keys(name, details.record_offsets);
    }
    return loaded.data.get();
}

const KOR_FIELD_SCHEMA* KOR_XML_QUERY_INTERFACE_PRIVATE::foreign_field_of(const KOR_FIELD_SCHEMA* field) const
{
    if (!field || !field->dependency())
        return nullptr;
    const KOR_TABLE_SCHEMA* foreign = table_schema(field->dependency()->first);
    if (!foreign)
        return nullptr;
    QString name = field->dependency()->second;
    if (name.isEmpty() && !foreign->primary_key_fields().isEmpty())
        name = foreign->primary_key_fields().first();
    return foreign->field_schema_by_name(name);
}

void KOR_XML_QUERY_INTERFACE_PRIVATE::check_foreign_keys(
    const QString& name, const std::vector<std::pair<const KOR_RECORD_DATA*, qint64>>& offsets)
{
    KOR_TABLE_DATA* data = loaded_table(name);
    const KOR_TABLE_SCHEMA* table_schema = this->table_schema(name);
    if (!data || !table_schema)
        return;
    struct DANGLING
    {
        const KOR_RECORD_DATA* record;
        QString field;
        QString value;
        QString foreign_table;
    };
    QList<DANGLING> dangling;
    int count = 0;
    // A record's field map is in name order ignoring case: a field's slot
    // there is found once, not by name in every record of a large table.
    QList<QString> by_name = table_schema->column_ordering();
    std::sort(by_name.begin(), by_name.end(), [](const QString& a, const QString& b) {
        return CASE_INSENSITIVE_COMPARE_STRING::compare(a, b) < 0;
    });
    for (const QString& field_name : table_schema->column_ordering())
    {
        const KOR_FIELD_SCHEMA* field = table_schema->field_schema_by_name(field_name);
        const KOR_FIELD_SCHEMA* target = foreign_field_of(field);
        if (!target)
            continue;
        QString error;
        KOR_TABLE_DATA* foreign = table(error, target->table_name());
        if (!foreign)
            continue;
        const bool by_key = target->owner()->primary_key_fields() == QList<QString>{target->field_name()};
        // Keys are looked up in the sorted key list while the table checked is
        // smaller than the one it refers to; otherwise hashing them all once
        // is cheaper than a search a record.
        const bool hashed = !by_key || data->record_count() >= foreign->record_count();
        QSet<QString> values;
        if (hashed)
        {
            values.reserve(foreign->record_count());
            const KOR_RECORD_MAP& records = foreign->records();
            for (int i = 0; i < records.size(); ++i)
            {
                if (by_key)
                    values.insert(records.key_at(i));
                else if (const KOR_FIELD_DATA* value = records.at(i)->get_field_data(target->field_name()))
                    values.insert(value->value_text());
            }
        }
        const int slot = int(by_name.indexOf(field_name));
        const int field_count = table_schema->field_count();
        for (const KOR_RECORD_DATA* record : data->records())
        {
            const KOR_FIELD_DATA_MAP& fields = record->field_map();
            const KOR_FIELD_DATA* value = nullptr;
            if (fields.size() == field_count && fields.at(slot)->field_schema() == field)
                value = fields.at(slot);
            else
                value = record->get_field_data(field_name);
            if (!value)
                continue;
            const QVariant& variant = value->value();
            const QString text = variant.userType() == QMetaType::QString
                                     ? *static_cast<const QString*>(variant.constData())
                                     : value->value_text();
            if (text.isEmpty())
                continue;
            if (hashed ? values.contains(text) : foreign->records().contains(text))
                continue;
            if (++count <= 20)
                dangling.append(DANGLING{record, field_name, text, target->table_name()});
        }
    }
    if (count == 0)
        return;
    const QString file = KOR_TABLE_IO::table_file_path(path, name);
    QByteArray bytes;
    if (!offsets.empty())
    {
        QFile reread(file);
        if (reread.open(QIODevice::ReadOnly))
            bytes = reread.readAll();
    }
    QStringList lines;
    for (const DANGLING& entry : qAsConst(dangling))
    {
        QString where = file;
        for (const auto& offset : offsets)
            if (offset.first == entry.record && !bytes.isEmpty())
                where += QStringLiteral(", line %1").arg(KOR_TABLE_IO::line_of(bytes, offset.second));
        lines.append(QStringLiteral("%1: record '%2', field '%3': '%4' names no record of table '%5'")
                         .arg(where, entry.record->key(), entry.field, entry.value, entry.foreign_table));
    }
    if (count > dangling.size())
        lines.append(QStringLiteral("... and %1 more").arg(count - dangling.size()));
    report(QStringLiteral("%1 reference(s) to records that do not exist:\n").arg(count) +
               lines.join(QLatin1Char('\n')),
           PROGRESS_CALLBACK::SEVERITY_WARNING);
}

KOR_RECORD_DATA* KOR_XML_QUERY_INTERFACE_PRIVATE::find_record(KOR_TABLE_DATA& table, const QUuid& uuid,
                                                              const QString& key) const
{
    if (!uuid.isNull())
        if (KOR_RECORD_DATA* record = table.record_by_uuid(uuid))
            return record;
    return key.isEmpty() ? nullptr : table.record_by_key(key);
}

qint64 KOR_XML_QUERY_INTERFACE_PRIVATE::now_msecs()
{
    return QDateTime::currentMSecsSinceEpoch();
}

KOR_COMMAND_ORIGIN KOR_XML_QUERY_INTERFACE_PRIVATE::origin(const QString& user,
                                                           const QString& description) const
{
    KOR_COMMAND_ORIGIN result;
    result.user = user.isEmpty() ? user_name : user;
    result.description = description;
    result.time = QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzzZ"));
    return result;
}

// ==================================================================== public

KOR_XML_QUERY_INTERFACE::KOR_XML_QUERY_INTERFACE(PROGRESS_CALLBACK* progress, const QString&, bool, bool)
    : d(new KOR_XML_QUERY_INTERFACE_PRIVATE(this, progress))
{
}

KOR_XML_QUERY_INTERFACE::~KOR_XML_QUERY_INTERFACE() = default;

QString KOR_XML_QUERY_INTERFACE::create_empty_database(const QString& path)
{
    QDir folder(path);
    if (folder.exists() &&
        !folder.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).isEmpty())
        return QStringLiteral("'%1' is not empty").arg(path);
    if (!QDir().mkpath(folder.filePath(KOR_TABLE_IO::schema_folder_name())))
        return QStringLiteral("'%1' cannot be made").arg(path);
    QFile marker(folder.filePath(KOR_TABLE_IO::validation_file_name()));
    const QByteArray bytes = KOR_TABLE_IO::validation_file_bytes();
    if (!marker.open(QIODevice::WriteOnly) || marker.write(bytes) != bytes.size())
        return QStringLiteral("%1: cannot be written: %2").arg(marker.fileName(), marker.errorString());
    return QString();
}

int KOR_XML_QUERY_INTERFACE::version() const
{
    return KOR_TABLE_IO::format_version();
}

QString KOR_XML_QUERY_INTERFACE::connect(const QString& path, const QString&, GET_LATEST_MODE mode, bool flag)
{
    if (d->connected)
        return d->fail(QStringLiteral("Database [%1] is already connected").arg(d->path));
    QString error;
    if (!basic_merge(error, path, mode, flag))
        return d->fail(error.isEmpty() ? QStringLiteral("Getting the latest revision failed") : error);
    return connect_without_merge(path, flag);
}

QString KOR_XML_QUERY_INTERFACE::connect_without_merge(const QString& path, bool)
{
    return d->open(path);
}

QString KOR_XML_QUERY_INTERFACE::connect_for_diff(const QString& path)
{
    // A diff copy names the database it was made from.
    QFile origin(QDir(path).filePath(QStringLiteral("Veld_copy_origin.txt")));
    if (origin.open(QIODevice::ReadOnly))
        d->original_path = QString::fromUtf8(origin.readLine()).trimmed();
    // A read-only connection never writes, not even to finish a commit
    // another program left behind.
    const QString error = d->open(path, true);
    if (error.isEmpty())
        d->read_only = true;
    else
        d->original_path.clear();
    return error;
}

QString KOR_XML_QUERY_INTERFACE::disconnect()
{
    if (!d->connected)
        return d->fail(QStringLiteral("Database is not connected"));
    if (d->tx.open)
        d->report(
            QStringLiteral("A transaction was still open when disconnecting; its changes were discarded"),
            PROGRESS_CALLBACK::SEVERITY_WARNING);
    d->close();
    d->path.clear();
    d->original_path.clear();
    return QString();
}

bool KOR_XML_QUERY_INTERFACE::is_connected() const
{
    return d->connected;
}

QDateTime KOR_XML_QUERY_INTERFACE::latest_mod_date() const
{
    if (d->path.isEmpty())
        return QDateTime();
    QDateTime latest;
    for (const QString& folder : {d->path, QDir(d->path).filePath(KOR_TABLE_IO::schema_folder_name())})
        for (const QFileInfo& info :
             QDir(folder).entryInfoList(QStringList(QStringLiteral("*.xml")), QDir::Files))
            if (!latest.isValid() || info.lastModified() > latest)
                latest = info.lastModified();
    return latest;
}

QString KOR_XML_QUERY_INTERFACE::connect_string() const
{
    return d->path;
}

QString KOR_XML_QUERY_INTERFACE::original_connect_string() const
{
    return d->original_path;
}

void KOR_XML_QUERY_INTERFACE::get_table_names(QMap<QString, bool>& out) const
{
    out.clear();
    if (!d->schema)
        return;
    for (const QString& name : d->schema->table_schemas().keys())
        out.insert(name, d->loaded_table(name) != nullptr);
}

bool KOR_XML_QUERY_INTERFACE::get_table_names_disconnected(QStringList& out, const QString& path)
{
    QString error;
    if (!KOR_TABLE_IO::is_database(error, path))
    {
        d->fail(error);
        return false;
    }
    out = KOR_TABLE_IO::schema_table_names(path);
    return true;
}

KOR_DATABASE_SCHEMA* KOR_XML_QUERY_INTERFACE::get_database_schema() const
{
    return d->schema.get();
}

KOR_TABLE_SCHEMA* KOR_XML_QUERY_INTERFACE::get_table_schema(const QString& table_name) const
{
    return d->table_schema(table_name);
}

const KOR_DATABASE_DATA* KOR_XML_QUERY_INTERFACE::get_database_data()
{
    return d->connected ? &d->database_data : nullptr;
}

KOR_TABLE_DATA KOR_XML_QUERY_INTERFACE::get_table_data(QString& error, const QString& table_name,
                                                       const QString& key)
{
    const KOR_TABLE_DATA* data = d->table(error, table_name);
    if (!data)
        return KOR_TABLE_DATA(nullptr);
    if (key.isEmpty())
        return KOR_TABLE_DATA(*data);
    KOR_TABLE_DATA result(data->table_schema());
    if (const KOR_RECORD_DATA* record = data->record_by_key(key))
        result.add_record(new KOR_RECORD_DATA(*record, &result, false));
    else
        d->fail(error, QStringLiteral("Table '%1' has no record '%2'").arg(table_name, key));
    return result;
}

const KOR_TABLE_DATA* KOR_XML_QUERY_INTERFACE::get_table_data(QString& error, const QString& table_name)
{
    return d->table(error, table_name, true);
}

void KOR_XML_QUERY_INTERFACE::clear_table_data(const QString& table_name)
{
    // The undo steps of an open transaction may point into any table.
    if (d->tx.open)
        return;
    d->database_data.remove_table_data(table_name);
    d->tables.erase(table_name);
}

bool KOR_XML_QUERY_INTERFACE::is_read_only() const
{
    return d->read_only;
}

void KOR_XML_QUERY_INTERFACE::make_read_only(bool read_only)
{
    d->read_only = read_only;
}

quint64 KOR_XML_QUERY_INTERFACE::new_unique_global_id()
{
    return KOR_UNIQUE_IDS::next();
}

QString KOR_XML_QUERY_INTERFACE::get_last_error() const
{
    return d->last_error;
}

LOCAL_DATA_CHANGES_DIALOG*
KOR_XML_QUERY_INTERFACE::create_local_data_changes_dialog(QWidget* parent,
                                                          DB_DIALOG_REGISTRATION_INTERFACE* registry)
{
    const auto& maker = KOR_LIBRARY_DIALOG_FACTORY::installed().local_data_changes;
    return maker ? maker(*this, parent, registry) : nullptr;
}

SUBMISSION_DIALOG*
KOR_XML_QUERY_INTERFACE::create_submission_dialog(const QString& connect_path, QWidget* parent,
                                                  DB_DIALOG_REGISTRATION_INTERFACE* registry)
{
    const auto& maker = KOR_LIBRARY_DIALOG_FACTORY::installed().submission;
    return maker ? maker(*this, connect_path, parent, registry) : nullptr;
}

SUBMISSION_DIALOG* KOR_XML_QUERY_INTERFACE::create_submission_plus_data_dialog(
    const QString& connect_path, const QString& first, const QString& second, const QStringList& list,
    QWidget* parent, DB_DIALOG_REGISTRATION_INTERFACE* registry)
{
    const auto& maker = KOR_LIBRARY_DIALOG_FACTORY::installed().submission_plus_data;
    return maker ? maker(*this, connect_path, first, second, list, parent, registry) : nullptr;
}

REQUEST_SUBMISSION_DIALOG*
KOR_XML_QUERY_INTERFACE::create_request_submission_dialog(QWidget* parent,
                                                          DB_DIALOG_REGISTRATION_INTERFACE* registry)
{
    const auto& maker = KOR_LIBRARY_DIALOG_FACTORY::installed().request_submission;
    return maker ? maker(*this, parent, registry) : nullptr;
}

// Export belongs to the export work; until it lands these say so.

namespace
{
QString export_not_available()
{
    return QStringLiteral("Exporting is not available yet");
}
} // namespace

bool KOR_XML_QUERY_INTERFACE::any_local_tables_requiring_localisation(QString& error, QSet<QString>& out,
                                                                      const QSet<QString>&, const QString&)
{
    out.clear();
    error.clear();
    return true;
}

bool KOR_XML_QUERY_INTERFACE::changes_require_localisation(const QString&)
{
    return false;
}

bool KOR_XML_QUERY_INTERFACE::exported_table_list(QString& error, QSet<QString>& out, const QString&, bool)
{
    out.clear();
    return d->fail(error, export_not_available());
}

bool KOR_XML_QUERY_INTERFACE::export_tables(QString& error, const QSet<QString>&, const QString&, bool, bool,
                                            bool)
{
    return d->fail(error, export_not_available());
}

bool KOR_XML_QUERY_INTERFACE::get_tables_requiring_export(QString& error, QSet<QString>& out, const QString&)
{
    out.clear();
    return d->fail(error, export_not_available());
}

bool KOR_XML_QUERY_INTERFACE::table_uuids_match(const QString&, const QString&, const QString&)
{
    return false;
}
