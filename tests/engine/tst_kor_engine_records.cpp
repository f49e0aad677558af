// Records through the query interface on real databases: reading back what
// was written, transactions, re-keying and cascades, the error styles.

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "test_database_builder.h"
#include "test_helpers.h"

#include <QtTest>

namespace
{
const auto add = &TEST_DATABASE_BUILDER::add_record;
const auto edit = &TEST_DATABASE_BUILDER::edit_record;
const auto changed = &TEST_DATABASE_BUILDER::changed;
const auto value_of = &TEST_DATABASE_BUILDER::value_text;
const auto find = &TEST_DATABASE_BUILDER::find_record;
} // namespace

// Every test starts from factions <- units.faction, with three units.
class TST_KOR_ENGINE_RECORDS : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void values_survive_a_reload_data();
    void values_survive_a_reload();
    void identical_data_writes_identical_bytes();
    void a_table_larger_than_the_write_buffer_survives_a_reload();
    void approval_data_and_modification_time_survive_a_reload();
    void composite_keys_join_without_separator();
    void begin_discards_an_open_transaction_and_terminate_discards();
    void records_stay_the_same_objects_across_edits_and_undone_transactions();
    void edit_finds_by_uuid_rekeys_and_cascades();
    void edits_of_one_record_apply_in_order();
    void a_freed_key_is_reusable_in_the_same_transaction();
    void next_autonumber_counts_the_open_transaction();
    void unique_ids_never_repeat();
    void values_take_their_field_type_data();
    void values_take_their_field_type();
    void errors_come_in_three_styles();
    void permissions_come_from_the_permissions_file();
    void read_only_refuses_edits();
    void interfaces_on_one_path_do_not_overwrite_each_other();
    void removal_by_key_within_a_transaction();

private:
    QString database_path() const { return m_folder->filePath("db"); }
    KOR_XML_QUERY_INTERFACE& engine() { return m_db->query_interface(); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<TEST_DATABASE_BUILDER> m_db;
};

void TST_KOR_ENGINE_RECORDS::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_db = std::make_unique<TEST_DATABASE_BUILDER>(database_path());
    m_db->table("factions", {TEST_FIELD::key("key"), TEST_FIELD::plain("name", KFT_TEXT)})
        .table("units", {TEST_FIELD::key("unit"),
                         TEST_FIELD::plain("faction", KFT_TEXT).refers_to("factions", "key", {"name"}),
                         TEST_FIELD::plain("men", KFT_INTEGER).with_default(60),
                         TEST_FIELD::plain("id", KFT_AUTONUMBER)})
        .record("factions", {{"key", "rome"}, {"name", "Rome"}})
        .record("factions", {{"key", "carthage"}, {"name", "Carthage"}})
        .record("units", {{"unit", "hastati"}, {"faction", "rome"}})
        .record("units", {{"unit", "triarii"}, {"faction", "rome"}, {"men", 40}})
        .record("units", {{"unit", "elephants"}, {"faction", "carthage"}, {"men", 12}});
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
}

void TST_KOR_ENGINE_RECORDS::values_survive_a_reload_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text");

    QTest::newRow("yesno") << int(KFT_YESNO) << QVariant(true) << "true";
    QTest::newRow("integer") << int(KFT_INTEGER) << QVariant(-2147483647 - 1) << "-2147483648";
    QTest::newRow("unsigned") << int(KFT_UNSIGNED_INTEGER) << QVariant(2147483647) << "2147483647";
    QTest::newRow("single") << int(KFT_SINGLE) << QVariant(0.1f) << "0.1";
    QTest::newRow("double") << int(KFT_DOUBLE) << QVariant(1.0 / 3.0) << "0.3333333333333333";
    QTest::newRow("decimal") << int(KFT_DECIMAL) << QVariant(12.5) << "12.5";
    QTest::newRow("text with markup and blanks")
        << int(KFT_TEXT) << QVariant("  <a & \"b\"> \r\n\t") << "  <a & \"b\"> \r\n\t";
    QTest::newRow("text beyond the basic plane") << int(KFT_TEXT) << QVariant("Ελλάς 🏛") << "Ελλάς 🏛";
    QTest::newRow("text with control characters")
        << int(KFT_TEXT) << QVariant(QString(QChar(1)) + QChar(0x1f))
        << QString(QString(QChar(1)) + QChar(0x1f));
    QTest::newRow("empty text") << int(KFT_TEXT) << QVariant(QString()) << "";
    QTest::newRow("date-time") << int(KFT_DATE_TIME)
                               << QVariant(QDateTime(QDate(2024, 5, 1), QTime(10, 20, 30, 400), Qt::UTC))
                               << "2024-05-01T10:20:30.400Z";
    QTest::newRow("card64") << int(KFT_CARD64) << QVariant(qulonglong(18446744073709551615ULL))
                            << "18446744073709551615";
    QTest::newRow("empty integer") << int(KFT_INTEGER) << QVariant() << "";
}

void TST_KOR_ENGINE_RECORDS::values_survive_a_reload()
{
    QFETCH(int, type);
    QFETCH(QVariant, value);
    QFETCH(QString, text);
    m_db->table("things", {TEST_FIELD::key("key"), TEST_FIELD::plain("value", KOR_FIELD_TYPE(type))})
        .record("things", {{"key", "a"}, {"value", value}})
        .reconnect();
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
    const KOR_RECORD_DATA* record = find(engine(), "things", "a");
    QVERIFY(record);
    const KOR_FIELD_DATA* field = record->get_field_data("value");
    QCOMPARE(field->value_text(), text);
    if (value.isValid() && !(value.type() == QVariant::String && value.toString().isEmpty()))
        QCOMPARE(int(field->m_value.type()), int(value.type()));
}

void TST_KOR_ENGINE_RECORDS::identical_data_writes_identical_bytes()
{
    const QString file = database_path() + QStringLiteral("/units.xml");
    const QString schema_file = database_path() + QStringLiteral("/Veld_schemas/units.xml");
    const QByteArray written = ORBIN_TEST::read_file(file);
    const QByteArray schema_written = ORBIN_TEST::read_file(schema_file);
    QVERIFY(written.contains("<unit>hastati</unit>"));
    m_db->reconnect();
    QString error;
    QVERIFY2(engine().save_table(error, "units"), qPrintable(error));
    QVERIFY2(engine().save_schema(error, "units"), qPrintable(error));
    QCOMPARE(ORBIN_TEST::read_file(file), written);
    QCOMPARE(ORBIN_TEST::read_file(schema_file), schema_written);
    // Records are kept in key order.
    QVERIFY(written.indexOf("elephants") < written.indexOf("hastati"));
    QVERIFY(written.indexOf("hastati") < written.indexOf("triarii"));
}

void TST_KOR_ENGINE_RECORDS::a_table_larger_than_the_write_buffer_survives_a_reload()
{
    m_db->table("things", {TEST_FIELD::key("key", KFT_INTEGER), TEST_FIELD::plain("text", KFT_TEXT)});
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
    // Texts of every length around the buffer's edge, with characters that
    // are escaped or take several bytes.
    const auto text = [](int i) {
        return QString(i % 97 + 300, QLatin1Char('x')) + QStringLiteral("<&é🏛\r") + QString::number(i);
    };
    QString error;
    QVERIFY(engine().begin_transaction(error, true));
    for (int i = 0; i < 12000; ++i)
        QVERIFY(add(engine(), "things", {{"key", i}, {"text", text(i)}}).isEmpty());
    QVERIFY2(engine().end_transaction(error), qPrintable(error));
    // Larger than the writer's buffer and than the reader's slices.
    QVERIFY(QFileInfo(database_path() + QStringLiteral("/things.xml")).size() > (4 << 20));
    m_db->reconnect();
    const KOR_TABLE_DATA* data = engine().get_table_data(error, "things");
    QVERIFY2(data, qPrintable(error));
    QCOMPARE(data->record_count(), 12000);
    for (int i = 0; i < 12000; i += 7)
        QCOMPARE(data->record_by_key(QString::number(i))->get_field_data("text")->value_text(), text(i));
}

void TST_KOR_ENGINE_RECORDS::approval_data_and_modification_time_survive_a_reload()
{
    m_db->table("texts", {TEST_FIELD::key("key"), TEST_FIELD::plain("text", KFT_TEXT).localised()})
        .record("texts", {{"key", "a"}, {"text", "Hello"}});
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
    const KOR_RECORD_DATA* record = find(engine(), "texts", "a");
    const qint64 modified = record->modification_msecs();
    QVERIFY(qAbs(modified - QDateTime::currentMSecsSinceEpoch()) < 60000);
    QVERIFY(record->get_field_data("text")->has_approval_data());
    QVERIFY(engine().approve_text("texts", "text", "a", record->uuid(), true, false, false).isEmpty());
    m_db->reconnect();
    record = find(engine(), "texts", "a");
    const KOR_FIELD_DATA* text = record->get_field_data("text");
    QCOMPARE(text->approval_state(), int(KOR_FIELD_DATA::TAS_APPROVED));
    QCOMPARE(text->last_approved_text(), "Hello");
    QVERIFY(text->requires_translation());
    QVERIFY(!text->requires_recording());
    QVERIFY(!text->last_edit_user().isEmpty());
    QCOMPARE(record->modification_msecs(), modified);
}

void TST_KOR_ENGINE_RECORDS::composite_keys_join_without_separator()
{
    m_db->table("pairs", {TEST_FIELD::key("left"), TEST_FIELD::key("right", KFT_INTEGER)})
        .record("pairs", {{"left", "ab"}, {"right", 12}})
        .record("pairs", {{"left", "a"}, {"right", 3}});
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
    // "a" + "b12" would collide with "ab" + "12" only if the texts were joined differently.
    m_db->record("pairs", {{"left", "ab1"}, {"right", 2}});
    QVERIFY(m_db->error().contains("ab12"));
    QString error;
    QCOMPARE(engine().get_table_data(error, "pairs")->records().keys(), QList<QString>({"a3", "ab12"}));
    QVERIFY(engine().key_exists_within_transaction("pairs", "ab12"));
}

void TST_KOR_ENGINE_RECORDS::begin_discards_an_open_transaction_and_terminate_discards()
{
    QString error;
    QVERIFY(engine().begin_transaction(error, true));
    QVERIFY(add(engine(), "factions", {{"key", "gauls"}}).isEmpty());
    QVERIFY(engine().key_exists_within_transaction("factions", "gauls"));
    QVERIFY(engine().begin_transaction(error, true));
    QVERIFY(!engine().key_exists_within_transaction("factions", "gauls"));
    QVERIFY(add(engine(), "factions", {{"key", "greeks"}}).isEmpty());
    engine().terminate_transaction();
    engine().terminate_transaction();
    QVERIFY(!engine().in_transaction());
    QVERIFY(!engine().key_exists_within_transaction("factions", "greeks"));

    QVERIFY(engine().begin_transaction(error, false));
    QVERIFY(add(engine(), "factions", {{"key", "iberians"}}).isEmpty());
    QVERIFY2(engine().end_transaction(error), qPrintable(error));
    m_db->reconnect();
    QCOMPARE(value_of(engine(), "factions", "iberians", "key"), "iberians");
    QCOMPARE(value_of(engine(), "factions", "gauls", "key"), "<none>");
    QVERIFY(!engine().end_transaction(error));
    QVERIFY(!error.isEmpty());
}

void TST_KOR_ENGINE_RECORDS::records_stay_the_same_objects_across_edits_and_undone_transactions()
{
    QString error;
    const KOR_TABLE_DATA* units = engine().get_table_data(error, "units");
    KOR_RECORD_DATA* triarii = units->record_by_key("triarii");
    KOR_FIELD_DATA* men = triarii->get_field_data("men");

    QVERIFY(edit(engine(), "units", triarii, {{"men", 45}}).isEmpty());
    QCOMPARE(units->record_by_key("triarii"), triarii);
    QCOMPARE(triarii->get_field_data("men"), men);
    QCOMPARE(men->m_value.toInt(), 45);

    // Edited, re-keyed and removed records come back as the same objects.
    KOR_RECORD_DATA* hastati = units->record_by_key("hastati");
    QVERIFY(engine().begin_transaction(error, true));
    QVERIFY(edit(engine(), "units", triarii, {{"unit", "veterans"}}).isEmpty());
    QVERIFY(engine().remove_record("units", *hastati).isEmpty());
    QVERIFY(!units->record_by_key("hastati"));
    QCOMPARE(units->record_by_key("veterans"), triarii);
    engine().terminate_transaction();
    QCOMPARE(units->record_by_key("hastati"), hastati);
    QCOMPARE(units->record_by_key("triarii"), triarii);
    QCOMPARE(units->record_by_uuid(hastati->uuid()), hastati);
    QCOMPARE(triarii->get_field_data("unit")->value_text(), "triarii");
    QCOMPARE(units->record_count(), 3);
}

void TST_KOR_ENGINE_RECORDS::edit_finds_by_uuid_rekeys_and_cascades()
{
    KOR_RECORD_DATA* rome = find(engine(), "factions", "rome");
    // The old record as the application kept it: its key is stale by now.
    auto stale = changed(rome, {{"key", "somewhere"}});
    QVERIFY(
        engine().edit_record_data("factions", stale.get(), changed(rome, {{"key", "roma"}}).get()).isEmpty());
    QCOMPARE(find(engine(), "factions", "roma"), rome);
    QCOMPARE(value_of(engine(), "units", "hastati", "faction"), "roma");
    QCOMPARE(value_of(engine(), "units", "triarii", "faction"), "roma");
    QCOMPARE(value_of(engine(), "units", "elephants", "faction"), "carthage");
    m_db->reconnect();
    QCOMPARE(value_of(engine(), "units", "triarii", "faction"), "roma");

    // A key that is taken refuses the edit and changes nothing.
    rome = find(engine(), "factions", "roma");
    QVERIFY(edit(engine(), "factions", rome, {{"key", "carthage"}}).contains("carthage"));
    QCOMPARE(value_of(engine(), "units", "hastati", "faction"), "roma");
    QCOMPARE(rome->key(), "roma");
}

void TST_KOR_ENGINE_RECORDS::edits_of_one_record_apply_in_order()
{
    KOR_RECORD_DATA* hastati = find(engine(), "units", "hastati");
    // Three snapshots as the table model sends them, each with the state of its moment.
    auto first = changed(hastati, {{"men", 70}});
    auto second = changed(first.get(), {{"unit", "principes"}});
    auto third = changed(second.get(), {{"men", 80}});
    QString error;
    QVERIFY(engine().begin_transaction(error, true));
    QVERIFY(engine().edit_record_data("units", hastati, first.get()).isEmpty());
    QVERIFY(engine().edit_record_data("units", hastati, second.get()).isEmpty());
    QVERIFY(engine().edit_record_data("units", hastati, third.get()).isEmpty());
    QVERIFY2(engine().end_transaction(error), qPrintable(error));
    m_db->reconnect();
    QCOMPARE(value_of(engine(), "units", "principes", "men"), "80");
    QCOMPARE(value_of(engine(), "units", "hastati", "men"), "<none>");
}

void TST_KOR_ENGINE_RECORDS::a_freed_key_is_reusable_in_the_same_transaction()
{
    KOR_RECORD_DATA* triarii = find(engine(), "units", "triarii");
    const QUuid triarii_uuid = triarii->uuid();
    QString error;
    QVERIFY(engine().begin_transaction(error, true));
    QVERIFY(engine().remove_record("units", *find(engine(), "units", "hastati")).isEmpty());
    QVERIFY(edit(engine(), "units", triarii, {{"unit", "hastati"}}).isEmpty());
    QVERIFY(add(engine(), "units", {{"unit", "triarii"}}).isEmpty());
    QVERIFY2(engine().end_transaction(error), qPrintable(error));
    m_db->reconnect();
    QCOMPARE(find(engine(), "units", "hastati")->uuid(), triarii_uuid);
    QCOMPARE(value_of(engine(), "units", "triarii", "men"), "60");
}

void TST_KOR_ENGINE_RECORDS::next_autonumber_counts_the_open_transaction()
{
    QString error;
    const KOR_TABLE_DATA* units = engine().get_table_data(error, "units");
    QCOMPARE(units->next_autonumber("id"), 4);
    QVERIFY(engine().begin_transaction(error, true));
    QVERIFY(add(engine(), "units", {{"unit", "velites"}}).isEmpty());
    QCOMPARE(value_of(engine(), "units", "velites", "id"), "4");
    QCOMPARE(units->next_autonumber("id"), 5);
    engine().terminate_transaction();
    QCOMPARE(units->next_autonumber("id"), 4);
}

void TST_KOR_ENGINE_RECORDS::unique_ids_never_repeat()
{
    KOR_XML_QUERY_INTERFACE other(nullptr, QString(), false, false);
    QSet<quint64> seen;
    quint64 previous = 0;
    for (int i = 0; i < 2000; ++i)
    {
        const quint64 id = (i % 2 ? other : engine()).new_unique_global_id();
        QVERIFY(id > previous);
        QVERIFY(!seen.contains(id));
        seen.insert(id);
        previous = id;
    }
    // A bound above every value handed out is kept on disk, so a restart
    // cannot repeat one.
    const QByteArray state = ORBIN_TEST::read_file(
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/orbin/unique_id_state");
    QVERIFY(state.toULongLong() >= previous);
}

void TST_KOR_ENGINE_RECORDS::values_take_their_field_type_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("accepted");

    QTest::newRow("check box text") << "flag" << QVariant("true") << "true" << true;
    QTest::newRow("integer text") << "count" << QVariant("12") << "12" << true;
    QTest::newRow("whole double into integer") << "count" << QVariant(3.0) << "3" << true;
    QTest::newRow("fraction into integer") << "count" << QVariant(3.5) << "" << false;
    QTest::newRow("word into integer") << "count" << QVariant("many") << "" << false;
    QTest::newRow("number into text") << "label" << QVariant(7) << "7" << true;
    QTest::newRow("cleared integer") << "count" << QVariant() << "" << true;
    QTest::newRow("negative int into unsigned") << "amount" << QVariant(-4) << "" << false;
    QTest::newRow("int into unsigned") << "amount" << QVariant(4) << "4" << true;
}

void TST_KOR_ENGINE_RECORDS::values_take_their_field_type()
{
    QFETCH(QString, field);
    QFETCH(QVariant, value);
    QFETCH(QString, stored);
    QFETCH(bool, accepted);
    m_db->table("things", {TEST_FIELD::key("key"), TEST_FIELD::plain("flag", KFT_YESNO),
                           TEST_FIELD::plain("count", KFT_INTEGER), TEST_FIELD::plain("label", KFT_TEXT),
                           TEST_FIELD::plain("amount", KFT_UNSIGNED_INTEGER)})
        .record("things", {{"key", "a"}, {"count", 1}});
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
    KOR_RECORD_DATA* record = find(engine(), "things", "a");
    QCOMPARE(edit(engine(), "things", record, {{field, value}}).isEmpty(), accepted);
    if (accepted)
    {
        m_db->reconnect();
        QCOMPARE(value_of(engine(), "things", "a", field), stored);
    }
    else
    {
        QCOMPARE(record->get_field_data("count")->m_value.toInt(), 1);
    }
}

void TST_KOR_ENGINE_RECORDS::errors_come_in_three_styles()
{
    // Never connected: every style answers a failure rather than crashing.
    KOR_XML_QUERY_INTERFACE never_connected(nullptr, QString(), false, false);
    QString error;
    QVERIFY(!never_connected.begin_transaction(error, true));
    QVERIFY(!error.isEmpty());
    QVERIFY(!never_connected.disconnect().isEmpty());
    QVERIFY(!never_connected.connect_without_merge(m_folder->filePath("nothing"), false).isEmpty());
    QVERIFY(!never_connected.get_table_schema("units"));

    QVERIFY(!engine().get_table_data(error, "missing"));
    QVERIFY(error.contains("missing"));
    const QString duplicate = add(engine(), "factions", {{"key", "rome"}});
    QVERIFY(duplicate.contains("rome"));
    QCOMPARE(engine().get_last_error(), duplicate);
    QVERIFY(!engine().connect_without_merge(database_path(), false).isEmpty());
    QVERIFY(engine().is_connected());
}

void TST_KOR_ENGINE_RECORDS::permissions_come_from_the_permissions_file()
{
    QVERIFY(!engine().table_restricted("units"));
    QVERIFY(engine().can_add_table_records("units"));
    QVERIFY(ORBIN_TEST::write_file(
        database_path() + QStringLiteral("/Veld_permissions.xml"),
        "<permissions>\n"
        "  <table name=\"units\" restricted=\"true\" add=\"false\" remove=\"false\">\n"
        "    <user name=\"somebody_else\" add=\"true\"/>\n"
        "  </table>\n"
        "</permissions>\n"));
    m_db->reconnect();
    QVERIFY(engine().table_restricted("units"));
    QVERIFY(!engine().can_add_table_records("units"));
    QVERIFY(engine().can_edit_table_records("units"));
    QVERIFY(!engine().can_remove_table_records("units"));
    QVERIFY(engine().can_add_table_records("factions"));
    QVERIFY(add(engine(), "units", {{"unit", "x"}}).contains("permission"));
}

void TST_KOR_ENGINE_RECORDS::read_only_refuses_edits()
{
    engine().make_read_only(true);
    QVERIFY(engine().is_read_only());
    QString error;
    QVERIFY(!engine().begin_transaction(error, true));
    QVERIFY(!add(engine(), "factions", {{"key", "x"}}).isEmpty());
    QVERIFY(engine().get_table_data(error, "factions"));
}

void TST_KOR_ENGINE_RECORDS::interfaces_on_one_path_do_not_overwrite_each_other()
{
    KOR_XML_QUERY_INTERFACE second(nullptr, QString(), false, false);
    QVERIFY(second.connect_without_merge(database_path(), false).isEmpty());
    QString error;
    const KOR_TABLE_DATA* mine = engine().get_table_data(error, "factions");
    QVERIFY(mine != second.get_table_data(error, "factions"));
    QTest::qWait(20); // file times must differ
    QVERIFY(add(second, "factions", {{"key", "gauls"}}).isEmpty());
    // The first interface read the file before that change: it may not overwrite it.
    QVERIFY(add(engine(), "factions", {{"key", "greeks"}}).contains("changed by someone else"));
    QVERIFY(!mine->record_by_key("greeks"));
    m_db->reconnect();
    QCOMPARE(value_of(engine(), "factions", "gauls", "key"), "gauls");
}

void TST_KOR_ENGINE_RECORDS::removal_by_key_within_a_transaction()
{
    const QUuid uuid = find(engine(), "units", "hastati")->uuid();
    QString error;
    QVERIFY(engine().begin_transaction(error, true));
    QCOMPARE(engine().remove_record_within_transaction("units", "hastati"), uuid);
    QVERIFY(engine().remove_record_within_transaction("units", "hastati").isNull());
    QVERIFY(!engine().key_exists_within_transaction("units", "hastati"));
    QVERIFY(engine().end_transaction(error));
    m_db->reconnect();
    QVERIFY(!engine().key_exists_within_transaction("units", "hastati"));
}

QTEST_GUILESS_MAIN(TST_KOR_ENGINE_RECORDS)
#include "tst_kor_engine_records.moc"
