#pragma once

#include <QString>
#include <QStringList>

class PROGRESS_CALLBACK;

// Shelves: named copies of the local changes of a database, kept outside
// the database folder (in the user's data folder, see shelf_folder) with a
// manifest, so that a user can put work aside and take it up again.
// Messages go to the progress callback when one is given.
class KOR_DB_FILE
{
public:
    // Copies every changed, added and deleted file of the database at path
    // into a new shelf; with delete_local the local changes are then reverted.
    static bool shelve_db(const QString& path, const QString& name, PROGRESS_CALLBACK* progress,
                          bool delete_local);
    // Replaces the local changes by the shelf's. Files the depot changed since
    // shelving are first brought back to the revision the shelf was made on,
    // so a later merge sees the shelved work as local edits. A copy of any
    // local changes is kept as a shelf named "before_unshelve_" + time.
    static bool unshelve_db(const QString& path, const QString& name, PROGRESS_CALLBACK* progress,
                            bool delete_shelf);
    static bool delete_shelved_db(const QString& path, const QString& name, PROGRESS_CALLBACK* progress);
    // Names of the shelves of the database at path, sorted.
    static QStringList shelved_dbs(const QString& path);
    static bool local_db_exists_with_changes(const QString& path);

    // One local database without a depot (read-only offline use): shelving
    // and depot questions are answered as "no changes" or refused.
    static void set_single_db_mode(bool single);
    static bool single_db_mode();

    // The folder that holds the shelves of the database at path.
    static QString shelf_folder(const QString& path);
};
