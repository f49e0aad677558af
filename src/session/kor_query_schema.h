#pragma once

#include <QString>

// The definition of one saved query: its name, its statement in the simple
// SQL of the query interface, and an optional description. Saved queries are
// read when the database connects and belong to the query interface.
class KOR_QUERY_SCHEMA
{
public:
    KOR_QUERY_SCHEMA(const QString& query_name, const QString& statement, const QString& description = QString());
    virtual ~KOR_QUERY_SCHEMA();

    const QString& get_query_name() const { return m_query_name; }
    const QString& statement() const { return m_statement; }
    const QString& description() const { return m_description; }

private:
    QString m_query_name;
    QString m_statement;
    QString m_description;
};
