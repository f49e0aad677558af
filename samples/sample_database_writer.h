#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

class KOR_TABLE_DATA;
class KOR_TABLE_SCHEMA;
class SAMPLE_CATALOGUE;
class SAMPLE_CONTENT;
class SAMPLE_ROWS;

// Writes a sample database through the engine, so that its files are in the
// one format the engine reads:
//
// - the folder is made by KOR_XML_QUERY_INTERFACE::create_empty_database and
//   every table by add_table, in one transaction, which checks each schema
//   and its relationships as the schema editor's changes are checked;
// - the records go through the engine's own table writer
//   (KOR_TABLE_IO::write_table), committed as one unit by KOR_FILE_COMMIT.
//   add_record would stamp every record with the wall clock, and a sample
//   must be the same for the same seed; the writer keeps the modification
//   times drawn from the seed.
//
// The update commands that add_table leaves (one line a table, with the time
// of the run) are removed: the project starts with no schema change pending.
class SAMPLE_DATABASE_WRITER
{
public:
    // How the tables are made.
    enum SCHEMAS
    {
        // One add_table a table, in one transaction: the engine checks every
        // schema as the schema editor's are checked.
        THROUGH_OPERATIONS,
        // Schema files from the engine's own schema writer, committed with
        // the records as one unit, then read back and checked. For hundreds
        // of tables: each add_table works through every relationship of the
        // database again, and commits one file more.
        BULK
    };

    // Makes the database in `path` (absent or empty). Error text, empty on success.
    static QString write(const QString& path, const SAMPLE_CATALOGUE& catalogue,
                         const SAMPLE_CONTENT& content, quint64 seed, SCHEMAS schemas = THROUGH_OPERATIONS);

    // Writes the records of the named tables again, as one commit, to an
    // existing database made by `write`.
    static QString rewrite_tables(const QString& path, const QMap<QString, const SAMPLE_ROWS*>& tables);

    // The records of rows as a table of the engine, values converted to the
    // types the engine keeps them in. False when a value does not fit its
    // field or two rows share a key.
    static bool build_table(QString& error, const KOR_TABLE_SCHEMA& schema, const SAMPLE_ROWS& rows,
                            KOR_TABLE_DATA& out);

    // Writes whole tables into a database folder as one commit.
    static QString commit_tables(const QString& path, const QList<const KOR_TABLE_DATA*>& tables);
};
