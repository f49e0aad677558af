#pragma once

// The texts of values in the engine's files, read and written without Qt's
// general conversions: a large table holds millions of them, and parsing a
// date through QDateTime or formatting a uuid through QString cost more than
// the rest of reading or writing it. Each function accepts exactly what the
// format of docs/db-format.md allows, or says no.

#include <QString>
#include <QUuid>
#include <QtGlobal>

namespace KOR_VALUE_TEXT
{
inline bool is_blank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// Moves begin and end past blanks at either end.
inline void trim(const char*& begin, const char*& end)
{
    while (begin < end && is_blank(*begin))
        ++begin;
    while (end > begin && is_blank(end[-1]))
        --end;
}

// Numbers: blanks around them and a leading '+' are allowed; nothing else.
bool parse_int32(const char* begin, const char* end, int& out);
bool parse_uint64(const char* begin, const char* end, quint64& out);
bool parse_floating(const char* begin, const char* end, float& out);
bool parse_floating(const char* begin, const char* end, double& out);
// "true", "1", "True", "TRUE" and their opposites.
bool parse_bool(const char* begin, const char* end, bool& out);
// "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx", with or without braces.
bool parse_uuid(const char* text, QUuid& out);
// The same without braces, in lower case, into 36 bytes.
void format_uuid(const QUuid& uuid, char* out);

// "YYYY-MM-DDTHH:MM:SS[.mmm]Z" to milliseconds since the epoch. `strict`
// also refuses what Qt's date and time classes refuse (February 30th, a leap
// second, the year 0), so that its answers are theirs.
bool parse_timestamp(const char* text, const char* end, qint64& out, bool strict);
// "YYYY-MM-DDTHH:MM:SS.mmmZ" into 24 bytes; false outside the years 1 to
// 9999, which Qt writes otherwise.
bool format_timestamp(qint64 msecs, char* out);
// The same as a text, through Qt for the years format_timestamp refuses.
QString timestamp_text(qint64 msecs);
} // namespace KOR_VALUE_TEXT
