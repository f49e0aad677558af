#pragma once

class QMdiSubWindow;
class QString;

// What a child window may ask of the main window beyond signals and slots:
// opening the editors of a table. Windows find it by a dynamic_cast of the
// widget they were given as main window; when the cast fails (a window used on
// its own, or in a test) they treat it as "no main window".
class VELD_WINDOW_OPENER
{
public:
    virtual ~VELD_WINDOW_OPENER() = default;

    // Opens (or refuses to open) the data editor of a table in the MDI area.
    // Null with the reason in error when it cannot.
    virtual QMdiSubWindow* open_table_data_editor(const QString& table_key, QString& error, bool read_only) = 0;

    // The same for the schema editor of a table.
    virtual QMdiSubWindow* open_table_schema_editor(const QString& table_key, QString& error, bool read_only) = 0;
};
