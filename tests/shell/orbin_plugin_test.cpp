// The plugin module as the host loads it: the interfaces it answers for, its
// one action and the windows that action makes. Its metadata is checked with
// the host.
//
// The module carries its own copy of every library inside it (it exports
// only Qt's entry points), the prompt seam included, so no prompt of it can
// be scripted from here: the cases never let a window run its event loop.
#include "app_extension_plugin_interface.h"
#include "database_editor_plugin_interface.h"
#include "kor_xml_query_interface.h"
#include "project_paths.h"
#include "test_folder.h"

#include <QtTest/QtTest>

class ORBIN_PLUGIN_TEST : public QObject
{
    Q_OBJECT

    QPluginLoader loader{QStringLiteral(ORBIN_PLUGIN_FILE)};
    QObject* instance = nullptr;
    // The project the plugin's session is made for: a database beside the
    // binaries, so that connecting asks nothing.
    TEST_FOLDER project;

    APP_EXTENSION_PLUGIN_INTERFACE* application()
    {
        return qobject_cast<APP_EXTENSION_PLUGIN_INTERFACE*>(instance);
    }
    DATABASE_EDITOR_PLUGIN_INTERFACE* database()
    {
        return qobject_cast<DATABASE_EDITOR_PLUGIN_INTERFACE*>(instance);
    }

    // Opens a window through the plugin's action and answers what the host
    // would be handed.
    std::shared_ptr<QWidget> open_through_the_action()
    {
        std::shared_ptr<QWidget> handed;
        auto connection = QObject::connect(
            &application()->m_aepi_notifier, &AEPI_WIDGET_NOTIFIER::signal_plugin_widget_created,
            [&](APP_EXTENSION_PLUGIN_INTERFACE& plugin, std::shared_ptr<QWidget> widget) {
                QCOMPARE(&plugin, application());
                handed = widget;
            });
        const QList<QAction*> actions = application()->create_actions();
        if (actions.size() == 1)
            actions.first()->trigger();
        qDeleteAll(actions);
        QObject::disconnect(connection);
        return handed;
    }

private slots:
    void initTestCase()
    {
        const QString binaries = project.make_folder("bin");
        QCOMPARE(KOR_XML_QUERY_INTERFACE::create_empty_database(binaries + "/db"), QString());
        LIBRARY_PROXY::PROJECT_PATHS paths = LIBRARY_PROXY::PROJECT_PATHS::none();
        paths.binaries_path = binaries;
        LIBRARY_PROXY::PROJECT_PATHS::set_current(paths);
        instance = loader.instance();
        QVERIFY2(instance, qPrintable(loader.errorString()));
        // One instance, however often it is asked for.
        QCOMPARE(loader.instance(), instance);
    }

    void answers_for_its_interfaces_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<int>("answer"); // 1 the database side, 2 the application side, 0 none
        QTest::newRow("database interface id")
            << QByteArray("com.nf.Quill.DatabaseEditorPluginInterface/1.0") << 1;
        QTest::newRow("application interface id")
            << QByteArray("com.nf.Quill.AppExtensionPluginInterface/1.0") << 2;
        QTest::newRow("application class name") << QByteArray("APP_EXTENSION_PLUGIN_INTERFACE") << 2;
        QTest::newRow("anything else") << QByteArray("VELD_MAIN_WINDOW") << 0;
    }

    void answers_for_its_interfaces()
    {
        QFETCH(QByteArray, name);
        QFETCH(int, answer);
        QVERIFY(database() && application());
        const QList<void*> expected = {nullptr, static_cast<DATABASE_EDITOR_PLUGIN_INTERFACE*>(database()),
                                       static_cast<APP_EXTENSION_PLUGIN_INTERFACE*>(application())};
        QCOMPARE(instance->qt_metacast(name.constData()), expected[answer]);
        // The database side comes first: it is the object itself.
        QCOMPARE(static_cast<void*>(database()), static_cast<void*>(instance));
    }

    // The host owns the actions it is handed.
    void one_action_without_parent()
    {
        const QList<QAction*> actions = application()->create_actions();
        QCOMPARE(actions.size(), 1);
        QVERIFY(!actions.first()->parent());
        qDeleteAll(actions);
    }

    void can_close_without_a_window()
    {
        QVERIFY(application()->can_close());
        // Nothing to disconnect: the answer is yes at once.
        QVERIFY(database()->disconnect_database());
    }

    // The host reaches the database through the plugin and hears of every
    // change of the connection.
    void database_side()
    {
        QSignalSpy connected(database(), &DATABASE_EDITOR_PLUGIN_INTERFACE::database_connected);
        QSignalSpy disconnected(database(), &DATABASE_EDITOR_PLUGIN_INTERFACE::database_disconnected);
        KOR_XML_QUERY_INTERFACE* interface = database()->database_interface();
        QVERIFY(interface);
        QVERIFY(interface->is_connected());
        QCOMPARE(connected.count(), 1);
        // Connected: the same interface, nothing new.
        QCOMPARE(database()->database_interface(), interface);
        QVERIFY(database()->connect_database(true));
        QCOMPARE(connected.count(), 1);

        QVERIFY(database()->disconnect_database());
        QCOMPARE(disconnected.count(), 1);
        QVERIFY(database()->connect_database(false));
        QCOMPARE(connected.count(), 2);

        // With a window open (and no forms in it) the host may disconnect too.
        std::shared_ptr<QWidget> window = open_through_the_action();
        QVERIFY(window);
        QVERIFY(application()->can_close());
        QVERIFY(database()->disconnect_database());
        QCOMPARE(disconnected.count(), 2);
    }

    // Each trigger makes a new main window, handed to the host; the plugin
    // keeps only a weak reference, so a window the host dropped is gone.
    void every_trigger_makes_a_window()
    {
        std::shared_ptr<QWidget> first = open_through_the_action();
        QVERIFY(first);
        QCOMPARE(first->metaObject()->className(), "VELD_MAIN_WINDOW");
        QCOMPARE(first->windowTitle(), QStringLiteral("ORBIN - Database Visual Editor"));
        QVERIFY(!first->parent());
        QVERIFY(application()->can_close());

        std::shared_ptr<QWidget> second = open_through_the_action();
        QVERIFY(second && second != first);

        first.reset();
        second.reset();
        QVERIFY(application()->can_close());
        QVERIFY(open_through_the_action());
    }
};

QTEST_MAIN(ORBIN_PLUGIN_TEST)
#include "orbin_plugin_test.moc"
