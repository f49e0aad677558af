#pragma once

#include "kor_xml_query_interface.h"
#include "test_database_builder.h"
#include "test_folder.h"
#include "veld_data.h"

#include <functional>
#include <memory>

// The engine with one fault to inject: a commit that fails as a full disk would.
class TABLES_TEST_ENGINE : public KOR_XML_QUERY_INTERFACE
{
public:
    explicit TABLES_TEST_ENGINE(PROGRESS_CALLBACK* progress);
    bool end_transaction(QString& error) override;

    bool fail_commits = false;
};

// A small database built through the engine in a fresh folder, and a session
// connected to it, as the main window would hold one.
//
//   TABLES_TEST_SESSION db;
//   QVERIFY2(db.open([](TEST_DATABASE_BUILDER& b) { b.table(...).record(...); }), qPrintable(db.error()));
//   VELD_TABLE_LAUNCHER launcher(db.session(), nullptr, 0);
class TABLES_TEST_SESSION
{
public:
    using BUILD = std::function<void(TEST_DATABASE_BUILDER& builder)>;

    TABLES_TEST_SESSION();
    ~TABLES_TEST_SESSION();

    // Builds the database, writes `permissions_xml` (when given) as its
    // permissions file, and connects the session. False with error() set.
    bool open(const BUILD& build, const QByteArray& permissions_xml = QByteArray());

    VELD_DATA* session() const { return m_session.get(); }
    TABLES_TEST_ENGINE* engine() const;
    const QString& error() const { return m_error; }

    // The text of a table's XML file on disk.
    QString table_file_text(const QString& table) const;

private:
    TEST_FOLDER m_folder;
    QString m_path;
    QString m_error;
    std::unique_ptr<VELD_DATA> m_session;
};
