// Merging a database folder with the depot's newest revision, keeping local
// edits: tables record by record (KOR_RECORD_MERGE), other files as text.
// And the local changes of one table's records, for the table editor.

#include "kor_merge_log.h"
#include "kor_record_merge.h"
#include "kor_workspace_files.h"

#include "kor_field_data.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_io.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "vcs_depot.h"

#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

namespace
{
const char* const touched_property = "orbin_merge_touched_tables";

class MERGE_RUN
{
public:
    MERGE_RUN(KOR_XML_QUERY_INTERFACE& query_interface, VCS_DEPOT& depot_of_folder, const QString& folder)
        : query(query_interface), depot(depot_of_folder), database(folder)
    {
    }

    KOR_XML_QUERY_INTERFACE& query;
    VCS_DEPOT& depot;
    QString database;
    KOR_MERGE_LOG log;
    QStringList touched;
    QStringList left_by_hand;
    int conflicts = 0;

    void say(const QString& text)
    {
        log.line(text);
        emit query.mergeUpdate(text);
    }

    void leave(const QString& file, const QString& reason)
    {
        left_by_hand.append(QFileInfo(file).fileName());
        say(QStringLiteral("%1 was not merged: %2. The local version stays and waits for a merge by hand")
                .arg(file, reason));
    }

    bool read_revision(QString& error, const QString& file, const QString& revision, QByteArray& bytes,
                       bool& exists)
    {
        bytes.clear();
        exists = false;
        if (revision.isEmpty())
            return true;
        return depot.read_file(error, file, revision, bytes, exists);
    }

    // A schema or any other file: a text merge, refused on conflicts.
    void merge_text(const VCS_UNRESOLVED& open_resolve)
    {
        QString error;
        if (depot.resolve(error, {open_resolve.path}, VCS_RESOLVE::MERGE))
            say(QStringLiteral("Merged %1").arg(open_resolve.path));
        else
            leave(open_resolve.path, error);
    }

    void merge_table(const VCS_UNRESOLVED& open_resolve, const QString& table)
    {
        QString error;
        std::unique_ptr<KOR_TABLE_SCHEMA> schema;
        const QString schema_path = KOR_WORKSPACE_FILES::schema_file(database, table);
        if (!QFileInfo(schema_path).isFile() || !KOR_TABLE_IO::read_schema_file(error, schema_path, schema))
        {
            leave(open_resolve.path, error.isEmpty() ? QStringLiteral("the table has no schema") : error);
            return;
        }
        QByteArray base_bytes;
        QByteArray their_bytes;
        bool base_exists = false;
        bool their_exists = false;
        if (!read_revision(error, open_resolve.path, open_resolve.base_revision, base_bytes, base_exists) ||
            !read_revision(error, open_resolve.path, open_resolve.their_revision, their_bytes, their_exists))
        {
            leave(open_resolve.path, error);
            return;
        }
        if (!their_exists || !QFileInfo(open_resolve.path).isFile())
        {
            leave(open_resolve.path, their_exists
                                         ? QStringLiteral("it was deleted locally and changed in the depot")
                                         : QStringLiteral("it was deleted in the depot and changed locally"));
            return;
        }
        KOR_TABLE_DATA base(schema.get());
        KOR_TABLE_DATA yours(schema.get());
        KOR_TABLE_DATA theirs(schema.get());
        if ((base_exists &&
             !KOR_TABLE_IO::read_table_bytes(error, base_bytes, open_resolve.base_revision, *schema, base)) ||
            !KOR_TABLE_IO::read_table_file(error, open_resolve.path, *schema, yours) ||
            !KOR_TABLE_IO::read_table_bytes(error, their_bytes, open_resolve.their_revision, *schema, theirs))
        {
            leave(open_resolve.path, error);
            return;
        }
        KOR_RECORD_MERGE::RESULT result;
        if (!KOR_RECORD_MERGE::merge(error, schema.get(), base_exists ? &base : nullptr, yours, theirs,
                                     result))
        {
            leave(open_resolve.path, error);
            return;
        }
        const QByteArray merged = KOR_TABLE_IO::table_bytes(*result.merged);
        QSaveFile out(open_resolve.path);
        if (!out.open(QIODevice::WriteOnly) || out.write(merged) != merged.size() || !out.commit())
        {
            leave(open_resolve.path, QStringLiteral("the merged table could not be written"));
            return;
        }
        if (!depot.resolve(error, {open_resolve.path}, VCS_RESOLVE::ACCEPT_YOURS))
        {
            leave(open_resolve.path, error);
            return;
        }
        touched.append(table);
        say(QStringLiteral("Merged table %1: %2 record(s) from the depot, %3 with local edits, %4 removed")
                .arg(table)
                .arg(result.from_theirs)
                .arg(result.from_yours)
                .arg(result.deleted));
        for (const KOR_RECORD_MERGE::CONFLICT& conflict : qAsConst(result.conflicts))
        {
            ++conflicts;
            if (conflict.field.isEmpty())
                say(QStringLiteral("Conflict in table %1, record '%2': %3 locally, %4 in the depot: %5")
                        .arg(table, conflict.key, conflict.your_text, conflict.their_text,
                             conflict.resolution));
            else
                say(QStringLiteral("Conflict in table %1, record '%2', field '%3': local '%4', depot '%5' "
                                   "(was '%6'): %7")
                        .arg(table, conflict.key, conflict.field, conflict.your_text, conflict.their_text,
                             conflict.base_text, conflict.resolution));
        }
    }
};

// The merge of basic_merge and merge_for_checkin.
bool merge_database(KOR_XML_QUERY_INTERFACE& query, QString& error, const QString& path,
                    const QString& caller)
{
    error.clear();
    query.setProperty(touched_property, QStringList());
    if (query.is_connected())
    {
        // The files change under a merge; loaded data would no longer match them.
        error = QStringLiteral("Cannot merge when the database is connected");
        return false;
    }
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    if (!depot)
    {
        if (!caller.isEmpty() || !QFileInfo(path).isDir())
        {
            error = QStringLiteral("There is nothing to merge with: %1").arg(error);
            return false;
        }
        // A database used without version control still connects: there is
        // simply nothing newer to bring in.
        emit query.mergeUpdate(QStringLiteral("Not merged: %1").arg(error));
        error.clear();
        return true;
    }
    const QString database = KOR_WORKSPACE_FILES::clean(path);
    MERGE_RUN run(query, *depot, database);
    if (!run.log.open(error, database, caller))
        return false;

    // Every local change is copied before anything moves.
    KOR_WORKSPACE_FILES::CHANGES changes;
    if (!KOR_WORKSPACE_FILES::changes(error, *depot, database, changes))
        return false;
    QStringList local(changes.changed_files.begin(), changes.changed_files.end());
    local.sort();
    for (const QString& file : qAsConst(local))
    {
        if (!run.log.keep_copy(error, database, file))
            return false;
    }

    run.say(QStringLiteral("Getting the latest revision of %1").arg(database));
    QStringList updated;
    if (!depot->sync(error, {database + QStringLiteral("/...")}, updated))
    {
        run.say(QStringLiteral("Getting the latest revision failed: %1").arg(error));
        error = QStringLiteral("Could not get the latest revision: %1").arg(error);
        return false;
    }
    run.say(QStringLiteral("%1 file(s) brought to the latest revision").arg(updated.size()));

    QVector<VCS_UNRESOLVED> open_resolves;
    if (!depot->unresolved(error, database, open_resolves))
        return false;
    // Schemas first: a table is read with its merged schema.
    std::stable_sort(open_resolves.begin(), open_resolves.end(),
                     [&](const VCS_UNRESOLVED& a, const VCS_UNRESOLVED& b) {
                         const bool a_schema = KOR_WORKSPACE_FILES::kind_of(database, a.path) ==
                                               KOR_WORKSPACE_FILES::TABLE_SCHEMA;
                         const bool b_schema = KOR_WORKSPACE_FILES::kind_of(database, b.path) ==
                                               KOR_WORKSPACE_FILES::TABLE_SCHEMA;
                         return a_schema != b_schema ? a_schema : a.path < b.path;
                     });
    for (const VCS_UNRESOLVED& open_resolve : qAsConst(open_resolves))
    {
        QString table;
        if (KOR_WORKSPACE_FILES::kind_of(database, open_resolve.path, &table) ==
            KOR_WORKSPACE_FILES::TABLE_DATA)
            run.merge_table(open_resolve, table);
        else
            run.merge_text(open_resolve);
    }
    run.touched.sort();
    query.setProperty(touched_property, run.touched);

    if (!run.left_by_hand.isEmpty())
    {
        error = QStringLiteral(
                    "The merge left %1 file(s) to merge by hand (%2); the local versions are kept, and "
                    "copies and the log are in '%3'")
                    .arg(run.left_by_hand.size())
                    .arg(run.left_by_hand.join(QStringLiteral(", ")), run.log.folder());
        run.say(error);
        return false;
    }
    run.say(
        QStringLiteral("Merge finished: %1 locally edited table(s) merged, %2 conflict(s) settled by keeping "
                       "the local value; log in '%3'")
            .arg(run.touched.size())
            .arg(run.conflicts)
            .arg(run.log.folder()));
    return true;
}
} // namespace

bool KOR_XML_QUERY_INTERFACE::basic_merge(QString& error, const QString& path, GET_LATEST_MODE mode,
                                          bool flag)
{
    Q_UNUSED(mode);
    Q_UNUSED(flag);
    return merge_database(*this, error, path, QString());
}

bool KOR_XML_QUERY_INTERFACE::merge_for_checkin(QString& error, const QString& path, GET_LATEST_MODE mode,
                                                const QString& caller_name, const QString& design_data_path)
{
    Q_UNUSED(mode);
    Q_UNUSED(design_data_path);
    // A check-in needs a depot: an empty caller name would pass a folder
    // without one as merged.
    if (!merge_database(*this, error, path, caller_name.isEmpty() ? QStringLiteral("check-in") : caller_name))
        return false;
    // Someone may have submitted while the merge ran: a check-in needs the
    // copy at the newest revision with nothing left open.
    if (!have_latest(path) || is_merge_required(path))
    {
        error = QStringLiteral("The depot changed during the merge; merge again before checking in");
        return false;
    }
    return true;
}

void KOR_XML_QUERY_INTERFACE::get_locally_edited_tables_edited_during_merge(QSet<QString>& out)
{
    const QStringList touched = property(touched_property).toStringList();
    out = QSet<QString>(touched.begin(), touched.end());
}

KOR_CHANGED_FIELDS KOR_XML_QUERY_INTERFACE::changed_fields(const QString& table_name)
{
    // Kinds: 0 new record, 1 deleted record, 2 changed field, 3 field new to
    // the record (its table gained the field), 4 field gone from the record.
    KOR_CHANGED_FIELDS changes;
    if (!is_connected())
        return changes;
    const KOR_TABLE_SCHEMA* schema = get_table_schema(table_name);
    QString error;
    const KOR_TABLE_DATA* current = schema ? get_table_data(error, table_name) : nullptr;
    if (!current)
        return changes;
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, original_connect_string());
    if (!depot)
        return changes;
    QByteArray bytes;
    bool exists = false;
    const QString file = KOR_WORKSPACE_FILES::table_file(original_connect_string(), table_name);
    if (!depot->read_file(error, file, QStringLiteral("#have"), bytes, exists))
        return changes;
    KOR_TABLE_DATA have(schema);
    if (exists &&
        !KOR_TABLE_IO::read_table_bytes(error, bytes, file + QStringLiteral("#have"), *schema, have))
        return changes;

    for (auto it = current->records_by_uuid().begin(); it != current->records_by_uuid().end(); ++it)
    {
        const KOR_RECORD_DATA* record = it.value();
        const KOR_RECORD_DATA* before = have.record_by_uuid(record->uuid());
        if (!before)
        {
            changes[record->uuid()].append(qMakePair(QString(), 0));
            continue;
        }
        for (const QString& name : KOR_RECORD_MERGE::field_names(record, before))
        {
            const KOR_FIELD_DATA* now = record->get_field_data(name);
            const KOR_FIELD_DATA* then = before->get_field_data(name);
            if (KOR_RECORD_MERGE::fields_equal(now, then))
                continue;
            const int kind = !then ? 3 : !now ? 4 : 2;
            changes[record->uuid()].append(qMakePair(now ? now->field_name() : name, kind));
        }
    }
    for (auto it = have.records_by_uuid().begin(); it != have.records_by_uuid().end(); ++it)
    {
        if (!current->record_by_uuid(it.value()->uuid()))
            changes[it.value()->uuid()].append(qMakePair(QString(), 1));
    }
    return changes;
}
