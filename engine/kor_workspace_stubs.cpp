// Temporary definitions of the interface's operations on a working copy,
// until the version-control work lands engine/workspace; it deletes this file
// then. They behave as a working copy without version control: nothing is
// changed, the copy is up to date, merges succeed doing nothing, and locking
// and submitting fail. They are weak so that real definitions win should both
// be linked.

#include "kor_xml_query_interface.h"

#define KOR_TEMPORARY __attribute__((weak))

namespace
{
QString not_available()
{
    return QStringLiteral("Version control is not available");
}
} // namespace

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::basic_merge(QString& error, const QString&, GET_LATEST_MODE, bool)
{
    error.clear();
    return true;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::merge_for_checkin(QString& error, const QString&, GET_LATEST_MODE,
                                                              const QString&, const QString&)
{
    error.clear();
    return true;
}

KOR_TEMPORARY QString KOR_XML_QUERY_INTERFACE::create_db_copy_for_diff(const QString&, const QString&)
{
    return QString();
}

KOR_TEMPORARY void KOR_XML_QUERY_INTERFACE::get_changed_tables(QSet<QString>& out, const QString&)
{
    out.clear();
}

KOR_TEMPORARY void KOR_XML_QUERY_INTERFACE::get_changed_schemas(QSet<QString>& out, const QString&)
{
    out.clear();
}

KOR_TEMPORARY void KOR_XML_QUERY_INTERFACE::get_changed_files(QSet<QString>& out, const QString&)
{
    out.clear();
}

KOR_TEMPORARY void KOR_XML_QUERY_INTERFACE::get_deleted_tables(QSet<QString>& out, const QString&)
{
    out.clear();
}

KOR_TEMPORARY void KOR_XML_QUERY_INTERFACE::get_added_files(QSet<QString>& out, const QString&)
{
    out.clear();
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::submit_schema_changes_request(QString& error, const QString&,
                                                                          const QString&, const QString&)
{
    error = not_available();
    return false;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::submit_request_change(QString& error, const QString&,
                                                                  const QString&, const QString&)
{
    error = not_available();
    return false;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::submit_directory_removal(QString& error, const QString&,
                                                                     const QString&)
{
    error = not_available();
    return false;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::lock_for_submit(QString& error, const QString&, const QString&)
{
    error = not_available();
    return false;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::revert_locked(QString& error, const QString&, QSet<QString>&)
{
    error = not_available();
    return false;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::submit_locked(QString& error, const QString&, const QString&)
{
    error = not_available();
    return false;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::is_database_locked(const QString&, QString& lock_holder)
{
    lock_holder.clear();
    return false;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::lock_database(QString& error, const QString&)
{
    error = not_available();
    return false;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::unlock_database(const QString&)
{
    return false;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::have_latest(const QString&)
{
    return true;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::is_merge_required(const QString&)
{
    return false;
}

KOR_TEMPORARY QString KOR_XML_QUERY_INTERFACE::perforce_root() const
{
    return QString();
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::data_changes_in_perforce(const QString&)
{
    return false;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::revert_changes(QString& error, const QString&, bool)
{
    error = not_available();
    return false;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::revert_single_table(QString& error, const QString&)
{
    error = not_available();
    return false;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::revert(QString& error, const QString&)
{
    error = not_available();
    return false;
}

KOR_TEMPORARY void KOR_XML_QUERY_INTERFACE::get_locally_edited_tables_edited_during_merge(QSet<QString>& out)
{
    out.clear();
}

KOR_TEMPORARY KOR_CHANGED_FIELDS KOR_XML_QUERY_INTERFACE::changed_fields(const QString&)
{
    return KOR_CHANGED_FIELDS();
}
