// A commit made to fail, or to stop dead, at every step of writing its files:
// the database reopens in the old or the new state, never a mix, and after a
// failure the interface's memory is the old state again.

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_file_commit.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "test_database_builder.h"
#include "test_helpers.h"

#include <QtTest>

namespace
{
const auto add = &TEST_DATABASE_BUILDER::add_record;

QStringList leftovers(const QString& folder)
{
    QStringList found;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
    {
        const QString name = QFileInfo(it.next()).fileName();
        if (name.endsWith(QLatin1String(".veld-new")) || name.endsWith(QLatin1String(".veld-old")) ||
            name.startsWith(QLatin1String(".veld_journal")))
            found.append(name);
    }
    return found;
}

// What the test transaction changes, as seen in memory.
QString state_of(KOR_XML_QUERY_INTERFACE& engine)
{
    QString error;
    const KOR_TABLE_DATA* units = engine.get_table_data(error, "units");
    const KOR_TABLE_DATA* factions = engine.get_table_data(error, "factions");
    if (!units || !factions)
        return QStringLiteral("unreadable: ") + error;
    const KOR_TABLE_SCHEMA* schema = engine.get_table_schema("units");
    return QString("men=%1 gauls=%2 scratch=%3 description=%4")
        .arg(units->record_by_key("hastati")->get_field_data("men")->value_text())
        .arg(factions->record_by_key("gauls") ? 1 : 0)
        .arg(engine.get_table_schema("scratch") ? 1 : 0)
        .arg(schema->field_schema_by_name("men")->description());
}

// The same, as a fresh interface reads it from disk.
QString state_on_disk(const QString& folder)
{
    KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
    const QString error = engine.connect_without_merge(folder, false);
    if (!error.isEmpty())
        return QStringLiteral("unopenable: ") + error;
    QFile commands(folder + QStringLiteral("/update_commands.txt"));
    commands.open(QIODevice::ReadOnly);
    return state_of(engine) + QStringLiteral(" commands=%1").arg(commands.readAll().count('\n'));
}

const QString OLD_STATE = "men=60 gauls=0 scratch=1 description=";
const QString NEW_STATE = "men=61 gauls=1 scratch=0 description=Soldiers";

// Edits two tables, the schema of one and removes a third: every kind of file
// step a commit has.
bool make_changes(KOR_XML_QUERY_INTERFACE& engine, QString& error)
{
    if (!engine.begin_transaction(error, true))
        return false;
    const KOR_TABLE_DATA* units = engine.get_table_data(error, "units");
    KOR_RECORD_DATA* hastati = units->record_by_key("hastati");
    KOR_RECORD_DATA edited(*hastati, nullptr, false);
    edited.get_field_data("men")->m_value = 61;
    error = engine.edit_record_data("units", hastati, &edited);
    if (error.isEmpty())
        error = add(engine, "factions", {{"key", "gauls"}});
    if (error.isEmpty())
        error = engine.set_field_description("units", "men", QUuid(), "Soldiers");
    if (error.isEmpty())
        error = engine.remove_table("scratch", "tester", "test");
    return error.isEmpty();
}
} // namespace

class TST_KOR_ENGINE_COMMIT : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void every_step_of_a_commit_can_fail_data();
    void every_step_of_a_commit_can_fail();

private:
    QTemporaryDir m_folder;
    QString m_template;
    int m_commands_before = 0;
};

void TST_KOR_ENGINE_COMMIT::initTestCase()
{
    QVERIFY(m_folder.isValid());
    m_template = m_folder.filePath("template");
    TEST_DATABASE_BUILDER db(m_template);
    db.table("factions", {TEST_FIELD::key("key")})
        .table("units", {TEST_FIELD::key("unit"), TEST_FIELD::plain("men", KFT_INTEGER)})
        .table("scratch", {TEST_FIELD::key("key")})
        .record("factions", {{"key", "rome"}})
        .record("units", {{"unit", "hastati"}, {"men", 60}})
        .record("scratch", {{"key", "x"}});
    QVERIFY2(db.ok(), qPrintable(db.error()));
    QCOMPARE(state_of(db.query_interface()), OLD_STATE);
    QFile commands(m_template + QStringLiteral("/update_commands.txt"));
    QVERIFY(commands.open(QIODevice::ReadOnly));
    m_commands_before = commands.readAll().count('\n');
}

void TST_KOR_ENGINE_COMMIT::cleanup()
{
    KOR_FILE_COMMIT::set_fault_hook(KOR_FILE_COMMIT::FAULT_HOOK());
}

void TST_KOR_ENGINE_COMMIT::every_step_of_a_commit_can_fail_data()
{
    QTest::addColumn<int>("fault");
    QTest::newRow("failure") << int(KOR_FILE_COMMIT::FAULT_FAIL);
    QTest::newRow("crash") << int(KOR_FILE_COMMIT::FAULT_CRASH);
}

void TST_KOR_ENGINE_COMMIT::every_step_of_a_commit_can_fail()
{
    QFETCH(int, fault);
    const QString old_on_disk = OLD_STATE + QStringLiteral(" commands=%1").arg(m_commands_before);
    const QString new_on_disk = NEW_STATE + QStringLiteral(" commands=%1").arg(m_commands_before + 2);
    QSet<int> steps_seen;
    for (int fault_at = 0;; ++fault_at)
    {
        const QString work = m_folder.filePath(QStringLiteral("work%1_%2").arg(fault).arg(fault_at));
        QVERIFY(ORBIN_TEST::copy_folder(m_template, work));
        int calls = 0;
        int faulted_step = -1;
        KOR_FILE_COMMIT::set_fault_hook([&](KOR_FILE_COMMIT::STEP step, const QString&) {
            if (calls++ != fault_at)
                return KOR_FILE_COMMIT::FAULT_NONE;
            faulted_step = step;
            return KOR_FILE_COMMIT::FAULT(fault);
        });
        bool committed = false;
        {
            KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
            QVERIFY(engine.connect_without_merge(work, false).isEmpty());
            QString error;
            const KOR_TABLE_DATA* units = engine.get_table_data(error, "units");
            KOR_RECORD_DATA* hastati = units->record_by_key("hastati");
            QVERIFY2(make_changes(engine, error), qPrintable(error));
            committed = engine.end_transaction(error);
            const QString tag =
                QStringLiteral("fault at call %1 (step %2): %3").arg(fault_at).arg(faulted_step).arg(error);
            if (faulted_step < 0)
            {
                // No step left to fault: the commit went through whole.
                QVERIFY2(committed, qPrintable(tag));
                QCOMPARE(state_of(engine), NEW_STATE);
            }
            else if (fault == KOR_FILE_COMMIT::FAULT_FAIL && !committed)
            {
                // Memory is the old state again, in the same objects.
                QCOMPARE(state_of(engine), OLD_STATE);
                QCOMPARE(engine.get_table_data(error, "units")->record_by_key("hastati"), hastati);
                QVERIFY2(!error.isEmpty(), qPrintable(tag));
                QVERIFY2(leftovers(work).isEmpty(), qPrintable(tag + leftovers(work).join(' ')));
            }
            else if (fault == KOR_FILE_COMMIT::FAULT_FAIL)
            {
                // Steps after the files are in place only clean up.
                QVERIFY2(faulted_step >= KOR_FILE_COMMIT::STEP_REMOVE_JOURNAL, qPrintable(tag));
                QCOMPARE(state_of(engine), NEW_STATE);
            }
        }
        KOR_FILE_COMMIT::set_fault_hook(KOR_FILE_COMMIT::FAULT_HOOK());
        const QString on_disk = state_on_disk(work);
        const QString tag = QStringLiteral("fault at call %1 (step %2)").arg(fault_at).arg(faulted_step);
        QVERIFY2(on_disk == old_on_disk || on_disk == new_on_disk,
                 qPrintable(tag + QStringLiteral(": ") + on_disk));
        if (fault == KOR_FILE_COMMIT::FAULT_FAIL)
            QCOMPARE(on_disk, committed ? new_on_disk : old_on_disk);
        else if (faulted_step > KOR_FILE_COMMIT::STEP_WRITE_JOURNAL)
            QVERIFY2(on_disk == new_on_disk,
                     qPrintable(tag + QStringLiteral(": ") + on_disk)); // the journal completes it
        QVERIFY2(leftovers(work).isEmpty(), qPrintable(tag + leftovers(work).join(' ')));
        if (faulted_step < 0)
            break;
        steps_seen.insert(faulted_step);
        QVERIFY(fault_at < 100);
    }
    QCOMPARE(steps_seen.size(), 7);
}

QTEST_GUILESS_MAIN(TST_KOR_ENGINE_COMMIT)
#include "tst_kor_engine_commit.moc"
