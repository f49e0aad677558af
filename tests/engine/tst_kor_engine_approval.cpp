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
        QString error;
        return engine().get_table_data(error, QStringLiteral("texts"))->record_by_key(key);
    }
    KOR_FIELD_DATA* text(const QString& key) { return record(key)->get_field_data(QStringLiteral("text")); }
    QString approve(const QString& key)
    {
        return engine().approve_text(QStringLiteral("texts"), QStringLiteral("text"), key,
                                     record(key)->uuid(), false, true, false);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<TEST_DATABASE_BUILDER> m_db;
};

void TST_KOR_ENGINE_APPROVAL::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_db = std::make_unique<TEST_DATABASE_BUILDER>(m_folder->filePath(QStringLiteral("db")));
    m_db->table(QStringLiteral("texts"), {TEST_FIELD::key(QStringLiteral("key")),
                                          TEST_FIELD::plain(QStringLiteral("text"), KFT_TEXT).localised()})
        .record(QStringLiteral("texts"), {{"key", "a"}, {"text", "Hail Caesar"}})
        .record(QStringLiteral("texts"), {{"key", "b"}, {"text", "Carthago delenda est"}})
        .record(QStringLiteral("texts"), {{"key", "c"}, {"text", "HAIL the legion"}});
    QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
}

void TST_KOR_ENGINE_APPROVAL::approving_keeps_the_text_and_flags()
{
    QCOMPARE(text(QStringLiteral("a"))->approval_state(), int(KOR_FIELD_DATA::TAS_AWAITING_APPROVAL));
    QVERIFY(approve(QStringLiteral("a")).isEmpty());
    m_db->reconnect();
    QCOMPARE(text(QStringLiteral("a"))->approval_state(), int(KOR_FIELD_DATA::TAS_APPROVED));
    QCOMPARE(text(QStringLiteral("a"))->last_approved_text(), QStringLiteral("Hail Caesar"));
    QVERIFY(text(QStringLiteral("a"))->requires_recording());
    QVERIFY(!text(QStringLiteral("a"))->requires_translation());
    QVERIFY(!engine()
                 .approve_text(QStringLiteral("texts"), QStringLiteral("text"), QStringLiteral("zz"), QUuid(),
                               false, false, false)
                 .isEmpty());
}

void TST_KOR_ENGINE_APPROVAL::a_changed_text_awaits_approval_again()
{
    QVERIFY(approve(QStringLiteral("a")).isEmpty());
    KOR_RECORD_DATA copy(*record(QStringLiteral("a")), nullptr, false);
    copy.get_field_data(QStringLiteral("text"))->m_value = QStringLiteral("Ave Caesar");
    copy.get_field_data(QStringLiteral("text"))->set_requires_translation(true);
    QVERIFY(engine().edit_record_data(QStringLiteral("texts"), record(QStringLiteral("a")), &copy).isEmpty());
    const KOR_FIELD_DATA* field = text(QStringLiteral("a"));
    QCOMPARE(field->approval_state(), int(KOR_FIELD_DATA::TAS_AWAITING_APPROVAL));
    QCOMPARE(field->last_approved_text(), QStringLiteral("Hail Caesar"));
    QVERIFY(field->requires_translation());
    QVERIFY(!field->last_edit_user().isEmpty());
}

void TST_KOR_ENGINE_APPROVAL::rejecting_goes_back_to_the_approved_text_or_marks_it()
{
    QVERIFY(approve(QStringLiteral("a")).isEmpty());
    KOR_RECORD_DATA copy(*record(QStringLiteral("a")), nullptr, false);
    copy.get_field_data(QStringLiteral("text"))->m_value = QStringLiteral("Ave Caesar");
    QVERIFY(engine().edit_record_data(QStringLiteral("texts"), record(QStringLiteral("a")), &copy).isEmpty());
    QString error;
    QVERIFY(engine().begin_transaction(error, false));
    QVERIFY(engine()
                .reject_text(QStringLiteral("texts"), QStringLiteral("text"), QStringLiteral("a"),
                             record(QStringLiteral("a"))->uuid())
                .isEmpty());
    QVERIFY(engine()
                .reject_text(QStringLiteral("texts"), QStringLiteral("text"), QStringLiteral("b"),
                             record(QStringLiteral("b"))->uuid())
                .isEmpty());
    QVERIFY(engine().end_transaction(error));
    m_db->reconnect();
    QCOMPARE(text(QStringLiteral("a"))->value_text(), QStringLiteral("Hail Caesar"));
    QCOMPARE(text(QStringLiteral("a"))->approval_state(), int(KOR_FIELD_DATA::TAS_APPROVED));
    // Without an approved text the words stay, marked for review.
    QVERIFY(text(QStringLiteral("b"))->value_text().contains(QStringLiteral("text_rejected")));
    QVERIFY(text(QStringLiteral("b"))->value_text().contains(QStringLiteral("Carthago delenda est")));
    QCOMPARE(text(QStringLiteral("b"))->approval_state(), int(KOR_FIELD_DATA::TAS_APPROVED));
}

void TST_KOR_ENGINE_APPROVAL::ignoring_sets_the_ignored_state()
{
    QVERIFY(engine()
                .ignore_text(QStringLiteral("texts"), QStringLiteral("text"), QStringLiteral("c"),
                             record(QStringLiteral("c"))->uuid(), QString())
                .isEmpty());
    m_db->reconnect();
    QCOMPARE(text(QStringLiteral("c"))->approval_state(), int(KOR_FIELD_DATA::TAS_IGNORED));
    QCOMPARE(text(QStringLiteral("c"))->value_text(), QStringLiteral("HAIL the legion"));
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
    for (const QString& key : {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")})
        QVERIFY(approve(key).isEmpty());
    QVERIFY(engine().unapprove_text_that_contains(text, case_sensitive).isEmpty());
    QVERIFY(!engine().in_transaction());
    m_db->reconnect();
    for (const QString& key : {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")})
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
    QVERIFY(approve(QStringLiteral("a")).isEmpty());
    QVERIFY(approve(QStringLiteral("b")).isEmpty());
    QCOMPARE(changed.count(), 0);
    QVERIFY(engine().end_transaction(error));
    QVERIFY(progress.count() >= 3);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().first().toString(), QStringLiteral("texts"));
}

QTEST_GUILESS_MAIN(TST_KOR_ENGINE_APPROVAL)
#include "tst_kor_engine_approval.moc"
