#pragma once

#include <QtCore/QPoint>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QColor>
#include <QtWidgets/QColorDialog>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>

class QAction;
class QDialog;
class QMenu;
class QWidget;

namespace prompt
{
// What is being asked. The names follow the functions of prompt.h.
enum class KIND
{
    QUESTION,
    INFORMATION,
    WARNING,
    CRITICAL,
    GET_TEXT,
    GET_MULTI_LINE_TEXT,
    GET_ITEM,
    GET_INT,
    GET_DOUBLE,
    GET_EXISTING_DIRECTORY,
    GET_OPEN_FILE_NAME,
    GET_OPEN_FILE_NAMES,
    GET_SAVE_FILE_NAME,
    GET_COLOR,
    EXEC_DIALOG,
    EXEC_MENU
};

// "question", "get_text", ... : the name of the function that asked.
QString kind_name(KIND kind);
// QUESTION, INFORMATION, WARNING, CRITICAL: answered with a button.
bool is_message_box(KIND kind);

// Everything one prompt was asked with. Fields a kind does not use keep their
// defaults; which ones each kind fills is said at its function in prompt.h.
struct REQUEST
{
    KIND kind = KIND::QUESTION;
    QWidget* parent = nullptr;
    QString title; // window title, or the file dialog's caption
    QString text;  // message text, or the input dialog's label
    QMessageBox::StandardButtons buttons = QMessageBox::NoButton;
    QMessageBox::StandardButton default_button = QMessageBox::NoButton;
    QLineEdit::EchoMode echo_mode = QLineEdit::Normal;
    QString initial_text;     // preset text, or the file dialog's starting directory
    QStringList items;        // get_item
    int current_item = 0;     // get_item
    bool editable = true;     // get_item
    double value = 0;         // get_int, get_double: preset value
    double minimum = 0;       // get_int, get_double
    double maximum = 0;       // get_int, get_double
    int step_or_decimals = 1; // get_int: step; get_double: decimals
    QString filter;           // file dialogs
    QString* selected_filter = nullptr;
    QFileDialog::Options file_options;
    QColor initial_color; // get_color
    QColorDialog::ColorDialogOptions color_options;
    QDialog* dialog = nullptr;  // exec(QDialog&)
    QMenu* menu = nullptr;      // exec(QMenu&, ...)
    QPoint position;            // exec(QMenu&, ...)
    QAction* menu_at = nullptr; // exec(QMenu&, ...)
};

// The answer of a handler. `accepted` is the "ok" of the input and file
// dialogs: false means the user cancelled.
struct ANSWER
{
    bool accepted = false;
    QMessageBox::StandardButton button = QMessageBox::NoButton;
    QString text;      // get_text, get_item, directory, file name
    QStringList texts; // get_open_file_names
    int int_value = 0;
    double double_value = 0;
    QColor color;              // invalid when cancelled, as QColorDialog gives
    int dialog_result = 0;     // exec(QDialog&): QDialog::Rejected by default
    QAction* action = nullptr; // exec(QMenu&, ...)
};
} // namespace prompt
