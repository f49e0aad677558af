#include "veld_cascade_decision.h"

#include <QtTest>

// The cascade question is asked once per edit, or once per mass operation
// when the user keeps the answer.
class VELD_CASCADE_DECISION_TEST : public QObject
{
    Q_OBJECT

private slots:
    void asks_every_edit_outside_a_mass_operation();
    void kept_answer_data();
    void kept_answer();
    void answer_not_kept_asks_again();
    void a_new_mass_operation_forgets_the_answer();
};

namespace
{
// Answers `update` with `apply_to_all` and counts the questions.
struct ASKER
{
    bool update = true;
    bool apply_to_all = false;
    int asked = 0;

    VELD_CASCADE_DECISION::ASK ask()
    {
        return [this](bool& keep) {
            ++asked;
            keep = apply_to_all;
            return update;
        };
    }
};
} // namespace

void VELD_CASCADE_DECISION_TEST::asks_every_edit_outside_a_mass_operation()
{
    VELD_CASCADE_DECISION decision;
    ASKER asker;
    asker.apply_to_all = true; // only kept during a mass operation
    for (int i = 0; i < 3; ++i)
        QVERIFY(decision.update_confirmed(asker.ask()));
    QCOMPARE(asker.asked, 3);
    QVERIFY(!decision.answer_known());
}

void VELD_CASCADE_DECISION_TEST::kept_answer_data()
{
    QTest::addColumn<bool>("update");
    QTest::newRow("update kept") << true;
    QTest::newRow("cancel kept") << false;
}

void VELD_CASCADE_DECISION_TEST::kept_answer()
{
    QFETCH(bool, update);
    VELD_CASCADE_DECISION decision;
    ASKER asker;
    asker.update = update;
    asker.apply_to_all = true;
    decision.begin_mass_operation();
    // Ten referenced keys pasted: one question.
    for (int i = 0; i < 10; ++i)
        QCOMPARE(decision.update_confirmed(asker.ask()), update);
    QCOMPARE(asker.asked, 1);
    QVERIFY(decision.answer_known());
    QCOMPARE(decision.answer(), update);

    decision.end_mass_operation();
    QVERIFY(!decision.is_mass_operation());
    QVERIFY(!decision.answer_known());
    QVERIFY(!decision.answer());
    decision.update_confirmed(asker.ask());
    QCOMPARE(asker.asked, 2);
}

void VELD_CASCADE_DECISION_TEST::answer_not_kept_asks_again()
{
    VELD_CASCADE_DECISION decision;
    ASKER asker;
    decision.begin_mass_operation();
    decision.update_confirmed(asker.ask());
    decision.update_confirmed(asker.ask());
    QCOMPARE(asker.asked, 2);
    // Keeping the answer on the third question stops the questions there.
    asker.apply_to_all = true;
    asker.update = false;
    QVERIFY(!decision.update_confirmed(asker.ask()));
    QVERIFY(!decision.update_confirmed(asker.ask()));
    QCOMPARE(asker.asked, 3);
}

void VELD_CASCADE_DECISION_TEST::a_new_mass_operation_forgets_the_answer()
{
    VELD_CASCADE_DECISION decision;
    ASKER asker;
    asker.apply_to_all = true;
    decision.begin_mass_operation();
    decision.update_confirmed(asker.ask());
    decision.begin_mass_operation();
    QVERIFY(!decision.answer_known());
    decision.update_confirmed(asker.ask());
    QCOMPARE(asker.asked, 2);
}

QTEST_APPLESS_MAIN(VELD_CASCADE_DECISION_TEST)
#include "veld_cascade_decision_test.moc"
