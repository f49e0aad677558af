// The rules of the status log that hold without its widget.
#include "veld_status_log.h"

#include <QtTest/QtTest>

class VELD_STATUS_LOG_TEST : public QObject
{
    Q_OBJECT

private slots:
    void line_is_time_and_text()
    {
        const QTime time(9, 5, 7);
        QCOMPARE(VELD_STATUS_LOG::format_line("Database Disconnected!", time),
                 time.toString(Qt::TextDate) + "> Database Disconnected!");
    }

    void unlock_hands_over_at_most_the_last_300_data()
    {
        QTest::addColumn<int>("held");
        QTest::addColumn<int>("shown");
        QTest::newRow("none") << 0 << 0;
        QTest::newRow("exactly 300") << 300 << 300;
        QTest::newRow("301") << 301 << 300;
    }

    void unlock_hands_over_at_most_the_last_300()
    {
        QFETCH(int, held);
        QFETCH(int, shown);
        VELD_STATUS_LOG log;
        log.lock();
        for (int line = 1; line <= held; ++line)
            log.hold_back(QString::number(line));
        QCOMPARE(log.held_back_count(), held);
        const QStringList lines = log.unlock();
        QVERIFY(!log.is_locked());
        QCOMPARE(log.held_back_count(), 0);
        QCOMPARE(lines.size(), shown);
        if (shown)
        {
            QCOMPARE(lines.last(), QString::number(held));
            QCOMPARE(lines.first(), QString::number(held - shown + 1));
        }
    }
};

QTEST_MAIN(VELD_STATUS_LOG_TEST)
#include "veld_status_log_test.moc"
