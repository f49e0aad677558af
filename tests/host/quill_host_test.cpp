#include "app_extension_plugin_interface.h"
#include "database_editor_plugin_interface.h"
#include "project_paths.h"
#include "quill_host_options.h"
#include "quill_main_window.h"
#include "scripted_prompt.h"
#include "test_folder.h"
#include "test_helpers.h"

#include <QtTest/QtTest>
#include <QtWidgets/QtWidgets>

using LIBRARY_PROXY::PROJECT_PATHS;

namespace
{
const QString good_plugin = QStringLiteral(QUILL_TEST_PLUGIN);
const QString wrong_plugin = QStringLiteral(QUILL_WRONG_PLUGIN);

QAction* find_action(const QList<QMenu*>& menus, const QString& text)
{
    for (QMenu* menu : menus)
    {
        for (QAction* action : menu->actions())
        {
            if (action->text() == text)
                return action;
        }
    }
    return nullptr;
}

// A plugin folder holding copies of the given plugin files and, optionally,
// a file that only pretends to be a library.
QString plugin_folder(const TEST_FOLDER& folder, const QStringList& plugins, bool with_broken_file)
{
    const QString path = folder.make_folder("plugins");
    for (const QString& plugin : plugins)
        QFile::copy(plugin, path + "/" + QFileInfo(plugin).fileName());
    if (with_broken_file)
        folder.write("plugins/libbroken.so", "this is not a library\n");
    folder.write("plugins/README.txt", "not a library either, and not a plugin: skipped quietly\n");
    return path;
}

QUILL_START_OPTIONS options_with_project(const QString& plugins, const QString& binaries = "/p/binaries")
{
    QUILL_START_OPTIONS options;
    options.plugin_folder = plugins;
    options.binaries_path = binaries;
    return options;
}
} // namespace

class QUILL_HOST_TEST : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        PROJECT_PATHS::clear_current();
        QUILL_HOST_OPTIONS::set_full_configuration(false);
    }

    // The plugin is built after the project and the configuration switch are
    // in place, its actions land in a menu of its own, and its action's
    // widget is shown by the host as a window that the host owns.
    void plugin_action_opens_its_window()
    {
        TEST_FOLDER folder;
        QUILL_MAIN_WINDOW window;
        QUILL_START_OPTIONS options = options_with_project(plugin_folder(folder, {good_plugin}, false));
        options.full_configuration = true;
        SCRIPTED_PROMPT prompts;
        window.start(options);
        QCOMPARE(prompts.asked().size(), 0);

        QCOMPARE(int(window.plugin_manager().plugins().size()), 1);
        QObject* plugin = window.plugin_manager().plugins().front()->instance;
        QCOMPARE(plugin->property("binaries_at_load").toString(), QStringLiteral("/p/binaries/"));
        QCOMPARE(plugin->property("full_at_load").toBool(), true);

        QCOMPARE(window.plugin_menus().size(), 1);
        QCOMPARE(window.plugin_menus().first()->title(), QStringLiteral("Test Plugin"));
        QVERIFY(window.menuBar()->actions().contains(window.plugin_menus().first()->menuAction()));
        QAction* open = find_action(window.plugin_menus(), "Open Test Window");
        QVERIFY(open);

        QSignalSpy shown(&window.plugin_manager(), &QUILL_PLUGIN_MANAGER::widget_shown);
        open->trigger();
        QCOMPARE(shown.count(), 1);
        QWidget* widget = window.plugin_manager().widgets().value(0);
        QVERIFY(widget);
        QVERIFY(widget->isVisible());
        QVERIFY(widget->isWindow());
        QCOMPARE(widget->windowTitle(), QStringLiteral("Test Window"));
        QVERIFY(!widget->testAttribute(Qt::WA_DeleteOnClose));
        QVERIFY(!widget->windowIcon().isNull());

        open->trigger();
        QCOMPARE(window.plugin_manager().widgets().size(), 2);
        QVERIFY(window.log_lines()
                    .filter("Loaded Test Plugin from " + QFileInfo(good_plugin).fileName())
                    .size() == 1);
    }

    // --open runs a plugin command once the plugins are there (the README's
    // first command opens ORBIN so); a command no plugin has is said plainly.
    void open_option_runs_a_plugin_command_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<int>("windows");
        QTest::addColumn<QString>("message");
        QTest::newRow("known") << "Open Test Window" << 1 << "";
        QTest::newRow("unknown") << "Open Nothing" << 0 << "No plugin offers the command 'Open Nothing'.";
    }
    void open_option_runs_a_plugin_command()
    {
        QFETCH(QString, command);
        QFETCH(int, windows);
        QFETCH(QString, message);
        TEST_FOLDER folder;
        QUILL_MAIN_WINDOW window;
        QUILL_START_OPTIONS options = options_with_project(plugin_folder(folder, {good_plugin}, false));
        options.open_command = command;
        SCRIPTED_PROMPT prompts;
        if (!message.isEmpty())
            prompts.button(QMessageBox::Ok);
        window.start(options);
        QCOMPARE(window.plugin_manager().widgets().size(), windows);
        QCOMPARE(prompts.asked().size(), message.isEmpty() ? 0 : 1);
        if (!message.isEmpty())
            QCOMPARE(prompts.asked().first().text, message);
    }

    // Closing a plugin's window asks the plugin; a refusal keeps it, consent
    // drops it, and the plugin is told before and after.
    void closing_a_plugin_window()
    {
        TEST_FOLDER folder;
        QUILL_MAIN_WINDOW window;
        window.start(options_with_project(plugin_folder(folder, {good_plugin}, false)));
        QObject* plugin = window.plugin_manager().plugins().front()->instance;
        find_action(window.plugin_menus(), "Open Test Window")->trigger();
        QPointer<QWidget> widget = window.plugin_manager().widgets().value(0);
        QVERIFY(widget);

        plugin->setProperty("refuse_close", true);
        QVERIFY(!widget->close());
        QVERIFY(widget->isVisible());
        QCOMPARE(plugin->property("can_close_calls").toInt(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(window.plugin_manager().widgets().size(), 1);

        plugin->setProperty("refuse_close", false);
        QSignalSpy released(&window.plugin_manager(), &QUILL_PLUGIN_MANAGER::widget_released);
        QVERIFY(widget->close());
        QVERIFY(ORBIN_TEST::wait_until([&] { return widget.isNull(); }));
        QCOMPARE(released.count(), 1);
        QCOMPARE(window.plugin_manager().widgets().size(), 0);
        QCOMPARE(plugin->property("to_be_destroyed_calls").toInt(), 1);
        QCOMPARE(plugin->property("destroyed_calls").toInt(), 1);
    }

    // Quitting asks every plugin; one refusal keeps quill open with its
    // windows, consent closes quill and drops them.
    void quitting_asks_the_plugins()
    {
        TEST_FOLDER folder;
        QUILL_MAIN_WINDOW window;
        window.start(options_with_project(plugin_folder(folder, {good_plugin}, false)));
        window.show();
        QObject* plugin = window.plugin_manager().plugins().front()->instance;
        find_action(window.plugin_menus(), "Open Test Window")->trigger();
        QPointer<QWidget> widget = window.plugin_manager().widgets().value(0);

        plugin->setProperty("refuse_close", true);
        QVERIFY(!window.close());
        QVERIFY(window.isVisible());
        QVERIFY(widget && widget->isVisible());
        QVERIFY(window.log_lines().last().endsWith("Test Plugin keeps Quill open"));

        plugin->setProperty("refuse_close", false);
        QVERIFY(window.close());
        QVERIFY(!window.isVisible());
        QVERIFY(widget.isNull());
        QCOMPARE(plugin->property("destroyed_calls").toInt(), 1);
    }

    // A library that does not load and a plugin of another kind are reported
    // in one message; the good plugin next to them still loads.
    void bad_plugins_are_reported()
    {
        TEST_FOLDER folder;
        QUILL_MAIN_WINDOW window;
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::Ok);
        window.start(options_with_project(plugin_folder(folder, {good_plugin, wrong_plugin}, true)));

        QCOMPARE(prompts.asked().size(), 1);
        const SCRIPTED_PROMPT::RECORD& message = prompts.asked().first();
        QCOMPARE(int(message.kind), int(prompt::KIND::WARNING));
        QCOMPARE(message.title, QStringLiteral("Quill"));
        QVERIFY2(message.text.startsWith("Some plugins could not be loaded:"), qPrintable(message.text));
        QVERIFY2(message.text.contains("libbroken.so could not be loaded: "), qPrintable(message.text));
        QVERIFY2(message.text.contains(QFileInfo(wrong_plugin).fileName() +
                                       " is not a Quill plugin: it does not provide the interface "
                                       "com.nf.Quill.AppExtensionPluginInterface/1.0."),
                 qPrintable(message.text));
        QVERIFY(!message.text.contains("README"));
        QCOMPARE(int(window.plugin_manager().plugins().size()), 1);
        QCOMPARE(window.plugin_menus().size(), 1);
    }

    void missing_things_are_reported_data()
    {
        QTest::addColumn<bool>("with_plugin_folder");
        QTest::addColumn<bool>("with_project");
        QTest::addColumn<QString>("message");
        QTest::newRow("no plugin folder") << false << true << "The plugin folder '";
        QTest::newRow("no project") << true << false << "No project is configured.";
    }

    void missing_things_are_reported()
    {
        QFETCH(bool, with_plugin_folder);
        QFETCH(bool, with_project);
        QFETCH(QString, message);
        TEST_FOLDER folder;
        QUILL_START_OPTIONS options;
        options.plugin_folder =
            with_plugin_folder ? plugin_folder(folder, {good_plugin}, false) : folder.file("no-plugins-here");
        if (with_project)
            options.binaries_path = "/p/binaries";
        QUILL_MAIN_WINDOW window;
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::Ok);
        window.start(options);
        QCOMPARE(prompts.asked().size(), 1);
        QVERIFY2(prompts.asked()[0].text.contains(message), qPrintable(prompts.asked()[0].text));
        QCOMPARE(PROJECT_PATHS().is_configured(), with_project);
    }

    // A broken project file is named with its line, and does not also claim
    // that no project was given.
    void broken_project_file_is_reported()
    {
        TEST_FOLDER folder;
        const QString project = folder.write("quill-project.ini", "binaries = b\nbinary = c\n");
        QUILL_START_OPTIONS options;
        options.plugin_folder = plugin_folder(folder, {good_plugin}, false);
        options.project_file = project;
        QUILL_MAIN_WINDOW window;
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::Ok);
        window.start(options);
        QCOMPARE(prompts.asked().size(), 1);
        QVERIFY2(prompts.asked()[0].text.startsWith(project + ":2: unknown key 'binary'"),
                 qPrintable(prompts.asked()[0].text));
    }

    void database_changes_reach_the_log()
    {
        TEST_FOLDER folder;
        QUILL_MAIN_WINDOW window;
        window.start(options_with_project(plugin_folder(folder, {good_plugin}, false)));
        find_action(window.plugin_menus(), "Connect Test Database")->trigger();
        QVERIFY(window.log_lines().last().endsWith("Test Plugin: database connected"));
        auto* database = window.plugin_manager().plugins().front()->database;
        QVERIFY(database);
        database->disconnect_database();
        QVERIFY(window.log_lines().last().endsWith("Test Plugin: database disconnected"));
    }

    // What the host relies on in the ORBIN plugin: its metadata, its
    // interfaces and its one action.
    void orbin_plugin_contract()
    {
        QPluginLoader loader(QStringLiteral(ORBIN_PLUGIN_FILE));
        const QJsonObject meta = loader.metaData();
        QCOMPARE(meta.value("IID").toString(), QStringLiteral("nf.Quill.VeldPlugin"));
        QCOMPARE(meta.value("className").toString(), QStringLiteral("ORBIN_PLUGIN"));
        QCOMPARE(meta.value("MetaData").toObject(), QJsonObject());

        QUILL_PLUGIN_MANAGER manager;
        QString error;
        QVERIFY2(manager.load_file(QStringLiteral(ORBIN_PLUGIN_FILE), error), qPrintable(error));
        const auto& plugin = *manager.plugins().front();
        QVERIFY(plugin.database && plugin.extension);
        QCOMPARE(plugin.description.name, QStringLiteral("ORBIN"));
        QCOMPARE(plugin.actions.size(), 1);
        QCOMPARE(plugin.actions.first()->text(), QStringLiteral("ORBIN - Database Visual Editor"));
    }

    // The plugin module exports Qt's two entry points and nothing else, so
    // the static libraries inside it never clash with another module's.
    void orbin_plugin_exports_only_the_entry_points()
    {
        QProcess nm;
        nm.start(QStringLiteral("nm"), {"-D", "--defined-only", QStringLiteral(ORBIN_PLUGIN_FILE)});
        if (!nm.waitForFinished(30000) || nm.exitStatus() != QProcess::NormalExit || nm.exitCode() != 0)
            QSKIP("nm is not available here");
        QStringList symbols;
        for (const QString& line : QString::fromLocal8Bit(nm.readAllStandardOutput()).split('\n'))
        {
            const QStringList fields = line.split(' ', Qt::SkipEmptyParts);
            if (fields.size() == 3 && fields[1] != "A")
                symbols << fields[2];
        }
        symbols.sort();
        QCOMPARE(symbols, QStringList({"qt_plugin_instance", "qt_plugin_query_metadata"}));
    }
};

QTEST_MAIN(QUILL_HOST_TEST)
#include "quill_host_test.moc"
