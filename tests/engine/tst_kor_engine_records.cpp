// Records through the query interface on real databases: reading back what
// was written, transactions, re-keying and cascades, the error styles.

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "test_database_builder.h"

#include <QtTest>

namespace
{
QByteArray file_bytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A copy of an engine record with some values changed.
std::unique_ptr<KOR_RECORD_DATA> changed(const KOR_RECORD_DATA* record, const QVariantMap& values)
{
    auto copy = std::make_unique<KOR_RECORD_DATA>(*record, nullptr, false);
    for (auto it = values.constBegin(); it != values.constEnd(); ++it)
        copy->get_field_data(it.key())->m_value = it.value();
    return copy;
}

QString value_of(KOR_XML_QUERY_INTERFACE& db, const QString& table, const QString& key, const QString& field)
{
    QString error;
    const KOR_TABLE_DATA* data = db.get_table_data(error, table);
    const KOR_RECORD_DATA* record = data ? data->record_by_key(key) : nullptr;
    const KOR_FIELD_DATA* value = record ? record->get_field_data(field) : nullptr;
    return value ? value->value_text() : QStringLiteral("<none>");
}

// factions <- units.faction, with three units.
void build_army(TEST_DATABASE_BUILDER& db)
{
    db.table(QStringLiteral("factions"),
             {TEST_FIELD::key(QStringLiteral("key")), TEST_FIELD::plain(QStringLiteral("name"), KFT_TEXT)})
        .table(QStringLiteral("units"),
               {TEST_FIELD::key(QStringLiteral("unit")),
                TEST_FIELD::plain(QStringLiteral("faction"), KFT_TEXT)
                    .refers_to(QStringLiteral("factions"), QStringLiteral("key"), {QStringLiteral("name")}),
                TEST_FIELD::plain(QStringLiteral("men"), KFT_INTEGER).with_default(60),
                TEST_FIELD::plain(QStringLiteral("id"), KFT_AUTONUMBER)})
        .record(QStringLiteral("factions"), {{"key", "rome"}, {"name", "Rome"}})
        .record(QStringLiteral("factions"), {{"key", "carthage"}, {"name", "Carthage"}})
        .record(QStringLiteral("units"), {{"unit", "hastati"}, {"faction", "rome"}})
        .record(QStringLiteral("units"), {{"unit", "triarii"}, {"faction", "rome"}, {"men", 40}})
        .record(QStringLiteral("units"), {{"unit", "elephants"}, {"faction", "carthage"}, {"men", 12}});
}
} // namespace

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
    void tables_load_on_first_use();
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
    std::unique_ptr<QTemporaryDir> m_folder;
    QString database_path() const { return m_folder->filePath(QStringLiteral("db")); }
};

void TST_KOR_ENGINE_RECORDS::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
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
        << int(KFT_TEXT) << QVariant(QStringLiteral("  <a & \"b\"> \r\n\t")) << "  <a & \"b\"> \r\n\t";
    QTest::newRow("text beyond the basic plane")
        << int(KFT_TEXT) << QVariant(QStringLiteral("Ελλάς 🏛")) << "Ελλάς 🏛";
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
    TEST_DATABASE_BUILDER db(database_path());
    db.table(QStringLiteral("things"), {TEST_FIELD::key(QStringLiteral("key")),
                                        TEST_FIELD::plain(QStringLiteral("value"), KOR_FIELD_TYPE(type))})
        .record(QStringLiteral("things"), {{"key", "a"}, {"value", value}})
        .reconnect();
    QVERIFY2(db.ok(), qPrintable(db.error()));
    QString error;
    const KOR_TABLE_DATA* data = db.query_interface().get_table_data(error, QStringLiteral("things"));
    QVERIFY2(data, qPrintable(error));
    const KOR_FIELD_DATA* field =
        data->record_by_key(QStringLiteral("a"))->get_field_data(QStringLiteral("value"));
    QCOMPARE(field->value_text(), text);
    if (value.isValid() && !(value.type() == QVariant::String && value.toString().isEmpty()))
        QCOMPARE(int(field->m_value.type()), int(value.type()));
}

void TST_KOR_ENGINE_RECORDS::identical_data_writes_identical_bytes()
{
    TEST_DATABASE_BUILDER db(database_path());
    build_army(db);
    QVERIFY2(db.ok(), qPrintable(db.error()));
    const QString file = db.path() + QStringLiteral("/units.xml");
    const QString schema_file = db.path() + QStringLiteral("/Veld_schemas/units.xml");
    const QByteArray written = file_bytes(file);
    const QByteArray schema_written = file_bytes(schema_file);
    QVERIFY(written.contains("<unit>hastati</unit>"));
    db.reconnect();
    QString error;
    QVERIFY2(db.query_interface().save_table(error, QStringLiteral("units")), qPrintable(error));
    QVERIFY2(db.query_interface().save_schema(error, QStringLiteral("units")), qPrintable(error));
    QCOMPARE(file_bytes(file), written);
    QCOMPARE(file_bytes(schema_file), schema_written);
    // Records are kept in key order.
    QVERIFY(written.indexOf("elephants") < written.indexOf("hastati"));
    QVERIFY(written.indexOf("hastati") < written.indexOf("triarii"));
}

void TST_KOR_ENGINE_RECORDS::a_table_larger_than_the_write_buffer_survives_a_reload()
{
    TEST_DATABASE_BUILDER db(database_path());
    db.table(QStringLiteral("things"), {TEST_FIELD::key(QStringLiteral("key"), KFT_INTEGER),
                                        TEST_FIELD::plain(QStringLiteral("text"), KFT_TEXT)});
    QVERIFY2(db.ok(), qPrintable(db.error()));
    KOR_XML_QUERY_INTERFACE& engine = db.query_interface();
    const KOR_TABLE_SCHEMA* schema = engine.get_table_schema(QStringLiteral("things"));
    QString error;
    QVERIFY(engine.begin_transaction(error, true));
    // Texts of every length around the buffer's edge, with characters that
    // are escaped or take several bytes.
    for (int i = 0; i < 12000; ++i)
    {
        const QString text =
            QString(i % 97 + 300, QLatin1Char('x')) + QStringLiteral("<&é🏛\r") + QString::number(i);
        QVERIFY(
            engine
                .add_record(QStringLiteral("things"),
                            TEST_DATABASE_BUILDER::make_record(schema, {{"key", i}, {"text", text}}).get())
                .isEmpty());
    }
    QVERIFY2(engine.end_transaction(error), qPrintable(error));
    // Larger than the writer's buffer and than the reader's slices.
    QVERIFY(QFileInfo(database_path() + QStringLiteral("/things.xml")).size() > (4 << 20));
    db.reconnect();
    const KOR_TABLE_DATA* data = engine.get_table_data(error, QStringLiteral("things"));
    QVERIFY2(data, qPrintable(error));
    QCOMPARE(data->record_count(), 12000);
    for (int i = 0; i < 12000; i += 7)
        QCOMPARE(
            data->record_by_key(QString::number(i))->get_field_data(QStringLiteral("text"))->value_text(),
            QString(i % 97 + 300, QLatin1Char('x')) + QStringLiteral("<&é🏛\r") + QString::number(i));
}

void TST_KOR_ENGINE_RECORDS::approval_data_and_modification_time_survive_a_reload()
{
    TEST_DATABASE_BUILDER db(database_path());
    db.table(QStringLiteral("texts"), {TEST_FIELD::key(QStringLiteral("key")),
                                       TEST_FIELD::plain(QStringLiteral("text"), KFT_TEXT).localised()})
        .record(QStringLiteral("texts"), {{"key", "a"}, {"text", "Hello"}});
    QVERIFY2(db.ok(), qPrintable(db.error()));
    QString error;
    const KOR_RECORD_DATA* record = db.query_interface()
                                        .get_table_data(error, QStringLiteral("texts"))
                                        ->record_by_key(QStringLiteral("a"));
    const qint64 modified = record->modification_msecs();
    QVERIFY(qAbs(modified - QDateTime::currentMSecsSinceEpoch()) < 60000);
    QVERIFY(record->get_field_data(QStringLiteral("text"))->has_approval_data());
    QVERIFY(db.query_interface()
                .approve_text(QStringLiteral("texts"), QStringLiteral("text"), QStringLiteral("a"),
                              record->uuid(), true, false, false)
                .isEmpty());
    db.reconnect();
    record = db.query_interface()
                 .get_table_data(error, QStringLiteral("texts"))
                 ->record_by_key(QStringLiteral("a"));
    const KOR_FIELD_DATA* text = record->get_field_data(QStringLiteral("text"));
    QCOMPARE(text->approval_state(), int(KOR_FIELD_DATA::TAS_APPROVED));
    QCOMPARE(text->last_approved_text(), QStringLiteral("Hello"));
    QVERIFY(text->requires_translation());
    QVERIFY(!text->requires_recording());
    QVERIFY(!text->last_edit_user().isEmpty());
    QCOMPARE(record->modification_msecs(), modified);
}

void TST_KOR_ENGINE_RECORDS::composite_keys_join_without_separator()
{
    TEST_DATABASE_BUILDER db(database_path());
    db.table(QStringLiteral("pairs"),
             {TEST_FIELD::key(QStringLiteral("left")), TEST_FIELD::key(QStringLiteral("right"), KFT_INTEGER)})
        .record(QStringLiteral("pairs"), {{"left", "ab"}, {"right", 12}})
        .record(QStringLiteral("pairs"), {{"left", "a"}, {"right", 3}});
    QVERIFY2(db.ok(), qPrintable(db.error()));
    // "a" + "b12" would collide with "ab" + "12" only if the texts were joined differently.
    db.record(QStringLiteral("pairs"), {{"left", "ab1"}, {"right", 2}});
    QVERIFY(db.error().contains(QStringLiteral("ab12")));
    QString error;
    const KOR_TABLE_DATA* data = db.query_interface().get_table_data(error, QStringLiteral("pairs"));
    QCOMPARE(data->records().keys(), QList<QString>({QStringLiteral("a3"), QStringLiteral("ab12")}));
    QVERIFY(
        db.query_interface().key_exists_within_transaction(QStringLiteral("pairs"), QStringLiteral("ab12")));
}

void TST_KOR_ENGINE_RECORDS::tables_load_on_first_use()
{
    TEST_DATABASE_BUILDER db(database_path());
    build_army(db);
    db.reconnect();
    QVERIFY2(db.ok(), qPrintable(db.error()));
    QMap<QString, bool> names;
    db.query_interface().get_table_names(names);
    QCOMPARE(names.keys(), QList<QString>({QStringLiteral("factions"), QStringLiteral("units")}));
    QVERIFY(!names.value(QStringLiteral("units")));
    QString error;
    QVERIFY(db.query_interface().get_table_data(error, QStringLiteral("units")));
    db.query_interface().get_table_names(names);
    QVERIFY(names.value(QStringLiteral("units")));
}

void TST_KOR_ENGINE_RECORDS::begin_discards_an_open_transaction_and_terminate_discards()
{
    TEST_DATABASE_BUILDER db(database_path());
    build_army(db);
    KOR_XML_QUERY_INTERFACE& engine = db.query_interface();
    const KOR_TABLE_SCHEMA* schema = engine.get_table_schema(QStringLiteral("factions"));
    QString error;

    QVERIFY(engine.begin_transaction(error, true));
    QVERIFY(engine
                .add_record(QStringLiteral("factions"),
                            TEST_DATABASE_BUILDER::make_record(schema, {{"key", "gauls"}}).get())
                .isEmpty());
    QVERIFY(engine.key_exists_within_transaction(QStringLiteral("factions"), QStringLiteral("gauls")));
    QVERIFY(engine.begin_transaction(error, true));
    QVERIFY(!engine.key_exists_within_transaction(QStringLiteral("factions"), QStringLiteral("gauls")));
    QVERIFY(engine
                .add_record(QStringLiteral("factions"),
                            TEST_DATABASE_BUILDER::make_record(schema, {{"key", "greeks"}}).get())
                .isEmpty());
    engine.terminate_transaction();
    engine.terminate_transaction();
    QVERIFY(!engine.in_transaction());
    QVERIFY(!engine.key_exists_within_transaction(QStringLiteral("factions"), QStringLiteral("greeks")));

    QVERIFY(engine.begin_transaction(error, false));
    QVERIFY(engine
                .add_record(QStringLiteral("factions"),
                            TEST_DATABASE_BUILDER::make_record(schema, {{"key", "iberians"}}).get())
                .isEmpty());
    QVERIFY2(engine.end_transaction(error), qPrintable(error));
    db.reconnect();
    QCOMPARE(value_of(engine, QStringLiteral("factions"), QStringLiteral("iberians"), QStringLiteral("key")),
             QStringLiteral("iberians"));
    QCOMPARE(value_of(engine, QStringLiteral("factions"), QStringLiteral("gauls"), QStringLiteral("key")),
             QStringLiteral("<none>"));
    QVERIFY(!engine.end_transaction(error));
    QVERIFY(!error.isEmpty());
}

void TST_KOR_ENGINE_RECORDS::records_stay_the_same_objects_across_edits_and_undone_transactions()
{
    TEST_DATABASE_BUILDER db(database_path());
    build_army(db);
    KOR_XML_QUERY_INTERFACE& engine = db.query_interface();
    QString error;
    const KOR_TABLE_DATA* units = engine.get_table_data(error, QStringLiteral("units"));
    KOR_RECORD_DATA* triarii = units->record_by_key(QStringLiteral("triarii"));
    KOR_FIELD_DATA* men = triarii->get_field_data(QStringLiteral("men"));

    QVERIFY(engine.edit_record_data(QStringLiteral("units"), triarii, changed(triarii, {{"men", 45}}).get())
                .isEmpty());
    QCOMPARE(units->record_by_key(QStringLiteral("triarii")), triarii);
    QCOMPARE(triarii->get_field_data(QStringLiteral("men")), men);
    QCOMPARE(men->m_value.toInt(), 45);

    // Edited, re-keyed and removed records come back as the same objects.
    KOR_RECORD_DATA* hastati = units->record_by_key(QStringLiteral("hastati"));
    QVERIFY(engine.begin_transaction(error, true));
    QVERIFY(engine
                .edit_record_data(QStringLiteral("units"), triarii,
                                  changed(triarii, {{"unit", "veterans"}}).get())
                .isEmpty());
    QVERIFY(engine.remove_record(QStringLiteral("units"), *hastati).isEmpty());
    QVERIFY(!units->record_by_key(QStringLiteral("hastati")));
    QCOMPARE(units->record_by_key(QStringLiteral("veterans")), triarii);
    engine.terminate_transaction();
    QCOMPARE(units->record_by_key(QStringLiteral("hastati")), hastati);
    QCOMPARE(units->record_by_key(QStringLiteral("triarii")), triarii);
    QCOMPARE(units->record_by_uuid(hastati->uuid()), hastati);
    QCOMPARE(triarii->get_field_data(QStringLiteral("unit"))->value_text(), QStringLiteral("triarii"));
    QCOMPARE(units->record_count(), 3);
}

void TST_KOR_ENGINE_RECORDS::edit_finds_by_uuid_rekeys_and_cascades()
{
    TEST_DATABASE_BUILDER db(database_path());
    build_army(db);
    KOR_XML_QUERY_INTERFACE& engine = db.query_interface();
    QString error;
    const KOR_TABLE_DATA* factions = engine.get_table_data(error, QStringLiteral("factions"));
    KOR_RECORD_DATA* rome = factions->record_by_key(QStringLiteral("rome"));
    // The old record as the application kept it: its key is stale by now.
    auto stale = changed(rome, {{"key", "somewhere"}});
    QVERIFY(
        engine
            .edit_record_data(QStringLiteral("factions"), stale.get(), changed(rome, {{"key", "roma"}}).get())
            .isEmpty());
    QCOMPARE(factions->record_by_key(QStringLiteral("roma")), rome);
    QCOMPARE(value_of(engine, QStringLiteral("units"), QStringLiteral("hastati"), QStringLiteral("faction")),
             QStringLiteral("roma"));
    QCOMPARE(value_of(engine, QStringLiteral("units"), QStringLiteral("triarii"), QStringLiteral("faction")),
             QStringLiteral("roma"));
    QCOMPARE(
        value_of(engine, QStringLiteral("units"), QStringLiteral("elephants"), QStringLiteral("faction")),
        QStringLiteral("carthage"));
    db.reconnect();
    QCOMPARE(value_of(engine, QStringLiteral("units"), QStringLiteral("triarii"), QStringLiteral("faction")),
             QStringLiteral("roma"));

    // A key that is taken refuses the edit and changes nothing.
    rome = engine.get_table_data(error, QStringLiteral("factions"))->record_by_key(QStringLiteral("roma"));
    error =
        engine.edit_record_data(QStringLiteral("factions"), rome, changed(rome, {{"key", "carthage"}}).get());
    QVERIFY(error.contains(QStringLiteral("carthage")));
    QCOMPARE(value_of(engine, QStringLiteral("units"), QStringLiteral("hastati"), QStringLiteral("faction")),
             QStringLiteral("roma"));
    QCOMPARE(rome->key(), QStringLiteral("roma"));
}

void TST_KOR_ENGINE_RECORDS::edits_of_one_record_apply_in_order()
{
    TEST_DATABASE_BUILDER db(database_path());
    build_army(db);
    KOR_XML_QUERY_INTERFACE& engine = db.query_interface();
    QString error;
    KOR_RECORD_DATA* hastati =
        engine.get_table_data(error, QStringLiteral("units"))->record_by_key(QStringLiteral("hastati"));
    // Three snapshots as the table model sends them, each with the state of its moment.
    auto first = changed(hastati, {{"men", 70}});
    auto second = changed(first.get(), {{"unit", "principes"}});
    auto third = changed(second.get(), {{"men", 80}});
    QVERIFY(engine.begin_transaction(error, true));
    QVERIFY(engine.edit_record_data(QStringLiteral("units"), hastati, first.get()).isEmpty());
    QVERIFY(engine.edit_record_data(QStringLiteral("units"), hastati, second.get()).isEmpty());
    QVERIFY(engine.edit_record_data(QStringLiteral("units"), hastati, third.get()).isEmpty());
    QVERIFY2(engine.end_transaction(error), qPrintable(error));
    db.reconnect();
    QCOMPARE(value_of(engine, QStringLiteral("units"), QStringLiteral("principes"), QStringLiteral("men")),
             QStringLiteral("80"));
    QCOMPARE(value_of(engine, QStringLiteral("units"), QStringLiteral("hastati"), QStringLiteral("men")),
             QStringLiteral("<none>"));
}

void TST_KOR_ENGINE_RECORDS::a_freed_key_is_reusable_in_the_same_transaction()
{
    TEST_DATABASE_BUILDER db(database_path());
    build_army(db);
    KOR_XML_QUERY_INTERFACE& engine = db.query_interface();
    QString error;
    const KOR_TABLE_DATA* units = engine.get_table_data(error, QStringLiteral("units"));
    KOR_RECORD_DATA* hastati = units->record_by_key(QStringLiteral("hastati"));
    KOR_RECORD_DATA* triarii = units->record_by_key(QStringLiteral("triarii"));
    const QUuid triarii_uuid = triarii->uuid();
    QVERIFY(engine.begin_transaction(error, true));
    QVERIFY(engine.remove_record(QStringLiteral("units"), *hastati).isEmpty());
    QVERIFY(
        engine
            .edit_record_data(QStringLiteral("units"), triarii, changed(triarii, {{"unit", "hastati"}}).get())
            .isEmpty());
    QVERIFY(engine
                .add_record(
                    QStringLiteral("units"),
                    TEST_DATABASE_BUILDER::make_record(units->table_schema(), {{"unit", "triarii"}}).get())
                .isEmpty());
    QVERIFY2(engine.end_transaction(error), qPrintable(error));
    db.reconnect();
    units = engine.get_table_data(error, QStringLiteral("units"));
    QCOMPARE(units->record_by_key(QStringLiteral("hastati"))->uuid(), triarii_uuid);
    QCOMPARE(value_of(engine, QStringLiteral("units"), QStringLiteral("triarii"), QStringLiteral("men")),
             QStringLiteral("60"));
}

void TST_KOR_ENGINE_RECORDS::next_autonumber_counts_the_open_transaction()
{
    TEST_DATABASE_BUILDER db(database_path());
    build_army(db);
    KOR_XML_QUERY_INTERFACE& engine = db.query_interface();
    QString error;
    const KOR_TABLE_DATA* units = engine.get_table_data(error, QStringLiteral("units"));
    QCOMPARE(units->next_autonumber(QStringLiteral("id")), 4);
    QVERIFY(engine.begin_transaction(error, true));
    QVERIFY(engine
                .add_record(
                    QStringLiteral("units"),
                    TEST_DATABASE_BUILDER::make_record(units->table_schema(), {{"unit", "velites"}}).get())
                .isEmpty());
    QCOMPARE(value_of(engine, QStringLiteral("units"), QStringLiteral("velites"), QStringLiteral("id")),
             QStringLiteral("4"));
    QCOMPARE(units->next_autonumber(QStringLiteral("id")), 5);
    engine.terminate_transaction();
    QCOMPARE(units->next_autonumber(QStringLiteral("id")), 4);
}

void TST_KOR_ENGINE_RECORDS::unique_ids_never_repeat()
{
    KOR_XML_QUERY_INTERFACE first(nullptr, QString(), false, false);
    KOR_XML_QUERY_INTERFACE second(nullptr, QString(), false, false);
    QSet<quint64> seen;
    quint64 previous = 0;
    for (int i = 0; i < 2000; ++i)
    {
        const quint64 id = (i % 2 ? first : second).new_unique_global_id();
        QVERIFY(id > previous);
        QVERIFY(!seen.contains(id));
        seen.insert(id);
        previous = id;
    }
    // A bound above every value handed out is kept on disk, so a restart
    // cannot repeat one.
    QFile state(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                QStringLiteral("/orbin/unique_id_state"));
    QVERIFY(state.open(QIODevice::ReadOnly));
    QVERIFY(state.readAll().toULongLong() >= previous);
}

void TST_KOR_ENGINE_RECORDS::values_take_their_field_type_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("accepted");

    QTest::newRow("check box text") << "flag" << QVariant(QStringLiteral("true")) << "true" << true;
    QTest::newRow("integer text") << "count" << QVariant(QStringLiteral("12")) << "12" << true;
    QTest::newRow("whole double into integer") << "count" << QVariant(3.0) << "3" << true;
    QTest::newRow("fraction into integer") << "count" << QVariant(3.5) << "" << false;
    QTest::newRow("word into integer") << "count" << QVariant(QStringLiteral("many")) << "" << false;
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
    TEST_DATABASE_BUILDER db(database_path());
    db.table(QStringLiteral("things"),
             {TEST_FIELD::key(QStringLiteral("key")), TEST_FIELD::plain(QStringLiteral("flag"), KFT_YESNO),
              TEST_FIELD::plain(QStringLiteral("count"), KFT_INTEGER),
              TEST_FIELD::plain(QStringLiteral("label"), KFT_TEXT),
              TEST_FIELD::plain(QStringLiteral("amount"), KFT_UNSIGNED_INTEGER)})
        .record(QStringLiteral("things"), {{"key", "a"}, {"count", 1}});
    QVERIFY2(db.ok(), qPrintable(db.error()));
    KOR_XML_QUERY_INTERFACE& engine = db.query_interface();
    QString error;
    KOR_RECORD_DATA* record =
        engine.get_table_data(error, QStringLiteral("things"))->record_by_key(QStringLiteral("a"));
    error =
        engine.edit_record_data(QStringLiteral("things"), record, changed(record, {{field, value}}).get());
    QCOMPARE(error.isEmpty(), accepted);
    if (accepted)
    {
        db.reconnect();
        QCOMPARE(value_of(engine, QStringLiteral("things"), QStringLiteral("a"), field), stored);
    }
    else
    {
        QCOMPARE(record->get_field_data(QStringLiteral("count"))->m_value.toInt(), 1);
    }
}

void TST_KOR_ENGINE_RECORDS::errors_come_in_three_styles()
{
    KOR_XML_QUERY_INTERFACE never_connected(nullptr, QString(), false, false);
    QString error;
    // A bool with an error text.
    QVERIFY(!never_connected.begin_transaction(error, true));
    QVERIFY(!error.isEmpty());
    // An error text that is empty on success.
    QVERIFY(!never_connected.disconnect().isEmpty());
    QVERIFY(!never_connected.connect_without_merge(m_folder->filePath(QStringLiteral("nothing")), false)
                 .isEmpty());
    // A plain answer.
    QVERIFY(!never_connected.is_connected());
    QVERIFY(!never_connected.get_table_schema(QStringLiteral("units")));

    TEST_DATABASE_BUILDER db(database_path());
    build_army(db);
    KOR_XML_QUERY_INTERFACE& engine = db.query_interface();
    QVERIFY(!engine.get_table_data(error, QStringLiteral("missing")));
    QVERIFY(error.contains(QStringLiteral("missing")));
    QVERIFY(!engine.get_table_schema(QStringLiteral("missing")));
    const QString duplicate =
        engine.add_record(QStringLiteral("factions"),
                          TEST_DATABASE_BUILDER::make_record(
                              engine.get_table_schema(QStringLiteral("factions")), {{"key", "rome"}})
                              .get());
    QVERIFY(duplicate.contains(QStringLiteral("rome")));
    QCOMPARE(engine.get_last_error(), duplicate);
    QVERIFY(!engine.connect_without_merge(database_path(), false).isEmpty());
    QVERIFY(engine.is_connected());
}

void TST_KOR_ENGINE_RECORDS::permissions_come_from_the_permissions_file()
{
    TEST_DATABASE_BUILDER db(database_path());
    build_army(db);
    KOR_XML_QUERY_INTERFACE& engine = db.query_interface();
    QVERIFY(!engine.table_restricted(QStringLiteral("units")));
    QVERIFY(engine.can_add_table_records(QStringLiteral("units")));
    QFile file(database_path() + QStringLiteral("/Veld_permissions.xml"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<permissions>\n"
               "  <table name=\"units\" restricted=\"true\" add=\"false\" remove=\"false\">\n"
               "    <user name=\"somebody_else\" add=\"true\"/>\n"
               "  </table>\n"
               "</permissions>\n");
    file.close();
    db.reconnect();
    QVERIFY(engine.table_restricted(QStringLiteral("units")));
    QVERIFY(!engine.can_add_table_records(QStringLiteral("units")));
    QVERIFY(engine.can_edit_table_records(QStringLiteral("units")));
    QVERIFY(!engine.can_remove_table_records(QStringLiteral("units")));
    QVERIFY(engine.can_add_table_records(QStringLiteral("factions")));
    const QString refused = engine.add_record(
        QStringLiteral("units"),
        TEST_DATABASE_BUILDER::make_record(engine.get_table_schema(QStringLiteral("units")), {{"unit", "x"}})
            .get());
    QVERIFY(refused.contains(QStringLiteral("permission")));
}

void TST_KOR_ENGINE_RECORDS::read_only_refuses_edits()
{
    TEST_DATABASE_BUILDER db(database_path());
    build_army(db);
    KOR_XML_QUERY_INTERFACE& engine = db.query_interface();
    engine.make_read_only(true);
    QVERIFY(engine.is_read_only());
    QString error;
    QVERIFY(!engine.begin_transaction(error, true));
    QVERIFY(!engine
                 .add_record(QStringLiteral("factions"),
                             TEST_DATABASE_BUILDER::make_record(
                                 engine.get_table_schema(QStringLiteral("factions")), {{"key", "x"}})
                                 .get())
                 .isEmpty());
    QVERIFY(engine.get_table_data(error, QStringLiteral("factions")));
}

void TST_KOR_ENGINE_RECORDS::interfaces_on_one_path_do_not_overwrite_each_other()
{
    TEST_DATABASE_BUILDER db(database_path());
    build_army(db);
    QVERIFY2(db.ok(), qPrintable(db.error()));
    KOR_XML_QUERY_INTERFACE& first = db.query_interface();
    KOR_XML_QUERY_INTERFACE second(nullptr, QString(), false, false);
    QVERIFY(second.connect_without_merge(database_path(), false).isEmpty());
    QString error;
    const KOR_TABLE_DATA* mine = first.get_table_data(error, QStringLiteral("factions"));
    const KOR_TABLE_DATA* theirs = second.get_table_data(error, QStringLiteral("factions"));
    QVERIFY(mine != theirs);
    QTest::qWait(20); // file times must differ
    QVERIFY(
        second
            .add_record(QStringLiteral("factions"),
                        TEST_DATABASE_BUILDER::make_record(theirs->table_schema(), {{"key", "gauls"}}).get())
            .isEmpty());
    // The first interface read the file before that change: it may not overwrite it.
    const QString refused =
        first.add_record(QStringLiteral("factions"),
                         TEST_DATABASE_BUILDER::make_record(mine->table_schema(), {{"key", "greeks"}}).get());
    QVERIFY(refused.contains(QStringLiteral("changed by someone else")));
    QVERIFY(!mine->record_by_key(QStringLiteral("greeks")));
    db.reconnect();
    QCOMPARE(value_of(first, QStringLiteral("factions"), QStringLiteral("gauls"), QStringLiteral("key")),
             QStringLiteral("gauls"));
}

void TST_KOR_ENGINE_RECORDS::removal_by_key_within_a_transaction()
{
    TEST_DATABASE_BUILDER db(database_path());
    build_army(db);
    KOR_XML_QUERY_INTERFACE& engine = db.query_interface();
    QString error;
    const QUuid uuid = engine.get_table_data(error, QStringLiteral("units"))
                           ->record_by_key(QStringLiteral("hastati"))
                           ->uuid();
    QVERIFY(engine.begin_transaction(error, true));
    QCOMPARE(engine.remove_record_within_transaction(QStringLiteral("units"), QStringLiteral("hastati")),
             uuid);
    QVERIFY(
        engine.remove_record_within_transaction(QStringLiteral("units"), QStringLiteral("hastati")).isNull());
    QVERIFY(!engine.key_exists_within_transaction(QStringLiteral("units"), QStringLiteral("hastati")));
    QVERIFY(engine.end_transaction(error));
    db.reconnect();
    QVERIFY(!engine.key_exists_within_transaction(QStringLiteral("units"), QStringLiteral("hastati")));
}

QTEST_GUILESS_MAIN(TST_KOR_ENGINE_RECORDS)
#include "tst_kor_engine_records.moc"
