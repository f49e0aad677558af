#pragma once

// The one prompt seam of the program.
//
// EVERY modal question, message box, input dialog, file or colour dialog and
// every modal exec() of a dialog or menu in the system goes through the
// functions below, never through QMessageBox::question/warning/...,
// QInputDialog::get*, QFileDialog::get*, QColorDialog::getColor,
// QDialog::exec or QMenu::exec directly. They forward to one replaceable
// handler: by default it shows the real Qt dialogs (QT_PROMPT_HANDLER); tests
// install a scripted one (SCRIPTED_PROMPT of the test-support library) that
// answers from a script, records what was asked and never blocks. That is what
// keeps every flow of the program testable without a person at the screen.
//
// The functions take the arguments of the Qt statics they stand for, in the
// same order and with the same defaults, so a call changes only its name:
//     QMessageBox::question(this, "Orbin", text, QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
//  -> prompt::question(this, "Orbin", text, QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
//     dialog.exec()           -> prompt::exec(dialog)
//     menu.exec(global_pos)   -> prompt::exec(menu, global_pos)
//
// All of it is for the GUI thread only.

#include "prompt_types.h"

namespace prompt
{
// The replaceable part. ask() gets the whole request and gives the whole
// answer; the functions below pack and unpack them.
class HANDLER
{
public:
    virtual ~HANDLER();
    virtual ANSWER ask(const REQUEST& request) = 0;
};

// The handler in charge; the Qt one unless another was installed.
HANDLER& handler();
// Installs `replacement` (null: the Qt handler again) and returns the one it
// replaces, never null. The caller keeps ownership of both.
HANDLER* set_handler(HANDLER* replacement);

// Message boxes. REQUEST: parent, title, text, buttons, default_button.
// The answer is the button pressed (Escape gives the escape button, as Qt).
QMessageBox::StandardButton question(
    QWidget* parent, const QString& title, const QString& text,
    QMessageBox::StandardButtons buttons = QMessageBox::StandardButtons(QMessageBox::Yes | QMessageBox::No),
    QMessageBox::StandardButton default_button = QMessageBox::NoButton);
QMessageBox::StandardButton information(QWidget* parent, const QString& title, const QString& text,
                                        QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                                        QMessageBox::StandardButton default_button = QMessageBox::NoButton);
QMessageBox::StandardButton warning(QWidget* parent, const QString& title, const QString& text,
                                    QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                                    QMessageBox::StandardButton default_button = QMessageBox::NoButton);
QMessageBox::StandardButton critical(QWidget* parent, const QString& title, const QString& text,
                                     QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                                     QMessageBox::StandardButton default_button = QMessageBox::NoButton);

// Input dialogs. REQUEST: parent, title, text (the label) and the presets
// (initial_text, echo_mode, items, current_item, editable, value, minimum,
// maximum, step_or_decimals). `ok`, when given, says whether the user
// accepted; on cancel the text is empty and the numbers are the preset value.
QString get_text(QWidget* parent, const QString& title, const QString& label,
                 QLineEdit::EchoMode mode = QLineEdit::Normal, const QString& text = QString(),
                 bool* ok = nullptr);
QString get_multi_line_text(QWidget* parent, const QString& title, const QString& label,
                            const QString& text = QString(), bool* ok = nullptr);
QString get_item(QWidget* parent, const QString& title, const QString& label, const QStringList& items,
                 int current = 0, bool editable = true, bool* ok = nullptr);
int get_int(QWidget* parent, const QString& title, const QString& label, int value = 0,
            int minimum = -2147483647, int maximum = 2147483647, int step = 1, bool* ok = nullptr);
double get_double(QWidget* parent, const QString& title, const QString& label, double value = 0,
                  double minimum = -2147483647, double maximum = 2147483647, int decimals = 1,
                  bool* ok = nullptr);

// File dialogs. REQUEST: parent, title (the caption), initial_text (the
// starting directory), filter, selected_filter, file_options. Empty (or an
// empty list) when cancelled.
QString get_existing_directory(QWidget* parent = nullptr, const QString& caption = QString(),
                               const QString& dir = QString(),
                               QFileDialog::Options options = QFileDialog::ShowDirsOnly);
QString get_open_file_name(QWidget* parent = nullptr, const QString& caption = QString(),
                           const QString& dir = QString(), const QString& filter = QString(),
                           QString* selected_filter = nullptr,
                           QFileDialog::Options options = QFileDialog::Options());
QStringList get_open_file_names(QWidget* parent = nullptr, const QString& caption = QString(),
                                const QString& dir = QString(), const QString& filter = QString(),
                                QString* selected_filter = nullptr,
                                QFileDialog::Options options = QFileDialog::Options());
QString get_save_file_name(QWidget* parent = nullptr, const QString& caption = QString(),
                           const QString& dir = QString(), const QString& filter = QString(),
                           QString* selected_filter = nullptr,
                           QFileDialog::Options options = QFileDialog::Options());

// Colour dialog, in the argument order of QColorDialog::getColor. REQUEST:
// initial_color, parent, title, color_options. Invalid when cancelled.
QColor get_color(const QColor& initial = Qt::white, QWidget* parent = nullptr,
                 const QString& title = QString(),
                 QColorDialog::ColorDialogOptions options = QColorDialog::ColorDialogOptions());

// Runs a dialog modally and answers its result code, as QDialog::exec.
// REQUEST: dialog, parent (the dialog's parent widget), title (its window title).
int exec(QDialog& dialog);

// Pops a menu up modally at a global position and answers the chosen action,
// null when none, as QMenu::exec. REQUEST: menu, position, menu_at.
QAction* exec(QMenu& menu, const QPoint& position, QAction* at = nullptr);
} // namespace prompt
