#include "tables_test_session.h"

#include "kor_xml_query_interface.h"
#include "test_helpers.h"

#include <QDir>

namespace
{
class TEST_SESSION : public VELD_DATA
{
protected:
    KOR_XML_QUERY_INTERFACE* create_query_interface() override { return new TABLES_TEST_ENGINE(this); }
};
} // namespace

TABLES_TEST_ENGINE::TABLES_TEST_ENGINE(PROGRESS_CALLBACK* progress)
    : KOR_XML_QUERY_INTERFACE(progress, QString(), false, false)
{
}

bool TABLES_TEST_ENGINE::end_transaction(QString& error)
{
    if (fail_commits)
    {
        error = QStringLiteral("The disk is full");
        terminate_transaction();
        return false;
    }
    return KOR_XML_QUERY_INTERFACE::end_transaction(error);
}

TABLES_TEST_SESSION::TABLES_TEST_SESSION() = default;

TABLES_TEST_ENGINE* TABLES_TEST_SESSION::engine() const
{
    return m_session ? dynamic_cast<TABLES_TEST_ENGINE*>(m_session->query_interface()) : nullptr;
}

TABLES_TEST_SESSION::~TABLES_TEST_SESSION()
{
    if (m_session && m_session->is_connected())
    {
        QString ignored;
        m_session->disconnect_all(ignored);
    }
}

bool TABLES_TEST_SESSION::open(const BUILD& build, const QByteArray& permissions_xml)
{
    m_path = m_folder.file(QStringLiteral("db"));
    {
        TEST_DATABASE_BUILDER builder(m_path);
        if (build)
            build(builder);
        if (!builder.ok())
        {
            m_error = builder.error();
            return false;
        }
    }
    if (!permissions_xml.isEmpty() &&
        !ORBIN_TEST::write_file(QDir(m_path).filePath(QStringLiteral("Veld_permissions.xml")),
                                permissions_xml))
    {
        m_error = QStringLiteral("cannot write the permissions file");
        return false;
    }
    m_session = std::make_unique<TEST_SESSION>();
    return m_session->connect_main(m_error, m_path, 0);
}

QString TABLES_TEST_SESSION::table_file_text(const QString& table) const
{
    return ORBIN_TEST::read_text(QDir(m_path).filePath(table + QStringLiteral(".xml")));
}
