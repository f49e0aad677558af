#include "prompt.h"
#include "qt_prompt_handler.h"
#include "scripted_prompt.h"

#include <QtTest/QtTest>
#include <QtWidgets/QtWidgets>

namespace
{
// A dialog whose accept() refuses while its field is empty, as the program's
// own dialogs validate before they close.
class VALIDATING_DIALOG : public QDialog
{
public:
    VALIDATING_DIALOG()
    {
        setWindowTitle(QStringLiteral("Table Export"));
        m_name = new QLineEdit(this);
        m_name->setObjectName(QStringLiteral("name"));
    }
    void accept() override
    {
        if (!m_name->text().isEmpty())
            QDialog::accept();
    }
    int shown = 0;

protected:
    void showEvent(QShowEvent* event) override
    {
        ++shown;
        QDialog::showEvent(event);
    }

private:
    QLineEdit* m_name;
};

// Runs `act` on the first modal widget that appears, from the event loop the
// modal call is running.
void when_modal(std::function<void(QWidget*)> act)
{
    auto* timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, act] {
        if (QWidget* modal = QApplication::activeModalWidget())
        {
            timer->stop();
            timer->deleteLater();
            act(modal);
        }
    });
    timer->start();
}
} // namespace

class PROMPT_SEAM_TEST : public QObject
{
    Q_OBJECT

private slots:
    void message_boxes_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("buttons");
        QTest::addColumn<int>("default_button");
        QTest::addColumn<int>("pressed");
        QTest::newRow("question, default No")
            << int(prompt::KIND::QUESTION) << int(QMessageBox::Yes | QMessageBox::No) << int(QMessageBox::No)
            << int(QMessageBox::Yes);
        QTest::newRow("information") << int(prompt::KIND::INFORMATION) << int(QMessageBox::Ok)
                                     << int(QMessageBox::NoButton) << int(QMessageBox::Ok);
        QTest::newRow("warning with cancel")
            << int(prompt::KIND::WARNING) << int(QMessageBox::Ok | QMessageBox::Cancel)
            << int(QMessageBox::Ok) << int(QMessageBox::Cancel);
        QTest::newRow("critical") << int(prompt::KIND::CRITICAL) << int(QMessageBox::Ok)
                                  << int(QMessageBox::NoButton) << int(QMessageBox::Ok);
    }

    // Each message box reaches the handler with all it was asked with, and
    // the pressed button comes back.
    void message_boxes()
    {
        QFETCH(int, kind);
        QFETCH(int, buttons);
        QFETCH(int, default_button);
        QFETCH(int, pressed);
        const auto button_set = QMessageBox::StandardButtons(buttons);
        const auto default_one = QMessageBox::StandardButton(default_button);
        QWidget parent;
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::StandardButton(pressed));

        const QString title = QStringLiteral("Orbin");
        const QString text = QStringLiteral("There are unsaved table changes");
        using ASK =
            QMessageBox::StandardButton (*)(QWidget*, const QString&, const QString&,
                                            QMessageBox::StandardButtons, QMessageBox::StandardButton);
        const QMap<int, ASK> ask = {{int(prompt::KIND::QUESTION), prompt::question},
                                    {int(prompt::KIND::INFORMATION), prompt::information},
                                    {int(prompt::KIND::WARNING), prompt::warning},
                                    {int(prompt::KIND::CRITICAL), prompt::critical}};
        const QMessageBox::StandardButton answer =
            ask.value(kind)(&parent, title, text, button_set, default_one);
        QCOMPARE(int(answer), pressed);
        QCOMPARE(prompts.asked().size(), 1);
        const SCRIPTED_PROMPT::RECORD& record = prompts.asked().first();
        QCOMPARE(int(record.kind), kind);
        QCOMPARE(record.title, title);
        QCOMPARE(record.text, text);
        QCOMPARE(record.buttons, button_set);
        QCOMPARE(record.default_button, default_one);
    }

    // Accepted input comes back as typed; cancelled input comes back as the Qt
    // dialogs give it (empty text, the preset item, the preset number).
    void input_dialogs()
    {
        SCRIPTED_PROMPT prompts;
        prompts.text(QStringLiteral("alice")).cancel();
        prompts.text(QStringLiteral("line one\nline two"));
        prompts.text(QStringLiteral("typed item")).cancel();
        prompts.integer(7).cancel();
        prompts.real(2.5).cancel();

        bool ok = false;
        QCOMPARE(prompt::get_text(nullptr, "Username of person making the change",
                                  "User Name:", QLineEdit::Normal, "preset", &ok),
                 QStringLiteral("alice"));
        QVERIFY(ok);
        QCOMPARE(prompt::get_text(nullptr, "t", "l", QLineEdit::Normal, "preset", &ok), QString());
        QVERIFY(!ok);
        QCOMPARE(prompt::get_multi_line_text(nullptr, "t", "l", QString(), &ok),
                 QStringLiteral("line one\nline two"));
        QVERIFY(ok);

        const QStringList items{"English", "French", "German"};
        QCOMPARE(prompt::get_item(nullptr, "t", "Language:", items, 1, true, &ok),
                 QStringLiteral("typed item"));
        QVERIFY(ok);
        QCOMPARE(prompt::get_item(nullptr, "t", "Language:", items, 2, false, &ok), QStringLiteral("German"));
        QVERIFY(!ok);

        QCOMPARE(prompt::get_int(nullptr, "t", "Count:", 3, 0, 10, 1, &ok), 7);
        QVERIFY(ok);
        QCOMPARE(prompt::get_int(nullptr, "t", "Count:", 3, 0, 10, 1, &ok), 3);
        QVERIFY(!ok);
        QCOMPARE(prompt::get_double(nullptr, "t", "Scale:", 1.25, 0, 10, 2, &ok), 2.5);
        QVERIFY(ok);
        QCOMPARE(prompt::get_double(nullptr, "t", "Scale:", 1.25, 0, 10, 2, &ok), 1.25);
        QVERIFY(!ok);

        QCOMPARE(prompts.asked().size(), 9);
        QCOMPARE(prompts.asked()[0].title, QStringLiteral("Username of person making the change"));
        QCOMPARE(prompts.asked()[0].text, QStringLiteral("User Name:"));
        QCOMPARE(prompts.asked()[0].initial_text, QStringLiteral("preset"));
        QCOMPARE(prompts.asked()[3].items, items);
        QCOMPARE(int(prompts.asked()[5].kind), int(prompt::KIND::GET_INT));
    }

    void file_and_colour_dialogs()
    {
        SCRIPTED_PROMPT prompts;
        prompts.text("/data/db").text("/data/a.csv").texts({"/data/a.csv", "/data/b.csv"}).cancel();
        prompts.color(QColor(0x7B, 0x94, 0xB4)).cancel();

        QCOMPARE(prompt::get_existing_directory(nullptr, "Choose database", "/data"),
                 QStringLiteral("/data/db"));
        QCOMPARE(prompt::get_open_file_name(nullptr, "Import CSV", "/data", "CSV files (*.csv)"),
                 QStringLiteral("/data/a.csv"));
        QCOMPARE(prompt::get_open_file_names(nullptr, "Import", "/data"),
                 QStringList({"/data/a.csv", "/data/b.csv"}));
        QCOMPARE(prompt::get_save_file_name(nullptr, "Save", "/data"), QString());
        QCOMPARE(prompt::get_color(Qt::white, nullptr, "Colour"), QColor(0x7B, 0x94, 0xB4));
        QVERIFY(!prompt::get_color(Qt::white, nullptr, "Colour").isValid());

        QCOMPARE(prompts.asked()[1].title, QStringLiteral("Import CSV"));
        QCOMPARE(prompts.asked()[1].initial_text, QStringLiteral("/data"));
        QCOMPARE(prompts.asked()[1].filter, QStringLiteral("CSV files (*.csv)"));
    }

    // exec() of a dialog is scripted without showing it: the fill runs, then
    // the dialog's own accept() with its validation decides the result.
    void exec_dialog()
    {
        SCRIPTED_PROMPT prompts;
        prompts.accept_dialog(
            [](QDialog& dialog) { dialog.findChild<QLineEdit*>("name")->setText("units"); });
        prompts.accept_dialog();
        prompts.reject_dialog();
        prompts.dialog([](QDialog&) { return 42; });
        prompts.cancel();

        VALIDATING_DIALOG dialog;
        QSignalSpy accepted(&dialog, &QDialog::accepted);
        QSignalSpy rejected(&dialog, &QDialog::rejected);
        QCOMPARE(prompt::exec(dialog), int(QDialog::Accepted));
        QCOMPARE(accepted.count(), 1);

        VALIDATING_DIALOG empty;
        QCOMPARE(prompt::exec(empty), int(QDialog::Rejected));

        QCOMPARE(prompt::exec(dialog), int(QDialog::Rejected));
        QCOMPARE(rejected.count(), 1);
        QCOMPARE(prompt::exec(dialog), 42);
        QCOMPARE(prompt::exec(dialog), int(QDialog::Rejected));

        QCOMPARE(dialog.shown + empty.shown, 0);
        QCOMPARE(prompts.titles(), QVector<QString>(5, QStringLiteral("Table Export")).toList());
        QCOMPARE(prompts.asked()[0].class_name, QStringLiteral("QDialog"));
    }

    // A scripted menu choice triggers the action, as a click would.
    void exec_menu()
    {
        QMenu menu(QStringLiteral("Context"));
        QAction* copy = menu.addAction(QStringLiteral("&Copy"));
        menu.addSeparator();
        QAction* paste = menu.addAction(QStringLiteral("Paste"));
        paste->setEnabled(false);
        QSignalSpy copied(copy, &QAction::triggered);
        QSignalSpy pasted(paste, &QAction::triggered);

        SCRIPTED_PROMPT prompts(SCRIPTED_PROMPT::ON_ERROR::RECORD_ONLY);
        prompts.menu_action(QStringLiteral("Copy")).menu_action(QStringLiteral("Paste"));
        QCOMPARE(prompt::exec(menu, QPoint(10, 10)), copy);
        QCOMPARE(copied.count(), 1);
        QCOMPARE(prompt::exec(menu, QPoint(10, 10)), static_cast<QAction*>(nullptr));
        QCOMPARE(pasted.count(), 0);
        QCOMPARE(prompts.errors().size(), 1);
        QVERIFY(prompts.errors().first().contains("disabled"));
        QCOMPARE(prompts.asked().first().items, QStringList({"Copy", "Paste"}));
    }

    // Unscripted and mismatched prompts are answered as a cancel, recorded,
    // and never block; the queue goes on in order after a mismatch.
    void scripting_errors()
    {
        SCRIPTED_PROMPT prompts(SCRIPTED_PROMPT::ON_ERROR::RECORD_ONLY);
        prompts.text(QStringLiteral("meant for an input")).button(QMessageBox::Yes);

        QCOMPARE(prompt::question(nullptr, "Orbin", "Close?"), QMessageBox::NoButton);
        QCOMPARE(prompts.pending(), 1);
        QCOMPARE(prompt::question(nullptr, "Orbin", "Close?"), QMessageBox::Yes);
        QCOMPARE(prompts.pending(), 0);
        VALIDATING_DIALOG dialog;
        QCOMPARE(prompt::exec(dialog), int(QDialog::Rejected));
        QCOMPARE(dialog.shown, 0);
        bool ok = true;
        QCOMPARE(prompt::get_text(nullptr, "Name", "Name:", QLineEdit::Normal, "x", &ok), QString());
        QVERIFY(!ok);

        QCOMPARE(prompts.asked().size(), 4);
        QCOMPARE(prompts.errors().size(), 3);
        QVERIFY(prompts.errors()[0].contains("question \"Orbin\": \"Close?\""));
        QVERIFY(prompts.errors()[0].contains("text \"meant for an input\""));
        QVERIFY(prompts.errors()[1].contains("unscripted exec_dialog"));
        QVERIFY(prompts.errors()[2].contains("unscripted get_text"));
    }

    // In FAIL_TEST mode an unscripted prompt and an unused answer each fail
    // the running test, loudly.
    void scripting_errors_fail_the_test()
    {
        QProcess probe;
        probe.setProcessChannelMode(QProcess::MergedChannels);
        probe.start(QStringLiteral(SCRIPTED_PROMPT_PROBE), QStringList());
        QVERIFY(probe.waitForFinished(30000));
        const QString output = QString::fromUtf8(probe.readAll());
        QVERIFY2(probe.exitCode() == 2, qPrintable(output)); // two failed test functions
        QVERIFY2(output.contains(
                     "FAIL!  : SCRIPTED_PROMPT_PROBE::unscripted_question() SCRIPTED_PROMPT: unscripted "
                     "question \"Orbin\""),
                 qPrintable(output));
        QVERIFY2(output.contains(
                     "FAIL!  : SCRIPTED_PROMPT_PROBE::unused_answer() SCRIPTED_PROMPT: scripted answers "
                     "never asked for: text \"never asked\""),
                 qPrintable(output));
    }

    // Handlers nest and unwind; with none installed the Qt one is in charge.
    void handler_installation()
    {
        QVERIFY(dynamic_cast<prompt::QT_PROMPT_HANDLER*>(&prompt::handler()));
        {
            SCRIPTED_PROMPT outer;
            outer.button(QMessageBox::No);
            {
                SCRIPTED_PROMPT inner;
                QCOMPARE(&prompt::handler(), static_cast<prompt::HANDLER*>(&inner));
                inner.button(QMessageBox::Yes);
                QCOMPARE(prompt::question(nullptr, "Orbin", "inner?"), QMessageBox::Yes);
            }
            QCOMPARE(&prompt::handler(), static_cast<prompt::HANDLER*>(&outer));
            QCOMPARE(prompt::question(nullptr, "Orbin", "outer?"), QMessageBox::No);
        }
        QVERIFY(dynamic_cast<prompt::QT_PROMPT_HANDLER*>(&prompt::handler()));

        SCRIPTED_PROMPT replacement;
        prompt::HANDLER* previous = prompt::set_handler(nullptr);
        QCOMPARE(previous, static_cast<prompt::HANDLER*>(&replacement));
        QVERIFY(dynamic_cast<prompt::QT_PROMPT_HANDLER*>(&prompt::handler()));
        prompt::set_handler(previous);
    }

    // The default handler shows the real dialogs with what it was given.
    void qt_handler_shows_real_dialogs()
    {
        QMessageBox::StandardButton default_seen = QMessageBox::NoButton;
        when_modal([&default_seen](QWidget* modal) {
            auto* box = qobject_cast<QMessageBox*>(modal);
            QVERIFY(box);
            default_seen = box->standardButton(box->defaultButton());
            box->button(QMessageBox::Yes)->click();
        });
        QCOMPARE(
            prompt::question(nullptr, "Orbin", "Sure?", QMessageBox::Yes | QMessageBox::No, QMessageBox::No),
            QMessageBox::Yes);
        QCOMPARE(default_seen, QMessageBox::No);

        QString label_seen;
        when_modal([&label_seen](QWidget* modal) {
            auto* input = qobject_cast<QInputDialog*>(modal);
            QVERIFY(input);
            label_seen = input->labelText();
            input->setTextValue(QStringLiteral("typed"));
            input->accept();
        });
        bool ok = false;
        QCOMPARE(prompt::get_text(nullptr, "Name", "User Name:", QLineEdit::Normal, QString(), &ok),
                 QStringLiteral("typed"));
        QVERIFY(ok);
        QCOMPARE(label_seen, QStringLiteral("User Name:"));

        VALIDATING_DIALOG dialog;
        when_modal([](QWidget* modal) {
            modal->findChild<QLineEdit*>("name")->setText("x");
            static_cast<QDialog*>(modal)->accept();
        });
        QCOMPARE(prompt::exec(dialog), int(QDialog::Accepted));
        QCOMPARE(dialog.shown, 1);
    }
};

QTEST_MAIN(PROMPT_SEAM_TEST)
#include "prompt_seam_test.moc"
