// The data classes of the contract on their own, without a database.

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "test_database_builder.h"

#include <QtTest>

#include <memory>

namespace
{
std::unique_ptr<KOR_TABLE_SCHEMA> make_units_schema()
{
    return TEST_DATABASE_BUILDER::make_schema(
        "units", {TEST_FIELD::key("faction"), TEST_FIELD::key("Unit_Name"),
                  TEST_FIELD::plain("strength", KFT_INTEGER), TEST_FIELD::plain("id", KFT_AUTONUMBER)});
}

KOR_RECORD_DATA* make_unit(const KOR_TABLE_SCHEMA* schema, const QString& faction, const QString& name,
                           int id)
{
    return TEST_DATABASE_BUILDER::make_record(
               schema, {{"faction", faction}, {"unit_name", name}, {"strength", 10}, {"id", id}})
        .release();
}
} // namespace

class TST_KOR_DATA_CLASSES : public QObject
{
    Q_OBJECT

private slots:
    void metafields_refuse_what_a_schema_cannot_hold();
    void table_schema_follows_renames_and_keys();
    void table_schema_copy_is_deep();
    void record_fields_ignore_case_and_keys_join_without_separator();
    void record_copy_keeps_or_renews_uuid();
    void table_data_orders_by_key_and_indexes_by_uuid();
    void uuid_index_survives_many_removals();
    void next_autonumber_follows_changes();
    void conversion_by_type_data();
    void conversion_by_type();
};

// Type names are covered by every type surviving a reload (engine records).
void TST_KOR_DATA_CLASSES::metafields_refuse_what_a_schema_cannot_hold()
{
    QCOMPARE(int(KOR_FIELD_SCHEMA::string_to_field_type("memo")), int(KFT_NONE));
    KOR_FIELD_SCHEMA field;
    QVERIFY(field.set_metafield_value(KMF_FIELD_NAME, "cost"));
    QVERIFY(field.set_metafield_value(KMF_FIELD_TYPE, int(KFT_SINGLE)));
    QVERIFY(!field.set_metafield_value(KMF_FIELD_TYPE, 12));
    QVERIFY(!field.set_metafield_value(KMF_FIELD_NAME, "../escape"));
    QCOMPARE(field.field_name(), "cost");
    QCOMPARE(int(field.field_type()), int(KFT_SINGLE));

    QVERIFY(field.set_metafield_value(KMF_FOREIGN_TABLE, "resources"));
    QVERIFY(field.set_metafield_value(KMF_FOREIGN_FIELD, "key"));
    QVERIFY(field.set_metafield_value(KMF_LOOKUP_FIELDS, "key:name"));
    QVERIFY(field.dependency());
    QCOMPARE(*field.dependency(), qMakePair(QString("resources"), QString("key")));
    QCOMPARE(field.lookup_fields(), QStringList({"key", "name"}));
    QCOMPARE(field.source_table(), "resources");
    QVERIFY(field.set_metafield_value(KMF_FOREIGN_TABLE, QString()));
    QVERIFY(!field.dependency());
    QVERIFY(field.source_table().isEmpty());
}

void TST_KOR_DATA_CLASSES::table_schema_follows_renames_and_keys()
{
    auto schema = make_units_schema();
    QCOMPARE(schema->primary_key_fields(), QList<QString>({"faction", "Unit_Name"}));
    KOR_FIELD_SCHEMA* name = schema->field_schema_by_name("UNIT_NAME");
    QVERIFY(name);
    QVERIFY(name->set_metafield_value(KMF_FIELD_NAME, "label"));
    QCOMPARE(schema->field_schema_by_name("label"), name);
    QVERIFY(!schema->field_schema_by_name("unit_name"));
    QCOMPARE(schema->column_ordering().at(1), "label");
    QCOMPARE(schema->primary_key_fields().at(1), "label");
    QVERIFY(!name->set_metafield_value(KMF_FIELD_NAME, "STRENGTH"));

    KOR_FIELD_SCHEMA* strength = schema->field_schema_by_name("strength");
    QVERIFY(strength->set_metafield_value(KMF_PRIMARY_KEY, true));
    QCOMPARE(schema->primary_key_fields().size(), 3);

    std::unique_ptr<KOR_FIELD_SCHEMA> clash(TEST_FIELD::plain("Strength", KFT_TEXT).make());
    QVERIFY(!schema->add_field_schema(clash.get()));
    QVERIFY(!clash->owner());
    std::unique_ptr<KOR_FIELD_SCHEMA> removed(schema->remove_field_schema("strength"));
    QCOMPARE(removed.get(), strength);
    QCOMPARE(schema->field_count(), 3);
    QCOMPARE(schema->primary_key_fields().size(), 2);
    QVERIFY(removed->table_name().isEmpty());
}

void TST_KOR_DATA_CLASSES::table_schema_copy_is_deep()
{
    auto schema = make_units_schema();
    KOR_TABLE_SCHEMA copy(*schema);
    QCOMPARE(copy.column_ordering(), schema->column_ordering());
    QVERIFY(copy.field_schema_by_row(0) != schema->field_schema_by_row(0));
    QCOMPARE(copy.field_schema_by_row(0)->field_unique_id(),
             schema->field_schema_by_row(0)->field_unique_id());
    copy.field_schema_by_row(0)->set_metafield_value(KMF_FIELD_NAME, "side");
    QCOMPARE(schema->field_schema_by_row(0)->field_name(), "faction");

    QStringList errors;
    QVERIFY2(schema->is_valid(errors, true), qPrintable(errors.join('\n')));
    KOR_TABLE_SCHEMA bad("../bad");
    bad.add_field_schema(TEST_FIELD::plain("x", KFT_NONE).make());
    QVERIFY(!bad.is_valid(errors, true));
    QVERIFY(errors.size() >= 3);
}

void TST_KOR_DATA_CLASSES::record_fields_ignore_case_and_keys_join_without_separator()
{
    auto schema = make_units_schema();
    std::unique_ptr<KOR_RECORD_DATA> record(make_unit(schema.get(), "rome", "hastati", 1));
    QCOMPARE(record->key(), "romehastati");
    QVERIFY(record->get_field_data("UNIT_name"));
    QCOMPARE(record->get_field_data("unit_name")->m_value.toString(), "hastati");
    QVERIFY(!record->get_field_data("missing"));

    QStringList names;
    for (auto it = record->field_map().begin(); it != record->field_map().end(); ++it)
        names.append(it.key().string());
    QCOMPARE(names, QStringList({"faction", "id", "strength", "Unit_Name"}));

    // Replacing a field keeps one field of that name.
    record->add_field_data(schema->field_schema_by_name("strength"), 12);
    QCOMPARE(record->field_count(), 4);
    QCOMPARE(record->get_field_data("strength")->m_value.toInt(), 12);
    QVERIFY(record->remove_field_data("STRENGTH"));
    QCOMPARE(record->field_count(), 3);
}

void TST_KOR_DATA_CLASSES::record_copy_keeps_or_renews_uuid()
{
    auto schema = make_units_schema();
    std::unique_ptr<KOR_RECORD_DATA> record(make_unit(schema.get(), "rome", "triarii", 2));
    record->get_field_data("unit_name")->set_approval_state(KOR_FIELD_DATA::TAS_APPROVED);
    record->get_field_data("unit_name")->set_last_approved_text("old");

    KOR_RECORD_DATA same(*record, nullptr, false);
    KOR_RECORD_DATA renewed(*record, nullptr, true);
    QCOMPARE(same.uuid(), record->uuid());
    QVERIFY(renewed.uuid() != record->uuid());
    QCOMPARE(same.key(), record->key());
    const KOR_FIELD_DATA* copied = same.get_field_data("unit_name");
    QVERIFY(copied != record->get_field_data("unit_name"));
    QVERIFY(copied->has_approval_data());
    QCOMPARE(copied->last_approved_text(), "old");
    QVERIFY(!same.get_field_data("strength")->has_approval_data());
}

void TST_KOR_DATA_CLASSES::table_data_orders_by_key_and_indexes_by_uuid()
{
    auto schema = make_units_schema();
    KOR_TABLE_DATA table(schema.get());
    const QStringList names = {"velites", "equites", "hastati"};
    QList<QUuid> uuids;
    for (const QString& name : names)
    {
        KOR_RECORD_DATA* record = make_unit(schema.get(), "rome", name, uuids.size() + 1);
        uuids.append(record->uuid());
        QString error;
        QVERIFY2(table.add_record(record, &error), qPrintable(error));
    }
    QCOMPARE(table.records().keys(), QList<QString>({"romeequites", "romehastati", "romevelites"}));

    QString error;
    KOR_RECORD_DATA* duplicate = make_unit(schema.get(), "rome", "hastati", 9);
    QVERIFY(!table.add_record(duplicate, &error));
    QVERIFY(error.contains("romehastati"));
    delete duplicate;

    KOR_TABLE_DATA copy(table);
    QCOMPARE(copy.record_count(), 3);
    QVERIFY(copy.record_by_uuid(uuids.first()) != table.record_by_uuid(uuids.first()));

    std::unique_ptr<KOR_RECORD_DATA> taken(table.take_record(uuids.at(1)));
    QVERIFY(taken);
    QCOMPARE(table.record_count(), 2);
    QVERIFY(!table.records().contains("romeequites"));
    QVERIFY(!table.record_by_uuid(uuids.at(1)));

    KOR_TABLE_DATA moved(std::move(copy));
    QCOMPARE(moved.record_count(), 3);
    for (KOR_RECORD_DATA* record : moved.records())
        QCOMPARE(record->table_data(), &moved);
}

void TST_KOR_DATA_CLASSES::uuid_index_survives_many_removals()
{
    auto schema = make_units_schema();
    KOR_TABLE_DATA table(schema.get());
    QList<QUuid> uuids;
    for (int i = 0; i < 2000; ++i)
    {
        KOR_RECORD_DATA* record = make_unit(schema.get(), "f", QString::number(i), i);
        uuids.append(record->uuid());
        QVERIFY(table.add_record(record));
    }
    for (int i = 0; i < 2000; i += 3)
        QVERIFY(table.remove_record(uuids.at(i)));
    for (int i = 0; i < 2000; ++i)
        QCOMPARE(table.record_by_uuid(uuids.at(i)) != nullptr, i % 3 != 0);
    const int left = 2000 - 667;
    QCOMPARE(table.records_by_uuid().size(), left);
    int iterated = 0;
    for (auto it = table.records_by_uuid().begin(); it != table.records_by_uuid().end(); ++it, ++iterated)
        QCOMPARE(it.key(), it.value()->uuid());
    QCOMPARE(iterated, left);
}

void TST_KOR_DATA_CLASSES::next_autonumber_follows_changes()
{
    auto schema = make_units_schema();
    KOR_TABLE_DATA table(schema.get());
    QCOMPARE(table.next_autonumber("id"), 1);
    QCOMPARE(table.next_autonumber("nothing"), 0);
    KOR_RECORD_DATA* a = make_unit(schema.get(), "a", "a", 7);
    QVERIFY(table.add_record(a));
    QCOMPARE(table.next_autonumber("id"), 8);
    QVERIFY(table.add_record(make_unit(schema.get(), "b", "b", 3)));
    QCOMPARE(table.next_autonumber("ID"), 8);
    QVERIFY(table.remove_record(a->uuid()));
    QCOMPARE(table.next_autonumber("id"), 4);
}

void TST_KOR_DATA_CLASSES::conversion_by_type_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("back");

    // Texts a reload reads back are covered by values_survive_a_reload (engine records).
    QTest::newRow("yesno word") << int(KFT_YESNO) << "TRUE" << true << "true";
    QTest::newRow("yesno digit") << int(KFT_YESNO) << "0" << true << "false";
    QTest::newRow("yesno junk") << int(KFT_YESNO) << "yes" << false << "";
    QTest::newRow("integer overflow") << int(KFT_INTEGER) << "2147483648" << false << "";
    QTest::newRow("unsigned negative") << int(KFT_UNSIGNED_INTEGER) << "-1" << false << "";
    QTest::newRow("double shortest") << int(KFT_DOUBLE) << "2.5e-07" << true << "2.5e-07";
    QTest::newRow("no type") << int(KFT_NONE) << "1" << false << "";
}

void TST_KOR_DATA_CLASSES::conversion_by_type()
{
    QFETCH(int, type);
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QFETCH(QString, back);
    QString error;
    QVariant value;
    QCOMPARE(KOR_RECORD_DATA::convert_string_to_type(error, value, KOR_FIELD_TYPE(type), text), ok);
    if (ok)
        QCOMPARE(KOR_FIELD_DATA::variant_to_text(value), back);
    else
        QVERIFY(!error.isEmpty());
}

QTEST_GUILESS_MAIN(TST_KOR_DATA_CLASSES)
#include "tst_kor_data_classes.moc"
