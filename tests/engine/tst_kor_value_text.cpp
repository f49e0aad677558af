// The engine's own reading and writing of value texts answers exactly what
// Qt's date, time and uuid classes answer for the same texts.

#include "kor_value_text.h"

#include <QDateTime>
#include <QRandomGenerator>
#include <QtTest>

class TST_KOR_VALUE_TEXT : public QObject
{
    Q_OBJECT

private slots:
    void timestamps_format_as_qt_does_data();
    void timestamps_format_as_qt_does();
    void strict_timestamps_refuse_what_qt_refuses_data();
    void strict_timestamps_refuse_what_qt_refuses();
    void uuids_read_and_write_as_quuid_does();
};

namespace
{
QString qt_text(qint64 msecs)
{
    return QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC)
        .toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzzZ"));
}
} // namespace

void TST_KOR_VALUE_TEXT::timestamps_format_as_qt_does_data()
{
    QTest::addColumn<qint64>("msecs");
    const auto at = [](int year, int month, int day, int hour, int minute, int second, int msec) {
        return QDateTime(QDate(year, month, day), QTime(hour, minute, second, msec), Qt::UTC)
            .toMSecsSinceEpoch();
    };
    QTest::newRow("the epoch") << qint64(0);
    QTest::newRow("a millisecond before it") << qint64(-1);
    QTest::newRow("a leap day") << at(2024, 2, 29, 23, 59, 59, 999);
    QTest::newRow("a century without one") << at(2100, 3, 1, 0, 0, 0, 0);
    QTest::newRow("the first year") << at(1, 1, 1, 0, 0, 0, 0);
    QTest::newRow("the last four-digit year") << at(9999, 12, 31, 23, 59, 59, 999);
    QTest::newRow("before the first year") << at(1, 1, 1, 0, 0, 0, 0) - 1;
    QTest::newRow("after the last") << at(9999, 12, 31, 23, 59, 59, 999) + 1;
}

void TST_KOR_VALUE_TEXT::timestamps_format_as_qt_does()
{
    QFETCH(qint64, msecs);
    const QString expected = qt_text(msecs);
    QCOMPARE(KOR_VALUE_TEXT::timestamp_text(msecs), expected);
    char text[24];
    if (KOR_VALUE_TEXT::format_timestamp(msecs, text))
    {
        QCOMPARE(QString::fromLatin1(text, 24), expected);
        qint64 back = 0;
        QVERIFY(KOR_VALUE_TEXT::parse_timestamp(text, text + 24, back, true));
        QCOMPARE(back, msecs);
    }
    // A spread of times over the four-digit years, both ways.
    QRandomGenerator random{quint32(msecs)};
    const qint64 first = -62135596800000;
    const qint64 last = 253402300799999;
    for (int i = 0; i < 2000; ++i)
    {
        const qint64 value = first + qint64(random.generate64() % quint64(last - first + 1));
        QVERIFY(KOR_VALUE_TEXT::format_timestamp(value, text));
        QCOMPARE(QString::fromLatin1(text, 24), qt_text(value));
        qint64 back = 0;
        QVERIFY(KOR_VALUE_TEXT::parse_timestamp(text, text + 24, back, true));
        QCOMPARE(back, value);
    }
}

void TST_KOR_VALUE_TEXT::strict_timestamps_refuse_what_qt_refuses_data()
{
    // Texts the short way refuses go to Qt's reader, which takes some of
    // them (24:00, other forms); what the short way takes, Qt reads alike.
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("taken");
    QTest::newRow("a leap day") << "2024-02-29T00:00:00.000Z" << true;
    QTest::newRow("no milliseconds") << "2024-01-01T23:59:59Z" << true;
    QTest::newRow("no leap day") << "2023-02-29T00:00:00.000Z" << false;
    QTest::newRow("April 31st") << "2024-04-31T10:00:00.000Z" << false;
    QTest::newRow("month 13") << "2024-13-01T00:00:00.000Z" << false;
    QTest::newRow("year 0") << "0000-06-01T00:00:00.000Z" << false;
    QTest::newRow("a leap second") << "2024-01-01T23:59:60.000Z" << false;
    QTest::newRow("24:00") << "2024-01-01T24:00:00.000Z" << false;
    QTest::newRow("a tenth of a second") << "2024-01-01T23:59:59.5Z" << false;
    QTest::newRow("local time") << "2024-01-01T23:59:59.000" << false;
    QTest::newRow("a blank for T") << "2024-01-01 23:59:59.000Z" << false;
}

void TST_KOR_VALUE_TEXT::strict_timestamps_refuse_what_qt_refuses()
{
    QFETCH(QString, text);
    QFETCH(bool, taken);
    const QByteArray bytes = text.toLatin1();
    qint64 msecs = 0;
    QCOMPARE(
        KOR_VALUE_TEXT::parse_timestamp(bytes.constData(), bytes.constData() + bytes.size(), msecs, true),
        taken);
    const QDateTime qt = QDateTime::fromString(text, Qt::ISODateWithMs);
    if (taken)
    {
        QVERIFY(qt.isValid());
        QCOMPARE(msecs, qt.toMSecsSinceEpoch());
    }
}

void TST_KOR_VALUE_TEXT::uuids_read_and_write_as_quuid_does()
{
    for (int i = 0; i < 200; ++i)
    {
        const QUuid uuid = i == 0 ? QUuid() : QUuid::createUuid();
        char text[36];
        KOR_VALUE_TEXT::format_uuid(uuid, text);
        QCOMPARE(QString::fromLatin1(text, 36), uuid.toString(QUuid::WithoutBraces));
        const QByteArray upper = uuid.toByteArray(QUuid::WithBraces).toUpper();
        QUuid back;
        QVERIFY(KOR_VALUE_TEXT::parse_uuid(upper.constData(), back));
        QCOMPARE(back, uuid);
    }
    QUuid out;
    QVERIFY(!KOR_VALUE_TEXT::parse_uuid("0b0c5c9e-0d0e-4a5b-8c1d-00000000000g", out));
    QVERIFY(!KOR_VALUE_TEXT::parse_uuid("0b0c5c9e-0d0e-4a5b-8c1d-0000000000010", out));
    QVERIFY(!KOR_VALUE_TEXT::parse_uuid("0b0c5c9e0d0e-4a5b-8c1d-0000000000001", out));
}

QTEST_GUILESS_MAIN(TST_KOR_VALUE_TEXT)
#include "tst_kor_value_text.moc"
