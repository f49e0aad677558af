// The main window and the connection dialog with a real database, made by
// the engine in the project's binaries folder.
#include "kor_xml_query_interface.h"
#include "orbin_settings.h"
#include "project_paths.h"
#include "quill_host_options.h"
#include "scripted_prompt.h"
#include "test_database_builder.h"
#include "test_folder.h"
#include "veld_connection.h"
#include "veld_data.h"
#include "veld_form_type.h"
#include "veld_main_window.h"
#include "veld_table_launcher.h"
#include "veld_window_registry.h"

#include <QtTest/QtTest>

namespace
{
QString text_of(const QString& line)
{
    return line.mid(line.indexOf(QStringLiteral("> ")) + 2);
}

const char* const CONNECTIONS = "Northfold\\Quill\\Veld\\Connections";
} // namespace

class VELD_MAIN_WINDOW_DATABASE_TEST : public QObject
{
    Q_OBJECT

    VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    std::unique_ptr<TEST_FOLDER> folder;
    QString database;

    QString last_status(const VELD_MAIN_WINDOW& window)
    {
        return text_of(window.status_lines().value(window.status_lines().size() - 1));
    }

    QString connected_line() const { return "Connection Established! - DB path is '" + database + "'"; }

private slots:
    void init()
    {
        folder = std::make_unique<TEST_FOLDER>();
        const QString binaries = QFileInfo(folder->make_folder("game/bin")).canonicalFilePath();
        database = binaries + "/db";
        TEST_DATABASE_BUILDER builder(database);
        builder.table("units", {TEST_FIELD::key("key")}).record("units", {{"key", "archer"}});
        QVERIFY2(builder.ok(), qPrintable(builder.error()));
        LIBRARY_PROXY::PROJECT_PATHS paths = LIBRARY_PROXY::PROJECT_PATHS::none();
        paths.binaries_path = binaries;
        LIBRARY_PROXY::PROJECT_PATHS::set_current(paths);
    }

    void cleanup()
    {
        QUILL_HOST_OPTIONS::set_full_configuration(false);
        LIBRARY_PROXY::PROJECT_PATHS::clear_current();
        ORBIN_SETTINGS(CONNECTIONS).clear();
        folder.reset();
        QCOMPARE(registry.form_count(), 0);
    }

    void connects_by_itself_after_it_is_built()
    {
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        QSignalSpy established(&window, &VELD_MAIN_WINDOW::connectionEstablished);
        QVERIFY(!session.is_connected());
        QTRY_VERIFY(session.is_connected());
        QCOMPARE(established.count(), 1);
        QCOMPARE(last_status(window), connected_line());
    }

    void window_on_a_connected_session_says_so()
    {
        VELD_DATA session;
        QString error;
        QVERIFY(session.connect_main(error, session.connect_path(), 0));
        KOR_XML_QUERY_INTERFACE* connected = session.query_interface();
        VELD_MAIN_WINDOW window(&session);
        QSignalSpy established(&window, &VELD_MAIN_WINDOW::connectionEstablished);
        QCOMPARE(window.status_lines().size(), 1);
        QCOMPARE(last_status(window), QStringLiteral("The database is already connected!"));
        window.autoConnect();
        QCOMPARE(established.count(), 0);
        QCOMPARE(session.query_interface(), connected);

        window.connectDialogOpen(false);
        QCOMPARE(last_status(window), QStringLiteral("The database is already connected"));
        window.connectWithoutMerge();
        QCOMPARE(last_status(window), QStringLiteral("The database is already connected"));
        QCOMPARE(session.query_interface(), connected);
    }

    void connect_without_merge_remembers_the_path()
    {
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        window.connectWithoutMerge();
        QVERIFY(session.is_connected());
        QCOMPARE(session.last_connection_path(), database);
        QCOMPARE(last_status(window), connected_line());
    }

    void disconnect_with_no_forms_asks_nothing()
    {
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        QTRY_VERIFY(session.is_connected());
        QSignalSpy disconnected(&window, &VELD_MAIN_WINDOW::disconnected);
        SCRIPTED_PROMPT prompts;
        window.action("&Disconnect")->trigger();
        QVERIFY(!session.is_connected());
        QCOMPARE(disconnected.count(), 1);
        QCOMPARE(last_status(window), QStringLiteral("Database Disconnected!"));
        QCOMPARE(prompts.asked().size(), 0);
    }

    // Each launcher mode is its own form type, so the three can be open
    // side by side; a second of one mode is refused.
    void launchers_of_the_three_modes_open_side_by_side()
    {
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        QTRY_VERIFY(session.is_connected());
        const std::function<void()> commands[] = {[&] { window.tableLauncherOpen(false); },
                                                  [&] { window.editTableSchema(); },
                                                  [&] { window.removeTableSchema(); }};
        const int types[] = {VELD_FORM_TYPE::LAUNCHER, VELD_FORM_TYPE::TABLE_LAUNCHER_SCHEMA_MODE,
                             VELD_FORM_TYPE::TABLE_LAUNCHER_REMOVAL_MODE};
        for (int mode = 0; mode < 3; ++mode)
        {
            commands[mode]();
            QVERIFY(registry.is_form_open(VELD_TABLE_LAUNCHER::form_name(), types[mode]));
        }
        QCOMPARE(window.ui().mdi_area->subWindowList().size(), 3);
        for (int mode = 0; mode < 3; ++mode)
        {
            commands[mode]();
            QCOMPARE(last_status(window), QStringLiteral("The table launcher form is already open"));
        }
        QCOMPARE(window.ui().mdi_area->subWindowList().size(), 3);

        // The launcher lists the tables and opens them through the main window.
        auto* launcher = qobject_cast<VELD_TABLE_LAUNCHER*>(
            registry.find_form(VELD_TABLE_LAUNCHER::form_name(), VELD_FORM_TYPE::LAUNCHER)->widget());
        QCOMPARE(launcher->table_list()->model()->rowCount(), 1);
        launcher->launch_table("units", false);
        QVERIFY(registry.is_form_open(QStringLiteral("units"), VELD_FORM_TYPE::TABLE_DATA_EDITOR));
        QCOMPARE(window.ui().mdi_area->subWindowList().size(), 4);

        window.forceDisconnectDatabase();
        QTRY_COMPARE(registry.form_count(), 0);
    }

    // The full configuration's connect command opens the connection dialog.
    void full_configuration_connects_through_the_dialog()
    {
        QUILL_HOST_OPTIONS::set_full_configuration(true);
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        QSignalSpy established(&window, &VELD_MAIN_WINDOW::connectionEstablished);
        SCRIPTED_PROMPT prompts;
        prompts.dialog([](QDialog& dialog) {
            auto& connection = dynamic_cast<VELD_CONNECTION&>(dialog);
            // The mirrors are offered.
            if (connection.mirror_check(0)->parentWidget()->isHidden())
                return int(QDialog::Rejected);
            connection.connect_button()->click();
            return int(QDialog::Rejected); // closed by its title bar
        });
        window.action("&Connect")->trigger();
        QCOMPARE(prompts.asked().size(), 1);
        QCOMPARE(prompts.asked()[0].class_name, QStringLiteral("VELD_CONNECTION"));
        QVERIFY(session.is_connected());
        QCOMPARE(established.count(), 1);
        QCOMPARE(last_status(window), QStringLiteral("Connection Established!"));
    }

    void dialog_remembers_paths_in_lower_case_once()
    {
        const QString mirror = folder->file("Mirror/DB");
        QCOMPARE(KOR_XML_QUERY_INTERFACE::create_empty_database(mirror), QString());
        VELD_DATA session;
        for (int attempt = 0; attempt < 2; ++attempt)
        {
            VELD_CONNECTION dialog(&session);
            dialog.show_mirrors();
            dialog.mirror_check(0)->setChecked(true);
            dialog.mirror_combo(0)->setEditText(mirror);
            dialog.onConnect(false);
            QVERIFY(session.is_connected() && session.is_mirror_connected(0));
            QString error;
            QVERIFY(session.disconnect_all(error));
        }
        ORBIN_SETTINGS settings(CONNECTIONS);
        QCOMPARE(settings.value("recentMirror1Connections/size").toInt(), 1);
        QCOMPARE(settings.value("recentMirror1Connections/1/connection_string").toString(), mirror.toLower());
        QCOMPARE(settings.value("recentMainConnections/size").toInt(), 1);
        QCOMPARE(settings.value("recentMainConnections/1/connection_string").toString(), database.toLower());
        VELD_CONNECTION dialog(&session);
        QCOMPARE(dialog.mirror_combo(0)->currentText(), mirror.toLower());
    }

    // Mirrors and main are all or nothing.
    void mirror_failure_disconnects_main()
    {
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        QTRY_VERIFY(session.is_connected());
        QString error;
        QVERIFY(session.disconnect_all(error));
        QSignalSpy window_disconnected(&window, &VELD_MAIN_WINDOW::disconnected);

        VELD_CONNECTION dialog(&session, &window);
        dialog.show_mirrors();
        QSignalSpy status(&dialog, &VELD_CONNECTION::statusUpdate);
        QSignalSpy disconnected(&dialog, &VELD_CONNECTION::signalDisconnected);
        dialog.mirror_check(0)->setChecked(true);
        dialog.mirror_combo(0)->setEditText(folder->file("missing/db"));
        dialog.onConnect(false);
        QVERIFY(!session.is_connected());
        QCOMPARE(disconnected.count(), 1);
        QCOMPARE(window_disconnected.count(), 1); // through disconnectedProxy
        QCOMPARE(status.count(), 1);
        QVERIFY(status.at(0).at(0).toString().startsWith("Connection failed! : "));
        QVERIFY(dialog.connect_button()->isEnabled());
        QVERIFY(ORBIN_SETTINGS(CONNECTIONS).allKeys().isEmpty());
    }

    void connected_session_disables_the_dialog()
    {
        VELD_DATA session;
        QString error;
        QVERIFY(session.connect_main(error, session.connect_path(), 0));
        VELD_CONNECTION dialog(&session);
        QVERIFY(!dialog.connect_button()->isEnabled());
        QVERIFY(session.disconnect_all(error));
        QVERIFY(dialog.connect_button()->isEnabled());
    }
};

QTEST_MAIN(VELD_MAIN_WINDOW_DATABASE_TEST)
#include "veld_main_window_database_test.moc"
