// The record-by-record three-way merge of one table.

#include "workspace/kor_record_merge.h"

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"

#include <QtTest/QtTest>

namespace
{
// A small table: key (text, the key), hp (integer), name (text).
std::unique_ptr<KOR_TABLE_SCHEMA> units_schema()
{
    auto schema = std::make_unique<KOR_TABLE_SCHEMA>(QStringLiteral("units"));
    auto add = [&](bool key, const QString& name, KOR_FIELD_TYPE type) {
        auto* field = new KOR_FIELD_SCHEMA(QUuid::createUuid());
        field->initialise(key, name, type, key, QVariant(), type == KFT_TEXT ? 64 : 0, false, QString(),
                          QString(), QString(), false, false, false);
        schema->add_field_schema(field);
    };
    add(true, "key", KFT_TEXT);
    add(false, "hp", KFT_INTEGER);
    add(false, "name", KFT_TEXT);
    return schema;
}

// Adds a record "key=...;hp=...;name=..." (fields left out are absent).
void add_record(KOR_TABLE_DATA& table, const QUuid& uuid, const QString& text)
{
    if (text.isEmpty())
        return;
    auto* record = new KOR_RECORD_DATA(table.table_schema(), &table, uuid);
    for (const QString& part : text.split(QLatin1Char(';')))
    {
        const QString name = part.section(QLatin1Char('='), 0, 0);
        const QString value = part.section(QLatin1Char('='), 1);
        const KOR_FIELD_SCHEMA* field = table.table_schema()->field_schema_by_name(name);
        record->add_field_data(field,
                               name == QLatin1String("hp") ? QVariant(value.toInt()) : QVariant(value));
    }
    QString error;
    QVERIFY2(table.add_record(record, &error), qPrintable(error));
}

QString describe(const KOR_RECORD_DATA* record)
{
    if (!record)
        return QString();
    QStringList parts;
    for (const QString& name : {QStringLiteral("key"), QStringLiteral("hp"), QStringLiteral("name")})
    {
        if (const KOR_FIELD_DATA* field = record->get_field_data(name))
            parts.append(name + QLatin1Char('=') + field->value_text());
    }
    return parts.join(QLatin1Char(';'));
}
// Three versions of the units table, and their merge.
struct THREE_WAY
{
    std::unique_ptr<KOR_TABLE_SCHEMA> schema = units_schema();
    KOR_TABLE_DATA base{schema.get()};
    KOR_TABLE_DATA yours{schema.get()};
    KOR_TABLE_DATA theirs{schema.get()};
    KOR_RECORD_MERGE::RESULT result;
    QString error;

    // One record of that uuid on each side that gives a text ("" for none).
    void add(const QUuid& uuid, const QString& base_text, const QString& your_text, const QString& their_text)
    {
        add_record(base, uuid, base_text);
        add_record(yours, uuid, your_text);
        add_record(theirs, uuid, their_text);
    }
    bool merge(bool with_base = true)
    {
        return KOR_RECORD_MERGE::merge(error, schema.get(), with_base ? &base : nullptr, yours, theirs,
                                       result);
    }
};
} // namespace

class TEST_KOR_RECORD_MERGE : public QObject
{
    Q_OBJECT

private slots:
    void one_record_three_ways_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("yours");
        QTest::addColumn<QString>("theirs");
        QTest::addColumn<QString>("merged");
        QTest::addColumn<int>("conflicts");
        const QString one = "key=archer;hp=1;name=A";
        const QString hp2 = "key=archer;hp=2;name=A";
        const QString hp3 = "key=archer;hp=3;name=A";
        const QString hp5 = "key=archer;hp=5;name=A";
        const QString none;
        QTest::newRow("untouched") << one << one << one << one << 0;
        QTest::newRow("their edit is taken") << one << one << hp2 << hp2 << 0;
        QTest::newRow("your edit is kept") << one << hp3 << one << hp3 << 0;
        QTest::newRow("different fields both kept")
            << one << hp3 << "key=archer;hp=1;name=B" << "key=archer;hp=3;name=B" << 0;
        QTest::newRow("same field, same value") << one << hp5 << hp5 << hp5 << 0;
        QTest::newRow("same field, yours wins")
            << one << hp5 << "key=archer;hp=6;name=B" << "key=archer;hp=5;name=B" << 1;
        QTest::newRow("field emptied locally") << one << "key=archer;hp=1" << one << "key=archer;hp=1" << 0;
        QTest::newRow("deleted in the depot, untouched here") << one << one << none << none << 0;
        QTest::newRow("deleted in the depot, changed here") << one << hp2 << none << hp2 << 1;
        QTest::newRow("deleted here, untouched in the depot") << one << none << one << none << 0;
        QTest::newRow("deleted here, changed in the depot") << one << none << hp3 << hp3 << 1;
        QTest::newRow("deleted on both sides") << one << none << none << none << 0;
        QTest::newRow("added here") << none << one << none << one << 0;
        QTest::newRow("added in the depot") << none << none << one << one << 0;
        QTest::newRow("added on both sides alike") << none << one << one << one << 0;
    }

    void one_record_three_ways()
    {
        QFETCH(QString, base);
        QFETCH(QString, yours);
        QFETCH(QString, theirs);
        QFETCH(QString, merged);
        QFETCH(int, conflicts);
        const QUuid uuid = QUuid::createUuid();
        const QUuid bystander = QUuid::createUuid();
        THREE_WAY tables;
        tables.add(uuid, base, yours, theirs);
        // A record nobody touched rides along unchanged.
        const QString zealot = "key=zealot;hp=9;name=Z";
        tables.add(bystander, zealot, zealot, zealot);
        QVERIFY2(tables.merge(), qPrintable(tables.error));
        const KOR_RECORD_MERGE::RESULT& result = tables.result;
        QCOMPARE(describe(result.merged->record_by_uuid(uuid)), merged);
        QCOMPARE(describe(result.merged->record_by_uuid(bystander)), zealot);
        QCOMPARE(result.merged->record_count(), merged.isEmpty() ? 1 : 2);
        QCOMPARE(result.conflicts.size(), conflicts);
        if (conflicts > 0)
        {
            QCOMPARE(result.conflicts.first().key, "archer");
            QVERIFY(!result.conflicts.first().resolution.isEmpty());
        }
        // The inputs are left as they were.
        QCOMPARE(describe(tables.yours.record_by_uuid(uuid)), yours);
    }

    void conflict_names_the_field_and_both_values()
    {
        THREE_WAY tables;
        tables.add(QUuid::createUuid(), "key=archer;hp=1", "key=archer;hp=5", "key=archer;hp=6");
        QVERIFY(tables.merge());
        QCOMPARE(tables.result.conflicts.size(), 1);
        const KOR_RECORD_MERGE::CONFLICT& conflict = tables.result.conflicts.first();
        QCOMPARE(conflict.field, "hp");
        QCOMPARE(conflict.base_text, "1");
        QCOMPARE(conflict.your_text, "5");
        QCOMPARE(conflict.their_text, "6");
    }

    void one_key_for_two_records_fails()
    {
        THREE_WAY tables;
        tables.add(QUuid::createUuid(), "", "key=archer;hp=1", "");
        tables.add(QUuid::createUuid(), "", "", "key=archer;hp=2");
        QVERIFY(!tables.merge());
        QVERIFY2(tables.error.contains(QLatin1String("key 'archer'")), qPrintable(tables.error));
        QVERIFY(!tables.result.merged);
    }

    void without_a_base_both_sides_count_as_added()
    {
        THREE_WAY tables;
        const QUuid uuid = QUuid::createUuid();
        tables.add(uuid, "", "key=archer;hp=1", "key=archer;hp=2");
        tables.add(QUuid::createUuid(), "", "", "key=bowman;hp=3");
        QVERIFY(tables.merge(false));
        QCOMPARE(tables.result.merged->record_count(), 2);
        QCOMPARE(describe(tables.result.merged->record_by_uuid(uuid)), "key=archer;hp=1");
        QCOMPARE(tables.result.conflicts.size(), 1);
    }
};

QTEST_GUILESS_MAIN(TEST_KOR_RECORD_MERGE)
#include "test_kor_record_merge.moc"
