#include "kor_database_schema.h"
#include "kor_xml_query_interface.h"
#include "orbin_settings.h"
#include "scripted_prompt.h"
#include "table_item_delegate.h"
#include "table_launcher_model.h"
#include "tables_test_session.h"
#include "veld_form_type.h"
#include "veld_table_launcher.h"
#include "veld_table_launcher_sort_model.h"
#include "veld_table_pinned_sort_model.h"
#include "veld_table_removal_hooks.h"
#include "veld_window_opener.h"
#include "veld_window_registry.h"

#include <QAbstractItemModelTester>
#include <QLineEdit>
#include <QListView>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QSignalSpy>
#include <QtTest>

namespace
{
// The main window as the launcher sees it: the operations that open editors.
class FAKE_MAIN_WINDOW : public QWidget, public VELD_WINDOW_OPENER
{
public:
    struct CALL
    {
        QString kind;
        QString key;
        bool read_only;
    };
    QList<CALL> calls;
    QString refusal;

    QMdiSubWindow* open_table_data_editor(const QString& table_key, QString& error, bool read_only) override
    {
        calls.append({QStringLiteral("data"), table_key, read_only});
        error = refusal;
        return nullptr;
    }
    QMdiSubWindow* open_table_schema_editor(const QString& table_key, QString& error, bool read_only) override
    {
        calls.append({QStringLiteral("schema"), table_key, read_only});
        error = refusal;
        return nullptr;
    }
};

void build_tables(TEST_DATABASE_BUILDER& db)
{
    db.table(QStringLiteral("factions"), {TEST_FIELD::key(QStringLiteral("key"))})
        .table(QStringLiteral("units"), {TEST_FIELD::key(QStringLiteral("unit")),
                                         TEST_FIELD::plain(QStringLiteral("faction"), KFT_TEXT)
                                             .refers_to(QStringLiteral("factions"), QStringLiteral("key"))})
        .table(QStringLiteral("Armour"), {TEST_FIELD::key(QStringLiteral("key"))})
        .table(QStringLiteral("beasts"), {TEST_FIELD::key(QStringLiteral("key"))})
        .table(QStringLiteral("Campaigns"), {TEST_FIELD::key(QStringLiteral("key"))});
}

QStringList rows_of(const QAbstractItemModel* model)
{
    QStringList rows;
    for (int row = 0; row < model->rowCount(); ++row)
        rows << model->index(row, 0).data().toString();
    return rows;
}

// Clicks the pin corner of a row of a launcher list.
void click_pin(QListView* list, const QString& key)
{
    const QModelIndexList found =
        list->model()->match(list->model()->index(0, 0), Qt::DisplayRole, key, 1, Qt::MatchExactly);
    QVERIFY2(!found.isEmpty(), qPrintable(key));
    const QRect rect = list->visualRect(found.first());
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, QPoint(rect.right() - 4, rect.top() + 4));
}
} // namespace

class VELD_TABLE_LAUNCHER_TEST : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TABLES_TEST_SESSION> m_db;
    QMdiArea m_area;

    void open_database(const QByteArray& permissions = QByteArray())
    {
        m_db = std::make_unique<TABLES_TEST_SESSION>();
        QVERIFY2(m_db->open(build_tables, permissions), qPrintable(m_db->error()));
    }

private slots:
    void initTestCase() { VELD_WINDOW_REGISTRY::instance().set_mdi_area(&m_area); }

    void init()
    {
        ORBIN_SETTINGS("Northfold\\Quill\\Veld\\PinnedTables").remove(QString());
        open_database();
    }

    void cleanup()
    {
        VELD_TABLE_REMOVAL_HOOKS::install({});
        m_db.reset();
    }

    void models_pass_the_model_tester()
    {
        VELD_TABLE_LAUNCHER launcher(m_db->session(), nullptr, VELD_TABLE_LAUNCHER::DATA_MODE);
        QAbstractItemModelTester source(launcher.source_model(),
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        QAbstractItemModelTester list(launcher.list_proxy(),
                                      QAbstractItemModelTester::FailureReportingMode::QtTest);
        QAbstractItemModelTester pinned(launcher.pinned_proxy(),
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        launcher.source_model()->toggle_pinned(1);
        launcher.refresh_table_layout();
        launcher.table_filter()->setText("s$");
        launcher.refresh_table_list();
        // A second connection fills the lists again, never twice over.
        launcher.connectionEstablished();
        QCOMPARE(launcher.source_model()->rowCount(), 5);
    }

    void lists_sort_ignoring_case_and_the_filter_spares_pinned_tables()
    {
        VELD_TABLE_LAUNCHER launcher(m_db->session(), nullptr, VELD_TABLE_LAUNCHER::DATA_MODE);
        QCOMPARE(rows_of(launcher.list_proxy()),
                 (QStringList{"Armour", "beasts", "Campaigns", "factions", "units"}));
        QCOMPARE(launcher.pinned_list()->height(), 0);

        launcher.show();
        QVERIFY(QTest::qWaitForWindowExposed(&launcher));
        click_pin(launcher.table_list(), "units");
        click_pin(launcher.table_list(), "beasts");
        QCOMPARE(rows_of(launcher.pinned_proxy()), (QStringList{"beasts", "units"}));
        QCOMPARE(rows_of(launcher.list_proxy()), (QStringList{"Armour", "Campaigns", "factions"}));
        QCOMPARE(launcher.pinned_list()->height(), 2 * 16 + 4);

        // Case sensitive, as the proxy's default; pinned tables never hidden.
        launcher.table_filter()->setText("a");
        QCOMPARE(rows_of(launcher.list_proxy()), (QStringList{"Campaigns", "factions"}));
        QCOMPARE(rows_of(launcher.pinned_proxy()), (QStringList{"beasts", "units"}));
        launcher.table_filter()->setText("[unclosed");
        QVERIFY(rows_of(launcher.list_proxy()).isEmpty());
        QCOMPARE(rows_of(launcher.pinned_proxy()), (QStringList{"beasts", "units"}));

        click_pin(launcher.pinned_list(), "units");
        QCOMPARE(rows_of(launcher.pinned_proxy()), (QStringList{"beasts"}));
        QCOMPARE(launcher.pinned_list()->height(), 16 + 4);
    }

    void pins_persist_in_the_settings()
    {
        {
            VELD_TABLE_LAUNCHER launcher(m_db->session(), nullptr, VELD_TABLE_LAUNCHER::DATA_MODE);
            launcher.show();
            QVERIFY(QTest::qWaitForWindowExposed(&launcher));
            click_pin(launcher.table_list(), "factions");
            click_pin(launcher.table_list(), "Armour");
        }
        QCOMPARE(TABLE_LAUNCHER_MODEL::read_pinned(), (QSet<QString>{"factions", "Armour"}));

        // Written in row order, pinned rows only; the group holds nothing else.
        {
            ORBIN_SETTINGS settings("Northfold\\Quill\\Veld\\PinnedTables");
            QCOMPARE(settings.childGroups(), QStringList{"TableKeys"});
            QCOMPARE(settings.value("TableKeys/size").toInt(), 2);
            QCOMPARE(settings.value("TableKeys/1/key").toString(), QString("Armour"));
            QCOMPARE(settings.value("TableKeys/2/key").toString(), QString("factions"));
        }

        VELD_TABLE_LAUNCHER again(m_db->session(), nullptr, VELD_TABLE_LAUNCHER::SCHEMA_MODE);
        QCOMPARE(rows_of(again.pinned_proxy()), (QStringList{"Armour", "factions"}));
    }

    void modes_have_their_titles_and_registry_kinds_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("title");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("opened");
        QTest::newRow("data") << 0 << "Table Launcher" << int(VELD_FORM_TYPE::LAUNCHER) << "data";
        QTest::newRow("schema") << 1 << "Table Schema Launcher"
                                << int(VELD_FORM_TYPE::TABLE_LAUNCHER_SCHEMA_MODE) << "schema";
        QTest::newRow("removal") << 2 << "Table Removal" << int(VELD_FORM_TYPE::TABLE_LAUNCHER_REMOVAL_MODE)
                                 << "";
    }

    void modes_have_their_titles_and_registry_kinds()
    {
        QFETCH(int, mode);
        QFETCH(QString, title);
        QFETCH(int, kind);
        QFETCH(QString, opened);

        FAKE_MAIN_WINDOW main_window;
        main_window.refusal = "refused for the test";
        auto* launcher = new VELD_TABLE_LAUNCHER(m_db->session(), &main_window, mode);
        QCOMPARE(launcher->windowTitle(), title);
        QCOMPARE(launcher->registry_kind(), kind);
        QSignalSpy status(launcher, &VELD_TABLE_LAUNCHER::statusUpdate);

        SCRIPTED_PROMPT prompts;
        if (mode == VELD_TABLE_LAUNCHER::REMOVAL_MODE)
            prompts.cancel(); // the user name
        launcher->launch_table("beasts", false);
        if (opened.isEmpty())
        {
            QVERIFY(main_window.calls.isEmpty());
            QCOMPARE(status.takeFirst().first().toString(), QString("Table removal cancelled."));
        }
        else
        {
            QCOMPARE(main_window.calls.size(), 1);
            QCOMPARE(main_window.calls[0].kind, opened);
            QCOMPARE(main_window.calls[0].key, QString("beasts"));
            QCOMPARE(status.takeFirst().first().toString(), QString("refused for the test"));
        }

        // Registered under its kind, it unregisters itself when it goes.
        auto* window = m_area.addSubWindow(launcher);
        QString error;
        QVERIFY(VELD_WINDOW_REGISTRY::instance().register_form(error, VELD_TABLE_LAUNCHER::form_name(), kind,
                                                               window));
        delete window;
        QVERIFY(!VELD_WINDOW_REGISTRY::instance().is_form_open(VELD_TABLE_LAUNCHER::form_name(), kind));
    }

    void keys_launch_the_first_selected_table()
    {
        FAKE_MAIN_WINDOW main_window;
        VELD_TABLE_LAUNCHER launcher(m_db->session(), &main_window, VELD_TABLE_LAUNCHER::DATA_MODE);
        launcher.show();
        QVERIFY(QTest::qWaitForWindowExposed(&launcher));

        QTest::keyClick(&launcher, Qt::Key_Return);
        QTest::keyClick(&launcher, Qt::Key_Return, Qt::ShiftModifier);
        QVERIFY(main_window.calls.isEmpty());

        launcher.table_list()->selectionModel()->select(launcher.list_proxy()->index(2, 0),
                                                        QItemSelectionModel::Select);
        QTest::keyClick(&launcher, Qt::Key_Return);
        QTest::keyClick(&launcher, Qt::Key_Return, Qt::ShiftModifier);
        QCOMPARE(main_window.calls.size(), 2);
        QCOMPARE(main_window.calls[0].key, QString("Campaigns"));
        QVERIFY(!main_window.calls[0].read_only);
        QVERIFY(main_window.calls[1].read_only);

        // A double click is a press and release, then the double click.
        const QPoint first_row =
            launcher.table_list()->visualRect(launcher.list_proxy()->index(0, 0)).center();
        QTest::mouseClick(launcher.table_list()->viewport(), Qt::LeftButton, {}, first_row);
        QTest::mouseDClick(launcher.table_list()->viewport(), Qt::LeftButton, {}, first_row);
        QCOMPARE(main_window.calls.size(), 3);
        QCOMPARE(main_window.calls[2].key, QString("Armour"));
    }

    void an_open_editor_is_raised_instead_and_removal_asks_nothing()
    {
        FAKE_MAIN_WINDOW main_window;
        VELD_TABLE_LAUNCHER launcher(m_db->session(), &main_window, VELD_TABLE_LAUNCHER::REMOVAL_MODE);
        QMdiSubWindow* editor = m_area.addSubWindow(new QWidget);
        QString error;
        QVERIFY(VELD_WINDOW_REGISTRY::instance().register_form(error, "beasts",
                                                               VELD_FORM_TYPE::TABLE_DATA_EDITOR, editor));
        SCRIPTED_PROMPT prompts; // nothing may be asked
        launcher.launch_table("beasts", false);
        QVERIFY(m_db->session()->get_table_schema("beasts"));
        VELD_WINDOW_REGISTRY::instance().unregister_form(error, "beasts", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        delete editor;
    }

    void restricted_tables_open_read_only_only_without_any_permission_data()
    {
        QTest::addColumn<QByteArray>("permissions");
        QTest::addColumn<bool>("read_only");
        const QByteArray restricted = "<permissions><table name=\"beasts\" restricted=\"true\" add=\"false\" "
                                      "edit=\"false\" remove=\"%1\"/></permissions>";
        QTest::newRow("no permission at all") << QByteArray(restricted).replace("%1", "false") << true;
        QTest::newRow("may still remove") << QByteArray(restricted).replace("%1", "true") << false;
    }

    void restricted_tables_open_read_only_only_without_any_permission()
    {
        QFETCH(QByteArray, permissions);
        QFETCH(bool, read_only);
        open_database(permissions);

        FAKE_MAIN_WINDOW main_window;
        VELD_TABLE_LAUNCHER launcher(m_db->session(), &main_window, VELD_TABLE_LAUNCHER::DATA_MODE);
        SCRIPTED_PROMPT prompts;
        if (read_only)
            prompts.button(QMessageBox::Ok);
        launcher.launch_table("beasts", false);
        QCOMPARE(main_window.calls.size(), 1);
        QCOMPARE(main_window.calls[0].read_only, read_only);
        if (read_only)
            QCOMPARE(prompts.asked().first().title, QString("Table Not Editable"));
    }

    void removal_refuses_a_table_others_depend_on()
    {
        VELD_TABLE_LAUNCHER launcher(m_db->session(), nullptr, VELD_TABLE_LAUNCHER::REMOVAL_MODE);
        QSignalSpy status(&launcher, &VELD_TABLE_LAUNCHER::statusUpdate);
        SCRIPTED_PROMPT prompts;
        launcher.launch_table("factions", false);
        QCOMPARE(status.size(), 2);
        QCOMPARE(status[0].first().toString(),
                 QString("Cannot remove the 'factions' table because other tables depend upon it"));
        QCOMPARE(status[1].first().toString(), QString("Table key (units), Dependent Field (faction)"));
        QVERIFY(m_db->session()->get_table_schema("factions"));
    }

    void removal_asks_for_user_reason_binaries_and_code()
    {
        QStringList hooks_run;
        VELD_TABLE_REMOVAL_HOOKS hooks;
        hooks.delete_binaries = [&](VELD_DATA&, const QString& key) {
            hooks_run << "binaries " + key;
            return QStringList{"locked file a", "locked file b"};
        };
        hooks.remove_code = [&](VELD_DATA&, const QString& key) {
            hooks_run << "code " + key;
            return QStringList();
        };
        VELD_TABLE_REMOVAL_HOOKS::install(hooks);

        VELD_TABLE_LAUNCHER launcher(m_db->session(), nullptr, VELD_TABLE_LAUNCHER::REMOVAL_MODE);
        QSignalSpy status(&launcher, &VELD_TABLE_LAUNCHER::statusUpdate);
        QSignalSpy refresh(&launcher, &VELD_TABLE_LAUNCHER::refresh_all_table_lists);
        connect(&launcher, &VELD_TABLE_LAUNCHER::refresh_all_table_lists, &launcher,
                &VELD_TABLE_LAUNCHER::refresh_table_list);
        SCRIPTED_PROMPT prompts;
        prompts.text("alice").text("not needed").button(QMessageBox::Yes).button(QMessageBox::Yes);
        launcher.launch_table("beasts", false);

        QCOMPARE(prompts.titles(),
                 (QStringList{"Username of person making the change", "Reason for deleting this table",
                              "Removal from working_data", "Removal from code"}));
        QCOMPARE(prompts.asked()[2].default_button, QMessageBox::No);
        QCOMPARE(hooks_run, (QStringList{"binaries beasts", "code beasts"}));
        QCOMPARE(status.size(), 2);
        QCOMPARE(status[0].first().toString(),
                 QString("Unable to remove all the binaries:\n\tlocked file a\n\tlocked file b"));
        QCOMPARE(status[1].first().toString(), QString("Successfully removed table."));
        QCOMPARE(refresh.size(), 1);
        QVERIFY(!m_db->session()->get_table_schema("beasts"));
        QVERIFY(!rows_of(launcher.list_proxy()).contains("beasts"));
        QCOMPARE(rows_of(launcher.list_proxy()).size(), 4);
    }

    void removal_cancelled_or_in_request_mode_data()
    {
        QTest::addColumn<int>("cancel_at");
        QTest::addColumn<bool>("removed");
        QTest::newRow("user name cancelled") << 0 << false;
        QTest::newRow("reason cancelled") << 1 << false;
        QTest::newRow("request mode asks no more") << 2 << true;
    }

    void removal_cancelled_or_in_request_mode()
    {
        QFETCH(int, cancel_at);
        QFETCH(bool, removed);
        VELD_TABLE_LAUNCHER launcher(m_db->session(), nullptr, VELD_TABLE_LAUNCHER::REMOVAL_MODE);
        QSignalSpy status(&launcher, &VELD_TABLE_LAUNCHER::statusUpdate);
        SCRIPTED_PROMPT prompts;
        if (cancel_at == 0)
            prompts.cancel();
        else if (cancel_at == 1)
            prompts.text("bob").cancel();
        else
        {
            m_db->session()->set_request_mode(true);
            prompts.text("bob").text("why");
        }
        launcher.launch_table("beasts", false);
        QCOMPARE(status.last().first().toString(),
                 removed ? QString("Successfully removed table.") : QString("Table removal cancelled."));
        QCOMPARE(!m_db->session()->get_table_schema("beasts"), removed);
        QVERIFY(!m_db->session()->query_interface()->in_transaction());
        m_db->session()->set_request_mode(false);
    }
};

QTEST_MAIN(VELD_TABLE_LAUNCHER_TEST)
#include "veld_table_launcher_test.moc"
