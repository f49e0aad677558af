#include "veld_dropdown_items.h"

#include <QtTest>

using ITEM = VELD_DROPDOWN_ITEMS::ITEM;
Q_DECLARE_METATYPE(QVector<ITEM>)

namespace
{
QStringList texts_of(const QVector<ITEM>& items)
{
    QStringList texts;
    for (const ITEM& item : items)
        texts << item.text;
    return texts;
}

// A filter row as the delegate applies it: the pattern found anywhere, or
// not found when inverted.
VELD_DROPDOWN_ITEMS::TEXT_TEST containing(const QString& pattern, bool inverted = false)
{
    return [pattern, inverted](const QString& text) { return text.contains(pattern) != inverted; };
}
} // namespace

class VELD_DROPDOWN_ITEMS_TEST : public QObject
{
    Q_OBJECT

private slots:
    void fixed_values_data()
    {
        QTest::addColumn<bool>("required");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("not required: empty choice first, then sorted")
            << false << "" << QStringList{"", "Bow", "Sword", "axe"};
        QTest::newRow("required: no empty choice") << true << "" << QStringList{"Bow", "Sword", "axe"};
        QTest::newRow("filtered") << false << "w" << QStringList{"", "Bow", "Sword"};
        QTest::newRow("filter rejecting all leaves the empty choice") << false << "zzz" << QStringList{""};
        QTest::newRow("filter rejecting all, required: nothing") << true << "zzz" << QStringList{};
    }

    void fixed_values()
    {
        QFETCH(bool, required);
        QFETCH(QString, pattern);
        QFETCH(QStringList, expected);

        const QVector<ITEM> items =
            VELD_DROPDOWN_ITEMS::from_fixed_values({"Sword", "axe", "Bow"}, required, containing(pattern));
        QCOMPARE(texts_of(items), expected);
        for (const ITEM& item : items)
            QCOMPARE(item.value.toString(), item.text);
    }

    void pairs_data()
    {
        QTest::addColumn<bool>("required");
        QTest::addColumn<bool>("display");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<bool>("inverted");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("not required: empty choice last, list order kept")
            << false << true << "" << false << QStringList{"Orc", "Goblin", "Troll", ""};
        QTest::newRow("required: no empty choice")
            << true << true << "" << false << QStringList{"Orc", "Goblin", "Troll"};
        QTest::newRow("underlying shown, display text filtered")
            << true << false << "o" << false << QStringList{"12", "7"};
        QTest::newRow("inverted filter") << false << true << "o" << true << QStringList{"Orc", ""};
        QTest::newRow("filter rejecting all") << false << true << "zzz" << false << QStringList{""};
    }

    void pairs()
    {
        QFETCH(bool, required);
        QFETCH(bool, display);
        QFETCH(QString, pattern);
        QFETCH(bool, inverted);
        QFETCH(QStringList, expected);

        const QVector<QVariant> values{3, 12, 7};
        const QStringList texts{"Orc", "Goblin", "Troll"};
        const QVector<ITEM> items = VELD_DROPDOWN_ITEMS::from_pairs(&values, &texts, required, display,
                                                                    containing(pattern, inverted));
        QCOMPARE(texts_of(items), expected);
    }

    void pair_values_are_the_underlying_values()
    {
        const QVector<QVariant> values{3, 12};
        const QStringList texts{"Orc", "Goblin"};
        const QVector<ITEM> items = VELD_DROPDOWN_ITEMS::from_pairs(&values, &texts, false, true, {});
        QCOMPARE(items.size(), 3);
        QCOMPARE(items[1].value, QVariant(12));
        QCOMPARE(items[2].value.toString(), QString());
    }

    void unusable_pairs_give_an_empty_box_data()
    {
        QTest::addColumn<bool>("values_given");
        QTest::addColumn<bool>("texts_given");
        QTest::addColumn<int>("text_count");
        QTest::newRow("no values") << false << true << 2;
        QTest::newRow("no texts") << true << false << 2;
        QTest::newRow("lengths differ") << true << true << 1;
        QTest::newRow("empty lists") << true << true << 0;
    }

    void unusable_pairs_give_an_empty_box()
    {
        QFETCH(bool, values_given);
        QFETCH(bool, texts_given);
        QFETCH(int, text_count);
        const QVector<QVariant> values = text_count == 0 ? QVector<QVariant>{} : QVector<QVariant>{1, 2};
        const QStringList texts = QStringList{"one", "two"}.mid(0, text_count);
        // Not required: even the empty choice is missing.
        QVERIFY(VELD_DROPDOWN_ITEMS::from_pairs(values_given ? &values : nullptr,
                                                texts_given ? &texts : nullptr, false, true, {})
                    .isEmpty());
    }
};

QTEST_MAIN(VELD_DROPDOWN_ITEMS_TEST)
#include "veld_dropdown_items_test.moc"
