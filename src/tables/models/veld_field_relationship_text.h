#pragma once

#include <QString>

class KOR_FIELD_SCHEMA;

// The rich text of a column header's tool tip: a field's description and its
// relationships (what it depends on, what depends on it, where it looks values
// up and who looks values up through it).
class VELD_FIELD_RELATIONSHIP_TEXT
{
public:
    // `description` is the one to show: the pending one if any, else the
    // schema's.
    static QString build(const KOR_FIELD_SCHEMA& field, const QString& description);
};
