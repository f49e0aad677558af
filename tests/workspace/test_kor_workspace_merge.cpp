// Merging two workspaces of one depot through the engine: databases built
// and edited with the engine's own operations.

#include "git_sandbox.h"

#include "test_database_builder.h"

#include "kor_field_data.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_xml_query_interface.h"

#include <QSignalSpy>
#include <QStandardPaths>
#include <QtTest/QtTest>

namespace
{
const QString units = "units";

// Runs one change of a record through a connected interface.
bool change_database(const QString& db, const std::function<QString(KOR_XML_QUERY_INTERFACE&)>& change)
{
    KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
    QString error = query.connect_without_merge(db, false);
    if (error.isEmpty() && query.begin_transaction(error, true))
    {
        error = change(query);
        if (error.isEmpty())
            query.end_transaction(error);
        else
            query.terminate_transaction();
    }
    query.disconnect();
    if (!error.isEmpty())
        qWarning().noquote() << error;
    return error.isEmpty();
}

bool set_value(const QString& db, const QString& key, const QString& field, const QVariant& value)
{
    return change_database(db, [&](KOR_XML_QUERY_INTERFACE& query) {
        KOR_RECORD_DATA* record = TEST_DATABASE_BUILDER::find_record(query, units, key);
        return record ? TEST_DATABASE_BUILDER::edit_record(query, units, record, {{field, value}})
                      : QStringLiteral("no record %1").arg(key);
    });
}

bool add_unit(const QString& db, const QString& key, int hp)
{
    return change_database(db, [&](KOR_XML_QUERY_INTERFACE& query) {
        return TEST_DATABASE_BUILDER::add_record(query, units, {{"key", key}, {"hp", hp}});
    });
}

QString value(const QString& db, const QString& key, const QString& field)
{
    KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
    if (!query.connect_without_merge(db, false).isEmpty())
        return "<no database>";
    const QString text = TEST_DATABASE_BUILDER::value_text(query, units, key, field);
    query.disconnect();
    return text;
}

bool submit(const QString& db, const QString& description)
{
    KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
    QString error;
    const bool done =
        query.lock_for_submit(error, db, QString()) && query.submit_locked(error, description, db);
    if (!done)
        qWarning().noquote() << error;
    return done;
}

QStringList lines_of(const QSignalSpy& spy)
{
    QStringList lines;
    for (const QList<QVariant>& arguments : spy)
        lines.append(arguments.first().toString());
    return lines;
}
} // namespace

class TEST_KOR_WORKSPACE_MERGE : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GIT_SANDBOX> sandbox;
    QString a_db;
    QString b_db;

private slots:
    void initTestCase()
    {
        if (!GIT_SANDBOX::available())
            QSKIP("git is not installed");
    }

    void init()
    {
        QDir(QDir::homePath() + QStringLiteral("/merge_log")).removeRecursively();
        sandbox = std::make_unique<GIT_SANDBOX>();
        QVERIFY(sandbox->create_empty_depot());
        {
            TEST_DATABASE_BUILDER builder(sandbox->seed() + QStringLiteral("/raw_data/db"));
            builder
                .table(units, {TEST_FIELD::key("key"), TEST_FIELD::plain("hp", KFT_INTEGER),
                               TEST_FIELD::plain("name", KFT_TEXT)})
                .record(units, {{"key", "archer"}, {"hp", 10}, {"name", "Archer"}})
                .record(units, {{"key", "knight"}, {"hp", 30}, {"name", "Knight"}});
            QVERIFY2(builder.ok(), qPrintable(builder.error()));
        }
        QVERIFY(sandbox->publish_seed("The database"));
        a_db = QFileInfo(sandbox->clone("a")).canonicalFilePath() + "/raw_data/db";
        b_db = QFileInfo(sandbox->clone("b")).canonicalFilePath() + "/raw_data/db";
    }

    void cleanup() { sandbox.reset(); }

    void edits_to_different_records_merge_cleanly()
    {
        QVERIFY(set_value(a_db, "archer", "hp", 20));
        QVERIFY(submit(a_db, "Stronger archers"));
        QVERIFY(set_value(b_db, "knight", "name", "Sir Knight"));

        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QVERIFY(!query.have_latest(b_db));
        QSignalSpy lines(&query, SIGNAL(mergeUpdate(QString)));
        QString error;
        QVERIFY2(query.basic_merge(error, b_db, KOR_QUERY_INTERFACE::GET_LATEST_MODE(1), false),
                 qPrintable(error));
        QVERIFY(!lines.isEmpty());
        QVERIFY(!lines_of(lines).join('\n').contains(QLatin1String("Conflict")));
        QSet<QString> touched;
        query.get_locally_edited_tables_edited_during_merge(touched);
        QCOMPARE(touched, QSet<QString>{units});
        QCOMPARE(value(b_db, "archer", "hp"), "20");
        QCOMPARE(value(b_db, "knight", "name"), "Sir Knight");
        QVERIFY(query.have_latest(b_db));
        QVERIFY(!query.is_merge_required(b_db));

        // The merged work goes in, and the other side sees both edits.
        QVERIFY(submit(b_db, "Knights are sirs"));
        QVERIFY(query.basic_merge(error, a_db, KOR_QUERY_INTERFACE::GET_LATEST_MODE(0), false));
        query.get_locally_edited_tables_edited_during_merge(touched);
        QVERIFY(touched.isEmpty());
        QCOMPARE(value(a_db, "knight", "name"), "Sir Knight");
        QCOMPARE(value(a_db, "archer", "hp"), "20");
    }

    void the_same_field_on_both_sides_keeps_the_local_value()
    {
        QVERIFY(set_value(a_db, "archer", "hp", 30));
        QVERIFY(submit(a_db, "Their value"));
        QVERIFY(set_value(b_db, "archer", "hp", 40));
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QSignalSpy lines(&query, SIGNAL(mergeUpdate(QString)));
        QString error;
        QVERIFY2(query.merge_for_checkin(error, b_db, KOR_QUERY_INTERFACE::GET_LATEST_MODE(2),
                                         "Database Editor", QString()),
                 qPrintable(error));
        QCOMPARE(value(b_db, "archer", "hp"), "40");
        const QString reported = lines_of(lines).join('\n');
        QVERIFY2(
            reported.contains(QLatin1String(
                "Conflict in table units, record 'archer', field 'hp': local '40', depot '30' (was '10')")),
            qPrintable(reported));

        // The log and the copy of the local table lie in the home folder.
        const QString logs = QDir::homePath() + QStringLiteral("/merge_log");
        const QStringList folders = QDir(logs).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        QCOMPARE(folders.size(), 1);
        const QString folder = logs + QLatin1Char('/') + folders.first();
        QVERIFY(GIT_SANDBOX::read(folder + QStringLiteral("/merge.log")).contains("Conflict in table units"));
        QVERIFY(GIT_SANDBOX::read(folder + QStringLiteral("/yours__units.xml")).contains("40"));
        QVERIFY(QDir(folder)
                    .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
                    .isEmpty()); // flat, for the start-up clean-up
    }

    void a_key_added_on_both_sides_is_left_for_a_hand_merge()
    {
        QVERIFY(add_unit(a_db, "bowman", 5));
        QVERIFY(submit(a_db, "Bowmen"));
        QVERIFY(add_unit(b_db, "bowman", 7));
        const QByteArray before = GIT_SANDBOX::read(b_db + QStringLiteral("/units.xml"));
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QString error;
        QVERIFY(!query.basic_merge(error, b_db, KOR_QUERY_INTERFACE::GET_LATEST_MODE(1), false));
        QVERIFY2(error.contains(QLatin1String("units.xml")) && error.contains(QLatin1String("merge_log")),
                 qPrintable(error));
        // Nothing local is lost, and the merge is still owed.
        QCOMPARE(GIT_SANDBOX::read(b_db + QStringLiteral("/units.xml")), before);
        QVERIFY(query.is_merge_required(b_db));
        QVERIFY(!query.merge_for_checkin(error, b_db, KOR_QUERY_INTERFACE::GET_LATEST_MODE(2),
                                         "Database Editor", QString()));
    }

    void changed_fields_are_the_local_changes_of_a_table()
    {
        QVERIFY(set_value(b_db, "archer", "hp", 11));
        QVERIFY(add_unit(b_db, "bowman", 7));
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QVERIFY(query.changed_fields(units).isEmpty()); // never connected
        QVERIFY(query.connect_without_merge(b_db, false).isEmpty());
        QString error;
        const KOR_TABLE_DATA* table = query.get_table_data(error, units);
        QVERIFY(table);
        const KOR_CHANGED_FIELDS changes = query.changed_fields(units);
        QCOMPARE(changes.size(), 2);
        QCOMPARE(changes.value(table->record_by_key("archer")->uuid()),
                 (QList<QPair<QString, int>>{qMakePair(QStringLiteral("hp"), 2)}));
        QCOMPARE(changes.value(table->record_by_key("bowman")->uuid()),
                 (QList<QPair<QString, int>>{qMakePair(QString(), 0)}));
        QVERIFY(query.changed_fields("no_such_table").isEmpty());
        query.disconnect();
    }

    void without_a_depot_a_merge_only_says_so()
    {
        const QString plain = sandbox->path("plain/db");
        QVERIFY(QDir().mkpath(QFileInfo(plain).absolutePath()));
        QVERIFY(QFile::rename(sandbox->seed() + QStringLiteral("/raw_data/db"), plain));
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QSignalSpy lines(&query, SIGNAL(mergeUpdate(QString)));
        QString error;
        QVERIFY(query.basic_merge(error, plain, KOR_QUERY_INTERFACE::GET_LATEST_MODE(1), false));
        QVERIFY(
            lines_of(lines).join('\n').contains(QLatin1String("not in a workspace under version control")));
        QVERIFY(!query.merge_for_checkin(error, plain, KOR_QUERY_INTERFACE::GET_LATEST_MODE(2),
                                         "Database Editor", QString()));
        // Mirrors and other interfaces connect through a merge: they still connect.
        QVERIFY(query.connect(plain, QString(), KOR_QUERY_INTERFACE::GET_LATEST_MODE(2), false).isEmpty());
        QVERIFY(
            !query.basic_merge(error, plain, KOR_QUERY_INTERFACE::GET_LATEST_MODE(1), false)); // connected
        query.disconnect();
    }

    void an_unreachable_depot_leaves_the_copy_as_it_was()
    {
        QVERIFY(set_value(b_db, "archer", "hp", 12));
        const QByteArray before = GIT_SANDBOX::read(b_db + QStringLiteral("/units.xml"));
        QVERIFY(QFile::rename(sandbox->depot(), sandbox->depot() + QStringLiteral(".moved")));
        KOR_XML_QUERY_INTERFACE query(nullptr, QString(), false, false);
        QString error;
        QVERIFY(!query.basic_merge(error, b_db, KOR_QUERY_INTERFACE::GET_LATEST_MODE(1), false));
        QVERIFY2(error.contains(QLatin1String("latest revision")), qPrintable(error));
        QCOMPARE(GIT_SANDBOX::read(b_db + QStringLiteral("/units.xml")), before);
        QVERIFY(!query.have_latest(b_db));
        QVERIFY(!query.lock_database(error, b_db));
    }
};

QTEST_GUILESS_MAIN(TEST_KOR_WORKSPACE_MERGE)
#include "test_kor_workspace_merge.moc"
