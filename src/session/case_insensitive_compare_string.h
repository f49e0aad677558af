#pragma once

#include <QString>

// A field name as the key of a record's field map. Ordering and equality
// ignore case, so "Unit_Name" finds the field "unit_name".
class CASE_INSENSITIVE_COMPARE_STRING
{
public:
    CASE_INSENSITIVE_COMPARE_STRING() = default;
    CASE_INSENSITIVE_COMPARE_STRING(const QString& string) : m_string(string) {}
    CASE_INSENSITIVE_COMPARE_STRING(const char* string) : m_string(QString::fromUtf8(string)) {}

    const QString& string() const { return m_string; }

    // Negative, zero or positive like QString::compare, ignoring case.
    static int compare(const QString& a, const QString& b);

    bool operator<(const CASE_INSENSITIVE_COMPARE_STRING& other) const
    {
        return compare(m_string, other.m_string) < 0;
    }
    bool operator==(const CASE_INSENSITIVE_COMPARE_STRING& other) const
    {
        return compare(m_string, other.m_string) == 0;
    }
    bool operator!=(const CASE_INSENSITIVE_COMPARE_STRING& other) const { return !(*this == other); }

private:
    QString m_string;
};
