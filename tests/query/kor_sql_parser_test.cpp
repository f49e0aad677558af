#include "kor_sql_lexer.h"
#include "kor_sql_parser.h"

#include <QtTest/QtTest>

class TEST_KOR_SQL_PARSER : public QObject
{
    Q_OBJECT

private slots:
    void canonical_text_data();
    void canonical_text();
    void literals_data();
    void literals();
    void syntax_errors_data();
    void syntax_errors();
    void nesting_limit();
    void long_chains_stay_flat();
    void keywords();
};

namespace
{
QString parse_error(const QString& sql)
{
    KOR_SQL_STATEMENT statement;
    QString error;
    if (KOR_SQL_PARSER::parse(sql, statement, error))
        return QString();
    return error;
}
}

void TEST_KOR_SQL_PARSER::canonical_text_data()
{
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("canonical");

    const QString where = QStringLiteral("SELECT [t.a] FROM [t] WHERE ");

    // An empty canonical form: the statement is canonical already.
    QTest::newRow("help example")
        << "SELECT [main_units.land_unit] FROM [main_units] WHERE [main_units.min_men_per_ship] = 5" << "";
    QTest::newRow("keywords in any case") << "select [t.a] From [t] wHeRe [t.a]=1"
                                          << "SELECT [t.a] FROM [t] WHERE [t.a] = 1";
    QTest::newRow("bare names") << "SELECT t.a, t.b FROM t" << "SELECT [t.a], [t.b] FROM [t]";
    QTest::newRow("unqualified field") << "SELECT [a] FROM [t] WHERE b = 2" << "SELECT [a] FROM [t] WHERE [b] = 2";
    QTest::newRow("escaped bracket") << "SELECT [we]]ird.f] FROM [we]]ird]" << "";
    QTest::newRow("dotted table name") << "SELECT [a.b].[c], [a.b].* FROM [a.b]" << "";
    QTest::newRow("unicode names") << "SELECT größe.wert FROM größe" << "SELECT [größe.wert] FROM [größe]";
    QTest::newRow("table stars") << "SELECT [t.*], u.*, * FROM [t] JOIN [u] ON [t.k]=[u.k]"
                                 << "SELECT [t.*], [u.*], * FROM [t] JOIN [u] ON [t.k] = [u.k]";
    QTest::newRow("several joins")
        << "SELECT [a.x] FROM [a] JOIN [b] ON [a.k] = [b.k] INNER JOIN [c] ON [b.j] = [c.j] AND [c.z] > 1 WHERE [a.x] <> ''"
        << "SELECT [a.x] FROM [a] JOIN [b] ON [a.k] = [b.k] JOIN [c] ON [b.j] = [c.j] AND [c.z] > 1 WHERE [a.x] <> ''";
    QTest::newRow("alias") << "SELECT [x.a] FROM [t] as x JOIN [t] AS [y] ON x.k = y.p"
                           << "SELECT [x.a] FROM [t] AS [x] JOIN [t] AS [y] ON [x.k] = [y.p]";
    QTest::newRow("operators") << where + "[t.a] = 1 AND [t.a] <> 1 AND [t.a] != 1 AND [t.a] < 1 AND [t.a] > 1 AND "
                                          "[t.a] <= 1 AND [t.a] >= 1"
                               << where + "[t.a] = 1 AND [t.a] <> 1 AND [t.a] <> 1 AND [t.a] < 1 AND [t.a] > 1 AND "
                                          "[t.a] <= 1 AND [t.a] >= 1";
    QTest::newRow("like") << where + "[t.a] like 'x%' AND [t.a] NOT LIKE '_y' AND [t.a] LIKE '5!%' escape '!'"
                          << where + "[t.a] LIKE 'x%' AND [t.a] NOT LIKE '_y' AND [t.a] LIKE '5!%' ESCAPE '!'";
    QTest::newRow("is null") << where + "[t.a] is null OR [t.a] IS NOT NULL"
                             << where + "[t.a] IS NULL OR [t.a] IS NOT NULL";
    QTest::newRow("AND binds tighter than OR") << where + "a=1 OR b=2 AND c=3" << where + "[a] = 1 OR [b] = 2 AND [c] = 3";
    QTest::newRow("brackets kept where needed") << where + "(a=1 OR b=2) AND c=3"
                                                << where + "([a] = 1 OR [b] = 2) AND [c] = 3";
    QTest::newRow("redundant brackets dropped") << where + "((a=1)) OR ((b=2 AND c=3))"
                                                << where + "[a] = 1 OR [b] = 2 AND [c] = 3";
    QTest::newRow("nested AND keeps its brackets") << where + "a=1 AND (b=2 AND c=3)"
                                                   << where + "[a] = 1 AND ([b] = 2 AND [c] = 3)";
    QTest::newRow("NOT of a group") << where + "NOT (a=1 AND b=2)" << where + "NOT ([a] = 1 AND [b] = 2)";
    QTest::newRow("NOT binds tighter than AND") << where + "NOT a=1 AND b=2" << where + "NOT [a] = 1 AND [b] = 2";
    QTest::newRow("semicolon and comment") << "SELECT [t.a] -- the first field\nFROM [t];"
                                           << "SELECT [t.a] FROM [t]";
    QTest::newRow("numbers as written") << where + "[t.a] = -5 OR [t.a] = 1.50 OR [t.a] = 2E-3" << "";
}

void TEST_KOR_SQL_PARSER::canonical_text()
{
    QFETCH(QString, sql);
    QFETCH(QString, canonical);
    if (canonical.isEmpty())
        canonical = sql;

    KOR_SQL_STATEMENT statement;
    QString error;
    QVERIFY2(KOR_SQL_PARSER::parse(sql, statement, error), qPrintable(error));
    QCOMPARE(statement.to_text(), canonical);

    // The canonical form is a fixed point: it reads back to the same tree.
    KOR_SQL_STATEMENT again;
    QVERIFY2(KOR_SQL_PARSER::parse(canonical, again, error), qPrintable(error));
    QCOMPARE(again.to_text(), canonical);
}

void TEST_KOR_SQL_PARSER::literals_data()
{
    QTest::addColumn<QString>("literal");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("value");

    QTest::newRow("integer") << "42" << int(KOR_SQL_LITERAL::INTEGER) << "42";
    QTest::newRow("smallest signed") << "-9223372036854775808" << int(KOR_SQL_LITERAL::INTEGER)
                                     << "-9223372036854775808";
    QTest::newRow("beyond signed") << "9223372036854775808" << int(KOR_SQL_LITERAL::UNSIGNED)
                                   << "9223372036854775808";
    QTest::newRow("real") << "2.5" << int(KOR_SQL_LITERAL::REAL) << "2.5";
    QTest::newRow("exponent") << "-1e3" << int(KOR_SQL_LITERAL::REAL) << "-1000";
    QTest::newRow("text") << "'a ''b'' c'" << int(KOR_SQL_LITERAL::TEXT) << "a 'b' c";
    QTest::newRow("text keeps brackets") << "'[x.y] -- not a comment'" << int(KOR_SQL_LITERAL::TEXT)
                                         << "[x.y] -- not a comment";
    QTest::newRow("true") << "True" << int(KOR_SQL_LITERAL::BOOLEAN) << "true";
}

void TEST_KOR_SQL_PARSER::literals()
{
    QFETCH(QString, literal);
    QFETCH(int, kind);
    QFETCH(QString, value);

    KOR_SQL_STATEMENT statement;
    QString error;
    QVERIFY2(KOR_SQL_PARSER::parse(QStringLiteral("SELECT [t.a] FROM [t] WHERE [t.a] = ") + literal, statement, error),
             qPrintable(error));
    const KOR_SQL_LITERAL& parsed = statement.where->right.literal;
    QVERIFY(!statement.where->right.is_field);
    QCOMPARE(int(parsed.kind), kind);
    switch (parsed.kind)
    {
    case KOR_SQL_LITERAL::INTEGER: QCOMPARE(QString::number(parsed.integer), value); break;
    case KOR_SQL_LITERAL::UNSIGNED: QCOMPARE(QString::number(parsed.unsigned_integer), value); break;
    case KOR_SQL_LITERAL::REAL: QCOMPARE(QString::number(parsed.real), value); break;
    case KOR_SQL_LITERAL::TEXT: QCOMPARE(parsed.text, value); break;
    case KOR_SQL_LITERAL::BOOLEAN: QCOMPARE(parsed.boolean ? "true" : "false", value); break;
    }
}

void TEST_KOR_SQL_PARSER::syntax_errors_data()
{
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("error"); // after "Syntax error at position "

    const QString head = QStringLiteral("SELECT [t.f] FROM [t] WHERE "); // 28 characters

    QTest::newRow("empty") << "" << "1: expected SELECT but found the end of the statement";
    QTest::newRow("not a select") << "DELETE FROM [t]" << "1: expected SELECT but found 'DELETE'";
    QTest::newRow("misspelt FROM")
        << "SELECT [t.f], [t.g] FORM [t]" << "21: expected ',' or FROM but found 'FORM'";
    QTest::newRow("misspelt WHERE") << "SELECT [t.f] FROM [t] WHER [t.f] = 1"
        << "23: expected JOIN, WHERE or the end of the statement but found 'WHER'";
    QTest::newRow("no fields")
        << "SELECT FROM [t]" << "8: expected a field such as [table.field] or * but found 'FROM'";
    QTest::newRow("no table")
        << "SELECT [t.f] FROM WHERE" << "19: expected a table name such as [table] but found 'WHERE'";
    QTest::newRow("unclosed name")
        << "SELECT [t.f FROM [t]" << "8: the name opened here with '[' is not closed with ']'";
    QTest::newRow("stray closing bracket") << "SELECT t.f] FROM [t]" << "11: ']' without a matching '['";
    QTest::newRow("empty name") << "SELECT [ ] FROM [t]" << "8: empty name '[]'";
    QTest::newRow("name ends in a dot")
        << "SELECT t. FROM [t]" << "11: expected a field name or * after '.' but found 'FROM'";
    QTest::newRow("join without ON")
        << "SELECT [t.f] FROM [t] JOIN [u] [t.k] = [u.k]" << "32: expected ON but found '[t.k]'";
    QTest::newRow("alias missing")
        << "SELECT [t.f] FROM [t] AS" << "25: expected a name after AS but found the end of the statement";
    QTest::newRow("after a join") << "SELECT [t.f] FROM [t] JOIN [u] ON [t.k] = [u.k] ORDER BY [t.f]"
        << "49: expected AND, OR, JOIN, WHERE or the end of the statement but found 'ORDER'";
    QTest::newRow("empty WHERE")
        << head << "29: expected a condition such as [table.field] = 5 but found the end of the statement";
    QTest::newRow("value missing")
        << head + "[t.f] =" << "36: expected a field or a value after '=' but found the end of the statement";
    QTest::newRow("operator missing")
        << head + "[t.f] 5" << "35: expected a comparison (=, <>, <, >, <=, >=, LIKE or IS) but found '5'";
    QTest::newRow("bracket not closed") << head + "([t.f] = 1 OR [t.f] = 2"
        << "52: expected AND, OR or ')' but found the end of the statement";
    QTest::newRow("extra closing bracket")
        << head + "[t.f] = 1)" << "38: expected AND, OR or the end of the statement but found ')'";
    QTest::newRow("NOT before an operator")
        << head + "[t.f] NOT = 1" << "39: expected LIKE after NOT but found '='";
    QTest::newRow("LIKE a number")
        << head + "[t.f] LIKE 5" << "40: expected a pattern in quotes after LIKE but found '5'";
    QTest::newRow("long ESCAPE") << head + "[t.f] LIKE 'a' ESCAPE 'ab'"
        << "51: expected one character in quotes after ESCAPE but found the text 'ab'";
    QTest::newRow("IS without NULL") << head + "[t.f] IS 5" << "38: expected NULL or NOT NULL but found '5'";
    QTest::newRow("star in a condition")
        << head + "[t.*] = 1" << "29: '[t.*]' can only stand in the list after SELECT";
    QTest::newRow("unclosed text")
        << head + "[t.f] = 'abc" << "37: the text opened here with a quote is not closed";
    QTest::newRow("number too large")
        << head + "[t.f] = 18446744073709551616" << "37: the number '18446744073709551616' is out of range";
    QTest::newRow("negative too large")
        << head + "[t.f] = -9223372036854775809" << "37: the number '-9223372036854775809' is out of range";
    QTest::newRow("malformed number") << head + "[t.f] = 5abc" << "37: malformed number '5abc'";
    QTest::newRow("unknown character") << head + "[t.f] = #1" << "37: unexpected character '#'";
    QTest::newRow("several lines") << "SELECT [t.f]\nFROM [t]\nWHERE [t.f] = = 1"
        << "37 (line 3, column 15): expected a field or a value after '=' but found '='";
    QTest::newRow("long token is cut")
        << "SELECT [t.f] FROM [t] WHERE [t.f] = 1 " + QString(60, QLatin1Char('x'))
        << "39: expected AND, OR or the end of the statement but found '" + QString(40, QLatin1Char('x'))
               + "...'";
}

void TEST_KOR_SQL_PARSER::syntax_errors()
{
    QFETCH(QString, sql);
    QFETCH(QString, error);

    KOR_SQL_STATEMENT statement;
    QString actual;
    QVERIFY(!KOR_SQL_PARSER::parse(sql, statement, actual));
    QCOMPARE(actual, QStringLiteral("Syntax error at position ") + error);
    // A failed parse leaves nothing half-built behind.
    QVERIFY(statement.select.empty());
    QVERIFY(!statement.where);
}

void TEST_KOR_SQL_PARSER::nesting_limit()
{
    const QString head = QStringLiteral("SELECT [t.f] FROM [t] WHERE ");
    const int limit = KOR_SQL_PARSER::MAX_DEPTH;

    const QString deepest = head + QString(limit, QLatin1Char('(')) + "[t.f] = 1" + QString(limit, QLatin1Char(')'));
    QCOMPARE(parse_error(deepest), QString());

    const QString too_deep =
        head + QString(limit + 1, QLatin1Char('(')) + "[t.f] = 1" + QString(limit + 1, QLatin1Char(')'));
    QCOMPARE(parse_error(too_deep),
             QStringLiteral("Syntax error at position %1: conditions are nested too deeply (more than %2 levels of "
                            "brackets and NOT)")
                 .arg(head.size() + limit + 1)
                 .arg(limit));

    QString nots;
    for (int i = 0; i < limit; ++i)
        nots += QStringLiteral("NOT ");
    QCOMPARE(parse_error(head + nots + "[t.f] = 1"), QString());
    QVERIFY(parse_error(head + nots + "NOT [t.f] = 1").contains(QLatin1String("nested too deeply")));

    // Far beyond the limit the refusal comes at the limit, without walking
    // (or overflowing the stack on) the rest.
    const QString hostile = head + QString(200000, QLatin1Char('(')) + "[t.f] = 1";
    QVERIFY(parse_error(hostile).contains(QLatin1String("nested too deeply")));
    QString many_nots;
    for (int i = 0; i < 100000; ++i)
        many_nots += QStringLiteral("NOT ");
    QVERIFY(parse_error(head + many_nots + "[t.f] = 1").contains(QLatin1String("nested too deeply")));
}

void TEST_KOR_SQL_PARSER::long_chains_stay_flat()
{
    QStringList terms;
    for (int i = 0; i < 20000; ++i)
        terms << QStringLiteral("[t.f] = %1").arg(i);
    const QString sql = QStringLiteral("SELECT [t.f] FROM [t] WHERE ") + terms.join(QStringLiteral(" OR "));

    KOR_SQL_STATEMENT statement;
    QString error;
    QVERIFY2(KOR_SQL_PARSER::parse(sql, statement, error), qPrintable(error));
    QCOMPARE(statement.where->kind, KOR_SQL_CONDITION::OR);
    QCOMPARE(int(statement.where->children.size()), 20000);
    QCOMPARE(statement.to_text(), sql);
}

void TEST_KOR_SQL_PARSER::keywords()
{
    // A keyword in brackets is a plain name.
    KOR_SQL_STATEMENT statement;
    QString error;
    QVERIFY2(KOR_SQL_PARSER::parse(QStringLiteral("SELECT [from.select] FROM [from]"), statement, error),
             qPrintable(error));
    QCOMPARE(statement.select.front().qualifier, QStringLiteral("from"));
    QCOMPARE(statement.select.front().name, QStringLiteral("select"));
    QCOMPARE(statement.to_text(), QStringLiteral("SELECT [from.select] FROM [from]"));
}

QTEST_APPLESS_MAIN(TEST_KOR_SQL_PARSER)
#include "kor_sql_parser_test.moc"
