#include "veld_data.h"

#include "kor_db_file.h"
#include "kor_xml_query_interface.h"
#include "p4_connection.h"
#include "project_path_set.h"
#include "prompt.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSet>

namespace
{
const char* const OFFLINE_MARKER_FILE = "orbin_read_only_offline_mode";

QString not_connected_permissions()
{
    return QStringLiteral("Must be connected in order to get table permissions!");
}
} // namespace

VELD_DATA::VELD_DATA(QObject* parent) : QObject(parent)
{
    work_out_paths();
}

VELD_DATA::~VELD_DATA()
{
    delete m_main_interface;
    for (KOR_XML_QUERY_INTERFACE* mirror : qAsConst(m_mirror_interfaces))
        delete mirror;
}

void VELD_DATA::work_out_paths()
{
    const PROJECT_PATH_SET paths;

    QString override_path;
    QFile marker(QString::fromLatin1(OFFLINE_MARKER_FILE));
    if (marker.exists() && marker.open(QIODevice::ReadOnly | QIODevice::Text))
    {
        m_read_only_offline = true;
        override_path = QString::fromUtf8(marker.readLine()).trimmed();
    }

    QString binaries = paths.binaries_path();
    binaries.replace(QLatin1Char('\\'), QLatin1Char('/'));
    m_binaries_path = QFileInfo(binaries).canonicalFilePath();
    // The canonical path of a folder that does not exist is empty, which would
    // turn every derived path into one below the root of the file system.
    if (m_binaries_path.isEmpty() && !binaries.isEmpty())
    {
        m_binaries_path = QDir::cleanPath(binaries);
    }
    m_binaries_path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    m_project_root = m_binaries_path.section(QLatin1Char('/'), 0, -3);

    m_connect_path = m_binaries_path + QStringLiteral("/db");
    if (!QDir(m_connect_path).exists())
    {
        const int cut = m_binaries_path.lastIndexOf(QLatin1Char('/'), m_binaries_path.size() - 2);
        const QString fallback = m_binaries_path.left(cut) + QStringLiteral("/raw_data/db");
        if (QDir(fallback).exists())
            m_connect_path = fallback;
    }

    if (m_read_only_offline)
    {
        KOR_DB_FILE::set_single_db_mode(true);
        m_connect_path = override_path.isEmpty() ? m_binaries_path + QStringLiteral("/db") : override_path;
    }

    // Depot commands the windows run without naming a file (a bare sync, the
    // client root) belong to this project's workspace, whatever the current
    // directory of the host.
    P4_CONNECTION::set_default_start_directory(m_connect_path);

    if (!m_read_only_offline && !QDir(m_connect_path).exists())
        emit statusUpdate(QStringLiteral("Connect path '") + m_connect_path +
                          QStringLiteral("' does not exist"));

    m_design_data_path = paths.design_data_path();
    m_csv_import_path = paths.csv_import_path();
}

// --- Connection

KOR_XML_QUERY_INTERFACE* VELD_DATA::create_query_interface()
{
    return new KOR_XML_QUERY_INTERFACE(this, QString(), false, false);
}

bool VELD_DATA::connect_main(QString& error, const QString& path, int)
{
    return connect_main_interface(error, path, false);
}

bool VELD_DATA::connect_remembering(QString& error, const QString& path)
{
    return connect_main_interface(error, path, true);
}

bool VELD_DATA::connect_main_interface(QString& error, const QString& path, bool remember)
{
    if (m_connected)
    {
        error = QStringLiteral("Database [") + path + QStringLiteral("] is already connected");
        if (!remember)
            emit statusUpdate(error);
        return false;
    }

    m_main_interface = create_query_interface();
    connect(m_main_interface, SIGNAL(mergeUpdate(QString)), this, SLOT(statusUpdateProxy(QString)));
    error = m_main_interface->connect_without_merge(path, false);
    QObject::disconnect(m_main_interface, nullptr, nullptr, nullptr);
    if (!remember)
        connect(m_main_interface, SIGNAL(do_reconnect()), this, SLOT(do_reconnect()));

    m_connected = error.isEmpty();
    if (!m_connected)
    {
        if (!remember)
            emit statusUpdate(error);
        delete m_main_interface;
        m_main_interface = nullptr;
        return false;
    }
    m_main_path = path;
    if (remember)
        m_last_connection_path = path;
    emit connected();
    return true;
}

bool VELD_DATA::connect_mirror(QString& error, int index, const QString& path)
{
    if (index < 0 || index >= MIRROR_COUNT)
    {
        error = QStringLiteral("Index is out of range");
        return false;
    }
    if (m_mirror_connected[index])
    {
        error = QStringLiteral("Database [") + path + QStringLiteral("] is already connected");
        return false;
    }
    if (!m_mirror_interfaces[index])
        m_mirror_interfaces[index] = create_query_interface();
    KOR_XML_QUERY_INTERFACE* mirror = m_mirror_interfaces[index];
    error = mirror->connect(path, QString(), KOR_QUERY_INTERFACE::GET_LATEST_FOR_CHECKIN, false);
    m_mirror_connected[index] = error.isEmpty();
    if (!m_mirror_connected[index])
    {
        delete mirror;
        // The entry must not keep the deleted interface: a second attempt at
        // this index, or the destructor, would use it again.
        m_mirror_interfaces[index] = nullptr;
        return false;
    }
    return true;
}

bool VELD_DATA::disconnect_all(QString& error)
{
    if (!m_connected || !m_main_interface)
    {
        error = QStringLiteral("Database is not connected");
        return false;
    }
    QString errors = m_main_interface->disconnect();
    delete m_main_interface;
    m_main_interface = nullptr;
    m_connected = false;
    m_main_path.clear();

    for (int index = 0; index < MIRROR_COUNT; ++index)
    {
        if (!m_mirror_connected[index])
            continue;
        if (KOR_XML_QUERY_INTERFACE* mirror = m_mirror_interfaces[index])
        {
            errors += mirror->disconnect();
            delete mirror;
        }
        m_mirror_interfaces[index] = nullptr;
        m_mirror_connected[index] = false;
    }

    error = errors;
    if (!errors.isEmpty())
        return false;
    emit disconnected();
    return true;
}

bool VELD_DATA::reconnect_if_needed()
{
    if (!m_connected && !m_last_connection_path.isEmpty() && m_may_reconnect)
    {
        QString error;
        const QString path = m_last_connection_path;
        if (connect_remembering(error, path))
            emit statusUpdate(QStringLiteral("Connection Established! - DB path is '") + path +
                              QStringLiteral("'"));
        else
            emit statusUpdate(QStringLiteral("Failed reconnecting to '") + path + QStringLiteral("'!"));
    }
    return m_connected;
}

bool VELD_DATA::is_mirror_connected(int index) const
{
    return index >= 0 && index < MIRROR_COUNT && m_mirror_connected[index];
}

KOR_XML_QUERY_INTERFACE* VELD_DATA::mirror_interface(int index) const
{
    return index >= 0 && index < MIRROR_COUNT ? m_mirror_interfaces[index] : nullptr;
}

void VELD_DATA::do_reconnect()
{
    if (!m_connected || !m_main_interface)
        return;
    // The engine reloads the database it holds. The remembered path may be
    // empty (the main connection did not remember one) or name another
    // database than the one connected; loading that under the open windows
    // would show, and write to, the wrong database.
    const QString path = m_main_path.isEmpty() ? m_last_connection_path : m_main_path;
    m_main_interface->disconnect();
    m_main_interface->connect_without_merge(path, false);
}

// --- Paths and modes

void VELD_DATA::set_request_mode(bool in_request_mode)
{
    m_request_mode = in_request_mode;
    emit requestModeChanged(in_request_mode);
}

void VELD_DATA::set_suppress_errors(bool suppress)
{
    m_suppress_errors = suppress;
}

// --- Guarded forwarding

bool VELD_DATA::can_add_table_records(const QString& table_name)
{
    if (!m_main_interface)
    {
        emit statusUpdate(not_connected_permissions());
        return false;
    }
    return m_main_interface->can_add_table_records(table_name);
}

bool VELD_DATA::can_edit_table_records(const QString& table_name)
{
    if (!m_main_interface)
    {
        emit statusUpdate(not_connected_permissions());
        return false;
    }
    return m_main_interface->can_edit_table_records(table_name);
}

bool VELD_DATA::can_remove_table_records(const QString& table_name)
{
    if (!m_main_interface)
    {
        emit statusUpdate(not_connected_permissions());
        return false;
    }
    return m_main_interface->can_remove_table_records(table_name);
}

bool VELD_DATA::table_restricted(const QString& table_name)
{
    if (!m_main_interface)
    {
        emit statusUpdate(not_connected_permissions());
        return false;
    }
    return m_main_interface->table_restricted(table_name);
}

bool VELD_DATA::get_table_names(QMap<QString, bool>& out)
{
    if (!m_main_interface)
    {
        emit statusUpdate(QStringLiteral("Must be connected in order to get table names from the model!"));
        return false;
    }
    m_main_interface->get_table_names(out);
    return true;
}

void VELD_DATA::update_all_records_with_uuids()
{
    if (!m_main_interface)
    {
        emit statusUpdate(QStringLiteral("Must be connected in order to update all records to have uuids!"));
        return;
    }
    m_main_interface->write_out_tables_with_uuids();
}

void VELD_DATA::update_all_schema_fields_with_uuids()
{
    if (!m_main_interface)
    {
        emit statusUpdate(
            QStringLiteral("Must be connected in order to update all fields in schemas to have uuids!"));
        return;
    }
    m_main_interface->write_out_schemas_with_field_uuids();
}

// --- Unguarded forwarding

KOR_TABLE_SCHEMA* VELD_DATA::get_table_schema(const QString& table_name) const
{
    return m_main_interface ? m_main_interface->get_table_schema(table_name) : nullptr;
}

KOR_DATABASE_SCHEMA* VELD_DATA::get_database_schema() const
{
    return m_main_interface ? m_main_interface->get_database_schema() : nullptr;
}

bool VELD_DATA::get_main_dependency_field_data(QString& error, QVector<QVariant>& out,
                                               const KOR_FIELD_SCHEMA* field_schema)
{
    return m_main_interface && m_main_interface->get_main_dependency_field_data(error, out, field_schema);
}

bool VELD_DATA::get_field_lookup_value(QString& error, QString& out, const KOR_FIELD_SCHEMA* field_schema,
                                       const QVariant& value)
{
    return m_main_interface && m_main_interface->get_field_lookup_value(error, out, field_schema, value);
}

bool VELD_DATA::get_field_lookup_values(QString& error, QVector<QVariant>& keys, QList<QString>& texts,
                                        const KOR_FIELD_SCHEMA* field_schema)
{
    return m_main_interface && m_main_interface->get_field_lookup_values(error, keys, texts, field_schema);
}

// --- Closing

bool VELD_DATA::confirm_closing(QWidget* parent, const std::function<bool()>& any_unsaved_forms)
{
    QSet<QString> changed_tables;
    {
        KOR_XML_QUERY_INTERFACE probe(nullptr, QString(), false, false);
        probe.get_changed_tables(changed_tables, m_connect_path);
    }
    // Without the window that lists the changed tables, the question about
    // unsaved editors still has to be asked: local changes are safe on disk,
    // pending edits in an editor are not.
    if (!changed_tables.isEmpty() && m_closing_question)
        return m_closing_question(*this, parent);

    if (any_unsaved_forms && any_unsaved_forms())
    {
        const auto answer = prompt::question(
            parent, QStringLiteral("Orbin"),
            QStringLiteral("There are unsaved table changes, are you absolutely sure you want to close?\n"
                           "(UNSAVED CHANGES WILL BE LOST!)"),
            QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
        return answer != QMessageBox::No;
    }
    return true;
}

// --- Shelving

bool VELD_DATA::shelve(const QString& name, bool delete_local)
{
    return KOR_DB_FILE::shelve_db(m_connect_path, name, this, delete_local);
}

bool VELD_DATA::unshelve(const QString& name, bool delete_shelf)
{
    return KOR_DB_FILE::unshelve_db(m_connect_path, name, this, delete_shelf);
}

bool VELD_DATA::delete_shelved(const QString& name)
{
    return KOR_DB_FILE::delete_shelved_db(m_connect_path, name, this);
}

QStringList VELD_DATA::shelved_databases() const
{
    return KOR_DB_FILE::shelved_dbs(m_connect_path);
}

bool VELD_DATA::local_database_has_changes() const
{
    return KOR_DB_FILE::local_db_exists_with_changes(m_connect_path);
}

bool VELD_DATA::is_trigger_table(const QString& table_name)
{
    return table_name == QLatin1String("advice_triggers") ||
           table_name == QLatin1String("ancillary_triggers") ||
           table_name == QLatin1String("encyclopedia_triggers") ||
           table_name == QLatin1String("trait_triggers");
}

// --- PROGRESS_CALLBACK

void VELD_DATA::set_maximum_progress(int maximum)
{
    emit maxProgressChanged(maximum);
}

void VELD_DATA::set_progress_text(const char*) {}

void VELD_DATA::add_progress(int progress)
{
    emit progressAdded(progress);
}

bool VELD_DATA::query(const char*)
{
    return false;
}

void VELD_DATA::reset_progress() {}

void VELD_DATA::report(const char* text, int severity)
{
    const QString message = text ? QString::fromUtf8(text) : QString();
    switch (severity)
    {
    case SEVERITY_INFORMATION:
        emit statusUpdate(message);
        break;
    case SEVERITY_WARNING:
        if (!m_suppress_errors)
            prompt::warning(nullptr, QStringLiteral("Warning from database back-end"), message,
                            QMessageBox::Ok);
        emit statusUpdate(message);
        break;
    case SEVERITY_ERROR:
        if (!m_suppress_errors)
            prompt::critical(nullptr, QStringLiteral("Error from database back-end"), message,
                             QMessageBox::Ok);
        emit statusUpdate(message);
        break;
    default:
        break;
    }
}

void VELD_DATA::statusUpdateProxy(QString text)
{
    emit statusUpdate(text);
}
