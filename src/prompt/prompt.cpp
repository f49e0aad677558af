#include "prompt.h"

#include "qt_prompt_handler.h"

#include <QtWidgets/QDialog>
#include <QtWidgets/QMenu>

namespace prompt
{
namespace
{
QT_PROMPT_HANDLER& qt_handler()
{
    static QT_PROMPT_HANDLER instance;
    return instance;
}

HANDLER*& current()
{
    static HANDLER* installed = nullptr;
    return installed;
}

ANSWER ask(const REQUEST& request)
{
    return handler().ask(request);
}

QMessageBox::StandardButton message_box(KIND kind, QWidget* parent, const QString& title, const QString& text,
                                        QMessageBox::StandardButtons buttons,
                                        QMessageBox::StandardButton default_button)
{
    REQUEST request;
    request.kind = kind;
    request.parent = parent;
    request.title = title;
    request.text = text;
    request.buttons = buttons;
    request.default_button = default_button;
    return ask(request).button;
}

REQUEST input_request(KIND kind, QWidget* parent, const QString& title, const QString& label)
{
    REQUEST request;
    request.kind = kind;
    request.parent = parent;
    request.title = title;
    request.text = label;
    return request;
}

REQUEST file_request(KIND kind, QWidget* parent, const QString& caption, const QString& dir,
                     const QString& filter, QString* selected_filter, QFileDialog::Options options)
{
    REQUEST request;
    request.kind = kind;
    request.parent = parent;
    request.title = caption;
    request.initial_text = dir;
    request.filter = filter;
    request.selected_filter = selected_filter;
    request.file_options = options;
    return request;
}

// Asks and tells *ok whether the user accepted, as the input dialogs do.
ANSWER ask_input(const REQUEST& request, bool* ok)
{
    const ANSWER answer = ask(request);
    if (ok)
        *ok = answer.accepted;
    return answer;
}

REQUEST number_request(KIND kind, QWidget* parent, const QString& title, const QString& label, double value,
                       double minimum, double maximum, int step_or_decimals)
{
    REQUEST request = input_request(kind, parent, title, label);
    request.value = value;
    request.minimum = minimum;
    request.maximum = maximum;
    request.step_or_decimals = step_or_decimals;
    return request;
}

QString accepted_text(const ANSWER& answer)
{
    return answer.accepted ? answer.text : QString();
}
} // namespace

HANDLER::~HANDLER() = default;

HANDLER& handler()
{
    HANDLER* installed = current();
    return installed ? *installed : qt_handler();
}

HANDLER* set_handler(HANDLER* replacement)
{
    HANDLER* previous = &handler();
    current() = replacement;
    return previous;
}

QMessageBox::StandardButton question(QWidget* parent, const QString& title, const QString& text,
                                     QMessageBox::StandardButtons buttons,
                                     QMessageBox::StandardButton default_button)
{
    return message_box(KIND::QUESTION, parent, title, text, buttons, default_button);
}

QMessageBox::StandardButton information(QWidget* parent, const QString& title, const QString& text,
                                        QMessageBox::StandardButtons buttons,
                                        QMessageBox::StandardButton default_button)
{
    return message_box(KIND::INFORMATION, parent, title, text, buttons, default_button);
}

QMessageBox::StandardButton warning(QWidget* parent, const QString& title, const QString& text,
                                    QMessageBox::StandardButtons buttons,
                                    QMessageBox::StandardButton default_button)
{
    return message_box(KIND::WARNING, parent, title, text, buttons, default_button);
}

QMessageBox::StandardButton critical(QWidget* parent, const QString& title, const QString& text,
                                     QMessageBox::StandardButtons buttons,
                                     QMessageBox::StandardButton default_button)
{
    return message_box(KIND::CRITICAL, parent, title, text, buttons, default_button);
}

QString get_text(QWidget* parent, const QString& title, const QString& label, QLineEdit::EchoMode mode,
                 const QString& text, bool* ok)
{
    REQUEST request = input_request(KIND::GET_TEXT, parent, title, label);
    request.echo_mode = mode;
    request.initial_text = text;
    return accepted_text(ask_input(request, ok));
}

QString get_multi_line_text(QWidget* parent, const QString& title, const QString& label, const QString& text,
                            bool* ok)
{
    REQUEST request = input_request(KIND::GET_MULTI_LINE_TEXT, parent, title, label);
    request.initial_text = text;
    return accepted_text(ask_input(request, ok));
}

QString get_item(QWidget* parent, const QString& title, const QString& label, const QStringList& items,
                 int current_item, bool editable, bool* ok)
{
    REQUEST request = input_request(KIND::GET_ITEM, parent, title, label);
    request.items = items;
    request.current_item = current_item;
    request.editable = editable;
    const ANSWER answer = ask_input(request, ok);
    // As QInputDialog::getItem: a cancelled choice answers the preset item.
    return answer.accepted ? answer.text : items.value(current_item);
}

int get_int(QWidget* parent, const QString& title, const QString& label, int value, int minimum, int maximum,
            int step, bool* ok)
{
    const ANSWER answer =
        ask_input(number_request(KIND::GET_INT, parent, title, label, value, minimum, maximum, step), ok);
    return answer.accepted ? answer.int_value : value;
}

double get_double(QWidget* parent, const QString& title, const QString& label, double value, double minimum,
                  double maximum, int decimals, bool* ok)
{
    const ANSWER answer = ask_input(
        number_request(KIND::GET_DOUBLE, parent, title, label, value, minimum, maximum, decimals), ok);
    return answer.accepted ? answer.double_value : value;
}

QString get_existing_directory(QWidget* parent, const QString& caption, const QString& dir,
                               QFileDialog::Options options)
{
    return accepted_text(
        ask(file_request(KIND::GET_EXISTING_DIRECTORY, parent, caption, dir, QString(), nullptr, options)));
}

QString get_open_file_name(QWidget* parent, const QString& caption, const QString& dir, const QString& filter,
                           QString* selected_filter, QFileDialog::Options options)
{
    return accepted_text(
        ask(file_request(KIND::GET_OPEN_FILE_NAME, parent, caption, dir, filter, selected_filter, options)));
}

QStringList get_open_file_names(QWidget* parent, const QString& caption, const QString& dir,
                                const QString& filter, QString* selected_filter, QFileDialog::Options options)
{
    const ANSWER answer =
        ask(file_request(KIND::GET_OPEN_FILE_NAMES, parent, caption, dir, filter, selected_filter, options));
    return answer.accepted ? answer.texts : QStringList();
}

QString get_save_file_name(QWidget* parent, const QString& caption, const QString& dir, const QString& filter,
                           QString* selected_filter, QFileDialog::Options options)
{
    return accepted_text(
        ask(file_request(KIND::GET_SAVE_FILE_NAME, parent, caption, dir, filter, selected_filter, options)));
}

QColor get_color(const QColor& initial, QWidget* parent, const QString& title,
                 QColorDialog::ColorDialogOptions options)
{
    REQUEST request;
    request.kind = KIND::GET_COLOR;
    request.parent = parent;
    request.title = title;
    request.initial_color = initial;
    request.color_options = options;
    const ANSWER answer = ask(request);
    return answer.accepted ? answer.color : QColor();
}

int exec(QDialog& dialog)
{
    REQUEST request;
    request.kind = KIND::EXEC_DIALOG;
    request.parent = dialog.parentWidget();
    request.title = dialog.windowTitle();
    request.dialog = &dialog;
    return ask(request).dialog_result;
}

QAction* exec(QMenu& menu, const QPoint& position, QAction* at)
{
    REQUEST request;
    request.kind = KIND::EXEC_MENU;
    request.parent = menu.parentWidget();
    request.title = menu.title();
    request.menu = &menu;
    request.position = position;
    request.menu_at = at;
    return ask(request).action;
}
} // namespace prompt
