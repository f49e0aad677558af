// The global search: its pattern answers as QRegExp's wildcard syntax does;
// a search finds what a plain walk with QRegExp finds, in the same order, the
// first time and again from the index it keeps beside each table; and every
// way a table changes is seen by the next search.

#include "global_search.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "sample_project.h"
#include "test_database_builder.h"
#include "test_folder.h"
#include "test_helpers.h"

#include <QRegExp>
#include <QtTest>

#include <memory>

namespace
{
const QStringList texts = {QString(),
                           "a",
                           "abc",
                           "ABC",
                           "xabcx",
                           "aXbXc",
                           "aa",
                           "cab",
                           "a*b",
                           "a.b$(c)",
                           "line\nbreak",
                           "\u00c4rger \u00fcber \u00df",
                           "\u0130stanbul",
                           "vesh_empire_civil_war",
                           "12.5e-07"};

struct SEARCH
{
    QString text;
    Qt::CaseSensitivity sensitivity;
    bool exact;
};

QString hit_line(const QString& table, const QString& field, const QString& key, const QString& value)
{
    return QStringList{table, field, key, value}.join(QChar('|'));
}

// The reference: every table in name order, records in key order, fields in
// column order, each value's text tested by QRegExp.
QStringList walked(KOR_XML_QUERY_INTERFACE& engine, const SEARCH& search)
{
    QRegExp expression(search.text, search.sensitivity, QRegExp::Wildcard);
    QStringList found;
    QMap<QString, bool> names;
    engine.get_table_names(names);
    for (const QString& name : names.keys())
    {
        QString error;
        const KOR_TABLE_DATA* table = engine.get_table_data(error, name);
        if (!table)
            return {error};
        for (auto it = table->records().begin(); it != table->records().end(); ++it)
            for (const QString& field : table->table_schema()->column_ordering())
            {
                const QString value = it.value()->get_field_data(field)->value_text();
                if (search.exact ? expression.exactMatch(value) : value.indexOf(expression) != -1)
                    found.append(hit_line(name, field, it.key(), value));
            }
    }
    return found;
}

QStringList searched(KOR_XML_QUERY_INTERFACE& engine, const SEARCH& search)
{
    QVector<GLOBAL_SEARCH_HIT> hits;
    GLOBAL_SEARCH(search.text, search.sensitivity, search.exact).search(engine, hits);
    QStringList found;
    for (const GLOBAL_SEARCH_HIT& hit : hits)
        found.append(hit_line(hit.table_name, hit.field_name, hit.key, hit.value));
    return found;
}

const KOR_TABLE_DATA* table_of(KOR_XML_QUERY_INTERFACE& engine, const QString& name)
{
    QString error;
    return engine.get_table_data(error, name);
}

KOR_RECORD_DATA* record_of(KOR_XML_QUERY_INTERFACE& engine, const QString& table, const QString& key)
{
    const KOR_TABLE_DATA* data = table_of(engine, table);
    return data ? data->record_by_key(key) : nullptr;
}

// Columns whose display order is not their name order (ignoring case), keys
// added out of their order, a number column, texts shared by records; read
// back as the table reader makes them.
std::unique_ptr<TEST_DATABASE_BUILDER> units_database(const QString& path)
{
    auto database = std::make_unique<TEST_DATABASE_BUILDER>(path);
    database->table("units", {TEST_FIELD::key("key"), TEST_FIELD::plain("Name", KFT_TEXT),
                              TEST_FIELD::plain("faction", KFT_TEXT), TEST_FIELD::plain("men", KFT_INTEGER),
                              TEST_FIELD::plain("alias", KFT_TEXT)});
    database->table("factions", {TEST_FIELD::key("key"), TEST_FIELD::plain("title", KFT_TEXT)});
    for (const QVariantMap& unit : QList<QVariantMap>{
             {{"key", "u10"},
              {"Name", "Vesh guard"},
              {"faction", "vesh_empire"},
              {"men", 120},
              {"alias", "vesh"}},
             {{"key", "u02"}, {"Name", "Spearmen"}, {"faction", "rome"}, {"men", 160}},
             {{"key", "U3"}, {"Name", "Archers"}, {"faction", "vesh_empire"}, {"alias", "VESH bows"}},
             {{"key", "u1"}, {"Name", "Scouts"}, {"faction", "rome"}, {"men", 17}, {"alias", "Scouts"}},
             {{"key", "u4"}, {"Name", "Vesh riders"}, {"faction", "vesh_empire"}, {"men", 40}}})
        database->record("units", unit);
    database->record("factions", {{"key", "vesh_empire"}, {"title", "The Vesh"}});
    database->reconnect();
    return database;
}

enum CHANGE
{
    EDIT_TEXT,
    EDIT_NUMBER,
    ADD_RECORD,
    REMOVE_RECORD,
    REKEY_RECORD,
    RELOAD,
    REORDER_COLUMNS,
    ADD_FIELD,
    ROLL_BACK
};
} // namespace

class GLOBAL_SEARCH_TEST : public QObject
{
    Q_OBJECT

    TEST_FOLDER m_folder;
    QString m_database;

    void make_database()
    {
        if (!m_database.isEmpty())
            return;
        m_database = m_folder.file("db");
        const QString error = SAMPLE_PROJECT::generate_database(m_database);
        QVERIFY2(error.isEmpty(), qPrintable(error));
    }

private slots:
    void pattern_answers_as_qregexp_data()
    {
        QTest::addColumn<QString>("pattern");
        for (const char* pattern :
             {"",      "*",        "**",         "a",        "abc",   "ABC",        "b",
              "a*",    "*c",       "a*c",        "a*a",      "a?c",   "??",         "?",
              "*b*",   "a**c",     "*.*",        "a.b$(c)",  "e\nb",  "\u00e4rger", "\u00c4RGER*\u00df",
              "i",     "istanbul", "vesh*civil", "vesh*war", "_*_*_", "e-0?",       "[ab]c",
              "a[*]b", "a\\*b",    "]",          "[abc"})
            QTest::newRow(pattern) << QString::fromUtf8(pattern);
    }

    void pattern_answers_as_qregexp()
    {
        QFETCH(QString, pattern);
        for (const Qt::CaseSensitivity sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive})
        {
            QRegExp expression(pattern, sensitivity, QRegExp::Wildcard);
            for (const bool exact : {false, true})
            {
                const GLOBAL_SEARCH_PATTERN matcher(pattern, sensitivity, exact);
                for (const QString& text : texts)
                {
                    const bool expected =
                        exact ? expression.exactMatch(text) : text.indexOf(expression) != -1;
                    QVERIFY2(matcher.matches(text) == expected,
                             qPrintable(QString("'%1' on '%2', %3, %4")
                                            .arg(pattern, text, exact ? "exact" : "anywhere",
                                                 sensitivity == Qt::CaseSensitive ? "case" : "no case")));
                }
            }
        }
    }

    void type_filter_never_hides_a_value()
    {
        // Texts each type gives, at their extremes; a pattern the filter rules
        // out for a type must not match any of them.
        const QList<QPair<KOR_FIELD_TYPE, QVariant>> values = {
            {KFT_YESNO, true},
            {KFT_YESNO, false},
            {KFT_INTEGER, -2147483647 - 1},
            {KFT_CARD64, QVariant(qulonglong(18446744073709551615ull))},
            {KFT_SINGLE, -2.5e-07f},
            {KFT_DOUBLE, 1e300},
            {KFT_DOUBLE, std::numeric_limits<double>::infinity()},
            {KFT_DOUBLE, -std::numeric_limits<double>::infinity()},
            {KFT_DOUBLE, std::numeric_limits<double>::quiet_NaN()},
            {KFT_DATE_TIME, QDateTime(QDate(2024, 2, 29), QTime(23, 59, 58, 7), Qt::UTC)}};
        for (const auto& value : values)
        {
            const QString text = KOR_FIELD_DATA::variant_to_text(value.second);
            for (const QChar unit : text)
                for (const Qt::CaseSensitivity sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive})
                {
                    const QString pattern = QString("*") + unit + "*";
                    QVERIFY2(GLOBAL_SEARCH_PATTERN(pattern, sensitivity, false).can_match_type(value.first),
                             qPrintable(QString("'%1' ruled out for '%2'").arg(pattern, text)));
                }
        }
        QVERIFY(!GLOBAL_SEARCH_PATTERN("gold", Qt::CaseInsensitive, false).can_match_type(KFT_INTEGER));
        QVERIFY(GLOBAL_SEARCH_PATTERN("TRUE", Qt::CaseInsensitive, true).can_match_type(KFT_YESNO));
        QVERIFY(!GLOBAL_SEARCH_PATTERN("TRUE", Qt::CaseSensitive, true).can_match_type(KFT_YESNO));
    }

    void search_finds_what_a_plain_walk_finds_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("case_sensitive");
        QTest::addColumn<bool>("exact");
        QTest::newRow("a word anywhere") << "vesh" << false << false;
        QTest::newRow("a word, case") << "Vesh" << true << false;
        QTest::newRow("wildcards, exact") << "*_*_*" << false << true;
        QTest::newRow("numbers by their text") << "1?0" << false << false;
        QTest::newRow("dates by their text") << "*T??:*" << false << true;
        QTest::newRow("yes/no exact") << "true" << true << true;
        QTest::newRow("empty values") << "" << false << true;
        QTest::newRow("everything") << "*" << false << true;
        QTest::newRow("nothing") << "no such text anywhere" << false << false;
    }

    void search_finds_what_a_plain_walk_finds()
    {
        QFETCH(QString, text);
        QFETCH(bool, case_sensitive);
        QFETCH(bool, exact);
        make_database();
        KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
        QCOMPARE(engine.connect_without_merge(m_database, false), QString());
        const SEARCH search{text, case_sensitive ? Qt::CaseSensitive : Qt::CaseInsensitive, exact};
        const QStringList expected = walked(engine, search);

        QCOMPARE(searched(engine, search), expected);
        QMap<QString, bool> names;
        engine.get_table_names(names);
        const KOR_TABLE_DATA* table = table_of(engine, names.lastKey());
        const std::shared_ptr<const void> index = table->search_index();
        QVERIFY(index);
        // Again, from the indexes the first search left.
        QCOMPARE(searched(engine, search), expected);
        QCOMPARE(table->search_index(), index);
    }

    void hooks_hear_failures_and_stop_the_search()
    {
        TEST_FOLDER folder;
        const QString copy = folder.file("db");
        QVERIFY(SAMPLE_PROJECT::generate_database(copy).isEmpty());
        // A table the engine refuses is left out, and said. It is the first by
        // name, so that the search reaches it before it stops.
        QVERIFY(ORBIN_TEST::write_file(copy + "/TExc_ImplementedTables.xml", "<table><record>"));
        KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
        QCOMPARE(engine.connect_without_merge(copy, false), QString());

        QStringList failed;
        QStringList searched;
        GLOBAL_SEARCH::HOOKS hooks;
        hooks.table_failed = [&failed](const QString& table, const QString&) { failed.append(table); };
        hooks.after_table = [&searched](const QString& table, int hit_count) {
            searched.append(table);
            return hit_count <= 50;
        };
        QVector<GLOBAL_SEARCH_HIT> hits;
        QVERIFY(!GLOBAL_SEARCH("*", Qt::CaseInsensitive, true).search(engine, hits, hooks));
        QCOMPARE(failed, QStringList{"TExc_ImplementedTables"});
        // The search stops after the first table that passes 50 hits, and keeps them.
        QVERIFY(hits.size() > 50);
        QCOMPARE(hits.last().table_name, searched.last());
        QMap<QString, bool> names;
        engine.get_table_names(names);
        QVERIFY(searched.size() < names.size());
    }

    void changes_are_seen_by_the_next_search_data()
    {
        QTest::addColumn<int>("change");
        QTest::addColumn<QString>("text");
        QTest::newRow("a text edited") << int(EDIT_TEXT) << "vesh";
        QTest::newRow("a number edited") << int(EDIT_NUMBER) << "17";
        QTest::newRow("a record added") << int(ADD_RECORD) << "vesh";
        QTest::newRow("a record removed") << int(REMOVE_RECORD) << "vesh";
        QTest::newRow("a key changed") << int(REKEY_RECORD) << "vesh";
        QTest::newRow("the table read again") << int(RELOAD) << "vesh";
        QTest::newRow("columns reordered") << int(REORDER_COLUMNS) << "vesh";
        QTest::newRow("a field added") << int(ADD_FIELD) << "vesh";
        QTest::newRow("changes rolled back") << int(ROLL_BACK) << "vesh";
    }

    void changes_are_seen_by_the_next_search()
    {
        QFETCH(int, change);
        QFETCH(QString, text);
        TEST_FOLDER folder;
        const std::unique_ptr<TEST_DATABASE_BUILDER> database = units_database(folder.file("db"));
        QVERIFY2(database->ok(), qPrintable(database->error()));
        KOR_XML_QUERY_INTERFACE& engine = database->query_interface();
        const QString units = "units";
        const SEARCH search{text, Qt::CaseInsensitive, false};
        const QStringList before = searched(engine, search);
        QCOMPARE(before, walked(engine, search));

        auto edit = [&](KOR_XML_QUERY_INTERFACE& on, const QString& key, const QVariantMap& values) {
            KOR_RECORD_DATA* record = record_of(on, units, key);
            return record ? TEST_DATABASE_BUILDER::edit_record(on, units, record, values) : "no " + key;
        };
        QString error;
        switch (CHANGE(change))
        {
        case EDIT_TEXT:
            error = edit(engine, "u02", {{"Name", "Vesh spearmen"}});
            break;
        case EDIT_NUMBER:
            error = edit(engine, "u1", {{"men", 18}});
            break;
        case ADD_RECORD:
            error = TEST_DATABASE_BUILDER::add_record(engine, units,
                                                      {{"key", "u05"}, {"faction", "vesh_empire"}});
            break;
        case REMOVE_RECORD:
            error = engine.remove_record(units, *record_of(engine, units, "u10"));
            break;
        case REKEY_RECORD:
            error = edit(engine, "u4", {{"key", "u0"}});
            break;
        case RELOAD:
        {
            // Another program changes the file; the table is read again, maybe
            // into the memory the old one had.
            KOR_XML_QUERY_INTERFACE other(nullptr, QString(), false, false);
            QCOMPARE(other.connect_without_merge(database->path(), false), QString());
            error = edit(other, "u1", {{"alias", "vesh scouts"}});
            engine.clear_table_data(units);
            break;
        }
        case REORDER_COLUMNS:
        {
            KOR_TABLE_SCHEMA reordered(*engine.get_table_schema(units));
            reordered.set_column_ordering({"alias", "key", "men", "faction", "Name"});
            error = engine.edit_table(units, reordered, QString(), QString());
            break;
        }
        case ADD_FIELD:
        {
            KOR_TABLE_SCHEMA* schema = engine.get_table_schema(units);
            std::unique_ptr<KOR_FIELD_SCHEMA> motto(
                TEST_FIELD::plain("motto", KFT_TEXT).with_default("For Vesh").make());
            engine.change_schema(error, schema, schema->agf_special_dependencies(), {motto.get()}, {}, {},
                                 QString(), QString());
            break;
        }
        case ROLL_BACK:
        {
            QVERIFY2(engine.begin_transaction(error, false), qPrintable(error));
            QCOMPARE(edit(engine, "u02", {{"Name", "Vesh spearmen"}}), QString());
            QCOMPARE(TEST_DATABASE_BUILDER::add_record(engine, units, {{"key", "u9"}, {"alias", "vesh"}}),
                     QString());
            QCOMPARE(engine.remove_record(units, *record_of(engine, units, "U3")), QString());
            // Searched inside the transaction, which sees its own changes.
            const QStringList during = searched(engine, search);
            QCOMPARE(during, walked(engine, search));
            QVERIFY(during != before);
            engine.terminate_transaction();
            QCOMPARE(searched(engine, search), before);
            return;
        }
        }
        QVERIFY2(error.isEmpty(), qPrintable(error));
        const QStringList after = searched(engine, search);
        QCOMPARE(after, walked(engine, search));
        QVERIFY(after != before);
    }

    void many_distinct_texts_among_repeated_ones()
    {
        // Enough distinct texts that the index stops looking them up, with a
        // repeated one among them before and after it does.
        TEST_FOLDER folder;
        TEST_DATABASE_BUILDER database(folder.file("db"));
        KOR_XML_QUERY_INTERFACE& engine = database.query_interface();
        database.table("samples", {TEST_FIELD::key("key"), TEST_FIELD::plain("label", KFT_TEXT)});
        QString error;
        QVERIFY2(engine.begin_transaction(error, false), qPrintable(error));
        for (int i = 0; i < 6000; ++i)
            QCOMPARE(TEST_DATABASE_BUILDER::add_record(
                         engine, "samples",
                         {{"key", QString("s%1").arg(i, 4, 10, QChar('0'))},
                          {"label", i % 7 == 0 ? "common" : QString("label %1").arg(i)}}),
                     QString());
        QVERIFY2(engine.end_transaction(error), qPrintable(error));
        database.reconnect();
        QVERIFY2(database.ok(), qPrintable(database.error()));

        for (const SEARCH& search :
             {SEARCH{"common", Qt::CaseSensitive, true}, SEARCH{"label 5998", Qt::CaseSensitive, true},
              SEARCH{"LABEL 1?3", Qt::CaseInsensitive, false}, SEARCH{"s00?1", Qt::CaseSensitive, true}})
        {
            const QStringList expected = walked(engine, search);
            QVERIFY2(!expected.isEmpty(), qPrintable(search.text));
            QCOMPARE(searched(engine, search), expected);
            QCOMPARE(searched(engine, search), expected);
        }
    }

    void index_lives_no_longer_than_what_it_describes()
    {
        TEST_FOLDER folder;
        const std::unique_ptr<TEST_DATABASE_BUILDER> database = units_database(folder.file("db"));
        KOR_XML_QUERY_INTERFACE& engine = database->query_interface();
        const QString units = "units";
        const SEARCH search{"vesh", Qt::CaseInsensitive, false};
        searched(engine, search);
        std::weak_ptr<const void> index = table_of(engine, units)->search_index();
        QVERIFY(!index.expired());
        QCOMPARE(
            TEST_DATABASE_BUILDER::edit_record(engine, units, record_of(engine, units, "u1"), {{"men", 3}}),
            QString());
        QVERIFY(index.expired());
        searched(engine, search);
        index = table_of(engine, units)->search_index();
        // A search that walks tables one at a time lets each go after it.
        engine.clear_table_data(units);
        QVERIFY(index.expired());

        // A table the application gathers itself: fields added to and removed
        // from its records are seen too.
        const KOR_TABLE_SCHEMA* schema = engine.get_table_schema(units);
        KOR_TABLE_DATA gathered(schema);
        QVERIFY(gathered.add_record(TEST_DATABASE_BUILDER::make_record(schema, {{"key", "a"}}).release()));
        const GLOBAL_SEARCH vesh("vesh", Qt::CaseInsensitive, false);
        QVector<GLOBAL_SEARCH_HIT> hits;
        QCOMPARE(vesh.search_table(gathered, hits), 0);
        KOR_RECORD_DATA* record = gathered.record_by_key("a");
        record->add_field_data(schema->field_schema_by_name("alias"), "Vesh");
        QCOMPARE(vesh.search_table(gathered, hits), 1);
        QVERIFY(record->remove_field_data("alias"));
        QCOMPARE(vesh.search_table(gathered, hits), 0);
    }
};

QTEST_GUILESS_MAIN(GLOBAL_SEARCH_TEST)
#include "global_search_test.moc"
