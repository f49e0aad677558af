// The engine's operations on a working copy, on two git workspaces of one
// bare depot, through never-connected query interfaces as the program uses
// them.

#include "../vcs/git_sandbox.h"

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
        if (QStandardPaths::findExecutable(QStringLiteral("git")).isEmpty())
            QSKIP("git is not installed");
    }

    void init()
    {
        KOR_DB_FILE::set_single_db_mode(false);
        sandbox = std::make_unique<GIT_SANDBOX>();
        QVERIFY(sandbox->create_empty_depot());
        {
            TEST_DATABASE_BUILDER builder(sandbox->seed() + QStringLiteral("/raw_data/db"));
            builder
                .table(QStringLiteral("units"), {TEST_FIELD::key(QStringLiteral("key")),
                                                 TEST_FIELD::plain(QStringLiteral("hp"), KFT_INTEGER)})
                .record(QStringLiteral("units"),
                        {{QStringLiteral("key"), QStringLiteral("archer")}, {QStringLiteral("hp"), 10}})
                .table(QStringLiteral("spells"), {TEST_FIELD::key(QStringLiteral("key"))})
                .record(QStringLiteral("spells"), {{QStringLiteral("key"), QStringLiteral("fire")}});
            QVERIFY2(builder.ok(), qPrintable(builder.error()));
        }
        GIT_SANDBOX::write(sandbox->seed() + QStringLiteral("/raw_data/db/old/notes.txt"), "old\n");
        QVERIFY(sandbox->publish_seed(QStringLiteral("The database")));
        a_db = QFileInfo(sandbox->clone(QStringLiteral("a"))).canonicalFilePath() +
               QStringLiteral("/raw_data/db");
        b_db = QFileInfo(sandbox->clone(QStringLiteral("b"))).canonicalFilePath() +
               QStringLiteral("/raw_data/db");
        units_v1 = GIT_SANDBOX::read(in(a_db, QStringLiteral("units.xml")));
        spells_v1 = GIT_SANDBOX::read(in(a_db, QStringLiteral("spells.xml")));
    }

    void cleanup() { sandbox.reset(); }

    void changes_are_sorted_by_kind()
    {
        // Through the engine: a record edit, a new table, a removed table.
        {
            KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
            QVERIFY(engine.connect_without_merge(a_db, false).isEmpty());
            const auto heroes = TEST_DATABASE_BUILDER::make_schema(QStringLiteral("heroes"),
                                                                   {TEST_FIELD::key(QStringLiteral("key"))});
            QVERIFY(engine.add_table(*heroes, QString(), QString()).isEmpty());
            QVERIFY(engine
                        .remove_table(QStringLiteral("spells"), QStringLiteral("tester"),
                                      QStringLiteral("not needed"))
                        .isEmpty());
            QString error;
            QVERIFY(engine.begin_transaction(error, true));
            const KOR_RECORD_DATA* archer = engine.get_table_data(error, QStringLiteral("units"))
                                                ->record_by_key(QStringLiteral("archer"));
            KOR_RECORD_DATA copy(*archer, nullptr);
            copy.get_field_data(QStringLiteral("hp"))->set_value(11);
            QVERIFY(engine.edit_record_data(QStringLiteral("units"), archer, &copy).isEmpty());
            QVERIFY2(engine.end_transaction(error), qPrintable(error));
            engine.disconnect();
        }
        GIT_SANDBOX::write(in(a_db, QStringLiteral("Veld_queries.xml")), "<queries/>\n");

        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QSet<QString> set;
        query.get_changed_tables(set, a_db);
        QVERIFY2(set.contains(QStringLiteral("units")) && !set.contains(QStringLiteral("spells")),
                 qPrintable(sorted(set).join(',')));
        query.get_changed_schemas(set, a_db);
        QVERIFY2(set.contains(QStringLiteral("heroes")) && !set.contains(QStringLiteral("units")),
                 qPrintable(sorted(set).join(',')));
        query.get_deleted_tables(set, a_db);
        QCOMPARE(sorted(set), QStringList{QStringLiteral("spells")});
        query.get_added_files(set, a_db);
        QVERIFY(set.contains(in(a_db, QStringLiteral("Veld_queries.xml"))));
        QVERIFY(set.contains(in(a_db, QStringLiteral("Veld_schemas/heroes.xml"))));
        query.get_changed_files(set, a_db);
        QVERIFY(set.contains(in(a_db, QStringLiteral("units.xml"))));
        QVERIFY(set.contains(in(a_db, QStringLiteral("spells.xml"))));
        // The other workspace has nothing to submit.
        query.get_changed_files(set, b_db);
        QVERIFY(set.isEmpty());
    }

    void lock_taken_by_one_refuses_the_other()
    {
        KOR_XML_QUERY_INTERFACE first(nullptr, QString(), false, false);
        KOR_XML_QUERY_INTERFACE second(nullptr, QString(), false, false);
        QString error;
        QString holder;
        QVERIFY(!second.is_database_locked(b_db, holder));
        QVERIFY2(first.lock_database(error, a_db), qPrintable(error));
        QVERIFY(!second.lock_database(error, b_db));
        QVERIFY2(error.contains(QLatin1String("locked by")), qPrintable(error));
        QVERIFY(second.is_database_locked(b_db, holder));
        QVERIFY2(holder.contains(QLatin1String("_a-")), qPrintable(holder)); // a's workspace
        QVERIFY(!second.unlock_database(b_db));
        QVERIFY(first.unlock_database(a_db));
        QVERIFY(!second.is_database_locked(b_db, holder));
        QVERIFY2(second.lock_database(error, b_db), qPrintable(error));
        QVERIFY(second.unlock_database(b_db));
    }

    void submit_then_sync_shows_the_change()
    {
        GIT_SANDBOX::write(in(a_db, QStringLiteral("units.xml")), "<units>a</units>\n");
        GIT_SANDBOX::write(in(a_db, QStringLiteral("heroes.xml")), "<heroes/>\n");
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QString error;
        QVERIFY2(query.lock_for_submit(error, a_db, QString()), qPrintable(error));
        QVERIFY2(query.lock_for_submit(error, a_db, QString()), qPrintable(error)); // locked already
        QVERIFY2(query.submit_locked(error, QStringLiteral("Units and heroes"), a_db), qPrintable(error));
        // Afterwards nothing is reported changed.
        QSet<QString> set;
        query.get_changed_files(set, a_db);
        QVERIFY(set.isEmpty());
        QVERIFY(query.have_latest(a_db));
        QVERIFY(!query.submit_locked(error, QStringLiteral("Again"), a_db));

        QVERIFY(!query.have_latest(b_db));
        sync(b_db);
        QVERIFY(query.have_latest(b_db));
        QCOMPARE(GIT_SANDBOX::read(in(b_db, QStringLiteral("units.xml"))), QByteArray("<units>a</units>\n"));
        QCOMPARE(GIT_SANDBOX::read(in(b_db, QStringLiteral("heroes.xml"))), QByteArray("<heroes/>\n"));
    }

    // The commands file describes the change being prepared: after a submit
    // the next schema change starts it afresh instead of repeating the old
    // commands in the next revision.
    void commands_file_starts_afresh_after_a_submit()
    {
        const QString commands = in(a_db, QStringLiteral("update_commands.txt"));
        auto add_table = [&](const QString& name) {
            KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
            QVERIFY(engine.connect_without_merge(a_db, false).isEmpty());
            const auto schema = TEST_DATABASE_BUILDER::make_schema(name, {TEST_FIELD::key(QStringLiteral("key"))});
            QVERIFY(engine.add_table(*schema, QString(), QString()).isEmpty());
            QVERIFY(engine.disconnect().isEmpty());
        };
        add_table(QStringLiteral("heroes"));
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QString error;
        QVERIFY2(query.lock_for_submit(error, a_db, QString()), qPrintable(error));
        QVERIFY2(query.submit_locked(error, QStringLiteral("Heroes"), a_db), qPrintable(error));
        QVERIFY(GIT_SANDBOX::read(commands).contains("heroes"));

        add_table(QStringLiteral("villains"));
        const QByteArray after = GIT_SANDBOX::read(commands);
        QVERIFY(after.contains("villains"));
        QVERIFY2(!after.contains("heroes"), after.constData());

        // Not yet submitted: a further change adds to it.
        add_table(QStringLiteral("mercenaries"));
        QVERIFY(GIT_SANDBOX::read(commands).contains("villains"));
    }

    void submit_refuses_when_out_of_date_and_keeps_the_work()
    {
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QString error;
        GIT_SANDBOX::write(in(b_db, QStringLiteral("units.xml")), "<units>b</units>\n");
        QVERIFY(query.lock_for_submit(error, b_db, QString()));
        GIT_SANDBOX::write(in(a_db, QStringLiteral("units.xml")), "<units>a</units>\n");
        QVERIFY(query.lock_for_submit(error, a_db, QString()));
        QVERIFY(query.submit_locked(error, QStringLiteral("First"), a_db));

        QVERIFY(!query.submit_locked(error, QStringLiteral("Second"), b_db));
        QVERIFY2(error.contains(QLatin1String("out of date")), qPrintable(error));
        QCOMPARE(GIT_SANDBOX::read(in(b_db, QStringLiteral("units.xml"))), QByteArray("<units>b</units>\n"));
        QSet<QString> added;
        QVERIFY2(query.revert_locked(error, b_db, added), qPrintable(error));
        // Undoing the lock keeps the local content.
        QCOMPARE(GIT_SANDBOX::read(in(b_db, QStringLiteral("units.xml"))), QByteArray("<units>b</units>\n"));
        QSet<QString> set;
        query.get_changed_tables(set, b_db);
        QCOMPARE(sorted(set), QStringList{QStringLiteral("units")});
        QVERIFY(!query.submit_locked(error, QStringLiteral("Unlocked"), b_db));

        // A sync over the local edit leaves a merge to do.
        QVERIFY(!query.is_merge_required(b_db));
        sync(b_db);
        QVERIFY(query.is_merge_required(b_db));
        QCOMPARE(GIT_SANDBOX::read(in(b_db, QStringLiteral("units.xml"))), QByteArray("<units>b</units>\n"));
    }

    void revert_restores_exactly()
    {
        GIT_SANDBOX::write(in(a_db, QStringLiteral("units.xml")), "<units>edited</units>\n");
        GIT_SANDBOX::write(in(a_db, QStringLiteral("heroes.xml")), "<heroes/>\n");
        QVERIFY(QFile::remove(in(a_db, QStringLiteral("spells.xml"))));
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QString error;
        QVERIFY2(query.revert_changes(error, a_db, false), qPrintable(error));
        QCOMPARE(GIT_SANDBOX::read(in(a_db, QStringLiteral("units.xml"))), units_v1);
        QCOMPARE(GIT_SANDBOX::read(in(a_db, QStringLiteral("spells.xml"))), spells_v1);
        QVERIFY(!QFileInfo::exists(in(a_db, QStringLiteral("heroes.xml"))));
        QSet<QString> set;
        query.get_changed_files(set, a_db);
        QVERIFY(set.isEmpty());
        // The reverted work is kept aside.
        const QString safety = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
                               QStringLiteral("/orbin/safety");
        const QStringList copies = QDir(safety).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        QVERIFY(!copies.isEmpty());
        QCOMPARE(GIT_SANDBOX::read(safety + QLatin1Char('/') + copies.last() + QStringLiteral("/units.xml")),
                 QByteArray("<units>edited</units>\n"));
    }

    void diff_copy_at_an_older_change_matches_it()
    {
        QVERIFY(sandbox->push_from_seed(QStringLiteral("raw_data/db/units.xml"), "<units>2</units>\n",
                                        QStringLiteral("Second")));
        QString copy;
        {
            KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
            copy = query.create_db_copy_for_diff(a_db, QStringLiteral("1"));
            QVERIFY(!copy.isEmpty());
            QVERIFY(!copy.startsWith(a_db));
            QCOMPARE(query.create_db_copy_for_diff(a_db, QStringLiteral("1")), copy); // made once
            const QString newer = query.create_db_copy_for_diff(a_db, QStringLiteral("2"));
            QCOMPARE(GIT_SANDBOX::read(newer + QStringLiteral("/units.xml")),
                     QByteArray("<units>2</units>\n"));
            QVERIFY(query.create_db_copy_for_diff(a_db, QStringLiteral("abc")).isEmpty());
            QVERIFY(query.create_db_copy_for_diff(a_db, QStringLiteral("99")).isEmpty());
        }
        // It outlives the interface that made it.
        QCOMPARE(GIT_SANDBOX::read(copy + QStringLiteral("/units.xml")), units_v1);
        QVERIFY(QFileInfo::exists(copy + QStringLiteral("/Veld_validation.xml")));
        QVERIFY(QFileInfo::exists(copy + QStringLiteral("/Veld_schemas/spells.xml")));
        QCOMPARE(GIT_SANDBOX::read(in(a_db, QStringLiteral("units.xml"))), units_v1);
    }

    void directory_removal_is_submitted()
    {
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QString error;
        QVERIFY2(query.submit_directory_removal(error, in(a_db, QStringLiteral("old")),
                                                QStringLiteral("Old notes go")),
                 qPrintable(error));
        QVERIFY(!QFileInfo::exists(in(a_db, QStringLiteral("old/notes.txt"))));
        sync(b_db);
        QVERIFY(!QFileInfo::exists(in(b_db, QStringLiteral("old/notes.txt"))));
        QVERIFY(
            !query.submit_directory_removal(error, in(a_db, QStringLiteral("old")), QStringLiteral("Twice")));
    }

    void schema_requests_live_in_the_depot()
    {
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QString error;
        GIT_SANDBOX::write(in(a_db, QStringLiteral("update_commands.txt")), "add field hp\n");
        QVERIFY2(query.submit_schema_changes_request(error, a_db, QStringLiteral("more_hp"),
                                                     QStringLiteral("Please")),
                 qPrintable(error));
        QVERIFY(!query.submit_schema_changes_request(error, a_db, QStringLiteral("more_hp"),
                                                     QStringLiteral("Again")));
        sync(b_db);
        const QString request = in(b_db, QStringLiteral("schema_changes_requests/more_hp"));
        QVERIFY(QFileInfo::exists(request + QStringLiteral("/requested")));
        QCOMPARE(GIT_SANDBOX::read(request + QStringLiteral("/comments.txt")), QByteArray("Please"));
        QCOMPARE(GIT_SANDBOX::read(request + QStringLiteral("/update_commands.txt")),
                 QByteArray("add field hp\n"));

        QVERIFY2(
            query.submit_request_change(error, b_db, QStringLiteral("more_hp"), QStringLiteral("on hold")),
            qPrintable(error));
        QVERIFY(!QFileInfo::exists(request + QStringLiteral("/requested")));
        QVERIFY(QFileInfo::exists(request + QStringLiteral("/on hold")));
        QVERIFY(!query.submit_request_change(error, b_db, QStringLiteral("more_hp"), QStringLiteral("done")));
        QVERIFY(query.submit_request_change(error, b_db, QStringLiteral("more_hp"),
                                            QStringLiteral("<<deleted>>")));
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
        const QString plain = sandbox->path(QStringLiteral("plain/db"));
        GIT_SANDBOX::write(plain + QStringLiteral("/units.xml"), units_v1);
        const QString db = offline ? a_db : plain;
        KOR_DB_FILE::set_single_db_mode(offline);
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QSet<QString> set;
        GIT_SANDBOX::write(in(db, QStringLiteral("units.xml")), "<units>edited</units>\n");
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
        QVERIFY(query.create_db_copy_for_diff(db, QStringLiteral("1")).isEmpty());
        KOR_DB_FILE::set_single_db_mode(false);
        // Nothing local was touched.
        QCOMPARE(GIT_SANDBOX::read(in(db, QStringLiteral("units.xml"))),
                 QByteArray("<units>edited</units>\n"));
    }
};

QTEST_GUILESS_MAIN(TEST_KOR_WORKSPACE)
#include "test_kor_workspace.moc"
