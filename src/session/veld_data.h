#pragma once

#include "progress_callback.h"

#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtCore/QVector>

#include <functional>

class QWidget;
class KOR_DATABASE_SCHEMA;
class KOR_FIELD_SCHEMA;
class KOR_TABLE_SCHEMA;
class KOR_XML_QUERY_INTERFACE;

// The one session of the program: the project's paths, the connected main
// database and up to three mirrors beside it, the state of the connection,
// and the bridge from the engine's progress sink to Qt signals.
//
// The plugin owns exactly one for its whole life; the main window and every
// window reach it by pointer. Everything runs on the GUI thread.
//
// Errors are values: an operation answers false and fills its error text.
// Warnings and errors the engine reports come out as message boxes (through
// the prompt seam, with no parent, so that they are seen while the main
// window closes too) and as status lines.
class VELD_DATA : public QObject, public PROGRESS_CALLBACK
{
    Q_OBJECT

public:
    static constexpr int MIRROR_COUNT = 3;

    // Asked when closing while tables have local changes: answers whether to
    // close. Installed by the window that shows those changes.
    using CLOSING_QUESTION = std::function<bool(VELD_DATA& session, QWidget* parent)>;

    // Works out the paths from the host's current project and the offline
    // marker file in the working directory. Connects nothing.
    explicit VELD_DATA(QObject* parent = nullptr);
    // Deletes the interfaces still held without disconnecting them: the
    // plugin disconnects first.
    ~VELD_DATA() override;

    // --- Connection
    bool is_connected() const { return m_connected; }
    // Connects the main database at path (no merge, no version control). The
    // int is accepted and ignored. A failure is also sent as a status line.
    bool connect_main(QString& error, const QString& path, int mode);
    // As connect_main, and on success remembers path for reconnect_if_needed.
    // A failure is left to the caller to show.
    bool connect_remembering(QString& error, const QString& path);
    // Connects mirror index (0 to 2), getting latest first.
    bool connect_mirror(QString& error, int index, const QString& path);
    // Disconnects the main database and every mirror. False (with the
    // errors) when any of them failed; the session is disconnected anyway.
    bool disconnect_all(QString& error);
    // Connects again to the remembered path when disconnected; answers
    // whether the session is connected afterwards.
    bool reconnect_if_needed();
    bool is_mirror_connected(int index) const;

    // The connected main interface, null when disconnected. Valid until the
    // next disconnect.
    KOR_XML_QUERY_INTERFACE* query_interface() const { return m_main_interface; }
    KOR_XML_QUERY_INTERFACE* mirror_interface(int index) const;
    // This session as the engine's progress sink, for short-lived interfaces.
    PROGRESS_CALLBACK* progress_callback() { return this; }

    // --- Paths and modes
    // The database folder; also the argument of every path operation.
    const QString& connect_path() const { return m_connect_path; }
    const QString& design_data_path() const { return m_design_data_path; }
    const QString& csv_import_path() const { return m_csv_import_path; }
    // Canonical, with '/' and no trailing separator.
    const QString& binaries_path() const { return m_binaries_path; }
    // The binaries path less its last two components.
    const QString& project_root() const { return m_project_root; }
    // The path of the last successful remembered connection; empty before.
    const QString& last_connection_path() const { return m_last_connection_path; }
    bool is_read_only_offline() const { return m_read_only_offline; }

    void set_request_mode(bool in_request_mode);
    bool is_in_request_mode() const { return m_request_mode; }
    void set_suppress_errors(bool suppress);
    bool suppress_errors() const { return m_suppress_errors; }

    // --- Guarded forwarding: without a connection these send a status line
    // and answer false (or nothing).
    bool can_add_table_records(const QString& table_name);
    bool can_edit_table_records(const QString& table_name);
    bool can_remove_table_records(const QString& table_name);
    bool table_restricted(const QString& table_name);
    bool get_table_names(QMap<QString, bool>& out);
    void update_all_records_with_uuids();
    void update_all_schema_fields_with_uuids();

    // --- Unguarded forwarding, for callers that have tested the connection
    // (each answers null or false when there is none, without a message).
    KOR_TABLE_SCHEMA* get_table_schema(const QString& table_name) const;
    KOR_DATABASE_SCHEMA* get_database_schema() const;
    bool get_main_dependency_field_data(QString& error, QVector<QVariant>& out,
                                        const KOR_FIELD_SCHEMA* field_schema);
    bool get_field_lookup_value(QString& error, QString& out, const KOR_FIELD_SCHEMA* field_schema,
                                const QVariant& value);
    bool get_field_lookup_values(QString& error, QVector<QVariant>& keys, QList<QString>& texts,
                                 const KOR_FIELD_SCHEMA* field_schema);

    // --- Closing
    void set_closing_question(const CLOSING_QUESTION& question) { m_closing_question = question; }
    // Whether the host may close: with local table changes the closing
    // question decides; otherwise, when any_unsaved_forms answers true, the
    // user is asked (default No).
    bool confirm_closing(QWidget* parent, const std::function<bool()>& any_unsaved_forms);

    // --- Shelving: named copies of the local changes of the connect path,
    // with this session as the progress sink.
    bool shelve(const QString& name, bool delete_local);
    bool unshelve(const QString& name, bool delete_shelf);
    bool delete_shelved(const QString& name);
    QStringList shelved_databases() const;
    bool local_database_has_changes() const;

    // The four trigger tables, which the submit path treats apart.
    static bool is_trigger_table(const QString& table_name);

    // --- PROGRESS_CALLBACK
    void set_maximum_progress(int maximum) override;
    void set_progress_text(const char* text) override;
    void add_progress(int progress) override;
    bool query(const char* text) override;
    void reset_progress() override;
    void report(const char* text, int severity) override;

signals:
    void statusUpdate(QString updateString);
    void maxProgressChanged(int maxProgress);
    void progressAdded(int additionalProgress);
    void requestModeChanged(bool is_in_request_mode);
    void connected();
    void disconnected();

public slots:
    void statusUpdateProxy(QString text);
    // Raised by the engine: reloads the main database in place.
    void do_reconnect();

protected:
    // Makes every interface the session holds (main and mirrors); tests
    // inject faults of the engine here.
    virtual KOR_XML_QUERY_INTERFACE* create_query_interface();

private:
    bool connect_main_interface(QString& error, const QString& path, bool remember);
    void work_out_paths();

    bool m_request_mode = false;
    KOR_XML_QUERY_INTERFACE* m_main_interface = nullptr;
    QVector<KOR_XML_QUERY_INTERFACE*> m_mirror_interfaces =
        QVector<KOR_XML_QUERY_INTERFACE*>(MIRROR_COUNT, nullptr);
    bool m_connected = false;
    QVector<bool> m_mirror_connected = QVector<bool>(MIRROR_COUNT, false);
    QString m_connect_path;
    QString m_design_data_path;
    QString m_csv_import_path;
    QString m_binaries_path;
    QString m_project_root;
    bool m_suppress_errors = false;
    QString m_last_connection_path;
    bool m_may_reconnect = true;
    bool m_read_only_offline = false;
    // The path the main interface was connected to, for do_reconnect.
    QString m_main_path;
    CLOSING_QUESTION m_closing_question;
};
