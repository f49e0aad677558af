#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

class KOR_QUERY_SCHEMA;

// The saved queries of a database, kept in one file at the top of the
// database folder, "Veld_queries.xml" (docs/saved-queries.md). Files whose
// names start with "Veld" are never tables, so the file stays out of the
// table list.
class KOR_QUERY_STORE
{
public:
    static QString file_name();

    KOR_QUERY_STORE() = default;
    ~KOR_QUERY_STORE();
    KOR_QUERY_STORE(const KOR_QUERY_STORE&) = delete;
    KOR_QUERY_STORE& operator=(const KOR_QUERY_STORE&) = delete;

    // Reads the queries of the database in a folder, replacing those held.
    // A missing file means no saved queries. Problems never stop a connect:
    // each is appended to `warnings` naming the file and line; a query with
    // a problem of its own is skipped, a file that is not well-formed XML
    // gives no queries at all. Statements that do not read are kept (running
    // them reports the syntax error) and warned about.
    void load(const QString& database_path, QStringList& warnings);
    void clear();

    // Name to query, in name order. The store owns the queries.
    const QMap<QString, KOR_QUERY_SCHEMA*>& queries() const { return m_queries; }
    // Null when there is no query of that name.
    KOR_QUERY_SCHEMA* query(const QString& name) const { return m_queries.value(name); }

    // Writes the queries of a database folder in name order, atomically;
    // the same queries always give the same bytes. Empty on success, else
    // the error. Names must be unique and not empty.
    static QString save(const QString& database_path, const QList<const KOR_QUERY_SCHEMA*>& queries);

private:
    QMap<QString, KOR_QUERY_SCHEMA*> m_queries;
};
