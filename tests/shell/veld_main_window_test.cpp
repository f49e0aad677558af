// The main window without a database: its commands, the status list and
// progress bar, the options and about windows, and the questions around
// disconnecting and closing forms.
#include "about_dialog.h"
#include "options_dialog.h"
#include "orbin_settings.h"
#include "quill_host_options.h"
#include "scripted_prompt.h"
#include "test_folder.h"
#include "veld_data.h"
#include "veld_form_type.h"
#include "veld_main_window.h"
#include "veld_options.h"
#include "veld_pending_changes_form.h"
#include "veld_window_registry.h"

#include <QtTest/QtTest>

namespace
{
// A table editor as far as the shell sees one.
class EDITOR : public QWidget, public VELD_PENDING_CHANGES_FORM
{
public:
    bool pending = false;
    bool skipped = false;
    bool has_pending_changes() const override { return pending; }
    void skip_save_question() override { skipped = true; }
};

// An editor whose user answers Cancel to its close question.
class REFUSING_EDITOR : public QWidget
{
public:
    bool refuse = true;

protected:
    void closeEvent(QCloseEvent* event) override { refuse ? event->ignore() : event->accept(); }
};

QString text_of(const QString& line)
{
    return line.mid(line.indexOf(QStringLiteral("> ")) + 2);
}
} // namespace

class VELD_MAIN_WINDOW_TEST : public QObject
{
    Q_OBJECT

    VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    // Answers what a case did not script (the failing auto-connect of a
    // window without a database) instead of a real box that would block.
    std::unique_ptr<SCRIPTED_PROMPT> fallback;

    // A window connects by itself 200 ms after it is built. Cases that run
    // the event loop let that happen first, so that its warning does not
    // fall among their own prompts.
    void let_auto_connect_run(const VELD_DATA& session)
    {
        const int before = fallback->asked().size();
        QTRY_VERIFY(session.is_connected() || fallback->asked().size() > before);
    }

    // Registers a plain window in the main window's area.
    QMdiSubWindow* add_form(VELD_MAIN_WINDOW& window, QWidget* contents, const QString& name, int type)
    {
        QMdiSubWindow* sub_window = window.ui().mdi_area->addSubWindow(contents);
        sub_window->setAttribute(Qt::WA_DeleteOnClose);
        sub_window->show();
        QString error;
        registry.register_form(error, name, type, sub_window);
        return sub_window;
    }

    QString last_status(const VELD_MAIN_WINDOW& window)
    {
        return text_of(window.status_lines().value(window.status_lines().size() - 1));
    }

private slots:
    void init() { fallback = std::make_unique<SCRIPTED_PROMPT>(SCRIPTED_PROMPT::ON_ERROR::RECORD_ONLY); }

    void cleanup()
    {
        fallback.reset();
        QUILL_HOST_OPTIONS::set_full_configuration(false);
        ORBIN_SETTINGS(VELD_OPTIONS::organisation_path()).clear();
        QCOMPARE(registry.form_count(), 0);
    }

    void default_configuration_offers_few_commands_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("visible");
        QTest::newRow("connect") << "&Connect" << true;
        QTest::newRow("apply commands") << "&Apply Commands from File" << true;
        QTest::newRow("revert") << "&Revert Changes" << false;
        QTest::newRow("advanced apply, hidden though wired")
            << "&Apply Commands from File (Advanced)" << false;
    }

    void default_configuration_offers_few_commands()
    {
        QFETCH(QString, text);
        QFETCH(bool, visible);
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        QVERIFY(window.action(text));
        QCOMPARE(window.action(text)->isVisible(), visible);
        QCOMPARE(window.ui().help_menu->menuAction()->isVisible(), false);
        QCOMPARE(window.ui().schema_menu->menuAction()->isVisible(), false);
        QCOMPARE(window.windowTitle(), QStringLiteral("ORBIN - Database Visual Editor"));
    }

    // Hidden commands do nothing in the default configuration even when
    // triggered; the full one shows and runs them.
    void full_configuration_runs_every_command()
    {
        {
            VELD_DATA session;
            VELD_MAIN_WINDOW window(&session);
            window.action("&About")->trigger();
            QVERIFY(!registry.is_form_open(ABOUT_DIALOG::form_name(), VELD_FORM_TYPE::DIALOG));
        }
        QUILL_HOST_OPTIONS::set_full_configuration(true);
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        let_auto_connect_run(session);
        for (QAction* action : window.ui().all_actions())
        {
            if (action->associatedWidgets().size() > 1) // in a menu: shown
                QVERIFY2(action->isVisible(), qPrintable(action->text()));
        }
        QVERIFY(window.ui().help_menu->menuAction()->isVisible());
        window.action("&About")->trigger();
        QVERIFY(registry.is_form_open(ABOUT_DIALOG::form_name(), VELD_FORM_TYPE::DIALOG));
        window.action("Update all records with uuids")->trigger();
        QCOMPARE(last_status(window),
                 QStringLiteral("Must be connected in order to update all records to have uuids!"));
        window.action("Text Approval")->trigger();
        QCOMPARE(last_status(window), QStringLiteral("Text approval is not available yet"));
        registry.close_all_forms(true);
        QTRY_COMPARE(registry.form_count(), 0);
    }

    void failed_auto_connect_warns()
    {
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::Ok);
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        QCOMPARE(prompts.asked().size(), 0); // not before 200 ms
        QTRY_COMPARE(prompts.asked().size(), 1);
        QCOMPARE(prompts.asked()[0].kind, prompt::KIND::WARNING);
        QCOMPARE(prompts.asked()[0].title, QStringLiteral("Orbin"));
        QVERIFY(prompts.asked()[0].text.startsWith(QStringLiteral("Unable to connect: ")));
        QVERIFY(!session.is_connected());
    }

    void status_list_keeps_300_lines()
    {
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        for (int line = 1; line <= 300; ++line)
            window.statusbarUpdate(QString::number(line));
        QCOMPARE(window.status_lines().size(), 300);
        QCOMPARE(text_of(window.status_lines().first()), QStringLiteral("1"));
        window.statusbarUpdate(QStringLiteral("301"));
        QCOMPARE(window.status_lines().size(), 300);
        QCOMPARE(text_of(window.status_lines().first()), QStringLiteral("2"));
        QCOMPARE(window.ui().status_list->currentRow(), 299);
        QVERIFY(window.status_lines().last().endsWith(QStringLiteral("> 301")));
    }

    void locked_status_list_shows_the_last_300_on_unlock()
    {
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        window.statusbarUpdate(QStringLiteral("before"));
        window.lockStatusBarUpdate();
        window.lockStatusBarUpdate(); // a flag, not a count
        for (int line = 1; line <= 500; ++line)
            window.statusbarUpdate(QString::number(line));
        QCOMPARE(window.status_lines().size(), 1);
        window.unlockStatusBarUpdate();
        // What was there stays: the flush does not trim the widget.
        QCOMPARE(window.status_lines().size(), 301);
        QCOMPARE(text_of(window.status_lines()[0]), QStringLiteral("before"));
        QCOMPARE(text_of(window.status_lines()[1]), QStringLiteral("201"));
        QCOMPARE(text_of(window.status_lines().last()), QStringLiteral("500"));
        QCOMPARE(window.ui().status_list->currentRow(), 300);
        // The next plain line trims it again.
        window.statusbarUpdate(QStringLiteral("after"));
        QCOMPARE(window.status_lines().size(), 300);
    }

    void session_lines_reach_the_status_list()
    {
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        session.report("from the engine", 0);
        QCOMPARE(last_status(window), QStringLiteral("from the engine"));
    }

    void progress_bar_hides_after_it_filled()
    {
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        let_auto_connect_run(session);
        window.set_progress_hide_delay(300);
        window.show();
        QProgressBar* bar = window.ui().progress_bar;
        QVERIFY(!bar->isVisible());
        session.set_maximum_progress(4);
        QVERIFY(bar->isVisible());
        QCOMPARE(bar->maximum(), 4);
        QCOMPARE(bar->value(), 0);
        session.add_progress(3);
        session.add_progress(1);
        QCOMPARE(bar->value(), 4);
        QVERIFY(bar->isVisible());
        // New progress within the delay does not stop the hiding.
        session.set_maximum_progress(10);
        QVERIFY(bar->isVisible());
        QTRY_VERIFY_WITH_TIMEOUT(!bar->isVisible(), 10000);
        QCOMPARE(bar->maximum(), 10);
    }

    void disconnect_while_disconnected_says_so_and_clears_request_mode()
    {
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        session.set_request_mode(true);
        QCOMPARE(window.windowTitle(),
                 QStringLiteral("ORBIN - Database Visual Editor - Request Schema Changes"));
        SCRIPTED_PROMPT prompts;
        window.disconnectDatabase(); // no forms: no question
        QCOMPARE(last_status(window), QStringLiteral("Database is not connected"));
        QVERIFY(!session.is_in_request_mode());
        QCOMPARE(window.windowTitle(), QStringLiteral("ORBIN - Database Visual Editor"));
    }

    void disconnect_questions_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("pending");
        QTest::addColumn<QList<int>>("answers");
        QTest::addColumn<bool>("closed");
        const int no = QMessageBox::No;
        const int yes = QMessageBox::Yes;
        QTest::newRow("launcher only: no question")
            << int(VELD_FORM_TYPE::LAUNCHER) << false << QList<int>{} << true;
        QTest::newRow("a dialog, No") << int(VELD_FORM_TYPE::DIALOG) << false << QList<int>{no} << false;
        QTest::newRow("a dialog, Yes") << int(VELD_FORM_TYPE::DIALOG) << false << QList<int>{yes} << true;
        QTest::newRow("unsaved editor, Yes then No")
            << int(VELD_FORM_TYPE::TABLE_DATA_EDITOR) << true << QList<int>{yes, no} << false;
        QTest::newRow("unsaved editor, Yes twice")
            << int(VELD_FORM_TYPE::TABLE_DATA_EDITOR) << true << QList<int>{yes, yes} << true;
    }

    // Every answer, No included, ends request mode; forms close only after
    // every question was answered Yes, and then without further questions.
    void disconnect_questions()
    {
        QFETCH(int, type);
        QFETCH(bool, pending);
        QFETCH(QList<int>, answers);
        QFETCH(bool, closed);

        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        let_auto_connect_run(session);
        auto* editor = new EDITOR;
        editor->pending = pending;
        QPointer<QMdiSubWindow> form = add_form(window, editor, "units", type);
        session.set_request_mode(true);

        SCRIPTED_PROMPT prompts;
        for (int answer : answers)
            prompts.button(QMessageBox::StandardButton(answer));
        window.disconnectDatabase();
        QCOMPARE(prompts.asked().size(), answers.size());
        if (!answers.isEmpty())
        {
            QCOMPARE(prompts.asked()[0].text,
                     QStringLiteral("Any unsaved changes will be lost, are you sure you wish to disconnect?\n"
                                    "(changes within forms save automatically)"));
            QCOMPARE(prompts.asked()[0].default_button, QMessageBox::No);
        }
        if (answers.size() > 1)
            QCOMPARE(prompts.asked()[1].text,
                     QStringLiteral("Are you absolutely sure you want to disconnect?\n"
                                    "(UNSAVED CHANGES WILL BE LOST!)"));
        QVERIFY(!session.is_in_request_mode());
        if (closed)
        {
            QCOMPARE(editor->skipped, type == VELD_FORM_TYPE::TABLE_DATA_EDITOR);
            QTRY_VERIFY(!form);
        }
        else
        {
            QVERIFY(form && !form->isHidden());
        }
        registry.unregister_form("units", type);
    }

    void connect_with_forms_open_asks_first()
    {
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        let_auto_connect_run(session);
        QPointer<QMdiSubWindow> form =
            add_form(window, new QWidget, "TABLE_DATA_EDITOR", VELD_FORM_TYPE::LAUNCHER);
        {
            SCRIPTED_PROMPT prompts;
            prompts.button(QMessageBox::No);
            window.connectDialogOpen(false);
            QCOMPARE(prompts.titles(), QStringList{"Forms will be closed"});
            QCOMPARE(prompts.asked()[0].text, QStringLiteral("All forms will be closed, continue?"));
            QVERIFY(form);
        }
        {
            SCRIPTED_PROMPT prompts;
            prompts.button(QMessageBox::Yes).button(QMessageBox::Ok);
            window.connectDialogOpen(false);
            // The forms close, then the connect fails for want of a database.
            QCOMPARE(prompts.titles(), (QStringList{"Forms will be closed", "Orbin"}));
            QTRY_VERIFY(!form);
        }
        registry.unregister_form("TABLE_DATA_EDITOR", VELD_FORM_TYPE::LAUNCHER);
    }

    // Before the host disconnects the session under them, every window
    // closes; one whose user keeps its edits stops the disconnect.
    void forms_close_before_the_host_disconnects()
    {
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        let_auto_connect_run(session);
        auto* editor = new REFUSING_EDITOR;
        QPointer<QMdiSubWindow> kept = add_form(window, editor, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        QPointer<QMdiSubWindow> unregistered = window.ui().mdi_area->addSubWindow(new QWidget);
        unregistered->setAttribute(Qt::WA_DeleteOnClose);
        unregistered->show();
        QVERIFY(!window.close_forms_for_disconnect());
        QVERIFY(kept && !kept->isHidden());
        QTRY_VERIFY(!unregistered);
        editor->refuse = false;
        QVERIFY(window.close_forms_for_disconnect());
        QTRY_VERIFY(!kept);
        registry.unregister_form("units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
    }

    void table_launcher_needs_a_connection()
    {
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        window.action("&Table Launcher")->trigger();
        QCOMPARE(last_status(window), QStringLiteral("Connect to the database first"));
        window.displayLocalChanges();
        QCOMPARE(last_status(window),
                 QStringLiteral("Please connect to the database before displaying your local changes"));
        window.refreshUniqueIDLookups();
        QCOMPARE(last_status(window), QStringLiteral("Connect to the database first"));
    }

    // The options change the colours of every window at once.
    void options_change_colours_live()
    {
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        let_auto_connect_run(session);
        QCOMPARE(window.ui().mdi_area->background().color(), QColor(238, 255, 255));
        QSignalSpy refresh(&window, &VELD_MAIN_WINDOW::refreshDialogColours);

        window.action("&Options")->trigger();
        QMdiSubWindow* sub_window = registry.find_form(OPTIONS_DIALOG::form_name(), VELD_FORM_TYPE::DIALOG);
        QVERIFY(sub_window);
        auto* options = qobject_cast<OPTIONS_DIALOG*>(sub_window->widget());
        QVERIFY(options);
        QCOMPARE(options->windowTitle(), QStringLiteral("Preferences"));

        // A second command brings the same window forward.
        window.action("&Options")->trigger();
        QCOMPARE(window.ui().mdi_area->subWindowList().size(), 1);

        QCheckBox* box = options->default_box("window_back_colour");
        QPushButton* button = options->colour_button("window_back_colour");
        QVERIFY(button->isHidden());
        box->setChecked(false);
        QVERIFY(!button->isHidden());

        SCRIPTED_PROMPT prompts;
        prompts.color(QColor(12, 34, 56)).cancel();
        button->click();
        QCOMPARE(button->styleSheet(), QStringLiteral("QPushButton { background-color: #0C2238 }"));
        button->click(); // cancelled: the colour stays
        QCOMPARE(options->chosen_colour("window_back_colour"), QColor(12, 34, 56));

        const int before = refresh.count();
        options->on_accept();
        QCOMPARE(refresh.count(), before + 1);
        QCOMPARE(window.ui().mdi_area->background().color(), QColor(12, 34, 56));
        QVERIFY(!registry.is_form_open(OPTIONS_DIALOG::form_name(), VELD_FORM_TYPE::DIALOG));
        QTRY_VERIFY(window.ui().mdi_area->subWindowList().isEmpty());

        ORBIN_SETTINGS settings(VELD_OPTIONS::organisation_path());
        settings.beginGroup(VELD_OPTIONS::group());
        QCOMPARE(settings.value("window_background_is_default").toBool(), false);
        QCOMPARE(settings.value("window_back_colour").value<QColor>(), QColor(12, 34, 56));
        QCOMPARE(settings.value("cell_back_is_default").toBool(), true);
        QCOMPARE(settings.value("auto_submit_lua").toBool(), false);
    }

    // Escape or Cancel closes the window, frame and all, and forgets it; a
    // hidden dialog in an empty frame would be raised by the next command.
    void escape_closes_the_options_window_data()
    {
        QTest::addColumn<bool>("escape");
        QTest::newRow("escape") << true;
        QTest::newRow("cancel") << false;
    }

    void escape_closes_the_options_window()
    {
        QFETCH(bool, escape);
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        let_auto_connect_run(session);
        window.show();
        window.displayOptions();
        QPointer<QMdiSubWindow> frame =
            registry.find_form(OPTIONS_DIALOG::form_name(), VELD_FORM_TYPE::DIALOG);
        QVERIFY(frame);
        auto* options = qobject_cast<OPTIONS_DIALOG*>(frame->widget());
        if (escape)
            QTest::keyClick(options, Qt::Key_Escape);
        else
            options->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel)->click();
        QVERIFY(!registry.is_form_open(OPTIONS_DIALOG::form_name(), VELD_FORM_TYPE::DIALOG));
        QTRY_VERIFY(!frame);
        QVERIFY(window.ui().mdi_area->subWindowList().isEmpty());
        // Nothing was stored.
        QVERIFY(!ORBIN_SETTINGS(VELD_OPTIONS::organisation_path()).contains("tables/cell_back_is_default"));
    }

    void options_read_what_is_stored()
    {
        {
            ORBIN_SETTINGS settings(VELD_OPTIONS::organisation_path());
            settings.beginGroup(VELD_OPTIONS::group());
            settings.setValue("differs_is_default", false);
            settings.setValue("differs_colour", QColor(1, 2, 3));
            settings.setValue("auto_submit_start_pos", true);
        }
        OPTIONS_DIALOG options;
        QVERIFY(!options.default_box("differs_colour")->isChecked());
        QCOMPARE(options.colour_button("differs_colour")->styleSheet(),
                 QStringLiteral("QPushButton { background-color: #010203 }"));
        QVERIFY(options.default_box("cell_text_colour")->isChecked());
        // Absent colours read as white.
        QCOMPARE(options.chosen_colour("cell_text_colour"), QColor(Qt::white));
        QVERIFY(options.auto_submit_start_pos_box()->isChecked());
        QVERIFY(!options.auto_submit_lua_box()->isChecked());
    }

    void forms_open_before_reverting_tables_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("open");
        QTest::newRow("table editor") << int(VELD_FORM_TYPE::TABLE_DATA_EDITOR) << true;
        QTest::newRow("form") << int(VELD_FORM_TYPE::FORM) << true;
        QTest::newRow("schema editor") << int(VELD_FORM_TYPE::SCHEMA_EDITOR) << false;
        QTest::newRow("launcher") << int(VELD_FORM_TYPE::LAUNCHER) << false;
    }

    void forms_open_before_reverting_tables()
    {
        QFETCH(int, type);
        QFETCH(bool, open);
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        add_form(window, new QWidget, "units", type);
        QSignalSpy answer(&window, &VELD_MAIN_WINDOW::formsOpenForTableRevert);
        window.areFormsOpenBeforeTableReversion();
        QCOMPARE(answer.count(), 1);
        QCOMPARE(answer.at(0).at(0).toBool(), open);
        registry.unregister_form("units", type);
    }

    void old_merge_logs_are_removed_at_start()
    {
        const QString logs = QDir::homePath() + QStringLiteral("/merge_log");
        QVERIFY(QDir().mkpath(logs + "/merge_1"));
        QVERIFY(QDir().mkpath(logs + "/merge_2"));
        for (const QString& file : {logs + "/merge_1/log.txt", logs + "/merge_2/conflicts.txt"})
        {
            QFile out(file);
            QVERIFY(out.open(QIODevice::WriteOnly));
            out.write("merge");
            out.close();
            // Read-only, as the depot leaves its files.
            QFile::setPermissions(file, QFileDevice::ReadOwner);
        }
        VELD_DATA session;
        VELD_MAIN_WINDOW window(&session);
        let_auto_connect_run(session);
        QTRY_VERIFY(!QDir(logs).exists());
    }
};

QTEST_MAIN(VELD_MAIN_WINDOW_TEST)
#include "veld_main_window_test.moc"
