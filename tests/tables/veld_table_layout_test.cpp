#include "veld_table_layout.h"

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
};

QTEST_MAIN(VELD_TABLE_LAYOUT_TEST)
#include "veld_table_layout_test.moc"
