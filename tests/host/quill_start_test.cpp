#include "quill_project_file.h"
#include "quill_start_options.h"
#include "test_folder.h"
#include "test_rows.h"

#include <QtTest/QtTest>

using ORBIN_TEST::row;

using LIBRARY_PROXY::PROJECT_PATHS;

class QUILL_START_TEST : public QObject
{
    Q_OBJECT

private slots:
    void project_files_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("binaries");
        QTest::addColumn<QString>("design_data");
        QTest::addColumn<QString>("connection");
        QTest::addColumn<QStringList>("working_data");
        row("full file",
            "# a project\n[project]\nbinaries = binaries\ndesign_data = design_data\n"
            "csv_import = design_data/csv\nconnection = raw_data/db\n"
            "working_data = working_data\nworking_data = mods/working_data\n",
            "/base/binaries", "/base/design_data", "/base/raw_data/db",
            QStringList{"/base/working_data", "/base/mods/working_data"});
        row("no header, comments, CRLF, quotes",
            "; comment\r\nbinaries = \"../bin\"\r\n\r\nDESIGN_DATA=/abs/dd\r\n", "/bin", "/abs/dd", "",
            QStringList());
        row("windows separators", "binaries = game\\binaries\n", "/base/game/binaries", "", "",
            QStringList());
    }

    void project_files()
    {
        QFETCH(QString, text);
        QFETCH(QString, binaries);
        QFETCH(QString, design_data);
        QFETCH(QString, connection);
        QFETCH(QStringList, working_data);
        PROJECT_PATHS paths = PROJECT_PATHS::none();
        QString error;
        QVERIFY2(QUILL_PROJECT_FILE::parse(text, "/base", "p.ini", paths, error), qPrintable(error));
        QCOMPARE(paths.binaries_path, binaries);
        QCOMPARE(paths.design_data_path, design_data);
        QCOMPARE(paths.connection_path, connection);
        QCOMPARE(paths.working_data_paths, working_data);
        QCOMPARE(paths.working_data_path, working_data.value(0));
    }

    void project_file_errors_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("error");
        row("misspelt key", "binaries = b\nbinary = c\n", "p.ini:2: unknown key 'binary'");
        row("other section", "[paths]\nbinaries = b\n", "p.ini:1: unknown section [paths]");
        row("no binaries", "design_data = d\n", "p.ini: no 'binaries' path");
    }

    void project_file_errors()
    {
        QFETCH(QString, text);
        QFETCH(QString, error);
        PROJECT_PATHS paths = PROJECT_PATHS::none();
        paths.binaries_path = "/untouched";
        QString message;
        QVERIFY(!QUILL_PROJECT_FILE::parse(text, "/base", "p.ini", paths, message));
        QVERIFY2(message.startsWith(error), qPrintable(message));
        QCOMPARE(paths.binaries_path, QStringLiteral("/untouched"));
    }

    // A folder stands for the project file inside it; a UTF-8 BOM is fine.
    void reading_files()
    {
        TEST_FOLDER folder;
        QVERIFY(!folder
                     .write("game/quill-project.ini", "\xEF\xBB\xBF"
                                                      "binaries = binaries\n")
                     .isEmpty());
        PROJECT_PATHS paths = PROJECT_PATHS::none();
        QString error;
        QVERIFY2(QUILL_PROJECT_FILE::read(folder.file("game"), paths, error), qPrintable(error));
        QCOMPARE(paths.binaries_path, folder.file("game/binaries"));

        QVERIFY(!QUILL_PROJECT_FILE::read(folder.file("missing.ini"), paths, error));
        QCOMPARE(error, QStringLiteral("Cannot read the project file '%1'").arg(folder.file("missing.ini")));
    }

    void command_lines_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("parses");
        QTest::addColumn<QString>("binaries");
        QTest::addColumn<QStringList>("working_data");
        QTest::addColumn<bool>("full");
        QTest::newRow("nothing") << QStringList{"quill"} << true << "" << QStringList() << false;
        QTest::newRow("paths and full")
            << QStringList{"quill", "--binaries",         "/b",    "--working-data",
                           "/w1",   "--working-data=/w2", "--full"}
            << true << "/b" << QStringList{"/w1", "/w2"} << true;
        QTest::newRow("unknown option")
            << QStringList{"quill", "--projct", "x"} << false << "" << QStringList() << false;
    }

    void command_lines()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, parses);
        QFETCH(QString, binaries);
        QFETCH(QStringList, working_data);
        QFETCH(bool, full);
        QUILL_START_OPTIONS options;
        QString error;
        QCOMPARE(QUILL_START_OPTIONS::parse(arguments, options, error), parses);
        QCOMPARE(error.isEmpty(), parses);
        QCOMPARE(options.binaries_path, binaries);
        QCOMPARE(options.working_data_paths, working_data);
        QCOMPARE(options.full_configuration, full);
    }

    // Path options win over the project file's entries; the rest of the file
    // stays.
    void options_override_the_project_file()
    {
        TEST_FOLDER folder;
        folder.write("quill-project.ini", "binaries = bin\ndesign_data = dd\nworking_data = wd\n");
        QUILL_START_OPTIONS options;
        QString error;
        QVERIFY(QUILL_START_OPTIONS::parse(
            {"quill", "--project", folder.path(), "--binaries", "/elsewhere/bin", "--working-data", "/w"},
            options, error));
        PROJECT_PATHS paths = PROJECT_PATHS::none();
        QVERIFY2(options.project_paths(paths, error), qPrintable(error));
        QCOMPARE(paths.binaries_path, QStringLiteral("/elsewhere/bin"));
        QCOMPARE(paths.design_data_path, folder.file("dd"));
        QCOMPARE(paths.working_data_paths, QStringList{"/w"});

        QUILL_START_OPTIONS broken;
        broken.project_file = folder.file("nothing-here.ini");
        QVERIFY(!broken.project_paths(paths, error));
        QVERIFY(error.contains("nothing-here.ini"));
    }

    // The executable answers --help and refuses a bad command line without
    // needing a display.
    void executable_command_line()
    {
        QProcess quill;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("DISPLAY");
        environment.remove("QT_QPA_PLATFORM");
        quill.setProcessEnvironment(environment);
        quill.start(QStringLiteral(QUILL_EXECUTABLE), {"--help"});
        QVERIFY(quill.waitForFinished(30000));
        QCOMPARE(quill.exitCode(), 0);
        const QString help = QString::fromLocal8Bit(quill.readAllStandardOutput());
        QVERIFY2(help.contains("--project <file>") && help.contains("--full"), qPrintable(help));

        quill.start(QStringLiteral(QUILL_EXECUTABLE), {"--no-such-option"});
        QVERIFY(quill.waitForFinished(30000));
        QCOMPARE(quill.exitCode(), 2);
        QVERIFY(QString::fromLocal8Bit(quill.readAllStandardError()).contains("no-such-option"));
    }
};

QTEST_MAIN(QUILL_START_TEST)
#include "quill_start_test.moc"
