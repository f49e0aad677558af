#pragma once

#include <QString>
#include <QStringList>

class KOR_TABLE_SCHEMA;

// The AGF special dependencies of a table: extra asset-graph edges that no
// relationship field describes. The text is a list of entries separated by
// ";", each "field->table.field" (edges from this table's field) or
// "field<-table.field" (edges towards it); blanks around parts are ignored.
// See docs/db-format.md.
class AGF_DEPENDENCY_BUILDER
{
public:
    // False with a reason when the text is malformed or names a field the
    // schema lacks. An empty text is valid.
    static bool validate_special_dependency_string(const QString& text, const KOR_TABLE_SCHEMA& schema,
                                                   QString& error);
    // The entries of a valid text, trimmed, in order.
    static QStringList entries(const QString& text);
};
