#include "veld_options.h"

#include "orbin_settings.h"

#include <QtCore/QSettings>

namespace VELD_OPTIONS
{
namespace
{
const COLOUR_OPTION* find_option(const QString& colour_key)
{
    for (const COLOUR_OPTION& option : colour_options())
    {
        if (option.colour_key == colour_key)
            return &option;
    }
    return nullptr;
}

// Opens the options in their group.
struct OPTIONS_SETTINGS : ORBIN_SETTINGS
{
    OPTIONS_SETTINGS() : ORBIN_SETTINGS(VELD_OPTIONS::organisation_path())
    {
        beginGroup(VELD_OPTIONS::group());
    }
};

// "name: #RRGGBB; " for the stylesheets.
QString entry(const QString& name, const QColor& colour)
{
    return name + QStringLiteral(": #") + hex_rgb(colour) + QStringLiteral("; ");
}

QString stylesheet(const QString& back_key, const QString& alternate_key, const QString& text_key,
                   bool write_defaults)
{
    const QString parts[3][2] = {{back_key, QStringLiteral("background-color")},
                                 {alternate_key, QStringLiteral("alternate-background-color")},
                                 {text_key, QStringLiteral("color")}};
    QString sheet = QStringLiteral("QTableView, QListView { ");
    for (const auto& part : parts)
    {
        const COLOUR_OPTION* option = find_option(part[0]);
        if (!option)
            continue;
        if (!is_default(option->default_key))
            sheet += entry(part[1], colour(part[0]));
        else if (write_defaults && option->default_colour.isValid())
            sheet += entry(part[1], option->default_colour);
    }
    return sheet + QStringLiteral("}");
}
} // namespace

QString organisation_path()
{
    return QStringLiteral("Northfold\\Quill\\Veld\\Options");
}

QString group()
{
    return QStringLiteral("tables");
}

const QVector<COLOUR_OPTION>& colour_options()
{
    static const QVector<COLOUR_OPTION> options = {
        {"cell_back_is_default", "cell_back_colour", "Cell Background Colour:", QColor()},
        {"cell_alternate_back_is_default", "cell_alternate_back_colour",
         "Cell Alternate Background Colour:", QColor()},
        {"frozen_cell_back_is_default", "frozen_cell_back_colour",
         "Frozen Cell Background Colour:", QColor(0x7B, 0x94, 0xB4)},
        {"frozen_cell_alternate_back_is_default", "frozen_cell_alternate_back_colour",
         "Frozen Cell Alternate Background Colour:", QColor(0x86, 0xB7, 0xFF)},
        {"cell_text_is_default", "cell_text_colour", "Cell Text Colour:", QColor(Qt::black)},
        {"frozen_cell_text_is_default", "frozen_cell_text_colour",
         "Frozen Cell Text Colour:", QColor(0xFF, 0xFF, 0xFF)},
        {"altered_cell_is_default", "altered_cell_colour", "Altered Cell Text Colour:", QColor(245, 224, 0)},
        {"new_cell_is_default", "new_cell_colour", "New Cell Text Colour:", QColor(98, 245, 0)},
        {"differs_is_default", "differs_colour", "Differs:", QColor(255, 249, 119)},
        {"exists_only_in_db_1_is_default", "only_in_db_1_colour", "In DB 1 Only:", QColor(155, 164, 219)},
        {"exists_only_in_db_2_is_default", "only_in_db_2_colour", "In DB 2 Only:", QColor(151, 255, 203)},
        {"window_background_is_default", "window_back_colour", "Background Colour:", QColor(238, 255, 255)},
    };
    return options;
}

QString auto_submit_lua_key()
{
    return QStringLiteral("auto_submit_lua");
}

QString auto_submit_start_pos_key()
{
    return QStringLiteral("auto_submit_start_pos");
}

QColor read_colour(const QSettings& settings, const QString& colour_key)
{
    const QVariant value = settings.value(colour_key);
    if (!value.isValid())
        return QColor(Qt::white);
    if (value.userType() == QMetaType::QColor)
        return value.value<QColor>();
    // A colour written by hand or by another tool ("#RRGGBB", a colour name).
    if (value.canConvert<QString>())
        return QColor(value.toString());
    return QColor();
}

QString hex_rgb(const QColor& colour)
{
    return QStringLiteral("%1%2%3")
        .arg(colour.red(), 2, 16, QLatin1Char('0'))
        .arg(colour.green(), 2, 16, QLatin1Char('0'))
        .arg(colour.blue(), 2, 16, QLatin1Char('0'))
        .toUpper();
}

bool is_default(const QString& default_key)
{
    OPTIONS_SETTINGS settings;
    return settings.value(default_key, true).toBool();
}

QColor colour(const QString& colour_key)
{
    const COLOUR_OPTION* option = find_option(colour_key);
    if (option && is_default(option->default_key))
        return option->default_colour;
    OPTIONS_SETTINGS settings;
    return read_colour(settings, colour_key);
}

bool uses_custom_cell_style()
{
    return !is_default(QStringLiteral("cell_back_is_default")) ||
           !is_default(QStringLiteral("cell_alternate_back_is_default")) ||
           !is_default(QStringLiteral("cell_text_is_default"));
}

QString cell_stylesheet()
{
    return stylesheet(QStringLiteral("cell_back_colour"), QStringLiteral("cell_alternate_back_colour"),
                      QStringLiteral("cell_text_colour"), false);
}

QString frozen_stylesheet()
{
    return stylesheet(QStringLiteral("frozen_cell_back_colour"),
                      QStringLiteral("frozen_cell_alternate_back_colour"),
                      QStringLiteral("frozen_cell_text_colour"), true);
}

QColor cell_text_colour()
{
    return colour(QStringLiteral("cell_text_colour"));
}

QColor frozen_cell_text_colour()
{
    return colour(QStringLiteral("frozen_cell_text_colour"));
}

QColor altered_cell_colour()
{
    return colour(QStringLiteral("altered_cell_colour"));
}

QColor new_cell_colour()
{
    return colour(QStringLiteral("new_cell_colour"));
}

QColor differs_colour()
{
    return colour(QStringLiteral("differs_colour"));
}

QColor only_in_db_1_colour()
{
    return colour(QStringLiteral("only_in_db_1_colour"));
}

QColor only_in_db_2_colour()
{
    return colour(QStringLiteral("only_in_db_2_colour"));
}

QColor window_background_colour()
{
    return colour(QStringLiteral("window_back_colour"));
}

bool auto_submit_lua()
{
    OPTIONS_SETTINGS settings;
    return settings.value(auto_submit_lua_key(), false).toBool();
}

bool auto_submit_start_pos()
{
    OPTIONS_SETTINGS settings;
    return settings.value(auto_submit_start_pos_key(), false).toBool();
}
} // namespace VELD_OPTIONS
