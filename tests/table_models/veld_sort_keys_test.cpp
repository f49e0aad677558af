#include "veld_sort_keys.h"

#include <QtTest>

#include <algorithm>
#include <numeric>

namespace
{
struct LIST_VALUES : VELD_SORT_KEYS::VALUES
{
    QVariantList values;
    int row_count() const override { return values.size(); }
    QVariant value(int row) const override { return values.at(row); }
};

// The rows in the order a stable sort by the keys gives.
QList<int> sorted_rows(VELD_SORT_KEYS& keys, const LIST_VALUES& values)
{
    QList<int> rows;
    for (int row = 0; row < values.row_count(); ++row)
        rows.append(row);
    std::stable_sort(rows.begin(), rows.end(), [&](int a, int b) { return keys.less(a, b, values); });
    return rows;
}
} // namespace

// The sort keys must order rows exactly as comparing their values would.
class VELD_SORT_KEYS_TEST : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // The collation in force sorts ä after z, as Swedish does.
        QCOMPARE(QLocale::system().name(), QStringLiteral("sv_SE"));
        QVERIFY(QString::localeAwareCompare(QStringLiteral("ä"), QStringLiteral("z")) > 0);
    }
    void texts_follow_the_locale_collation_data()
    {
        QTest::addColumn<QStringList>("texts");
        QTest::newRow("letters and case") << QStringList{"b", "B", "a", "A", "ab", "aB", "Zebra", "zebra"};
        QTest::newRow("accents") << QStringList{"ä", "a", "z", "Ö", "o", "é", "e", "ø", "å"};
        QTest::newRow("digits are not numbers") << QStringList{"item10", "item9", "item1", "10", "9"};
        QTest::newRow("empty and repeated") << QStringList{"", "x", "", "x", "y", ""};
    }

    void texts_follow_the_locale_collation()
    {
        QFETCH(QStringList, texts);
        LIST_VALUES values;
        for (const QString& text : texts)
            values.values.append(text);
        VELD_SORT_KEYS keys;
        keys.start(0, Qt::DisplayRole, VELD_SORT_KEYS::BY_FIELD_TYPE, KFT_TEXT);
        QList<int> expected;
        for (int row = 0; row < texts.size(); ++row)
            expected.append(row);
        std::stable_sort(expected.begin(), expected.end(),
                         [&](int a, int b) { return QString::localeAwareCompare(texts[a], texts[b]) < 0; });
        QCOMPARE(sorted_rows(keys, values), expected);
    }

    void numbers_by_field_type_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QVariantList>("values");
        QTest::addColumn<QList<int>>("order");

        QTest::newRow("integers") << int(KFT_INTEGER) << QVariantList{10, -3, 9, 10, QVariant()}
                                  << QList<int>{1, 4, 2, 0, 3};
        QTest::newRow("integers held as text")
            << int(KFT_AUTONUMBER) << QVariantList{"10", "9", "100"} << QList<int>{1, 0, 2};
        QTest::newRow("unsigned 64-bit")
            << int(KFT_CARD64)
            << QVariantList{qulonglong(18446744073709551615ull), qulonglong(1), qulonglong(2)}
            << QList<int>{1, 2, 0};
        QTest::newRow("doubles") << int(KFT_DOUBLE) << QVariantList{2.5, -1e9, 2.25} << QList<int>{1, 2, 0};
        QTest::newRow("decimal sorts as text")
            << int(KFT_DECIMAL) << QVariantList{10.0, 9.0, 100.0} << QList<int>{0, 2, 1};
        QTest::newRow("yes/no as text")
            << int(KFT_YESNO) << QVariantList{true, false, true} << QList<int>{1, 0, 2};
    }

    void numbers_by_field_type()
    {
        QFETCH(int, type);
        QFETCH(QVariantList, values);
        QFETCH(QList<int>, order);
        LIST_VALUES list;
        list.values = values;
        VELD_SORT_KEYS keys;
        keys.start(0, Qt::EditRole, VELD_SORT_KEYS::BY_FIELD_TYPE, KOR_FIELD_TYPE(type));
        QCOMPARE(sorted_rows(keys, list), order);
    }

    void held_types_data()
    {
        QTest::addColumn<QVariantList>("values");
        QTest::addColumn<QList<int>>("order");

        QTest::newRow("texts") << QVariantList{"Rome", "Carthage", "Athens"} << QList<int>{2, 1, 0};
        QTest::newRow("unsigned numbers") << QVariantList{qulonglong(10), qulonglong(9)} << QList<int>{1, 0};
        QTest::newRow("doubles") << QVariantList{10.0, 9.5} << QList<int>{1, 0};
        // Two numbers compare as numbers, a number and a text as texts.
        QTest::newRow("mixed") << QVariantList{"a", qulonglong(10), qulonglong(9)} << QList<int>{2, 1, 0};
        QTest::newRow("integers are text") << QVariantList{10, 9} << QList<int>{0, 1};
    }

    void held_types()
    {
        QFETCH(QVariantList, values);
        QFETCH(QList<int>, order);
        LIST_VALUES list;
        list.values = values;
        VELD_SORT_KEYS keys;
        keys.start(1, Qt::DisplayRole, VELD_SORT_KEYS::BY_HELD_TYPE, KFT_TEXT);
        QVERIFY(keys.is_for(1, Qt::DisplayRole));
        QVERIFY(!keys.is_for(1, Qt::EditRole));
        QCOMPARE(sorted_rows(keys, list), order);
    }

    void changed_and_added_rows_use_their_new_values()
    {
        for (const int type : {int(KFT_INTEGER), int(KFT_TEXT)})
        {
            LIST_VALUES list;
            list.values = type == KFT_INTEGER ? QVariantList{1, 2, 3} : QVariantList{"b", "c", "d"};
            VELD_SORT_KEYS keys;
            keys.start(0, Qt::EditRole, VELD_SORT_KEYS::BY_FIELD_TYPE, KOR_FIELD_TYPE(type));
            QCOMPARE(sorted_rows(keys, list), (QList<int>{0, 1, 2}));

            // Row 2 now sorts first; a row added at the end sorts in between.
            list.values[2] = type == KFT_INTEGER ? QVariant(0) : QVariant("a");
            keys.forget_rows(2, 2);
            list.values.append(type == KFT_INTEGER ? QVariant(2) : QVariant("c"));
            QCOMPARE(sorted_rows(keys, list), (QList<int>{2, 0, 1, 3}));
            QVERIFY(!keys.less(1, 3, list));
            QVERIFY(!keys.less(3, 1, list));

            keys.clear();
            QVERIFY(!keys.is_for(0, Qt::EditRole));
        }
    }
};

int main(int argc, char** argv)
{
    // Collation that differs from code point order (ä after z, ø and å after
    // them), so that keys and localeAwareCompare must really agree.
    qputenv("LC_ALL", "sv_SE.UTF-8");
    qputenv("LANG", "sv_SE.UTF-8");
    VELD_SORT_KEYS_TEST test;
    return QTest::qExec(&test, argc, argv);
}

#include "veld_sort_keys_test.moc"
