#pragma once

#include <QString>

class QMdiArea;
class QMdiSubWindow;
class QWidget;
class VELD_DATA;

// Opening a table data editor into the main window's MDI area, as the main
// window's open_table_data_editor does it.
class VELD_TABLE_DATA_EDITOR_WINDOW
{
public:
    // An editor of the table already open is raised and returned. Otherwise
    // the editor is made with `main_window` as its parent and opened; on
    // failure it is deleted and null comes back with the reason in `error`.
    // On success it goes into `area` in a sub-window that deletes itself when
    // closed, is shown, registered under the table key as form type 0, and
    // its statusUpdate(QString) reaches the main window's
    // statusbarUpdate(QString) (a registration failure is sent there too).
    // The main window's refreshDialogColours() reaches its refreshColours(),
    // and its model's transactionApplied the main window's signal of that name.
    static QMdiSubWindow* open(QMdiArea* area, VELD_DATA* session, QWidget* main_window,
                               const QString& table_key, bool read_only, QString& error);
};
