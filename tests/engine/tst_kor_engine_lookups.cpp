// Lookups and relationships of the query interface on a small database:
// factions <- units.faction (looked up by name), units <- regiments.unit.

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "test_database_builder.h"

#include <QtTest>

class TST_KOR_ENGINE_LOOKUPS : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void dependency_values_exist_data();
    void dependency_values_exist();
    void lookup_values_match_single_lookups();
    void main_dependency_values_are_the_foreign_keys();
    void dependents_using_a_value_are_found();
    void related_tables_are_collected();
    void fields_know_who_refers_to_them();

private:
    const KOR_FIELD_SCHEMA* field(const QString& table, const QString& name)
    {
        return m_db->query_interface().get_table_schema(table)->field_schema_by_name(name);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<TEST_DATABASE_BUILDER> m_db;
};

void TST_KOR_ENGINE_LOOKUPS::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_db = std::make_unique<TEST_DATABASE_BUILDER>(m_folder->filePath("db"));
    m_db->table("factions", {TEST_FIELD::key("key"), TEST_FIELD::plain("name", KFT_TEXT)})
        .table("units", {TEST_FIELD::key("unit"),
                         TEST_FIELD::plain("faction", KFT_TEXT).refers_to("factions", "key", {"name"}),
                         TEST_FIELD::plain("ally", KFT_TEXT).required().refers_to("factions", "key")})
        .table("regiments",
               {TEST_FIELD::key("regiment", KFT_INTEGER),
                TEST_FIELD::plain("unit", KFT_TEXT).refers_to("units", "unit", {"unit", "faction"})})
        .record("factions", {{"key", "rome"}, {"name", "Rome"}})
        .record("factions", {{"key", "carthage"}, {"name", "Carthage"}})
        .record("factions", {{"key", "athens"}, {"name", "athens"}})
        .record("factions", {{"key", "aardvarks"}, {"name", "Zoo"}})
        .record("units", {{"unit", "hastati"}, {"faction", "rome"}, {"ally", "rome"}})
        .record("units", {{"unit", "elephants"}, {"faction", "carthage"}, {"ally", "rome"}})
        .record("regiments", {{"regiment", 1}, {"unit", "hastati"}})
        .record("regiments", {{"regiment", 2}, {"unit", "hastati"}});
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
}

void TST_KOR_ENGINE_LOOKUPS::dependency_values_exist_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("exists");

    QTest::newRow("existing key") << "faction" << QVariant("rome") << true;
    QTest::newRow("missing key") << "faction" << QVariant("gauls") << false;
    QTest::newRow("case matters") << "faction" << QVariant("Rome") << false;
    QTest::newRow("empty optional") << "faction" << QVariant(QString()) << true;
    QTest::newRow("no value, optional") << "faction" << QVariant() << true;
    QTest::newRow("empty required") << "ally" << QVariant(QString()) << false;
    QTest::newRow("no relationship") << "unit" << QVariant("anything") << true;
}

void TST_KOR_ENGINE_LOOKUPS::dependency_values_exist()
{
    QFETCH(QString, field);
    QFETCH(QVariant, value);
    QFETCH(bool, exists);
    QString error;
    QCOMPARE(
        m_db->query_interface().dependency_value_exists(error, "units", this->field("units", field), value),
        exists);
    QCOMPARE(error.isEmpty(), exists);
}

void TST_KOR_ENGINE_LOOKUPS::lookup_values_match_single_lookups()
{
    KOR_XML_QUERY_INTERFACE& engine = m_db->query_interface();
    QString error;
    // In the order of their texts, without regard to case; "ally" shows its key.
    const QMap<QString, QList<QString>> expected = {{"faction", {"athens", "Carthage", "Rome", "Zoo"}},
                                                    {"ally", {"aardvarks", "athens", "carthage", "rome"}}};
    for (auto it = expected.begin(); it != expected.end(); ++it)
    {
        QVector<QVariant> keys;
        QList<QString> texts;
        const KOR_FIELD_SCHEMA* lookup = field("units", it.key());
        QVERIFY2(engine.get_field_lookup_values(error, keys, texts, lookup), qPrintable(error));
        QCOMPARE(texts, it.value());
        QCOMPARE(keys.size(), texts.size());
        for (int i = 0; i < keys.size(); ++i)
        {
            QString single;
            QVERIFY(engine.get_field_lookup_value(error, single, lookup, keys.at(i)));
            QCOMPARE(single, texts.at(i));
        }
    }
    QString text;
    QVERIFY(engine.get_field_lookup_value(error, text, field("regiments", "unit"), "elephants"));
    QCOMPARE(text, "elephants:carthage");
    QVERIFY(!engine.get_field_lookup_value(error, text, field("units", "faction"), "gauls"));
    QVERIFY(text.isEmpty());
    QVERIFY(!error.isEmpty());
}

void TST_KOR_ENGINE_LOOKUPS::main_dependency_values_are_the_foreign_keys()
{
    QVector<QVariant> values;
    QString error;
    QVERIFY(m_db->query_interface().get_main_dependency_field_data(error, values, field("units", "faction")));
    QStringList texts;
    for (const QVariant& value : values)
        texts.append(value.toString());
    QCOMPARE(texts, QStringList({"aardvarks", "athens", "carthage", "rome"}));
    QVERIFY(!m_db->query_interface().get_main_dependency_field_data(error, values, field("units", "unit")));
}

void TST_KOR_ENGINE_LOOKUPS::dependents_using_a_value_are_found()
{
    KOR_XML_QUERY_INTERFACE& engine = m_db->query_interface();
    const KOR_FIELD_SCHEMA* key = field("factions", "key");
    QString error;
    QVERIFY(engine.any_dependents_using_existing_value(error, "factions", key, "rome"));
    QVERIFY(!engine.any_dependents_using_existing_value(error, "factions", key, "athens"));
    QMap<QString, QSet<QString>> users;
    QVERIFY(engine.dependents_of_field_using_value(users, key, "rome"));
    QCOMPARE(users.keys(), QList<QString>{"units"});
    QCOMPARE(users.value("units"), QSet<QString>({"hastati", "elephants"}));
    QVERIFY(engine.dependents_of_field_using_value(users, field("units", "unit"), "hastati"));
    QCOMPARE(users.value("regiments"), QSet<QString>({"1", "2"}));
}

void TST_KOR_ENGINE_LOOKUPS::related_tables_are_collected()
{
    KOR_XML_QUERY_INTERFACE& engine = m_db->query_interface();
    QSet<QString> related;
    engine.add_dependent_tables_to_set(related, "units");
    QCOMPARE(related, QSet<QString>{"regiments"});
    engine.add_dependency_tables_to_set(related, "units");
    QCOMPARE(related, QSet<QString>({"regiments", "factions"}));

    QString error;
    QList<QString> below;
    QCOMPARE(engine.collect_dependant_tables(below, engine.get_table_data(error, "factions"), error), 2);
    QCOMPARE(below, QList<QString>({"units", "regiments"}));
    QList<QString> above;
    QCOMPARE(engine.collect_dependency_tables(above, engine.get_table_data(error, "regiments"), error), 2);
    QCOMPARE(above, QList<QString>({"units", "factions"}));

    const auto relationships = engine.relationship_data();
    QCOMPARE(relationships.value("regiments").value("unit").foreign_table, "units");
    QCOMPARE(relationships.value("units").keys(), QList<QString>({"ally", "faction"}));
}

void TST_KOR_ENGINE_LOOKUPS::fields_know_who_refers_to_them()
{
    typedef QList<QPair<QString, QString>> REFERENCES;
    QCOMPARE(field("factions", "key")->dependents(), REFERENCES({{"units", "ally"}, {"units", "faction"}}));
    QCOMPARE(field("factions", "name")->looked_up_by(), REFERENCES({{"units", "faction"}}));
    QCOMPARE(field("units", "faction")->looked_up_by(), REFERENCES({{"regiments", "unit"}}));
    QVERIFY(field("units", "faction")->dependents().isEmpty());
    QCOMPARE(m_db->query_interface().get_table_schema("factions")->dependent_fields(),
             (QMap<QString, QStringList>{{"units", {"ally", "faction"}}}));
}

QTEST_GUILESS_MAIN(TST_KOR_ENGINE_LOOKUPS)
#include "tst_kor_engine_lookups.moc"
