#pragma once

#include "kor_library_dialogs.h"
#include "metafield_and_schema.h"
#include "relationship_data.h"

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QUuid>
#include <QVariant>
#include <QVector>

class QWidget;
class DB_DIALOG_REGISTRATION_INTERFACE;
class KOR_DATABASE_DATA;
class KOR_DATABASE_SCHEMA;
class KOR_FIELD_DATA;
class KOR_FIELD_SCHEMA;
class KOR_QUERY_RESULTS;
class KOR_QUERY_SCHEMA;
class KOR_RECORD_DATA;
class KOR_TABLE_DATA;
class KOR_TABLE_SCHEMA;

// The query interface: every operation the application asks of a database.
//
// Error styles, each operation keeping to one:
//  - returns QString: empty on success, otherwise the error text;
//  - returns bool and takes a QString& first: false on failure, the text set;
//  - returns nothing or a plain answer: no failure is reported.
// Warnings and errors are also reported through the PROGRESS_CALLBACK the
// interface was made with.
//
// "Path" operations take a database folder and work on an interface that was
// never connected. Pointers that get_* operations return belong to the
// interface and stay valid until the next disconnect or schema change.
class KOR_QUERY_INTERFACE
{
public:
    // How a merge treats the latest revision.
    enum GET_LATEST_MODE
    {
        GET_LATEST_QUIET = 0,      // basic_merge on the submit path
        GET_LATEST_REQUESTED = 1,  // basic_merge asked for by the user; connect of localisation
        GET_LATEST_FOR_CHECKIN = 2 // connect of a mirror; merge_for_checkin
    };

    virtual ~KOR_QUERY_INTERFACE() = default;

    // Connection
    virtual int version() const = 0;
    virtual QString connect(const QString& path, const QString& program_name, GET_LATEST_MODE mode,
                            bool flag) = 0;
    virtual QString connect_without_merge(const QString& path, bool flag) = 0;
    virtual QString disconnect() = 0;
    virtual bool is_connected() const = 0;
    virtual QDateTime latest_mod_date() const = 0;
    virtual bool basic_merge(QString& error, const QString& path, GET_LATEST_MODE mode, bool flag) = 0;
    virtual bool merge_for_checkin(QString& error, const QString& path, GET_LATEST_MODE mode,
                                   const QString& caller_name, const QString& design_data_path) = 0;
    virtual QString connect_string() const = 0;
    virtual QString create_db_copy_for_diff(const QString& path, const QString& changelist) = 0;
    virtual void get_changed_tables(QSet<QString>& out, const QString& path) = 0;
    virtual void get_changed_schemas(QSet<QString>& out, const QString& path) = 0;
    virtual void get_changed_files(QSet<QString>& out, const QString& path) = 0;
    virtual void get_deleted_tables(QSet<QString>& out, const QString& path) = 0;
    virtual bool any_local_tables_requiring_localisation(QString& error, QSet<QString>& localisation_tables,
                                                         const QSet<QString>& changed_tables,
                                                         const QString& path) = 0;
    virtual bool changes_require_localisation(const QString& path) = 0;
    virtual void get_table_names(QMap<QString, bool>& out) const = 0;
    virtual bool get_table_names_disconnected(QStringList& out, const QString& path) = 0;
    virtual bool submit_schema_changes_request(QString& error, const QString& first, const QString& second,
                                               const QString& third) = 0;
    virtual bool submit_request_change(QString& error, const QString& first, const QString& second,
                                       const QString& third) = 0;
    virtual bool submit_directory_removal(QString& error, const QString& directory,
                                          const QString& description) = 0;
    virtual bool lock_for_submit(QString& error, const QString& path, const QString& design_data_path) = 0;
    virtual bool revert_locked(QString& error, const QString& path, QSet<QString>& added_files) = 0;
    virtual bool submit_locked(QString& error, const QString& description, const QString& path) = 0;
    virtual bool is_database_locked(const QString& path, QString& lock_holder) = 0;
    virtual bool lock_database(QString& error, const QString& path) = 0;
    virtual bool unlock_database(const QString& path) = 0;
    virtual bool have_latest(const QString& path) = 0;
    virtual bool is_merge_required(const QString& path) = 0;
    virtual bool exported_table_list(QString& error, QSet<QString>& out, const QString& path, bool flag) = 0;
    virtual bool export_tables(QString& error, const QSet<QString>& tables, const QString& path, bool first,
                               bool second, bool third) = 0;
    virtual bool get_tables_requiring_export(QString& error, QSet<QString>& out, const QString& path) = 0;
    virtual QString perforce_root() const = 0;
    virtual bool data_changes_in_perforce(const QString& path) = 0;

    // Schema
    virtual KOR_DATABASE_SCHEMA* get_database_schema() const = 0;
    virtual KOR_TABLE_SCHEMA* get_table_schema(const QString& table_name) const = 0;
    virtual QMap<QString, KOR_QUERY_SCHEMA*> get_query_schemas() const = 0;
    virtual KOR_QUERY_SCHEMA* get_query_schema(const QString& query_name) const = 0;
    virtual void add_dependent_tables_to_set(QSet<QString>& tables, const QString& table_name) const = 0;
    virtual void add_dependency_tables_to_set(QSet<QString>& tables, const QString& table_name) const = 0;
    virtual QString add_table(const KOR_TABLE_SCHEMA& schema, const QString& edit_user,
                              const QString& edit_description) = 0;
    virtual QString edit_table(const QString& table_name, const KOR_TABLE_SCHEMA& schema,
                               const QString& edit_user, const QString& edit_description) = 0;
    virtual QString remove_table(const QString& table_name, const QString& edit_user,
                                 const QString& reason) = 0;

    // Data
    virtual const KOR_DATABASE_DATA* get_database_data() = 0;
    virtual KOR_TABLE_DATA get_table_data(QString& error, const QString& table_name, const QString& key) = 0;
    virtual const KOR_TABLE_DATA* get_table_data(QString& error, const QString& table_name) = 0;
    virtual void clear_table_data(const QString& table_name) = 0;
    virtual bool get_query_data(QString& error, KOR_QUERY_RESULTS& results,
                                const QString& query_name) const = 0;
    virtual bool get_query_data_from_string(QString& error, KOR_QUERY_RESULTS& results,
                                            const QString& query_text) const = 0;
    virtual bool get_query_data_from_simple_sql(QString& error, KOR_QUERY_RESULTS& results,
                                                const QString& sql) const = 0;

    // Transactions
    virtual bool begin_transaction(QString& error, bool flag) = 0;
    virtual bool end_transaction(QString& error) = 0;
    virtual bool in_transaction() const = 0;
    virtual void terminate_transaction() = 0;
    virtual bool key_exists_within_transaction(const QString& table_name, const QString& key) = 0;
    virtual QUuid remove_record_within_transaction(const QString& table_name, const QString& key) = 0;

    virtual bool change_schema(QString& error, const KOR_TABLE_SCHEMA* schema,
                               const QString& agf_special_dependencies,
                               const QList<KOR_FIELD_SCHEMA*>& new_fields,
                               const QSet<QString>& removed_fields,
                               const QMap<METAFIELD_AND_SCHEMA, QVariant>& changes, const QString& edit_user,
                               const QString& edit_description) = 0;
    virtual QString set_field_description(const QString& table_name, const QString& field_name,
                                          const QUuid& field_uuid, const QString& description) = 0;
    virtual QString add_record(const QString& table_name, const KOR_RECORD_DATA* record) = 0;
    virtual QString remove_record(const QString& table_name, const KOR_RECORD_DATA& record) = 0;
    virtual int collect_dependant_tables(QList<QString>& out, const KOR_TABLE_DATA* table_data,
                                         QString& error) = 0;
    virtual int collect_dependency_tables(QList<QString>& out, const KOR_TABLE_DATA* table_data,
                                          QString& error) = 0;
    virtual QString edit_field_data(const QString& table_name, const KOR_RECORD_DATA* record,
                                    const KOR_FIELD_DATA* field_data) = 0;
    virtual QString edit_record_data(const QString& table_name, const KOR_RECORD_DATA* old_record,
                                     const KOR_RECORD_DATA* new_record) = 0;

    // Text approval
    virtual QString approve_text(const QString& table_name, const QString& field_name,
                                 const QString& record_key, const QUuid& record_uuid,
                                 bool requires_translation, bool requires_recording,
                                 bool translated_record_found) = 0;
    virtual QString reject_text(const QString& table_name, const QString& field_name,
                                const QString& record_key, const QUuid& record_uuid) = 0;
    virtual QString ignore_text(const QString& table_name, const QString& field_name,
                                const QString& record_key, const QUuid& record_uuid, const QString& text) = 0;
    virtual QString unapprove_text_that_contains(const QString& text, bool case_sensitive) = 0;

    // Saving outside transactions
    virtual bool save_table(QString& error, const QString& table_name) = 0;
    virtual bool save_table(QString& error, const QString& table_name, const KOR_TABLE_DATA& data) = 0;
    virtual bool save_schema(QString& error, const QString& table_name) = 0;
    virtual bool save_schema(QString& error, const KOR_TABLE_SCHEMA& schema) = 0;

    // Lookups and relationships
    virtual bool any_dependents_using_existing_value(QString& error, const QString& table_name,
                                                     const KOR_FIELD_SCHEMA* field_schema,
                                                     const QVariant& value) = 0;
    virtual bool dependency_value_exists(QString& error, const QString& table_name,
                                         const KOR_FIELD_SCHEMA* field_schema, const QVariant& value) = 0;
    virtual bool dependents_of_field_using_value(QMap<QString, QSet<QString>>& out,
                                                 const KOR_FIELD_SCHEMA* field_schema,
                                                 const QVariant& value) = 0;
    virtual bool is_read_only() const = 0;
    virtual void make_read_only(bool read_only) = 0;
    virtual QMap<QString, QMap<QString, RELATIONSHIP_DATA>> relationship_data() const = 0;
    virtual bool revert_changes(QString& error, const QString& path, bool flag) = 0;
    virtual bool revert_single_table(QString& error, const QString& table_name) = 0;
    virtual void get_locally_edited_tables_edited_during_merge(QSet<QString>& out) = 0;
    virtual void write_out_tables_with_uuids() = 0;
    virtual void write_out_schemas_with_field_uuids() = 0;
    virtual bool get_field_lookup_value(QString& error, QString& out, const KOR_FIELD_SCHEMA* field_schema,
                                        const QVariant& value) = 0;
    virtual bool get_field_lookup_values(QString& error, QVector<QVariant>& keys, QList<QString>& texts,
                                         const KOR_FIELD_SCHEMA* field_schema) = 0;
    virtual bool get_main_dependency_field_data(QString& error, QVector<QVariant>& out,
                                                const KOR_FIELD_SCHEMA* field_schema) = 0;

    // Permissions
    virtual bool table_restricted(const QString& table_name) const = 0;
    virtual bool can_add_table_records(const QString& table_name) const = 0;
    virtual bool can_edit_table_records(const QString& table_name) const = 0;
    virtual bool can_remove_table_records(const QString& table_name) const = 0;

    virtual bool apply_edit_commands(const QString& file, bool flag) = 0;
    virtual bool table_uuids_match(const QString& design_data_path, const QString& connect_path,
                                   const QString& table_name) = 0;
    virtual void refresh_unique_id_lookups_table() = 0;

    // The library's dialogs; null unless the widget layer installed makers
    // (KOR_LIBRARY_DIALOG_FACTORY).
    virtual LOCAL_DATA_CHANGES_DIALOG*
    create_local_data_changes_dialog(QWidget* parent, DB_DIALOG_REGISTRATION_INTERFACE* registry) = 0;
    virtual SUBMISSION_DIALOG* create_submission_dialog(const QString& connect_path, QWidget* parent,
                                                        DB_DIALOG_REGISTRATION_INTERFACE* registry) = 0;
    virtual SUBMISSION_DIALOG*
    create_submission_plus_data_dialog(const QString& connect_path, const QString& first,
                                       const QString& second, const QStringList& list, QWidget* parent,
                                       DB_DIALOG_REGISTRATION_INTERFACE* registry) = 0;
    virtual REQUEST_SUBMISSION_DIALOG*
    create_request_submission_dialog(QWidget* parent, DB_DIALOG_REGISTRATION_INTERFACE* registry) = 0;

    virtual quint64 new_unique_global_id() = 0;
    virtual QString get_last_error() const = 0;
    virtual bool save_relationships(QString& error) = 0;
    virtual void get_added_files(QSet<QString>& out, const QString& path) = 0;
    virtual bool revert(QString& error, const QString& path) = 0;
    virtual bool save_veld_tables_xml(QString& error) = 0;
};
