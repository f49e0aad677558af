// Statements of the simple SQL run on a small real database:
//   factions (key, name, playable yesno, treasury integer, optional)
//   units    (key, faction -> factions, men integer, cost double, scale single,
//             naval yesno, uid card64, notes text, upgrade -> units)
//   regions  (key, owner -> factions)

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_query_results.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "test_database_builder.h"

#include <QtTest/QtTest>

class TEST_KOR_QUERY_EVALUATION : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void filters_data();
    void filters();
    void joins_data();
    void joins();
    void binding_errors_data();
    void binding_errors();
    void results_describe_their_columns();
    void stars_follow_the_display_order();
    void empty_results_keep_their_columns();
    void results_move_and_clear();
    void a_failed_run_empties_the_results();
    void hash_join_matches_every_pair();
    void nothing_runs_without_a_connection();

private:
    KOR_XML_QUERY_INTERFACE& db() { return m_db->query_interface(); }
    // Every row as its values joined by '|', values as the table files write them.
    QStringList rows(const QString& sql);

    QTemporaryDir m_folder;
    std::unique_ptr<TEST_DATABASE_BUILDER> m_db;
};

namespace
{
const auto find = &TEST_DATABASE_BUILDER::find_record;

QString row_text(const KOR_QUERY_RESULTS& results, int row)
{
    QStringList values;
    for (int column = 0; column < results.field_count(); ++column)
        values << KOR_FIELD_DATA::variant_to_text(results.value(row, column));
    return values.join(QLatin1Char('|'));
}
}

QStringList TEST_KOR_QUERY_EVALUATION::rows(const QString& sql)
{
    KOR_QUERY_RESULTS results;
    QString error;
    if (!db().get_query_data_from_simple_sql(error, results, sql))
        return {QStringLiteral("ERROR: ") + error};
    QStringList out;
    for (int row = 0; row < results.record_count(); ++row)
        out << row_text(results, row);
    return out;
}

void TEST_KOR_QUERY_EVALUATION::initTestCase()
{
    QVERIFY(m_folder.isValid());
    m_db = std::make_unique<TEST_DATABASE_BUILDER>(m_folder.filePath("db"));
    m_db->table("factions", {TEST_FIELD::key("key"), TEST_FIELD::plain("name", KFT_TEXT),
                             TEST_FIELD::plain("playable", KFT_YESNO), TEST_FIELD::plain("treasury", KFT_INTEGER)})
        .table("units", {TEST_FIELD::key("key"),
                         TEST_FIELD::plain("faction", KFT_TEXT).refers_to("factions", "key", {"name"}),
                         TEST_FIELD::plain("men", KFT_INTEGER), TEST_FIELD::plain("cost", KFT_DOUBLE),
                         TEST_FIELD::plain("scale", KFT_SINGLE), TEST_FIELD::plain("naval", KFT_YESNO),
                         TEST_FIELD::plain("uid", KFT_CARD64), TEST_FIELD::plain("notes", KFT_TEXT),
                         TEST_FIELD::plain("upgrade", KFT_TEXT).refers_to("units", "key")})
        .table("regions",
               {TEST_FIELD::key("key"), TEST_FIELD::plain("owner", KFT_TEXT).refers_to("factions", "key")});
    m_db->record("factions", {{"key", "brt"}, {"name", "Britons"}, {"playable", false}, {"treasury", 500}})
        .record("factions", {{"key", "gal"}, {"name", "Gauls"}, {"playable", true}, {"treasury", 800}})
        .record("factions", {{"key", "rom"}, {"name", "Rome"}, {"playable", true}, {"treasury", 1200}})
        // No treasury at all: a missing value.
        .record("factions", {{"key", "sel"}, {"name", "Seleucids"}, {"playable", false}});
    auto unit = [this](const char* key, const char* faction, int men, double cost, float scale, bool naval,
                       quint64 uid, const char* notes, const char* upgrade) {
        m_db->record("units", {{"key", key}, {"faction", faction}, {"men", men}, {"cost", cost},
                               {"scale", scale}, {"naval", naval}, {"uid", uid}, {"notes", notes},
                               {"upgrade", upgrade}});
    };
    // Key order puts "Levy" first: capitals sort before small letters.
    unit("Levy", "gal", 120, 150.0, 1.0f, false, 7, "", "");
    unit("archers", "gal", 60, 350.5, 0.1f, false, 18446744073709551615ull, "Light, 50% chance", "");
    unit("hastati", "rom", 80, 500.0, 1.0f, false, 1, "Early legion", "principes");
    unit("principes", "rom", 80, 700.0, 1.25f, false, 2, "", "triarii");
    unit("triarii", "rom", 40, 900.0, 1.5f, false, 3, "Veteran", "");
    unit("trireme", "rom", 120, 1200.25, 2.0f, true, 4, "Ship", "");
    unit("woad_warriors", "brt", 100, 300.0, 1.0f, false, 9223372036854775808ull, "WOAD painted", "");
    m_db->record("regions", {{"key", "britannia"}, {"owner", "brt"}})
        .record("regions", {{"key", "gallia"}, {"owner", "gal"}})
        .record("regions", {{"key", "latium"}, {"owner", "rom"}})
        .record("regions", {{"key", "syria"}, {"owner", "sel"}})
        // Read everything back from disk, as a user's session would.
        .reconnect();
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
}

void TEST_KOR_QUERY_EVALUATION::filters_data()
{
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QStringList>("keys");

    const QStringList all = {"Levy", "archers", "hastati", "principes", "triarii", "trireme", "woad_warriors"};

    QTest::newRow("no condition keeps key order") << "" << all;
    QTest::newRow("integer =") << "[units.men] = 80" << QStringList{"hastati", "principes"};
    QTest::newRow("integer <>") << "[units.men] <> 80" << QStringList{"Levy", "archers", "triarii", "trireme", "woad_warriors"};
    QTest::newRow("integer <=") << "[units.men] <= 80" << QStringList{"archers", "hastati", "principes", "triarii"};
    QTest::newRow("integer >=") << "[units.men] >= 100" << QStringList{"Levy", "trireme", "woad_warriors"};
    QTest::newRow("integer against a real") << "[units.men] > 99.5" << QStringList{"Levy", "trireme", "woad_warriors"};
    QTest::newRow("quoted number for an integer") << "[units.men] = '80'" << QStringList{"hastati", "principes"};
    QTest::newRow("double") << "[units.cost] = 350.5 OR [units.cost] > 900" << QStringList{"archers", "trireme"};
    QTest::newRow("single meets 0.1") << "[units.scale] = 0.1" << QStringList{"archers"};
    QTest::newRow("largest card64") << "[units.uid] = 18446744073709551615" << QStringList{"archers"};
    QTest::newRow("card64 beyond signed") << "[units.uid] > 9223372036854775807"
                                          << QStringList{"archers", "woad_warriors"};
    QTest::newRow("card64 against negative") << "[units.uid] > -1" << all;
    QTest::newRow("text is exact") << "[units.notes] = 'veteran'" << QStringList{};
    QTest::newRow("text match") << "[units.notes] = 'Veteran'" << QStringList{"triarii"};
    QTest::newRow("text ordering by code") << "[units.key] < 'b'" << QStringList{"Levy", "archers"};
    QTest::newRow("text against a number") << "[units.key] <> 5" << all;
    QTest::newRow("LIKE ignores case") << "[units.notes] LIKE '%LEGION%'" << QStringList{"hastati"};
    QTest::newRow("LIKE one character") << "[units.key] LIKE 'h_stat_'" << QStringList{"hastati"};
    QTest::newRow("NOT LIKE") << "[units.key] NOT LIKE 'tri%'"
                              << QStringList{"Levy", "archers", "hastati", "principes", "woad_warriors"};
    QTest::newRow("LIKE with escape") << "[units.notes] LIKE '%50!%%' ESCAPE '!'" << QStringList{"archers"};
    QTest::newRow("LIKE on a number field") << "[units.men] LIKE '1%'" << QStringList{"Levy", "trireme", "woad_warriors"};
    QTest::newRow("yes/no TRUE") << "[units.naval] = TRUE" << QStringList{"trireme"};
    QTest::newRow("yes/no 1") << "[units.naval] = 1" << QStringList{"trireme"};
    QTest::newRow("AND before OR") << "[units.men] = 40 OR [units.men] = 60 AND [units.naval] = TRUE"
                                   << QStringList{"triarii"};
    QTest::newRow("brackets change it") << "([units.men] = 40 OR [units.men] = 60) AND [units.naval] = FALSE"
                                        << QStringList{"archers", "triarii"};
    QTest::newRow("NOT of brackets") << "NOT ([units.men] >= 80 OR [units.naval] = TRUE)"
                                     << QStringList{"archers", "triarii"};
    QTest::newRow("IS NULL finds empty text") << "[units.notes] IS NULL" << QStringList{"Levy", "principes"};
    QTest::newRow("IS NOT NULL") << "[units.upgrade] IS NOT NULL" << QStringList{"hastati", "principes"};
    QTest::newRow("field against field") << "[units.key] = [units.upgrade]" << QStringList{};
    QTest::newRow("field of its own, unqualified") << "[men] = 40" << QStringList{"triarii"};
    QTest::newRow("constant false") << "1 = 2" << QStringList{};
    QTest::newRow("constant inside OR") << "[units.men] = 40 OR 1 = 1" << all;
}

void TEST_KOR_QUERY_EVALUATION::filters()
{
    QFETCH(QString, condition);
    QFETCH(QStringList, keys);

    QString sql = QStringLiteral("SELECT [units.key] FROM [units]");
    if (!condition.isEmpty())
        sql += QStringLiteral(" WHERE ") + condition;
    QCOMPARE(rows(sql), keys);
}

void TEST_KOR_QUERY_EVALUATION::joins_data()
{
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QStringList>("rows");

    QTest::newRow("foreign key, in the FROM table's order")
        << "SELECT [units.key], [factions.name] FROM [units] JOIN [factions] ON [units.faction] = [factions.key]"
        << QStringList{"Levy|Gauls", "archers|Gauls", "hastati|Rome", "principes|Rome", "triarii|Rome",
                       "trireme|Rome", "woad_warriors|Britons"};
    QTest::newRow("the other way round: partners in their own key order")
        << "SELECT [factions.key], [units.key] FROM [factions] JOIN [units] ON [factions.key] = [units.faction]"
        << QStringList{"brt|woad_warriors", "gal|Levy", "gal|archers", "rom|hastati", "rom|principes",
                       "rom|triarii", "rom|trireme"};
    QTest::newRow("conditions on either table")
        << "SELECT [units.key] FROM [units] JOIN [factions] ON [units.faction] = [factions.key] "
           "WHERE [factions.playable] = TRUE AND [units.men] > 70 AND [factions.name] LIKE 'r%'"
        << QStringList{"hastati", "principes", "trireme"};
    QTest::newRow("condition spanning both tables")
        << "SELECT [units.key], [factions.treasury] FROM [units] JOIN [factions] ON [units.faction] = [factions.key] "
           "WHERE [units.cost] > [factions.treasury]"
        << QStringList{"trireme|1200"};
    QTest::newRow("extra ON condition")
        << "SELECT [units.key] FROM [units] INNER JOIN [factions] ON [units.faction] = [factions.key] "
           "AND [units.men] >= 100"
        << QStringList{"Levy", "trireme", "woad_warriors"};
    QTest::newRow("OR across tables")
        << "SELECT [units.key] FROM [units] JOIN [factions] ON [units.faction] = [factions.key] "
           "WHERE [factions.key] = 'brt' OR [units.men] = 40"
        << QStringList{"triarii", "woad_warriors"};
    QTest::newRow("three tables")
        << "SELECT [regions.key], [factions.name], [units.key] FROM [regions] "
           "JOIN [factions] ON [regions.owner] = [factions.key] "
           "JOIN [units] ON [units.faction] = [factions.key] WHERE [units.naval] = TRUE"
        << QStringList{"latium|Rome|trireme"};
    QTest::newRow("a record without partner gives no row")
        << "SELECT [regions.key], [units.key] FROM [regions] JOIN [units] ON [units.faction] = [regions.owner] "
           "WHERE [units.men] = 100 OR [regions.key] = 'syria'"
        << QStringList{"britannia|woad_warriors"};
    QTest::newRow("a table joined with itself")
        << "SELECT [u.key], [next.key], [next.men] FROM [units] AS u JOIN [units] AS next ON [u.upgrade] = [next.key]"
        << QStringList{"hastati|principes|80", "principes|triarii|40"};
    QTest::newRow("equality given in WHERE")
        << "SELECT [u.key] FROM [units] AS u JOIN [units] AS next ON [next.men] < [u.men] "
           "WHERE [u.upgrade] = [next.key]"
        << QStringList{"principes"};
    QTest::newRow("missing values never join")
        << "SELECT [a.key], [b.key] FROM [factions] AS a JOIN [factions] AS b ON [a.treasury] = [b.treasury]"
        << QStringList{"brt|brt", "gal|gal", "rom|rom"};
}

void TEST_KOR_QUERY_EVALUATION::joins()
{
    QFETCH(QString, sql);
    QFETCH(QStringList, rows);
    QCOMPARE(this->rows(sql), rows);
}

void TEST_KOR_QUERY_EVALUATION::binding_errors_data()
{
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("error");

    QTest::newRow("unknown table") << "SELECT [main_unit.key] FROM [main_unit]"
                                   << "Unknown table [main_unit] at position 29";
    QTest::newRow("unknown field") << "SELECT [units.menn] FROM [units]"
                                   << "Unknown field [units.menn] at position 8: table [units] has no field 'menn'";
    QTest::newRow("unknown field in WHERE") << "SELECT [units.key] FROM [units] WHERE [units.size] = 1"
                                            << "Unknown field [units.size] at position 39: table [units] has no field "
                                               "'size'";
    QTest::newRow("unknown unqualified field") << "SELECT [size] FROM [units]" << "Unknown field [size] at position 8";
    QTest::newRow("ambiguous field")
        << "SELECT [key] FROM [units] JOIN [factions] ON [units.faction] = [factions.key]"
        << "Field [key] at position 8 is ambiguous: it is in [units] and [factions]; write it as [table.field]";
    QTest::newRow("table outside the statement") << "SELECT [factions.key] FROM [units]"
                                                 << "Table [factions] of [factions.key] at position 8 is not in the "
                                                    "FROM or JOIN part of the statement";
    QTest::newRow("unknown qualifier") << "SELECT [x.key] FROM [units]"
                                       << "Unknown table [x] in [x.key] at position 8";
    QTest::newRow("join without equality")
        << "SELECT [units.key] FROM [units] JOIN [factions] ON [units.men] > [factions.treasury]"
        << "The join with [factions] at position 33 needs an equality between a field of [factions] and a field of "
           "a table before it, such as [a.key] = [b.key]";
    QTest::newRow("ON uses a later table")
        << "SELECT [units.key] FROM [units] JOIN [factions] ON [units.faction] = [regions.owner] "
           "JOIN [regions] ON [regions.owner] = [factions.key]"
        << "Field [regions.owner] at position 70 belongs to a table joined later; an ON condition can only use its "
           "own table and the tables before it";
    QTest::newRow("table twice without AS")
        << "SELECT [units.key] FROM [units] JOIN [units] ON [units.upgrade] = [units.key]"
        << "Table [units] at position 38 is already in the statement; give one of them another name with AS";
    QTest::newRow("table twice, named by its table")
        << "SELECT [units.key] FROM [units] AS a JOIN [units] AS b ON [a.upgrade] = [b.key]"
        << "[units.key] at position 8 is ambiguous: table [units] is in the statement twice; use the names given "
           "with AS";
    QTest::newRow("field selected twice") << "SELECT [units.key], [UNITS.KEY] FROM [units]"
                                          << "Field [units.key] at position 21 is already selected";
    QTest::newRow("star repeats a field") << "SELECT [units.men], * FROM [units]"
                                          << "Field [units.men] at position 21 is already selected";
    QTest::newRow("text for a number field") << "SELECT [units.key] FROM [units] WHERE [units.men] = 'many'"
                                             << "Cannot compare the integer field [units.men] with the text 'many' at "
                                                "position 53";
    QTest::newRow("number for a yes/no field") << "SELECT [units.key] FROM [units] WHERE [units.naval] = 5"
                                               << "Cannot compare the yes/no field [units.naval] with 5 at position 55; "
                                                  "use TRUE, FALSE, 0 or 1";
    QTest::newRow("syntax errors come through") << "SELECT [units.key] FROM [units] WHER [units.men] = 1"
                                                << "Syntax error at position 33: expected JOIN, WHERE or the end of the "
                                                   "statement but found 'WHER'";
}

void TEST_KOR_QUERY_EVALUATION::binding_errors()
{
    QFETCH(QString, sql);
    QFETCH(QString, error);

    KOR_QUERY_RESULTS results;
    QString actual;
    QVERIFY(!db().get_query_data_from_simple_sql(actual, results, sql));
    QCOMPARE(actual, error);
    QCOMPARE(db().get_last_error(), error);
    QCOMPARE(results.field_count(), 0);
    QCOMPARE(results.record_count(), 0);
}

void TEST_KOR_QUERY_EVALUATION::results_describe_their_columns()
{
    KOR_QUERY_RESULTS results;
    QString error;
    QVERIFY2(db().get_query_data_from_simple_sql(
                 error, results,
                 "select [u.key], [u.faction], [u.scale], [f.playable] from [Units] as u "
                 "join [factions] as f on [u.faction] = [f.key] where [u.men] = 40"),
             qPrintable(error));
    QCOMPARE(results.statement(),
             QStringLiteral("SELECT [u.key], [u.faction], [u.scale], [f.playable] FROM [Units] AS [u] JOIN [factions] "
                            "AS [f] ON [u.faction] = [f.key] WHERE [u.men] = 40"));
    QCOMPARE(results.field_names(), QStringList({"u.key", "u.faction", "u.scale", "f.playable"}));
    QCOMPARE(results.source_tables(), QStringList({"units", "factions"}));
    QCOMPARE(results.source_table(1), QStringLiteral("units"));
    QCOMPARE(results.source_field(1), QStringLiteral("faction"));
    QCOMPARE(results.source_table(3), QStringLiteral("factions"));
    QCOMPARE(results.field_index(QStringLiteral("F.PLAYABLE")), 3);
    QCOMPARE(results.field_index(QStringLiteral("playable")), -1);

    // Result fields answer what editors ask a table's field.
    QVERIFY(!results.field(0)->is_primary_key());
    const KOR_FIELD_SCHEMA* faction = results.field(1);
    QCOMPARE(*faction->dependency(), qMakePair(QString("factions"), QString("key")));
    QCOMPARE(faction->lookup_fields(), QStringList{"name"});
    // The query window's cell editor offers a result field's foreign keys
    // as it does a table field's.
    QVector<QVariant> choices;
    QString lookup_error;
    QVERIFY2(db().get_main_dependency_field_data(lookup_error, choices, faction), qPrintable(lookup_error));
    QCOMPARE(choices, QVector<QVariant>({"brt", "gal", "rom", "sel"}));
    QCOMPARE(results.field(2)->field_type(), KFT_SINGLE);
    QVERIFY(!results.field(4));
    QVERIFY(!results.field(-1));

    QCOMPARE(results.record_count(), 1);
    QCOMPARE(results.record(0)->get_field_data("u.key")->value().toString(), QStringLiteral("triarii"));
    QCOMPARE(results.value(0, 2).toFloat(), 1.5f);
    QCOMPARE(results.value(0, 3).toBool(), true);
    QVERIFY(!results.value(1, 0).isValid());
    QVERIFY(!results.value(0, 4).isValid());
    QVERIFY(!results.record(1));

    // Which records made the row.
    QCOMPARE(results.source_record_uuid(0, 0), find(db(), "units", "triarii")->uuid());
    QCOMPARE(results.source_record_uuid(0, 1), find(db(), "factions", "rom")->uuid());
    QVERIFY(results.source_record_uuid(0, 2).isNull());
    QVERIFY(results.source_record_uuid(1, 0).isNull());
}

void TEST_KOR_QUERY_EVALUATION::stars_follow_the_display_order()
{
    KOR_QUERY_RESULTS results;
    QString error;
    QVERIFY2(db().get_query_data_from_simple_sql(error, results,
                                                 "SELECT * FROM [regions] JOIN [factions] ON [regions.owner] = "
                                                 "[factions.key] WHERE [regions.key] = 'gallia'"),
             qPrintable(error));
    QCOMPARE(results.field_names(), QStringList({"regions.key", "regions.owner", "factions.key", "factions.name",
                                                 "factions.playable", "factions.treasury"}));
    QCOMPARE(row_text(results, 0), QStringLiteral("gallia|gal|gal|Gauls|true|800"));

    QVERIFY2(db().get_query_data_from_simple_sql(error, results,
                                                 "SELECT [f.*], [regions.key] FROM [regions] JOIN [factions] AS f ON "
                                                 "[regions.owner] = [f.key] WHERE [f.treasury] IS NULL"),
             qPrintable(error));
    QCOMPARE(results.field_names(), QStringList({"f.key", "f.name", "f.playable", "f.treasury", "regions.key"}));
    QCOMPARE(row_text(results, 0), QStringLiteral("sel|Seleucids|false||syria"));
}

void TEST_KOR_QUERY_EVALUATION::empty_results_keep_their_columns()
{
    KOR_QUERY_RESULTS results;
    QString error;
    QVERIFY2(db().get_query_data_from_simple_sql(error, results,
                                                 "SELECT [units.key], [units.men] FROM [units] WHERE [units.men] > 1000"),
             qPrintable(error));
    QVERIFY(error.isEmpty());
    QCOMPARE(results.record_count(), 0);
    QCOMPARE(results.field_names(), QStringList({"units.key", "units.men"}));
    QCOMPARE(results.field(1)->field_type(), KFT_INTEGER);

    // A join whose first table keeps no row stops early and still has columns.
    QVERIFY2(db().get_query_data_from_simple_sql(error, results,
                                                 "SELECT [units.key], [factions.name] FROM [units] JOIN [factions] ON "
                                                 "[units.faction] = [factions.key] WHERE [units.men] = 1"),
             qPrintable(error));
    QCOMPARE(results.record_count(), 0);
    QCOMPARE(results.field_count(), 2);
}

void TEST_KOR_QUERY_EVALUATION::results_move_and_clear()
{
    KOR_QUERY_RESULTS results;
    QString error;
    QVERIFY(db().get_query_data_from_simple_sql(error, results, "SELECT [units.key] FROM [units]"));
    const KOR_RECORD_DATA* first = results.record(0);
    KOR_QUERY_RESULTS moved(std::move(results));
    QCOMPARE(results.record_count(), 0);
    QCOMPARE(results.field_count(), 0);
    QCOMPARE(moved.record(0), first);

    KOR_QUERY_RESULTS assigned;
    QVERIFY(db().get_query_data_from_simple_sql(error, assigned, "SELECT [regions.key] FROM [regions]"));
    assigned = std::move(moved);
    QCOMPARE(assigned.record_count(), 7);
    QCOMPARE(assigned.record(0), first);
    QCOMPARE(moved.record_count(), 0);

    // A results object can be filled again after being moved from, and cleared.
    QVERIFY(db().get_query_data_from_simple_sql(error, moved, "SELECT [regions.key] FROM [regions]"));
    QCOMPARE(moved.record_count(), 4);
    moved.clear();
    QCOMPARE(moved.record_count(), 0);
    QCOMPARE(moved.field_count(), 0);
    QVERIFY(moved.statement().isEmpty());
}

void TEST_KOR_QUERY_EVALUATION::a_failed_run_empties_the_results()
{
    KOR_QUERY_RESULTS results;
    QString error;
    QVERIFY(db().get_query_data_from_simple_sql(error, results, "SELECT [units.key] FROM [units]"));
    QCOMPARE(results.record_count(), 7);
    QVERIFY(!db().get_query_data_from_simple_sql(error, results, "SELECT [units.nothing] FROM [units]"));
    QVERIFY(!error.isEmpty());
    QCOMPARE(results.record_count(), 0);
    QCOMPARE(results.field_count(), 0);

    // The stored form of a query is its statement.
    QVERIFY(db().get_query_data_from_string(error, results, "SELECT [units.key] FROM [units] WHERE [units.men] = 40"));
    QCOMPARE(results.record_count(), 1);
    QVERIFY(!db().get_query_data_from_string(error, results, "SELECT"));
    QVERIFY(error.startsWith(QLatin1String("Syntax error at position 7")));
}

void TEST_KOR_QUERY_EVALUATION::hash_join_matches_every_pair()
{
    // Integer keys, duplicates on the probe side, keys without partners, and
    // numbers of different field types meeting (integer key, double and
    // card64 references): the join must give exactly the pairs a plain
    // nested loop gives, in the order it gives them.
    QTemporaryDir folder;
    TEST_DATABASE_BUILDER big(folder.filePath("db"));
    big.table("ranks", {TEST_FIELD::key("id", KFT_INTEGER), TEST_FIELD::plain("title", KFT_TEXT)})
        .table("soldiers", {TEST_FIELD::key("id", KFT_INTEGER), TEST_FIELD::plain("rank", KFT_DOUBLE),
                            TEST_FIELD::plain("badge", KFT_CARD64)});
    QVERIFY2(big.ok(), qPrintable(big.error()));
    KOR_XML_QUERY_INTERFACE& database = big.query_interface();
    const auto add = &TEST_DATABASE_BUILDER::add_record;
    QString error;
    QVERIFY2(database.begin_transaction(error, true), qPrintable(error));
    for (int id = 0; id < 40; ++id)
        QCOMPARE(add(database, "ranks", {{"id", id}, {"title", QStringLiteral("rank %1").arg(id)}}), QString());
    for (int id = 0; id < 600; ++id)
        QCOMPARE(add(database, "soldiers", {{"id", id}, {"rank", double(id % 50)}, {"badge", quint64(id % 45)}}),
                 QString());
    QVERIFY2(database.end_transaction(error), qPrintable(error));

    const KOR_TABLE_DATA* ranks = database.get_table_data(error, "ranks");
    const KOR_TABLE_DATA* soldiers = database.get_table_data(error, "soldiers");
    QVERIFY(ranks && soldiers);
    auto pairs = [](const KOR_RECORD_DATA* soldier, const KOR_RECORD_DATA* rank) {
        const int id = rank->get_field_data("id")->value().toInt();
        return soldier->get_field_data("rank")->value().toDouble() == double(id)
               && soldier->get_field_data("badge")->value().toULongLong() == quint64(id);
    };
    QStringList soldiers_first;
    for (const KOR_RECORD_DATA* soldier : soldiers->records())
        for (const KOR_RECORD_DATA* rank : ranks->records())
            if (pairs(soldier, rank))
                soldiers_first << soldier->key() + QLatin1Char('|') + rank->key();
    QStringList ranks_first;
    for (const KOR_RECORD_DATA* rank : ranks->records())
        for (const KOR_RECORD_DATA* soldier : soldiers->records())
            if (pairs(soldier, rank))
                ranks_first << soldier->key() + QLatin1Char('|') + rank->key();
    QVERIFY(soldiers_first.size() > 40);

    auto run = [&](const QString& sql) {
        KOR_QUERY_RESULTS results;
        QString run_error;
        QStringList out;
        if (!database.get_query_data_from_simple_sql(run_error, results, sql))
            return QStringList{run_error};
        QSet<QUuid> uuids;
        for (int row = 0; row < results.record_count(); ++row)
        {
            out << row_text(results, row);
            uuids.insert(results.record(row)->uuid());
        }
        // Every result record has a uuid of its own.
        if (uuids.size() != results.record_count() || uuids.contains(QUuid()))
            return QStringList{QStringLiteral("records share uuids")};
        return out;
    };
    QCOMPARE(run("SELECT [soldiers.id], [ranks.id] FROM [soldiers] JOIN [ranks] "
                 "ON [soldiers.rank] = [ranks.id] AND [ranks.id] = [soldiers.badge]"),
             soldiers_first);
    // Now the joined side holds many records a key, which must come out in
    // that table's key order.
    QCOMPARE(run("SELECT [soldiers.id], [ranks.id] FROM [ranks] JOIN [soldiers] "
                 "ON [soldiers.rank] = [ranks.id] AND [ranks.id] = [soldiers.badge]"),
             ranks_first);
}

void TEST_KOR_QUERY_EVALUATION::nothing_runs_without_a_connection()
{
    KOR_XML_QUERY_INTERFACE unconnected(nullptr, QString(), false, false);
    KOR_QUERY_RESULTS results;
    QString error;
    QVERIFY(!unconnected.get_query_data_from_simple_sql(error, results, "SELECT [units.key] FROM [units]"));
    QCOMPARE(error, QStringLiteral("The database is not connected"));
    QVERIFY(!unconnected.get_query_data(error, results, QStringLiteral("anything")));
    QCOMPARE(error, QStringLiteral("The database is not connected"));
    QVERIFY(unconnected.get_query_schemas().isEmpty());
    QVERIFY(!unconnected.get_query_schema(QStringLiteral("anything")));
}

QTEST_GUILESS_MAIN(TEST_KOR_QUERY_EVALUATION)
#include "kor_query_evaluation_test.moc"
