#include "cascade_update_dialog.h"
#include "scripted_prompt.h"
#include "veld_table_model_prompts.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QtTest>

namespace
{
// Stands in for the table editor: records where it was asked to go.
class EDITOR : public QWidget
{
    Q_OBJECT

public:
    QStringList visits;

public slots:
    void focus_on_row_in_table(const QString& target_table, const QString& key_text, bool read_only)
    {
        visits.append(target_table + QLatin1Char('/') + key_text + (read_only ? " read-only" : ""));
    }
};

const QMap<QString, QSet<QString>> references{{"units", {"velites", "hastati"}}, {"armies", {"first"}}};

template <typename T> T* child(QWidget& widget, const char* name)
{
    return widget.findChild<T*>(QLatin1String(name));
}
} // namespace

class CASCADE_UPDATE_DIALOG_TEST : public QObject
{
    Q_OBJECT

private slots:
    void lists_references_by_table_and_key()
    {
        CASCADE_UPDATE_DIALOG dialog(nullptr, references, nullptr, false);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Cascade Update?"));
        auto* tree = child<QTreeWidget>(dialog, "referencesTree");
        QCOMPARE(tree->topLevelItemCount(), 2);
        QCOMPARE(tree->topLevelItem(0)->text(0), QStringLiteral("armies"));
        QCOMPARE(tree->topLevelItem(1)->text(0), QStringLiteral("units"));
        QCOMPARE(tree->topLevelItem(1)->child(0)->text(0), QStringLiteral("hastati"));
        QCOMPARE(tree->topLevelItem(1)->child(1)->text(0), QStringLiteral("velites"));
        QCOMPARE(dialog.reference_count(), 3);
        QCOMPARE(child<QLabel>(dialog, "referenceCountLabel")->text(), QStringLiteral("3"));
        QCOMPARE(child<QLabel>(dialog, "questionLabel")->text(),
                 QStringLiteral(
                     "This field is referenced by the following tables and records, update these at the "
                     "same time?"));
    }

    void decision_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<bool>("apply_to_all");
        QTest::addColumn<bool>("update");
        QTest::addColumn<int>("result");

        QTest::newRow("update") << "updateDependentsButton" << false << true << int(QDialog::Accepted);
        QTest::newRow("update for all") << "updateDependentsButton" << true << true << int(QDialog::Accepted);
        QTest::newRow("cancel") << "cancelButton" << false << false << int(QDialog::Accepted);
        QTest::newRow("cancel for all") << "cancelButton" << true << false << int(QDialog::Accepted);
        // Closing by the window frame counts as a cancel.
        QTest::newRow("window closed") << "" << false << false << int(QDialog::Rejected);
    }

    void decision()
    {
        QFETCH(QString, button);
        QFETCH(bool, apply_to_all);
        QFETCH(bool, update);
        QFETCH(int, result);

        CASCADE_UPDATE_DIALOG dialog(nullptr, references, nullptr, false);
        QVERIFY(child<QPushButton>(dialog, "okButton")->isHidden());
        QVERIFY(!child<QPushButton>(dialog, "cancelButton")->isHidden());
        QVERIFY(!child<QCheckBox>(dialog, "applyToAllCheckBox")->isHidden());
        if (apply_to_all)
            child<QCheckBox>(dialog, "applyToAllCheckBox")->click();
        if (button.isEmpty())
            dialog.reject();
        else
            child<QPushButton>(dialog, button.toLatin1().constData())->click();
        QCOMPARE(dialog.update_chosen(), update);
        QCOMPARE(dialog.apply_to_all(), apply_to_all);
        QCOMPARE(dialog.result(), result);
    }

    void view_only_mode_only_lists()
    {
        CASCADE_UPDATE_DIALOG dialog(nullptr, references, nullptr, true);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("References"));
        for (const char* hidden :
             {"questionLabel", "applyToAllCheckBox", "updateDependentsButton", "cancelButton"})
            QVERIFY2(dialog.findChild<QWidget*>(QLatin1String(hidden))->isHidden(), hidden);
        QVERIFY(!child<QPushButton>(dialog, "okButton")->isHidden());
        child<QPushButton>(dialog, "okButton")->click();
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QVERIFY(!dialog.update_chosen());
    }

    void double_click_shows_the_record()
    {
        EDITOR editor;
        CASCADE_UPDATE_DIALOG dialog(nullptr, references, &editor, true);
        auto* tree = child<QTreeWidget>(dialog, "referencesTree");
        const QModelIndex units = tree->model()->index(1, 0);
        dialog.open_table_with_item(tree->model()->index(1, 0, units));
        dialog.open_table_with_item(units); // a table, not a record
        dialog.open_table_with_item(tree->model()->index(0, 0, tree->model()->index(0, 0)));
        QCOMPARE(editor.visits, (QStringList{"units/velites", "armies/first"}));
    }

    void prompts_go_through_the_prompt_seam()
    {
        EDITOR editor;
        VELD_TABLE_MODEL_PROMPTS prompts(nullptr, &editor);
        SCRIPTED_PROMPT scripted;
        scripted.button(QMessageBox::Ok).dialog([](QDialog& dialog) {
            child<QCheckBox>(dialog, "applyToAllCheckBox")->click();
            child<QPushButton>(dialog, "updateDependentsButton")->click();
            return dialog.result();
        });
        prompts.warn_data_invalid(QStringLiteral("A primary key field may not contain a space"));
        bool apply_to_all = false;
        QVERIFY(prompts.ask_cascade_update(references, apply_to_all));
        QVERIFY(apply_to_all);

        QCOMPARE(scripted.asked().size(), 2);
        QCOMPARE(scripted.asked()[0].kind, prompt::KIND::WARNING);
        QCOMPARE(scripted.asked()[0].title, QStringLiteral("Data Invalid"));
        QCOMPARE(scripted.asked()[0].text, QStringLiteral("A primary key field may not contain a space"));
        QCOMPARE(scripted.asked()[1].kind, prompt::KIND::EXEC_DIALOG);
        QCOMPARE(scripted.asked()[1].title, QStringLiteral("Cascade Update?"));
    }
};

QTEST_MAIN(CASCADE_UPDATE_DIALOG_TEST)
#include "cascade_update_dialog_test.moc"
