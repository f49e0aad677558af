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
    m_db = std::make_unique<TEST_DATABASE_BUILDER>(m_folder->filePath(QStringLiteral("db")));
    m_db->table(QStringLiteral("factions"),
                {TEST_FIELD::key(QStringLiteral("key")), TEST_FIELD::plain(QStringLiteral("name"), KFT_TEXT)})
        .table(QStringLiteral("units"),
               {TEST_FIELD::key(QStringLiteral("unit")),
                TEST_FIELD::plain(QStringLiteral("faction"), KFT_TEXT)
                    .refers_to(QStringLiteral("factions"), QStringLiteral("key"), {QStringLiteral("name")}),
                TEST_FIELD::plain(QStringLiteral("ally"), KFT_TEXT)
                    .required()
                    .refers_to(QStringLiteral("factions"), QStringLiteral("key"))})
        .table(QStringLiteral("regiments"),
               {TEST_FIELD::key(QStringLiteral("regiment"), KFT_INTEGER),
                TEST_FIELD::plain(QStringLiteral("unit"), KFT_TEXT)
                    .refers_to(QStringLiteral("units"), QStringLiteral("unit"),
                               {QStringLiteral("unit"), QStringLiteral("faction")})})
        .record(QStringLiteral("factions"), {{"key", "rome"}, {"name", "Rome"}})
        .record(QStringLiteral("factions"), {{"key", "carthage"}, {"name", "Carthage"}})
        .record(QStringLiteral("factions"), {{"key", "athens"}, {"name", "athens"}})
        .record(QStringLiteral("factions"), {{"key", "aardvarks"}, {"name", "Zoo"}})
        .record(QStringLiteral("units"), {{"unit", "hastati"}, {"faction", "rome"}, {"ally", "rome"}})
        .record(QStringLiteral("units"), {{"unit", "elephants"}, {"faction", "carthage"}, {"ally", "rome"}})
        .record(QStringLiteral("regiments"), {{"regiment", 1}, {"unit", "hastati"}})
        .record(QStringLiteral("regiments"), {{"regiment", 2}, {"unit", "hastati"}});
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
}

void TST_KOR_ENGINE_LOOKUPS::dependency_values_exist_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("exists");

    QTest::newRow("existing key") << "faction" << QVariant(QStringLiteral("rome")) << true;
    QTest::newRow("missing key") << "faction" << QVariant(QStringLiteral("gauls")) << false;
    QTest::newRow("case matters") << "faction" << QVariant(QStringLiteral("Rome")) << false;
    QTest::newRow("empty optional") << "faction" << QVariant(QString()) << true;
    QTest::newRow("no value, optional") << "faction" << QVariant() << true;
    QTest::newRow("empty required") << "ally" << QVariant(QString()) << false;
    QTest::newRow("no relationship") << "unit" << QVariant(QStringLiteral("anything")) << true;
}

void TST_KOR_ENGINE_LOOKUPS::dependency_values_exist()
{
    QFETCH(QString, field);
    QFETCH(QVariant, value);
    QFETCH(bool, exists);
    QString error;
    QCOMPARE(m_db->query_interface().dependency_value_exists(
                 error, QStringLiteral("units"), this->field(QStringLiteral("units"), field), value),
             exists);
    QCOMPARE(error.isEmpty(), exists);
}

void TST_KOR_ENGINE_LOOKUPS::lookup_values_match_single_lookups()
{
    KOR_XML_QUERY_INTERFACE& engine = m_db->query_interface();
    for (const QString& name : {QStringLiteral("faction"), QStringLiteral("ally")})
    {
        QVector<QVariant> keys;
        QList<QString> texts;
        QString error;
        const KOR_FIELD_SCHEMA* lookup = field(QStringLiteral("units"), name);
        QVERIFY2(engine.get_field_lookup_values(error, keys, texts, lookup), qPrintable(error));
        QCOMPARE(keys.size(), texts.size());
        QCOMPARE(keys.size(), 4);
        for (int i = 0; i < keys.size(); ++i)
        {
            QString single;
            QVERIFY(engine.get_field_lookup_value(error, single, lookup, keys.at(i)));
            QCOMPARE(single, texts.at(i));
        }
        for (int i = 1; i < texts.size(); ++i)
            QVERIFY(QString::compare(texts.at(i - 1), texts.at(i), Qt::CaseInsensitive) <= 0);
    }
    QVector<QVariant> keys;
    QList<QString> texts;
    QString error;
    QVERIFY(engine.get_field_lookup_values(error, keys, texts,
                                           field(QStringLiteral("units"), QStringLiteral("faction"))));
    QCOMPARE(texts, QList<QString>({QStringLiteral("athens"), QStringLiteral("Carthage"),
                                    QStringLiteral("Rome"), QStringLiteral("Zoo")}));
    QCOMPARE(keys.first().toString(), QStringLiteral("athens"));

    QString text;
    QVERIFY(engine.get_field_lookup_value(error, text,
                                          field(QStringLiteral("regiments"), QStringLiteral("unit")),
                                          QStringLiteral("elephants")));
    QCOMPARE(text, QStringLiteral("elephants:carthage"));
    QVERIFY(!engine.get_field_lookup_value(
        error, text, field(QStringLiteral("units"), QStringLiteral("faction")), QStringLiteral("gauls")));
    QVERIFY(text.isEmpty());
    QVERIFY(!error.isEmpty());
}

void TST_KOR_ENGINE_LOOKUPS::main_dependency_values_are_the_foreign_keys()
{
    QVector<QVariant> values;
    QString error;
    QVERIFY(m_db->query_interface().get_main_dependency_field_data(
        error, values, field(QStringLiteral("units"), QStringLiteral("faction"))));
    QStringList texts;
    for (const QVariant& value : values)
        texts.append(value.toString());
    QCOMPARE(texts, QStringList({"aardvarks", "athens", "carthage", "rome"}));
    QVERIFY(!m_db->query_interface().get_main_dependency_field_data(
        error, values, field(QStringLiteral("units"), QStringLiteral("unit"))));
}

void TST_KOR_ENGINE_LOOKUPS::dependents_using_a_value_are_found()
{
    KOR_XML_QUERY_INTERFACE& engine = m_db->query_interface();
    const KOR_FIELD_SCHEMA* key = field(QStringLiteral("factions"), QStringLiteral("key"));
    QString error;
    QVERIFY(engine.any_dependents_using_existing_value(error, QStringLiteral("factions"), key,
                                                       QStringLiteral("rome")));
    QVERIFY(!engine.any_dependents_using_existing_value(error, QStringLiteral("factions"), key,
                                                        QStringLiteral("athens")));
    QMap<QString, QSet<QString>> users;
    QVERIFY(engine.dependents_of_field_using_value(users, key, QStringLiteral("rome")));
    QCOMPARE(users.keys(), QList<QString>{QStringLiteral("units")});
    QCOMPARE(users.value(QStringLiteral("units")), QSet<QString>({"hastati", "elephants"}));
    QVERIFY(engine.dependents_of_field_using_value(
        users, field(QStringLiteral("units"), QStringLiteral("unit")), QStringLiteral("hastati")));
    QCOMPARE(users.value(QStringLiteral("regiments")), QSet<QString>({"1", "2"}));
}

void TST_KOR_ENGINE_LOOKUPS::related_tables_are_collected()
{
    KOR_XML_QUERY_INTERFACE& engine = m_db->query_interface();
    QSet<QString> related;
    engine.add_dependent_tables_to_set(related, QStringLiteral("units"));
    QCOMPARE(related, QSet<QString>{QStringLiteral("regiments")});
    engine.add_dependency_tables_to_set(related, QStringLiteral("units"));
    QCOMPARE(related, QSet<QString>({QStringLiteral("regiments"), QStringLiteral("factions")}));

    QString error;
    QList<QString> below;
    QCOMPARE(engine.collect_dependant_tables(below, engine.get_table_data(error, QStringLiteral("factions")),
                                             error),
             2);
    QCOMPARE(below, QList<QString>({QStringLiteral("units"), QStringLiteral("regiments")}));
    QList<QString> above;
    QCOMPARE(engine.collect_dependency_tables(
                 above, engine.get_table_data(error, QStringLiteral("regiments")), error),
             2);
    QCOMPARE(above, QList<QString>({QStringLiteral("units"), QStringLiteral("factions")}));

    const auto relationships = engine.relationship_data();
    QCOMPARE(relationships.value(QStringLiteral("regiments")).value(QStringLiteral("unit")).foreign_table,
             QStringLiteral("units"));
    QCOMPARE(relationships.value(QStringLiteral("units")).keys(), QList<QString>({"ally", "faction"}));
}

void TST_KOR_ENGINE_LOOKUPS::fields_know_who_refers_to_them()
{
    typedef QList<QPair<QString, QString>> REFERENCES;
    QCOMPARE(field(QStringLiteral("factions"), QStringLiteral("key"))->dependents(),
             REFERENCES({{"units", "ally"}, {"units", "faction"}}));
    QCOMPARE(field(QStringLiteral("factions"), QStringLiteral("name"))->looked_up_by(),
             REFERENCES({{"units", "faction"}}));
    QCOMPARE(field(QStringLiteral("units"), QStringLiteral("faction"))->looked_up_by(),
             REFERENCES({{"regiments", "unit"}}));
    QVERIFY(field(QStringLiteral("units"), QStringLiteral("faction"))->dependents().isEmpty());
    QCOMPARE(m_db->query_interface().get_table_schema(QStringLiteral("factions"))->dependent_fields(),
             (QMap<QString, QStringList>{{QStringLiteral("units"), {"ally", "faction"}}}));
}

QTEST_GUILESS_MAIN(TST_KOR_ENGINE_LOOKUPS)
#include "tst_kor_engine_lookups.moc"
