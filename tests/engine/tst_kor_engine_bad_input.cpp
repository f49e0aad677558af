// Damaged and hand-made files: the engine says which file, where and why,
// through the error text and the progress callback, and never crashes.

#include "kor_field_data.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_xml_query_interface.h"
#include "test_database_builder.h"
#include "test_helpers.h"

#include <QtTest>

namespace
{
const auto add = &TEST_DATABASE_BUILDER::add_record;

const QByteArray HEADER = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
const QByteArray UUID_A = "0b0c5c9e-0d0e-4a5b-8c1d-000000000001";
const QByteArray UUID_B = "0b0c5c9e-0d0e-4a5b-8c1d-000000000002";

QByteArray record(const QByteArray& uuid, const QByteArray& fields)
{
    return "  <record uuid=\"" + uuid + "\">\n" + fields + "  </record>\n";
}

// A units table file around `body`.
QByteArray units(const QByteArray& body)
{
    return HEADER + "<table name=\"units\">\n" + body + "</table>\n";
}
} // namespace

class TST_KOR_ENGINE_BAD_INPUT : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void damaged_table_files_are_reported_data();
    void damaged_table_files_are_reported();
    void damaged_schemas_stop_the_connection_data();
    void damaged_schemas_stop_the_connection();
    void a_folder_without_marker_is_no_database();
    void references_to_missing_records_are_warnings_with_lines();
    void records_without_uuids_get_them();
    void hand_made_files_with_comments_read_the_same();

private:
    QString path(const QString& file) const { return m_db->path() + QLatin1Char('/') + file; }

    std::unique_ptr<QTemporaryDir> m_folder;
    TEST_PROGRESS m_progress;
    std::unique_ptr<TEST_DATABASE_BUILDER> m_db;
};

void TST_KOR_ENGINE_BAD_INPUT::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_progress.clear();
    m_db = std::make_unique<TEST_DATABASE_BUILDER>(m_folder->filePath("db"), &m_progress);
    m_db->table("factions", {TEST_FIELD::key("key")})
        .table("units", {TEST_FIELD::key("unit"), TEST_FIELD::plain("men", KFT_INTEGER),
                         TEST_FIELD::plain("faction", KFT_TEXT).refers_to("factions", "key")})
        .record("factions", {{"key", "rome"}});
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
    m_progress.clear();
}

void TST_KOR_ENGINE_BAD_INPUT::damaged_table_files_are_reported_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("where");
    QTest::addColumn<QString>("why");

    const QByteArray good = record(UUID_A, "    <unit>a</unit>\n    <men>1</men>\n");
    const QByteArray unit_a = "    <unit>a</unit>\n";
    QTest::newRow("truncated") << HEADER + "<table name=\"units\">\n" + good.left(40) << "line 3"
                               << "malformed XML";
    QTest::newRow("empty file") << QByteArray() << "units.xml" << "malformed XML";
    QTest::newRow("not xml") << QByteArray("\x00\x01\x02garbage", 10) << "units.xml" << "malformed XML";
    QTest::newRow("wrong root") << HEADER + "<tables name=\"units\"/>\n" << "line 2" << "not a table";
    QTest::newRow("another table") << HEADER + "<table name=\"factions\"/>\n"
                                   << "line 2" << "holds table 'factions'";
    QTest::newRow("unknown field") << units(record(UUID_A, unit_a + "    <horses>3</horses>\n")) << "line 5"
                                   << "field 'horses' is not in the schema";
    QTest::newRow("bad integer") << units(record(UUID_A, unit_a + "    <men>many</men>\n")) << "line 5"
                                 << "'many' is not a valid integer";
    QTest::newRow("integer overflow") << units(record(UUID_A, unit_a + "    <men>99999999999</men>\n"))
                                      << "line 5" << "not a valid integer";
    QTest::newRow("duplicate key") << units(record(UUID_A, unit_a) + record(UUID_B, unit_a)) << "line 6"
                                   << "key 'a' is used by two records";
    QTest::newRow("duplicate uuid") << units(record(UUID_A, unit_a) + record(UUID_A, "    <unit>b</unit>\n"))
                                    << "line" << "used by two records";
    QTest::newRow("bad uuid") << units(record("not-a-uuid", unit_a)) << "line 3" << "not a valid uuid";
    QTest::newRow("empty key") << units(record(UUID_A, "    <men>1</men>\n")) << "line 3"
                               << "empty primary key";
    QTest::newRow("field twice") << units(record(UUID_A, unit_a + "    <unit>b</unit>\n")) << "line 5"
                                 << "appears twice";
    QTest::newRow("element in a field") << units(record(UUID_A, "    <unit><b>a</b></unit>\n")) << "line 4"
                                        << "holds an element";
    QTest::newRow("stray element") << units("  <row/>\n") << "line 3" << "unexpected element <row>";
    QTest::newRow("stray text") << units("  hello\n") << "line 2" << "text outside a record";
    QTest::newRow("unknown record attribute")
        << units("  <record uuid=\"" + UUID_A + "\" colour=\"red\"><unit>a</unit></record>\n") << "line 3"
        << "unknown attribute 'colour'";
    QTest::newRow("bad approval state") << units(record(UUID_A, "    <unit approval_state=\"7\">a</unit>\n"))
                                        << "line 4" << "approval_state";
    QTest::newRow("bad modification time")
        << units("  <record uuid=\"" + UUID_A + "\" modified=\"yesterday\"><unit>a</unit></record>\n")
        << "line 3" << "modification time";
}

void TST_KOR_ENGINE_BAD_INPUT::damaged_table_files_are_reported()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, where);
    QFETCH(QString, why);
    QVERIFY(ORBIN_TEST::write_file(path("units.xml"), content));
    m_db->reconnect();
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
    QString error;
    QVERIFY(!m_db->query_interface().get_table_data(error, "units"));
    QVERIFY2(error.contains("units.xml"), qPrintable(error));
    QVERIFY2(error.contains(where), qPrintable(error));
    QVERIFY2(error.contains(why), qPrintable(error));
    QVERIFY(m_progress.texts(PROGRESS_CALLBACK::SEVERITY_ERROR).contains(why));
    // Asking again answers the same without another report.
    const int reports = m_progress.reports.size();
    QString again;
    QVERIFY(!m_db->query_interface().get_table_data(again, "units"));
    QCOMPARE(again, error);
    QCOMPARE(m_progress.reports.size(), reports);
    // The rest of the database is unharmed, and the bad table cannot be written over.
    QVERIFY(m_db->query_interface().get_table_data(error, "factions"));
    QVERIFY(!add(m_db->query_interface(), "units", {{"unit", "b"}}).isEmpty());
    QFile file(path("units.xml"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), content);
}

void TST_KOR_ENGINE_BAD_INPUT::damaged_schemas_stop_the_connection_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("why");

    const QByteArray head = HEADER + "<table_schema name=\"units\">\n";
    const QByteArray tail = "</table_schema>\n";
    QTest::newRow("unknown type") << head + "  <field name=\"unit\" type=\"memo\"/>\n" + tail
                                  << "line 3, column 4: field 'unit' has the unknown type 'memo'";
    QTest::newRow("no type") << head + "  <field name=\"unit\"/>\n" + tail << "has no type";
    QTest::newRow("unsafe field name") << head + "  <field name=\"../x\" type=\"text\"/>\n" + tail
                                       << "not a valid field name";
    QTest::newRow("name differs from file") << HEADER + "<table_schema name=\"troops\"/>\n"
                                            << "describes table 'troops'";
    QTest::newRow("truncated") << head + "  <field name=" << "malformed XML";
    QTest::newRow("unknown attribute") << head + "  <field name=\"unit\" type=\"text\" colour=\"red\"/>\n" + tail
                                       << "unknown attribute 'colour'";
}

void TST_KOR_ENGINE_BAD_INPUT::damaged_schemas_stop_the_connection()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, why);
    QVERIFY(m_db->query_interface().disconnect().isEmpty());
    QVERIFY(ORBIN_TEST::write_file(path("Veld_schemas/units.xml"), content));
    const QString error = m_db->query_interface().connect_without_merge(m_db->path(), false);
    QVERIFY2(error.contains("Veld_schemas/units.xml"), qPrintable(error));
    QVERIFY2(error.contains(why), qPrintable(error));
    QVERIFY(!m_db->query_interface().is_connected());
    QVERIFY(m_progress.texts(PROGRESS_CALLBACK::SEVERITY_ERROR).contains(why));
}

void TST_KOR_ENGINE_BAD_INPUT::a_folder_without_marker_is_no_database()
{
    QVERIFY(m_db->query_interface().disconnect().isEmpty());
    QVERIFY(QFile::remove(path("Veld_validation.xml")));
    const QString error = m_db->query_interface().connect_without_merge(m_db->path(), false);
    QVERIFY2(error.contains("Veld_validation.xml"), qPrintable(error));
    QVERIFY(ORBIN_TEST::write_file(path("Veld_validation.xml"), "<veld_database format=\"99\"/>"));
    QVERIFY(m_db->query_interface().connect_without_merge(m_db->path(), false).contains("format 99"));
    QVERIFY(KOR_XML_QUERY_INTERFACE::create_empty_database(m_db->path()).contains("not empty"));
}

void TST_KOR_ENGINE_BAD_INPUT::references_to_missing_records_are_warnings_with_lines()
{
    QVERIFY(ORBIN_TEST::write_file(
        path("units.xml"), units(record(UUID_A, "    <unit>a</unit>\n    <faction>rome</faction>\n") +
                                 record(UUID_B, "    <unit>b</unit>\n    <faction>gauls</faction>\n"))));
    QVERIFY(ORBIN_TEST::write_file(path("orphans.xml"), HEADER + "<table name=\"orphans\"/>\n"));
    m_db->reconnect();
    QVERIFY(m_progress.texts(PROGRESS_CALLBACK::SEVERITY_WARNING).contains("orphans.xml"));
    QString error;
    const KOR_TABLE_DATA* units = m_db->query_interface().get_table_data(error, "units");
    QVERIFY(units);
    QCOMPARE(units->record_count(), 2);
    const QString warnings = m_progress.texts(PROGRESS_CALLBACK::SEVERITY_WARNING);
    QVERIFY2(
        warnings.contains(QStringLiteral("units.xml, line 7: record 'b', field 'faction': 'gauls' names no "
                                         "record of table 'factions'")),
        qPrintable(warnings));
    QVERIFY(!warnings.contains("'rome'"));
}

void TST_KOR_ENGINE_BAD_INPUT::records_without_uuids_get_them()
{
    QVERIFY(ORBIN_TEST::write_file(path("units.xml"), units("  <record><unit>a</unit></record>\n")));
    m_db->reconnect();
    QString error;
    const KOR_TABLE_DATA* units = m_db->query_interface().get_table_data(error, "units");
    QVERIFY(units);
    const QUuid given = units->record_by_key("a")->uuid();
    QVERIFY(!given.isNull());
    m_db->query_interface().write_out_tables_with_uuids();
    m_db->reconnect();
    QCOMPARE(m_db->query_interface().get_table_data(error, "units")->record_by_key("a")->uuid(), given);
}

void TST_KOR_ENGINE_BAD_INPUT::hand_made_files_with_comments_read_the_same()
{
    // A comment that holds an end tag must not confuse the reader.
    QVERIFY(ORBIN_TEST::write_file(
        path("units.xml"),
        "\xEF\xBB\xBF" + HEADER + "<!-- made by hand -->\n<table name='units'>\n" +
            record(UUID_A, "    <!-- </record> -->\n    <unit>a</unit>\n    <men> 7 </men>\n") +
            "  <!-- between -->\n" + record(UUID_B, "    <unit>b<![CDATA[<]]>&amp;</unit>\n") +
            "</table>\n\n"));
    m_db->reconnect();
    QString error;
    const KOR_TABLE_DATA* units = m_db->query_interface().get_table_data(error, "units");
    QVERIFY2(units, qPrintable(error));
    QCOMPARE(units->records().keys(), QList<QString>({"a", "b<&"}));
    QCOMPARE(units->record_by_key("a")->get_field_data("men")->m_value.toInt(), 7);
}

QTEST_GUILESS_MAIN(TST_KOR_ENGINE_BAD_INPUT)
#include "tst_kor_engine_bad_input.moc"
