// Schema changes through the query interface: tables made, changed and
// removed, the update commands they leave, and those commands applied to
// another database.

#include "kor_database_schema.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "metafield_and_schema.h"
#include "test_database_builder.h"
#include "test_helpers.h"
#include "update_command_item.h"
#include "update_command_items.h"

#include <QtTest>

namespace
{
const auto value_of = &TEST_DATABASE_BUILDER::value_text;
const auto find = &TEST_DATABASE_BUILDER::find_record;

// Every file and folder below `folder` with the bytes of the files.
QMap<QString, QByteArray> folder_bytes(const QString& folder)
{
    QMap<QString, QByteArray> result;
    QDirIterator it(folder, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext())
    {
        const QString path = it.next();
        result.insert(QDir(folder).relativeFilePath(path), ORBIN_TEST::read_file(path));
    }
    return result;
}

typedef QMap<METAFIELD_AND_SCHEMA, QVariant> CHANGES;
} // namespace

// Every test starts from factions <- units.faction, with two units.
class TST_KOR_ENGINE_SCHEMA : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void add_table_writes_its_files_and_a_command();
    void names_that_could_leave_the_folder_are_refused_data();
    void names_that_could_leave_the_folder_are_refused();
    void new_required_fields_are_filled_data();
    void new_required_fields_are_filled();
    void a_required_field_without_a_value_changes_nothing();
    void surviving_fields_and_records_stay_the_same_objects();
    void a_rename_reaches_records_and_referring_tables();
    void type_changes_convert_values_or_change_nothing();
    void key_changes_rekey_records_or_change_nothing();
    void fields_and_tables_others_refer_to_cannot_be_removed();
    void removing_a_table_joins_the_transaction();
    void field_descriptions_change_inside_a_transaction();
    void update_commands_rebuild_the_schemas_elsewhere();
    void malformed_update_commands_name_their_line_data();
    void malformed_update_commands_name_their_line();

private:
    QString database_path(const QString& name = "db") const { return m_folder->filePath(name); }
    KOR_XML_QUERY_INTERFACE& engine() { return m_db->query_interface(); }
    KOR_TABLE_SCHEMA* schema(const QString& table) { return engine().get_table_schema(table); }
    // The last command of the database's commands file, null when there is none.
    const UPDATE_COMMAND_ITEM* last_command()
    {
        m_commands = std::make_unique<UPDATE_COMMAND_ITEMS>();
        if (!m_commands->parse_commands_file_for_schema_changes(database_path() + "/update_commands.txt"))
            return nullptr;
        return m_commands->item_at(m_commands->command_count() - 1);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<TEST_DATABASE_BUILDER> m_db;
    std::unique_ptr<UPDATE_COMMAND_ITEMS> m_commands;
};

void TST_KOR_ENGINE_SCHEMA::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_db = std::make_unique<TEST_DATABASE_BUILDER>(database_path());
    m_db->table("factions", {TEST_FIELD::key("key"), TEST_FIELD::plain("name", KFT_TEXT)})
        .table("units", {TEST_FIELD::key("unit"),
                         TEST_FIELD::plain("faction", KFT_TEXT).refers_to("factions", "key", {"key", "name"}),
                         TEST_FIELD::plain("men", KFT_TEXT)})
        .record("factions", {{"key", "rome"}, {"name", "Rome"}})
        .record("factions", {{"key", "carthage"}, {"name", "Carthage"}})
        .record("units", {{"unit", "hastati"}, {"faction", "rome"}, {"men", "60"}})
        .record("units", {{"unit", "elephants"}, {"faction", "carthage"}, {"men", "12"}});
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
}

void TST_KOR_ENGINE_SCHEMA::add_table_writes_its_files_and_a_command()
{
    m_db->table("heroes", {TEST_FIELD::key("key")});
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
    QVERIFY(QFile::exists(database_path() + QStringLiteral("/Veld_schemas/heroes.xml")));
    QVERIFY(QFile::exists(database_path() + QStringLiteral("/heroes.xml")));
    const UPDATE_COMMAND_ITEM* command = last_command();
    QVERIFY(command);
    QCOMPARE(command->command_type, int(UPDATE_COMMAND_ITEM::UCT_ADD_TABLE));
    QCOMPARE(command->table_name(), "heroes");
    QCOMPARE(command->edit_user(), "tester");
    QVERIFY(command->table_schema());
    QCOMPARE(command->table_schema()->primary_key_fields(), QList<QString>{"key"});

    // Adding the same name again, in any case, is refused.
    const QString again =
        engine().add_table(*TEST_DATABASE_BUILDER::make_schema("HEROES", {TEST_FIELD::key("key")}), "", "");
    QVERIFY(again.contains("already exists"));
}

void TST_KOR_ENGINE_SCHEMA::names_that_could_leave_the_folder_are_refused_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("field");

    QTest::newRow("parent folder") << "../outside" << "key";
    QTest::newRow("sub folder") << "sub/table" << "key";
    QTest::newRow("absolute") << "/tmp/table" << "key";
    QTest::newRow("backslash") << "a\\b" << "key";
    QTest::newRow("empty") << "" << "key";
    QTest::newRow("database file") << "Veld_validation" << "key";
    QTest::newRow("field with a slash") << "fine" << "a/b";
    QTest::newRow("field with markup") << "fine" << "a<b";
}

void TST_KOR_ENGINE_SCHEMA::names_that_could_leave_the_folder_are_refused()
{
    QFETCH(QString, table);
    QFETCH(QString, field);
    const QMap<QString, QByteArray> before = folder_bytes(m_folder->path());
    KOR_TABLE_SCHEMA schema(table);
    KOR_FIELD_SCHEMA* key = TEST_FIELD::key("key").make();
    key->initialise(true, field, KFT_TEXT, true, QVariant(), 10, false, "", "", "", false, false, false);
    schema.add_field_schema(key);
    QVERIFY(!engine().add_table(schema, "", "").isEmpty());
    QCOMPARE(folder_bytes(m_folder->path()), before);
}

void TST_KOR_ENGINE_SCHEMA::new_required_fields_are_filled_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("default_value");
    QTest::addColumn<bool>("foreign");
    QTest::addColumn<QStringList>("values");

    QTest::newRow("default") << int(KFT_INTEGER) << QVariant(7) << false << QStringList{"7", "7"};
    QTest::newRow("first foreign record")
        << int(KFT_TEXT) << QVariant() << true << QStringList{"carthage", "carthage"};
    QTest::newRow("autonumber") << int(KFT_AUTONUMBER) << QVariant() << false << QStringList{"1", "2"};
}

void TST_KOR_ENGINE_SCHEMA::new_required_fields_are_filled()
{
    QFETCH(int, type);
    QFETCH(QVariant, default_value);
    QFETCH(bool, foreign);
    QFETCH(QStringList, values);
    TEST_FIELD description = TEST_FIELD::plain("added", KOR_FIELD_TYPE(type)).required();
    description.with_default(default_value);
    if (foreign)
        description.refers_to("factions", "key");
    std::unique_ptr<KOR_FIELD_SCHEMA> field(description.make());
    QString error;
    QVERIFY2(
        engine().change_schema(error, schema("units"), QString(), {field.get()}, {}, {}, "tester", "more"),
        qPrintable(error));
    m_db->reconnect();
    QCOMPARE(value_of(engine(), "units", "elephants", "added"), values.at(0));
    QCOMPARE(value_of(engine(), "units", "hastati", "added"), values.at(1));
    if (foreign)
        QVERIFY(schema("factions")->field_schema_by_name("key")->dependents().contains(
            qMakePair(QString("units"), QString("added"))));
}

void TST_KOR_ENGINE_SCHEMA::a_required_field_without_a_value_changes_nothing()
{
    m_db->table("empty", {TEST_FIELD::key("key")});
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
    const QMap<QString, QByteArray> before = folder_bytes(database_path());
    const KOR_TABLE_SCHEMA* units = schema("units");
    QString error;
    std::unique_ptr<KOR_FIELD_SCHEMA> plain(TEST_FIELD::plain("plain", KFT_TEXT).required().make());
    QVERIFY(!engine().change_schema(error, units, QString(), {plain.get()}, {}, {}, "", ""));
    QVERIFY(error.contains("doesn't have a valid default value"));
    std::unique_ptr<KOR_FIELD_SCHEMA> empty_foreign(
        TEST_FIELD::plain("other", KFT_TEXT).required().refers_to("empty", "key").make());
    QVERIFY(!engine().change_schema(error, units, QString(), {empty_foreign.get()}, {}, {}, "", ""));
    QVERIFY(error.contains("empty"));
    QCOMPARE(units->field_count(), 3);
    QVERIFY(!find(engine(), "units", "hastati")->get_field_data("plain"));
    QCOMPARE(folder_bytes(database_path()), before);
}

void TST_KOR_ENGINE_SCHEMA::surviving_fields_and_records_stay_the_same_objects()
{
    KOR_TABLE_SCHEMA* units = schema("units");
    KOR_FIELD_SCHEMA* men = units->field_schema_by_name("men");
    QString error;
    const KOR_TABLE_DATA* data = engine().get_table_data(error, "units");
    KOR_RECORD_DATA* hastati = data->record_by_key("hastati");
    KOR_FIELD_DATA* hastati_men = hastati->get_field_data("men");

    CHANGES changes;
    changes.insert(METAFIELD_AND_SCHEMA(KMF_DESCRIPTION, men), "Soldiers");
    std::unique_ptr<KOR_FIELD_SCHEMA> added(TEST_FIELD::plain("cost", KFT_INTEGER).make());
    QVERIFY2(engine().change_schema(error, units, QString(), {added.get()}, {"faction"}, changes, "", ""),
             qPrintable(error));
    QCOMPARE(schema("units"), units);
    QCOMPARE(units->field_schema_by_name("men"), men);
    QCOMPARE(men->description(), "Soldiers");
    QVERIFY(!units->field_schema_by_name("faction"));
    QVERIFY(units->field_schema_by_name("cost") != added.get());
    QCOMPARE(data->record_by_key("hastati"), hastati);
    QCOMPARE(hastati->get_field_data("men"), hastati_men);
    QVERIFY(!hastati->get_field_data("faction"));
    QVERIFY(hastati->get_field_data("cost"));
    // The removed field is no longer anyone's dependent.
    QVERIFY(schema("factions")->field_schema_by_name("key")->dependents().isEmpty());
}

void TST_KOR_ENGINE_SCHEMA::a_rename_reaches_records_and_referring_tables()
{
    KOR_TABLE_SCHEMA* factions = schema("factions");
    CHANGES changes;
    changes.insert(METAFIELD_AND_SCHEMA(KMF_FIELD_NAME, factions->field_schema_by_name("name")), "title");
    changes.insert(METAFIELD_AND_SCHEMA(KMF_FIELD_NAME, factions->field_schema_by_name("key")), "code");
    QString error;
    QVERIFY2(engine().change_schema(error, factions, QString(), {}, {}, changes, "", ""), qPrintable(error));
    m_db->reconnect();
    QCOMPARE(value_of(engine(), "factions", "rome", "title"), "Rome");
    const KOR_FIELD_SCHEMA* faction = schema("units")->field_schema_by_name("faction");
    QCOMPARE(*faction->dependency(), qMakePair(QString("factions"), QString("code")));
    QCOMPARE(faction->lookup_fields(), QStringList({"code", "title"}));
    QString text;
    QVERIFY(engine().get_field_lookup_value(error, text, faction, "rome"));
    QCOMPARE(text, "rome:Rome");
}

void TST_KOR_ENGINE_SCHEMA::type_changes_convert_values_or_change_nothing()
{
    KOR_TABLE_SCHEMA* units = schema("units");
    QString error;
    CHANGES to_integer;
    KOR_FIELD_SCHEMA* men_field = units->field_schema_by_name("men");
    to_integer.insert(METAFIELD_AND_SCHEMA(KMF_FIELD_TYPE, men_field), int(KFT_INTEGER));
    QVERIFY2(engine().change_schema(error, units, QString(), {}, {}, to_integer, "", ""), qPrintable(error));
    const KOR_FIELD_DATA* men = find(engine(), "units", "hastati")->get_field_data("men");
    QCOMPARE(int(men->m_value.type()), int(QMetaType::Int));

    const QMap<QString, QByteArray> before = folder_bytes(database_path());
    CHANGES to_yesno;
    to_yesno.insert(METAFIELD_AND_SCHEMA(KMF_FIELD_TYPE, men_field), int(KFT_YESNO));
    QVERIFY(!engine().change_schema(error, units, QString(), {}, {}, to_yesno, "", ""));
    QVERIFY(error.contains("60") || error.contains("12"));
    QCOMPARE(int(men_field->field_type()), int(KFT_INTEGER));
    QCOMPARE(men->m_value.toInt(), 60);
    QCOMPARE(folder_bytes(database_path()), before);
}

void TST_KOR_ENGINE_SCHEMA::key_changes_rekey_records_or_change_nothing()
{
    m_db->record("units", {{"unit", "triarii"}, {"faction", "rome"}, {"men", "60"}});
    KOR_TABLE_SCHEMA* units = schema("units");
    QString error;
    CHANGES composite;
    composite.insert(METAFIELD_AND_SCHEMA(KMF_PRIMARY_KEY, units->field_schema_by_name("faction")), true);
    QVERIFY2(engine().change_schema(error, units, QString(), {}, {}, composite, "", ""), qPrintable(error));
    const KOR_TABLE_DATA* data = engine().get_table_data(error, "units");
    QCOMPARE(data->records().keys(), QList<QString>({"elephantscarthage", "hastatirome", "triariirome"}));

    // Keying by "men" alone would give two records the key "60".
    CHANGES clash;
    clash.insert(METAFIELD_AND_SCHEMA(KMF_PRIMARY_KEY, units->field_schema_by_name("unit")), false);
    clash.insert(METAFIELD_AND_SCHEMA(KMF_PRIMARY_KEY, units->field_schema_by_name("faction")), false);
    clash.insert(METAFIELD_AND_SCHEMA(KMF_PRIMARY_KEY, units->field_schema_by_name("men")), true);
    QVERIFY(!engine().change_schema(error, units, QString(), {}, {}, clash, "", ""));
    QVERIFY(error.contains("60"));
    QCOMPARE(units->primary_key_fields(), QList<QString>({"unit", "faction"}));
    QVERIFY(data->record_by_key("hastatirome"));
}

void TST_KOR_ENGINE_SCHEMA::fields_and_tables_others_refer_to_cannot_be_removed()
{
    QString error;
    QVERIFY(!engine().change_schema(error, schema("factions"), QString(), {}, {"key"}, {}, "", ""));
    QVERIFY(error.contains("units.faction"));
    QVERIFY(!engine().change_schema(error, schema("factions"), QString(), {}, {"name"}, {}, "", ""));
    error = engine().remove_table("factions", "", "");
    QVERIFY(error.contains("Cannot remove the 'factions' table because other tables depend upon it"));
    QVERIFY(error.contains("Table key (units), Dependent Field (faction)"));
    QCOMPARE(schema("factions")->dependent_fields().value("units"), QStringList{"faction"});
}

void TST_KOR_ENGINE_SCHEMA::removing_a_table_joins_the_transaction()
{
    const KOR_TABLE_SCHEMA* units = schema("units");
    QString error;
    QVERIFY(engine().begin_transaction(error, true));
    QVERIFY(engine().remove_table("units", "tester", "gone").isEmpty());
    QVERIFY(!schema("units"));
    QVERIFY(QFile::exists(database_path() + QStringLiteral("/units.xml")));
    engine().terminate_transaction();
    QCOMPARE(schema("units"), units);
    QVERIFY(engine().get_table_data(error, "units"));

    QVERIFY(engine().begin_transaction(error, true));
    QVERIFY(engine().remove_table("units", "tester", "gone").isEmpty());
    QVERIFY2(engine().end_transaction(error), qPrintable(error));
    QVERIFY(!QFile::exists(database_path() + QStringLiteral("/units.xml")));
    QVERIFY(!QFile::exists(database_path() + QStringLiteral("/Veld_schemas/units.xml")));
    QVERIFY(schema("factions")->field_schema_by_name("key")->dependents().isEmpty());
    const UPDATE_COMMAND_ITEM* last = last_command();
    QVERIFY(last);
    QCOMPARE(last->command_type, int(UPDATE_COMMAND_ITEM::UCT_REMOVE_TABLE));
    QCOMPARE(last->table_name(), "units");
    QCOMPARE(last->edit_description(), "gone");
}

void TST_KOR_ENGINE_SCHEMA::field_descriptions_change_inside_a_transaction()
{
    const KOR_FIELD_SCHEMA* men = schema("units")->field_schema_by_name("men");
    const QUuid men_uuid = men->field_unique_id();
    QString error;
    QVERIFY(engine().begin_transaction(error, true));
    QVERIFY(engine().set_field_description("units", "men", men_uuid, "How many").isEmpty());
    QCOMPARE(men->description(), "How many");
    engine().terminate_transaction();
    QVERIFY(men->description().isEmpty());
    QVERIFY(engine().set_field_description("units", "ignored", men_uuid, "How many").isEmpty());
    m_db->reconnect();
    QCOMPARE(schema("units")->field_schema_by_name("men")->description(), "How many");
    const UPDATE_COMMAND_ITEM* last = last_command();
    QVERIFY(last);
    QCOMPARE(last->command_type, int(UPDATE_COMMAND_ITEM::UCT_CHANGE_FIELD));
    QCOMPARE(last->metafield(), KMF_DESCRIPTION);
    QCOMPARE(last->new_value().toString(), "How many");
    QCOMPARE(last->field_uuid(), men_uuid);
}

void TST_KOR_ENGINE_SCHEMA::update_commands_rebuild_the_schemas_elsewhere()
{
    KOR_TABLE_SCHEMA* units = schema("units");
    QString error;
    // Every kind of command once.
    std::unique_ptr<KOR_FIELD_SCHEMA> cost(TEST_FIELD::plain("cost", KFT_INTEGER).with_default(5).make());
    CHANGES changes;
    KOR_FIELD_SCHEMA* men = units->field_schema_by_name("men");
    changes.insert(METAFIELD_AND_SCHEMA(KMF_FIELD_TYPE, men), int(KFT_INTEGER));
    changes.insert(METAFIELD_AND_SCHEMA(KMF_FIELD_NAME, men), "soldiers");
    QVERIFY2(
        engine().change_schema(error, units, "unit->factions.key", {cost.get()}, {}, changes, "ann", "costs"),
        qPrintable(error));
    KOR_TABLE_SCHEMA reordered(*units);
    reordered.set_column_ordering({"cost", "unit", "faction", "soldiers"});
    QVERIFY(engine().edit_table("units", reordered, "", "").isEmpty());
    m_db->table("scratch", {TEST_FIELD::key("key")});
    QVERIFY(engine().remove_table("scratch", "ann", "mistake").isEmpty());
    QVERIFY(engine().change_schema(error, units, "unit->factions.key", {}, {"cost"}, {}, "", ""));
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));

    UPDATE_COMMAND_ITEMS items;
    const QString commands = database_path() + QStringLiteral("/update_commands.txt");
    QVERIFY(items.parse_commands_file_for_schema_changes(commands));
    QSet<int> kinds;
    for (int i = 0; i < items.command_count(); ++i)
        kinds.insert(items.item_at(i)->command_type);
    QCOMPARE(kinds, QSet<int>({1, 2, 3, 4, 5, 6, 7}));

    TEST_DATABASE_BUILDER target(database_path("target"));
    QVERIFY2(target.query_interface().apply_edit_commands(commands, false),
             qPrintable(target.query_interface().get_last_error()));
    const auto target_files = folder_bytes(database_path("target") + QStringLiteral("/Veld_schemas"));
    const auto source_files = folder_bytes(database_path() + QStringLiteral("/Veld_schemas"));
    QCOMPARE(target_files.keys(), source_files.keys());
    for (const QString& file : source_files.keys())
        QCOMPARE(QString::fromUtf8(target_files.value(file)), QString::fromUtf8(source_files.value(file)));

    // Applying again finds everything in place and changes nothing.
    const QMap<QString, QByteArray> after_first = folder_bytes(database_path("target"));
    TEST_PROGRESS progress;
    KOR_XML_QUERY_INTERFACE again(&progress, QString(), false, false);
    QVERIFY(again.connect_without_merge(database_path("target"), false).isEmpty());
    QVERIFY(again.apply_edit_commands(commands, false));
    const auto after_second = folder_bytes(database_path("target"));
    for (const QString& file : after_second.keys())
        QVERIFY2(after_second.value(file) == after_first.value(file),
                 qPrintable(file + QString::fromUtf8(after_second.value(file))));
    QCOMPARE(after_second.keys(), after_first.keys());
    QVERIFY(progress.texts(0).contains("passed over"));
}

void TST_KOR_ENGINE_SCHEMA::malformed_update_commands_name_their_line_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("unknown type") << "# header\n9\ttable=units" << "line 2";
    QTest::newRow("no table") << "3\tfield=men\tmetafield=1\tnew=true" << "lacks 'table'";
    QTest::newRow("bad metafield") << "3\ttable=units\tfield=men\tmetafield=21\tnew=1" << "metafield";
    QTest::newRow("bad escape") << "6\ttable=units\tdescription=a\\q" << "escape";
    QTest::newRow("no name=value") << "6\ttable=units\tjunk" << "name=value";
    QTest::newRow("bad schema") << "1\ttable=units\tschema=<table_schema" << "malformed XML";
    QTest::newRow("unsafe table") << "6\ttable=../x" << "not a valid table name";
}

void TST_KOR_ENGINE_SCHEMA::malformed_update_commands_name_their_line()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    TEST_PROGRESS progress;
    UPDATE_COMMAND_ITEMS items(&progress);
    QVERIFY(!items.parse_commands_text(text, "commands"));
    QVERIFY2(items.last_error().contains(expected), qPrintable(items.last_error()));
    QVERIFY(items.last_error().startsWith("commands"));
    QCOMPARE(progress.reports.size(), 1);
    QCOMPARE(progress.reports.first().second, int(PROGRESS_CALLBACK::SEVERITY_ERROR));
}

QTEST_GUILESS_MAIN(TST_KOR_ENGINE_SCHEMA)
#include "tst_kor_engine_schema.moc"
