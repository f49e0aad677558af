// The session without a database: the paths it works out from the project
// and the offline marker, its guards, and the bridge from the engine's
// progress sink to signals and message boxes.
#include "project_path_set.h"
#include "project_paths.h"
#include "scripted_prompt.h"
#include "test_folder.h"
#include "veld_data.h"

#include <QtTest/QtTest>

namespace
{
// Sets the host's project to `binaries` for the scope, and makes `folder` the
// working directory (where the offline marker is looked for).
class PROJECT_SCOPE
{
public:
    PROJECT_SCOPE(const QString& binaries, const QString& working_directory)
        : m_previous_directory(QDir::currentPath())
    {
        LIBRARY_PROXY::PROJECT_PATHS paths = LIBRARY_PROXY::PROJECT_PATHS::none();
        paths.binaries_path = binaries;
        paths.design_data_path = binaries + QStringLiteral("/../design_data");
        paths.csv_import_path = binaries + QStringLiteral("/../csv");
        LIBRARY_PROXY::PROJECT_PATHS::set_current(paths);
        QDir::setCurrent(working_directory);
    }
    ~PROJECT_SCOPE()
    {
        QDir::setCurrent(m_previous_directory);
        LIBRARY_PROXY::PROJECT_PATHS::clear_current();
    }

private:
    QString m_previous_directory;
};

QString canonical(const QString& path)
{
    return QFileInfo(path).canonicalFilePath();
}
} // namespace

class VELD_DATA_TEST : public QObject
{
    Q_OBJECT

private slots:
    void connect_path_data()
    {
        QTest::addColumn<QStringList>("folders");
        QTest::addColumn<QString>("marker"); // null: no offline marker file
        QTest::addColumn<QString>("expected");
        QTest::addColumn<bool>("offline");

        QTest::newRow("db beside the binaries")
            << QStringList{"game/bin/db", "game/raw_data/db"} << QString() << "@/game/bin/db" << false;
        QTest::newRow("falls back to raw_data/db")
            << QStringList{"game/bin", "game/raw_data/db"} << QString() << "@/game/raw_data/db" << false;
        QTest::newRow("neither: the first, even if missing")
            << QStringList{"game/bin"} << QString() << "@/game/bin/db" << false;
        QTest::newRow("offline, empty marker: beside the binaries, no fallback")
            << QStringList{"game/bin", "game/raw_data/db"} << ""
            << "@/game/bin/db" << true;
        QTest::newRow("offline, path in the marker")
            << QStringList{"game/bin/db", "elsewhere/db"} << "@/elsewhere/db\n"
            << "@/elsewhere/db" << true;
    }

    void connect_path()
    {
        QFETCH(QStringList, folders);
        QFETCH(QString, marker);
        QFETCH(QString, expected);
        QFETCH(bool, offline);

        TEST_FOLDER folder;
        const QString root = canonical(folder.path());
        for (const QString& relative : folders)
            QVERIFY(!folder.make_folder(relative).isEmpty());
        const QString work = folder.make_folder(QStringLiteral("work"));
        if (!marker.isNull())
            folder.write(QStringLiteral("work/orbin_read_only_offline_mode"),
                         marker.replace('@', root).toUtf8());

        PROJECT_SCOPE project(root + QStringLiteral("/game/bin"), work);
        VELD_DATA session;
        QCOMPARE(session.is_read_only_offline(), offline);
        QCOMPARE(session.connect_path(), expected.replace('@', root));
        QVERIFY(!session.is_connected());
    }

    void binaries_are_canonical_and_give_the_project_root()
    {
        TEST_FOLDER folder;
        const QString root = canonical(folder.path());
        folder.make_folder(QStringLiteral("studio/game/branch/bin/db"));
        QVERIFY(
            QFile::link(root + QStringLiteral("/studio/game/branch/bin"), root + QStringLiteral("/link")));

        PROJECT_SCOPE project(root + QStringLiteral("/link/"), root);
        VELD_DATA session;
        QCOMPARE(session.binaries_path(), root + QStringLiteral("/studio/game/branch/bin"));
        QCOMPARE(session.project_root(), root + QStringLiteral("/studio/game"));
        QCOMPARE(session.connect_path(), root + QStringLiteral("/studio/game/branch/bin/db"));
        QCOMPARE(session.design_data_path(), PROJECT_PATH_SET().design_data_path());
        QCOMPARE(session.csv_import_path(), PROJECT_PATH_SET().csv_import_path());
    }

    // A project whose binaries folder is missing still gives paths below it,
    // not below the root of the file system.
    void missing_binaries_keep_their_place()
    {
        TEST_FOLDER folder;
        const QString root = canonical(folder.path());
        PROJECT_SCOPE project(root + QStringLiteral("/absent/bin"), root);
        VELD_DATA session;
        QCOMPARE(session.connect_path(), root + QStringLiteral("/absent/bin/db"));
    }

    // Each forwarded operation that needs the database says why it cannot,
    // instead of reaching for an interface that is not there.
    void guards_without_a_connection()
    {
        VELD_DATA session;
        QMap<QString, bool> names;
        const QList<QPair<std::function<bool()>, QString>> guarded = {
            {[&] { return session.can_add_table_records("t"); },
             "Must be connected in order to get table permissions!"},
            {[&] { return session.get_table_names(names); },
             "Must be connected in order to get table names from the model!"},
            {[&] { return session.update_all_records_with_uuids(), false; },
             "Must be connected in order to update all records to have uuids!"},
        };
        for (const auto& operation : guarded)
        {
            QSignalSpy status(&session, &VELD_DATA::statusUpdate);
            QVERIFY(!operation.first());
            QCOMPARE(status.count(), 1);
            QCOMPARE(status.at(0).at(0).toString(), operation.second);
        }
        // The unguarded ones answer nothing, quietly.
        QSignalSpy status(&session, &VELD_DATA::statusUpdate);
        QVERIFY(!session.get_table_schema("t"));
        QVERIFY(!session.get_database_schema());
        QCOMPARE(status.count(), 0);
    }

    // Disconnecting, reconnecting and mirrors out of range refuse without
    // reaching for an interface that is not there.
    void nothing_to_disconnect_reconnect_or_mirror()
    {
        VELD_DATA session;
        QSignalSpy disconnected(&session, &VELD_DATA::disconnected);
        QSignalSpy connected(&session, &VELD_DATA::connected);
        QSignalSpy status(&session, &VELD_DATA::statusUpdate);
        QString error;
        QVERIFY(!session.disconnect_all(error));
        QCOMPARE(error, QStringLiteral("Database is not connected"));
        QVERIFY(!session.reconnect_if_needed());
        QVERIFY(session.last_connection_path().isEmpty());
        for (int index : {-1, VELD_DATA::MIRROR_COUNT})
        {
            QVERIFY(!session.connect_mirror(error, index, QStringLiteral("/nowhere")));
            QCOMPARE(error, QStringLiteral("Index is out of range"));
            QVERIFY(!session.is_mirror_connected(index));
            QVERIFY(!session.mirror_interface(index));
        }
        QCOMPARE(disconnected.count() + connected.count() + status.count(), 0);
    }

    // What the engine reports: which box (if any), and the status line.
    void report_data()
    {
        QTest::addColumn<int>("severity");
        QTest::addColumn<bool>("suppress");
        QTest::addColumn<QString>("box"); // empty: no box
        QTest::addColumn<bool>("status");

        QTest::newRow("information") << 0 << false << "" << true;
        QTest::newRow("warning") << 1 << false << "Warning from database back-end" << true;
        QTest::newRow("error") << 2 << false << "Error from database back-end" << true;
        QTest::newRow("warning, errors suppressed") << 1 << true << "" << true;
        QTest::newRow("error, errors suppressed") << 2 << true << "" << true;
        QTest::newRow("unknown severity") << 3 << false << "" << false;
    }

    void report()
    {
        QFETCH(int, severity);
        QFETCH(bool, suppress);
        QFETCH(QString, box);
        QFETCH(bool, status);

        VELD_DATA session;
        session.set_suppress_errors(suppress);
        QSignalSpy lines(&session, &VELD_DATA::statusUpdate);
        SCRIPTED_PROMPT prompts;
        if (!box.isEmpty())
            prompts.button(QMessageBox::Ok);

        static_cast<PROGRESS_CALLBACK&>(session).report("table 'units' is missing", severity);

        QCOMPARE(prompts.titles(), box.isEmpty() ? QStringList() : QStringList{box});
        if (!box.isEmpty())
        {
            const auto& asked = prompts.asked().first();
            QCOMPARE(asked.kind, severity == 1 ? prompt::KIND::WARNING : prompt::KIND::CRITICAL);
            QCOMPARE(asked.text, QStringLiteral("table 'units' is missing"));
            QCOMPARE(asked.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        }
        QCOMPARE(lines.count(), status ? 1 : 0);
        if (status)
            QCOMPARE(lines.at(0).at(0).toString(), QStringLiteral("table 'units' is missing"));
    }

    void report_of_no_text_is_an_empty_line()
    {
        VELD_DATA session;
        QSignalSpy lines(&session, &VELD_DATA::statusUpdate);
        session.report(nullptr, 0);
        QCOMPARE(lines.count(), 1);
        QCOMPARE(lines.at(0).at(0).toString(), QString());
    }

    void closing_asks_only_about_unsaved_editors_data()
    {
        QTest::addColumn<bool>("unsaved");
        QTest::addColumn<int>("answer"); // QMessageBox button, or 0 for no question
        QTest::addColumn<bool>("closes");
        QTest::newRow("nothing unsaved") << false << 0 << true;
        QTest::newRow("unsaved, Yes") << true << int(QMessageBox::Yes) << true;
        QTest::newRow("unsaved, No") << true << int(QMessageBox::No) << false;
    }

    void closing_asks_only_about_unsaved_editors()
    {
        QFETCH(bool, unsaved);
        QFETCH(int, answer);
        QFETCH(bool, closes);
        TEST_FOLDER folder;
        PROJECT_SCOPE project(folder.make_folder("bin"), folder.path());
        VELD_DATA session;
        int asked_closing_question = 0;
        session.set_closing_question([&](VELD_DATA&, QWidget*) { return ++asked_closing_question, false; });
        SCRIPTED_PROMPT prompts;
        if (answer)
            prompts.button(QMessageBox::StandardButton(answer));
        QCOMPARE(session.confirm_closing(nullptr, [&] { return unsaved; }), closes);
        // No table of the database is changed, so the changes window is not asked.
        QCOMPARE(asked_closing_question, 0);
        if (answer)
        {
            QCOMPARE(prompts.asked().size(), 1);
            QCOMPARE(prompts.asked()[0].title, QStringLiteral("Orbin"));
            QCOMPARE(
                prompts.asked()[0].text,
                QStringLiteral("There are unsaved table changes, are you absolutely sure you want to close?\n"
                               "(UNSAVED CHANGES WILL BE LOST!)"));
            QCOMPARE(prompts.asked()[0].default_button, QMessageBox::No);
        }
    }

};

QTEST_MAIN(VELD_DATA_TEST)
#include "veld_data_test.moc"
