#pragma once

#include "kor_query_interface.h"

#include <QObject>
#include <QPair>

#include <memory>

class PROGRESS_CALLBACK;
class KOR_XML_QUERY_INTERFACE_PRIVATE;

// Record uuid to the changes of that record since the last check-in: each a
// field name and a change kind (0 new record, 2 changed field; the workspace
// layer documents the others).
typedef QMap<QUuid, QList<QPair<QString, int>>> KOR_CHANGED_FIELDS;

// Our database engine: a folder of XML files (docs/db-format.md) behind the
// query interface.
//
// Connecting reads the schemas; a table is read on its first get_table_data.
// Every change of data happens inside a transaction: begin_transaction (which
// discards a transaction still open), the changes, end_transaction, which
// writes every touched file atomically or, failing, leaves memory and disk as
// they were. Schema operations outside a transaction commit by themselves.
//
// The members of the query language live in engine/query, those on a working
// copy (changes, merge, lock, submit) in engine/workspace.
class KOR_XML_QUERY_INTERFACE : public QObject, public KOR_QUERY_INTERFACE
{
    Q_OBJECT

public:
    // The string and the two flags are kept for the contract; pass "", false, false.
    KOR_XML_QUERY_INTERFACE(PROGRESS_CALLBACK* progress, const QString& name, bool first_flag,
                            bool second_flag);
    ~KOR_XML_QUERY_INTERFACE() override;

    // Makes an empty database in a folder that is empty or absent; error text.
    static QString create_empty_database(const QString& path);

    // Connection
    int version() const override;
    QString connect(const QString& path, const QString& program_name, GET_LATEST_MODE mode,
                    bool flag) override;
    QString connect_without_merge(const QString& path, bool flag) override;
    QString disconnect() override;
    bool is_connected() const override;
    QDateTime latest_mod_date() const override;
    bool basic_merge(QString& error, const QString& path, GET_LATEST_MODE mode, bool flag) override;
    bool merge_for_checkin(QString& error, const QString& path, GET_LATEST_MODE mode,
                           const QString& caller_name, const QString& design_data_path) override;
    QString connect_string() const override;
    QString create_db_copy_for_diff(const QString& path, const QString& changelist) override;
    void get_changed_tables(QSet<QString>& out, const QString& path) override;
    void get_changed_schemas(QSet<QString>& out, const QString& path) override;
    void get_changed_files(QSet<QString>& out, const QString& path) override;
    void get_deleted_tables(QSet<QString>& out, const QString& path) override;
    bool any_local_tables_requiring_localisation(QString& error, QSet<QString>& localisation_tables,
                                                 const QSet<QString>& changed_tables,
                                                 const QString& path) override;
    bool changes_require_localisation(const QString& path) override;
    void get_table_names(QMap<QString, bool>& out) const override;
    bool get_table_names_disconnected(QStringList& out, const QString& path) override;
    bool submit_schema_changes_request(QString& error, const QString& first, const QString& second,
                                       const QString& third) override;
    bool submit_request_change(QString& error, const QString& first, const QString& second,
                               const QString& third) override;
    bool submit_directory_removal(QString& error, const QString& directory,
                                  const QString& description) override;
    bool lock_for_submit(QString& error, const QString& path, const QString& design_data_path) override;
    bool revert_locked(QString& error, const QString& path, QSet<QString>& added_files) override;
    bool submit_locked(QString& error, const QString& description, const QString& path) override;
    bool is_database_locked(const QString& path, QString& lock_holder) override;
    bool lock_database(QString& error, const QString& path) override;
    bool unlock_database(const QString& path) override;
    bool have_latest(const QString& path) override;
    bool is_merge_required(const QString& path) override;
    bool exported_table_list(QString& error, QSet<QString>& out, const QString& path, bool flag) override;
    bool export_tables(QString& error, const QSet<QString>& tables, const QString& path, bool first,
                       bool second, bool third) override;
    bool get_tables_requiring_export(QString& error, QSet<QString>& out, const QString& path) override;
    QString perforce_root() const override;
    bool data_changes_in_perforce(const QString& path) override;

    // Schema
    KOR_DATABASE_SCHEMA* get_database_schema() const override;
    KOR_TABLE_SCHEMA* get_table_schema(const QString& table_name) const override;
    QMap<QString, KOR_QUERY_SCHEMA*> get_query_schemas() const override;
    KOR_QUERY_SCHEMA* get_query_schema(const QString& query_name) const override;
    void add_dependent_tables_to_set(QSet<QString>& tables, const QString& table_name) const override;
    void add_dependency_tables_to_set(QSet<QString>& tables, const QString& table_name) const override;
    QString add_table(const KOR_TABLE_SCHEMA& schema, const QString& edit_user,
                      const QString& edit_description) override;
    QString edit_table(const QString& table_name, const KOR_TABLE_SCHEMA& schema, const QString& edit_user,
                       const QString& edit_description) override;
    QString remove_table(const QString& table_name, const QString& edit_user, const QString& reason) override;

    // Data
    const KOR_DATABASE_DATA* get_database_data() override;
    KOR_TABLE_DATA get_table_data(QString& error, const QString& table_name, const QString& key) override;
    const KOR_TABLE_DATA* get_table_data(QString& error, const QString& table_name) override;
    void clear_table_data(const QString& table_name) override;
    bool get_query_data(QString& error, KOR_QUERY_RESULTS& results, const QString& query_name) const override;
    bool get_query_data_from_string(QString& error, KOR_QUERY_RESULTS& results,
                                    const QString& query_text) const override;
    bool get_query_data_from_simple_sql(QString& error, KOR_QUERY_RESULTS& results,
                                        const QString& sql) const override;

    // Transactions
    bool begin_transaction(QString& error, bool flag) override;
    bool end_transaction(QString& error) override;
    bool in_transaction() const override;
    void terminate_transaction() override;
    bool key_exists_within_transaction(const QString& table_name, const QString& key) override;
    QUuid remove_record_within_transaction(const QString& table_name, const QString& key) override;

    bool change_schema(QString& error, const KOR_TABLE_SCHEMA* schema,
                       const QString& agf_special_dependencies, const QList<KOR_FIELD_SCHEMA*>& new_fields,
                       const QSet<QString>& removed_fields,
                       const QMap<METAFIELD_AND_SCHEMA, QVariant>& changes, const QString& edit_user,
                       const QString& edit_description) override;
    QString set_field_description(const QString& table_name, const QString& field_name,
                                  const QUuid& field_uuid, const QString& description) override;
    QString add_record(const QString& table_name, const KOR_RECORD_DATA* record) override;
    QString remove_record(const QString& table_name, const KOR_RECORD_DATA& record) override;
    int collect_dependant_tables(QList<QString>& out, const KOR_TABLE_DATA* table_data,
                                 QString& error) override;
    int collect_dependency_tables(QList<QString>& out, const KOR_TABLE_DATA* table_data,
                                  QString& error) override;
    QString edit_field_data(const QString& table_name, const KOR_RECORD_DATA* record,
                            const KOR_FIELD_DATA* field_data) override;
    QString edit_record_data(const QString& table_name, const KOR_RECORD_DATA* old_record,
                             const KOR_RECORD_DATA* new_record) override;

    // Text approval
    QString approve_text(const QString& table_name, const QString& field_name, const QString& record_key,
                         const QUuid& record_uuid, bool requires_translation, bool requires_recording,
                         bool translated_record_found) override;
    QString reject_text(const QString& table_name, const QString& field_name, const QString& record_key,
                        const QUuid& record_uuid) override;
    QString ignore_text(const QString& table_name, const QString& field_name, const QString& record_key,
                        const QUuid& record_uuid, const QString& text) override;
    QString unapprove_text_that_contains(const QString& text, bool case_sensitive) override;

    // Saving outside transactions
    bool save_table(QString& error, const QString& table_name) override;
    bool save_table(QString& error, const QString& table_name, const KOR_TABLE_DATA& data) override;
    bool save_schema(QString& error, const QString& table_name) override;
    bool save_schema(QString& error, const KOR_TABLE_SCHEMA& schema) override;

    // Lookups and relationships
    bool any_dependents_using_existing_value(QString& error, const QString& table_name,
                                             const KOR_FIELD_SCHEMA* field_schema,
                                             const QVariant& value) override;
    bool dependency_value_exists(QString& error, const QString& table_name,
                                 const KOR_FIELD_SCHEMA* field_schema, const QVariant& value) override;
    bool dependents_of_field_using_value(QMap<QString, QSet<QString>>& out,
                                         const KOR_FIELD_SCHEMA* field_schema,
                                         const QVariant& value) override;
    bool is_read_only() const override;
    void make_read_only(bool read_only) override;
    QMap<QString, QMap<QString, RELATIONSHIP_DATA>> relationship_data() const override;
    bool revert_changes(QString& error, const QString& path, bool flag) override;
    bool revert_single_table(QString& error, const QString& table_name) override;
    void get_locally_edited_tables_edited_during_merge(QSet<QString>& out) override;
    void write_out_tables_with_uuids() override;
    void write_out_schemas_with_field_uuids() override;
    bool get_field_lookup_value(QString& error, QString& out, const KOR_FIELD_SCHEMA* field_schema,
                                const QVariant& value) override;
    bool get_field_lookup_values(QString& error, QVector<QVariant>& keys, QList<QString>& texts,
                                 const KOR_FIELD_SCHEMA* field_schema) override;
    bool get_main_dependency_field_data(QString& error, QVector<QVariant>& out,
                                        const KOR_FIELD_SCHEMA* field_schema) override;

    // Permissions
    bool table_restricted(const QString& table_name) const override;
    bool can_add_table_records(const QString& table_name) const override;
    bool can_edit_table_records(const QString& table_name) const override;
    bool can_remove_table_records(const QString& table_name) const override;

    bool apply_edit_commands(const QString& file, bool flag) override;
    bool table_uuids_match(const QString& design_data_path, const QString& connect_path,
                           const QString& table_name) override;
    void refresh_unique_id_lookups_table() override;

    // The library's dialogs; null unless the widget layer installed makers
    // (KOR_LIBRARY_DIALOG_FACTORY).
    LOCAL_DATA_CHANGES_DIALOG*
    create_local_data_changes_dialog(QWidget* parent, DB_DIALOG_REGISTRATION_INTERFACE* registry) override;
    SUBMISSION_DIALOG* create_submission_dialog(const QString& connect_path, QWidget* parent,
                                                DB_DIALOG_REGISTRATION_INTERFACE* registry) override;
    SUBMISSION_DIALOG*
    create_submission_plus_data_dialog(const QString& connect_path, const QString& first,
                                       const QString& second, const QStringList& list, QWidget* parent,
                                       DB_DIALOG_REGISTRATION_INTERFACE* registry) override;
    REQUEST_SUBMISSION_DIALOG*
    create_request_submission_dialog(QWidget* parent, DB_DIALOG_REGISTRATION_INTERFACE* registry) override;

    quint64 new_unique_global_id() override;
    QString get_last_error() const override;
    bool save_relationships(QString& error) override;
    void get_added_files(QSet<QString>& out, const QString& path) override;
    bool revert(QString& error, const QString& path) override;
    bool save_veld_tables_xml(QString& error) override;

    // Not virtual
    // Connects read-only to a copy made by create_db_copy_for_diff, or to any
    // database folder that must not be written: nothing on disk changes, and
    // a folder with an interrupted commit is refused rather than repaired.
    QString connect_for_diff(const QString& path);
    // The path given to connect before any copying for a diff.
    QString original_connect_string() const;
    // The local changes of a table's records since the last check-in.
    KOR_CHANGED_FIELDS changed_fields(const QString& table_name);

    // The engine's private state, for the engine's own sources (engine/,
    // engine/query, engine/workspace) only.
    KOR_XML_QUERY_INTERFACE_PRIVATE* engine_private() const { return d.get(); }

signals:
    // Status lines of a merge.
    void mergeUpdate(QString text);
    // The engine asks to be disconnected and connected again.
    void do_reconnect();
    // Progress texts of long operations (text approval, commits).
    void progressUpdate(QString text);
    // After a commit, once for each table whose data or schema changed.
    void tableChanged(QString table_name);

private:
    friend class KOR_XML_QUERY_INTERFACE_PRIVATE;
    std::unique_ptr<KOR_XML_QUERY_INTERFACE_PRIVATE> d;
};
