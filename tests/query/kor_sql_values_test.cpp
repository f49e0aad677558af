#include "kor_sql_like_pattern.h"
#include "kor_sql_value.h"

#include <QtTest/QtTest>

#include <limits>

Q_DECLARE_METATYPE(KOR_SQL_VALUE)

class TEST_KOR_SQL_VALUES : public QObject
{
    Q_OBJECT

private slots:
    void like_data();
    void like();
    void like_is_linear_on_hostile_patterns();
    void compare_data();
    void compare();
    void equal_numbers_hash_alike();
    void to_text_data();
    void to_text();
};

void TEST_KOR_SQL_VALUES::like_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("escape");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("matches");

    QTest::newRow("exact") << "abc" << "" << "abc" << true;
    QTest::newRow("no partial match") << "abc" << "" << "abcd" << false;
    QTest::newRow("prefix") << "ab%" << "" << "abcd" << true;
    QTest::newRow("percent matches nothing") << "ab%cd" << "" << "abcd" << true;
    QTest::newRow("percent alone matches empty") << "%" << "" << "" << true;
    QTest::newRow("empty pattern, text") << "" << "" << "a" << false;
    QTest::newRow("underscore is one") << "a_c" << "" << "abc" << true;
    QTest::newRow("underscore is not none") << "a_c" << "" << "ac" << false;
    QTest::newRow("backtracking") << "%ab%abc" << "" << "abxabab abc" << true;
    QTest::newRow("backtracking fails") << "%ab%abd" << "" << "abxabab abc" << false;
    QTest::newRow("mixed wildcards") << "_%_" << "" << "a" << false;
    QTest::newRow("case ignored") << "ROME%" << "" << "rome_legion" << true;
    QTest::newRow("case ignored beyond ASCII") << "ÄRGER" << "" << "ärger" << true;
    QTest::newRow("underscore takes a whole astral character") << "a_b" << "" << QString::fromUtf8("a\xF0\x9F\x98\x80" "b") << true;
    QTest::newRow("astral literal") << QString::fromUtf8("%\xF0\x9F\x98\x80") << "" << QString::fromUtf8("x\xF0\x9F\x98\x80") << true;
    QTest::newRow("percent is a wildcard without escape") << "5%" << "" << "5 men" << true;
    QTest::newRow("escaped percent") << "5!%" << "!" << "5%" << true;
    QTest::newRow("escaped underscore") << "a!_b" << "!" << "a_b" << true;
    QTest::newRow("escaped escape") << "a!!" << "!" << "a!" << true;
    QTest::newRow("escape at the end stands for itself") << "a!" << "!" << "a!" << true;
    QTest::newRow("escape before a letter") << "!a" << "!" << "A" << true;
}

void TEST_KOR_SQL_VALUES::like()
{
    QFETCH(QString, pattern);
    QFETCH(QString, escape);
    QFETCH(QString, text);
    QFETCH(bool, matches);

    const KOR_SQL_LIKE_PATTERN compiled(pattern, escape.isEmpty() ? QChar() : escape.at(0));
    QCOMPARE(compiled.matches(text), matches);
}

void TEST_KOR_SQL_VALUES::like_is_linear_on_hostile_patterns()
{
    // Patterns like %a%a%a%...b against aaaa... take exponential time in a
    // naive recursive matcher; this one finishes at once.
    QString pattern;
    for (int i = 0; i < 200; ++i)
        pattern += QStringLiteral("%a");
    pattern += QStringLiteral("%b");
    const QString text(20000, QLatin1Char('a'));
    QVERIFY(!KOR_SQL_LIKE_PATTERN(pattern).matches(text));
    QVERIFY(KOR_SQL_LIKE_PATTERN(pattern).matches(text + QLatin1Char('b')));
    QVERIFY(KOR_SQL_LIKE_PATTERN(QString(5000, QLatin1Char('%'))).matches(text));
}

namespace
{
KOR_SQL_VALUE integer(qint64 value) { return KOR_SQL_VALUE::from_integer(value); }
KOR_SQL_VALUE unsigned_(quint64 value) { return KOR_SQL_VALUE::from_unsigned(value); }
KOR_SQL_VALUE real(double value) { return KOR_SQL_VALUE::from_real(value); }
KOR_SQL_VALUE boolean(bool value) { return KOR_SQL_VALUE::from_boolean(value); }
KOR_SQL_VALUE text(const QString& value) { return KOR_SQL_VALUE::from_text(value); }
} // namespace

void TEST_KOR_SQL_VALUES::compare_data()
{
    QTest::addColumn<KOR_SQL_VALUE>("left");
    QTest::addColumn<KOR_SQL_VALUE>("right");
    QTest::addColumn<bool>("ordered");
    QTest::addColumn<int>("order");

    const qint64 max64 = std::numeric_limits<qint64>::max();
    const quint64 umax = std::numeric_limits<quint64>::max();

    QTest::newRow("integer extremes") << integer(std::numeric_limits<qint64>::min()) << integer(max64) << true
                                      << -1;
    QTest::newRow("negative below unsigned") << integer(-1) << unsigned_(0) << true << -1;
    QTest::newRow("unsigned above every signed") << unsigned_(umax) << integer(max64) << true << 1;
    QTest::newRow("signed equals unsigned") << integer(7) << unsigned_(7) << true << 0;
    QTest::newRow("integer equals real") << integer(3) << real(3.0) << true << 0;
    // 2^53 + 1 is no double; a comparison through double would call them equal.
    QTest::newRow("large integer against real exactly")
        << integer((qint64(1) << 53) + 1) << real(9007199254740992.0) << true << 1;
    QTest::newRow("largest unsigned against real") << unsigned_(umax) << real(18446744073709551616.0) << true
                                                   << -1;
    QTest::newRow("boolean as number") << boolean(true) << integer(1) << true << 0;
    QTest::newRow("NaN is unordered") << real(std::numeric_limits<double>::quiet_NaN()) << real(1.0) << false
                                      << 0;
    QTest::newRow("texts compare by case") << text("Rome") << text("rome") << true << -1;
    QTest::newRow("text digits are not numbers") << text("9") << text("10") << true << 1;
    QTest::newRow("text against number") << text("1") << integer(1) << false << 0;
    QTest::newRow("none against number") << KOR_SQL_VALUE() << integer(0) << false << 0;
}

void TEST_KOR_SQL_VALUES::compare()
{
    QFETCH(KOR_SQL_VALUE, left);
    QFETCH(KOR_SQL_VALUE, right);
    QFETCH(bool, ordered);
    QFETCH(int, order);

    int actual = 99;
    QCOMPARE(KOR_SQL_VALUE::compare(left, right, actual), ordered);
    if (!ordered)
        return;
    QCOMPARE(qBound(-1, actual, 1), order);
    // The mirror comparison agrees.
    int mirrored = 99;
    QVERIFY(KOR_SQL_VALUE::compare(right, left, mirrored));
    QCOMPARE(qBound(-1, mirrored, 1), -order);
}

void TEST_KOR_SQL_VALUES::equal_numbers_hash_alike()
{
    const QVector<QVector<KOR_SQL_VALUE>> groups = {
        {integer(1), unsigned_(1), real(1.0), boolean(true)},
        {integer(0), real(-0.0), boolean(false)},
        {integer(-5), real(-5.0)},
        {unsigned_(quint64(1) << 63), real(9223372036854775808.0)},
        {text("key"), text(QStringLiteral("k") + QStringLiteral("ey"))},
    };
    for (const QVector<KOR_SQL_VALUE>& group : groups)
        for (const KOR_SQL_VALUE& a : group)
            for (const KOR_SQL_VALUE& b : group)
            {
                int order = 99;
                QVERIFY(KOR_SQL_VALUE::compare(a, b, order));
                QCOMPARE(order, 0);
                QCOMPARE(a.hash(), b.hash());
            }
}

void TEST_KOR_SQL_VALUES::to_text_data()
{
    QTest::addColumn<KOR_SQL_VALUE>("value");
    QTest::addColumn<QString>("text");

    QTest::newRow("none") << KOR_SQL_VALUE() << "";
    QTest::newRow("large unsigned") << unsigned_(18446744073709551615ull) << "18446744073709551615";
    QTest::newRow("shortest real") << real(0.1) << "0.1";
    QTest::newRow("whole real") << real(250.0) << "250";
}

void TEST_KOR_SQL_VALUES::to_text()
{
    QFETCH(KOR_SQL_VALUE, value);
    QFETCH(QString, text);
    QCOMPARE(value.to_text(), text);
}

QTEST_APPLESS_MAIN(TEST_KOR_SQL_VALUES)
#include "kor_sql_values_test.moc"
