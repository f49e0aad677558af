// The colour helpers as every view reads them, from settings written the way
// the options dialog (or a person editing the file) writes them.
#include "orbin_settings.h"
#include "test_rows.h"
#include "veld_options.h"

#include <QtTest/QtTest>

using ORBIN_TEST::row;

namespace
{
void store(const QVariantMap& values)
{
    ORBIN_SETTINGS settings(VELD_OPTIONS::organisation_path());
    settings.beginGroup(VELD_OPTIONS::group());
    for (auto value = values.constBegin(); value != values.constEnd(); ++value)
        settings.setValue(value.key(), value.value());
}
} // namespace

class VELD_OPTIONS_TEST : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        ORBIN_SETTINGS settings(VELD_OPTIONS::organisation_path());
        settings.clear();
    }

    void defaults_data()
    {
        QTest::addColumn<QString>("colour_key");
        QTest::addColumn<QColor>("expected");
        QTest::newRow("altered") << "altered_cell_colour" << QColor(245, 224, 0);
        QTest::newRow("differs") << "differs_colour" << QColor(255, 249, 119);
        // The style's own colour: nothing to impose.
        QTest::newRow("cell background") << "cell_back_colour" << QColor();
    }

    // Defaults apply while nothing is stored, and also when a colour is
    // stored but its default switch is on.
    void defaults()
    {
        QFETCH(QString, colour_key);
        QFETCH(QColor, expected);
        QCOMPARE(VELD_OPTIONS::colour(colour_key), expected);
        store({{colour_key, QColor(Qt::blue)}});
        QCOMPARE(VELD_OPTIONS::colour(colour_key), expected);
    }

    void all_defaults_keep_the_style()
    {
        QVERIFY(!VELD_OPTIONS::uses_custom_cell_style());
        QCOMPARE(VELD_OPTIONS::cell_stylesheet(), QStringLiteral("QTableView, QListView { }"));
        QCOMPARE(VELD_OPTIONS::frozen_stylesheet(),
                 QStringLiteral("QTableView, QListView { background-color: #7B94B4; "
                                "alternate-background-color: #86B7FF; color: #FFFFFF; }"));
    }

    void one_part_off_gives_one_entry_data()
    {
        QTest::addColumn<QString>("default_key");
        QTest::addColumn<QString>("colour_key");
        QTest::addColumn<QString>("entry");
        row("background", "cell_back_is_default", "cell_back_colour", "background-color");
        row("alternate", "cell_alternate_back_is_default", "cell_alternate_back_colour",
            "alternate-background-color");
        row("text", "cell_text_is_default", "cell_text_colour", "color");
    }

    void one_part_off_gives_one_entry()
    {
        QFETCH(QString, default_key);
        QFETCH(QString, colour_key);
        QFETCH(QString, entry);
        store({{default_key, false}, {colour_key, QColor(1, 2, 171)}});
        QVERIFY(VELD_OPTIONS::uses_custom_cell_style());
        QCOMPARE(VELD_OPTIONS::cell_stylesheet(), "QTableView, QListView { " + entry + ": #0102AB; }");
        // The frozen columns are not touched by the plain cell options.
        QVERIFY(VELD_OPTIONS::frozen_stylesheet().contains("#7B94B4"));
    }

    void frozen_parts_off_use_their_colours()
    {
        store({{"frozen_cell_back_is_default", false},
               {"frozen_cell_back_colour", QColor(16, 32, 48)},
               {"frozen_cell_text_is_default", false}});
        // The text colour was never stored: absent reads as white.
        QCOMPARE(VELD_OPTIONS::frozen_stylesheet(),
                 QStringLiteral("QTableView, QListView { background-color: #102030; "
                                "alternate-background-color: #86B7FF; color: #FFFFFF; }"));
        QVERIFY(!VELD_OPTIONS::uses_custom_cell_style());
    }

    void stored_colour_forms_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<QColor>("expected");
        QTest::newRow("a colour") << QVariant(QColor(10, 20, 30)) << QColor(10, 20, 30);
        QTest::newRow("text of a colour") << QVariant(QStringLiteral("#0a141e")) << QColor(10, 20, 30);
        QTest::newRow("text that is no colour") << QVariant(QStringLiteral("sky")) << QColor();
        QTest::newRow("a number") << QVariant(42) << QColor();
        QTest::newRow("absent") << QVariant() << QColor(Qt::white);
    }

    void stored_colour_forms()
    {
        QFETCH(QVariant, stored);
        QFETCH(QColor, expected);
        QVariantMap values{{"differs_is_default", false}};
        if (stored.isValid())
            values.insert("differs_colour", stored);
        store(values);
        QCOMPARE(VELD_OPTIONS::differs_colour(), expected);
    }

    // Each helper reads its own keys: every colour is stored at once, each
    // different from the others.
    void named_helpers_read_their_keys()
    {
        const QList<std::tuple<QString, QString, QColor (*)()>> helpers = {
            {"new_cell_is_default", "new_cell_colour", VELD_OPTIONS::new_cell_colour},
            {"altered_cell_is_default", "altered_cell_colour", VELD_OPTIONS::altered_cell_colour},
            {"exists_only_in_db_1_is_default", "only_in_db_1_colour", VELD_OPTIONS::only_in_db_1_colour},
            {"exists_only_in_db_2_is_default", "only_in_db_2_colour", VELD_OPTIONS::only_in_db_2_colour},
            {"cell_text_is_default", "cell_text_colour", VELD_OPTIONS::cell_text_colour},
            {"window_background_is_default", "window_back_colour", VELD_OPTIONS::window_background_colour}};
        QVariantMap values;
        for (int i = 0; i < helpers.size(); ++i)
            values.insert({{std::get<0>(helpers[i]), false}, {std::get<1>(helpers[i]), QColor(i, 1, 2)}});
        store(values);
        for (int i = 0; i < helpers.size(); ++i)
            QCOMPARE(std::get<2>(helpers[i])(), QColor(i, 1, 2));
    }
};

QTEST_MAIN(VELD_OPTIONS_TEST)
#include "veld_options_test.moc"
