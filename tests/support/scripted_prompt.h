#pragma once

#include "prompt.h"

#include <QtCore/QVector>

#include <deque>
#include <functional>

// A prompt handler for tests: installed for its own lifetime (RAII), it
// answers every prompt of the program from a queue of scripted answers, in
// order, records every prompt for assertions, and never blocks.
//
//     SCRIPTED_PROMPT prompts;
//     prompts.button(QMessageBox::Yes).text("alice").accept_dialog([](QDialog& d) { ...fill fields... });
//     run_the_flow();
//     QCOMPARE(prompts.asked().size(), 3);
//     QCOMPARE(prompts.asked()[0].title, QString("Orbin"));
//
// A prompt with no scripted answer left, or whose kind does not fit the next
// answer, is an error: it is recorded in errors(), fails the running test at
// once (unless RECORD_ONLY), and is answered as a cancel (NoButton, empty,
// QDialog::Rejected, no action). Answers left unused when the handler goes
// out of scope fail the test too, unless it has already failed.
class SCRIPTED_PROMPT : public prompt::HANDLER
{
public:
    enum class ON_ERROR
    {
        FAIL_TEST,
        RECORD_ONLY
    };

    // One prompt as it was asked.
    struct RECORD
    {
        prompt::KIND kind = prompt::KIND::QUESTION;
        QString title; // window title or caption; for exec(dialog) the dialog's title
        QString text;  // message text or input label
        QMessageBox::StandardButtons buttons;
        QMessageBox::StandardButton default_button = QMessageBox::NoButton;
        QString initial_text; // preset text or starting directory
        QStringList items;    // get_item; for exec(menu) the menu's action texts
        QString filter;       // file dialogs
        QString class_name;   // exec(dialog): the dialog's class
    };

    using SCRIPT = std::function<prompt::ANSWER(const prompt::REQUEST&)>;
    using DIALOG_FILL = std::function<void(QDialog&)>;

    explicit SCRIPTED_PROMPT(ON_ERROR on_error = ON_ERROR::FAIL_TEST);
    ~SCRIPTED_PROMPT() override;
    SCRIPTED_PROMPT(const SCRIPTED_PROMPT&) = delete;
    SCRIPTED_PROMPT& operator=(const SCRIPTED_PROMPT&) = delete;

    // Queue answers. Each fits the kinds named; they chain.
    // question, information, warning, critical:
    SCRIPTED_PROMPT& button(QMessageBox::StandardButton pressed);
    // get_text, get_multi_line_text, get_item, get_existing_directory,
    // get_open_file_name, get_save_file_name (accepted with this text):
    SCRIPTED_PROMPT& text(const QString& value);
    // get_open_file_names:
    SCRIPTED_PROMPT& texts(const QStringList& values);
    // get_int:
    SCRIPTED_PROMPT& integer(int value);
    // get_double:
    SCRIPTED_PROMPT& real(double value);
    // get_color:
    SCRIPTED_PROMPT& color(const QColor& value);
    // Any input, file, colour dialog, exec(dialog) or exec(menu): the user
    // cancels. Not for message boxes: script the button instead.
    SCRIPTED_PROMPT& cancel();
    // exec(dialog): `fill` sets the dialog's fields, then the dialog's own
    // accept() (or reject()) runs, validation included, and its result() is
    // the answer. The dialog is never shown.
    SCRIPTED_PROMPT& accept_dialog(const DIALOG_FILL& fill = DIALOG_FILL());
    SCRIPTED_PROMPT& reject_dialog(const DIALOG_FILL& fill = DIALOG_FILL());
    // exec(dialog): `script` does what it likes and answers the result code.
    SCRIPTED_PROMPT& dialog(const std::function<int(QDialog&)>& script);
    // exec(menu): the action whose text, without '&', is `action_text` is
    // triggered and answered, as a click on it would.
    SCRIPTED_PROMPT& menu_action(const QString& action_text);
    // Anything: the script answers the request as a handler would.
    SCRIPTED_PROMPT& custom(const SCRIPT& script);

    // Every prompt so far, in order, answered or not.
    const QVector<RECORD>& asked() const { return m_asked; }
    // The titles (for exec(dialog), the dialog's title) of asked(), in order.
    QStringList titles() const;
    // Unscripted or mismatched prompts, one line each.
    const QStringList& errors() const { return m_errors; }
    // Scripted answers not used yet.
    int pending() const { return int(m_queue.size()); }

    prompt::ANSWER ask(const prompt::REQUEST& request) override;

private:
    using FITS = std::function<bool(prompt::KIND)>;
    struct STEP
    {
        QString description;
        FITS fits;
        SCRIPT script;
    };
    SCRIPTED_PROMPT& queue(const QString& description, FITS fits, SCRIPT script);
    // An accepted answer whose value `set` fills in.
    SCRIPTED_PROMPT& accepted(const QString& description, const FITS& fits,
                              const std::function<void(prompt::ANSWER&)>& set);
    SCRIPTED_PROMPT& filled_dialog(const DIALOG_FILL& fill, bool accept);
    void error(const QString& message);

    ON_ERROR m_on_error;
    prompt::HANDLER* m_previous = nullptr;
    std::deque<STEP> m_queue;
    QVector<RECORD> m_asked;
    QStringList m_errors;
};
