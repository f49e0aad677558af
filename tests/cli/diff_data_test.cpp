// The comparison of two databases: the table groups by file hash, the
// record comparison by uuid, and the comparison of copies fetched at
// changelists of a sample project's depot.

#include "diff_table_scan.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_io.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "sample_layout.h"
#include "sample_project.h"
#include "test_folder.h"
#include "test_helpers.h"
#include "test_rows.h"
#include "veld_diff_data.h"
#include "veld_diff_session.h"
#include "veld_table_diff_data.h"

#include <QtTest>

#include <memory>

using ORBIN_TEST::row;

namespace
{
// The session and the user, as the window layer will answer them.
class FAKE_SESSION : public VELD_DIFF_SESSION
{
public:
    explicit FAKE_SESSION(const QString& database) : database(database) {}

    bool is_connected() const override { return engine.is_connected(); }
    bool connect_without_merge() override { return engine.connect_without_merge(database, false).isEmpty(); }
    QString database_path() const override { return database; }
    QString disconnect() override
    {
        ++disconnects;
        return engine.is_connected() ? engine.disconnect() : "Database is not connected";
    }
    KOR_XML_QUERY_INTERFACE* query_interface() const override { return &engine; }
    PROGRESS_CALLBACK* progress_callback() const override { return nullptr; }
    bool ask(const QString& title, const QString&) override
    {
        asked.append(title);
        return answers.isEmpty() ? false : answers.takeFirst();
    }
    void warn(const QString& title, const QString& text) override { warnings.append(title + ": " + text); }

    QString database;
    mutable KOR_XML_QUERY_INTERFACE engine{nullptr, QString(), false, false};
    QList<bool> answers;
    QStringList asked;
    QStringList warnings;
    int disconnects = 0;
};

const QByteArray marker = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<veld_database format=\"1\"/>\n";

// "a.xml=text;b.xml=text" into a database folder.
void write_folder(const QString& folder, const QString& files)
{
    QVERIFY(ORBIN_TEST::write_file(folder + "/Veld_validation.xml", marker));
    for (const QString& file : files.split(QChar(';'), Qt::SkipEmptyParts))
        QVERIFY(ORBIN_TEST::write_file(folder + QChar('/') + file.section(QChar('='), 0, 0),
                                       file.section(QChar('='), 1).toUtf8()));
}

QStringList sorted(const QSet<QString>& set)
{
    QStringList list(set.begin(), set.end());
    list.sort();
    return list;
}

// "key!:text,cost:integer": '!' marks a key field.
std::unique_ptr<KOR_TABLE_SCHEMA> schema_of(const QString& fields)
{
    QByteArray xml = "<table_schema name=\"t\">";
    for (const QString& field : fields.split(QChar(',')))
    {
        const QString name = field.section(QChar(':'), 0, 0);
        xml += "<field name=\"" + name.chopped(name.endsWith(QChar('!')) ? 1 : 0).toUtf8() + "\" type=\"" +
               field.section(QChar(':'), 1).toUtf8() + "\"" +
               (name.endsWith(QChar('!')) ? " primary_key=\"true\"" : "") + "/>";
    }
    xml += "</table_schema>";
    std::unique_ptr<KOR_TABLE_SCHEMA> schema;
    QString error;
    if (!KOR_TABLE_IO::read_schema_bytes(error, xml, "schema", schema))
        qWarning("%s", qPrintable(error));
    return schema;
}

// "1:key=a,cost=5;2:key=b": the number is the record's uuid.
KOR_TABLE_DATA table_of(const KOR_TABLE_SCHEMA& schema, const QString& records)
{
    QByteArray xml = "<table name=\"t\">";
    for (const QString& record : records.split(QChar(';'), Qt::SkipEmptyParts))
    {
        xml += "<record uuid=\"00000000-0000-0000-0000-" +
               record.section(QChar(':'), 0, 0).rightJustified(12, QChar('0')).toUtf8() + "\">";
        for (const QString& value : record.section(QChar(':'), 1).split(QChar(',')))
        {
            const QByteArray name = value.section(QChar('='), 0, 0).toUtf8();
            xml += "<" + name + ">" + value.section(QChar('='), 1).toUtf8() + "</" + name + ">";
        }
        xml += "</record>";
    }
    xml += "</table>";
    KOR_TABLE_DATA table(&schema);
    QString error;
    if (!KOR_TABLE_IO::read_table_bytes(error, xml, "table", schema, table))
        qWarning("%s", qPrintable(error));
    return table;
}

QStringList keys_of(const KOR_TABLE_DATA& table, const QSet<QUuid>& uuids)
{
    QStringList keys;
    for (const QUuid& uuid : uuids)
        keys.append(table.record_by_uuid(uuid)->key());
    keys.sort();
    return keys;
}
} // namespace

class DIFF_DATA_TEST : public QObject
{
    Q_OBJECT

    TEST_FOLDER m_folder;
    SAMPLE_LAYOUT m_layout;

    void make_project()
    {
        if (!m_layout.database.isEmpty())
            return;
        const QString error = SAMPLE_PROJECT::generate_small(m_folder.file("project"), &m_layout);
        QVERIFY2(error.isEmpty(), qPrintable(error));
    }

    void compare_changes_3_and_4(VELD_DIFF_DATA& diff)
    {
        diff.set_db1_path(m_layout.database);
        diff.set_db1_changelist("3");
        diff.set_db2_path(m_layout.database);
        diff.set_db2_changelist("4");
    }

private slots:
    void scan_sorts_tables_into_groups_data()
    {
        QTest::addColumn<QString>("db1");
        QTest::addColumn<QString>("db2");
        QTest::addColumn<QStringList>("tables");
        QTest::addColumn<QStringList>("differing");
        QTest::addColumn<QStringList>("only_in_1");
        QTest::addColumn<QStringList>("only_in_2");
        const QStringList none;
        row("identical", "a.xml=1;b.xml=2", "a.xml=1;b.xml=2", QStringList{"a", "b"}, none, none, none);
        row("same length, other bytes", "a.xml=ab;b.xml=2", "a.xml=ba;b.xml=2", QStringList{"a", "b"},
            QStringList{"a"}, none, none);
        row("only on one side", "a.xml=1;b.xml=2", "b.xml=2;c.xml=3", QStringList{"a", "b", "c"}, none,
            QStringList{"a"}, QStringList{"c"});
        row("files that are no tables", "t.xml=1;VeldFoo.xml=2;Veld_x.xml=3;upper.XML=4;notes.txt=5",
            "t.xml=1;upper.XML=5", QStringList{"t"}, none, none, none);
        row("an empty table file", "e.xml=", "e.xml=x", QStringList{"e"}, QStringList{"e"}, none, none);
    }

    void scan_sorts_tables_into_groups()
    {
        QFETCH(QString, db1);
        QFETCH(QString, db2);
        QFETCH(QStringList, tables);
        QFETCH(QStringList, differing);
        QFETCH(QStringList, only_in_1);
        QFETCH(QStringList, only_in_2);
        TEST_FOLDER folder;
        write_folder(folder.file("1"), db1);
        write_folder(folder.file("2"), db2);
        DIFF_TABLE_SCAN scan;
        QString error;
        QVERIFY2(scan.scan(error, folder.file("1"), folder.file("2"), false), qPrintable(error));
        QCOMPARE(scan.tables().keys(), tables);
        QCOMPARE(sorted(scan.tables_differing()), differing);
        QCOMPARE(sorted(scan.tables_only_in_db1()), only_in_1);
        QCOMPARE(sorted(scan.tables_only_in_db2()), only_in_2);
    }

    void large_tables_are_decided_by_database_1()
    {
        TEST_FOLDER folder;
        const QString db1 = folder.file("1");
        const QString db2 = folder.file("2");
        write_folder(db1, QString());
        write_folder(db2, QString());
        const qint64 limit = DIFF_TABLE_SCAN::LARGE_TABLE_BYTES;
        QVERIFY(ORBIN_TEST::write_file(db1 + "/at_limit.xml", QByteArray(int(limit), 'a')));
        QVERIFY(ORBIN_TEST::write_file(db2 + "/at_limit.xml", QByteArray(int(limit), 'b')));
        QVERIFY(ORBIN_TEST::write_file(db1 + "/over_limit.xml", QByteArray(int(limit + 1), 'a')));
        QVERIFY(ORBIN_TEST::write_file(db2 + "/over_limit.xml", "b"));
        QVERIFY(ORBIN_TEST::write_file(db1 + "/grown.xml", QByteArray(1000, 'a')));
        QVERIFY(ORBIN_TEST::write_file(db2 + "/grown.xml", QByteArray(int(limit + 1), 'a')));

        DIFF_TABLE_SCAN scan;
        QString error;
        QVERIFY(scan.scan(error, db1, db2, false));
        QCOMPARE(scan.tables().keys(), (QStringList{"at_limit", "grown"}));
        QCOMPARE(sorted(scan.tables_differing()), (QStringList{"at_limit", "grown"}));
        QCOMPARE(sorted(scan.large_tables()), QStringList{"over_limit"});
        QVERIFY(scan.tables_only_in_db2().isEmpty());

        QVERIFY(scan.scan(error, db1, db2, true));
        QCOMPARE(sorted(scan.tables_differing()), (QStringList{"at_limit", "grown", "over_limit"}));
        QVERIFY(scan.large_tables().isEmpty());
    }

    void scan_names_the_folder_without_a_marker()
    {
        TEST_FOLDER folder;
        write_folder(folder.file("db"), "a.xml=1");
        folder.make_folder("empty");
        DIFF_TABLE_SCAN scan;
        QString error;
        QVERIFY(!scan.scan(error, folder.file("empty"), folder.file("empty"), true));
        QCOMPARE(error, "Invalid path specified for db 1 (no Veld_validation.xml)");
        QVERIFY(!scan.scan(error, folder.file("db"), folder.file("empty"), true));
        QCOMPARE(error, "Invalid path specified for db 2 (no Veld_validation.xml)");
        QVERIFY(scan.tables().isEmpty());
    }

    void records_compare_by_uuid_data()
    {
        QTest::addColumn<QString>("schema1");
        QTest::addColumn<QString>("schema2");
        QTest::addColumn<QString>("records1");
        QTest::addColumn<QString>("records2");
        QTest::addColumn<QStringList>("only_in_1");
        QTest::addColumn<QStringList>("only_in_2");
        QTest::addColumn<QStringList>("differing");
        QTest::addColumn<QStringList>("fields");
        const QString plain = "key!:text,cost:integer";
        const QStringList none, a{"a"};
        row("the same records", plain, plain, "1:key=a,cost=5;2:key=b,cost=6",
            "2:key=b,cost=6;1:key=a,cost=5", none, none, none, none);
        row("same key, other uuid", plain, plain, "1:key=a,cost=5", "2:key=a,cost=5", a, a, none, none);
        row("a new key, same uuid", plain, plain, "1:key=a,cost=5", "1:key=z,cost=5", none, none, a,
            QStringList{"key"});
        row("two values differ", plain, plain, "1:key=a,cost=5;2:key=b,cost=1",
            "1:key=a,cost=6;2:key=b,cost=1", none, none, a, QStringList{"cost"});
        row("field names in another case", plain, "key!:text,Cost:integer", "1:key=a,cost=5",
            "1:key=a,Cost=5", none, none, none, none);
        row("integer 1 and text 1", plain, "key!:text,cost:text", "1:key=a,cost=1", "1:key=a,cost=1", none,
            none, none, none);
        const QString measured = "key!:text,weight:double,seen:date_time";
        row("-0 and 0 show one text", measured, measured, "1:key=a,weight=-0,seen=2024-01-01T00:00:00.000Z",
            "1:key=a,weight=0,seen=2024-01-01T00:00:00.000Z", none, none, none, none);
        row("a millisecond later", measured, measured, "1:key=a,weight=1.5,seen=2024-01-01T00:00:00.000Z",
            "1:key=a,weight=1.5,seen=2024-01-01T00:00:00.001Z", none, none, a, QStringList{"seen"});
        row("a field more", plain, "key!:text,cost:integer,note:text", "1:key=a,cost=5", "1:key=a,cost=5",
            none, none, a, QStringList{"note"});
    }

    void records_compare_by_uuid()
    {
        QFETCH(QString, schema1);
        QFETCH(QString, schema2);
        QFETCH(QString, records1);
        QFETCH(QString, records2);
        QFETCH(QStringList, only_in_1);
        QFETCH(QStringList, only_in_2);
        QFETCH(QStringList, differing);
        QFETCH(QStringList, fields);
        const auto first_schema = schema_of(schema1);
        const auto second_schema = schema_of(schema2);
        QVERIFY(first_schema && second_schema);
        const KOR_TABLE_DATA table1 = table_of(*first_schema, records1);
        const KOR_TABLE_DATA table2 = table_of(*second_schema, records2);
        VELD_TABLE_DIFF_DATA diff(&table1, &table2, "t");
        diff.process_table_diff();
        QCOMPARE(keys_of(table1, diff.records_only_in_db1()), only_in_1);
        QCOMPARE(keys_of(table2, diff.records_only_in_db2()), only_in_2);
        QCOMPARE(keys_of(table1, diff.records_differing()), differing);
        if (!diff.records_differing().isEmpty())
            QCOMPARE(diff.differing_fields(*diff.records_differing().begin()), fields);
        for (const QUuid& uuid : diff.records_only_in_db1())
            QVERIFY(diff.differing_fields(uuid).isEmpty());
    }

    void copies_at_changelists_are_compared()
    {
        make_project();
        FAKE_SESSION session(m_layout.database);
        QVERIFY(session.connect_without_merge());
        session.answers = {true};
        VELD_DIFF_DATA diff(&session, false, false);
        QSignalSpy statuses(&diff, &VELD_DIFF_DATA::statusUpdate);
        compare_changes_3_and_4(diff);
        QVERIFY(diff.process_diff());
        QCOMPARE(session.asked, QStringList{"Disconnect Required"});
        QCOMPARE(session.disconnects, 1);
        QVERIFY(!session.is_connected());
        QCOMPARE(statuses.count(), 1);
        QCOMPARE(statuses.at(0).at(0).toString(), "Database Disconnected!");
        QVERIFY(diff.db1_directory() != diff.db2_directory());
        // Change 4 was a balance pass on these two tables, and nothing else.
        QCOMPARE(sorted(diff.tables_differing()), (QStringList{"land_units", "main_units"}));
        QVERIFY(diff.tables_only_in_db1().isEmpty() && diff.tables_only_in_db2().isEmpty());
        QVERIFY(diff.tables().size() > 40);

        VELD_TABLE_DIFF_DATA table(&diff, "main_units");
        QVERIFY(table.has_both_tables());
        table.process_table_diff();
        QVERIFY(!table.records_differing().isEmpty());
        QVERIFY(table.records_only_in_db1().isEmpty() && table.records_only_in_db2().isEmpty());
        for (const QUuid& uuid : table.records_differing())
            QVERIFY(!table.differing_fields(uuid).isEmpty());
        QVERIFY(diff.db1_query_interface()->is_read_only());
    }

    void answering_no_keeps_the_connection()
    {
        make_project();
        FAKE_SESSION session(m_layout.database);
        QVERIFY(session.connect_without_merge());
        VELD_DIFF_DATA diff(&session, false, false);
        QSignalSpy statuses(&diff, &VELD_DIFF_DATA::statusUpdate);
        compare_changes_3_and_4(diff);
        session.answers = {false};
        QVERIFY(!diff.process_diff());
        QCOMPARE(statuses.count(), 1);
        QCOMPARE(statuses.at(0).at(0).toString(), "Database diff aborted");
        QCOMPARE(session.disconnects, 0);
        QVERIFY(session.is_connected());

        // Without database 2's changelist nothing is asked at all.
        VELD_DIFF_DATA incomplete(&session, false, false);
        incomplete.set_db2_path(m_layout.database);
        QVERIFY(!incomplete.process_diff());
        QCOMPARE(session.asked.size(), 1);
    }

    void a_local_database_1_connects_when_asked()
    {
        make_project();
        FAKE_SESSION session(m_layout.database);
        session.answers = {true};
        VELD_DIFF_DATA diff(&session, true, false);
        QSignalSpy statuses(&diff, &VELD_DIFF_DATA::statusUpdate);
        diff.set_db2_path(m_layout.database);
        diff.set_db2_changelist("3");
        QVERIFY(diff.process_diff());
        QCOMPARE(session.asked, QStringList{"Disconnected"});
        QCOMPARE(statuses.count(), 1);
        QCOMPARE(statuses.at(0).at(0).toString(),
                 "Connection Established! - DB path is '" + m_layout.database + "'");
        QCOMPARE(diff.db1_directory(), session.engine.connect_string());
        QCOMPARE(diff.db1_query_interface(), &session.engine);
        QCOMPARE(sorted(diff.tables_differing()), (QStringList{"land_units", "main_units"}));
        QVERIFY(session.warnings.isEmpty());
    }
};

QTEST_GUILESS_MAIN(DIFF_DATA_TEST)
#include "diff_data_test.moc"
