#include "scripted_prompt.h"

#include <QtTest/QTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QDialog>
#include <QtWidgets/QMenu>

namespace
{
bool is_text_kind(prompt::KIND kind)
{
    using prompt::KIND;
    return kind == KIND::GET_TEXT || kind == KIND::GET_MULTI_LINE_TEXT || kind == KIND::GET_ITEM ||
           kind == KIND::GET_EXISTING_DIRECTORY || kind == KIND::GET_OPEN_FILE_NAME ||
           kind == KIND::GET_SAVE_FILE_NAME;
}

std::function<bool(prompt::KIND)> only(prompt::KIND wanted)
{
    return [wanted](prompt::KIND kind) { return kind == wanted; };
}

QString plain(QString text)
{
    return text.remove(QLatin1Char('&'));
}

QString describe(const prompt::REQUEST& request)
{
    QString what = prompt::kind_name(request.kind);
    QString title = request.title;
    if (request.kind == prompt::KIND::EXEC_DIALOG && request.dialog)
        what += QLatin1Char(' ') + QString::fromLatin1(request.dialog->metaObject()->className());
    if (!title.isEmpty())
        what += QStringLiteral(" \"%1\"").arg(title);
    if (!request.text.isEmpty())
        what += QStringLiteral(": \"%1\"").arg(request.text);
    return what;
}
} // namespace

SCRIPTED_PROMPT::SCRIPTED_PROMPT(ON_ERROR on_error) : m_on_error(on_error)
{
    m_previous = prompt::set_handler(this);
}

SCRIPTED_PROMPT::~SCRIPTED_PROMPT()
{
    prompt::set_handler(m_previous);
    if (!m_queue.empty() && m_on_error == ON_ERROR::FAIL_TEST && !QTest::currentTestFailed())
    {
        QStringList left;
        for (const STEP& step : m_queue)
            left << step.description;
        const QByteArray message = QStringLiteral("SCRIPTED_PROMPT: scripted answers never asked for: %1")
                                       .arg(left.join(", "))
                                       .toUtf8();
        QTest::qFail(message.constData(), __FILE__, __LINE__);
    }
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::queue(const QString& description, FITS fits, SCRIPT script)
{
    m_queue.push_back(STEP{description, std::move(fits), std::move(script)});
    return *this;
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::accepted(const QString& description, const FITS& fits,
                                           const std::function<void(prompt::ANSWER&)>& set)
{
    return queue(description, fits, [set](const prompt::REQUEST&) {
        prompt::ANSWER answer;
        answer.accepted = true;
        set(answer);
        return answer;
    });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::button(QMessageBox::StandardButton pressed)
{
    return accepted(QStringLiteral("button %1").arg(int(pressed)), prompt::is_message_box,
                    [pressed](prompt::ANSWER& answer) { answer.button = pressed; });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::text(const QString& value)
{
    return accepted(QStringLiteral("text \"%1\"").arg(value), is_text_kind,
                    [value](prompt::ANSWER& answer) { answer.text = value; });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::texts(const QStringList& values)
{
    return accepted(QStringLiteral("texts \"%1\"").arg(values.join("\", \"")),
                    only(prompt::KIND::GET_OPEN_FILE_NAMES),
                    [values](prompt::ANSWER& answer) { answer.texts = values; });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::integer(int value)
{
    return accepted(QStringLiteral("integer %1").arg(value), only(prompt::KIND::GET_INT),
                    [value](prompt::ANSWER& answer) { answer.int_value = value; });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::real(double value)
{
    return accepted(QStringLiteral("real %1").arg(value), only(prompt::KIND::GET_DOUBLE),
                    [value](prompt::ANSWER& answer) { answer.double_value = value; });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::color(const QColor& value)
{
    return accepted(QStringLiteral("color %1").arg(value.name()), only(prompt::KIND::GET_COLOR),
                    [value](prompt::ANSWER& answer) {
                        answer.accepted = value.isValid();
                        answer.color = value;
                    });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::cancel()
{
    return queue(
        QStringLiteral("cancel"), [](prompt::KIND kind) { return !prompt::is_message_box(kind); },
        [](const prompt::REQUEST& request) {
            prompt::ANSWER answer;
            answer.dialog_result = QDialog::Rejected;
            if (request.kind == prompt::KIND::EXEC_DIALOG && request.dialog)
            {
                request.dialog->reject();
                answer.dialog_result = request.dialog->result();
            }
            return answer;
        });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::accept_dialog(const DIALOG_FILL& fill)
{
    return filled_dialog(fill, true);
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::reject_dialog(const DIALOG_FILL& fill)
{
    return filled_dialog(fill, false);
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::filled_dialog(const DIALOG_FILL& fill, bool accept)
{
    return dialog([fill, accept](QDialog& dialog) {
        if (fill)
            fill(dialog);
        accept ? dialog.accept() : dialog.reject();
        return dialog.result();
    });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::dialog(const std::function<int(QDialog&)>& script)
{
    return queue(QStringLiteral("dialog"), only(prompt::KIND::EXEC_DIALOG),
                 [script](const prompt::REQUEST& request) {
                     prompt::ANSWER answer;
                     if (request.dialog)
                     {
                         answer.dialog_result = script(*request.dialog);
                         answer.accepted = answer.dialog_result != QDialog::Rejected;
                     }
                     return answer;
                 });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::menu_action(const QString& action_text)
{
    return queue(QStringLiteral("menu action \"%1\"").arg(action_text), only(prompt::KIND::EXEC_MENU),
                 [this, action_text](const prompt::REQUEST& request) {
                     prompt::ANSWER answer;
                     const QList<QAction*> actions =
                         request.menu ? request.menu->actions() : QList<QAction*>();
                     for (QAction* action : actions)
                     {
                         if (!action->isSeparator() && plain(action->text()) == plain(action_text))
                         {
                             answer.action = action;
                             break;
                         }
                     }
                     if (!answer.action)
                     {
                         error(QStringLiteral("the menu has no action \"%1\"").arg(action_text));
                         return answer;
                     }
                     if (!answer.action->isEnabled())
                     {
                         // A disabled item cannot be chosen: the menu closes with nothing.
                         error(QStringLiteral("the menu action \"%1\" is disabled").arg(action_text));
                         answer.action = nullptr;
                         return answer;
                     }
                     answer.accepted = true;
                     answer.action->activate(QAction::Trigger);
                     return answer;
                 });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::custom(const SCRIPT& script)
{
    return queue(
        QStringLiteral("custom"), [](prompt::KIND) { return true; }, script);
}

QStringList SCRIPTED_PROMPT::titles() const
{
    QStringList result;
    for (const RECORD& record : m_asked)
        result << record.title;
    return result;
}

void SCRIPTED_PROMPT::error(const QString& message)
{
    const QString line = QStringLiteral("SCRIPTED_PROMPT: %1").arg(message);
    m_errors << line;
    if (m_on_error == ON_ERROR::FAIL_TEST)
    {
        const QByteArray text = line.toUtf8();
        QTest::qFail(text.constData(), __FILE__, __LINE__);
    }
}

prompt::ANSWER SCRIPTED_PROMPT::ask(const prompt::REQUEST& request)
{
    RECORD record;
    record.kind = request.kind;
    record.title = request.title;
    record.text = request.text;
    record.buttons = request.buttons;
    record.default_button = request.default_button;
    record.initial_text = request.initial_text;
    record.items = request.items;
    record.filter = request.filter;
    if (request.kind == prompt::KIND::EXEC_DIALOG && request.dialog)
        record.class_name = QString::fromLatin1(request.dialog->metaObject()->className());
    if (request.kind == prompt::KIND::EXEC_MENU && request.menu)
    {
        for (QAction* action : request.menu->actions())
        {
            if (!action->isSeparator())
                record.items << plain(action->text());
        }
    }
    m_asked << record;

    // Whatever goes wrong, the answer is a cancel: no dialog is shown, nothing
    // waits for a person.
    prompt::ANSWER cancelled;
    cancelled.dialog_result = QDialog::Rejected;

    if (m_queue.empty())
    {
        error(QStringLiteral("unscripted %1").arg(describe(request)));
        return cancelled;
    }
    STEP step = std::move(m_queue.front());
    m_queue.pop_front();
    if (!step.fits(request.kind))
    {
        error(
            QStringLiteral("%1 was asked, but the script says %2").arg(describe(request), step.description));
        return cancelled;
    }
    return step.script(request);
}
