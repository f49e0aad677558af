#include "project_paths.h"
#include "test_rows.h"

#include <QtTest/QtTest>

using ORBIN_TEST::row;

using LIBRARY_PROXY::PROJECT_PATHS;

class QUILL_HOST_API_TEST : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { PROJECT_PATHS::clear_current(); }

    // Whatever form the host is given paths in, plugins see absolute folders
    // with '/' and a trailing separator, so appending a name works either way.
    void current_project_is_normalised_data()
    {
        QTest::addColumn<QString>("given");
        QTest::addColumn<QString>("seen");
        row("trailing separator kept single", "/p/game/binaries//", "/p/game/binaries/");
        row("backslashes", "\\p\\game\\binaries\\", "/p/game/binaries/");
        row("dot segments", "/p/game/x/../binaries/.", "/p/game/binaries/");
        row("relative", "game/binaries", QDir::currentPath() + "/game/binaries/");
        row("empty stays empty", "", "");
    }

    void current_project_is_normalised()
    {
        QFETCH(QString, given);
        QFETCH(QString, seen);
        PROJECT_PATHS paths = PROJECT_PATHS::none();
        paths.binaries_path = given;
        paths.design_data_path = given;
        paths.csv_import_path = given;
        paths.connection_path = given;
        PROJECT_PATHS::set_current(paths);
        const PROJECT_PATHS current;
        QCOMPARE(current.binaries_path, seen);
        QCOMPARE(current.design_data_path, seen);
        QCOMPARE(current.csv_import_path, seen);
        QCOMPARE(current.connection_path, seen);
        QCOMPARE(current.is_configured(), !seen.isEmpty());
    }

    // The working data folder in use heads the list of all of them, once.
    void working_data_paths_data()
    {
        QTest::addColumn<QString>("in_use");
        QTest::addColumn<QStringList>("all");
        QTest::addColumn<QStringList>("seen");
        QTest::newRow("list only") << "" << QStringList{"/w/one", "/w/two"}
                                   << QStringList{"/w/one/", "/w/two/"};
        QTest::newRow("in use moves to the front")
            << "/w/two" << QStringList{"/w/one", "/w/two/"} << QStringList{"/w/two/", "/w/one/"};
        QTest::newRow("duplicates dropped")
            << "" << QStringList{"/w/one", "/w/one/", "/w/two"} << QStringList{"/w/one/", "/w/two/"};
        QTest::newRow("none") << "" << QStringList() << QStringList();
    }

    void working_data_paths()
    {
        QFETCH(QString, in_use);
        QFETCH(QStringList, all);
        QFETCH(QStringList, seen);
        PROJECT_PATHS paths = PROJECT_PATHS::none();
        paths.working_data_path = in_use;
        paths.working_data_paths = all;
        PROJECT_PATHS::set_current(paths);
        const PROJECT_PATHS current;
        QCOMPARE(current.all_working_data_count(), seen.size());
        for (int i = 0; i < seen.size(); ++i)
            QCOMPARE(current.get_working_data_path(i), seen[i]);
        QCOMPARE(current.working_data_path, seen.value(0));
        QCOMPARE(current.get_working_data_path(seen.size()), QString());
        QCOMPARE(current.get_working_data_path(-1), QString());
    }

    // A default-constructed object is a copy taken then: later changes of the
    // current project do not reach it.
    void copies_are_taken_at_construction()
    {
        PROJECT_PATHS paths = PROJECT_PATHS::none();
        paths.binaries_path = "/first";
        PROJECT_PATHS::set_current(paths);
        const PROJECT_PATHS first;
        paths.binaries_path = "/second";
        PROJECT_PATHS::set_current(paths);
        QCOMPARE(first.binaries_path, QStringLiteral("/first/"));
        QCOMPARE(PROJECT_PATHS().binaries_path, QStringLiteral("/second/"));
        PROJECT_PATHS::clear_current();
        QVERIFY(!PROJECT_PATHS().is_configured());
        QCOMPARE(PROJECT_PATHS().all_working_data_count(), 0);
    }
};

QTEST_MAIN(QUILL_HOST_API_TEST)
#include "quill_host_api_test.moc"
