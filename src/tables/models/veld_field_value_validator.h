#pragma once

#include <QString>
#include <QVariant>

class KOR_FIELD_SCHEMA;

// Checks a text typed into a cell against the type of its field and gives the
// value the record stores.
//
// Line feeds and carriage returns are taken out first, so pasted cells keep no
// line breaks.
class VELD_FIELD_VALUE_VALIDATOR
{
public:
    // True with `value` set when the text fits the field. On failure `message`
    // holds the type's own message, which is empty for a type outside the
    // enumeration. A null field accepts any text as it stands.
    static bool validate(const KOR_FIELD_SCHEMA* field, const QString& text, QVariant& value,
                         QString& message);

    // The text with every line feed and carriage return removed.
    static QString strip_line_breaks(const QString& text);
};
