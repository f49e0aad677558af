// The engine's operations on a working copy, on two git workspaces of one
// bare depot, through never-connected query interfaces as the program uses
// them.

#include "git_sandbox.h"

#include "test_database_builder.h"

#include "kor_db_file.h"
#include "kor_field_data.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "vcs_depot.h"

#include <QStandardPaths>
#include <QtTest/QtTest>

namespace
{

QStringList sorted(const QSet<QString>& set)
{
    QStringList list = set.values();
    list.sort();
    return list;
}
} // namespace

class TEST_KOR_WORKSPACE : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GIT_SANDBOX> sandbox;
    QString a_db; // the database folder of the first workspace
    QString b_db; // and of the second
    QByteArray units_v1;
    QByteArray spells_v1;

    static QString in(const QString& db, const QString& name) { return db + QLatin1Char('/') + name; }

    // Brings a workspace to the depot's newest state (what a merge does when nothing conflicts).
    void sync(const QString& db)
    {
        QString error;
        std::unique_ptr<VCS_DEPOT> depot = VCS_DEPOT::open(error, db);
        QVERIFY2(depot, qPrintable(error));
        QStringList updated;
        QVERIFY2(depot->sync(error, {db + QStringLiteral("/...")}, updated), qPrintable(error));
    }

private slots:
    void initTestCase()
    {
        if (!GIT_SANDBOX::available())
            QSKIP("git is not installed");
    }

    void init()
    {
        KOR_DB_FILE::set_single_db_mode(false);
        sandbox = std::make_unique<GIT_SANDBOX>();
        QVERIFY(sandbox->create_empty_depot());
        {
            TEST_DATABASE_BUILDER builder(sandbox->seed() + QStringLiteral("/raw_data/db"));
            builder.table("units", {TEST_FIELD::key("key"), TEST_FIELD::plain("hp", KFT_INTEGER)})
                .record("units", {{"key", "archer"}, {"hp", 10}})
                .table("spells", {TEST_FIELD::key("key")})
                .record("spells", {{"key", "fire"}});
            QVERIFY2(builder.ok(), qPrintable(builder.error()));
        }
        GIT_SANDBOX::write(sandbox->seed() + QStringLiteral("/raw_data/db/old/notes.txt"), "old\n");
        QVERIFY(sandbox->publish_seed("The database"));
        a_db = QFileInfo(sandbox->clone("a")).canonicalFilePath() + "/raw_data/db";
        b_db = QFileInfo(sandbox->clone("b")).canonicalFilePath() + "/raw_data/db";
        units_v1 = GIT_SANDBOX::read(in(a_db, "units.xml"));
        spells_v1 = GIT_SANDBOX::read(in(a_db, "spells.xml"));
    }

    void cleanup() { sandbox.reset(); }

    void changes_are_sorted_by_kind()
    {
        // Through the engine: a record edit, a new table, a removed table.
        {
            KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
            QVERIFY(engine.connect_without_merge(a_db, false).isEmpty());
            const auto heroes =
                TEST_DATABASE_BUILDER::make_schema(QStringLiteral("heroes"), {TEST_FIELD::key("key")});
            QVERIFY(engine.add_table(*heroes, QString(), QString()).isEmpty());
            QVERIFY(engine.remove_table("spells", "tester", "not needed").isEmpty());
            KOR_RECORD_DATA* archer = TEST_DATABASE_BUILDER::find_record(engine, "units", "archer");
            QVERIFY(TEST_DATABASE_BUILDER::edit_record(engine, "units", archer, {{"hp", 11}}).isEmpty());
            engine.disconnect();
        }
        GIT_SANDBOX::write(in(a_db, "Veld_queries.xml"), "<queries/>\n");

        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QSet<QString> set;
        query.get_changed_tables(set, a_db);
        QVERIFY2(set.contains("units") && !set.contains("spells"), qPrintable(sorted(set).join(',')));
        query.get_changed_schemas(set, a_db);
        QVERIFY2(set.contains("heroes") && !set.contains("units"), qPrintable(sorted(set).join(',')));
        query.get_deleted_tables(set, a_db);
        QCOMPARE(sorted(set), QStringList{"spells"});
        query.get_added_files(set, a_db);
        QVERIFY(set.contains(in(a_db, "Veld_queries.xml")));
        QVERIFY(set.contains(in(a_db, "Veld_schemas/heroes.xml")));
        query.get_changed_files(set, a_db);
        QVERIFY(set.contains(in(a_db, "units.xml")));
        QVERIFY(set.contains(in(a_db, "spells.xml")));
        // The other workspace has nothing to submit.
        query.get_changed_files(set, b_db);
        QVERIFY(set.isEmpty());
    }

    void submit_then_sync_shows_the_change()
    {
        GIT_SANDBOX::write(in(a_db, "units.xml"), "<units>a</units>\n");
        GIT_SANDBOX::write(in(a_db, "heroes.xml"), "<heroes/>\n");
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QString error;
        QVERIFY2(query.lock_for_submit(error, a_db, QString()), qPrintable(error));
        QVERIFY2(query.lock_for_submit(error, a_db, QString()), qPrintable(error)); // locked already
        QVERIFY2(query.submit_locked(error, "Units and heroes", a_db), qPrintable(error));
        // Afterwards nothing is reported changed.
        QSet<QString> set;
        query.get_changed_files(set, a_db);
        QVERIFY(set.isEmpty());
        QVERIFY(query.have_latest(a_db));
        QVERIFY(!query.submit_locked(error, "Again", a_db));

        QVERIFY(!query.have_latest(b_db));
        sync(b_db);
        QVERIFY(query.have_latest(b_db));
        QCOMPARE(GIT_SANDBOX::read(in(b_db, "units.xml")), QByteArray("<units>a</units>\n"));
        QCOMPARE(GIT_SANDBOX::read(in(b_db, "heroes.xml")), QByteArray("<heroes/>\n"));
    }

    // The commands file describes the change being prepared: after a submit
    // the next schema change starts it afresh instead of repeating the old
    // commands in the next revision.
    void commands_file_starts_afresh_after_a_submit()
    {
        const QString commands = in(a_db, "update_commands.txt");
        auto add_table = [&](const QString& name) {
            KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
            QVERIFY(engine.connect_without_merge(a_db, false).isEmpty());
            const auto schema =
                TEST_DATABASE_BUILDER::make_schema(name, {TEST_FIELD::key(QStringLiteral("key"))});
            QVERIFY(engine.add_table(*schema, QString(), QString()).isEmpty());
            QVERIFY(engine.disconnect().isEmpty());
        };
        add_table("heroes");
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QString error;
        QVERIFY2(query.lock_for_submit(error, a_db, QString()), qPrintable(error));
        QVERIFY2(query.submit_locked(error, "Heroes", a_db), qPrintable(error));
        QVERIFY(GIT_SANDBOX::read(commands).contains("heroes"));

        add_table("villains");
        const QByteArray after = GIT_SANDBOX::read(commands);
        QVERIFY(after.contains("villains"));
        QVERIFY2(!after.contains("heroes"), after.constData());

        // Not yet submitted: a further change adds to it.
        add_table("mercenaries");
        QVERIFY(GIT_SANDBOX::read(commands).contains("villains"));
    }

    void submit_refuses_when_out_of_date_and_keeps_the_work()
    {
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QString error;
        GIT_SANDBOX::write(in(b_db, "units.xml"), "<units>b</units>\n");
        QVERIFY(query.lock_for_submit(error, b_db, QString()));
        GIT_SANDBOX::write(in(a_db, "units.xml"), "<units>a</units>\n");
        QVERIFY(query.lock_for_submit(error, a_db, QString()));
        QVERIFY(query.submit_locked(error, "First", a_db));

        QVERIFY(!query.submit_locked(error, "Second", b_db));
        QVERIFY2(error.contains(QLatin1String("out of date")), qPrintable(error));
        QCOMPARE(GIT_SANDBOX::read(in(b_db, "units.xml")), QByteArray("<units>b</units>\n"));
        QSet<QString> added;
        QVERIFY2(query.revert_locked(error, b_db, added), qPrintable(error));
        // Undoing the lock keeps the local content.
        QCOMPARE(GIT_SANDBOX::read(in(b_db, "units.xml")), QByteArray("<units>b</units>\n"));
        QSet<QString> set;
        query.get_changed_tables(set, b_db);
        QCOMPARE(sorted(set), QStringList{"units"});
        QVERIFY(!query.submit_locked(error, "Unlocked", b_db));

        // A sync over the local edit leaves a merge to do.
        QVERIFY(!query.is_merge_required(b_db));
        sync(b_db);
        QVERIFY(query.is_merge_required(b_db));
        QCOMPARE(GIT_SANDBOX::read(in(b_db, "units.xml")), QByteArray("<units>b</units>\n"));
    }

    void revert_restores_exactly()
    {
        GIT_SANDBOX::write(in(a_db, "units.xml"), "<units>edited</units>\n");
        GIT_SANDBOX::write(in(a_db, "heroes.xml"), "<heroes/>\n");
        QVERIFY(QFile::remove(in(a_db, "spells.xml")));
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QString error;
        QVERIFY2(query.revert_changes(error, a_db, false), qPrintable(error));
        QCOMPARE(GIT_SANDBOX::read(in(a_db, "units.xml")), units_v1);
        QCOMPARE(GIT_SANDBOX::read(in(a_db, "spells.xml")), spells_v1);
        QVERIFY(!QFileInfo::exists(in(a_db, "heroes.xml")));
        QSet<QString> set;
        query.get_changed_files(set, a_db);
        QVERIFY(set.isEmpty());
        // The reverted work is kept aside.
        const QString safety =
            QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + "/orbin/safety";
        const QStringList copies = QDir(safety).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        QVERIFY(!copies.isEmpty());
        QCOMPARE(GIT_SANDBOX::read(safety + QLatin1Char('/') + copies.last() + QStringLiteral("/units.xml")),
                 QByteArray("<units>edited</units>\n"));
    }

    // The depot's export is tested with the depot; here the copy is made
    // once, outlives the interface that made it, and opens for the diff.
    void diff_copy_at_an_older_change_opens_for_the_diff()
    {
        QVERIFY(sandbox->push_from_seed("raw_data/db/units.xml", "<units>2</units>\n", "Second"));
        QString copy;
        {
            KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
            copy = query.create_db_copy_for_diff(a_db, "1");
            QVERIFY(!copy.isEmpty());
            QVERIFY(!copy.startsWith(a_db));
            QCOMPARE(query.create_db_copy_for_diff(a_db, "1"), copy);
            QVERIFY(query.create_db_copy_for_diff(a_db, "abc").isEmpty());
            QVERIFY(query.create_db_copy_for_diff(a_db, "99").isEmpty());
        }
        KOR_XML_QUERY_INTERFACE diff(nullptr, QString(), false, false);
        QCOMPARE(diff.connect_for_diff(copy), QString());
        QCOMPARE(diff.original_connect_string(), a_db);
        QCOMPARE(TEST_DATABASE_BUILDER::value_text(diff, "units", "archer", "hp"), "10");
        QCOMPARE(GIT_SANDBOX::read(in(a_db, "units.xml")), units_v1);
    }

    void directory_removal_is_submitted()
    {
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QString error;
        QVERIFY2(query.submit_directory_removal(error, in(a_db, "old"), "Old notes go"), qPrintable(error));
        QVERIFY(!QFileInfo::exists(in(a_db, "old/notes.txt")));
        sync(b_db);
        QVERIFY(!QFileInfo::exists(in(b_db, "old/notes.txt")));
        QVERIFY(!query.submit_directory_removal(error, in(a_db, "old"), "Twice"));
    }

    void schema_requests_live_in_the_depot()
    {
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QString error;
        GIT_SANDBOX::write(in(a_db, "update_commands.txt"), "add field hp\n");
        QVERIFY2(query.submit_schema_changes_request(error, a_db, "more_hp", "Please"), qPrintable(error));
        QVERIFY(!query.submit_schema_changes_request(error, a_db, "more_hp", "Again"));
        sync(b_db);
        const QString request = in(b_db, "schema_changes_requests/more_hp");
        QVERIFY(QFileInfo::exists(request + QStringLiteral("/requested")));
        QCOMPARE(GIT_SANDBOX::read(request + QStringLiteral("/comments.txt")), QByteArray("Please"));
        QCOMPARE(GIT_SANDBOX::read(request + QStringLiteral("/update_commands.txt")),
                 QByteArray("add field hp\n"));

        QVERIFY2(query.submit_request_change(error, b_db, "more_hp", "on hold"), qPrintable(error));
        QVERIFY(!QFileInfo::exists(request + QStringLiteral("/requested")));
        QVERIFY(QFileInfo::exists(request + QStringLiteral("/on hold")));
        QVERIFY(!query.submit_request_change(error, b_db, "more_hp", "done"));
        QVERIFY(query.submit_request_change(error, b_db, "more_hp", "<<deleted>>"));
        QVERIFY(!QFileInfo::exists(request + QStringLiteral("/comments.txt")));
    }

    void without_version_control_data()
    {
        QTest::addColumn<bool>("offline");
        QTest::addColumn<QString>("message");
        QTest::newRow("plain folder") << false << "not in a workspace under version control";
        QTest::newRow("offline single database") << true << "offline without version control";
    }

    void without_version_control()
    {
        QFETCH(bool, offline);
        QFETCH(QString, message);
        const QString plain = sandbox->path("plain/db");
        GIT_SANDBOX::write(plain + QStringLiteral("/units.xml"), units_v1);
        const QString db = offline ? a_db : plain;
        KOR_DB_FILE::set_single_db_mode(offline);
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QSet<QString> set;
        GIT_SANDBOX::write(in(db, "units.xml"), "<units>edited</units>\n");
        query.get_changed_tables(set, db);
        QVERIFY(set.isEmpty());
        QVERIFY(query.have_latest(db));
        QVERIFY(!query.is_merge_required(db));
        QString error;
        QVERIFY(!query.lock_database(error, db));
        QVERIFY2(error.contains(message), qPrintable(error));
        QVERIFY(!query.revert_changes(error, db, false));
        QVERIFY2(error.contains(message), qPrintable(error));
        QVERIFY(!query.lock_for_submit(error, db, QString()));
        QVERIFY(query.create_db_copy_for_diff(db, "1").isEmpty());
        KOR_DB_FILE::set_single_db_mode(false);
        // Nothing local was touched.
        QCOMPARE(GIT_SANDBOX::read(in(db, "units.xml")), QByteArray("<units>edited</units>\n"));
    }
};

QTEST_GUILESS_MAIN(TEST_KOR_WORKSPACE)
#include "test_kor_workspace.moc"
