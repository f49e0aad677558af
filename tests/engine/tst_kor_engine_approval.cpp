// Text approval on a table with a localised text field.

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "test_database_builder.h"

#include <QtTest>

class TST_KOR_ENGINE_APPROVAL : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void approving_keeps_the_text_and_flags();
    void a_changed_text_awaits_approval_again();
    void rejecting_goes_back_to_the_approved_text_or_marks_it();
    void ignoring_sets_the_ignored_state();
    void unapproving_by_content_commits_by_itself_data();
    void unapproving_by_content_commits_by_itself();
    void commits_report_progress_and_changed_tables();

private:
    KOR_XML_QUERY_INTERFACE& engine() { return m_db->query_interface(); }
    KOR_RECORD_DATA* record(const QString& key)
    {
        return TEST_DATABASE_BUILDER::find_record(engine(), "texts", key);
    }
    KOR_FIELD_DATA* text(const QString& key) { return record(key)->get_field_data("text"); }
    QString approve(const QString& key)
    {
        return engine().approve_text("texts", "text", key, record(key)->uuid(), false, true, false);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<TEST_DATABASE_BUILDER> m_db;
};

void TST_KOR_ENGINE_APPROVAL::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_db = std::make_unique<TEST_DATABASE_BUILDER>(m_folder->filePath("db"));
    m_db->table("texts", {TEST_FIELD::key("key"), TEST_FIELD::plain("text", KFT_TEXT).localised()})
        .record("texts", {{"key", "a"}, {"text", "Hail Caesar"}})
        .record("texts", {{"key", "b"}, {"text", "Carthago delenda est"}})
        .record("texts", {{"key", "c"}, {"text", "HAIL the legion"}});
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
}

void TST_KOR_ENGINE_APPROVAL::approving_keeps_the_text_and_flags()
{
    QCOMPARE(text("a")->approval_state(), int(KOR_FIELD_DATA::TAS_AWAITING_APPROVAL));
    QVERIFY(approve("a").isEmpty());
    m_db->reconnect();
    QCOMPARE(text("a")->approval_state(), int(KOR_FIELD_DATA::TAS_APPROVED));
    QCOMPARE(text("a")->last_approved_text(), "Hail Caesar");
    QVERIFY(text("a")->requires_recording());
    QVERIFY(!text("a")->requires_translation());
    QVERIFY(!engine().approve_text("texts", "text", "zz", QUuid(), false, false, false).isEmpty());
}

void TST_KOR_ENGINE_APPROVAL::a_changed_text_awaits_approval_again()
{
    QVERIFY(approve("a").isEmpty());
    auto copy = TEST_DATABASE_BUILDER::changed(record("a"), {{"text", "Ave Caesar"}});
    copy->get_field_data("text")->set_requires_translation(true);
    QVERIFY(engine().edit_record_data("texts", record("a"), copy.get()).isEmpty());
    const KOR_FIELD_DATA* field = text("a");
    QCOMPARE(field->approval_state(), int(KOR_FIELD_DATA::TAS_AWAITING_APPROVAL));
    QCOMPARE(field->last_approved_text(), "Hail Caesar");
    QVERIFY(field->requires_translation());
    QVERIFY(!field->last_edit_user().isEmpty());
}

void TST_KOR_ENGINE_APPROVAL::rejecting_goes_back_to_the_approved_text_or_marks_it()
{
    QVERIFY(approve("a").isEmpty());
    QVERIFY(
        TEST_DATABASE_BUILDER::edit_record(engine(), "texts", record("a"), {{"text", "Ave Caesar"}}).isEmpty());
    QString error;
    QVERIFY(engine().begin_transaction(error, false));
    QVERIFY(engine().reject_text("texts", "text", "a", record("a")->uuid()).isEmpty());
    QVERIFY(engine().reject_text("texts", "text", "b", record("b")->uuid()).isEmpty());
    QVERIFY(engine().end_transaction(error));
    m_db->reconnect();
    QCOMPARE(text("a")->value_text(), "Hail Caesar");
    QCOMPARE(text("a")->approval_state(), int(KOR_FIELD_DATA::TAS_APPROVED));
    // Without an approved text the words stay, marked for review.
    QVERIFY(text("b")->value_text().contains("text_rejected"));
    QVERIFY(text("b")->value_text().contains("Carthago delenda est"));
    QCOMPARE(text("b")->approval_state(), int(KOR_FIELD_DATA::TAS_APPROVED));
}

void TST_KOR_ENGINE_APPROVAL::ignoring_sets_the_ignored_state()
{
    QVERIFY(engine().ignore_text("texts", "text", "c", record("c")->uuid(), QString()).isEmpty());
    m_db->reconnect();
    QCOMPARE(text("c")->approval_state(), int(KOR_FIELD_DATA::TAS_IGNORED));
    QCOMPARE(text("c")->value_text(), "HAIL the legion");
}

void TST_KOR_ENGINE_APPROVAL::unapproving_by_content_commits_by_itself_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("case_sensitive");
    QTest::addColumn<QStringList>("unapproved");

    QTest::newRow("ignoring case") << "hail" << false << QStringList{"a", "c"};
    QTest::newRow("case sensitive") << "Hail" << true << QStringList{"a"};
    QTest::newRow("nothing matches") << "Gaul" << false << QStringList{};
}

void TST_KOR_ENGINE_APPROVAL::unapproving_by_content_commits_by_itself()
{
    QFETCH(QString, text);
    QFETCH(bool, case_sensitive);
    QFETCH(QStringList, unapproved);
    for (const char* key : {"a", "b", "c"})
        QVERIFY(approve(key).isEmpty());
    QVERIFY(engine().unapprove_text_that_contains(text, case_sensitive).isEmpty());
    QVERIFY(!engine().in_transaction());
    m_db->reconnect();
    for (const char* key : {"a", "b", "c"})
        QCOMPARE(this->text(key)->approval_state(), unapproved.contains(key)
                                                        ? int(KOR_FIELD_DATA::TAS_AWAITING_APPROVAL)
                                                        : int(KOR_FIELD_DATA::TAS_APPROVED));
    // An empty text would match everything: it is refused, as is a transaction left open.
    QVERIFY(!engine().unapprove_text_that_contains(QString(), false).isEmpty());
    QString error;
    QVERIFY(engine().begin_transaction(error, false));
    QVERIFY(!engine().unapprove_text_that_contains(text, false).isEmpty());
    engine().terminate_transaction();
}

void TST_KOR_ENGINE_APPROVAL::commits_report_progress_and_changed_tables()
{
    QSignalSpy progress(&engine(), SIGNAL(progressUpdate(QString)));
    QSignalSpy changed(&engine(), SIGNAL(tableChanged(QString)));
    QString error;
    QVERIFY(engine().begin_transaction(error, false));
    QVERIFY(approve("a").isEmpty());
    QVERIFY(approve("b").isEmpty());
    QCOMPARE(changed.count(), 0);
    QVERIFY(engine().end_transaction(error));
    QVERIFY(progress.count() >= 3);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().first().toString(), "texts");
}

QTEST_GUILESS_MAIN(TST_KOR_ENGINE_APPROVAL)
#include "tst_kor_engine_approval.moc"
