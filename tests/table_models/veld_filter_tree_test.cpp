#include "veld_filter_tree.h"
#include "veld_fixed_filter_row.h"

#include <QtTest>

namespace
{
using ROW = VELD_FIXED_FILTER_ROW;

// Rows written as text, one letter a row, e.g. "a&(b|c)": the letter is the
// row (a tests column 0, b column 1, ...), "&" and "|" its join with the next
// row, "(" and ")" its brackets, "!" its Not box, "~" a disabled row.
std::vector<ROW> rows_of(const QString& text)
{
    std::vector<ROW> rows;
    int pending_left = 0;
    bool pending_not = false;
    bool pending_disabled = false;
    for (QChar c : text)
    {
        if (c == QLatin1Char('('))
            ++pending_left;
        else if (c == QLatin1Char('!'))
            pending_not = true;
        else if (c == QLatin1Char('~'))
            pending_disabled = true;
        else if (c.isLetter())
        {
            ROW row(c.toLatin1() - 'a', QString(c));
            row.left = pending_left;
            row.inverted = pending_not;
            row.enabled = !pending_disabled;
            rows.push_back(row);
            pending_left = 0;
            pending_not = false;
            pending_disabled = false;
        }
        else if (c == QLatin1Char(')'))
            ++rows.back().right;
        else if (c == QLatin1Char('|'))
            rows.back().joins_or = true;
    }
    return rows;
}

// The tree's shape: letters for leaves, brackets for groups.
QString shape(const QList<VELD_FILTER_NODE>& nodes)
{
    QString text;
    for (const VELD_FILTER_NODE& node : nodes)
        text += node.is_group() ? QLatin1Char('[') + shape(node.children) + QLatin1Char(']')
                                : node.row->pattern_text();
    return text;
}

// Evaluates the tree for one record whose column i holds the letter of row
// i when bit i of `bits` is set, and nothing otherwise.
bool accepts(const VELD_FILTER_TREE& tree, int bits)
{
    return tree.accepts(
        [bits](int column) { return (bits >> column) & 1 ? QString(QChar('a' + column)) : QString(); });
}
} // namespace

class VELD_FILTER_TREE_TEST : public QObject
{
    Q_OBJECT

private slots:
    // Each case: the rows and the expected result as a function of the values.
    void evaluates_left_to_right_data()
    {
        QTest::addColumn<QString>("rows");
        // The expected result for the values 0 to 7 of (c, b, a) as bits.
        QTest::addColumn<QString>("truth");

        QTest::newRow("and then or is (a AND b) OR c") << "a&b|c"
                                                       << "00011111";
        QTest::newRow("or then and is (a OR b) AND c") << "a|b&c"
                                                       << "00000111";
        QTest::newRow("brackets: a AND (b OR c)") << "a&(b|c)"
                                                  << "00010101";
        QTest::newRow("not inverts its row") << "!a&b"
                                             << "00100010";
        QTest::newRow("double brackets: a OR (b AND c)") << "a|((b&c))"
                                                         << "01010111";
    }

    void evaluates_left_to_right()
    {
        QFETCH(QString, rows);
        QFETCH(QString, truth);
        std::vector<ROW> list = rows_of(rows);
        VELD_FILTER_TREE tree;
        QCOMPARE(tree.build(ROW::pointers(list)), QString());
        QString results;
        for (int bits = 0; bits < 8; ++bits)
            results += accepts(tree, bits) ? QLatin1Char('1') : QLatin1Char('0');
        QCOMPARE(results, truth);
    }

    void builds_groups_data()
    {
        QTest::addColumn<QString>("rows");
        QTest::addColumn<bool>("warning");
        QTest::addColumn<QString>("shape");

        QTest::newRow("no brackets") << "a&b&c" << false << "abc";
        QTest::newRow("one pair") << "a&(b&c)" << false << "a[bc]";
        QTest::newRow("pair around one row") << "(a)&b" << false << "[a]b";
        QTest::newRow("two pairs side by side") << "(a&b)|(c&d)" << false << "[ab][cd]";
        QTest::newRow("nested pairs") << "((a&b)&c)" << false << "[[ab]c]";
        QTest::newRow("double pair on one group") << "((a&b))&c" << false << "[ab]c";
        QTest::newRow("right before any left") << "a)&b" << true << "ab";
        QTest::newRow("left never closed") << "(a&b" << true << "ab";
        // Four left and two right: the group keeps one left bracket, not two,
        // and that one is unmatched.
        QTest::newRow("four left two right") << "((((a&b))" << true << "[ab]";
        // ... so a third right bracket later closes it exactly.
        QTest::newRow("four left then two and one right") << "((((a&b))&c)" << false << "[[ab]c]";
        QTest::newRow("more right than left") << "(a&b))&c" << true << "[ab]c";
    }

    void builds_groups()
    {
        QFETCH(QString, rows);
        QFETCH(bool, warning);
        QFETCH(QString, shape);
        std::vector<ROW> list = rows_of(rows);
        VELD_FILTER_TREE tree;
        const QString text = tree.build(ROW::pointers(list));
        QCOMPARE(::shape(tree.nodes()), shape);
        QCOMPARE(text,
                 warning ? QStringLiteral("\tWarning: There are some mis-matched brackets") : QString());
    }

    void disabled_rows_take_no_part()
    {
        // Disabling the row that holds the only right bracket leaves the left
        // one unmatched.
        std::vector<ROW> list = rows_of(QStringLiteral("(a&~b)&c"));
        VELD_FILTER_TREE tree;
        QCOMPARE(tree.build(ROW::pointers(list)), VELD_FILTER_TREE::mismatched_brackets_warning);
        QCOMPARE(shape(tree.nodes()), QStringLiteral("ac"));
        // b is not in the tree: a record without b passes when a and c hold.
        QVERIFY(accepts(tree, 1 | 4));
        QVERIFY(!accepts(tree, 1 | 2));
    }

    void empty_tree_accepts_every_record()
    {
        VELD_FILTER_TREE tree;
        std::vector<ROW> list = rows_of(QStringLiteral("~a&~b"));
        QCOMPARE(tree.build(ROW::pointers(list)), QString());
        QVERIFY(tree.is_empty());
        QVERIFY(accepts(tree, 0));
    }

    void group_joins_by_its_last_leaf()
    {
        // (a AND b) joined to c by b's Or box; a's box is AND.
        std::vector<ROW> list = rows_of(QStringLiteral("(a&b)|c"));
        VELD_FILTER_TREE tree;
        tree.build(ROW::pointers(list));
        QVERIFY(tree.nodes().first().joins_next_with_or());
        QVERIFY(accepts(tree, 4));
        QVERIFY(!accepts(tree, 1));

        VELD_FILTER_NODE empty_group;
        QVERIFY(!empty_group.joins_next_with_or());
    }

    void skipped_cells_are_not_fetched()
    {
        // false AND ... stays false, true OR ... stays true: the cells of the
        // rest are not asked for, and the answer is the same.
        std::vector<ROW> list = rows_of(QStringLiteral("a&b|c"));
        VELD_FILTER_TREE tree;
        tree.build(ROW::pointers(list));
        QList<int> fetched;
        const bool result = tree.accepts([&](int column) {
            fetched.append(column);
            return QString(); // every row false
        });
        QVERIFY(!result);
        QCOMPARE(fetched, (QList<int>{0, 2}));
    }

    void expression_text_data()
    {
        QTest::addColumn<QString>("rows");
        QTest::addColumn<QString>("text");

        QTest::newRow("joins") << "a&b|c"
                               << "a AND b OR c";
        QTest::newRow("brackets and not") << "(a|!b)&c"
                                          << "(a OR NOT b) AND c";
        QTest::newRow("disabled row left out, join of the row before") << "a|~b&c"
                                                                       << "a OR c";
    }

    void expression_text()
    {
        QFETCH(QString, rows);
        QFETCH(QString, text);
        std::vector<ROW> list = rows_of(rows);
        QCOMPARE(VELD_FILTER_TREE::expression_text(ROW::pointers(list)), text);
    }
};

QTEST_APPLESS_MAIN(VELD_FILTER_TREE_TEST)
#include "veld_filter_tree_test.moc"
