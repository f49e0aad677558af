// Saved queries: the Veld_queries.xml file, and the query interface reading
// it on connect and running its queries.

#include "kor_query_results.h"
#include "kor_query_schema.h"
#include "kor_query_store.h"
#include "kor_xml_query_interface.h"
#include "test_database_builder.h"

#include <QtTest/QtTest>

class TEST_KOR_QUERY_STORE : public QObject
{
    Q_OBJECT

private slots:
    void saving_is_sorted_and_stable();
    void saved_queries_read_back();
    void saving_refuses_what_cannot_be_read_back_data();
    void saving_refuses_what_cannot_be_read_back();
    void loading_reports_problems_data();
    void loading_reports_problems();
    void the_interface_runs_saved_queries();

private:
    QTemporaryDir m_folder;
};

namespace
{
QString read_all(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll());
}

QString write_all(const QString& folder, const QString& text)
{
    QDir().mkpath(folder);
    const QString path = QDir(folder).filePath(KOR_QUERY_STORE::file_name());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return QString();
    file.write(text.toUtf8());
    return path;
}
}

void TEST_KOR_QUERY_STORE::saving_is_sorted_and_stable()
{
    const QString folder = m_folder.filePath(QStringLiteral("stable"));
    QDir().mkpath(folder);
    const KOR_QUERY_SCHEMA units(QStringLiteral("units"), QStringLiteral("SELECT [units.key] FROM [units]"));
    const KOR_QUERY_SCHEMA big(QStringLiteral("Big armies"),
                               QStringLiteral("SELECT [units.key]\nFROM [units]\nWHERE [units.men] > 100 AND "
                                              "[units.notes] <> '<&\"''>'"),
                               QStringLiteral("More than a hundred men"));
    QCOMPARE(KOR_QUERY_STORE::save(folder, {&units, &big}), QString());
    const QString path = QDir(folder).filePath(QStringLiteral("Veld_queries.xml"));
    const QString expected = QStringLiteral(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<queries version=\"1\">\n"
        "  <query name=\"Big armies\">\n"
        "    <description>More than a hundred men</description>\n"
        "    <sql>SELECT [units.key]\nFROM [units]\nWHERE [units.men] &gt; 100 AND [units.notes] &lt;&gt; "
        "'&lt;&amp;&quot;''&gt;'</sql>\n"
        "  </query>\n"
        "  <query name=\"units\">\n"
        "    <sql>SELECT [units.key] FROM [units]</sql>\n"
        "  </query>\n"
        "</queries>\n");
    QCOMPARE(read_all(path), expected);

    // The order given does not matter.
    QCOMPARE(KOR_QUERY_STORE::save(folder, {&big, &units}), QString());
    QCOMPARE(read_all(path), expected);
}

void TEST_KOR_QUERY_STORE::saved_queries_read_back()
{
    const QString folder = m_folder.filePath(QStringLiteral("round_trip"));
    QDir().mkpath(folder);
    const KOR_QUERY_SCHEMA a(QStringLiteral("zeta"), QStringLiteral("SELECT *\r\nFROM [t] WHERE [t.a] = 'x\ty'"));
    const KOR_QUERY_SCHEMA b(QStringLiteral("Alpha & Omega <1>"), QStringLiteral("SELECT [t.a] FROM [t]"),
                             QStringLiteral("Ünïcödé \"quoted\""));
    QCOMPARE(KOR_QUERY_STORE::save(folder, {&a, &b}), QString());

    KOR_QUERY_STORE store;
    QStringList warnings;
    store.load(folder, warnings);
    QCOMPARE(warnings, QStringList());
    QCOMPARE(store.queries().keys(), QStringList({"Alpha & Omega <1>", "zeta"}));
    QCOMPARE(store.query(QStringLiteral("Alpha & Omega <1>"))->statement(), b.statement());
    QCOMPARE(store.query(QStringLiteral("Alpha & Omega <1>"))->description(), b.description());
    QCOMPARE(store.query(QStringLiteral("zeta"))->get_query_name(), QStringLiteral("zeta"));
    QVERIFY(store.query(QStringLiteral("zeta"))->description().isEmpty());
    // XML turns a carriage return and line feed into a line feed; the
    // statement means the same.
    QCOMPARE(store.query(QStringLiteral("zeta"))->statement(), QStringLiteral("SELECT *\nFROM [t] WHERE [t.a] = 'x\ty'"));
    QVERIFY(!store.query(QStringLiteral("ZETA")));

    store.clear();
    QVERIFY(store.queries().isEmpty());
}

void TEST_KOR_QUERY_STORE::saving_refuses_what_cannot_be_read_back_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("error");

    QTest::newRow("no name") << "" << "SELECT * FROM [t]" << "A saved query needs a name";
    QTest::newRow("blank name") << "  " << "SELECT * FROM [t]" << "A saved query needs a name";
    QTest::newRow("spaces around the name") << " a " << "SELECT * FROM [t]"
                                            << "The query name ' a ' begins or ends with spaces";
    QTest::newRow("line break in the name") << "a\nb" << "SELECT * FROM [t]"
                                            << "The query 'a\nb' holds a control character that cannot be saved";
    QTest::newRow("control character in the statement")
        << "a" << QStringLiteral("SELECT * FROM [t] WHERE [t.a] = '") + QChar(0x01) + "'"
        << "The query 'a' holds a control character that cannot be saved";
    QTest::newRow("stray surrogate") << "a" << QStringLiteral("SELECT '") + QChar(0xD800) + "'"
                                     << "The query 'a' holds a control character that cannot be saved";
}

void TEST_KOR_QUERY_STORE::saving_refuses_what_cannot_be_read_back()
{
    QFETCH(QString, name);
    QFETCH(QString, statement);
    QFETCH(QString, error);

    const QString folder = m_folder.filePath(QStringLiteral("refused_") + QString::number(qHash(error)));
    QDir().mkpath(folder);
    const KOR_QUERY_SCHEMA fine(QStringLiteral("fine"), QStringLiteral("SELECT * FROM [t]"));
    const KOR_QUERY_SCHEMA query(name, statement);
    QCOMPARE(KOR_QUERY_STORE::save(folder, {&fine, &query}), error);
    QVERIFY(!QFile::exists(QDir(folder).filePath(KOR_QUERY_STORE::file_name())));

    const KOR_QUERY_SCHEMA twin(QStringLiteral("fine"), QStringLiteral("SELECT [t.a] FROM [t]"));
    QCOMPARE(KOR_QUERY_STORE::save(folder, {&fine, &twin}), QStringLiteral("Two saved queries are named 'fine'"));
}

void TEST_KOR_QUERY_STORE::loading_reports_problems_data()
{
    QTest::addColumn<QString>("contents");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("warnings");

    const QString head = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<queries version=\"1\">\n");
    const QString good = QStringLiteral("  <query name=\"good\"><sql>SELECT * FROM [t]</sql></query>\n");
    const QString tail = QStringLiteral("</queries>\n");

    QTest::newRow("all well") << head + good + tail << QStringList{"good"} << QStringList{};
    QTest::newRow("empty file of queries") << head + tail << QStringList{} << QStringList{};
    QTest::newRow("nameless query")
        << head + good + "  <query><sql>SELECT * FROM [t]</sql></query>\n" + tail << QStringList{"good"}
        << QStringList{"@, line 4: a query without a name is skipped"};
    QTest::newRow("second query of a name")
        << head + good + "  <query name=\"good\"><sql>SELECT [t.a] FROM [t]</sql></query>\n" + tail
        << QStringList{"good"} << QStringList{"@, line 4: a second query named 'good' is skipped"};
    QTest::newRow("query without statement")
        << head + good + "  <query name=\"empty\"><description>x</description></query>\n" + tail
        << QStringList{"good"} << QStringList{"@, line 4: the query 'empty' has no <sql> statement and is skipped"};
    QTest::newRow("statement that does not read is kept")
        << head + "  <query name=\"bad\">\n    <sql>SELECT FROM [t]</sql>\n  </query>\n" + good + tail
        << QStringList{"bad", "good"}
        << QStringList{"@, line 3: the query 'bad' does not read: Syntax error at position 8: expected a field "
                       "such as [table.field] or * but found 'FROM'"};
    QTest::newRow("unknown elements are skipped")
        << head + "  <folder name=\"x\"><query name=\"inner\"/></folder>\n"
                  "  <query name=\"good\"><owner>me</owner><sql>SELECT * FROM [t]</sql></query>\n" + tail
        << QStringList{"good"} << QStringList{};
    QTest::newRow("newer format")
        << "<queries version=\"7\">\n" + good + tail << QStringList{"good"}
        << QStringList{"@, line 1: written by a newer version (format 7); reading what is known"};
}

void TEST_KOR_QUERY_STORE::loading_reports_problems()
{
    QFETCH(QString, contents);
    QFETCH(QStringList, names);
    QFETCH(QStringList, warnings);

    const QString folder = m_folder.filePath(QStringLiteral("load_") + QTest::currentDataTag());
    const QString path = write_all(folder, contents);
    QVERIFY(!path.isEmpty());
    KOR_QUERY_STORE store;
    QStringList actual;
    store.load(folder, actual);
    QCOMPARE(store.queries().keys(), names);
    for (QString& warning : warnings)
        warning.replace(QLatin1Char('@'), QDir::toNativeSeparators(path));
    QCOMPARE(actual, warnings);
}

void TEST_KOR_QUERY_STORE::the_interface_runs_saved_queries()
{
    TEST_PROGRESS progress;
    TEST_DATABASE_BUILDER db(m_folder.filePath(QStringLiteral("db")), &progress);
    db.table(QStringLiteral("units"),
             {TEST_FIELD::key(QStringLiteral("key")), TEST_FIELD::plain(QStringLiteral("men"), KFT_INTEGER)})
        .record(QStringLiteral("units"), {{"key", "archers"}, {"men", 60}})
        .record(QStringLiteral("units"), {{"key", "hastati"}, {"men", 80}});
    QVERIFY2(db.ok(), qPrintable(db.error()));
    KOR_XML_QUERY_INTERFACE& database = db.query_interface();
    QVERIFY(database.get_query_schemas().isEmpty());

    const KOR_QUERY_SCHEMA small(QStringLiteral("Small units"),
                                 QStringLiteral("SELECT [units.key] FROM [units] WHERE [units.men] < 70"));
    const KOR_QUERY_SCHEMA broken(QStringLiteral("Broken"), QStringLiteral("SELECT [units.key] FORM [units]"));
    const KOR_QUERY_SCHEMA gone(QStringLiteral("Gone"), QStringLiteral("SELECT [old.key] FROM [old]"));
    QCOMPARE(KOR_QUERY_STORE::save(db.path(), {&small, &broken, &gone}), QString());
    progress.clear();
    db.reconnect();
    QVERIFY2(db.ok(), qPrintable(db.error()));

    // Loading warns about the statement that does not read, and goes on.
    QVERIFY(progress.texts(PROGRESS_CALLBACK::SEVERITY_WARNING)
                .contains(QLatin1String("the query 'Broken' does not read: Syntax error at position 20")));

    const QMap<QString, KOR_QUERY_SCHEMA*> queries = database.get_query_schemas();
    QCOMPARE(queries.keys(), QStringList({"Broken", "Gone", "Small units"}));
    QCOMPARE(database.get_query_schema(QStringLiteral("Small units")), queries.value(QStringLiteral("Small units")));
    QVERIFY(!database.get_query_schema(QStringLiteral("small units")));

    // The query file is no table.
    QMap<QString, bool> tables;
    database.get_table_names(tables);
    QCOMPARE(tables.keys(), QStringList{"units"});

    KOR_QUERY_RESULTS results;
    QString error;
    QVERIFY2(database.get_query_data(error, results, QStringLiteral("Small units")), qPrintable(error));
    QCOMPARE(results.record_count(), 1);
    QCOMPARE(results.value(0, 0).toString(), QStringLiteral("archers"));

    QVERIFY(!database.get_query_data(error, results, QStringLiteral("Broken")));
    QCOMPARE(error, QStringLiteral("Query 'Broken': Syntax error at position 20: expected ',' or FROM but found 'FORM'"));
    QCOMPARE(results.record_count(), 0);
    QVERIFY(!database.get_query_data(error, results, QStringLiteral("Gone")));
    QCOMPARE(error, QStringLiteral("Query 'Gone': Unknown table [old] at position 23"));
    QVERIFY(!database.get_query_data(error, results, QStringLiteral("Missing")));
    QCOMPARE(error, QStringLiteral("Unknown query 'Missing'"));

    // Disconnecting drops the queries; connecting reads them again.
    QCOMPARE(database.disconnect(), QString());
    QVERIFY(database.get_query_schemas().isEmpty());
    QVERIFY(!database.get_query_schema(QStringLiteral("Small units")));
    QCOMPARE(database.connect_without_merge(db.path(), false), QString());
    QCOMPARE(database.get_query_schemas().size(), 3);

    // A damaged file costs the queries, not the connection.
    QCOMPARE(database.disconnect(), QString());
    QVERIFY(!write_all(db.path(), QStringLiteral("<queries>\n  <query name=\"a\">\n</queries>\n")).isEmpty());
    progress.clear();
    QCOMPARE(database.connect_without_merge(db.path(), false), QString());
    QVERIFY(database.get_query_schemas().isEmpty());
    const QString warning = progress.texts(PROGRESS_CALLBACK::SEVERITY_WARNING);
    QVERIFY2(warning.contains(QLatin1String("Veld_queries.xml, line 3")), qPrintable(warning));
    QVERIFY2(warning.endsWith(QLatin1String("; no saved queries were loaded")), qPrintable(warning));
}

QTEST_GUILESS_MAIN(TEST_KOR_QUERY_STORE)
#include "kor_query_store_test.moc"
