#pragma once

// Reading and writing the files of a database folder: table files, schema
// files and the marker, without a connected interface. The engine uses these
// for connecting, loading and committing; the working-copy operations use
// them to read and write tables of other revisions record by record.
// The format is described in docs/db-format.md.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

class QIODevice;
class KOR_DATABASE_SCHEMA;
class KOR_RECORD_DATA;
class KOR_TABLE_DATA;
class KOR_TABLE_SCHEMA;

// What a table read leaves besides the records.
struct KOR_TABLE_READ_DETAILS
{
    // Ask for each record's byte offset in the file (in file order).
    bool want_record_offsets = false;
    std::vector<std::pair<const KOR_RECORD_DATA*, qint64>> record_offsets;
    // Records that had no uuid and were given a fresh one.
    int records_given_uuids = 0;
};

class KOR_TABLE_IO
{
public:
    // Layout of a database folder.
    static QString validation_file_name() { return QStringLiteral("Veld_validation.xml"); }
    static QString schema_folder_name() { return QStringLiteral("Veld_schemas"); }
    static QString permissions_file_name() { return QStringLiteral("Veld_permissions.xml"); }
    static QString update_commands_file_name() { return QStringLiteral("update_commands.txt"); }
    // "units.xml" and "Veld_schemas/units.xml", relative to the database folder.
    static QString table_file_relative(const QString& table_name);
    static QString schema_file_relative(const QString& table_name);
    static QString table_file_path(const QString& database_path, const QString& table_name);
    static QString schema_file_path(const QString& database_path, const QString& table_name);
    // Whether a top-level file name is a table file: "*.xml" not starting
    // with "Veld", both case-sensitive.
    static bool is_table_file_name(const QString& file_name);
    // Names of the tables that have a schema file, sorted.
    static QStringList schema_table_names(const QString& database_path);
    // Names of the top-level table files, sorted.
    static QStringList data_table_names(const QString& database_path);
    // Whether a folder holds a database of a format this engine reads.
    static bool is_database(QString& error, const QString& database_path);
    static QByteArray validation_file_bytes();
    static int format_version() { return 1; }

    // Tables. Reading fills `out` (made on `schema`) only on success; on
    // failure `error` names the source, the line and column, and the reason.
    // A table file that does not exist is an empty table.
    static bool read_table_file(QString& error, const QString& path, const KOR_TABLE_SCHEMA& schema,
                                KOR_TABLE_DATA& out, KOR_TABLE_READ_DETAILS* details = nullptr);
    static bool read_table_bytes(QString& error, QByteArray bytes, const QString& source_name,
                                 const KOR_TABLE_SCHEMA& schema, KOR_TABLE_DATA& out,
                                 KOR_TABLE_READ_DETAILS* details = nullptr);
    // The same for a buffer the reader may overwrite (it parses in place);
    // `pristine` gives the original bytes again for locating an error.
    static bool read_table_buffer(QString& error, char* buffer, size_t size, const QString& source_name,
                                  const std::function<QByteArray()>& pristine, const KOR_TABLE_SCHEMA& schema,
                                  KOR_TABLE_DATA& out, KOR_TABLE_READ_DETAILS* details);
    // Writes the records in key order, fields in column order. Identical data
    // gives identical bytes.
    static bool write_table(QString& error, QIODevice& device, const KOR_TABLE_DATA& table);
    static QByteArray table_bytes(const KOR_TABLE_DATA& table);

    // Schemas.
    static bool read_schema_bytes(QString& error, QByteArray bytes, const QString& source_name,
                                  std::unique_ptr<KOR_TABLE_SCHEMA>& out);
    static bool read_schema_file(QString& error, const QString& path, std::unique_ptr<KOR_TABLE_SCHEMA>& out);
    static QByteArray schema_bytes(const KOR_TABLE_SCHEMA& schema);
    // Reads every schema of a database folder; warnings note what is odd but
    // harmless (a table file without schema, a relationship to an unknown
    // table).
    static bool read_database_schema(QString& error, const QString& database_path, KOR_DATABASE_SCHEMA& out,
                                     QStringList* warnings);

    // "line L, column C" of a byte offset.
    static QString line_and_column(const QByteArray& bytes, qint64 offset);
    static int line_of(const QByteArray& bytes, qint64 offset);
};
