// The pure logic of the table editing tools: the search walk, clipboard text
// both ways, the key plan of a pasted row, CSV lines and the merge of a CSV
// file into the rows of a table.

#include "veld_cell_walker.h"
#include "veld_clipboard_text.h"
#include "veld_csv_line_splitter.h"
#include "veld_csv_merge_plan.h"
#include "veld_paste_key_plan.h"

#include <QtTest>

namespace
{
using CELLS_T = QMap<int, QString>;

// The cells of a walk as "row,column" texts, in walk order.
QStringList walk(int rows, int columns, int row, int column, int direction, int field = -1)
{
    QStringList cells;
    VELD_CELL_WALKER walker(rows, columns, row, column, direction, field);
    while (walker.next())
        cells << QStringLiteral("%1,%2").arg(walker.row()).arg(walker.column());
    return cells;
}

// A block parsed at the given start, with visual columns reversed over four
// logical columns (visual 0 is logical 3) and nothing past them.
QString parsed(const QString& text, int row, int visual)
{
    const VELD_CLIPBOARD_TEXT::CELLS cells =
        VELD_CLIPBOARD_TEXT::parse(text, row, visual, [](int v) { return v < 4 ? 3 - v : -1; });
    QStringList out;
    for (auto r = cells.constBegin(); r != cells.constEnd(); ++r)
        for (auto c = r.value().constBegin(); c != r.value().constEnd(); ++c)
            out << QStringLiteral("%1/%2=%3").arg(r.key()).arg(c.key()).arg(c.value());
    return out.join(QLatin1Char(' '));
}
} // namespace

class TABLE_TOOLS_LOGIC_TEST : public QObject
{
    Q_OBJECT

private slots:
    void the_walk_visits_every_cell_once_and_ends_at_the_start_data()
    {
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("columns");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("direction");
        QTest::addColumn<int>("field");
        QTest::addColumn<QStringList>("cells");

        // Down from the last row wraps into the next column's top, and past
        // the last column back to the first cell: the corner is not skipped.
        QTest::newRow("down, wrapping into the next column")
            << 2 << 2 << 1 << 0 << 1 << -1 << QStringList{"0,1", "1,1", "0,0", "1,0"};
        QTest::newRow("up, wrapping into the previous column")
            << 2 << 2 << 0 << 0 << 0 << -1 << QStringList{"1,1", "0,1", "1,0", "0,0"};
        QTest::newRow("right, wrapping into the next row")
            << 2 << 2 << 0 << 1 << 3 << -1 << QStringList{"1,0", "1,1", "0,0", "0,1"};
        QTest::newRow("left, wrapping into the row above")
            << 2 << 3 << 0 << 0 << 2 << -1 << QStringList{"1,2", "1,1", "1,0", "0,2", "0,1", "0,0"};
        QTest::newRow("one field, left walks up its rows")
            << 3 << 4 << 1 << 0 << 2 << 2 << QStringList{"0,2", "2,2", "1,2"};
        QTest::newRow("one field, right walks down its rows")
            << 3 << 4 << 1 << 3 << 3 << 2 << QStringList{"2,2", "0,2", "1,2"};
        QTest::newRow("a start outside the table starts at the first cell")
            << 1 << 2 << 7 << 9 << 3 << -1 << QStringList{"0,1", "0,0"};
        QTest::newRow("an empty table has no cells") << 0 << 5 << 0 << 0 << 1 << -1 << QStringList{};
        QTest::newRow("a field past the columns has no cells") << 3 << 2 << 0 << 0 << 1 << 4 << QStringList{};
    }

    void the_walk_visits_every_cell_once_and_ends_at_the_start()
    {
        QFETCH(int, rows);
        QFETCH(int, columns);
        QFETCH(int, row);
        QFETCH(int, column);
        QFETCH(int, direction);
        QFETCH(int, field);
        QFETCH(QStringList, cells);
        QCOMPARE(walk(rows, columns, row, column, direction, field), cells);
    }

    void a_search_without_a_match_ends()
    {
        // Every direction over a table with a corner start: the walk that
        // moved the row on after wrapping both ways never came back.
        for (int direction = 0; direction < 4; ++direction)
        {
            int tests = 0;
            int found_row = -1;
            int found_column = -1;
            QVERIFY(!VELD_CELL_WALKER::find(
                5, 3, 4, 2, direction, -1, [&](int, int) { return ++tests > 1000; }, found_row,
                found_column));
            QCOMPARE(tests, 15);
        }
        int found_row = -1;
        int found_column = -1;
        QVERIFY(VELD_CELL_WALKER::find(
            5, 3, 0, 0, 1, -1, [](int r, int c) { return r == 0 && c == 0; }, found_row, found_column));
        QCOMPARE(QPoint(found_column, found_row), QPoint(0, 0)); // the start cell itself, last
    }

    void clipboard_text_is_parsed_by_visual_column_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("visual");
        QTest::addColumn<QString>("cells");

        QTest::newRow("empty clipboard, one empty cell") << "" << 1 << "5/2=";
        QTest::newRow("tabs move right in visual order") << "a\tb" << 1 << "5/1=b 5/2=a";
        QTest::newRow("a final line feed adds no row") << "a\nb\n" << 0 << "5/3=a 6/3=b";
        QTest::newRow("only one final line feed is dropped") << "a\n\n" << 0 << "5/3=a 6/3=";
        QTest::newRow("rows go back to the start column") << "a\tb\nc" << 2 << "5/0=b 5/1=a 6/1=c";
        QTest::newRow("CR LF ends a row like LF") << "a\r\nb\r\n" << 0 << "5/3=a 6/3=b";
        QTest::newRow("cells past the last column have none") << "a\tb" << 3 << "5/-1=b 5/0=a";
        QTest::newRow("empty cells count") << "\t\tc" << 0 << "5/1=c 5/2= 5/3=";
    }

    void clipboard_text_is_parsed_by_visual_column()
    {
        QFETCH(QString, text);
        QFETCH(int, visual);
        QFETCH(QString, cells);
        QCOMPARE(parsed(text, 5, visual), cells);
    }

    void clipboard_text_is_built_in_row_and_visual_order()
    {
        VELD_CLIPBOARD_TEXT::CELLS cells;
        cells[7][2] = "c";
        cells[3][4] = "b";
        cells[3][0] = "a";
        const QMap<int, QString> names{{0, "key"}, {2, "men"}, {4, "notes"}, {5, "unused"}};
        // A ragged selection gives rows of differing width, with no line
        // feed after the last.
        QCOMPARE(VELD_CLIPBOARD_TEXT::build(cells), QString("a\tb\nc"));
        QCOMPARE(VELD_CLIPBOARD_TEXT::build(cells, names, true), QString("key\tmen\tnotes\na\tb\nc"));
        QCOMPARE(VELD_CLIPBOARD_TEXT::build({}), QString());
        // A float's own text carries the digits of its conversion to double.
        QCOMPARE(VELD_CLIPBOARD_TEXT::cell_text(QVariant(3.3f)), QString("3.3"));
        QCOMPARE(VELD_CLIPBOARD_TEXT::cell_text(QVariant(true)), QString("true"));
    }

    void a_pasted_key_in_use_is_left_out_data()
    {
        QTest::addColumn<CELLS_T>("pasted");
        QTest::addColumn<QString>("record_key");
        QTest::addColumn<QString>("composite");
        QTest::addColumn<bool>("refused");
        QTest::addColumn<bool>("writes_key_column");

        // Keys "region" (column 0) and "slot" (column 2); "north1" is in use.
        QTest::newRow("no key pasted keeps the key") << CELLS_T{{1, "x"}} << "south2"
                                                     << "south2" << false << true;
        QTest::newRow("a new key is pasted") << CELLS_T{{0, "east"}, {1, "x"}} << "south2"
                                             << "east2" << false << true;
        QTest::newRow("a key in use is not") << CELLS_T{{0, "north"}, {2, "1"}} << "south2"
                                             << "north1" << true << false;
        QTest::newRow("the record's own key is no clash") << CELLS_T{{0, "north"}, {2, "1"}} << "north1"
                                                          << "north1" << false << true;
    }

    void a_pasted_key_in_use_is_left_out()
    {
        QFETCH(CELLS_T, pasted);
        QFETCH(QString, record_key);
        QFETCH(QString, composite);
        QFETCH(bool, refused);
        QFETCH(bool, writes_key_column);
        const QStringList current_parts = {record_key.left(record_key.size() - 1), record_key.right(1)};
        const VELD_PASTE_KEY_PLAN plan = VELD_PASTE_KEY_PLAN::make(
            {"region", "slot"}, {{"region", 0}, {"slot", 2}},
            {{"region", current_parts[0]}, {"slot", current_parts[1]}}, pasted, record_key,
            [](const QString& key) { return key == "north1" || key == "south2"; });
        QCOMPARE(plan.composite_key(), composite);
        QCOMPARE(plan.key_refused(), refused);
        QCOMPARE(plan.writes(0), writes_key_column);
        QVERIFY(plan.writes(1));
        if (refused)
            QCOMPARE(plan.refusal_text(4),
                     QString("'north1' key already exists, key will not be pasted for row (4)."));
    }

    void csv_lines_split_into_values_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QStringList>("values");

        QTest::newRow("plain, empty parts kept") << "a,,b," << QStringList{"a", "", "b", ""};
        QTest::newRow("a quoted comma stays one value") << "k,\"x, y\",z" << QStringList{"k", "x, y", "z"};
        QTest::newRow("a doubled quote is one quote")
            << "\"say \"\"hi\"\"\",2" << QStringList{"say \"hi\"", "2"};
        QTest::newRow("quoted commas and quotes together")
            << "\"a,\"\"b\"\",c\",d" << QStringList{"a,\"b\",c", "d"};
        QTest::newRow("empty quoted value") << "\"\",x" << QStringList{"", "x"};
        QTest::newRow("an unclosed quote keeps the rest") << "a,\"b,c" << QStringList{"a", "b,c"};
    }

    void csv_lines_split_into_values()
    {
        QFETCH(QString, line);
        QFETCH(QStringList, values);
        QCOMPARE(VELD_CSV_LINE_SPLITTER::split(line), values);
    }

    void csv_records_merge_into_live_rows()
    {
        // Row 1 is marked for deletion; row 3 is a new row with the same key
        // as a record of the file.
        const QStringList keys = {"archers", "hastati", "slingers", "velites"};
        const QHash<QString, int> live = VELD_CSV_MERGE_PLAN::live_rows_by_key(
            keys.size(), [&](int row) { return keys[row]; }, [](int row) { return row == 1; });
        QCOMPARE(live.value("archers", -1), 0);
        QVERIFY(!live.contains("hastati"));

        QMap<QString, QMap<QString, QString>> values;
        values["velites"] = {{"unit", "velites"}, {"men", "80"}};
        values["hastati"] = {{"unit", "hastati"}, {"men", "120"}, {"not a field", "x"}};
        values["archers"] = {{"notes", "long bows"}, {"unit", "archers"}};
        const QVector<VELD_CSV_MERGE_PLAN::STEP> steps =
            VELD_CSV_MERGE_PLAN::make(values, {"unit", "men", "notes"}, live);
        QCOMPARE(steps.size(), 3);
        // In key order; an update of the live row, a deleted row not
        // revived, cells in column order without unknown fields.
        QCOMPARE(steps[0].key, QString("archers"));
        QCOMPARE(steps[0].row, 0);
        QCOMPARE(steps[0].cells, (QVector<QPair<int, QString>>{{0, "archers"}, {2, "long bows"}}));
        QCOMPARE(steps[1].key, QString("hastati"));
        QCOMPARE(steps[1].row, -1);
        QCOMPARE(steps[1].cells, (QVector<QPair<int, QString>>{{0, "hastati"}, {1, "120"}}));
        QCOMPARE(steps[2].row, 3);
    }
};

QTEST_APPLESS_MAIN(TABLE_TOOLS_LOGIC_TEST)
#include "table_tools_logic_test.moc"
