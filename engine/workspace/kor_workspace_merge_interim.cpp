// Stands in for kor_workspace_merge.cpp while the engine's table reader is
// not in the tree: a merge only brings the files to the latest revision and
// leaves tables changed on both sides for a merge by hand.

#include "kor_workspace_files.h"
#include "kor_xml_query_interface.h"
#include "vcs_depot.h"

bool KOR_XML_QUERY_INTERFACE::basic_merge(QString& error, const QString& path, GET_LATEST_MODE, bool)
{
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    QStringList updated;
    return depot && depot->sync(error, {KOR_WORKSPACE_FILES::clean(path) + QStringLiteral("/...")}, updated);
}

bool KOR_XML_QUERY_INTERFACE::merge_for_checkin(QString& error, const QString& path, GET_LATEST_MODE mode,
                                                const QString&, const QString&)
{
    return basic_merge(error, path, mode, false);
}

void KOR_XML_QUERY_INTERFACE::get_locally_edited_tables_edited_during_merge(QSet<QString>& out)
{
    out.clear();
}

KOR_CHANGED_FIELDS KOR_XML_QUERY_INTERFACE::changed_fields(const QString&)
{
    return KOR_CHANGED_FIELDS();
}
