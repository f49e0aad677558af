// The global search: its pattern answers as QRegExp's wildcard syntax does,
// and a search of a generated database finds what a plain walk with QRegExp
// finds, in the same order.

#include "global_search.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "sample_project.h"
#include "test_folder.h"
#include "test_helpers.h"

#include <QRegExp>
#include <QtTest>

class GLOBAL_SEARCH_TEST : public QObject
{
    Q_OBJECT

private slots:
    void pattern_answers_as_qregexp_data();
    void pattern_answers_as_qregexp();
    void type_filter_never_hides_a_value();
    void search_finds_what_a_plain_walk_finds_data();
    void search_finds_what_a_plain_walk_finds();
    void hooks_hear_failures_and_stop_the_search();

private:
    void make_database();
    TEST_FOLDER m_folder;
    QString m_database;
};

namespace
{
const QStringList texts = {QString(),
                           QStringLiteral("a"),
                           QStringLiteral("abc"),
                           QStringLiteral("ABC"),
                           QStringLiteral("xabcx"),
                           QStringLiteral("aXbXc"),
                           QStringLiteral("aa"),
                           QStringLiteral("cab"),
                           QStringLiteral("a*b"),
                           QStringLiteral("a.b$(c)"),
                           QStringLiteral("line\nbreak"),
                           QStringLiteral("\u00c4rger \u00fcber \u00df"),
                           QStringLiteral("\u0130stanbul"),
                           QStringLiteral("vesh_empire_civil_war"),
                           QStringLiteral("12.5e-07")};
} // namespace

void GLOBAL_SEARCH_TEST::pattern_answers_as_qregexp_data()
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

void GLOBAL_SEARCH_TEST::pattern_answers_as_qregexp()
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
                const bool expected = exact ? expression.exactMatch(text) : text.indexOf(expression) != -1;
                QVERIFY2(matcher.matches(text) == expected,
                         qPrintable(QStringLiteral("'%1' on '%2', %3, %4")
                                        .arg(pattern, text,
                                             exact ? QStringLiteral("exact") : QStringLiteral("anywhere"),
                                             sensitivity == Qt::CaseSensitive ? QStringLiteral("case")
                                                                              : QStringLiteral("no case"))));
            }
        }
    }
}

void GLOBAL_SEARCH_TEST::type_filter_never_hides_a_value()
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
                const QString pattern = QStringLiteral("*") + unit + QStringLiteral("*");
                QVERIFY2(GLOBAL_SEARCH_PATTERN(pattern, sensitivity, false).can_match_type(value.first),
                         qPrintable(QStringLiteral("'%1' ruled out for '%2'").arg(pattern, text)));
            }
    }
    QVERIFY(!GLOBAL_SEARCH_PATTERN(QStringLiteral("gold"), Qt::CaseInsensitive, false)
                 .can_match_type(KFT_INTEGER));
    QVERIFY(
        GLOBAL_SEARCH_PATTERN(QStringLiteral("TRUE"), Qt::CaseInsensitive, true).can_match_type(KFT_YESNO));
    QVERIFY(
        !GLOBAL_SEARCH_PATTERN(QStringLiteral("TRUE"), Qt::CaseSensitive, true).can_match_type(KFT_YESNO));
}

void GLOBAL_SEARCH_TEST::make_database()
{
    if (!m_database.isEmpty())
        return;
    m_database = m_folder.file(QStringLiteral("db"));
    const QString error = SAMPLE_PROJECT::generate_database(m_database);
    QVERIFY2(error.isEmpty(), qPrintable(error));
}

void GLOBAL_SEARCH_TEST::search_finds_what_a_plain_walk_finds_data()
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
    QTest::newRow("everything") << "*" << false << true;
    QTest::newRow("nothing") << "no such text anywhere" << false << false;
}

void GLOBAL_SEARCH_TEST::search_finds_what_a_plain_walk_finds()
{
    QFETCH(QString, text);
    QFETCH(bool, case_sensitive);
    QFETCH(bool, exact);
    make_database();
    KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
    QCOMPARE(engine.connect_without_merge(m_database, false), QString());
    const Qt::CaseSensitivity sensitivity = case_sensitive ? Qt::CaseSensitive : Qt::CaseInsensitive;

    // The reference: every table in name order, records in key order,
    // fields in column order, each value's text tested by QRegExp.
    QRegExp expression(text, sensitivity, QRegExp::Wildcard);
    QStringList expected;
    QMap<QString, bool> names;
    engine.get_table_names(names);
    for (const QString& name : names.keys())
    {
        QString error;
        const KOR_TABLE_DATA* table = engine.get_table_data(error, name);
        QVERIFY2(table, qPrintable(error));
        for (const KOR_RECORD_DATA* record : table->records())
            for (const QString& field : table->table_schema()->column_ordering())
            {
                const QString value = record->get_field_data(field)->value_text();
                if (exact ? expression.exactMatch(value) : value.indexOf(expression) != -1)
                    expected.append(QStringList{name, field, record->key(), value}.join(QLatin1Char('|')));
            }
    }

    QVector<GLOBAL_SEARCH_HIT> hits;
    QVERIFY(GLOBAL_SEARCH(text, sensitivity, exact).search(engine, hits));
    QStringList found;
    for (const GLOBAL_SEARCH_HIT& hit : hits)
        found.append(QStringList{hit.table_name, hit.field_name, hit.key, hit.value}.join(QLatin1Char('|')));
    QCOMPARE(found, expected);
}

void GLOBAL_SEARCH_TEST::hooks_hear_failures_and_stop_the_search()
{
    TEST_FOLDER folder;
    const QString copy = folder.file(QStringLiteral("db"));
    QVERIFY(SAMPLE_PROJECT::generate_database(copy).isEmpty());
    // A table the engine refuses is left out, and said. It is the first by
    // name, so that the search reaches it before it stops.
    QVERIFY(ORBIN_TEST::write_file(copy + QStringLiteral("/TExc_ImplementedTables.xml"), "<table><record>"));
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
    QVERIFY(!GLOBAL_SEARCH(QStringLiteral("*"), Qt::CaseInsensitive, true).search(engine, hits, hooks));
    QCOMPARE(failed, QStringList{QStringLiteral("TExc_ImplementedTables")});
    // The search stops after the first table that passes 50 hits, and keeps them.
    QVERIFY(hits.size() > 50);
    QCOMPARE(hits.last().table_name, searched.last());
    QMap<QString, bool> names;
    engine.get_table_names(names);
    QVERIFY(searched.size() < names.size());
}

QTEST_GUILESS_MAIN(GLOBAL_SEARCH_TEST)
#include "global_search_test.moc"
