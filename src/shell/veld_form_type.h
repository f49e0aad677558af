#pragma once

// The kinds of window the registry tells apart; a form name is unique within
// its kind only.
namespace VELD_FORM_TYPE
{
enum : int
{
    TABLE_DATA_EDITOR = 0,
    TABLE_DIFFERENCES = 1,
    SCHEMA_EDITOR = 2,
    QUERY_EDITOR = 4, // and the result of a simple query
    FORM = 5,
    // Launchers (the table launcher in edit-data mode), the script and the
    // subtitle forms. Not counted as real forms.
    LAUNCHER = 6,
    TABLE_LAUNCHER_SCHEMA_MODE = 7,
    TABLE_LAUNCHER_REMOVAL_MODE = 8,
    CAMPAIGN_EXPORT = 9,
    DIALOG = 10
};
} // namespace VELD_FORM_TYPE
