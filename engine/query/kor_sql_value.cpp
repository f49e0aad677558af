#include "kor_sql_value.h"

#include <QHashFunctions>
#include <QLocale>

#include <cmath>
#include <limits>

namespace
{
template <typename T>
int three_way(T left, T right)
{
    return left < right ? -1 : (right < left ? 1 : 0);
}
}

KOR_SQL_VALUE KOR_SQL_VALUE::from_boolean(bool value)
{
    KOR_SQL_VALUE result;
    result.m_kind = BOOLEAN;
    result.m_number.boolean = value;
    return result;
}

KOR_SQL_VALUE KOR_SQL_VALUE::from_integer(qint64 value)
{
    KOR_SQL_VALUE result;
    result.m_kind = INTEGER;
    result.m_number.integer = value;
    return result;
}

KOR_SQL_VALUE KOR_SQL_VALUE::from_unsigned(quint64 value)
{
    KOR_SQL_VALUE result;
    result.m_kind = UNSIGNED;
    result.m_number.unsigned_integer = value;
    return result;
}

KOR_SQL_VALUE KOR_SQL_VALUE::from_real(double value)
{
    KOR_SQL_VALUE result;
    result.m_kind = REAL;
    result.m_number.real = value;
    return result;
}

KOR_SQL_VALUE KOR_SQL_VALUE::from_text(const QString& value)
{
    KOR_SQL_VALUE result;
    result.m_kind = TEXT;
    result.m_text = value;
    return result;
}

double KOR_SQL_VALUE::to_double() const
{
    switch (m_kind)
    {
    case BOOLEAN: return m_number.boolean ? 1.0 : 0.0;
    case INTEGER: return double(m_number.integer);
    case UNSIGNED: return double(m_number.unsigned_integer);
    case REAL: return m_number.real;
    default: return 0.0;
    }
}

bool KOR_SQL_VALUE::is_comparable() const
{
    return m_kind != NONE && !(m_kind == REAL && std::isnan(m_number.real));
}

QString KOR_SQL_VALUE::to_text() const
{
    switch (m_kind)
    {
    case NONE: return QString();
    case BOOLEAN: return m_number.boolean ? QStringLiteral("true") : QStringLiteral("false");
    case INTEGER: return QString::number(m_number.integer);
    case UNSIGNED: return QString::number(m_number.unsigned_integer);
    case REAL: return QString::number(m_number.real, 'g', QLocale::FloatingPointShortest);
    case TEXT: return m_text;
    }
    return QString();
}

bool KOR_SQL_VALUE::compare(const KOR_SQL_VALUE& left, const KOR_SQL_VALUE& right, int& order)
{
    order = 0;
    if (left.m_kind == TEXT || right.m_kind == TEXT)
    {
        if (left.m_kind != right.m_kind)
            return false;
        order = left.m_text.compare(right.m_text, Qt::CaseSensitive);
        return true;
    }
    if (!left.is_number() || !right.is_number())
        return false;

    // Booleans count as the integers 0 and 1.
    auto integer_of = [](const KOR_SQL_VALUE& v) {
        return v.m_kind == BOOLEAN ? qint64(v.m_number.boolean ? 1 : 0) : v.m_number.integer;
    };
    const KIND lk = left.m_kind == BOOLEAN ? INTEGER : left.m_kind;
    const KIND rk = right.m_kind == BOOLEAN ? INTEGER : right.m_kind;

    if (lk == INTEGER && rk == INTEGER)
        order = three_way(integer_of(left), integer_of(right));
    else if (lk == UNSIGNED && rk == UNSIGNED)
        order = three_way(left.m_number.unsigned_integer, right.m_number.unsigned_integer);
    else if (lk == INTEGER && rk == UNSIGNED)
    {
        const qint64 l = integer_of(left);
        order = l < 0 ? -1 : three_way(quint64(l), right.m_number.unsigned_integer);
    }
    else if (lk == UNSIGNED && rk == INTEGER)
    {
        const qint64 r = integer_of(right);
        order = r < 0 ? 1 : three_way(left.m_number.unsigned_integer, quint64(r));
    }
    else
    {
        // A long double holds every 64-bit integer exactly on the platforms
        // we build for; only comparisons with a real come here.
        auto widened = [](const KOR_SQL_VALUE& v) -> long double {
            switch (v.m_kind)
            {
            case BOOLEAN: return v.m_number.boolean ? 1.0L : 0.0L;
            case INTEGER: return static_cast<long double>(v.m_number.integer);
            case UNSIGNED: return static_cast<long double>(v.m_number.unsigned_integer);
            default: return static_cast<long double>(v.m_number.real);
            }
        };
        const long double l = widened(left);
        const long double r = widened(right);
        if (std::isnan(l) || std::isnan(r))
            return false;
        order = three_way(l, r);
    }
    return true;
}

uint KOR_SQL_VALUE::hash() const
{
    switch (m_kind)
    {
    case NONE:
        return 0;
    case TEXT:
        return qHash(m_text);
    case BOOLEAN:
        return qHash(qint64(m_number.boolean ? 1 : 0));
    case INTEGER:
        return qHash(m_number.integer);
    case UNSIGNED:
        if (m_number.unsigned_integer <= quint64(std::numeric_limits<qint64>::max()))
            return qHash(qint64(m_number.unsigned_integer));
        return qHash(m_number.unsigned_integer);
    case REAL:
    {
        const double d = m_number.real;
        // A real that equals an integer hashes as that integer; -0.0 is 0.
        if (std::isfinite(d) && d == std::floor(d))
        {
            if (d >= -9223372036854775808.0 && d < 9223372036854775808.0)
                return qHash(qint64(d));
            if (d >= 0 && d < 18446744073709551616.0)
                return qHash(quint64(d));
        }
        return qHash(d);
    }
    }
    return 0;
}
