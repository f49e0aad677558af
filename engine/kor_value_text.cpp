#include "kor_value_text.h"

#include <QDate>
#include <QDateTime>

#include <charconv>
#include <cstring>
#include <string_view>

namespace
{
// Hexadecimal digits to their values, -1 for any other byte: a table read
// parses a uuid a record, a million times for a large table.
struct HEX_TABLE
{
    signed char values[256];
    constexpr HEX_TABLE() : values()
    {
        for (int i = 0; i < 256; ++i)
            values[i] = -1;
        for (int i = 0; i < 10; ++i)
            values['0' + i] = static_cast<signed char>(i);
        for (int i = 0; i < 6; ++i)
        {
            values['a' + i] = static_cast<signed char>(10 + i);
            values['A' + i] = static_cast<signed char>(10 + i);
        }
    }
};
constexpr HEX_TABLE hex_table;

int hex_value(char c)
{
    return hex_table.values[static_cast<unsigned char>(c)];
}

// Days since 1970-01-01 of a civil date (proleptic Gregorian).
qint64 days_from_civil(int year, int month, int day)
{
    year -= month <= 2;
    const qint64 era = (year >= 0 ? year : year - 399) / 400;
    const int year_of_era = int(year - era * 400);
    const int day_of_year = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const int day_of_era = year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year;
    return era * 146097 + day_of_era - 719468;
}

bool digits(const char* text, int count, int& out)
{
    out = 0;
    for (int i = 0; i < count; ++i)
    {
        if (text[i] < '0' || text[i] > '9')
            return false;
        out = out * 10 + (text[i] - '0');
    }
    return true;
}

} // namespace

namespace KOR_VALUE_TEXT
{
bool parse_int32(const char* begin, const char* end, int& out)
{
    trim(begin, end);
    if (begin < end && *begin == '+')
        ++begin;
    const auto result = std::from_chars(begin, end, out);
    return result.ec == std::errc() && result.ptr == end && begin < end;
}

bool parse_uint64(const char* begin, const char* end, quint64& out)
{
    trim(begin, end);
    if (begin < end && *begin == '+')
        ++begin;
    unsigned long long value = 0;
    const auto result = std::from_chars(begin, end, value);
    out = value;
    return result.ec == std::errc() && result.ptr == end && begin < end;
}

namespace
{
template <typename T> bool parse_floating_number(const char* begin, const char* end, T& out)
{
    trim(begin, end);
    if (begin < end && *begin == '+')
        ++begin;
    const auto result = std::from_chars(begin, end, out);
    return result.ec == std::errc() && result.ptr == end && begin < end;
}
} // namespace

bool parse_floating(const char* begin, const char* end, float& out)
{
    return parse_floating_number(begin, end, out);
}

bool parse_floating(const char* begin, const char* end, double& out)
{
    return parse_floating_number(begin, end, out);
}

bool parse_bool(const char* begin, const char* end, bool& out)
{
    trim(begin, end);
    const std::string_view text(begin, size_t(end - begin));
    if (text == "true" || text == "1" || text == "True" || text == "TRUE")
        out = true;
    else if (text == "false" || text == "0" || text == "False" || text == "FALSE")
        out = false;
    else
        return false;
    return true;
}

// "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx", with or without braces.
bool parse_uuid(const char* text, QUuid& out)
{
    size_t length = std::strlen(text);
    if (length == 38 && text[0] == '{' && text[37] == '}')
    {
        ++text;
        length = 36;
    }
    if (length != 36 || text[8] != '-' || text[13] != '-' || text[18] != '-' || text[23] != '-')
        return false;
    // Where each byte's two digits stand.
    static const unsigned char positions[16] = {0, 2, 4, 6, 9, 11, 14, 16, 19, 21, 24, 26, 28, 30, 32, 34};
    uchar bytes[16];
    int invalid = 0;
    for (int byte = 0; byte < 16; ++byte)
    {
        const int high = hex_value(text[positions[byte]]);
        const int low = hex_value(text[positions[byte] + 1]);
        invalid |= high | low;
        bytes[byte] = uchar(high * 16 + low);
    }
    if (invalid < 0)
        return false;
    out = QUuid(uint(bytes[0]) << 24 | uint(bytes[1]) << 16 | uint(bytes[2]) << 8 | bytes[3],
                ushort(bytes[4] << 8 | bytes[5]), ushort(bytes[6] << 8 | bytes[7]), bytes[8], bytes[9],
                bytes[10], bytes[11], bytes[12], bytes[13], bytes[14], bytes[15]);
    return true;
}

// "YYYY-MM-DDTHH:MM:SS[.mmm]Z" to milliseconds since the epoch. `strict`
// also refuses what Qt's date and time classes refuse (February 30th, a
// leap second, the year 0), so that its answers are theirs.
bool parse_timestamp(const char* text, const char* end, qint64& out, bool strict)
{
    const size_t length = size_t(end - text);
    int millis = 0;
    if (length < 20 || text[4] != '-' || text[7] != '-' || text[10] != 'T' || text[13] != ':' ||
        text[16] != ':')
        return false;
    // Two timestamps a record: the digits are checked in one pass.
    static const unsigned char digit_positions[] = {0, 1, 2, 3, 5, 6, 8, 9, 11, 12, 14, 15, 17, 18};
    bool all_digits = true;
    for (const unsigned char position : digit_positions)
        all_digits &= static_cast<unsigned char>(text[position] - '0') <= 9;
    if (!all_digits)
        return false;
    const auto two = [text](int position) {
        return (text[position] - '0') * 10 + (text[position + 1] - '0');
    };
    const int year = two(0) * 100 + two(2);
    const int month = two(5);
    const int day = two(8);
    const int hour = two(11);
    const int minute = two(14);
    const int second = two(17);
    size_t position = 19;
    if (text[position] == '.')
    {
        if (length < 24 || !digits(text + 20, 3, millis))
            return false;
        position = 23;
    }
    if (text[position] != 'Z' || position + 1 != length)
        return false;
    if (month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 || minute > 59 || second > 60)
        return false;
    if (strict && (second > 59 || !QDate::isValid(year, month, day)))
        return false;
    out = ((days_from_civil(year, month, day) * 24 + hour) * 60 + minute) * 60000 + second * 1000 + millis;
    return true;
}

// "YYYY-MM-DDTHH:MM:SS.mmmZ" of milliseconds since the epoch, into 24
// bytes; false outside the years 1 to 9999, which Qt writes otherwise. A
// table writes one a record and often one a field: through QDateTime's
// formatting they were most of the time it took to save a large table.
bool format_timestamp(qint64 msecs, char* out)
{
    const qint64 day_msecs = 86400000;
    qint64 days = msecs / day_msecs;
    qint64 rest = msecs % day_msecs;
    if (rest < 0)
    {
        rest += day_msecs;
        --days;
    }
    // The inverse of days_from_civil.
    days += 719468;
    const qint64 era = (days >= 0 ? days : days - 146096) / 146097;
    const unsigned day_of_era = unsigned(days - era * 146097);
    const unsigned year_of_era =
        (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
    const unsigned day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
    const unsigned shifted_month = (5 * day_of_year + 2) / 153;
    const unsigned day = day_of_year - (153 * shifted_month + 2) / 5 + 1;
    const unsigned month = shifted_month < 10 ? shifted_month + 3 : shifted_month - 9;
    const qint64 year = qint64(year_of_era) + era * 400 + (month <= 2 ? 1 : 0);
    if (year < 1 || year > 9999)
        return false;
    const auto put = [&out](int position, unsigned value, int width) {
        for (int i = width - 1; i >= 0; --i)
        {
            out[position + i] = char('0' + value % 10);
            value /= 10;
        }
    };
    const unsigned millis = unsigned(rest);
    put(0, unsigned(year), 4);
    out[4] = '-';
    put(5, month, 2);
    out[7] = '-';
    put(8, day, 2);
    out[10] = 'T';
    put(11, millis / 3600000, 2);
    out[13] = ':';
    put(14, millis / 60000 % 60, 2);
    out[16] = ':';
    put(17, millis / 1000 % 60, 2);
    out[19] = '.';
    put(20, millis % 1000, 3);
    out[23] = 'Z';
    return true;
}

QString timestamp_text(qint64 msecs)
{
    char text[24];
    if (format_timestamp(msecs, text))
        return QString::fromLatin1(text, 24);
    return QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC)
        .toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzzZ"));
}

void format_uuid(const QUuid& uuid, char* out)
{
    static const char digits[] = "0123456789abcdef";
    const unsigned char bytes[16] = {
        uchar(uuid.data1 >> 24), uchar(uuid.data1 >> 16), uchar(uuid.data1 >> 8), uchar(uuid.data1),
        uchar(uuid.data2 >> 8),  uchar(uuid.data2),       uchar(uuid.data3 >> 8), uchar(uuid.data3),
        uuid.data4[0],           uuid.data4[1],           uuid.data4[2],          uuid.data4[3],
        uuid.data4[4],           uuid.data4[5],           uuid.data4[6],          uuid.data4[7]};
    int position = 0;
    for (int i = 0; i < 16; ++i)
    {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            out[position++] = '-';
        out[position++] = digits[bytes[i] >> 4];
        out[position++] = digits[bytes[i] & 15];
    }
}
} // namespace KOR_VALUE_TEXT
