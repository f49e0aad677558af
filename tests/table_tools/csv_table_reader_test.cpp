// Reading a table's CSV file for import: failures that stop the read, lines
// skipped with numbered warnings, quoting, byte-order marks and line ends.

#include "csv_table_reader.h"
#include "kor_field_schema.h"
#include "kor_table_schema.h"
#include "test_database_builder.h"
#include "test_folder.h"
#include "test_helpers.h"

#include <QtTest>

namespace
{
// "unit" and "era" make the key; only "unit" is required unless both are
// optional.
std::unique_ptr<KOR_TABLE_SCHEMA> units_schema(bool unit_required)
{
    TEST_FIELD unit = TEST_FIELD::key("unit");
    unit.is_required = unit_required;
    TEST_FIELD era = TEST_FIELD::key("era");
    era.is_required = false;
    return TEST_DATABASE_BUILDER::make_schema(
        "units", {unit, era, TEST_FIELD::plain("men", KFT_INTEGER), TEST_FIELD::plain("notes", KFT_TEXT)});
}

QString values_text(const CSV_TABLE_READER& reader)
{
    QStringList out;
    for (auto record = reader.values().constBegin(); record != reader.values().constEnd(); ++record)
        for (auto value = record.value().constBegin(); value != record.value().constEnd(); ++value)
            out << record.key() + ":" + value.key() + "=" + value.value();
    return out.join(" | ");
}
} // namespace

class CSV_TABLE_READER_TEST : public QObject
{
    Q_OBJECT

private slots:
    void reading_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("unit_required");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QString>("values");

        QTest::newRow("an empty file")
            << QByteArray() << true << false << QStringList{"No data in '%1'"} << "";
        QTest::newRow("a key field missing from the header")
            << QByteArray("unit,men\nhastati,1\n") << true << false
            << QStringList{"Required fields for table are missing from the imported csv file."} << "";
        QTest::newRow("BOM, CR LF, header case and quoting")
            << QByteArray("\xEF\xBB\xBFUnit,ERA,men,notes\r\n"
                          "hastati,,120,\"front line, \"\"young\"\"\"\r\n"
                          "velites,late,80,\r\n")
            << true << true << QStringList{}
            << "hastati:era= | hastati:men=120 | hastati:notes=front line, \"young\" | hastati:unit=hastati "
               "| "
               "veliteslate:era=late | veliteslate:men=80 | veliteslate:notes= | veliteslate:unit=velites";
        QTest::newRow("bad lines are skipped with their numbers, the header being 1")
            << QByteArray("unit,era,men,notes\n"
                          "hastati,,120\n"
                          ",early,3,x\n"
                          "triarii,,40,\"old, wise\"\n"
                          "\n")
            << true << true
            << QStringList{"WARNING! Number of values on line 2 does not match number of headers.",
                           "Required field 'unit' missing at line 3.",
                           "WARNING! Number of values on line 5 does not match number of headers."}
            << "triarii:era= | triarii:men=40 | triarii:notes=old, wise | triarii:unit=triarii";
        QTest::newRow("an empty key of optional key fields")
            << QByteArray("unit,era\n,\nslingers,\n") << false << true
            << QStringList{"Key at line 2 is empty."} << "slingers:era= | slingers:unit=slingers";
    }

    void reading()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, unit_required);
        QFETCH(bool, ok);
        QFETCH(QStringList, messages);
        QFETCH(QString, values);

        TEST_FOLDER folder;
        // Project paths end in a slash; the file name is joined with one.
        const auto schema = units_schema(unit_required);
        CSV_TABLE_READER reader(folder.path() + "/", schema.get());
        const QString path = folder.path() + "/units.csv";
        QCOMPARE(reader.file_path(), path);
        QVERIFY(ORBIN_TEST::write_file(path, bytes));
        QCOMPARE(reader.read(), ok);
        QCOMPARE(reader.success(), ok);
        for (QString& message : messages)
            message.replace("%1", path);
        QCOMPARE(reader.messages(), messages);
        QCOMPARE(values_text(reader), values);
    }

    void files_that_cannot_be_read()
    {
        TEST_FOLDER folder;
        const auto schema = units_schema(true);
        CSV_TABLE_READER missing(folder.path(), schema.get());
        QVERIFY(!missing.read());
        QCOMPARE(missing.messages(), QStringList{"Could not find '" + folder.path() + "/units.csv'"});

        QVERIFY(QDir().mkpath(folder.path() + "/units.csv")); // a folder does not open as a file
        CSV_TABLE_READER unreadable(folder.path(), schema.get());
        QVERIFY(!unreadable.read());
        QCOMPARE(unreadable.messages(), QStringList{"Could not open '" + folder.path() + "/units.csv'"});

        CSV_TABLE_READER no_schema(folder.path(), nullptr);
        QVERIFY(!no_schema.read());
        QCOMPARE(no_schema.messages(), QStringList{"Invalid schema"});
    }
};

QTEST_GUILESS_MAIN(CSV_TABLE_READER_TEST)
#include "csv_table_reader_test.moc"
