// The table data editor on a real database: commands, the close question,
// apply paths, filters, layout memory, the cell editors and following a
// foreign key into another editor.

#include "filtered_dropdown_combo_box.h"
#include "kor_field_schema.h"
#include "kor_table_schema.h"
#include "scripted_prompt.h"
#include "tables_test_session.h"
#include "veld_form_type.h"
#include "veld_frozen_columns_table.h"
#include "veld_regex_filter_widget.h"
#include "veld_table_data_editor.h"
#include "veld_table_data_editor_window.h"
#include "veld_table_data_view_delegate.h"
#include "veld_window_opener.h"
#include "veld_window_registry.h"

#include <QCheckBox>
#include <QDateTimeEdit>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

namespace
{
// factions <- units.faction (shown by name); units has a field of every kind
// the cell editors tell apart.
void build_army(TEST_DATABASE_BUILDER& db)
{
    db.table("factions", {TEST_FIELD::key("key"), TEST_FIELD::plain("name", KFT_TEXT)});
    auto units = TEST_DATABASE_BUILDER::make_schema(
        "units",
        {TEST_FIELD::key("unit"),
         TEST_FIELD::plain("faction", KFT_TEXT).refers_to("factions", "key", {"name"}),
         TEST_FIELD::plain("men", KFT_INTEGER).with_default(60), TEST_FIELD::plain("elite", KFT_YESNO),
         TEST_FIELD::plain("category", KFT_TEXT), TEST_FIELD::plain("notes", KFT_TEXT)});
    units->field_schema_by_name("category")->set_fixed_column_values({"infantry", "cavalry", "siege"});
    const QString error = db.query_interface().add_table(*units, QString(), QString());
    QVERIFY2(error.isEmpty(), qPrintable(error));
    db.record("factions", {{"key", "rome"}, {"name", "Rome"}})
        .record("factions", {{"key", "carthage"}, {"name", "Carthage"}})
        .record("units", {{"unit", "hastati"}, {"faction", "rome"}, {"category", "infantry"}})
        .record("units", {{"unit", "triarii"}, {"faction", "rome"}, {"men", 40}, {"elite", true}})
        .record("units", {{"unit", "elephants"}, {"faction", "carthage"}, {"men", 12}, {"category", "lost"}});
}

// A main window as the editors see it: it opens editors into its MDI area.
class MAIN_WINDOW : public QWidget, public VELD_WINDOW_OPENER
{
    Q_OBJECT
public:
    explicit MAIN_WINDOW(VELD_DATA* session) : m_session(session) { area.resize(900, 700); }
    QMdiSubWindow* open_table_data_editor(const QString& key, QString& error, bool read_only) override
    {
        return VELD_TABLE_DATA_EDITOR_WINDOW::open(&area, m_session, this, key, read_only, error);
    }
    QMdiSubWindow* open_table_schema_editor(const QString&, QString& error, bool) override
    {
        error = "no schema editor here";
        return nullptr;
    }
    QMdiArea area;
    QStringList status;

signals:
    void transactionApplied(const QStringList& tables);
    void refreshDialogColours();

public slots:
    void statusbarUpdate(QString text) { status << text; }

private:
    VELD_DATA* m_session;
};

int column_of(VELD_TABLE_DATA_EDITOR& editor, const QString& field)
{
    return editor.model().table_schema()->column_ordering().indexOf(field);
}

QModelIndex cell(VELD_TABLE_DATA_EDITOR& editor, const QString& key, const QString& field)
{
    const int row = editor.model().row_of_key(key);
    return editor.proxy().mapFromSource(editor.model().index(row, column_of(editor, field)));
}

// The editor the delegate makes for the cell.
std::unique_ptr<QWidget> cell_editor(VELD_TABLE_DATA_EDITOR& editor, const QModelIndex& index)
{
    return std::unique_ptr<QWidget>(
        editor.delegate()->createEditor(editor.view()->viewport(), QStyleOptionViewItem(), index));
}

QStringList item_texts(const QComboBox* box)
{
    QStringList texts;
    for (int i = 0; i < box->count(); ++i)
        texts << box->itemText(i);
    return texts;
}
} // namespace

class VELD_TABLE_DATA_EDITOR_TEST : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TABLES_TEST_SESSION> m_db;

    std::unique_ptr<VELD_TABLE_DATA_EDITOR> open_editor(const QString& table = "units",
                                                        bool read_only = false)
    {
        auto editor = std::make_unique<VELD_TABLE_DATA_EDITOR>(table, m_db->session(), nullptr, read_only);
        QString error;
        if (!editor->open(error))
            qFatal("%s", qPrintable(error)); // every case needs its editor
        return editor;
    }

private slots:
    void initTestCase()
    {
        qRegisterMetaType<QList<QPersistentModelIndex>>();
        qRegisterMetaType<QAbstractItemModel::LayoutChangeHint>();
    }

    void init()
    {
        m_db = std::make_unique<TABLES_TEST_SESSION>();
        QVERIFY2(m_db->open(build_army), qPrintable(m_db->error()));
    }
    void cleanup() { m_db.reset(); }

    void opening_shows_the_table_with_its_counts()
    {
        auto editor = open_editor();
        QCOMPARE(editor->windowTitle(), QString("Table Data Editor - units"));
        QCOMPARE(editor->form().record_count->text(), QString("3"));
        QCOMPARE(editor->form().showing->text(), QString("3"));
        QVERIFY(editor->form().applyButton->isEnabled());
        QVERIFY(!editor->form().showSchema->isEnabled()); // no main window
        QCOMPARE(editor->proxy().index(0, 0).data().toString(), QString("elephants"));
        QCOMPARE(editor->view()->frozen_view()->itemDelegate(), editor->view()->itemDelegate());
        // The row of date controls scrolls rather than widening the window
        // past a laptop's screen.
        QVERIFY(editor->minimumSizeHint().width()
                < editor->form().modificationFrame->minimumSizeHint().width());

        QString error;
        VELD_TABLE_DATA_EDITOR missing("no_such_table", m_db->session(), nullptr, false);
        QVERIFY(!missing.open(error));
        QVERIFY(!error.isEmpty());
    }

    void read_only_refuses_every_change_data()
    {
        QTest::addColumn<bool>("by_engine");
        QTest::newRow("asked for") << false;
        QTest::newRow("raised by a read-only database") << true;
    }

    void read_only_refuses_every_change()
    {
        QFETCH(bool, by_engine);
        if (by_engine)
            m_db->session()->query_interface()->make_read_only(true);
        auto editor = open_editor("units", !by_engine);
        QVERIFY(editor->is_read_only());
        QCOMPARE(editor->windowTitle(), QString("Table Data Editor - units - (Read Only)"));
        QVERIFY(!editor->form().applyButton->isEnabled());
        QCOMPARE(editor->view()->editTriggers(), QAbstractItemView::NoEditTriggers);

        editor->show();
        QVERIFY(QTest::qWaitForWindowExposed(editor.get()));
        SCRIPTED_PROMPT prompts; // nothing may be asked
        editor->view()->selectRow(0);
        editor->onAddRecord();
        editor->onRemoveRecords();
        editor->onApply();
        editor->onApplyAndClose();
        QCOMPARE(editor->model().rowCount(), 3);
        QVERIFY(!editor->model().has_pending_changes());
        QVERIFY(editor->isVisible());

        editor->view()->setCurrentIndex(cell(*editor, "hastati", "notes"));
        QTest::keyClick(editor->view(), Qt::Key_F2);
        QTest::mouseDClick(editor->view()->viewport(), Qt::LeftButton, {},
                           editor->view()->visualRect(cell(*editor, "hastati", "notes")).center());
        QVERIFY(!editor->view()->findChild<QLineEdit*>());
    }

    void close_question_data()
    {
        QTest::addColumn<QString>("pending");
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("fail_commit");
        QTest::addColumn<bool>("closed");
        QTest::addColumn<QString>("men_on_disk");

        const int none = QMessageBox::NoButton;
        QTest::newRow("nothing pending asks nothing") << "" << none << false << true << "60";
        QTest::newRow("only a description asks nothing") << "description" << none << false << true << "60";
        QTest::newRow("Yes applies and closes") << "edit" << int(QMessageBox::Yes) << false << true << "75";
        QTest::newRow("Yes with a failed apply stays")
            << "edit" << int(QMessageBox::Yes) << true << false << "60";
        QTest::newRow("No closes, nothing applied")
            << "edit" << int(QMessageBox::No) << false << true << "60";
        QTest::newRow("Cancel stays") << "edit" << int(QMessageBox::Cancel) << false << false << "60";
    }

    void close_question()
    {
        QFETCH(QString, pending);
        QFETCH(int, answer);
        QFETCH(bool, fail_commit);
        QFETCH(bool, closed);
        QFETCH(QString, men_on_disk);

        auto editor = open_editor();
        editor->show();
        if (pending == "edit")
            QVERIFY(editor->proxy().setData(cell(*editor, "hastati", "men"), "75", Qt::EditRole));
        else if (pending == "description")
            editor->model().set_field_description("men", "How many");
        m_db->engine()->fail_commits = fail_commit;

        SCRIPTED_PROMPT prompts;
        if (answer != QMessageBox::NoButton)
            prompts.button(QMessageBox::StandardButton(answer));
        if (fail_commit)
            prompts.button(QMessageBox::Ok);
        QCOMPARE(editor->close(), closed);

        if (answer != QMessageBox::NoButton)
        {
            QCOMPARE(prompts.asked()[0].title, QString("Dialog Close"));
            QCOMPARE(prompts.asked()[0].text,
                     QString("Data has been edited in this table, save before exit?"));
            QCOMPARE(prompts.asked()[0].default_button, QMessageBox::Yes);
        }
        if (fail_commit)
        {
            QCOMPARE(prompts.asked()[1].title, QString("Apply Error"));
            QCOMPARE(prompts.asked()[1].text, QString("Could not apply changes, see log"));
            QVERIFY(editor->model().has_pending_changes());
        }
        QVERIFY(m_db->table_file_text("units").contains("<men>" + men_on_disk + "</men>"));
    }

    void apply_writes_the_table_and_reloads()
    {
        auto editor = open_editor();
        QVERIFY(editor->proxy().setData(cell(*editor, "triarii", "notes"), "veterans", Qt::EditRole));
        QCOMPARE(editor->windowTitle(), QString("Table Data Editor - units *"));
        editor->onAddRecord();
        QCOMPARE(editor->form().record_count->text(), QString("4"));
        const int new_row = editor->model().rowCount() - 1;
        const QModelIndex new_key =
            editor->proxy().mapFromSource(editor->model().index(new_row, column_of(*editor, "unit")));
        QVERIFY(editor->proxy().setData(new_key, "velites", Qt::EditRole));
        editor->view()->selectRow(cell(*editor, "elephants", "unit").row());
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::Yes).button(QMessageBox::Ok);
        editor->onRemoveRecords();
        QCOMPARE(editor->form().record_count->text(), QString("3"));

        editor->onApply();
        QCOMPARE(prompts.asked()[1].text, QString("Changes applied successfully"));
        QCOMPARE(prompts.asked()[1].title, QString("Table Data Editor"));
        QCOMPARE(editor->windowTitle(), QString("Table Data Editor - units"));
        QVERIFY(!editor->model().has_pending_changes());
        QCOMPARE(editor->form().record_count->text(), QString("3"));
        const QString file = m_db->table_file_text("units");
        QVERIFY(file.contains("<notes>veterans</notes>"));
        QVERIFY(file.contains("<unit>velites</unit>"));
        QVERIFY(!file.contains("elephants"));
        QVERIFY(editor->view()->model() == &editor->proxy());
    }

    void a_failed_apply_keeps_all_pending_work()
    {
        auto editor = open_editor();
        QSignalSpy status(editor.get(), &VELD_TABLE_DATA_EDITOR::statusUpdate);
        QVERIFY(editor->proxy().setData(cell(*editor, "hastati", "men"), "75", Qt::EditRole));
        m_db->engine()->fail_commits = true;
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::Ok);
        editor->onApply();
        QCOMPARE(prompts.asked()[0].kind, prompt::KIND::CRITICAL);
        QCOMPARE(prompts.asked()[0].text,
                 QString("Failed to apply changes! Check the status bar for detalis."));
        QVERIFY(editor->model().has_pending_changes());
        QCOMPARE(cell(*editor, "hastati", "men").data(Qt::EditRole).toString(), QString("75"));
        QVERIFY(!status.isEmpty());
        QCOMPARE(status.last().first().toString(), QString("The disk is full"));

        m_db->engine()->fail_commits = false;
        prompts.button(QMessageBox::Ok);
        editor->onApply();
        QCOMPARE(prompts.asked()[1].text, QString("Changes applied successfully"));
        QVERIFY(m_db->table_file_text("units").contains("<men>75</men>"));
    }

    void apply_and_close_with_a_failure_stays_open_without_a_box()
    {
        auto editor = open_editor();
        editor->show();
        QVERIFY(editor->proxy().setData(cell(*editor, "hastati", "men"), "75", Qt::EditRole));
        m_db->engine()->fail_commits = true;
        {
            SCRIPTED_PROMPT prompts; // no box at all
            editor->onApplyAndClose();
        }
        QVERIFY(editor->isVisible());
        QVERIFY(editor->model().has_pending_changes());

        m_db->engine()->fail_commits = false;
        SCRIPTED_PROMPT prompts; // closing after a good apply asks nothing either
        editor->onApplyAndClose();
        QVERIFY(!editor->isVisible());
        QVERIFY(m_db->table_file_text("units").contains("<men>75</men>"));
    }

    void the_date_filter_invalidates_only_while_enabled_and_is_kept()
    {
        auto editor = open_editor();
        QSignalSpy layouts(&editor->proxy(), &QAbstractItemModel::layoutChanged);
        const QDateTime future = QDateTime::currentDateTime().addYears(5);

        editor->form().modifiedAfter->setDateTime(future);
        QCOMPARE(layouts.count(), 0);
        QCOMPARE(editor->form().showing->text(), QString("3"));

        editor->form().modificationEnabled->setChecked(true);
        QCOMPARE(editor->form().showing->text(), QString("0"));
        editor->form().modifiedAfter->setDateTime(QDateTime(QDate(2001, 1, 1), QTime(0, 0)));
        editor->form().modifiedBefore->setDateTime(future);
        QCOMPARE(editor->form().showing->text(), QString("3"));
        QVERIFY(layouts.count() >= 2);

        // Records saved before timestamps existed show only with "Show old records".
        editor->form().showOldRecords->setChecked(false);
        QCOMPARE(editor->form().showing->text(), QString("3"));
        editor->modifiedTodayButtonPressed();
        QCOMPARE(editor->form().modifiedAfter->time(), QTime(0, 0, 0));
        QCOMPARE(editor->form().modifiedBefore->time(), QTime(23, 59, 0));

        // The next editor opens on the dates saved.
        editor->saveModificationDates();
        QCOMPARE(open_editor()->form().modifiedAfter->dateTime(), editor->form().modifiedAfter->dateTime());
    }

    void the_layout_is_remembered_per_table()
    {
        {
            auto editor = open_editor();
            QHeaderView* header = editor->view()->horizontalHeader();
            header->moveSection(header->visualIndex(column_of(*editor, "notes")), 0);
            header->resizeSection(column_of(*editor, "men"), 133);
            editor->show();
            QVERIFY(editor->close());
        }
        auto editor = open_editor();
        QHeaderView* header = editor->view()->horizontalHeader();
        QCOMPARE(header->logicalIndex(0), column_of(*editor, "notes"));
        QCOMPARE(header->sectionSize(column_of(*editor, "men")), 133);
        QCOMPARE(editor->view()->frozen_view()->horizontalHeader()->logicalIndex(0),
                 column_of(*editor, "notes"));
        auto factions = open_editor("factions");
        QCOMPARE(factions->view()->horizontalHeader()->logicalIndex(0), 0);
    }

    void cell_editors_follow_the_field_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QStringList>("items");
        QTest::addColumn<QString>("current");
        QTest::addColumn<QString>("kind");

        QTest::newRow("yes/no") << "elite" << QStringList{} << ""
                                << "QCheckBox";
        QTest::newRow("fixed values, empty choice first")
            << "category" << QStringList{"", "cavalry", "infantry", "siege"} << "infantry"
            << "FilteredDropdownComboBox";
        QTest::newRow("lookup, display texts, empty choice last")
            << "faction" << QStringList{"Carthage", "Rome", ""} << "Rome"
            << "FilteredDropdownComboBox";
        QTest::newRow("line edit") << "men" << QStringList{} << "60"
                                   << "QLineEdit";
    }

    void cell_editors_follow_the_field()
    {
        QFETCH(QString, field);
        QFETCH(QStringList, items);
        QFETCH(QString, current);
        QFETCH(QString, kind);

        auto editor = open_editor();
        const QModelIndex index = cell(*editor, "hastati", field);
        std::unique_ptr<QWidget> widget = cell_editor(*editor, index);
        QVERIFY(widget);
        QVERIFY(widget->inherits(qPrintable(kind.startsWith("Filtered") ? "QTSHARED::" + kind : kind)));
        QVERIFY(widget->autoFillBackground());
        editor->delegate()->setEditorData(widget.get(), index);
        if (auto* box = qobject_cast<QComboBox*>(widget.get()))
        {
            QCOMPARE(item_texts(box), items);
            QCOMPARE(box->currentText(), current);
        }
        else if (auto* line = qobject_cast<QLineEdit*>(widget.get()))
        {
            // It opens with all but the last character selected.
            QCOMPARE(line->text(), current);
            QCOMPARE(line->selectedText(), current.chopped(1));
            line->setText("61");
            editor->delegate()->setModelData(line, &editor->proxy(), index);
            QCOMPARE(index.data(Qt::EditRole).toString(), QString("61"));
        }
    }

    void dropdown_filters_and_underlying_values_shape_the_choices()
    {
        auto editor = open_editor();
        editor->addComboFilterWidget();
        VELD_RegexFilterWidget* filter = editor->dropdown_filter_widgets().first();
        filter->findChild<QComboBox*>()->setCurrentText("faction");
        filter->findChild<QLineEdit*>()->setText("^R");
        editor->form().dropdownDisplay->setCurrentText("Underlying");

        const QModelIndex index = cell(*editor, "elephants", "faction");
        std::unique_ptr<QWidget> widget = cell_editor(*editor, index);
        auto* box = qobject_cast<QTSHARED::FilteredDropdownComboBox*>(widget.get());
        QVERIFY(box);
        // The filter tests the display text "Rome"; the item shows the value.
        QCOMPARE(item_texts(box), (QStringList{"rome", ""}));

        // "carthage" is filtered out: the box opens on no choice, and closing
        // it writes nothing.
        editor->delegate()->setEditorData(box, index);
        QCOMPARE(box->currentIndex(), -1);
        editor->delegate()->setModelData(box, &editor->proxy(), index);
        QVERIFY(!editor->model().has_pending_changes());

        box->setCurrentIndex(0);
        editor->delegate()->setModelData(box, &editor->proxy(), index);
        QCOMPARE(index.data(Qt::EditRole).toString(), QString("rome"));
    }

    void filter_rows_build_the_expression()
    {
        auto editor = open_editor();
        editor->addFilterWidget();
        editor->addFilterWidget();
        VELD_RegexFilterWidget* first = editor->filter_widgets()[0];
        VELD_RegexFilterWidget* second = editor->filter_widgets()[1];
        first->findChild<QComboBox*>()->setCurrentText("faction");
        first->findChild<QLineEdit*>()->setText("Rome");
        second->findChild<QComboBox*>()->setCurrentText("men");
        second->findChild<QLineEdit*>()->setText("^4");
        QCOMPARE(editor->form().filterExpression->text(), QString("Rome AND ^4\t"));
        QCOMPARE(editor->form().showing->text(), QString("1"));

        // Removing a row builds the expression again without it.
        emit first->removeRequest(first);
        QCOMPARE(editor->filter_widgets().size(), 1);
        QCOMPARE(editor->form().filterExpression->text(), QString("^4\t"));
        QCOMPARE(editor->form().showing->text(), QString("1"));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        editor->proxy().invalidate();
        QCOMPARE(editor->proxy().rowCount(), 1);
    }

    void field_descriptions_wait_for_the_next_apply()
    {
        auto editor = open_editor();
        SCRIPTED_PROMPT prompts;
        prompts.text("Soldiers in the unit");
        editor->update_field_descrption(column_of(*editor, "men"));
        QCOMPARE(prompts.asked()[0].title, QString("New Description for 'men'"));
        QCOMPARE(prompts.asked()[0].text, QString("Description:"));
        QCOMPARE(editor->model().field_description("men"), QString("Soldiers in the unit"));
        QVERIFY(!editor->has_pending_changes());
    }

    void following_a_foreign_key_selects_the_row_in_the_other_editor()
    {
        MAIN_WINDOW main_window(m_db->session());
        VELD_WINDOW_REGISTRY::instance().set_mdi_area(&main_window.area);
        QString error;
        QMdiSubWindow* units_window = VELD_TABLE_DATA_EDITOR_WINDOW::open(
            &main_window.area, m_db->session(), &main_window, "units", false, error);
        QVERIFY2(units_window, qPrintable(error));
        auto* units = qobject_cast<VELD_TABLE_DATA_EDITOR*>(units_window->widget());
        QVERIFY(units->testAttribute(Qt::WA_DeleteOnClose) ||
                units_window->testAttribute(Qt::WA_DeleteOnClose));
        QVERIFY(VELD_WINDOW_REGISTRY::instance().is_form_open("units", VELD_FORM_TYPE::TABLE_DATA_EDITOR));
        QCOMPARE(VELD_TABLE_DATA_EDITOR_WINDOW::open(&main_window.area, m_db->session(), &main_window,
                                                     "units", false, error),
                 units_window);

        units->focus_on_row_in_table("factions", "rome", false);
        QMdiSubWindow* factions_window =
            VELD_WINDOW_REGISTRY::instance().find_form("factions", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        QVERIFY(factions_window);
        auto* factions = qobject_cast<VELD_TABLE_DATA_EDITOR*>(factions_window->widget());
        const QModelIndex current = factions->view()->currentIndex();
        QCOMPARE(current.data().toString(), QString("rome"));
        QVERIFY(factions->view()->selectionModel()->isSelected(current));

        // A key that is nowhere says so, as a search does.
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::Ok);
        units->focus_on_row_in_table("factions", "sparta", false);
        QCOMPARE(prompts.asked()[0].title, QString("Find"));
        QCOMPARE(prompts.asked()[0].text, QString("Search text was not found"));

        // Status lines reach the main window; closing forgets the editor.
        emit units->statusUpdate("hello");
        QCOMPARE(main_window.status.last(), QString("hello"));
        units_window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!VELD_WINDOW_REGISTRY::instance().is_form_open("units", VELD_FORM_TYPE::TABLE_DATA_EDITOR));
        factions_window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

        QVERIFY(!VELD_TABLE_DATA_EDITOR_WINDOW::open(&main_window.area, m_db->session(), &main_window,
                                                     "nothing", false, error));
        QVERIFY(!error.isEmpty());
        QVERIFY(!VELD_WINDOW_REGISTRY::instance().is_form_open("nothing", VELD_FORM_TYPE::TABLE_DATA_EDITOR));
        QVERIFY(main_window.area.subWindowList().isEmpty());
        VELD_WINDOW_REGISTRY::instance().set_mdi_area(nullptr);
    }

    void removing_records_asks_and_marks_the_selected_rows()
    {
        auto editor = open_editor();
        editor->view()->selectionModel()->select(
            QItemSelection(editor->proxy().index(0, 0), editor->proxy().index(1, 2)),
            QItemSelectionModel::Select);
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::No).button(QMessageBox::Yes);
        editor->onRemoveRecords();
        QCOMPARE(prompts.asked()[0].title, QString("Orbin"));
        QCOMPARE(prompts.asked()[0].text, QString("Are you sure you wish to delete the selected records?"));
        QCOMPARE(editor->form().record_count->text(), QString("3"));
        editor->onRemoveRecords();
        QCOMPARE(editor->form().record_count->text(), QString("1"));
        QVERIFY(editor->model().is_deleted_row(editor->model().row_of_key("elephants")));
        QVERIFY(editor->model().is_deleted_row(editor->model().row_of_key("hastati")));
    }

    void escape_keeps_the_window_open()
    {
        auto editor = open_editor();
        editor->show();
        QTest::keyClick(editor.get(), Qt::Key_Escape);
        QVERIFY(editor->isVisible());
    }
};

QTEST_MAIN(VELD_TABLE_DATA_EDITOR_TEST)
#include "veld_table_data_editor_test.moc"
