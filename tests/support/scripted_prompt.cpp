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

SCRIPTED_PROMPT& SCRIPTED_PROMPT::queue(const QString& description, std::function<bool(prompt::KIND)> fits,
                                        SCRIPT script)
{
    m_queue.push_back(STEP{description, std::move(fits), std::move(script)});
    return *this;
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::button(QMessageBox::StandardButton pressed)
{
    return queue(QStringLiteral("button %1").arg(int(pressed)), prompt::is_message_box,
                 [pressed](const prompt::REQUEST&) {
                     prompt::ANSWER answer;
                     answer.accepted = true;
                     answer.button = pressed;
                     return answer;
                 });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::text(const QString& value)
{
    return queue(QStringLiteral("text \"%1\"").arg(value), is_text_kind, [value](const prompt::REQUEST&) {
        prompt::ANSWER answer;
        answer.accepted = true;
        answer.text = value;
        return answer;
    });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::texts(const QStringList& values)
{
    return queue(
        QStringLiteral("texts \"%1\"").arg(values.join("\", \"")),
        [](prompt::KIND kind) { return kind == prompt::KIND::GET_OPEN_FILE_NAMES; },
        [values](const prompt::REQUEST&) {
            prompt::ANSWER answer;
            answer.accepted = true;
            answer.texts = values;
            return answer;
        });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::integer(int value)
{
    return queue(
        QStringLiteral("integer %1").arg(value),
        [](prompt::KIND kind) { return kind == prompt::KIND::GET_INT; },
        [value](const prompt::REQUEST&) {
            prompt::ANSWER answer;
            answer.accepted = true;
            answer.int_value = value;
            return answer;
        });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::real(double value)
{
    return queue(
        QStringLiteral("real %1").arg(value),
        [](prompt::KIND kind) { return kind == prompt::KIND::GET_DOUBLE; },
        [value](const prompt::REQUEST&) {
            prompt::ANSWER answer;
            answer.accepted = true;
            answer.double_value = value;
            return answer;
        });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::color(const QColor& value)
{
    return queue(
        QStringLiteral("color %1").arg(value.name()),
        [](prompt::KIND kind) { return kind == prompt::KIND::GET_COLOR; },
        [value](const prompt::REQUEST&) {
            prompt::ANSWER answer;
            answer.accepted = value.isValid();
            answer.color = value;
            return answer;
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
    return dialog([fill](QDialog& dialog) {
        if (fill)
            fill(dialog);
        dialog.accept();
        return dialog.result();
    });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::reject_dialog(const DIALOG_FILL& fill)
{
    return dialog([fill](QDialog& dialog) {
        if (fill)
            fill(dialog);
        dialog.reject();
        return dialog.result();
    });
}

SCRIPTED_PROMPT& SCRIPTED_PROMPT::dialog(const std::function<int(QDialog&)>& script)
{
    return queue(
        QStringLiteral("dialog"), [](prompt::KIND kind) { return kind == prompt::KIND::EXEC_DIALOG; },
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
    return queue(
        QStringLiteral("menu action \"%1\"").arg(action_text),
        [](prompt::KIND kind) { return kind == prompt::KIND::EXEC_MENU; },
        [this, action_text](const prompt::REQUEST& request) {
            prompt::ANSWER answer;
            const QList<QAction*> actions = request.menu ? request.menu->actions() : QList<QAction*>();
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
