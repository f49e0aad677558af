#pragma once

// The 21 attributes of a field schema, addressed by
// KOR_FIELD_SCHEMA::get_metafield_value / set_metafield_value. The numbers are
// fixed: the schema editor maps its columns onto them and update command files
// store them.
enum KOR_METAFIELD
{
    KMF_DEFAULT_VALUE = 0,           // QVariant of the field's type
    KMF_REQUIRED = 1,                // bool
    KMF_LOCALISED = 2,               // bool
    KMF_SPREADSHEET = 3,             // QString, spreadsheet for localisation
    KMF_PRIMARY_KEY = 4,             // bool
    KMF_FIELD_NAME = 5,              // QString
    KMF_FIELD_TYPE = 6,              // int (KOR_FIELD_TYPE)
    KMF_MAX_LENGTH = 7,              // int, text only; -1 for none
    KMF_FOREIGN_TABLE = 8,           // QString
    KMF_FOREIGN_FIELD = 9,           // QString
    KMF_LOOKUP_FIELDS = 10,          // QStringList, shown joined with ":"
    KMF_IS_FILE = 11,                // bool, points to a file within working_data
    KMF_RELATIVE_PATH = 12,          // QString
    KMF_FRAGMENT_PATH = 13,          // QString
    KMF_DESCRIPTION = 14,            // QString
    KMF_ENCYCLOPAEDIA_EXPORT = 15,   // bool
    KMF_AGF_FROM_THIS_FIELD = 16,    // bool
    KMF_AGF_TOWARDS_THIS_FIELD = 17, // bool
    KMF_AGF_DONE = 18,               // bool
    KMF_STARTPOS_REPROCESS = 19,     // bool
    KMF_CAMPAIGN_MAP_REPROCESS = 20, // bool
    KMF_COUNT = 21
};
