#include "qt_workarounds.h"
#include "veld_table_layout.h"

#include <QHeaderView>
#include <QStandardItemModel>
#include <QTableView>
#include <QtTest>

class VELD_TABLE_LAYOUT_TEST : public QObject
{
    Q_OBJECT

private slots:
    void text_form_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QList<int>>("widths");

        QTest::newRow("two columns") << "name~120;level~45" << QStringList{"name", "level"}
                                     << QList<int>{120, 45};
        QTest::newRow("entries without two parts are dropped")
            << "name~120;broken;a~b~c;;level~45" << QStringList{"name", "level"} << QList<int>{120, 45};
        QTest::newRow("a width that is no number reads 0")
            << "name~wide" << QStringList{"name"} << QList<int>{0};
        QTest::newRow("nothing stored") << "" << QStringList{} << QList<int>{};
    }

    void text_form()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, names);
        QFETCH(QList<int>, widths);

        const VELD_TABLE_LAYOUT layout = VELD_TABLE_LAYOUT::from_text(text);
        QCOMPARE(layout.names(), names);
        QList<int> read;
        for (const auto& column : layout.columns)
            read << column.second;
        QCOMPARE(read, widths);
    }

    void a_header_layout_survives_settings_and_comes_back()
    {
        QStandardItemModel model(2, 4);
        model.setHorizontalHeaderLabels({"key", "name", "level", "flag"});
        QTableView saved_view;
        saved_view.setModel(&model);
        saved_view.horizontalHeader()->moveSection(3, 0);
        saved_view.horizontalHeader()->resizeSection(1, 173);
        saved_view.horizontalHeader()->resizeSection(3, 61);

        const QString text = VELD_TABLE_LAYOUT::of_header(*saved_view.horizontalHeader()).to_text();
        QVERIFY2(text.startsWith("flag~61;key~"), qPrintable(text));
        VELD_TABLE_LAYOUT::store_text("TExc_Units", text);
        QCOMPARE(VELD_TABLE_LAYOUT::stored_text("TExc_Units"), text);
        QVERIFY(VELD_TABLE_LAYOUT::stored_text("TExc_Other").isEmpty());

        QTableView restored_view;
        restored_view.setModel(&model);
        const VELD_TABLE_LAYOUT layout =
            VELD_TABLE_LAYOUT::from_text(VELD_TABLE_LAYOUT::stored_text("TExc_Units"));
        QMap<QString, int> widths = layout.widths();
        QT_WORKAROUNDS::restore_header_by_column_names(layout.names(), {"key", "name", "level", "flag"},
                                                       restored_view.horizontalHeader(), &widths);
        QCOMPARE(VELD_TABLE_LAYOUT::of_header(*restored_view.horizontalHeader()).to_text(), text);
    }
};

QTEST_MAIN(VELD_TABLE_LAYOUT_TEST)
#include "veld_table_layout_test.moc"
