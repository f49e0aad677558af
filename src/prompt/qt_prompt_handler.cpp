#include "qt_prompt_handler.h"

#include <QtWidgets/QDialog>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QMenu>

namespace prompt
{
namespace
{
using MESSAGE_BOX = QMessageBox::StandardButton (*)(QWidget*, const QString&, const QString&,
                                                    QMessageBox::StandardButtons,
                                                    QMessageBox::StandardButton);

MESSAGE_BOX message_box(KIND kind)
{
    switch (kind)
    {
    case KIND::INFORMATION:
        return &QMessageBox::information;
    case KIND::WARNING:
        return &QMessageBox::warning;
    case KIND::CRITICAL:
        return &QMessageBox::critical;
    default:
        return &QMessageBox::question;
    }
}
} // namespace

ANSWER QT_PROMPT_HANDLER::ask(const REQUEST& request)
{
    ANSWER answer;
    switch (request.kind)
    {
    case KIND::QUESTION:
    case KIND::INFORMATION:
    case KIND::WARNING:
    case KIND::CRITICAL:
        answer.button = message_box(request.kind)(request.parent, request.title, request.text,
                                                  request.buttons, request.default_button);
        answer.accepted = true;
        break;
    case KIND::GET_TEXT:
        answer.text = QInputDialog::getText(request.parent, request.title, request.text, request.echo_mode,
                                            request.initial_text, &answer.accepted);
        break;
    case KIND::GET_MULTI_LINE_TEXT:
        answer.text = QInputDialog::getMultiLineText(request.parent, request.title, request.text,
                                                     request.initial_text, &answer.accepted);
        break;
    case KIND::GET_ITEM:
        answer.text = QInputDialog::getItem(request.parent, request.title, request.text, request.items,
                                            request.current_item, request.editable, &answer.accepted);
        break;
    case KIND::GET_INT:
        answer.int_value = QInputDialog::getInt(
            request.parent, request.title, request.text, int(request.value), int(request.minimum),
            int(request.maximum), request.step_or_decimals, &answer.accepted);
        break;
    case KIND::GET_DOUBLE:
        answer.double_value = QInputDialog::getDouble(request.parent, request.title, request.text,
                                                      request.value, request.minimum, request.maximum,
                                                      request.step_or_decimals, &answer.accepted);
        break;
    case KIND::GET_EXISTING_DIRECTORY:
        answer.text = QFileDialog::getExistingDirectory(request.parent, request.title, request.initial_text,
                                                        request.file_options);
        answer.accepted = !answer.text.isEmpty();
        break;
    case KIND::GET_OPEN_FILE_NAME:
        answer.text =
            QFileDialog::getOpenFileName(request.parent, request.title, request.initial_text, request.filter,
                                         request.selected_filter, request.file_options);
        answer.accepted = !answer.text.isEmpty();
        break;
    case KIND::GET_OPEN_FILE_NAMES:
        answer.texts =
            QFileDialog::getOpenFileNames(request.parent, request.title, request.initial_text, request.filter,
                                          request.selected_filter, request.file_options);
        answer.accepted = !answer.texts.isEmpty();
        break;
    case KIND::GET_SAVE_FILE_NAME:
        answer.text =
            QFileDialog::getSaveFileName(request.parent, request.title, request.initial_text, request.filter,
                                         request.selected_filter, request.file_options);
        answer.accepted = !answer.text.isEmpty();
        break;
    case KIND::GET_COLOR:
        answer.color = QColorDialog::getColor(request.initial_color, request.parent, request.title,
                                              request.color_options);
        answer.accepted = answer.color.isValid();
        break;
    case KIND::EXEC_DIALOG:
        if (request.dialog)
        {
            answer.dialog_result = request.dialog->exec();
            answer.accepted = answer.dialog_result != QDialog::Rejected;
        }
        break;
    case KIND::EXEC_MENU:
        if (request.menu)
        {
            answer.action = request.menu->exec(request.position, request.menu_at);
            answer.accepted = answer.action != nullptr;
        }
        break;
    }
    return answer;
}
} // namespace prompt
