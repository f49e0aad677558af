#pragma once

// The type of a field. The numbers are stored in schema files and computed
// with by the schema editor, so they never change. Value 0 is "no type"; any
// number of 12 or above lies outside the enumeration.
enum KOR_FIELD_TYPE
{
    KFT_NONE = 0,
    KFT_YESNO = 1,            // "yesno", bool
    KFT_INTEGER = 2,          // "integer", int, full signed 32-bit range
    KFT_UNSIGNED_INTEGER = 3, // "unsigned_integer", int, 0 to 2147483647
    KFT_SINGLE = 4,           // "single", float
    KFT_DOUBLE = 5,           // "double", double
    KFT_DECIMAL = 6,          // "decimal", double
    KFT_TEXT = 7,             // "text", QString; the only type with a maximum length
    KFT_AUTONUMBER = 8,       // "autonumber", int
    KFT_DATE_TIME = 9,        // "date_time", QDateTime (UTC)
    KFT_UNIQUE_ID = 10,       // "unique_id", quint64
    KFT_CARD64 = 11           // "card64", quint64
};
