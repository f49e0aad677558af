#include "git_sandbox.h"

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "orbin_settings.h"
#include "table_model_test_database.h"
#include "test_database_builder.h"
#include "veld_data.h"
#include "veld_table_data_view_model.h"
#include "veld_table_data_view_sort_model.h"
#include "veld_table_mass_operation.h"
#include "veld_table_model_questions.h"

#include <QAbstractItemModelTester>
#include <QColor>
#include <QItemSelectionModel>
#include <QStandardPaths>
#include <QtTest>

#include <deque>

namespace
{
// Answers the model's questions from a script and keeps what was asked.
class SCRIPTED_QUESTIONS : public VELD_TABLE_MODEL_QUESTIONS
{
public:
    struct ANSWER
    {
        bool update;
        bool apply_to_all;
    };
    std::deque<ANSWER> answers;
    QStringList warnings;
    QList<QMap<QString, QSet<QString>>> cascades;

    void warn_data_invalid(const QString& text) override { warnings.append(text); }
    bool ask_cascade_update(const QMap<QString, QSet<QString>>& references, bool& apply_to_all) override
    {
        cascades.append(references);
        if (answers.empty())
        {
            apply_to_all = false;
            return false;
        }
        const ANSWER answer = answers.front();
        answers.pop_front();
        apply_to_all = answer.apply_to_all;
        return answer.update;
    }
};

const QString failed_text = QStringLiteral("Injected failure");

enum UNITS_COLUMN
{
    UNIT,
    FACTION,
    COST,
    SPEED,
    WEIGHT,
    ACTIVE,
    SERIAL,
    UID,
    TAG,
    MADE,
    NOTES
};
} // namespace

class VELD_TABLE_DATA_VIEW_MODEL_TEST : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<Qt::Orientation>(); }
    void init()
    {
        // Every case starts from the default colours.
        ORBIN_SETTINGS(QStringLiteral("Northfold\\Quill\\Veld\\Options")).remove(QStringLiteral("tables"));
        m_db = std::make_unique<TABLE_MODEL_TEST_DATABASE>();
        QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
        m_db->engine().logged_fields =
            QStringList{QStringLiteral("unit"), QStringLiteral("cost"), QStringLiteral("notes")};
        m_model = open(QStringLiteral("units"));
        QCOMPARE(m_model->rowCount(), 3);
    }

    void cleanup()
    {
        m_status.reset();
        m_model.reset();
        m_db.reset();
    }

    void loads_records_in_key_order_and_fields_in_column_order()
    {
        QCOMPARE(m_model->columnCount(), 11);
        QStringList headers;
        for (int column = 0; column < m_model->columnCount(); ++column)
            headers.append(m_model->headerData(column, Qt::Horizontal).toString());
        QCOMPARE(headers, (QStringList{"unit", "faction", "cost", "speed", "weight", "active", "serial",
                                       "uid", "tag", "made", "notes"}));
        QCOMPARE(m_model->record_key(0), QStringLiteral("archers"));
        QCOMPARE(m_model->record_key(2), QStringLiteral("velites"));
        QCOMPARE(m_model->record_key(3), QString());
        QCOMPARE(m_model->row_of_key(QStringLiteral("hastati")), 1);
        QCOMPARE(m_model->row_of_key(QStringLiteral("nobody")), -1);
        // The foreign key shows the looked-up name; the edit role its value.
        QCOMPARE(m_model->data(cell(0, FACTION)).toString(), QStringLiteral("Carthage"));
        QCOMPARE(edit_value(0, FACTION).toString(), QStringLiteral("carthage"));
        QCOMPARE(edit_value(1, COST), QVariant(10));
        QVERIFY(m_model->key_in_use(QStringLiteral("hastati")));
        QVERIFY(!m_model->key_in_use(QStringLiteral("triarii")));
        QVERIFY(!m_model->has_pending_changes());
    }

    void stays_consistent_through_every_kind_of_change()
    {
        VELD_TABLE_DATA_VIEW_SORT_MODEL proxy;
        proxy.setSourceModel(m_model.get());
        proxy.setDynamicSortFilter(true);
        proxy.sort(UNIT, Qt::DescendingOrder);
        QAbstractItemModelTester model_tester(m_model.get(),
                                              QAbstractItemModelTester::FailureReportingMode::QtTest);
        QAbstractItemModelTester proxy_tester(&proxy, QAbstractItemModelTester::FailureReportingMode::QtTest);

        const int added = m_model->add_record();
        QVERIFY(m_model->setData(cell(added, UNIT), QStringLiteral("triarii")));
        QVERIFY(m_model->setData(cell(0, COST), QStringLiteral("31")));
        QVERIFY(m_model->setData(cell(2, UNIT), QStringLiteral("leves")));
        m_model->remove_record(0);
        m_model->add_record();
        m_model->remove_record(4);
        QVERIFY(m_model->refresh(true));
        QCOMPARE(m_model->rowCount(), 5);
        m_model->set_display_lookups(false);
        QVERIFY(m_model->apply_changes());
        QVERIFY(m_model->refresh(false));
        QCOMPARE(m_model->rowCount(), 3);
        QCOMPARE(proxy.rowCount(), 3);
    }

    void validates_typed_values_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<QStringList>("messages");

        // The type rules themselves are tested with the validator; here, what
        // the model does with them.
        const QString not_valid = QStringLiteral("' is not a valid value for '%1' (archers)");
        QTest::newRow("integer") << int(COST) << "45" << true << QVariant(45) << QStringList();
        QTest::newRow("integer refused")
            << int(COST) << "4.5" << false << QVariant(30)
            << QStringList{"Not a valid integer value: 4.5", "'4.5" + not_valid.arg("cost")};
        QTest::newRow("empty integer") << int(COST) << "" << true << QVariant() << QStringList();
        QTest::newRow("autonumber") << int(SERIAL) << "9" << false << QVariant(3)
                                    << QStringList{"You cannot update autonumber values!",
                                                   "'9" + not_valid.arg("serial")};
    }

    void validates_typed_values()
    {
        QFETCH(int, column);
        QFETCH(QString, text);
        QFETCH(bool, accepted);
        QFETCH(QVariant, stored);
        QFETCH(QStringList, messages);

        QSignalSpy changed(m_model.get(), SIGNAL(changedFlagUpdate(bool)));
        QCOMPARE(m_model->setData(cell(0, column), text), accepted);
        QCOMPARE(statuses(), messages);
        const QVariant value = edit_value(0, column);
        QCOMPARE(value.toString(), stored.toString());
        if (stored.isValid())
            QCOMPARE(value.type(), stored.type());
        QCOMPARE(m_model->is_edited_row(0), accepted);
        QCOMPARE(changed.size(), accepted ? 1 : 0);
        // A refused edit leaves no mark on the row.
        QCOMPARE(m_model->headerData(0, Qt::Vertical).toString(),
                 accepted ? QStringLiteral("1 * ") : QStringLiteral("1"));
    }

    void blank_required_field_keeps_its_value()
    {
        m_model = open(QStringLiteral("factions"));
        QSignalSpy changed(m_model.get(), SIGNAL(changedFlagUpdate(bool)));
        QVERIFY(m_model->setData(cell(0, 1), QString()));
        QCOMPARE(statuses(), QStringList{"'name' is required and must not be blank. (carthage)"});
        QCOMPARE(edit_value(0, 1).toString(), QStringLiteral("Carthage"));
        QVERIFY(!m_model->has_pending_changes());
        QCOMPARE(changed.size(), 0);
    }

    void typing_the_current_value_changes_nothing()
    {
        QSignalSpy changed(m_model.get(), SIGNAL(changedFlagUpdate(bool)));
        QVERIFY(m_model->setData(cell(1, COST), QStringLiteral("10")));
        QVERIFY(m_model->setData(cell(1, NOTES), QString()));
        QVERIFY(!m_model->has_pending_changes());
        QCOMPARE(changed.size(), 0);
        QVERIFY(statuses().isEmpty());
        // Only the edit role edits.
        QVERIFY(!m_model->setData(cell(1, COST), QStringLiteral("11"), Qt::DisplayRole));
        QCOMPARE(edit_value(1, COST), QVariant(10));
    }

    void key_checks_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QStringList>("warnings");

        QTest::newRow("new key") << "units" << 0 << 0 << "bowmen" << true << QStringList() << QStringList();
        QTest::newRow("key with a blank") << "units" << 0 << 0 << "long bows" << false << QStringList()
                                          << QStringList{"A primary key field may not contain a space"};
        QTest::newRow("key of another record")
            << "units" << 0 << 0 << "velites" << false << QStringList{"velites primary key already exists"}
            << QStringList();
        // pairs rows by key: (a, b) "ab", (a, c) "ac", ("", q) "q".
        QTest::newRow("composite key taken") << "pairs" << 1 << 1 << "b" << false
                                             << QStringList{"ab primary key already exists"} << QStringList();
        QTest::newRow("composite key free")
            << "pairs" << 1 << 0 << "x" << true << QStringList() << QStringList();
        QTest::newRow("composite key empty")
            << "pairs" << 2 << 1 << "" << false
            << QStringList{"Empty primary keys not allowed, needs to be updated"} << QStringList();
    }

    void key_checks()
    {
        QFETCH(QString, table);
        QFETCH(int, row);
        QFETCH(int, column);
        QFETCH(QString, text);
        QFETCH(bool, accepted);
        QFETCH(QStringList, messages);
        QFETCH(QStringList, warnings);

        if (table != QLatin1String("units"))
            m_model = open(table);
        const QString key_before = m_model->record_key(row);
        QCOMPARE(m_model->setData(cell(row, column), text), accepted);
        QCOMPARE(statuses(), messages);
        QCOMPARE(m_questions->warnings, warnings);
        if (accepted)
        {
            QVERIFY(m_model->key_in_use(m_model->record_key(row)));
            QVERIFY(!m_model->key_in_use(key_before));
        }
        else
        {
            QCOMPARE(m_model->record_key(row), key_before);
        }
    }

    void key_released_by_a_pending_deletion_can_be_taken()
    {
        m_model->remove_record(0); // archers
        QVERIFY(m_model->is_deleted_row(0));
        QVERIFY(!m_model->key_in_use(QStringLiteral("archers")));
        QVERIFY(m_model->setData(cell(2, UNIT), QStringLiteral("archers")));
        QCOMPARE(m_model->record_key(2), QStringLiteral("archers"));
        QVERIFY(statuses().isEmpty());

        QVERIFY(m_model->apply_changes());
        QCOMPARE(m_db->engine().log,
                 (QStringList{"begin", "remove archers", "edit velites unit=archers cost=20 notes=", "end"}));
        QCOMPARE(m_db->value_on_disk("units", "archers", "cost"), QStringLiteral("20"));
        QCOMPARE(m_db->value_on_disk("units", "velites", "cost"), QStringLiteral("<none>"));
    }

    void referenced_record_is_not_removed()
    {
        // hastati is used by a regiment, and its faction by an army: one line
        // for each field in use.
        m_model->remove_record(1);
        QVERIFY(!m_model->is_deleted_row(1));
        QCOMPARE(
            statuses(),
            (QStringList{
                "Cannot delete this record (due to 'unit:hastati'): 'hastati' is used by regiments.unit",
                "Cannot delete this record (due to 'faction:rome'): 'rome' is used by armies.unit_faction"}));
        QVERIFY(!m_model->has_pending_changes());
        QVERIFY(m_model->key_in_use(QStringLiteral("hastati")));
    }

    void foreign_key_must_name_an_existing_record()
    {
        QVERIFY(!m_model->setData(cell(0, FACTION), QStringLiteral("gauls")));
        QCOMPARE(statuses(),
                 QStringList{"Cannot set data for field (archers) 'faction': 'gauls' does not exist in "
                             "factions.key"});
        QCOMPARE(edit_value(0, FACTION).toString(), QStringLiteral("carthage"));
        QVERIFY(m_model->setData(cell(0, FACTION), QStringLiteral("sparta")));
        QCOMPARE(m_model->data(cell(0, FACTION)).toString(), QStringLiteral("Sparta"));
    }

    void changing_a_referenced_value_asks_to_cascade()
    {
        m_model = open(QStringLiteral("factions"));
        // Unreferenced: no question.
        QVERIFY(m_model->setData(cell(2, 0), QStringLiteral("athens"))); // sparta
        QVERIFY(m_questions->cascades.isEmpty());

        // Cancelled: nothing changes.
        m_questions->answers.push_back({false, false});
        QVERIFY(!m_model->setData(cell(1, 0), QStringLiteral("roma"))); // rome
        QCOMPARE(m_questions->cascades.size(), 1);
        QCOMPARE(m_questions->cascades.first().value(QStringLiteral("units")),
                 (QSet<QString>{QStringLiteral("hastati"), QStringLiteral("velites")}));
        QCOMPARE(statuses(), QStringList{"Field not updated as update was cancelled by user"});
        QCOMPARE(m_model->record_key(1), QStringLiteral("rome"));
        QVERIFY(!m_model->is_edited_row(1));

        // Accepted: the edit goes on, and the referring records follow at apply.
        m_questions->answers.push_back({true, false});
        QVERIFY(m_model->setData(cell(1, 0), QStringLiteral("roma")));
        QCOMPARE(m_model->record_key(1), QStringLiteral("roma"));
        QVERIFY(m_model->apply_changes());
        QCOMPARE(m_db->value_on_disk("units", "hastati", "faction"), QStringLiteral("roma"));
    }

    void referenced_value_of_a_foreign_key_is_refused()
    {
        // hastati's faction "rome" is what the army "first" refers to.
        QVERIFY(!m_model->setData(cell(1, FACTION), QStringLiteral("sparta")));
        QCOMPARE(
            m_questions->warnings,
            QStringList{
                "Cannot set data for this field (hastati): 'rome' is used by armies.unit_faction and has "
                "a dependency on factions:key"});
        QVERIFY(m_questions->cascades.isEmpty());
        QCOMPARE(edit_value(1, FACTION).toString(), QStringLiteral("rome"));
        // archers' "carthage" is used by nobody.
        QVERIFY(m_model->setData(cell(0, FACTION), QStringLiteral("sparta")));
    }

    void cascade_is_asked_once_per_mass_operation_data()
    {
        QTest::addColumn<bool>("mass_operation");
        QTest::addColumn<bool>("update");
        QTest::addColumn<bool>("apply_to_all");
        QTest::addColumn<int>("questions");
        QTest::addColumn<int>("changed");

        QTest::newRow("single edits ask each time") << false << true << true << 2 << 2;
        QTest::newRow("kept yes") << true << true << true << 1 << 2;
        QTest::newRow("kept no") << true << false << true << 1 << 0;
        QTest::newRow("answer not kept") << true << true << false << 2 << 2;
    }

    void cascade_is_asked_once_per_mass_operation()
    {
        QFETCH(bool, mass_operation);
        QFETCH(bool, update);
        QFETCH(bool, apply_to_all);
        QFETCH(int, questions);
        QFETCH(int, changed);

        m_model = open(QStringLiteral("factions"));
        for (int i = 0; i < 2; ++i)
            m_questions->answers.push_back({update, apply_to_all});
        {
            std::unique_ptr<VELD_TABLE_MASS_OPERATION> operation;
            if (mass_operation)
                operation = std::make_unique<VELD_TABLE_MASS_OPERATION>(m_model.get());
            QCOMPARE(m_model->is_mass_operation(), mass_operation);
            // carthage and rome, both referenced by units.
            m_model->setData(cell(0, 0), QStringLiteral("carthago"));
            m_model->setData(cell(1, 0), QStringLiteral("roma"));
        }
        QVERIFY(!m_model->is_mass_operation());
        QVERIFY(!m_model->cascade_answer_known());
        QCOMPARE(m_questions->cascades.size(), questions);
        int edited = 0;
        for (int row = 0; row < 2; ++row)
            edited += m_model->is_edited_row(row) ? 1 : 0;
        QCOMPARE(edited, changed);
        QCOMPARE(statuses().count(QStringLiteral("Field not updated as update was cancelled by user")),
                 2 - changed);
    }

    void apply_sends_every_edit_in_order()
    {
        // velites edited three times, archers removed, one record added, one
        // description changed: deletions, edits in the order made, additions,
        // descriptions.
        QVERIFY(m_model->setData(cell(2, COST), QStringLiteral("21")));
        QVERIFY(m_model->setData(cell(2, COST), QStringLiteral("22")));
        const int added = m_model->add_record();
        QVERIFY(m_model->setData(cell(added, UNIT), QStringLiteral("triarii")));
        QVERIFY(m_model->setData(cell(2, NOTES), QStringLiteral("fast")));
        m_model->remove_record(0);
        m_model->set_field_description(QStringLiteral("cost"), QStringLiteral("Gold per unit"));

        QSignalSpy applied(m_model.get(), SIGNAL(transactionApplied(QStringList)));
        QVERIFY(m_model->apply_changes());
        QCOMPARE(m_db->engine().log,
                 (QStringList{"begin", "remove archers", "edit velites unit=velites cost=21 notes=",
                              "edit velites unit=velites cost=22 notes=",
                              "edit velites unit=velites cost=22 notes=fast", "add triarii",
                              "describe cost Gold per unit", "end"}));
        QCOMPARE(applied.size(), 1);
        QCOMPARE(applied.first().first().toStringList(), QStringList{"units"});
        QCOMPARE(m_db->value_on_disk("units", "velites", "cost"), QStringLiteral("22"));
        QCOMPARE(m_db->value_on_disk("units", "velites", "notes"), QStringLiteral("fast"));
        QCOMPARE(m_db->value_on_disk("units", "triarii", "active"), QStringLiteral("true"));
        QCOMPARE(m_db->record_count_on_disk("units"), 3);
    }

    void failed_apply_keeps_all_pending_work_data()
    {
        QTest::addColumn<QString>("failing");
        QTest::addColumn<int>("steps_sent");

        QTest::newRow("begin") << "begin" << 1;
        QTest::newRow("remove") << "remove" << 2;
        QTest::newRow("edit") << "edit" << 3;
        QTest::newRow("add") << "add" << 4;
        QTest::newRow("describe") << "describe" << 5;
        QTest::newRow("end") << "end" << 6;
    }

    void failed_apply_keeps_all_pending_work()
    {
        QFETCH(QString, failing);
        QFETCH(int, steps_sent);

        m_model->remove_record(0);
        QVERIFY(m_model->setData(cell(2, COST), QStringLiteral("25")));
        const int added = m_model->add_record();
        QVERIFY(m_model->setData(cell(added, UNIT), QStringLiteral("triarii")));
        m_model->set_field_description(QStringLiteral("cost"), QStringLiteral("Gold"));
        const QStringList headers{m_model->headerData(0, Qt::Vertical).toString(),
                                  m_model->headerData(2, Qt::Vertical).toString(),
                                  m_model->headerData(added, Qt::Vertical).toString()};
        QCOMPARE(headers, (QStringList{"1 del", "3 * ", "4 new"}));

        m_db->engine().fail_next = failing;
        QVERIFY(!m_model->apply_changes());
        QVERIFY(statuses().contains(failed_text));
        const QStringList& log = m_db->engine().log;
        QCOMPARE(log.size(), steps_sent + (failing == QLatin1String("begin") ? 0 : 1));
        if (failing != QLatin1String("begin"))
            QCOMPARE(log.last(), QStringLiteral("terminate"));

        // Every mark and value stays, and nothing reached the disk.
        QCOMPARE((QStringList{m_model->headerData(0, Qt::Vertical).toString(),
                              m_model->headerData(2, Qt::Vertical).toString(),
                              m_model->headerData(added, Qt::Vertical).toString()}),
                 headers);
        QCOMPARE(edit_value(2, COST), QVariant(25));
        QCOMPARE(m_model->field_description(QStringLiteral("cost")), QStringLiteral("Gold"));
        QVERIFY(m_model->has_pending_changes());
        QCOMPARE(m_db->value_on_disk("units", "velites", "cost"), QStringLiteral("20"));
        QCOMPARE(m_db->record_count_on_disk("units"), 3);

        // The second apply starts a transaction of its own and sends it all.
        m_db->engine().log.clear();
        QVERIFY(m_model->apply_changes());
        QCOMPARE(m_db->engine().log.first(), QStringLiteral("begin"));
        QCOMPARE(m_db->engine().log.last(), QStringLiteral("end"));
        QCOMPARE(m_db->value_on_disk("units", "velites", "cost"), QStringLiteral("25"));
        QCOMPARE(m_db->value_on_disk("units", "archers", "cost"), QStringLiteral("<none>"));
        QCOMPARE(m_db->value_on_disk("units", "triarii", "unit"), QStringLiteral("triarii"));
    }

    void new_records_take_defaults()
    {
        QSignalSpy changed(m_model.get(), SIGNAL(changedFlagUpdate(bool)));
        const int first = m_model->add_record();
        const int second = m_model->add_record();
        QCOMPARE(first, 3);
        QCOMPARE(second, 4);
        QCOMPARE(m_model->rowCount(), 5);
        QCOMPARE(changed.last().first().toBool(), true);
        QCOMPARE(m_model->edited_record(first)->key(), QStringLiteral("@@NEW_RECORD@@0"));
        QCOMPARE(m_model->edited_record(second)->key(), QStringLiteral("@@NEW_RECORD@@1"));
        QVERIFY(m_model->is_new_row(first));
        QCOMPARE(m_model->headerData(first, Qt::Vertical).toString(), QStringLiteral("4 new"));
        QCOMPARE(edit_value(first, ACTIVE), QVariant(true));
        // Both pending rows get the table's next number.
        QCOMPARE(edit_value(first, SERIAL).toInt(), 4);
        QCOMPARE(edit_value(second, SERIAL).toInt(), 4);
        QVERIFY(edit_value(first, UID).toULongLong() != 0);
        QVERIFY(edit_value(first, UID).toULongLong() != edit_value(second, UID).toULongLong());

        // Edits of a new row stay in the row; the row is not "edited".
        QVERIFY(m_model->setData(cell(first, UNIT), QStringLiteral("triarii")));
        QVERIFY(m_model->setData(cell(first, COST), QStringLiteral("5")));
        QVERIFY(!m_model->is_edited_row(first));
        QVERIFY(m_model->key_in_use(QStringLiteral("triarii")));
        QVERIFY(!m_model->setData(cell(second, UNIT), QStringLiteral("triarii")));
        QCOMPARE(m_model->edited_record(first)->key(), QStringLiteral("@@NEW_RECORD@@0"));
    }

    void new_row_removed_again_sends_nothing()
    {
        const int row = m_model->add_record();
        QVERIFY(m_model->setData(cell(row, UNIT), QStringLiteral("triarii")));
        m_model->remove_record(row);
        QVERIFY(!m_model->is_new_row(row));
        QVERIFY(m_model->is_deleted_new_row(row));
        QCOMPARE(m_model->rowCount(), 4);
        QCOMPARE(m_model->headerData(row, Qt::Vertical).toString(), QStringLiteral("4 del"));
        QVERIFY(!m_model->has_pending_changes());
        QVERIFY(m_model->apply_changes());
        QCOMPARE(m_db->engine().log, (QStringList{"begin", "end"}));
        QCOMPARE(m_db->record_count_on_disk("units"), 3);
    }

    void refresh_keeps_or_drops_pending_work()
    {
        QVERIFY(m_model->setData(cell(1, COST), QStringLiteral("11")));
        const int added = m_model->add_record();
        QVERIFY(m_model->setData(cell(added, UNIT), QStringLiteral("triarii")));
        m_model->remove_record(0);

        QSignalSpy reset(m_model.get(), SIGNAL(modelReset()));
        QVERIFY(m_model->refresh(true));
        QCOMPARE(reset.size(), 1);
        QCOMPARE(m_model->rowCount(), 4);
        QVERIFY(m_model->is_new_row(added));
        QVERIFY(m_model->is_deleted_row(0));
        QVERIFY(m_model->is_edited_row(1));
        // The edit stays visible, so a later edit of the row does not bring back
        // the old value of this field.
        QCOMPARE(edit_value(1, COST), QVariant(11));
        QVERIFY(m_model->setData(cell(1, NOTES), QStringLiteral("kept")));
        QVERIFY2(m_model->apply_changes(), qPrintable(statuses().join('\n')));
        QCOMPARE(m_db->value_on_disk("units", "hastati", "cost"), QStringLiteral("11"));
        QCOMPARE(m_db->value_on_disk("units", "hastati", "notes"), QStringLiteral("kept"));

        QVERIFY(m_model->refresh(false));
        QCOMPARE(m_model->rowCount(), 3);
        QVERIFY(!m_model->has_pending_changes());
        QCOMPARE(m_model->record_key(0), QStringLiteral("hastati"));
        QCOMPARE(m_model->record_key(1), QStringLiteral("triarii"));
        QCOMPARE(m_model->add_record(), 3);
        QCOMPARE(m_model->edited_record(3)->key(), QStringLiteral("@@NEW_RECORD@@1"));
    }

    void kept_edits_follow_their_records_across_a_reload()
    {
        QVERIFY(m_model->setData(cell(2, COST), QStringLiteral("99"))); // velites
        m_model->remove_record(0);                                      // archers

        // Meanwhile a record that sorts first joins the table.
        RECORDING_QUERY_INTERFACE& engine = m_db->engine();
        QString error;
        QVERIFY(engine.begin_transaction(error, true));
        const auto record = TEST_DATABASE_BUILDER::make_record(
            engine.get_table_schema(QStringLiteral("units")),
            {{"unit", "aardvarks"}, {"faction", "rome"}, {"cost", 1}, {"serial", 4}});
        QCOMPARE(engine.add_record(QStringLiteral("units"), record.get()), QString());
        QVERIFY(engine.end_transaction(error));

        QVERIFY(m_model->refresh(true));
        QCOMPARE(m_model->rowCount(), 4);
        QCOMPARE(m_model->record_key(0), QStringLiteral("aardvarks"));
        QVERIFY(!m_model->is_deleted_row(0));
        QVERIFY(m_model->is_deleted_row(1));
        QVERIFY(!m_model->is_edited_row(2));
        QVERIFY(m_model->is_edited_row(3));
        QCOMPARE(edit_value(3, COST), QVariant(99));
        QCOMPARE(m_model->headerData(3, Qt::Vertical).toString(), QStringLiteral("4 * "));

        engine.log.clear();
        QVERIFY(m_model->apply_changes());
        QCOMPARE(engine.log,
                 (QStringList{"begin", "remove archers", "edit velites unit=velites cost=99 notes=", "end"}));
        QCOMPARE(m_db->value_on_disk("units", "aardvarks", "cost"), QStringLiteral("1"));
        QCOMPARE(m_db->value_on_disk("units", "velites", "cost"), QStringLiteral("99"));
    }

    void lookups_are_fetched_once_per_value()
    {
        RECORDING_QUERY_INTERFACE& engine = m_db->engine();
        const int before = engine.lookup_calls;
        for (int pass = 0; pass < 3; ++pass)
            for (int row = 0; row < m_model->rowCount(); ++row)
                m_model->data(cell(row, FACTION));
        // carthage and rome
        QCOMPARE(engine.lookup_calls - before, 2);
        // Columns without a source table never look anything up.
        for (int row = 0; row < m_model->rowCount(); ++row)
            m_model->data(cell(row, COST));
        QCOMPARE(engine.lookup_calls - before, 2);
        // A reload forgets them.
        QVERIFY(m_model->refresh(true));
        m_model->data(cell(0, FACTION));
        QCOMPARE(engine.lookup_calls - before, 3);
    }

    void underlying_values_hide_deleted_rows()
    {
        m_model->remove_record(0);
        QCOMPARE(m_model->data(cell(0, UNIT)).toString(), QStringLiteral("archers"));
        QCOMPARE(m_model->data(cell(0, UNIT), Qt::EditRole), QVariant());

        QSignalSpy reset(m_model.get(), SIGNAL(modelReset()));
        m_model->set_display_lookups(false);
        m_model->set_display_lookups(false);
        QCOMPARE(reset.size(), 1);
        QCOMPARE(m_model->data(cell(0, UNIT)), QVariant());
        QCOMPARE(m_model->data(cell(1, FACTION)).toString(), QStringLiteral("rome"));
    }

    void colours_mark_pending_work()
    {
        m_model->remove_record(0);
        QVERIFY(m_model->setData(cell(1, COST), QStringLiteral("12")));
        const int added = m_model->add_record();

        const auto colour = [&](int row, int column) {
            return m_model->data(cell(row, column), Qt::DecorationRole).value<QColor>();
        };
        QCOMPARE(colour(0, NOTES), QColor(255, 40, 40));
        QCOMPARE(colour(1, COST), QColor(245, 224, 0));
        QCOMPARE(m_model->data(cell(1, NOTES), Qt::DecorationRole), QVariant());
        QCOMPARE(colour(added, NOTES), QColor(98, 245, 0));
        QCOMPARE(m_model->data(cell(2, COST), Qt::DecorationRole), QVariant());

        {
            ORBIN_SETTINGS settings(QStringLiteral("Northfold\\Quill\\Veld\\Options"));
            settings.beginGroup(QStringLiteral("tables"));
            settings.setValue(QStringLiteral("altered_cell_is_default"), false);
            settings.setValue(QStringLiteral("altered_cell_colour"), QColor(10, 20, 30));
        }
        QCOMPARE(colour(1, COST), QColor(10, 20, 30));

        // Selected cells of the view (on the proxy) are darker.
        VELD_TABLE_DATA_VIEW_SORT_MODEL proxy;
        proxy.setSourceModel(m_model.get());
        proxy.sort(UNIT, Qt::DescendingOrder);
        QItemSelectionModel selection(&proxy);
        m_model->set_selection_model(&selection);
        selection.select(proxy.mapFromSource(cell(1, COST)), QItemSelectionModel::Select);
        QCOMPARE(colour(1, COST), QColor(10, 20, 30).darker(200));
        QCOMPARE(colour(0, COST), QColor(255, 40, 40));
    }

    void row_header_numbers_follow_the_proxy()
    {
        QCOMPARE(m_model->headerData(0, Qt::Vertical).toString(), QStringLiteral("1"));
        VELD_TABLE_DATA_VIEW_SORT_MODEL proxy;
        proxy.setSourceModel(m_model.get());
        proxy.sort(UNIT, Qt::DescendingOrder);
        QCOMPARE(m_model->headerData(0, Qt::Vertical).toString(), QStringLiteral("3"));
        QCOMPARE(proxy.headerData(0, Qt::Vertical).toString(), QStringLiteral("1"));
        QVERIFY(m_model->setData(cell(2, COST), QStringLiteral("23")));
        QCOMPARE(m_model->headerData(2, Qt::Vertical).toString(), QStringLiteral("1 * "));
    }

    void frozen_columns_are_not_editable()
    {
        QVERIFY(m_model->flags(cell(0, UNIT)) & Qt::ItemIsEditable);
        m_model->set_frozen_columns(2);
        QCOMPARE(m_model->flags(cell(0, UNIT)), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
        QCOMPARE(m_model->flags(cell(0, FACTION)), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
        QVERIFY(m_model->flags(cell(0, COST)) & Qt::ItemIsEditable);
    }

    void field_descriptions_wait_for_apply()
    {
        QCOMPARE(m_model->field_description(QStringLiteral("cost")), QString());
        QSignalSpy header(m_model.get(), SIGNAL(headerDataChanged(Qt::Orientation, int, int)));
        m_model->set_field_description(QStringLiteral("cost"), QStringLiteral("Gold"));
        QCOMPARE(header.size(), 1);
        QCOMPARE(m_model->field_description(QStringLiteral("cost")), QStringLiteral("Gold"));
        QCOMPARE(m_model->headerData(COST, Qt::Horizontal, Qt::ToolTipRole).toString(),
                 QStringLiteral("<b>cost</b> field <br><br>Gold<br> has no lookups or relationships"));
        // Descriptions alone are not pending record work.
        QVERIFY(!m_model->has_pending_changes());
        QVERIFY(m_model->apply_changes());
        QCOMPARE(m_db->engine().log, (QStringList{"begin", "describe cost Gold", "end"}));
    }

    void works_on_the_connection_of_the_session()
    {
        VELD_DATA session;
        VELD_TABLE_DATA_VIEW_MODEL model(QStringLiteral("units"), &session);
        QString error;
        QVERIFY(!model.load(error));
        QCOMPARE(error,
                 QStringLiteral("Could not access the main query interface in order to load table 'units'"));

        QCOMPARE(m_db->engine().disconnect(), QString());
        QVERIFY2(session.connect_main(error, m_db->path(), 0), qPrintable(error));
        QVERIFY(model.load(error));
        QCOMPARE(model.rowCount(), 3);
        QVERIFY(model.setData(model.index(0, COST), QStringLiteral("31")));

        // The session's interface is asked at each call: once it is gone the
        // apply is refused and the edit stays pending.
        QVERIFY(session.disconnect_all(error));
        QSignalSpy status(&model, SIGNAL(statusUpdate(QString)));
        QVERIFY(!model.apply_changes());
        QCOMPARE(status.size(), 1);
        QCOMPARE(status.first().first().toString(),
                 QStringLiteral("Could not access the main query interface in order to apply table changes"));
        QVERIFY(model.is_edited_row(0));
    }

    void local_changes_since_the_check_in_are_coloured()
    {
        if (!GIT_SANDBOX::available())
            QSKIP("git is not installed");
        // A workspace whose units were checked in, then changed locally: one
        // record edited, one added.
        GIT_SANDBOX sandbox;
        QVERIFY(sandbox.create_empty_depot());
        {
            TEST_DATABASE_BUILDER builder(sandbox.seed() + QStringLiteral("/raw_data/db"));
            builder
                .table(QStringLiteral("units"), {TEST_FIELD::key(QStringLiteral("unit")),
                                                 TEST_FIELD::plain(QStringLiteral("cost"), KFT_INTEGER),
                                                 TEST_FIELD::plain(QStringLiteral("notes"), KFT_TEXT)})
                .record(QStringLiteral("units"), {{"unit", "archers"}, {"cost", 30}})
                .record(QStringLiteral("units"), {{"unit", "hastati"}, {"cost", 10}});
            QVERIFY2(builder.ok(), qPrintable(builder.error()));
        }
        QVERIFY(sandbox.publish_seed(QStringLiteral("Units")));
        const QString db = sandbox.clone(QStringLiteral("mine")) + QStringLiteral("/raw_data/db");
        KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
        QCOMPARE(engine.connect_without_merge(db, false), QString());
        {
            VELD_TABLE_DATA_VIEW_MODEL before(QStringLiteral("units"), &engine);
            QString error;
            QVERIFY(before.load(error));
            QVERIFY(before.setData(before.index(1, 1), QStringLiteral("11")));
            const int added = before.add_record();
            QVERIFY(before.setData(before.index(added, 0), QStringLiteral("velites")));
            QVERIFY(before.apply_changes());
        }

        VELD_TABLE_DATA_VIEW_MODEL model(QStringLiteral("units"), &engine);
        QString error;
        QVERIFY(model.load(error));
        QCOMPARE(model.rowCount(), 3);
        const auto colour = [&](int row, int column) {
            return model.data(model.index(row, column), Qt::DecorationRole);
        };
        QCOMPARE(colour(0, 1), QVariant());
        QCOMPARE(colour(1, 1).value<QColor>(), QColor(245, 224, 0));
        QCOMPARE(colour(1, 2), QVariant());
        QCOMPARE(colour(2, 0).value<QColor>(), QColor(98, 245, 0));
        QCOMPARE(colour(2, 2).value<QColor>(), QColor(98, 245, 0));
        // These are marks of the workspace, not pending work of the editor.
        QVERIFY(!model.has_pending_changes());
        QCOMPARE(model.headerData(1, Qt::Vertical).toString(), QStringLiteral("2"));
    }

private:
    std::unique_ptr<VELD_TABLE_DATA_VIEW_MODEL> open(const QString& table)
    {
        auto model = std::make_unique<VELD_TABLE_DATA_VIEW_MODEL>(table, &m_db->engine());
        auto questions = std::make_unique<SCRIPTED_QUESTIONS>();
        m_questions = questions.get();
        model->set_questions(std::move(questions));
        QString error;
        if (!model->load(error))
            qWarning("load failed: %s", qPrintable(error));
        m_status = std::make_unique<QSignalSpy>(model.get(), SIGNAL(statusUpdate(QString)));
        return model;
    }

    QModelIndex cell(int row, int column) const { return m_model->index(row, column); }
    QVariant edit_value(int row, int column) const { return m_model->data(cell(row, column), Qt::EditRole); }
    QStringList statuses() const
    {
        QStringList lines;
        for (const QList<QVariant>& signal : *m_status)
            lines.append(signal.first().toString());
        return lines;
    }

    std::unique_ptr<TABLE_MODEL_TEST_DATABASE> m_db;
    std::unique_ptr<VELD_TABLE_DATA_VIEW_MODEL> m_model;
    std::unique_ptr<QSignalSpy> m_status;
    SCRIPTED_QUESTIONS* m_questions = nullptr;
};

QTEST_MAIN(VELD_TABLE_DATA_VIEW_MODEL_TEST)
#include "veld_table_data_view_model_test.moc"
