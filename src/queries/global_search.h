#pragma once

#include "global_search_pattern.h"

#include <QString>
#include <QVector>

#include <functional>

class KOR_QUERY_INTERFACE;
class KOR_TABLE_DATA;

// One value that matched: a row of the global search's results.
struct GLOBAL_SEARCH_HIT
{
    QString table_name;
    QString field_name;
    QString key;
    QString value;
};
// Four shared strings: a growing result moves them without touching them.
Q_DECLARE_TYPEINFO(GLOBAL_SEARCH_HIT, Q_MOVABLE_TYPE);

// A search of one text through every value of every table, below the global
// search window: tables in key order, each table's records in key order, and
// a record's fields in the table's column order. Values are tested as the
// text the table file holds (value_text).
class GLOBAL_SEARCH
{
public:
    // What the caller hears while a search walks the tables. Every member
    // may be left empty.
    struct HOOKS
    {
        // Before a table is fetched: its name, its place and the number of tables.
        std::function<void(const QString& table_name, int index, int count)> before_table;
        // A table that could not be fetched; it is left out.
        std::function<void(const QString& table_name, const QString& error)> table_failed;
        // After a table was searched, with the number of hits so far; false ends
        // the search there.
        std::function<bool(const QString& table_name, int hit_count)> after_table;
    };

    GLOBAL_SEARCH(const QString& text, Qt::CaseSensitivity case_sensitivity, bool exact_match);

    const GLOBAL_SEARCH_PATTERN& pattern() const { return m_pattern; }

    // Appends the hits of one table; answers how many were added.
    int search_table(const KOR_TABLE_DATA& table, QVector<GLOBAL_SEARCH_HIT>& hits) const;

    // Every table of the database, each fetched with get_table_data. False when
    // a hook ended the search early; the hits found until then stay.
    bool search(KOR_QUERY_INTERFACE& query_interface, QVector<GLOBAL_SEARCH_HIT>& hits,
                const HOOKS& hooks = HOOKS()) const;

private:
    GLOBAL_SEARCH_PATTERN m_pattern;
};
