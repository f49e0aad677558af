#pragma once

// The private state of KOR_XML_QUERY_INTERFACE and the engine's internal
// operations, shared by the engine's sources (engine/, engine/query,
// engine/workspace). Not for use outside the engine.
//
// Transactions keep an undo log: every change in memory pushes the step that
// reverses it, so a failed operation, a failed commit, terminate_transaction
// and begin_transaction over an open transaction restore memory exactly, in
// place: records, fields and schemas the application holds stay the same
// objects. Objects taken out of the database (removed records, fields and
// tables) stay alive until disconnect.

#include "kor_database_data.h"
#include "kor_permissions.h"
#include "kor_query_interface.h"
#include "kor_update_command_codec.h"

#include <QDateTime>
#include <QHash>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <map>
#include <memory>
#include <vector>

class KOR_DATABASE_SCHEMA;
class KOR_FIELD_DATA;
class KOR_FIELD_SCHEMA;
class KOR_RECORD_DATA;
class KOR_TABLE_DATA;
class KOR_TABLE_SCHEMA;
class KOR_XML_QUERY_INTERFACE;
class PROGRESS_CALLBACK;
class KOR_QUERY_STATE;
class KOR_WORKSPACE_STATE;

// What a file looked like when the engine last read or wrote it; a commit
// refuses to overwrite a file that changed since (another interface or
// program wrote it).
struct KOR_FILE_SIGNATURE
{
    bool exists = false;
    qint64 size = 0;
    qint64 modified_msecs = 0;
    static KOR_FILE_SIGNATURE of(const QString& path);
    bool operator==(const KOR_FILE_SIGNATURE& other) const
    {
        return exists == other.exists && size == other.size && modified_msecs == other.modified_msecs;
    }
    bool operator!=(const KOR_FILE_SIGNATURE& other) const { return !(*this == other); }
};

// One new value for a field of a record, with the approval data to copy (if any).
struct KOR_FIELD_UPDATE
{
    const KOR_FIELD_SCHEMA* field = nullptr;
    QVariant value;
    const KOR_FIELD_DATA* approval_source = nullptr;
};

class KOR_XML_QUERY_INTERFACE_PRIVATE
{
public:
    KOR_XML_QUERY_INTERFACE_PRIVATE(KOR_XML_QUERY_INTERFACE* query_interface,
                                    PROGRESS_CALLBACK* progress_callback);
    ~KOR_XML_QUERY_INTERFACE_PRIVATE();

    KOR_XML_QUERY_INTERFACE* q;
    PROGRESS_CALLBACK* progress;

    // ------------------------------------------------------------ state
    QString path;
    QString original_path;
    bool connected = false;
    bool read_only = false;
    QString user_name;
    std::unique_ptr<KOR_DATABASE_SCHEMA> schema;
    struct LOADED_TABLE
    {
        std::unique_ptr<KOR_TABLE_DATA> data;
        KOR_FILE_SIGNATURE signature;
        bool keys_checked = false;
    };
    std::map<QString, LOADED_TABLE> tables;
    QMap<QString, KOR_FILE_SIGNATURE> schema_signatures;
    // Tables whose file could not be read, with the reason: reported once,
    // answered again without reading the file until the next connection.
    QMap<QString, QString> load_failures;
    KOR_DATABASE_DATA database_data;
    KOR_PERMISSIONS permissions;
    mutable QString last_error;
    std::vector<std::unique_ptr<KOR_TABLE_SCHEMA>> retired_schemas;
    std::vector<std::unique_ptr<KOR_TABLE_DATA>> retired_tables;
    std::vector<std::unique_ptr<KOR_FIELD_SCHEMA>> retired_fields;

    // ------------------------------------------------------------ reporting
    // Through the progress callback (severity 0 information, 1 warning, 2 error).
    void report(const QString& text, int severity) const;
    // Notes an error as the last error and gives it back.
    QString fail(const QString& text) const;
    bool fail(QString& error, const QString& text) const;

    // ------------------------------------------------------------ connection
    // `for_reading` connects without completing or cleaning up an
    // interrupted commit, which writes: a folder that has one is refused.
    QString open(const QString& database_path, bool for_reading = false);
    void close();

    // ------------------------------------------------------------ tables
    KOR_TABLE_SCHEMA* table_schema(const QString& name) const;
    // The table's records, read on first use; null with an error for an
    // unknown table or a bad file. `check_keys` also reports references to
    // records that do not exist (once per table).
    KOR_TABLE_DATA* table(QString& error, const QString& name, bool check_keys = false);
    // The table, when the user may remove its records; null with the
    // permission or reading error otherwise.
    KOR_TABLE_DATA* table_to_remove_from(QString& error, const QString& name);
    // Null unless read already.
    KOR_TABLE_DATA* loaded_table(const QString& name) const;
    void check_foreign_keys(const QString& name,
                            const std::vector<std::pair<const KOR_RECORD_DATA*, qint64>>& offsets);
    // The field a relationship points at (its foreign field, or the foreign
    // table's first key field); null when unknown.
    const KOR_FIELD_SCHEMA* foreign_field_of(const KOR_FIELD_SCHEMA* field) const;
    // Finds a record by uuid, then by key.
    KOR_RECORD_DATA* find_record(KOR_TABLE_DATA& table, const QUuid& uuid, const QString& key) const;

    // ------------------------------------------------------------ transactions
    struct TRANSACTION
    {
        bool open = false;
        std::vector<std::function<void()>> undo;
        std::vector<std::function<void()>> after_commit;
        QSet<QString> dirty_data;
        QSet<QString> dirty_schemas;
        QSet<QString> removed_tables;
        QStringList commands;
        QSet<QString> changed_tables;
    } tx;
    struct SAVEPOINT
    {
        size_t undo = 0;
        size_t after_commit = 0;
        int commands = 0;
    };
    SAVEPOINT savepoint() const;
    void undo_to(const SAVEPOINT& point);
    bool begin(QString& error);
    void rollback();
    bool commit(QString& error);
    // Runs an operation inside the open transaction, or inside one of its own
    // that commits at once; a failed operation leaves nothing behind.
    bool run(QString& error, const std::function<bool(QString&)>& operation);
    void push_undo(std::function<void()> step) { tx.undo.push_back(std::move(step)); }
    void after_commit(std::function<void()> step) { tx.after_commit.push_back(std::move(step)); }
    void mark_data_dirty(const QString& table);
    void mark_schema_dirty(const QString& table);
    void add_command(const QString& line) { tx.commands.append(line); }
    bool check_writable(QString& error) const;

    // ------------------------------------------------------------ records
    // Converts a value to the field's stored type.
    static bool normalise_value(QString& error, const KOR_FIELD_SCHEMA& field, const QVariant& value,
                                QVariant& out);
    // A value for a field of a new record that gives none.
    QVariant initial_value(const KOR_FIELD_SCHEMA& field, KOR_TABLE_DATA& table);
    KOR_RECORD_DATA* add_record(QString& error, const QString& table_name, const KOR_RECORD_DATA& source);
    bool remove_record(QString& error, const QString& table_name, KOR_RECORD_DATA* record);
    // Sets fields of a record in place, re-keys it and carries changed values
    // into referring records.
    bool update_record(QString& error, const QString& table_name, KOR_RECORD_DATA* record,
                       const std::vector<KOR_FIELD_UPDATE>& updates, int depth = 0);
    // Pushes the undo step restoring a record as it is now.
    void snapshot_record(KOR_TABLE_DATA& table, KOR_RECORD_DATA* record);
    // Pushes the undo step restoring a table schema as it is now.
    void snapshot_schema(KOR_TABLE_SCHEMA* table_schema);
    void retire_field(KOR_FIELD_SCHEMA* field);
    void unretire_field(KOR_FIELD_SCHEMA* field);
    static qint64 now_msecs();

    // ------------------------------------------------------------ schema
    KOR_COMMAND_ORIGIN origin(const QString& user, const QString& description) const;
    bool change_schema(QString& error, const QString& table_name, const QString& agf,
                       const QList<const KOR_FIELD_SCHEMA*>& new_fields, const QSet<QString>& removed_fields,
                       const QList<QPair<KOR_FIELD_SCHEMA*, QPair<KOR_METAFIELD, QVariant>>>& changes,
                       const QStringList* column_order, const QString& user, const QString& description);
    bool add_table(QString& error, const KOR_TABLE_SCHEMA& new_schema, const QString& user,
                   const QString& description);
    bool remove_table(QString& error, const QString& table_name, const QString& user, const QString& reason);
    // A value to fill a required field of existing records with; false when
    // there is none.
    bool fill_value(QString& error, const KOR_FIELD_SCHEMA& field, KOR_TABLE_DATA& table, QVariant& out);

    // ------------------------------------------------------------ extensions
    // State of the query language (engine/query) and of the working-copy
    // operations (engine/workspace), each type defined by its area, which
    // sets the pointer together with its deleter.
    std::unique_ptr<KOR_QUERY_STATE, void (*)(KOR_QUERY_STATE*)> query_state{nullptr, nullptr};
    std::unique_ptr<KOR_WORKSPACE_STATE, void (*)(KOR_WORKSPACE_STATE*)> workspace_state{nullptr, nullptr};
    // The saved queries of the database: read at the end of a successful
    // open(), an error text refusing the connection; dropped at the start of
    // close(). Defined by engine/query.
    QString open_queries();
    void close_queries();

    // ------------------------------------------------------------ approval
    KOR_FIELD_DATA* approval_field(QString& error, const QString& table_name, const QString& field_name,
                                   const QString& record_key, const QUuid& record_uuid,
                                   KOR_TABLE_DATA** table_out, KOR_RECORD_DATA** record_out);
    void snapshot_field(KOR_FIELD_DATA* field);
};
