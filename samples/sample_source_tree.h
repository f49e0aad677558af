#pragma once

#include <QString>

class SAMPLE_CATALOGUE;

// The part of the game's source tree that code generation reads and edits,
// below the branch root: the header and source of every table with code, the
// list of all tables (CobaltDatabases.h and .cpp), the data tool's commands
// (Tables.cpp), the unity files and the project files.
class SAMPLE_SOURCE_TREE
{
public:
    // Writes the tree for the tables of `database_path` (as written by
    // SAMPLE_DATABASE_WRITER) below `branch_root`. Error text, empty on success.
    static QString write(const QString& branch_root, const QString& database_path,
                         const SAMPLE_CATALOGUE& catalogue, quint64 seed);

    // Where the files were first generated, as their banners say.
    static QString original_root() { return QStringLiteral("C:/dev/trunk"); }
};
