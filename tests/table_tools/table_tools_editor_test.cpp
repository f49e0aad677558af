// The editing tools through a real table data editor on a small database:
// copy and paste, the Delete key, typing and arithmetic over several cells,
// find and replace with its dialog, the cascade question during a paste and
// the CSV import, every question answered by script.

#include "kor_table_schema.h"
#include "project_paths.h"
#include "scripted_prompt.h"
#include "tables_test_session.h"
#include "test_helpers.h"
#include "veld_frozen_columns_table.h"
#include "veld_table_data_editor.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

namespace
{
// factions (shown by name) <- units.faction. Sorted by unit: elephants,
// hastati, triarii.
void build_army(TEST_DATABASE_BUILDER& db)
{
    db.table("factions", {TEST_FIELD::key("key"), TEST_FIELD::plain("name", KFT_TEXT)})
        .table("units", {TEST_FIELD::key("unit"),
                         TEST_FIELD::plain("faction", KFT_TEXT).refers_to("factions", "key", {"name"}),
                         TEST_FIELD::plain("men", KFT_INTEGER), TEST_FIELD::plain("notes", KFT_TEXT),
                         TEST_FIELD::plain("serial", KFT_AUTONUMBER)})
        .record("factions", {{"key", "rome"}, {"name", "Senate of Rome"}})
        .record("factions", {{"key", "carthage"}, {"name", "Punic League"}})
        .record("units",
                {{"unit", "elephants"}, {"faction", "carthage"}, {"men", 12}, {"notes", "war beasts"}})
        .record("units", {{"unit", "hastati"}, {"faction", "rome"}, {"men", 60}, {"notes", "spear line"}})
        .record("units", {{"unit", "triarii"}, {"faction", "rome"}, {"men", 40}, {"notes", "spear wall"}})
        .table("drills", {TEST_FIELD::key("unit"), TEST_FIELD::key("drill")})
        .record("drills", {{"unit", "hastati"}, {"drill", "testudo"}})
        .record("drills", {{"unit", "hastati"}, {"drill", "wedge"}});
}

QModelIndex cell(VELD_TABLE_DATA_EDITOR& editor, const QString& key, const QString& field)
{
    const int column = editor.model().table_schema()->column_ordering().indexOf(field);
    return editor.proxy().mapFromSource(editor.model().index(editor.model().row_of_key(key), column));
}

QString value(VELD_TABLE_DATA_EDITOR& editor, const QString& key, const QString& field)
{
    return cell(editor, key, field).data(Qt::EditRole).toString();
}

// The men of elephants, hastati and triarii.
QStringList men(VELD_TABLE_DATA_EDITOR& editor)
{
    return {value(editor, "elephants", "men"), value(editor, "hastati", "men"),
            value(editor, "triarii", "men")};
}

// Selects the cells; the first becomes the current cell.
void select(VELD_TABLE_DATA_EDITOR& editor, const QList<QModelIndex>& cells)
{
    QItemSelectionModel* selection = editor.view()->selectionModel();
    selection->clearSelection();
    selection->setCurrentIndex(cells.first(), QItemSelectionModel::NoUpdate);
    for (const QModelIndex& index : cells)
        selection->select(index, QItemSelectionModel::Select);
}

void press(VELD_TABLE_DATA_EDITOR& editor, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(editor.view(), key, modifiers);
}

QStringList statuses(const QSignalSpy& spy)
{
    QStringList texts;
    for (const QList<QVariant>& signal : spy)
        texts << signal.first().toString();
    return texts;
}
} // namespace

class TABLE_TOOLS_EDITOR_TEST : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TABLES_TEST_SESSION> m_db;
    std::unique_ptr<VELD_TABLE_DATA_EDITOR> m_editor;
    TEST_FOLDER m_csv_folder;

    VELD_TABLE_DATA_EDITOR& open(const QString& table = "units", bool read_only = false)
    {
        m_editor = std::make_unique<VELD_TABLE_DATA_EDITOR>(table, m_db->session(), nullptr, read_only);
        QString error;
        if (!m_editor->open(error))
            qFatal("%s", qPrintable(error));
        return *m_editor;
    }

private slots:
    void init()
    {
        LIBRARY_PROXY::PROJECT_PATHS paths = LIBRARY_PROXY::PROJECT_PATHS::none();
        paths.csv_import_path = m_csv_folder.path();
        LIBRARY_PROXY::PROJECT_PATHS::set_current(paths);
        m_db = std::make_unique<TABLES_TEST_SESSION>();
        QVERIFY2(m_db->open(build_army), qPrintable(m_db->error()));
    }
    void cleanup()
    {
        m_editor.reset();
        m_db.reset();
        LIBRARY_PROXY::PROJECT_PATHS::clear_current();
    }

    void copy_keys_give_the_selection_in_visual_order_data()
    {
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("text");
        QTest::newRow("underlying") << int(Qt::ControlModifier) << "12\tcarthage\n60\trome";
        QTest::newRow("display with names") << int(Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier)
                                            << "men\tfaction\n12\tPunic League\n60\tSenate of Rome";
    }

    void copy_keys_give_the_selection_in_visual_order()
    {
        QFETCH(int, modifiers);
        QFETCH(QString, text);
        VELD_TABLE_DATA_EDITOR& editor = open();
        QHeaderView* header = editor.view()->horizontalHeader();
        header->moveSection(header->visualIndex(2), header->visualIndex(1)); // men before faction
        select(editor, {cell(editor, "elephants", "faction"), cell(editor, "elephants", "men"),
                        cell(editor, "hastati", "faction"), cell(editor, "hastati", "men")});
        press(editor, Qt::Key_C, Qt::KeyboardModifiers(modifiers));
        QCOMPARE(QGuiApplication::clipboard()->text(), text);
    }

    void a_paste_in_the_sort_column_lands_on_the_records_meant()
    {
        VELD_TABLE_DATA_EDITOR& editor = open();
        const QUuid elephants = editor.model().record_uuid(editor.model().row_of_key("elephants"));
        const QUuid hastati = editor.model().record_uuid(editor.model().row_of_key("hastati"));
        const QUuid triarii = editor.model().record_uuid(editor.model().row_of_key("triarii"));
        // The block starts at the selection's top-left whichever cell is current.
        select(editor, {cell(editor, "triarii", "unit"), cell(editor, "hastati", "unit"),
                        cell(editor, "elephants", "unit")});
        QGuiApplication::clipboard()->setText("zeta\nalpha\nmid\n");
        press(editor, Qt::Key_V, Qt::ControlModifier);

        // The first write re-sorts the rows; the others still reach theirs.
        QCOMPARE(editor.model().record_uuid(editor.model().row_of_key("zeta")), elephants);
        QCOMPARE(editor.model().record_uuid(editor.model().row_of_key("alpha")), hastati);
        QCOMPARE(editor.model().record_uuid(editor.model().row_of_key("mid")), triarii);
        QCOMPARE(editor.proxy().index(2, 0).data().toString(), QString("zeta"));
        QVERIFY(editor.proxy().forced_rows().isEmpty());
        QVERIFY(!editor.model().is_mass_operation());
    }

    void pasting_rows_on_a_new_record_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<QStringList>("new_keys");
        QTest::newRow("Yes makes a record a row")
            << int(QMessageBox::Yes) << QStringList{"velites", "equites"};
        QTest::newRow("No overwrites, up to the table's end")
            << int(QMessageBox::No) << QStringList{"velites"};
        QTest::newRow("Cancel pastes nothing") << int(QMessageBox::Cancel) << QStringList{""};
    }

    void pasting_rows_on_a_new_record()
    {
        QFETCH(int, answer);
        QFETCH(QStringList, new_keys);
        VELD_TABLE_DATA_EDITOR& editor = open();
        editor.onAddRecord();
        const int row = editor.model().rowCount() - 1;
        select(editor, {editor.proxy().mapFromSource(editor.model().index(row, 0))});
        QGuiApplication::clipboard()->setText("velites\trome\t70\nequites\tcarthage\t30");
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::StandardButton(answer));
        press(editor, Qt::Key_V, Qt::ControlModifier);

        QCOMPARE(prompts.asked()[0].title, QString("Paste"));
        QVERIFY(prompts.asked()[0].text.startsWith("You are pasting multiple records"));
        QCOMPARE(prompts.asked()[0].default_button, QMessageBox::No);
        QStringList keys;
        for (int r = 0; r < editor.model().rowCount(); ++r)
            if (editor.model().is_new_row(r))
                keys << editor.model().record_key(r);
        QCOMPARE(keys, new_keys);
        if (answer != QMessageBox::Cancel)
            QCOMPARE(value(editor, "velites", "men"), QString("70"));
    }

    void a_pasted_key_in_use_keeps_the_old_key_and_the_rest_is_pasted()
    {
        VELD_TABLE_DATA_EDITOR& editor = open();
        QSignalSpy status(&editor, &VELD_TABLE_DATA_EDITOR::statusUpdate);
        const QString serial = value(editor, "hastati", "serial");
        select(editor, {cell(editor, "hastati", "unit")});
        QGuiApplication::clipboard()->setText("triarii\tcarthage\t99\tveterans\t555");
        press(editor, Qt::Key_V, Qt::ControlModifier);

        QVERIFY(
            statuses(status).contains("'triarii' key already exists, key will not be pasted for row (1)."));
        QCOMPARE(value(editor, "hastati", "faction"), QString("carthage"));
        QCOMPARE(value(editor, "hastati", "notes"), QString("veterans"));
        QCOMPARE(value(editor, "hastati", "serial"), serial); // autonumbers are never pasted
    }

    void one_value_over_several_cells_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<QStringList>("men");
        QTest::newRow("Yes fills every cell") << int(QMessageBox::Yes) << QStringList{"7", "7", "7"};
        QTest::newRow("No pastes the first cell") << int(QMessageBox::No) << QStringList{"7", "60", "40"};
        QTest::newRow("Cancel pastes nothing") << int(QMessageBox::Cancel) << QStringList{"12", "60", "40"};
    }

    void one_value_over_several_cells()
    {
        QFETCH(int, answer);
        QFETCH(QStringList, men);
        VELD_TABLE_DATA_EDITOR& editor = open();
        select(editor, {cell(editor, "elephants", "men"), cell(editor, "hastati", "men"),
                        cell(editor, "triarii", "men")});
        QGuiApplication::clipboard()->setText("7");
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::StandardButton(answer));
        press(editor, Qt::Key_V, Qt::ControlModifier);
        QVERIFY(prompts.asked()[0].text.startsWith("You are pasting a single value into multiple cells"));
        QCOMPARE(::men(editor), men);
    }

    void a_paste_over_referenced_keys_asks_once_data()
    {
        QTest::addColumn<bool>("update");
        QTest::addColumn<QString>("first_key");
        QTest::newRow("the kept answer serves the whole paste") << true << "carthago";
        QTest::newRow("a refusal ends the paste") << false << "carthage";
    }

    void a_paste_over_referenced_keys_asks_once()
    {
        QFETCH(bool, update);
        QFETCH(QString, first_key);
        VELD_TABLE_DATA_EDITOR& editor = open("factions");
        select(editor, {editor.proxy().index(0, 0), editor.proxy().index(1, 0)});
        QGuiApplication::clipboard()->setText("carthago\nroma");
        SCRIPTED_PROMPT prompts;
        prompts.dialog([update](QDialog& dialog) {
            dialog.findChild<QCheckBox*>("applyToAllCheckBox")->click();
            dialog.findChild<QPushButton*>(update ? "updateDependentsButton" : "cancelButton")->click();
            return dialog.result();
        });
        press(editor, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(prompts.asked().size(), 1);
        QCOMPARE(editor.proxy().index(0, 0).data().toString(), first_key);
        QCOMPARE(editor.model().row_of_key("roma") >= 0, update);
        QVERIFY(!editor.model().is_mass_operation());
        QVERIFY(!editor.model().cascade_answer_known());
    }

    void the_delete_key_data()
    {
        QTest::addColumn<bool>("whole_rows");
        QTest::newRow("whole rows are records to remove") << true;
        QTest::newRow("part of a row clears its cells") << false;
    }

    void the_delete_key()
    {
        QFETCH(bool, whole_rows);
        VELD_TABLE_DATA_EDITOR& editor = open();
        SCRIPTED_PROMPT prompts;
        if (whole_rows)
        {
            editor.view()->selectRow(cell(editor, "hastati", "unit").row());
            prompts.button(QMessageBox::Yes);
        }
        else
            select(editor, {cell(editor, "hastati", "notes"), cell(editor, "hastati", "men"),
                            cell(editor, "hastati", "unit")});
        press(editor, Qt::Key_Delete);

        const int row = editor.model().row_of_key("hastati");
        QCOMPARE(editor.model().is_deleted_row(row), whole_rows);
        QCOMPARE(prompts.asked().size(), whole_rows ? 1 : 0);
        if (!whole_rows)
        {
            QCOMPARE(value(editor, "hastati", "notes"), QString());
            QCOMPARE(value(editor, "hastati", "men"), QString());
            QCOMPARE(editor.model().record_key(row), QString("hastati")); // required: stays
        }
    }

    void typing_into_several_cells_writes_the_others()
    {
        VELD_TABLE_DATA_EDITOR& editor = open();
        select(editor, {cell(editor, "hastati", "men")});
        editor.handle_multi_cell_editing("55");
        QVERIFY(!editor.model().has_pending_changes());
        select(editor, {cell(editor, "hastati", "men"), cell(editor, "elephants", "men"),
                        cell(editor, "triarii", "men")});
        editor.handle_multi_cell_editing("55");
        QCOMPARE(men(editor), (QStringList{"55", "60", "55"})); // hastati's own editor commits it
    }

    void arithmetic_on_selected_numbers_data()
    {
        QTest::addColumn<int>("operation");
        QTest::addColumn<QString>("operand");
        QTest::addColumn<QStringList>("men");
        QTest::newRow("add") << 0 << "5" << QStringList{"17", "65", "45"};
        QTest::newRow("a fraction is refused by an integer field")
            << 0 << "0.5" << QStringList{"12", "60", "40"};
        QTest::newRow("large whole numbers stay whole")
            << 1 << "100000" << QStringList{"1200000", "6000000", "4000000"};
    }

    void arithmetic_on_selected_numbers()
    {
        QFETCH(int, operation);
        QFETCH(QString, operand);
        QFETCH(QStringList, men);
        VELD_TABLE_DATA_EDITOR& editor = open();
        select(editor, {cell(editor, "hastati", "men"), cell(editor, "elephants", "men"),
                        cell(editor, "triarii", "men"), cell(editor, "triarii", "notes")});
        editor.arithmetic_widget()->findChild<QLineEdit*>()->setText(operand);
        editor.onArithmeticCellEditMenuRequest(operation);
        QCOMPARE(::men(editor), men);
        QCOMPARE(value(editor, "triarii", "notes"), QString("spear wall"));
    }

    void find_walks_from_the_current_cell_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("field");
        QTest::addColumn<int>("direction");
        QTest::addColumn<bool>("underlying");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("found");

        QTest::newRow("from the first cell, down the columns") << "SPEAR"
                                                               << "" << 1 << false << ""
                                                               << "hastati/notes";
        QTest::newRow("display texts hold the lookups") << "Senate"
                                                        << "" << 1 << false << ""
                                                        << "hastati/faction";
        QTest::newRow("underlying values do not") << "Senate"
                                                  << "" << 1 << true << ""
                                                  << "";
        QTest::newRow("one field, Left walks up") << "spear"
                                                  << "notes" << 2 << false << "elephants/unit"
                                                  << "triarii/notes";
    }

    void find_walks_from_the_current_cell()
    {
        QFETCH(QString, text);
        QFETCH(QString, field);
        QFETCH(int, direction);
        QFETCH(bool, underlying);
        QFETCH(QString, start);
        QFETCH(QString, found);
        VELD_TABLE_DATA_EDITOR& editor = open();
        if (!start.isEmpty())
            select(editor, {cell(editor, start.section('/', 0, 0), start.section('/', 1))});
        SCRIPTED_PROMPT prompts;
        if (found.isEmpty())
            prompts.button(QMessageBox::Ok);
        editor.onSearchNextStringInstance(text, field, direction, underlying);
        if (found.isEmpty())
        {
            QCOMPARE(prompts.asked()[0].title, QString("Find"));
            QCOMPARE(prompts.asked()[0].text, QString("Search text was not found"));
            return;
        }
        const QModelIndex match = cell(editor, found.section('/', 0, 0), found.section('/', 1));
        QCOMPARE(editor.view()->currentIndex(), match);
        QCOMPARE(editor.view()->selectionModel()->selectedIndexes(), QModelIndexList{match});
    }

    void find_keys_repeat_and_replace_moves_on()
    {
        VELD_TABLE_DATA_EDITOR& editor = open();
        editor.onSearchNextStringInstance("spear", "notes", 1, false);
        press(editor, Qt::Key_F3);
        QCOMPARE(editor.view()->currentIndex(), cell(editor, "triarii", "notes"));
        press(editor, Qt::Key_F3, Qt::ShiftModifier);
        QCOMPARE(editor.view()->currentIndex(), cell(editor, "hastati", "notes"));

        editor.onReplaceCurrentOrNext("spear", "pike", "", 1, false);
        QCOMPARE(value(editor, "hastati", "notes"), QString("pike line"));
        QCOMPARE(editor.view()->currentIndex(), cell(editor, "triarii", "notes"));

        // A lookup text is found but only the underlying value can change.
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::Ok).button(QMessageBox::Ok);
        select(editor, {cell(editor, "hastati", "faction")});
        editor.onReplaceCurrentOrNext("Senate", "Council", "", 1, false);
        QCOMPARE(prompts.asked()[0].title, QString("Text Not Replaced"));
        QCOMPARE(value(editor, "hastati", "faction"), QString("rome"));
        editor.onReplaceCurrentOrNext("nowhere", "x", "", 1, false);
        QCOMPARE(prompts.asked()[1].title, QString("Replace"));
    }

    void replace_all_writes_each_match_once_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("needle");
        QTest::addColumn<QString>("replacement");
        QTest::addColumn<QStringList>("cells");
        QTest::addColumn<QString>("message");

        const QString made = "Orbin has completed its search and has made %1.";
        QTest::newRow("a replacement holding the text")
            << "notes"
            << "spear"
            << "spears" << QStringList{"war beasts", "spears line", "spears wall"}
            << made.arg("2 replacements");
        QTest::newRow("in the sort column, rows moving as they change")
            << "unit"
            << "t"
            << "zt" << QStringList{"elephanzts", "hasztazti", "ztriarii"} << made.arg("3 replacements");
        QTest::newRow("one replacement")
            << ""
            << "wall"
            << "line" << QStringList{"war beasts", "spear line", "spear line"} << made.arg("1 replacement");
    }

    void replace_all_writes_each_match_once()
    {
        QFETCH(QString, field);
        QFETCH(QString, needle);
        QFETCH(QString, replacement);
        QFETCH(QStringList, cells);
        QFETCH(QString, message);
        VELD_TABLE_DATA_EDITOR& editor = open();
        const QString column = field.isEmpty() ? QString("notes") : field;
        QVector<QUuid> records;
        for (int row = 0; row < 3; ++row)
            records << editor.model().record_uuid(row);
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::Ok);
        editor.onReplaceAll(needle, replacement, field, 1, true);
        QCOMPARE(prompts.asked()[0].title, QString("Replace All"));
        QCOMPARE(prompts.asked()[0].text, message);
        QStringList values;
        for (const QUuid& record : records)
            values << editor.model()
                          .index(editor.model().row_of_uuid(record),
                                 editor.model().table_schema()->column_ordering().indexOf(column))
                          .data(Qt::EditRole)
                          .toString();
        QCOMPARE(values, cells);
        QVERIFY(!editor.model().is_mass_operation());
    }

    void the_find_dialog_replaces_in_the_selection_and_keeps_its_history()
    {
        VELD_TABLE_DATA_EDITOR& editor = open();
        press(editor, Qt::Key_F, Qt::ControlModifier);
        FIND_AND_REPLACE_DIALOG* dialog = editor.find_dialog();
        QVERIFY(dialog);
        QCOMPARE(dialog->windowTitle(), QString("Find"));
        QVERIFY(dialog->findChild<QPushButton*>("replaceAllButton")->isHidden());
        QTest::keyClick(dialog, Qt::Key_H, Qt::ControlModifier);
        QCOMPARE(dialog->windowTitle(), QString("Find and Replace"));
        QVERIFY(!dialog->findChild<QPushButton*>("replaceAllButton")->isHidden());

        auto* field = dialog->findChild<QComboBox*>("searchField");
        dialog->findChild<QCheckBox*>("useSearchField")->click();
        QVERIFY(field->isEnabled());
        dialog->findChild<QCheckBox*>("inSelection")->click();
        QVERIFY(!field->isEnabled());
        QVERIFY(!dialog->findChild<QComboBox*>("searchDirection")->isEnabled());

        select(editor, {cell(editor, "triarii", "notes"), cell(editor, "elephants", "men")});
        dialog->findChild<QComboBox*>("searchText")->setEditText("spear");
        dialog->findChild<QComboBox*>("replaceText")->setEditText("pike");
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::Ok);
        dialog->findChild<QPushButton*>("replaceAllButton")->click();
        QCOMPARE(prompts.asked()[0].text,
                 QString("Orbin has completed its search and has made 1 replacement."));
        QCOMPARE(value(editor, "triarii", "notes"), QString("pike wall"));
        QCOMPARE(value(editor, "hastati", "notes"), QString("spear line"));

        // Newest first, no doubles, and read back by the next dialog.
        dialog->findChild<QCheckBox*>("inSelection")->click();
        dialog->findChild<QCheckBox*>("useSearchField")->click();
        dialog->findChild<QComboBox*>("searchText")->setEditText("wall");
        dialog->findChild<QPushButton*>("findButton")->click();
        dialog->findChild<QComboBox*>("searchText")->setEditText("spear");
        dialog->findChild<QPushButton*>("findButton")->click();
        FIND_AND_REPLACE_DIALOG again("units", {}, nullptr);
        auto* history = again.findChild<QComboBox*>("searchText");
        QCOMPARE(history->count(), 2);
        QCOMPARE(history->itemText(0), QString("spear"));
        QCOMPARE(history->itemText(1), QString("wall"));
        QCOMPARE(again.findChild<QComboBox*>("replaceText")->itemText(0), QString("pike"));
    }

    void a_read_only_window_copies_and_finds_only()
    {
        VELD_TABLE_DATA_EDITOR& editor = open("units", true);
        select(editor, {cell(editor, "hastati", "notes"), cell(editor, "triarii", "notes")});
        QGuiApplication::clipboard()->setText("x");
        SCRIPTED_PROMPT prompts; // nothing may be asked
        press(editor, Qt::Key_V, Qt::ControlModifier);
        press(editor, Qt::Key_Delete);
        editor.onReplaceAll("spear", "pike", "", 1, false);
        editor.onDataImport();
        QVERIFY(!editor.model().has_pending_changes());
        press(editor, Qt::Key_H, Qt::ControlModifier);
        QCOMPARE(editor.find_dialog()->mode(), FIND_AND_REPLACE_DIALOG::FIND_MODE);
    }

    void a_reference_to_a_record_of_several_key_fields_finds_it()
    {
        // The references list names such a record by its whole key, which
        // no single key field holds.
        VELD_TABLE_DATA_EDITOR& editor = open("drills");
        SCRIPTED_PROMPT prompts; // no "not found"
        editor.focus_on_row_in_table("drills", "hastatiwedge", false);
        const int row = editor.proxy().mapToSource(editor.view()->currentIndex()).row();
        QCOMPARE(editor.model().record_key(row), QString("hastatiwedge"));
    }

    void csv_import_merges_the_file_as_pending_edits()
    {
        VELD_TABLE_DATA_EDITOR& editor = open();
        QVERIFY(ORBIN_TEST::write_file(m_csv_folder.file("units.csv"), "unit,men,notes\r\n"
                                                                       "hastati,75,\"spear, line\"\r\n"
                                                                       "velites,30,skirmish\r\n"
                                                                       "elephants,20,again\r\n"
                                                                       "triarii,41\r\n"));
        editor.model().remove_record(editor.model().row_of_key("elephants"));
        const int deleted_row = editor.model().row_of_key("elephants");
        QSignalSpy status(&editor, &VELD_TABLE_DATA_EDITOR::statusUpdate);
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::No).button(QMessageBox::Yes);
        editor.onDataImport();
        QCOMPARE(prompts.asked()[0].title, QString("Table Data Editor"));
        QCOMPARE(prompts.asked()[0].text,
                 "Do you wish to import data for units from " + m_csv_folder.path() + "/units.csv?");
        QCOMPARE(editor.model().rowCount(), 3);

        editor.onDataImport();
        QCOMPARE(value(editor, "hastati", "men"), QString("75"));
        QCOMPARE(value(editor, "hastati", "notes"), QString("spear, line"));
        QCOMPARE(value(editor, "triarii", "men"), QString("40"));
        QVERIFY(statuses(status).contains(
            "WARNING! Number of values on line 5 does not match number of headers."));
        // The deleted record stays deleted; its key comes back as a new one.
        QVERIFY(editor.model().is_deleted_row(deleted_row));
        QCOMPARE(editor.model().rowCount(), 5);
        QVERIFY(editor.model().is_new_row(editor.model().row_of_key("velites")));
        QCOMPARE(editor.form().record_count->text(), QString("4"));
        QVERIFY(!m_db->table_file_text("units").contains("velites"));

        prompts.button(QMessageBox::Ok);
        editor.onApply();
        const QString file = m_db->table_file_text("units");
        QVERIFY(file.contains("<unit>velites</unit>"));
        QCOMPARE(file.count("<unit>elephants</unit>"), 1);
        QVERIFY(file.contains("<men>20</men>"));
    }
};

QTEST_MAIN(TABLE_TOOLS_EDITOR_TEST)
#include "table_tools_editor_test.moc"
