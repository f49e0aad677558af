#pragma once

#include <QString>

class P4_CONNECTION;

// Revision helpers of the depot, for walking a file through its revisions.
class KOR_DB_PERFORCE
{
public:
    // The changelist of path's have revision (have_revision true) or of its
    // newest revision in the depot. False with a message when the file is
    // not under version control.
    static bool get_changelist_number(QString& error, int& changelist, const QString& path,
                                      P4_CONNECTION& connection, bool have_revision);
    // The changelist that made revision "revision" of the file at path.
    static bool get_file_changelist_number(int& changelist, int revision, const QString& path,
                                           P4_CONNECTION& connection);
    // Brings the file at path to revision "revision" ("sync path#revision").
    static bool sync_file_to_revision(P4_CONNECTION& connection, const QString& path, int revision);
};
