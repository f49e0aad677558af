// The interface's questions about the local state of a database folder, and
// the reverts. They work on a never-connected interface; a folder without
// version control answers "no changes" and "up to date" and says why once.

#include "kor_workspace_files.h"
#include "kor_xml_query_interface.h"
#include "vcs_depot.h"

#include <QFileInfo>

namespace
{
// The local changes of a folder; empty (and the reason said) without a depot.
KOR_WORKSPACE_FILES::CHANGES local_changes(KOR_XML_QUERY_INTERFACE& query_interface, const QString& path)
{
    KOR_WORKSPACE_FILES::CHANGES changes;
    QString error;
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    if (!depot || !KOR_WORKSPACE_FILES::changes(error, *depot, path, changes))
        KOR_WORKSPACE_FILES::report_once(query_interface,
                                         QStringLiteral("Local changes cannot be listed: %1").arg(error), 0);
    return changes;
}
} // namespace

void KOR_XML_QUERY_INTERFACE::get_changed_tables(QSet<QString>& out, const QString& path)
{
    out = local_changes(*this, path).changed_tables;
}

void KOR_XML_QUERY_INTERFACE::get_changed_schemas(QSet<QString>& out, const QString& path)
{
    out = local_changes(*this, path).changed_schemas;
}

void KOR_XML_QUERY_INTERFACE::get_changed_files(QSet<QString>& out, const QString& path)
{
    out = local_changes(*this, path).changed_files;
}

void KOR_XML_QUERY_INTERFACE::get_deleted_tables(QSet<QString>& out, const QString& path)
{
    out = local_changes(*this, path).deleted_tables;
}

void KOR_XML_QUERY_INTERFACE::get_added_files(QSet<QString>& out, const QString& path)
{
    out = local_changes(*this, path).added_files;
}

bool KOR_XML_QUERY_INTERFACE::have_latest(const QString& path)
{
    QString error;
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    if (!depot)
    {
        // Nothing newer can exist for a folder without a depot.
        KOR_WORKSPACE_FILES::report_once(
            *this, QStringLiteral("The latest revision cannot be checked: %1").arg(error), 0);
        return true;
    }
    QStringList incoming;
    if (!depot->incoming(error, KOR_WORKSPACE_FILES::clean(path), incoming))
    {
        KOR_WORKSPACE_FILES::report(
            *this, QStringLiteral("The latest revision cannot be checked: %1").arg(error), 1);
        return false;
    }
    return incoming.isEmpty();
}

bool KOR_XML_QUERY_INTERFACE::is_merge_required(const QString& path)
{
    // A sync that brought newer revisions over local edits leaves resolves
    // behind; until a merge settles them the copy cannot be submitted.
    QString error;
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    if (!depot)
        return false;
    QVector<VCS_UNRESOLVED> open_resolves;
    if (!depot->unresolved(error, KOR_WORKSPACE_FILES::clean(path), open_resolves))
    {
        KOR_WORKSPACE_FILES::report(*this, QStringLiteral("Open merges cannot be listed: %1").arg(error), 1);
        return true;
    }
    return !open_resolves.isEmpty();
}

QString KOR_XML_QUERY_INTERFACE::perforce_root() const
{
    QString error;
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, original_connect_string());
    return depot ? depot->root() : QString();
}

bool KOR_XML_QUERY_INTERFACE::data_changes_in_perforce(const QString& path)
{
    QString error;
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    QStringList incoming;
    return depot && depot->incoming(error, KOR_WORKSPACE_FILES::clean(path), incoming) && !incoming.isEmpty();
}

bool KOR_XML_QUERY_INTERFACE::revert_changes(QString& error, const QString& path, bool flag)
{
    error.clear();
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    if (!depot)
        return false;
    KOR_WORKSPACE_FILES::CHANGES changes;
    if (!KOR_WORKSPACE_FILES::changes(error, *depot, path, changes))
        return false;
    QStringList files;
    for (const VCS_FILE_STATUS& status : qAsConst(changes.statuses))
        files.append(status.path);
    if (!files.isEmpty())
    {
        QString copy;
        if (!KOR_WORKSPACE_FILES::safety_copy(
                error, path, QStringList(changes.changed_files.begin(), changes.changed_files.end()), &copy))
            return false;
        if (!depot->revert(error, files, false, true))
            return false;
        KOR_WORKSPACE_FILES::report(*this,
                                    QStringLiteral("Reverted %1 changed file(s); copies are in '%2'")
                                        .arg(changes.changed_files.size())
                                        .arg(copy),
                                    0);
    }
    if (flag)
    {
        // Entering request mode starts from the depot's newest state.
        QStringList updated;
        QString sync_error;
        if (!depot->sync(sync_error, {KOR_WORKSPACE_FILES::clean(path) + QStringLiteral("/...")}, updated))
            KOR_WORKSPACE_FILES::report(
                *this,
                QStringLiteral(
                    "Local changes were reverted, but the newest revision could not be fetched: %1")
                    .arg(sync_error),
                1);
    }
    return true;
}

bool KOR_XML_QUERY_INTERFACE::revert_single_table(QString& error, const QString& table_name)
{
    error.clear();
    const QString path = connect_string();
    if (!is_connected() || path.isEmpty())
    {
        error = QStringLiteral("Connect to the database before reverting a table");
        return false;
    }
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    if (!depot)
        return false;
    const QStringList files{KOR_WORKSPACE_FILES::table_file(path, table_name),
                            KOR_WORKSPACE_FILES::schema_file(path, table_name)};
    if (!KOR_WORKSPACE_FILES::safety_copy(error, path, files) || !depot->revert(error, files, false, true))
        return false;
    // The loaded data no longer matches the files: ask to be connected again.
    emit do_reconnect();
    return true;
}

bool KOR_XML_QUERY_INTERFACE::revert(QString& error, const QString& path)
{
    return revert_changes(error, path, false);
}
