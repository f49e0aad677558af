// The declarative catalogue and the generator's own rules: a faulty table
// description is reported, tables are made in an order their relationships
// allow, one table's content never depends on another table being added,
// and values or keys that do not fit are refused before anything is written.
#include "kor_field_schema.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "sample_catalogue.h"
#include "sample_content.h"
#include "sample_database_writer.h"
#include "sample_project.h"
#include "test_folder.h"
#include "test_helpers.h"
#include "test_rows.h"

#include <QProcess>
#include <QtTest/QtTest>

using ORBIN_TEST::row;

Q_DECLARE_METATYPE(QList<SAMPLE_TABLE>)

namespace
{
SAMPLE_TABLE plain(const QString& name, const QList<SAMPLE_FIELD>& fields)
{
    return SAMPLE_TABLE(name).with(fields).rows([](SAMPLE_CONTEXT&, SAMPLE_ROWS&) {});
}
} // namespace

class TST_SAMPLE_CATALOGUE : public QObject
{
    Q_OBJECT

private slots:
    void faulty_descriptions_are_reported_data()
    {
        QTest::addColumn<QList<SAMPLE_TABLE>>("tables");
        QTest::addColumn<QString>("message");
        const SAMPLE_FIELD key = SAMPLE_FIELD::key("key");
        QTest::newRow("table twice, differing in case")
            << QList<SAMPLE_TABLE>{plain("units", {key}), plain("Units", {key})}
            << "Table 'Units' is described twice";
        QTest::newRow("no key") << QList<SAMPLE_TABLE>{plain("units", {SAMPLE_FIELD::text("name")})}
                                << "Table 'units' has no key field";
        QTest::newRow("no rows") << QList<SAMPLE_TABLE>{SAMPLE_TABLE("units").with({key})}
                                 << "Table 'units' has no row generator";
        QTest::newRow("unknown foreign table")
            << QList<SAMPLE_TABLE>{plain("units", {key, SAMPLE_FIELD::text("faction").refers_to("factions")})}
            << "Field 'units.faction' refers to the unknown table 'factions'";
        QTest::newRow("unknown foreign field")
            << QList<SAMPLE_TABLE>{plain("factions", {key}),
                                   plain("units",
                                         {key, SAMPLE_FIELD::text("faction").refers_to("factions", "name")})}
            << "Field 'units.faction' refers to the unknown field 'factions.name'";
        QTest::newRow("localised number")
            << QList<SAMPLE_TABLE>{plain("units", {key, SAMPLE_FIELD::integer("men").localised("units")})}
            << "Field 'units.men' is localised but no text";
    }
    void faulty_descriptions_are_reported()
    {
        QFETCH(QList<SAMPLE_TABLE>, tables);
        QFETCH(QString, message);
        SAMPLE_CATALOGUE catalogue;
        for (const SAMPLE_TABLE& table : tables)
            catalogue.add(table);
        QStringList errors;
        QVERIFY(!catalogue.check(errors));
        QVERIFY2(errors.contains(message), qPrintable(errors.join("\n")));
    }

    void the_standard_catalogue_is_sound()
    {
        QStringList errors;
        QVERIFY2(SAMPLE_CATALOGUE::standard().check(errors), qPrintable(errors.join("\n")));
    }

    void tables_are_made_after_the_tables_they_refer_to()
    {
        const SAMPLE_CATALOGUE catalogue = SAMPLE_CATALOGUE::standard();
        QStringList order;
        QString error;
        QVERIFY2(catalogue.creation_order(order, error), qPrintable(error));
        QCOMPARE(order.size(), catalogue.tables().size());
        for (const SAMPLE_TABLE& table : catalogue.tables())
            for (const SAMPLE_FIELD& field : table.fields())
                if (!field.foreign_table.isEmpty() && field.foreign_table != table.name())
                    QVERIFY2(order.indexOf(field.foreign_table) < order.indexOf(table.name()),
                             qPrintable(table.name() + " before " + field.foreign_table));

        SAMPLE_CATALOGUE cycle;
        cycle.add(plain("a", {SAMPLE_FIELD::key("key"), SAMPLE_FIELD::text("b").refers_to("b")}));
        cycle.add(plain("b", {SAMPLE_FIELD::key("key"), SAMPLE_FIELD::text("a").refers_to("a")}));
        cycle.add(plain("c", {SAMPLE_FIELD::key("key"), SAMPLE_FIELD::text("c").refers_to("c")}));
        QVERIFY(!cycle.creation_order(order, error));
        QVERIFY2(error.endsWith(": a, b"), qPrintable(error));
    }

    void adding_a_table_leaves_the_content_of_the_others()
    {
        const SAMPLE_CATALOGUE standard = SAMPLE_CATALOGUE::standard();
        SAMPLE_CATALOGUE grown;
        for (const SAMPLE_TABLE& table : standard.tables())
        {
            if (table.name() == "land_units")
                grown.add(SAMPLE_TABLE("siege_engines")
                              .with({SAMPLE_FIELD::key("key"), SAMPLE_FIELD::of("range", KFT_SINGLE)})
                              .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                                  for (int i = 0; i < 5; ++i)
                                      rows.add()
                                          .set("key", QString("engine_%1").arg(i))
                                          .set("range", float(context.random().range(10, 300)));
                              }));
            grown.add(table);
        }
        SAMPLE_CONTENT before, after;
        QString error;
        QVERIFY(before.generate(error, standard, 11, SAMPLE_SIZE::SMALL));
        QVERIFY(after.generate(error, grown, 11, SAMPLE_SIZE::SMALL));
        QCOMPARE(after.rows("siege_engines").size(), 5);
        for (const SAMPLE_TABLE& table : standard.tables())
        {
            // The bookkeeping tables list every table, so they grow with the catalogue.
            if (table.describes_others())
                continue;
            const SAMPLE_ROWS& old_rows = before.rows(table.name());
            const SAMPLE_ROWS& new_rows = after.rows(table.name());
            QCOMPARE(new_rows.size(), old_rows.size());
            for (int i = 0; i < old_rows.size(); ++i)
            {
                QVERIFY2(new_rows[i].values == old_rows[i].values, qPrintable(table.name()));
                QCOMPARE(new_rows[i].uuid, old_rows[i].uuid);
            }
        }
    }

    void rows_that_do_not_fit_are_refused_before_writing_data()
    {
        QTest::addColumn<QVariant>("men");
        QTest::addColumn<QString>("second_key");
        QTest::addColumn<QString>("message");
        row("text in a number", QVariant("many"), "b", "'many' is not a valid value for field 'men'");
        row("negative unsigned", QVariant(-4), "b", "'-4' is not a valid value for field 'men'");
        row("key twice", QVariant(5), "a", "Key 'a' exists already in table 'units'");
        row("empty key", QVariant(5), "", "Empty primary keys are not allowed");
    }
    void rows_that_do_not_fit_are_refused_before_writing()
    {
        QFETCH(QVariant, men);
        QFETCH(QString, second_key);
        QFETCH(QString, message);
        KOR_TABLE_SCHEMA schema("units");
        schema.add_field_schema(SAMPLE_FIELD::key("key").make(QUuid::createUuid()));
        schema.add_field_schema(SAMPLE_FIELD::of("men", KFT_UNSIGNED_INTEGER).make(QUuid::createUuid()));
        SAMPLE_TABLE table = plain("units", {SAMPLE_FIELD::key("key")});
        SAMPLE_ROWS rows(&table);
        rows.add().set("key", "a").set("men", 120).uuid = QUuid::createUuid();
        rows.add().set("key", second_key).set("men", men).uuid = QUuid::createUuid();
        KOR_TABLE_DATA data(&schema);
        QString error;
        QVERIFY(!SAMPLE_DATABASE_WRITER::build_table(error, schema, rows, data));
        QVERIFY2(error.contains(message), qPrintable(error));
    }

    void a_generator_writing_an_unknown_field_is_refused()
    {
        SAMPLE_CATALOGUE catalogue;
        catalogue.add(
            SAMPLE_TABLE("units")
                .with({SAMPLE_FIELD::key("key")})
                .rows([](SAMPLE_CONTEXT&, SAMPLE_ROWS& rows) { rows.add().set("key", "a").set("mne", 3); }));
        SAMPLE_CONTENT content;
        QString error;
        QVERIFY(!content.generate(error, catalogue, 1, SAMPLE_SIZE::SMALL));
        QCOMPARE(error, QString("The generator of table 'units' writes the unknown field 'mne'"));
    }

    void the_program_refuses_bad_arguments_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exit_code");
        QTest::addColumn<QString>("message");
        QTest::newRow("no folder") << QStringList{} << 2 << "give the folder";
        QTest::newRow("scale not a number")
            << QStringList{"--scale", "--scale-rows", "many", "@/p"} << 2 << "whole numbers";
        QTest::newRow("folder in use") << QStringList{"--no-depot", "@"} << 1 << "is not empty";
    }
    void the_program_refuses_bad_arguments()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exit_code);
        QFETCH(QString, message);
        const QString program = ORBIN_TEST::binary_dir() + "/bin/orbin-sample";
        if (!QFileInfo::exists(program))
            QSKIP("orbin-sample is not built in this tree");
        TEST_FOLDER folder;
        folder.write("in-use.txt", "x");
        for (QString& argument : arguments)
            argument.replace("@", folder.path());
        QProcess process;
        process.start(program, arguments);
        QVERIFY(process.waitForFinished(30000));
        QCOMPARE(process.exitCode(), exit_code);
        QVERIFY2(QString::fromUtf8(process.readAllStandardError()).contains(message), qPrintable(message));
        QVERIFY(!QFileInfo::exists(folder.file("p")));
    }
};

QTEST_MAIN(TST_SAMPLE_CATALOGUE)
#include "tst_sample_catalogue.moc"
