// The index the global search keeps beside each loaded table: later searches
// answer from it exactly what a walk through the records answers, in the
// same order, and every way the engine changes a table is seen by the next
// search.

#include "global_search.h"
#include "global_search_index.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "test_database_builder.h"
#include "test_folder.h"

#include <QRegExp>
#include <QtTest>

#include <memory>

namespace
{
struct SEARCH
{
    QString text;
    Qt::CaseSensitivity sensitivity;
    bool exact;
};

// Every value's text tested by QRegExp: tables in name order, records in key
// order, fields in column order.
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
            return {QStringLiteral("cannot read ") + name + QStringLiteral(": ") + error};
        for (auto it = table->records().begin(); it != table->records().end(); ++it)
            for (const QString& field : table->table_schema()->column_ordering())
            {
                const KOR_FIELD_DATA* data = it.value()->get_field_data(field);
                if (!data)
                    continue;
                const QString value = data->value_text();
                if (search.exact ? expression.exactMatch(value) : value.indexOf(expression) != -1)
                    found.append(QStringList{name, field, it.key(), value}.join(QLatin1Char('|')));
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
        found.append(QStringList{hit.table_name, hit.field_name, hit.key, hit.value}.join(QLatin1Char('|')));
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

enum CHANGE
{
    EDIT_TEXT,
    EDIT_NUMBER,
    ADD_RECORD,
    REMOVE_RECORD,
    REKEY_RECORD,
    RELOAD,
    REORDER_COLUMNS,
    ADD_FIELD
};
} // namespace

class GLOBAL_SEARCH_INDEX_TEST : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void kept_index_answers_as_a_walk_data();
    void kept_index_answers_as_a_walk();
    void changes_are_seen_by_the_next_search_data();
    void changes_are_seen_by_the_next_search();
    void rolled_back_changes_are_gone_from_the_next_search();
    void many_distinct_texts_among_repeated_ones();
    void index_is_dropped_with_a_change_and_freed_with_its_table();
    void fields_changed_in_a_records_table_are_seen();

private:
    std::unique_ptr<TEST_FOLDER> m_folder;
    std::unique_ptr<TEST_DATABASE_BUILDER> m_database;
};

void GLOBAL_SEARCH_INDEX_TEST::init()
{
    m_database.reset();
    m_folder = std::make_unique<TEST_FOLDER>();
    m_database = std::make_unique<TEST_DATABASE_BUILDER>(m_folder->file(QStringLiteral("db")));
    // Columns whose display order is not their name order (ignoring case),
    // keys added out of order, a number column, and texts shared by records.
    m_database->table(QStringLiteral("units"), {TEST_FIELD::key(QStringLiteral("key")),
                                                TEST_FIELD::plain(QStringLiteral("Name"), KFT_TEXT),
                                                TEST_FIELD::plain(QStringLiteral("faction"), KFT_TEXT),
                                                TEST_FIELD::plain(QStringLiteral("men"), KFT_INTEGER),
                                                TEST_FIELD::plain(QStringLiteral("alias"), KFT_TEXT)});
    m_database->table(QStringLiteral("factions"), {TEST_FIELD::key(QStringLiteral("key")),
                                                   TEST_FIELD::plain(QStringLiteral("title"), KFT_TEXT)});
    const QList<QVariantMap> units = {
        {{"key", "u10"}, {"Name", "Vesh guard"}, {"faction", "vesh_empire"}, {"men", 120}, {"alias", "vesh"}},
        {{"key", "u02"}, {"Name", "Spearmen"}, {"faction", "rome"}, {"men", 160}, {"alias", ""}},
        {{"key", "U3"}, {"Name", "Archers"}, {"faction", "vesh_empire"}, {"men", 60}, {"alias", "VESH bows"}},
        {{"key", "u1"}, {"Name", "Scouts"}, {"faction", "rome"}, {"men", 17}, {"alias", "Scouts"}},
        {{"key", "u4"}, {"Name", "Vesh riders"}, {"faction", "vesh_empire"}, {"men", 40}, {"alias", ""}}};
    for (const QVariantMap& unit : units)
        m_database->record(QStringLiteral("units"), unit);
    m_database->record(QStringLiteral("factions"), {{"key", "vesh_empire"}, {"title", "The Vesh"}})
        .record(QStringLiteral("factions"), {{"key", "rome"}, {"title", "Rome"}});
    // Values as the table reader makes them.
    m_database->reconnect();
    QVERIFY2(m_database->ok(), qPrintable(m_database->error()));
}

void GLOBAL_SEARCH_INDEX_TEST::kept_index_answers_as_a_walk_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("case_sensitive");
    QTest::addColumn<bool>("exact");
    QTest::newRow("a word in several columns") << "vesh" << false << false;
    QTest::newRow("the case") << "Vesh" << true << false;
    QTest::newRow("whole values") << "vesh*" << false << true;
    QTest::newRow("numbers by their text") << "1?" << false << false;
    QTest::newRow("keys") << "U?" << true << true;
    QTest::newRow("empty values") << "" << false << true;
    QTest::newRow("everything") << "*" << false << true;
    QTest::newRow("longer than any value") << "vesh_empire and more" << false << false;
}

void GLOBAL_SEARCH_INDEX_TEST::kept_index_answers_as_a_walk()
{
    QFETCH(QString, text);
    QFETCH(bool, case_sensitive);
    QFETCH(bool, exact);
    const SEARCH search{text, case_sensitive ? Qt::CaseSensitive : Qt::CaseInsensitive, exact};
    KOR_XML_QUERY_INTERFACE& engine = m_database->query_interface();
    const QStringList expected = walked(engine, search);

    QCOMPARE(searched(engine, search), expected);
    const KOR_TABLE_DATA* units = table_of(engine, QStringLiteral("units"));
    QVERIFY(units);
    const std::shared_ptr<const void> made = units->search_index();
    QVERIFY(made);
    QCOMPARE(searched(engine, search), expected);
    // The second search answered from the index the first one made.
    QCOMPARE(units->search_index(), made);
}

void GLOBAL_SEARCH_INDEX_TEST::changes_are_seen_by_the_next_search_data()
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
}

void GLOBAL_SEARCH_INDEX_TEST::changes_are_seen_by_the_next_search()
{
    QFETCH(int, change);
    QFETCH(QString, text);
    const SEARCH search{text, Qt::CaseInsensitive, false};
    KOR_XML_QUERY_INTERFACE& engine = m_database->query_interface();
    const QString units = QStringLiteral("units");
    const QStringList before = searched(engine, search);
    QCOMPARE(before, walked(engine, search));

    QString error;
    switch (CHANGE(change))
    {
    case EDIT_TEXT:
        error = TEST_DATABASE_BUILDER::edit_record(engine, units, record_of(engine, units, "u02"),
                                                   {{"Name", "Vesh spearmen"}});
        break;
    case EDIT_NUMBER:
        error =
            TEST_DATABASE_BUILDER::edit_record(engine, units, record_of(engine, units, "u1"), {{"men", 18}});
        break;
    case ADD_RECORD:
        error = TEST_DATABASE_BUILDER::add_record(
            engine, units, {{"key", "u05"}, {"Name", "Slingers"}, {"faction", "vesh_empire"}});
        break;
    case REMOVE_RECORD:
        error = engine.remove_record(units, *record_of(engine, units, "u10"));
        break;
    case REKEY_RECORD:
        error = TEST_DATABASE_BUILDER::edit_record(engine, units, record_of(engine, units, "u4"),
                                                   {{"key", "u0"}});
        break;
    case RELOAD:
    {
        // Another program changes the file; the table is read again, maybe
        // into the memory the old one had.
        KOR_XML_QUERY_INTERFACE other(nullptr, QString(), false, false);
        QCOMPARE(other.connect_without_merge(m_database->path(), false), QString());
        KOR_RECORD_DATA* scouts = record_of(other, units, "u1");
        QVERIFY(scouts);
        error = TEST_DATABASE_BUILDER::edit_record(other, units, scouts, {{"alias", "vesh scouts"}});
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
        std::unique_ptr<KOR_FIELD_SCHEMA> added(
            TEST_FIELD::plain(QStringLiteral("motto"), KFT_TEXT).with_default("For Vesh").make());
        engine.change_schema(error, schema, schema->agf_special_dependencies(), {added.get()}, {}, {},
                             QString(), QString());
        break;
    }
    }
    QVERIFY2(error.isEmpty(), qPrintable(error));

    const QStringList after = searched(engine, search);
    QCOMPARE(after, walked(engine, search));
    QVERIFY(after != before);
}

void GLOBAL_SEARCH_INDEX_TEST::rolled_back_changes_are_gone_from_the_next_search()
{
    const SEARCH search{QStringLiteral("vesh"), Qt::CaseInsensitive, false};
    KOR_XML_QUERY_INTERFACE& engine = m_database->query_interface();
    const QString units = QStringLiteral("units");
    const QStringList before = searched(engine, search);

    QString error;
    QVERIFY2(engine.begin_transaction(error, false), qPrintable(error));
    QCOMPARE(TEST_DATABASE_BUILDER::edit_record(engine, units, record_of(engine, units, "u02"),
                                                {{"Name", "Vesh spearmen"}}),
             QString());
    QCOMPARE(TEST_DATABASE_BUILDER::add_record(engine, units, {{"key", "u9"}, {"alias", "vesh"}}), QString());
    QCOMPARE(engine.remove_record(units, *record_of(engine, units, "U3")), QString());
    // Inside the transaction the search sees what it changed so far.
    const QStringList during = searched(engine, search);
    QCOMPARE(during, walked(engine, search));
    QVERIFY(during != before);

    engine.terminate_transaction();
    QCOMPARE(searched(engine, search), before);
    QCOMPARE(walked(engine, search), before);
}

void GLOBAL_SEARCH_INDEX_TEST::many_distinct_texts_among_repeated_ones()
{
    // Enough distinct texts that the index stops looking them up, with a
    // repeated one among them before and after it does.
    KOR_XML_QUERY_INTERFACE& engine = m_database->query_interface();
    m_database->table(QStringLiteral("samples"), {TEST_FIELD::key(QStringLiteral("key")),
                                                  TEST_FIELD::plain(QStringLiteral("label"), KFT_TEXT)});
    QString error;
    QVERIFY2(engine.begin_transaction(error, false), qPrintable(error));
    for (int i = 0; i < 6000; ++i)
    {
        const QString label = i % 7 == 0 ? QStringLiteral("common") : QStringLiteral("label %1").arg(i);
        QCOMPARE(TEST_DATABASE_BUILDER::add_record(
                     engine, QStringLiteral("samples"),
                     {{"key", QStringLiteral("s%1").arg(i, 4, 10, QLatin1Char('0'))}, {"label", label}}),
                 QString());
    }
    QVERIFY2(engine.end_transaction(error), qPrintable(error));
    m_database->reconnect();
    QVERIFY2(m_database->ok(), qPrintable(m_database->error()));

    for (const SEARCH& search : {SEARCH{QStringLiteral("common"), Qt::CaseSensitive, true},
                                 SEARCH{QStringLiteral("label 5998"), Qt::CaseSensitive, true},
                                 SEARCH{QStringLiteral("LABEL 1?3"), Qt::CaseInsensitive, false},
                                 SEARCH{QStringLiteral("s00?1"), Qt::CaseSensitive, true}})
    {
        const QStringList expected = walked(engine, search);
        QVERIFY2(!expected.isEmpty(), qPrintable(search.text));
        QCOMPARE(searched(engine, search), expected);
        QCOMPARE(searched(engine, search), expected);
    }
}

void GLOBAL_SEARCH_INDEX_TEST::index_is_dropped_with_a_change_and_freed_with_its_table()
{
    KOR_XML_QUERY_INTERFACE& engine = m_database->query_interface();
    const QString units = QStringLiteral("units");
    const SEARCH search{QStringLiteral("vesh"), Qt::CaseInsensitive, false};
    searched(engine, search);
    std::weak_ptr<const void> index = table_of(engine, units)->search_index();
    QVERIFY(!index.expired());
    QCOMPARE(TEST_DATABASE_BUILDER::edit_record(engine, units, record_of(engine, units, "u1"), {{"men", 3}}),
             QString());
    QVERIFY(index.expired());

    searched(engine, search);
    index = table_of(engine, units)->search_index();
    QVERIFY(!index.expired());
    // A search that walks tables one at a time lets each go after it.
    engine.clear_table_data(units);
    QVERIFY(index.expired());
}

void GLOBAL_SEARCH_INDEX_TEST::fields_changed_in_a_records_table_are_seen()
{
    // A table the application builds of its own, searched table by table.
    const std::unique_ptr<KOR_TABLE_SCHEMA> schema = TEST_DATABASE_BUILDER::make_schema(
        QStringLiteral("gathered"),
        {TEST_FIELD::key(QStringLiteral("key")), TEST_FIELD::plain(QStringLiteral("note"), KFT_TEXT)});
    KOR_TABLE_DATA table(schema.get());
    for (const char* key : {"a", "b"})
    {
        std::unique_ptr<KOR_RECORD_DATA> record =
            TEST_DATABASE_BUILDER::make_record(schema.get(), {{"key", key}, {"note", "plain"}});
        QVERIFY(table.add_record(record.release()));
    }
    const GLOBAL_SEARCH search(QStringLiteral("vesh"), Qt::CaseInsensitive, false);
    QVector<GLOBAL_SEARCH_HIT> hits;
    QCOMPARE(search.search_table(table, hits), 0);

    KOR_RECORD_DATA* b = table.record_by_key(QStringLiteral("b"));
    b->add_field_data(schema->field_schema_by_name(QStringLiteral("note")), QStringLiteral("Vesh note"));
    QCOMPARE(search.search_table(table, hits), 1);
    QCOMPARE(hits.last().key, QStringLiteral("b"));
    QCOMPARE(hits.last().value, QStringLiteral("Vesh note"));

    QVERIFY(b->remove_field_data(QStringLiteral("note")));
    QCOMPARE(search.search_table(table, hits), 0);
}

QTEST_GUILESS_MAIN(GLOBAL_SEARCH_INDEX_TEST)
#include "global_search_index_test.moc"
