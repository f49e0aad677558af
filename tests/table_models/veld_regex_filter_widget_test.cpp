#include "veld_regex_filter_widget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QtTest>

namespace
{
const QStringList columns{"unit", "faction", "cost"};

template <typename T> T* child(QWidget& widget, const char* name)
{
    T* found = widget.findChild<T*>(QLatin1String(name));
    if (!found)
        qWarning("no child %s", name);
    return found;
}
} // namespace

class VELD_REGEX_FILTER_WIDGET_TEST : public QObject
{
    Q_OBJECT

private slots:
    void tests_text_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<int>("syntax");
        QTest::addColumn<bool>("case_sensitive");
        QTest::addColumn<bool>("inverted");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("passes");

        QTest::newRow("found anywhere, case ignored") << "HAST" << 0 << false << false << "hastati" << true;
        QTest::newRow("case sensitive") << "HAST" << 0 << true << false << "hastati" << false;
        QTest::newRow("not") << "ast" << 0 << false << true << "hastati" << false;
        QTest::newRow("empty pattern matches all") << "" << 0 << false << false << "anything" << true;
        QTest::newRow("empty pattern with not rejects all") << "" << 0 << false << true << "" << false;
        QTest::newRow("invalid expression matches nothing") << "(ab" << 0 << false << false << "(ab" << false;
        QTest::newRow("wildcard") << "h*i" << 1 << false << false << "the hastati" << true;
        QTest::newRow("fixed string") << "a.b" << 2 << false << false << "axb" << false;
        QTest::newRow("fixed string found") << "a.b" << 2 << false << false << "1a.b2" << true;
    }

    void tests_text()
    {
        QFETCH(QString, pattern);
        QFETCH(int, syntax);
        QFETCH(bool, case_sensitive);
        QFETCH(bool, inverted);
        QFETCH(QString, text);
        QFETCH(bool, passes);

        VELD_RegexFilterWidget row(columns);
        child<QComboBox>(row, "syntaxComboBox")->setCurrentIndex(syntax);
        child<QCheckBox>(row, "caseSensitiveCheckBox")->setChecked(case_sensitive);
        child<QCheckBox>(row, "notCheckBox")->setChecked(inverted);
        child<QLineEdit>(row, "patternLineEdit")->setText(pattern);
        QCOMPARE(row.test(text), passes);
        // The same row tests many texts in turn.
        QCOMPARE(row.test(text), passes);
    }

    void disabled_row_passes_everything()
    {
        VELD_RegexFilterWidget row(columns);
        child<QLineEdit>(row, "patternLineEdit")->setText(QStringLiteral("^x$"));
        QVERIFY(!row.test(QStringLiteral("y")));
        child<QCheckBox>(row, "enabledCheckBox")->setChecked(false);
        QVERIFY(!row.filter_enabled());
        QVERIFY(row.test(QStringLiteral("y")));
    }

    void brackets_of_one_kind_at_most_five()
    {
        VELD_RegexFilterWidget row(columns);
        auto* left_label = child<QLabel>(row, "leftBracketLabel");
        auto* right_label = child<QLabel>(row, "rightBracketLabel");
        for (int i = 0; i < 7; ++i)
            child<QToolButton>(row, "addLeftBracketButton")->click();
        QCOMPARE(row.left_bracket_count(), 5);
        QCOMPARE(left_label->text(), QStringLiteral("((((("));
        // No right bracket while there are left ones.
        child<QToolButton>(row, "addRightBracketButton")->click();
        QCOMPARE(row.right_bracket_count(), 0);
        for (int i = 0; i < 6; ++i)
            child<QToolButton>(row, "removeLeftBracketButton")->click();
        QCOMPARE(row.left_bracket_count(), 0);
        QCOMPARE(left_label->text(), QString());
        child<QToolButton>(row, "addRightBracketButton")->click();
        child<QToolButton>(row, "addRightBracketButton")->click();
        QCOMPARE(right_label->text(), QStringLiteral("))"));
        child<QToolButton>(row, "addLeftBracketButton")->click();
        QCOMPARE(row.left_bracket_count(), 0);
        child<QToolButton>(row, "removeRightBracketButton")->click();
        QCOMPARE(row.right_bracket_count(), 1);
    }

    void changes_signal_only_while_enabled_data()
    {
        QTest::addColumn<QString>("control");
        QTest::newRow("pattern") << "patternLineEdit";
        QTest::newRow("syntax") << "syntaxComboBox";
        QTest::newRow("case") << "caseSensitiveCheckBox";
        QTest::newRow("not") << "notCheckBox";
        QTest::newRow("or") << "orCheckBox";
        QTest::newRow("column") << "columnComboBox";
        QTest::newRow("left bracket") << "addLeftBracketButton";
        QTest::newRow("right bracket") << "addRightBracketButton";
    }

    void changes_signal_only_while_enabled()
    {
        QFETCH(QString, control);
        VELD_RegexFilterWidget row(columns);
        QSignalSpy changed(&row, SIGNAL(filterChanged()));
        const auto change = [&] {
            QWidget* widget = row.findChild<QWidget*>(control);
            if (auto* line = qobject_cast<QLineEdit*>(widget))
                line->setText(line->text() + QLatin1Char('x'));
            else if (auto* combo = qobject_cast<QComboBox*>(widget))
                combo->setCurrentIndex((combo->currentIndex() + 1) % combo->count());
            else if (auto* box = qobject_cast<QCheckBox*>(widget))
                box->toggle();
            else if (auto* button = qobject_cast<QAbstractButton*>(widget))
                button->click();
        };
        change();
        QCOMPARE(changed.size(), 1);
        child<QCheckBox>(row, "enabledCheckBox")->setChecked(false); // always signals
        QCOMPARE(changed.size(), 2);
        change();
        QCOMPARE(changed.size(), 2);
        child<QCheckBox>(row, "enabledCheckBox")->setChecked(true);
        QCOMPARE(changed.size(), 3);
    }

    void delete_asks_to_be_removed()
    {
        VELD_RegexFilterWidget row(columns);
        QSignalSpy changed(&row, SIGNAL(filterChanged()));
        QSignalSpy remove(&row, SIGNAL(removeRequest(VELD_RegexFilterWidget*)));
        child<QPushButton>(row, "deleteButton")->click();
        QCOMPARE(changed.size(), 1);
        QCOMPARE(remove.size(), 1);
        QCOMPARE(remove.first().first().value<VELD_RegexFilterWidget*>(), &row);

        child<QCheckBox>(row, "enabledCheckBox")->setChecked(false);
        changed.clear();
        child<QPushButton>(row, "deleteButton")->click();
        QCOMPARE(changed.size(), 0);
        QCOMPARE(remove.size(), 2);
    }

    void expression_text()
    {
        VELD_RegexFilterWidget row(columns);
        child<QLineEdit>(row, "patternLineEdit")->setText(QStringLiteral("^h"));
        child<QToolButton>(row, "addLeftBracketButton")->click();
        child<QToolButton>(row, "addLeftBracketButton")->click();
        child<QCheckBox>(row, "notCheckBox")->setChecked(true);
        QCOMPARE(row.expression_text(), QStringLiteral("((NOT ^h"));
        row.set_bracket_and_join_controls_visible(false);
        QVERIFY(child<QToolButton>(row, "addLeftBracketButton")->isHidden());
        QVERIFY(child<QCheckBox>(row, "orCheckBox")->isHidden());
        QVERIFY(!child<QCheckBox>(row, "notCheckBox")->isHidden());
    }
};

QTEST_MAIN(VELD_REGEX_FILTER_WIDGET_TEST)
#include "veld_regex_filter_widget_test.moc"
