#pragma once

#include "vcs_types.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>

class KOR_XML_QUERY_INTERFACE;
class VCS_DEPOT;

// What the working-copy operations share: the depot of a database folder,
// what each file of the folder is, the local changes sorted by kind, and
// safety copies of local files.
class KOR_WORKSPACE_FILES
{
public:
    // The depot that holds a database folder. Null, with the reason in
    // error, when the folder is used without version control: read-only
    // offline use, no workspace above it, or no client program.
    static std::unique_ptr<VCS_DEPOT> depot(QString& error, const QString& database_path);

    // Whether a file of the database folder holds exactly the bytes of its
    // have revision. False without a depot or when the depot has no such file.
    static bool matches_have_revision(const QString& database_path, const QString& file,
                                      const QByteArray& content);

    enum KIND
    {
        TABLE_DATA,   // "<table>.xml" at the top of the folder
        TABLE_SCHEMA, // "Veld_schemas/<table>.xml"
        OTHER
    };
    // What a file of the database folder is; table receives the table's name.
    static KIND kind_of(const QString& database_path, const QString& file, QString* table = nullptr);
    static QString table_file(const QString& database_path, const QString& table);
    static QString schema_file(const QString& database_path, const QString& table);

    // The local changes of a database folder against the have revision,
    // whether or not the files are opened.
    struct CHANGES
    {
        QSet<QString> changed_tables;  // data file edited or added
        QSet<QString> changed_schemas; // schema file edited or added
        QSet<QString> deleted_tables;  // schema file deleted (or data file deleted with no schema left)
        QSet<QString> added_files;     // absolute paths of new files
        QSet<QString> changed_files;   // absolute paths of every changed, added or deleted file
        QVector<VCS_FILE_STATUS> statuses;
    };
    static bool changes(QString& error, VCS_DEPOT& depot, const QString& database_path, CHANGES& out);

    // Copies local files into a new folder under the user's cache
    // ("orbin/safety/<time>") before an operation replaces them; the ten
    // newest copies are kept. The folder made, or empty when nothing needed
    // copying.
    static bool safety_copy(QString& error, const QString& database_path, const QStringList& files,
                            QString* folder = nullptr);

    static QString clean(const QString& path);

    // Says through the interface's progress sink what a question about a
    // folder could not be answered with (once per interface and message).
    static void report_once(KOR_XML_QUERY_INTERFACE& query_interface, const QString& text, int severity);
    static void report(KOR_XML_QUERY_INTERFACE& query_interface, const QString& text, int severity);
};
