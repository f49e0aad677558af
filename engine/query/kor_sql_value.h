#pragma once

#include <QString>
#include <QtGlobal>

// One value as the query evaluator compares it: none, a boolean, a signed or
// unsigned 64-bit integer, a real or a text.
//
// Numbers compare exactly across their kinds (an unsigned 2^64-1 is larger
// than every signed value, 3 equals 3.0); booleans take part as 0 and 1. A
// NaN is unordered: every comparison with it is false. Texts compare by their
// UTF-16 code units, so case matters.
class KOR_SQL_VALUE
{
public:
    enum KIND
    {
        NONE,
        BOOLEAN,
        INTEGER,
        UNSIGNED,
        REAL,
        TEXT
    };

    KOR_SQL_VALUE() = default;
    static KOR_SQL_VALUE from_boolean(bool value);
    static KOR_SQL_VALUE from_integer(qint64 value);
    static KOR_SQL_VALUE from_unsigned(quint64 value);
    static KOR_SQL_VALUE from_real(double value);
    static KOR_SQL_VALUE from_text(const QString& value);

    KIND kind() const { return m_kind; }
    bool is_none() const { return m_kind == NONE; }
    bool is_number() const { return m_kind == BOOLEAN || m_kind == INTEGER || m_kind == UNSIGNED || m_kind == REAL; }
    bool boolean() const { return m_kind == BOOLEAN ? m_number.boolean : false; }
    const QString& text() const { return m_text; }
    // A number as a double (booleans 0 and 1); 0 for none and texts.
    double to_double() const;
    // Whether the value can equal anything: not none, not a NaN.
    bool is_comparable() const;

    // Texts as they are; numbers in decimal (reals in the shortest form that
    // reads back the same); booleans "true" and "false"; none empty.
    QString to_text() const;

    // Orders two values of the same family (numbers with numbers, texts with
    // texts): false when they cannot be ordered (NaN, none, or different
    // families), otherwise order is negative, zero or positive.
    static bool compare(const KOR_SQL_VALUE& left, const KOR_SQL_VALUE& right, int& order);

    // Equal values hash alike, also across number kinds (3, 3u, 3.0 and TRUE
    // with 1), so numbers of different field types can meet in a hash join.
    uint hash() const;

private:
    KIND m_kind = NONE;
    union
    {
        bool boolean;
        qint64 integer;
        quint64 unsigned_integer;
        double real;
    } m_number = {false};
    QString m_text;
};

inline uint qHash(const KOR_SQL_VALUE& value, uint seed = 0)
{
    return value.hash() ^ seed;
}
