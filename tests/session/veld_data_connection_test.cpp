// The session connecting real databases made by the engine in a temporary
// folder: the main one, mirrors, reconnecting, and disconnecting, with one
// engine fault injected where the engine cannot be made to fail.
#include "kor_xml_query_interface.h"
#include "project_paths.h"
#include "scripted_prompt.h"
#include "test_folder.h"
#include "veld_data.h"

#include <QtTest/QtTest>

namespace
{
// An engine whose disconnect fails: the one fault a session must survive
// that a healthy engine never shows.
class FAILING_DISCONNECT : public KOR_XML_QUERY_INTERFACE
{
public:
    explicit FAILING_DISCONNECT(PROGRESS_CALLBACK* progress)
        : KOR_XML_QUERY_INTERFACE(progress, QString(), false, false)
    {
    }
    QString disconnect() override
    {
        KOR_XML_QUERY_INTERFACE::disconnect();
        return QStringLiteral("mirror lock is stuck");
    }
};

// A session whose interfaces after the first (the mirrors) fail to disconnect.
class SESSION_WITH_FAILING_MIRRORS : public VELD_DATA
{
protected:
    KOR_XML_QUERY_INTERFACE* create_query_interface() override
    {
        if (m_made++ == 0)
            return VELD_DATA::create_query_interface();
        return new FAILING_DISCONNECT(this);
    }

private:
    int m_made = 0;
};
} // namespace

class VELD_DATA_CONNECTION_TEST : public QObject
{
    Q_OBJECT

    std::unique_ptr<TEST_FOLDER> folder;
    QString main_db;
    QString mirror_db;

    static QString make_database(const QString& path)
    {
        const QString error = KOR_XML_QUERY_INTERFACE::create_empty_database(path);
        return error.isEmpty() ? path : QString();
    }

private slots:
    void init()
    {
        folder = std::make_unique<TEST_FOLDER>();
        folder->make_folder("game/bin");
        main_db = make_database(folder->file("game/bin/db"));
        mirror_db = make_database(folder->file("mirror/db"));
        QVERIFY(!main_db.isEmpty() && !mirror_db.isEmpty());
        LIBRARY_PROXY::PROJECT_PATHS paths = LIBRARY_PROXY::PROJECT_PATHS::none();
        paths.binaries_path = folder->file("game/bin");
        LIBRARY_PROXY::PROJECT_PATHS::set_current(paths);
    }

    void cleanup()
    {
        LIBRARY_PROXY::PROJECT_PATHS::clear_current();
        folder.reset();
    }

    void connect_main_loads_the_database()
    {
        VELD_DATA session;
        QCOMPARE(QFileInfo(session.connect_path()).canonicalFilePath(),
                 QFileInfo(main_db).canonicalFilePath());
        QSignalSpy connected(&session, &VELD_DATA::connected);
        QSignalSpy status(&session, &VELD_DATA::statusUpdate);
        QString error;
        QVERIFY2(session.connect_main(error, session.connect_path(), 0), qPrintable(error));
        QVERIFY(session.is_connected());
        QVERIFY(session.query_interface() && session.query_interface()->is_connected());
        QCOMPARE(connected.count(), 1);
        QCOMPARE(status.count(), 0);
        // A plain connect is not remembered for reconnecting.
        QVERIFY(session.last_connection_path().isEmpty());
        QVERIFY(session.get_database_schema());
    }

    void second_connect_is_refused_data()
    {
        QTest::addColumn<bool>("remembering");
        QTest::newRow("connect_main") << false;
        QTest::newRow("connect_remembering") << true;
    }

    void second_connect_is_refused()
    {
        QFETCH(bool, remembering);
        VELD_DATA session;
        QString error;
        QVERIFY(session.connect_main(error, session.connect_path(), 0));
        KOR_XML_QUERY_INTERFACE* first = session.query_interface();
        QSignalSpy status(&session, &VELD_DATA::statusUpdate);
        const bool answer = remembering ? session.connect_remembering(error, mirror_db)
                                        : session.connect_main(error, mirror_db, 0);
        QVERIFY(!answer);
        QCOMPARE(error, "Database [" + mirror_db + "] is already connected");
        QCOMPARE(session.query_interface(), first);
        QCOMPARE(first->connect_string(), session.connect_path());
        QVERIFY(session.is_connected());
        // connect_main says so in the status list; the remembering caller shows it itself.
        QCOMPARE(status.count(), remembering ? 0 : 1);
    }

    void failed_connect_leaves_no_interface_data() { second_connect_is_refused_data(); }

    void failed_connect_leaves_no_interface()
    {
        QFETCH(bool, remembering);
        VELD_DATA session;
        QSignalSpy status(&session, &VELD_DATA::statusUpdate);
        QSignalSpy connected(&session, &VELD_DATA::connected);
        QString error;
        const QString missing = folder->file("missing/db");
        QVERIFY(!(remembering ? session.connect_remembering(error, missing)
                              : session.connect_main(error, missing, 0)));
        QVERIFY(!error.isEmpty());
        QVERIFY(!session.is_connected());
        QVERIFY(!session.query_interface());
        QCOMPARE(connected.count(), 0);
        QCOMPARE(status.count(), remembering ? 0 : 1);
        QVERIFY(session.last_connection_path().isEmpty());
    }

    void reconnect_uses_the_remembered_path()
    {
        VELD_DATA session;
        QString error;
        QVERIFY(session.connect_remembering(error, main_db));
        QCOMPARE(session.last_connection_path(), main_db);
        QVERIFY(session.disconnect_all(error));

        QSignalSpy status(&session, &VELD_DATA::statusUpdate);
        QVERIFY(session.reconnect_if_needed());
        QCOMPARE(status.count(), 1);
        QCOMPARE(status.at(0).at(0).toString(), "Connection Established! - DB path is '" + main_db + "'");
        // Connected: nothing to do, nothing said.
        QVERIFY(session.reconnect_if_needed());
        QCOMPARE(status.count(), 1);

        QVERIFY(session.disconnect_all(error));
        QVERIFY(QDir(main_db).removeRecursively());
        QVERIFY(!session.reconnect_if_needed());
        QCOMPARE(status.at(1).at(0).toString(), "Failed reconnecting to '" + main_db + "'!");
    }

    void disconnect_all_drops_main_and_mirrors()
    {
        VELD_DATA session;
        QString error;
        QVERIFY(session.connect_main(error, main_db, 0));
        QVERIFY2(session.connect_mirror(error, 1, mirror_db), qPrintable(error));
        QVERIFY(session.is_mirror_connected(1));
        QVERIFY(session.mirror_interface(1)->is_connected());
        QVERIFY(!session.connect_mirror(error, 1, mirror_db));
        QCOMPARE(error, "Database [" + mirror_db + "] is already connected");

        QSignalSpy disconnected(&session, &VELD_DATA::disconnected);
        QVERIFY(session.disconnect_all(error));
        QVERIFY(error.isEmpty());
        QCOMPARE(disconnected.count(), 1);
        QVERIFY(!session.is_connected() && !session.query_interface());
        QVERIFY(!session.is_mirror_connected(1) && !session.mirror_interface(1));
    }

    // A mirror that failed to connect leaves its slot free for another try.
    void failed_mirror_can_be_tried_again()
    {
        VELD_DATA session;
        QString error;
        QVERIFY(!session.connect_mirror(error, 0, folder->file("missing/db")));
        QVERIFY(!session.is_mirror_connected(0));
        QVERIFY(!session.mirror_interface(0));
        QVERIFY2(session.connect_mirror(error, 0, mirror_db), qPrintable(error));
        QVERIFY(session.is_mirror_connected(0));
    }

    void mirror_error_on_disconnect_still_disconnects()
    {
        SESSION_WITH_FAILING_MIRRORS session;
        QString error;
        QVERIFY(session.connect_main(error, main_db, 0));
        QVERIFY(session.connect_mirror(error, 0, mirror_db));
        QVERIFY(session.connect_mirror(error, 2, mirror_db));
        QSignalSpy disconnected(&session, &VELD_DATA::disconnected);
        QVERIFY(!session.disconnect_all(error));
        QCOMPARE(error, QStringLiteral("mirror lock is stuckmirror lock is stuck"));
        QCOMPARE(disconnected.count(), 0);
        QVERIFY(!session.is_connected() && !session.query_interface());
        for (int mirror = 0; mirror < VELD_DATA::MIRROR_COUNT; ++mirror)
            QVERIFY(!session.is_mirror_connected(mirror) && !session.mirror_interface(mirror));
        // And it can connect again.
        QVERIFY(session.connect_main(error, main_db, 0));
    }

    // The engine asks to be reloaded: the same interface, the same database,
    // and the windows hear nothing.
    void do_reconnect_keeps_the_interface()
    {
        VELD_DATA session;
        QString error;
        QVERIFY(session.connect_main(error, main_db, 0));
        KOR_XML_QUERY_INTERFACE* before = session.query_interface();
        QSignalSpy connected(&session, &VELD_DATA::connected);
        QSignalSpy disconnected(&session, &VELD_DATA::disconnected);
        emit before->do_reconnect();
        QCOMPARE(session.query_interface(), before);
        QVERIFY(before->is_connected());
        QCOMPARE(before->connect_string(), main_db);
        QCOMPARE(connected.count(), 0);
        QCOMPARE(disconnected.count(), 0);
    }

    // After a remembered connection to another database, the reload still
    // takes the one the windows have open.
    void do_reconnect_reloads_the_connected_database()
    {
        VELD_DATA session;
        QString error;
        QVERIFY(session.connect_remembering(error, mirror_db));
        QVERIFY(session.disconnect_all(error));
        QVERIFY(session.connect_main(error, main_db, 0));
        session.do_reconnect();
        QCOMPARE(session.query_interface()->connect_string(), main_db);
    }

};

QTEST_MAIN(VELD_DATA_CONNECTION_TEST)
#include "veld_data_connection_test.moc"
