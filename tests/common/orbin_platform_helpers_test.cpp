#include "orbin_assert.h"
#include "orbin_user.h"

#include <QtCore/QProcess>
#include <QtTest/QtTest>

class ORBIN_PLATFORM_HELPERS_TEST : public QObject
{
    Q_OBJECT

private:
    static int checked_value(const QVector<int>& values, int index)
    {
        ORBIN_ASSERT(index >= 0 && index < values.size(), return -1);
        return values[index];
    }

private slots:
    // The login name is the one the system reports for the process owner.
    void login_name()
    {
        QProcess id;
        id.start(QStringLiteral("id"), {QStringLiteral("-un")});
        if (!id.waitForFinished(5000) || id.exitCode() != 0)
            QSKIP("id -un is not available here");
        const QString expected = QString::fromLocal8Bit(id.readAllStandardOutput()).trimmed();
        QCOMPARE(ORBIN_USER::login_name(), expected);
    }

    // A broken expectation logs where it is and runs the action, instead of
    // crashing; a kept one does neither.
    void soft_assert_runs_action()
    {
        const QVector<int> values{10, 20};
        QCOMPARE(checked_value(values, 1), 20);
        QTest::ignoreMessage(
            QtWarningMsg, QRegularExpression("ORBIN_ASSERT: \"index >= 0 && index < values.size\\(\\)\" in "
                                             ".*orbin_platform_helpers_test.cpp:\\d+"));
        QCOMPARE(checked_value(values, 5), -1);
    }

    void soft_assert_controls_loops()
    {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("ORBIN_ASSERT: \"value != 2\""));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("ORBIN_ASSERT: \"value < 4\""));
        QVector<int> seen;
        for (int value = 0; value < 10; ++value)
        {
            ORBIN_ASSERT(value != 2, continue);
            ORBIN_ASSERT(value < 4, break);
            seen << value;
        }
        QCOMPARE(seen, QVector<int>({0, 1, 3}));
    }
};

QTEST_GUILESS_MAIN(ORBIN_PLATFORM_HELPERS_TEST)
#include "orbin_platform_helpers_test.moc"
