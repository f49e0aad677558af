// The connection dialog and its recent paths, on failures that need no
// database; connecting for real is in veld_main_window_database_test.
#include "orbin_settings.h"
#include "scripted_prompt.h"
#include "test_rows.h"
#include "veld_connection.h"
#include "veld_connection_history.h"
#include "veld_data.h"

#include <QtTest/QtTest>

using ORBIN_TEST::row;

namespace
{
const char* const CONNECTIONS = "Northfold\\Quill\\Veld\\Connections";
}

class VELD_CONNECTION_TEST : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ORBIN_SETTINGS(CONNECTIONS).clear(); }

    // A path used again moves to the top and is kept once.
    void history_moves_a_reused_path_to_the_top()
    {
        VELD_CONNECTION_HISTORY history("recentMainConnections");
        history.add("/a");
        history.add("/b");
        history.add("/a");
        history.add("/a");
        QCOMPARE(history.paths(), (QStringList{"/a", "/b"}));
        QCOMPARE(history.next_index(), 4);
        QCOMPARE(history.entries().keys(), (QList<int>{1, 3}));
    }

    void history_round_trip_keeps_indices()
    {
        {
            VELD_CONNECTION_HISTORY history("recentMirror2Connections");
            history.add("/x");
            history.add("/y");
            history.add("/x");
            ORBIN_SETTINGS settings(CONNECTIONS);
            history.save(settings);
        }
        ORBIN_SETTINGS settings(CONNECTIONS);
        QCOMPARE(settings.value("recentMirror2Connections/size").toInt(), 2);
        QCOMPARE(settings.value("recentMirror2Connections/1/connection_string").toString(),
                 QStringLiteral("/y"));
        QCOMPARE(settings.value("recentMirror2Connections/1/connection_index").toInt(), 1);
        VELD_CONNECTION_HISTORY loaded("recentMirror2Connections");
        loaded.load(settings);
        QCOMPARE(loaded.paths(), (QStringList{"/x", "/y"}));
        QCOMPARE(loaded.next_index(), 3);
        loaded.add("/z");
        QCOMPARE(loaded.entries().lastKey(), 3);
    }

    void starts_with_the_session_path_and_no_mirrors()
    {
        {
            ORBIN_SETTINGS settings(CONNECTIONS);
            VELD_CONNECTION_HISTORY mirror("recentMirror1Connections");
            mirror.add("/old/db");
            mirror.add("/new/db");
            mirror.save(settings);
        }
        VELD_DATA session;
        VELD_CONNECTION dialog(&session);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Connection"));
        QCOMPARE(dialog.main_combo()->currentText(), session.connect_path());
        QVERIFY(!dialog.main_combo()->isEnabled());
        QVERIFY(dialog.mirror_check(0)->parentWidget()->isHidden());
        QVERIFY(dialog.connect_button()->isEnabled());
        // Newest first, and chosen.
        QCOMPARE(dialog.mirror_combo(0)->count(), 2);
        QCOMPARE(dialog.mirror_combo(0)->itemText(0), QStringLiteral("/new/db"));
        QCOMPARE(dialog.mirror_combo(0)->currentText(), QStringLiteral("/new/db"));
        dialog.show_mirrors();
        QVERIFY(!dialog.mirror_check(0)->parentWidget()->isHidden());
    }

    // Mirrors come in order: unticking one drops the ones after it.
    void mirror_boxes_are_chained()
    {
        VELD_DATA session;
        VELD_CONNECTION dialog(&session);
        dialog.show_mirrors();
        QVERIFY(dialog.mirror_check(0)->isEnabled());
        QVERIFY(!dialog.mirror_check(1)->isEnabled());
        QVERIFY(!dialog.mirror_combo(0)->isEnabled());

        dialog.mirror_check(0)->setChecked(true);
        QVERIFY(dialog.mirror_combo(0)->isEnabled());
        QVERIFY(dialog.mirror_navigate(0)->isEnabled());
        QVERIFY(dialog.mirror_check(1)->isEnabled());
        QVERIFY(!dialog.mirror_check(2)->isEnabled());
        dialog.mirror_check(1)->setChecked(true);
        dialog.mirror_check(2)->setChecked(true);
        QVERIFY(dialog.mirror_combo(2)->isEnabled());

        dialog.mirror_check(0)->setChecked(false);
        for (int mirror = 0; mirror < 3; ++mirror)
        {
            QVERIFY(!dialog.mirror_combo(mirror)->isEnabled());
            QVERIFY(!dialog.mirror_navigate(mirror)->isEnabled());
        }
        QVERIFY(!dialog.mirror_check(1)->isChecked());
        QVERIFY(!dialog.mirror_check(2)->isChecked());
        QVERIFY(!dialog.mirror_check(1)->isEnabled());
        QVERIFY(!dialog.mirror_check(2)->isEnabled());
    }

    void navigating_lower_cases_the_folder()
    {
        VELD_DATA session;
        VELD_CONNECTION dialog(&session);
        dialog.show_mirrors();
        dialog.mirror_check(0)->setChecked(true);
        SCRIPTED_PROMPT prompts;
        prompts.text("/Studio/Branch/DB").cancel();
        dialog.mirror_navigate(0)->click();
        QCOMPARE(prompts.asked()[0].title, QStringLiteral("Choose a database directory"));
        QCOMPARE(dialog.mirror_combo(0)->currentText(), QStringLiteral("/studio/branch/db"));
        dialog.mirror_navigate(0)->click();
        QCOMPARE(dialog.mirror_combo(0)->currentText(), QStringLiteral("/studio/branch/db"));
    }

    void connect_failures_data()
    {
        QTest::addColumn<QString>("main");
        QTest::addColumn<QString>("status_start");
        row("empty main path", "",
            "Connection failed! : Connection failed! : The connection string is empty ");
        row("no database there", "/no/such/db", "Connection failed! : ");
    }

    void connect_failures()
    {
        QFETCH(QString, main);
        QFETCH(QString, status_start);
        VELD_DATA session;
        VELD_CONNECTION dialog(&session);
        dialog.main_combo()->setEditText(main);
        QSignalSpy status(&dialog, &VELD_CONNECTION::statusUpdate);
        QSignalSpy disconnected(&dialog, &VELD_CONNECTION::signalDisconnected);
        dialog.onConnect(false);
        QCOMPARE(status.count(), 1);
        const QString line = status.at(0).at(0).toString();
        QVERIFY2(line.startsWith(status_start), qPrintable(line));
        QVERIFY(line.size() > QStringLiteral("Connection failed! : ").size());
        QVERIFY(!session.is_connected());
        QCOMPARE(disconnected.count(), 0);
        QVERIFY(dialog.connect_button()->isEnabled());
        // Nothing is remembered of a failure.
        QVERIFY(ORBIN_SETTINGS(CONNECTIONS).allKeys().isEmpty());
    }
};

QTEST_MAIN(VELD_CONNECTION_TEST)
#include "veld_connection_test.moc"
