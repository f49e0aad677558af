#include "veld_diff_data.h"

#include "kor_xml_query_interface.h"
#include "veld_diff_session.h"

VELD_DIFF_DATA::VELD_DIFF_DATA(VELD_DIFF_SESSION* session, bool db1_is_local, bool diff_large_tables)
    : m_session(session), m_db1_is_local(db1_is_local), m_diff_large_tables(diff_large_tables)
{
}

VELD_DIFF_DATA::~VELD_DIFF_DATA() = default;

bool VELD_DIFF_DATA::process_diff()
{
    if (m_db2_path.isEmpty() || m_db2_changelist.isEmpty())
        return false;
    if (!m_session)
        return false;
    if (m_db1_is_local && !m_session->is_connected())
    {
        if (!m_session->ask(QStringLiteral("Disconnected"),
                            QStringLiteral("You are disconnected, connect now?")))
            return false;
        if (!m_session->connect_without_merge())
            return false;
        emit statusUpdate(QStringLiteral("Connection Established! - DB path is '") +
                          m_session->database_path() + QStringLiteral("'"));
    }
    if (m_db1_is_local)
    {
        const KOR_XML_QUERY_INTERFACE* local = m_session->query_interface();
        m_db1_directory = local ? local->connect_string() : QString();
    }
    else
    {
        m_db1_directory = m_db1_path;
    }

    KOR_XML_QUERY_INTERFACE copier(nullptr, QString(), false, false);
    if (!m_db1_is_local)
    {
        if (m_db1_path.isEmpty() || m_db1_changelist.isEmpty())
            return false;
        if (!m_session->ask(
                QStringLiteral("Disconnect Required"),
                QStringLiteral("If not diffing against local, disconnect is required. Ok to disconnect "
                               "now? (no to abort)")))
        {
            emit statusUpdate(QStringLiteral("Database diff aborted"));
            return false;
        }
        const QString error = m_session->disconnect();
        emit statusUpdate(error.isEmpty() ? QStringLiteral("Database Disconnected!") : error);
        m_db1_directory = copier.create_db_copy_for_diff(m_db1_directory, m_db1_changelist);
    }
    m_db2_directory = copier.create_db_copy_for_diff(m_db2_path, m_db2_changelist);

    QString error;
    if (!m_scan.scan(error, m_db1_directory, m_db2_directory, m_diff_large_tables))
    {
        m_session->warn(QStringLiteral("Invalid path"), error);
        return false;
    }
    return true;
}

KOR_XML_QUERY_INTERFACE* VELD_DIFF_DATA::copy_interface(std::unique_ptr<KOR_XML_QUERY_INTERFACE>& slot,
                                                        const QString& directory)
{
    if (!slot)
        slot = std::make_unique<KOR_XML_QUERY_INTERFACE>(m_session ? m_session->progress_callback() : nullptr,
                                                         QString(), false, false);
    if (!slot->is_connected())
    {
        const QString error = slot->connect_for_diff(directory);
        if (!error.isEmpty())
        {
            emit statusUpdate(error);
            return nullptr;
        }
    }
    return slot.get();
}

KOR_XML_QUERY_INTERFACE* VELD_DIFF_DATA::db1_query_interface()
{
    if (m_db1_is_local)
        return m_session ? m_session->query_interface() : nullptr;
    return copy_interface(m_db1_query_interface, m_db1_directory);
}

KOR_XML_QUERY_INTERFACE* VELD_DIFF_DATA::db2_query_interface()
{
    return copy_interface(m_db2_query_interface, m_db2_directory);
}
