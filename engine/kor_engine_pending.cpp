// Temporary: every operation of the engine answers "not available yet" until
// the engine proper lands in the following commits.
#include "kor_table_data.h"
#include "kor_xml_query_interface.h"

int KOR_XML_QUERY_INTERFACE::version() const
{
    return 0;
}

QString KOR_XML_QUERY_INTERFACE::connect(const QString& path, const QString& program_name,
                                         GET_LATEST_MODE mode, bool flag)
{
    return QStringLiteral("The engine is not available yet");
}

QString KOR_XML_QUERY_INTERFACE::connect_without_merge(const QString& path, bool flag)
{
    return QStringLiteral("The engine is not available yet");
}

QString KOR_XML_QUERY_INTERFACE::disconnect()
{
    return QStringLiteral("The engine is not available yet");
}

bool KOR_XML_QUERY_INTERFACE::is_connected() const
{
    return false;
}

QDateTime KOR_XML_QUERY_INTERFACE::latest_mod_date() const
{
    return QDateTime();
}

QString KOR_XML_QUERY_INTERFACE::connect_string() const
{
    return QStringLiteral("The engine is not available yet");
}

bool KOR_XML_QUERY_INTERFACE::any_local_tables_requiring_localisation(QString& error,
                                                                      QSet<QString>& localisation_tables,
                                                                      const QSet<QString>& changed_tables,
                                                                      const QString& path)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

bool KOR_XML_QUERY_INTERFACE::changes_require_localisation(const QString& path)
{
    return false;
}

void KOR_XML_QUERY_INTERFACE::get_table_names(QMap<QString, bool>& out) const {}

bool KOR_XML_QUERY_INTERFACE::get_table_names_disconnected(QStringList& out, const QString& path)
{
    return false;
}

bool KOR_XML_QUERY_INTERFACE::exported_table_list(QString& error, QSet<QString>& out, const QString& path,
                                                  bool flag)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

bool KOR_XML_QUERY_INTERFACE::export_tables(QString& error, const QSet<QString>& tables, const QString& path,
                                            bool first, bool second, bool third)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

bool KOR_XML_QUERY_INTERFACE::get_tables_requiring_export(QString& error, QSet<QString>& out,
                                                          const QString& path)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

KOR_DATABASE_SCHEMA* KOR_XML_QUERY_INTERFACE::get_database_schema() const
{
    return nullptr;
}

KOR_TABLE_SCHEMA* KOR_XML_QUERY_INTERFACE::get_table_schema(const QString& table_name) const
{
    return nullptr;
}

void KOR_XML_QUERY_INTERFACE::add_dependent_tables_to_set(QSet<QString>& tables,
                                                          const QString& table_name) const
{
}

void KOR_XML_QUERY_INTERFACE::add_dependency_tables_to_set(QSet<QString>& tables,
                                                           const QString& table_name) const
{
}

QString KOR_XML_QUERY_INTERFACE::add_table(const KOR_TABLE_SCHEMA& schema, const QString& edit_user,
                                           const QString& edit_description)
{
    return QStringLiteral("The engine is not available yet");
}

QString KOR_XML_QUERY_INTERFACE::edit_table(const QString& table_name, const KOR_TABLE_SCHEMA& schema,
                                            const QString& edit_user, const QString& edit_description)
{
    return QStringLiteral("The engine is not available yet");
}

QString KOR_XML_QUERY_INTERFACE::remove_table(const QString& table_name, const QString& edit_user,
                                              const QString& reason)
{
    return QStringLiteral("The engine is not available yet");
}

const KOR_DATABASE_DATA* KOR_XML_QUERY_INTERFACE::get_database_data()
{
    return nullptr;
}

KOR_TABLE_DATA KOR_XML_QUERY_INTERFACE::get_table_data(QString& error, const QString& table_name,
                                                       const QString& key)
{
    error = QStringLiteral("The engine is not available yet");
    return KOR_TABLE_DATA(nullptr);
}

const KOR_TABLE_DATA* KOR_XML_QUERY_INTERFACE::get_table_data(QString& error, const QString& table_name)
{
    error = QStringLiteral("The engine is not available yet");
    return nullptr;
}

void KOR_XML_QUERY_INTERFACE::clear_table_data(const QString& table_name) {}

bool KOR_XML_QUERY_INTERFACE::begin_transaction(QString& error, bool flag)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

bool KOR_XML_QUERY_INTERFACE::end_transaction(QString& error)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

bool KOR_XML_QUERY_INTERFACE::in_transaction() const
{
    return false;
}

void KOR_XML_QUERY_INTERFACE::terminate_transaction() {}

bool KOR_XML_QUERY_INTERFACE::key_exists_within_transaction(const QString& table_name, const QString& key)
{
    return false;
}

QUuid KOR_XML_QUERY_INTERFACE::remove_record_within_transaction(const QString& table_name, const QString& key)
{
    return QUuid();
}

bool KOR_XML_QUERY_INTERFACE::change_schema(QString& error, const KOR_TABLE_SCHEMA* schema,
                                            const QString& agf_special_dependencies,
                                            const QList<KOR_FIELD_SCHEMA*>& new_fields,
                                            const QSet<QString>& removed_fields,
                                            const QMap<METAFIELD_AND_SCHEMA, QVariant>& changes,
                                            const QString& edit_user, const QString& edit_description)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

QString KOR_XML_QUERY_INTERFACE::set_field_description(const QString& table_name, const QString& field_name,
                                                       const QUuid& field_uuid, const QString& description)
{
    return QStringLiteral("The engine is not available yet");
}

QString KOR_XML_QUERY_INTERFACE::add_record(const QString& table_name, const KOR_RECORD_DATA* record)
{
    return QStringLiteral("The engine is not available yet");
}

QString KOR_XML_QUERY_INTERFACE::remove_record(const QString& table_name, const KOR_RECORD_DATA& record)
{
    return QStringLiteral("The engine is not available yet");
}

int KOR_XML_QUERY_INTERFACE::collect_dependant_tables(QList<QString>& out, const KOR_TABLE_DATA* table_data,
                                                      QString& error)
{
    error = QStringLiteral("The engine is not available yet");
    return 0;
}

int KOR_XML_QUERY_INTERFACE::collect_dependency_tables(QList<QString>& out, const KOR_TABLE_DATA* table_data,
                                                       QString& error)
{
    error = QStringLiteral("The engine is not available yet");
    return 0;
}

QString KOR_XML_QUERY_INTERFACE::edit_field_data(const QString& table_name, const KOR_RECORD_DATA* record,
                                                 const KOR_FIELD_DATA* field_data)
{
    return QStringLiteral("The engine is not available yet");
}

QString KOR_XML_QUERY_INTERFACE::edit_record_data(const QString& table_name,
                                                  const KOR_RECORD_DATA* old_record,
                                                  const KOR_RECORD_DATA* new_record)
{
    return QStringLiteral("The engine is not available yet");
}

QString KOR_XML_QUERY_INTERFACE::approve_text(const QString& table_name, const QString& field_name,
                                              const QString& record_key, const QUuid& record_uuid,
                                              bool requires_translation, bool requires_recording,
                                              bool translated_record_found)
{
    return QStringLiteral("The engine is not available yet");
}

QString KOR_XML_QUERY_INTERFACE::reject_text(const QString& table_name, const QString& field_name,
                                             const QString& record_key, const QUuid& record_uuid)
{
    return QStringLiteral("The engine is not available yet");
}

QString KOR_XML_QUERY_INTERFACE::ignore_text(const QString& table_name, const QString& field_name,
                                             const QString& record_key, const QUuid& record_uuid,
                                             const QString& text)
{
    return QStringLiteral("The engine is not available yet");
}

QString KOR_XML_QUERY_INTERFACE::unapprove_text_that_contains(const QString& text, bool case_sensitive)
{
    return QStringLiteral("The engine is not available yet");
}

bool KOR_XML_QUERY_INTERFACE::save_table(QString& error, const QString& table_name)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

bool KOR_XML_QUERY_INTERFACE::save_table(QString& error, const QString& table_name,
                                         const KOR_TABLE_DATA& data)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

bool KOR_XML_QUERY_INTERFACE::save_schema(QString& error, const QString& table_name)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

bool KOR_XML_QUERY_INTERFACE::save_schema(QString& error, const KOR_TABLE_SCHEMA& schema)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

bool KOR_XML_QUERY_INTERFACE::any_dependents_using_existing_value(QString& error, const QString& table_name,
                                                                  const KOR_FIELD_SCHEMA* field_schema,
                                                                  const QVariant& value)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

bool KOR_XML_QUERY_INTERFACE::dependency_value_exists(QString& error, const QString& table_name,
                                                      const KOR_FIELD_SCHEMA* field_schema,
                                                      const QVariant& value)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

bool KOR_XML_QUERY_INTERFACE::dependents_of_field_using_value(QMap<QString, QSet<QString>>& out,
                                                              const KOR_FIELD_SCHEMA* field_schema,
                                                              const QVariant& value)
{
    return false;
}

bool KOR_XML_QUERY_INTERFACE::is_read_only() const
{
    return false;
}

void KOR_XML_QUERY_INTERFACE::make_read_only(bool read_only) {}

QMap<QString, QMap<QString, RELATIONSHIP_DATA>> KOR_XML_QUERY_INTERFACE::relationship_data() const
{
    return {};
}

void KOR_XML_QUERY_INTERFACE::write_out_tables_with_uuids() {}

void KOR_XML_QUERY_INTERFACE::write_out_schemas_with_field_uuids() {}

bool KOR_XML_QUERY_INTERFACE::get_field_lookup_value(QString& error, QString& out,
                                                     const KOR_FIELD_SCHEMA* field_schema,
                                                     const QVariant& value)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

bool KOR_XML_QUERY_INTERFACE::get_field_lookup_values(QString& error, QVector<QVariant>& keys,
                                                      QList<QString>& texts,
                                                      const KOR_FIELD_SCHEMA* field_schema)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

bool KOR_XML_QUERY_INTERFACE::get_main_dependency_field_data(QString& error, QVector<QVariant>& out,
                                                             const KOR_FIELD_SCHEMA* field_schema)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

bool KOR_XML_QUERY_INTERFACE::table_restricted(const QString& table_name) const
{
    return false;
}

bool KOR_XML_QUERY_INTERFACE::can_add_table_records(const QString& table_name) const
{
    return false;
}

bool KOR_XML_QUERY_INTERFACE::can_edit_table_records(const QString& table_name) const
{
    return false;
}

bool KOR_XML_QUERY_INTERFACE::can_remove_table_records(const QString& table_name) const
{
    return false;
}

bool KOR_XML_QUERY_INTERFACE::apply_edit_commands(const QString& file, bool flag)
{
    return false;
}

bool KOR_XML_QUERY_INTERFACE::table_uuids_match(const QString& design_data_path, const QString& connect_path,
                                                const QString& table_name)
{
    return false;
}

void KOR_XML_QUERY_INTERFACE::refresh_unique_id_lookups_table() {}

LOCAL_DATA_CHANGES_DIALOG*
KOR_XML_QUERY_INTERFACE::create_local_data_changes_dialog(QWidget* parent,
                                                          DB_DIALOG_REGISTRATION_INTERFACE* registry)
{
    return nullptr;
}

SUBMISSION_DIALOG*
KOR_XML_QUERY_INTERFACE::create_submission_dialog(const QString& connect_path, QWidget* parent,
                                                  DB_DIALOG_REGISTRATION_INTERFACE* registry)
{
    return nullptr;
}

SUBMISSION_DIALOG* KOR_XML_QUERY_INTERFACE::create_submission_plus_data_dialog(
    const QString& connect_path, const QString& first, const QString& second, const QStringList& list,
    QWidget* parent, DB_DIALOG_REGISTRATION_INTERFACE* registry)
{
    return nullptr;
}

REQUEST_SUBMISSION_DIALOG*
KOR_XML_QUERY_INTERFACE::create_request_submission_dialog(QWidget* parent,
                                                          DB_DIALOG_REGISTRATION_INTERFACE* registry)
{
    return nullptr;
}

quint64 KOR_XML_QUERY_INTERFACE::new_unique_global_id()
{
    return 0;
}

QString KOR_XML_QUERY_INTERFACE::get_last_error() const
{
    return QStringLiteral("The engine is not available yet");
}

bool KOR_XML_QUERY_INTERFACE::save_relationships(QString& error)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}

bool KOR_XML_QUERY_INTERFACE::save_veld_tables_xml(QString& error)
{
    error = QStringLiteral("The engine is not available yet");
    return false;
}
