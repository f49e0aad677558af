// Whether the host may close, on a git workspace whose database has local
// changes: the question of the window that lists them decides, and without
// that window the question about unsaved table editors still protects them.
#include "git_sandbox.h"
#include "project_paths.h"
#include "scripted_prompt.h"
#include "test_database_builder.h"
#include "veld_data.h"

#include <QtTest/QtTest>

class VELD_DATA_CLOSING_TEST : public QObject
{
    Q_OBJECT

    std::unique_ptr<GIT_SANDBOX> sandbox;

private slots:
    void init()
    {
        sandbox = std::make_unique<GIT_SANDBOX>();
        QVERIFY(sandbox->create_empty_depot());
        {
            TEST_DATABASE_BUILDER builder(sandbox->seed() + "/game/bin/db");
            builder.table("units", {TEST_FIELD::key("key")}).record("units", {{"key", "archer"}});
            QVERIFY2(builder.ok(), qPrintable(builder.error()));
        }
        QVERIFY(sandbox->publish_seed("The database"));
        const QString work = QFileInfo(sandbox->clone("work")).canonicalFilePath();
        QVERIFY(!work.isEmpty());
        LIBRARY_PROXY::PROJECT_PATHS paths = LIBRARY_PROXY::PROJECT_PATHS::none();
        paths.binaries_path = work + "/game/bin";
        LIBRARY_PROXY::PROJECT_PATHS::set_current(paths);
    }

    void cleanup()
    {
        LIBRARY_PROXY::PROJECT_PATHS::clear_current();
        sandbox.reset();
    }

    void changed_tables_ask_the_changes_window_data()
    {
        QTest::addColumn<bool>("changed");
        QTest::addColumn<bool>("answer");
        QTest::newRow("changed, the window says close") << true << true;
        QTest::newRow("changed, the window says stay") << true << false;
        QTest::newRow("nothing changed: not asked") << false << false;
    }

    void changed_tables_ask_the_changes_window()
    {
        QFETCH(bool, changed);
        QFETCH(bool, answer);
        VELD_DATA session;
        if (changed)
            GIT_SANDBOX::write(session.connect_path() + "/units.xml", "<units>edited</units>\n");
        int asked = 0;
        session.set_closing_question([&](VELD_DATA& asking, QWidget*) {
            ++asked;
            return &asking == &session && answer;
        });
        SCRIPTED_PROMPT prompts;
        // The editors are not asked about when the window decides.
        QCOMPARE(session.confirm_closing(nullptr, [] { return false; }), changed ? answer : true);
        QCOMPARE(asked, changed ? 1 : 0);
        QCOMPARE(prompts.asked().size(), 0);
    }

    void without_the_changes_window_unsaved_editors_are_asked_about()
    {
        VELD_DATA session;
        GIT_SANDBOX::write(session.connect_path() + "/units.xml", "<units>edited</units>\n");
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::No);
        QVERIFY(!session.confirm_closing(nullptr, [] { return true; }));
        QCOMPARE(prompts.titles(), QStringList{"Orbin"});
        // Nothing unsaved: local changes alone are safe on disk.
        QVERIFY(session.confirm_closing(nullptr, [] { return false; }));
    }
};

QTEST_MAIN(VELD_DATA_CLOSING_TEST)
#include "veld_data_closing_test.moc"
