#pragma once

#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtGui/QColor>

class QSettings;

// The user's options: colours of tables, lists and the diff, and the
// check-in switches. They live only in the settings (organisation_path(),
// group "tables"); every helper reads them afresh, so a change made
// in the options dialog reaches each view at its next refreshColours and no
// object keeps a copy.
//
// Each colour has a "use the default" switch (true when absent) and a colour
// key. A colour key that is absent reads as white; one stored as something
// other than a colour is converted when it can be, and is invalid otherwise.
namespace VELD_OPTIONS
{
// Where the options are kept.
QString organisation_path();
QString group();

// One colour of the options, in the order the dialog shows and stores them.
struct COLOUR_OPTION
{
    QString default_key;
    QString colour_key;
    QString label;
    // Invalid where the default is the style's own colour.
    QColor default_colour;
};
const QVector<COLOUR_OPTION>& colour_options();

// Keys of the two check-in switches (false when absent).
QString auto_submit_lua_key();
QString auto_submit_start_pos_key();

// A colour key as stored: white when absent, converted when it can be,
// invalid otherwise. The settings must be in the options group.
QColor read_colour(const QSettings& settings, const QString& colour_key);
// "RRGGBB", upper case, two digits each.
QString hex_rgb(const QColor& colour);

// Whether the default of a colour applies (the value of its default key).
bool is_default(const QString& default_key);
// The colour the options give for colour_key: its default while the default
// applies (invalid for the style's own), otherwise the stored one.
QColor colour(const QString& colour_key);

// True when any of the cell background, alternate background or text
// colours is not the default.
bool uses_custom_cell_style();
// "QTableView, QListView { " with one "background-color: #RRGGBB; ",
// "alternate-background-color: #RRGGBB; ", "color: #RRGGBB; " for each of
// those three that is not the default, then "}".
QString cell_stylesheet();
// The same for frozen columns, where defaults are written out too.
QString frozen_stylesheet();

QColor cell_text_colour();         // black by default
QColor frozen_cell_text_colour();  // #FFFFFF by default
QColor altered_cell_colour();      // 245, 224, 0 by default
QColor new_cell_colour();          // 98, 245, 0 by default
QColor differs_colour();           // 255, 249, 119 by default
QColor only_in_db_1_colour();      // 155, 164, 219 by default
QColor only_in_db_2_colour();      // 151, 255, 203 by default
QColor window_background_colour(); // 238, 255, 255 by default

bool auto_submit_lua();
bool auto_submit_start_pos();
} // namespace VELD_OPTIONS
