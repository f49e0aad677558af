// The query members of KOR_XML_QUERY_INTERFACE and of its private state:
// saved queries, read on connect into the query state, and the simple SQL,
// run through parser, binder and executor.
#include "kor_xml_query_interface.h"
#include "kor_xml_query_interface_p.h"

#include "kor_query_results.h"
#include "kor_query_schema.h"
#include "kor_query_state.h"
#include "kor_query_store.h"
#include "kor_sql_binder.h"
#include "kor_sql_executor.h"
#include "kor_sql_parser.h"
#include "progress_callback.h"

namespace
{
void destroy_state(KOR_QUERY_STATE* state)
{
    delete state;
}

bool run_statement(const KOR_XML_QUERY_INTERFACE& database, QString& error, KOR_QUERY_RESULTS& results,
                   const QString& sql)
{
    results.clear();
    error.clear();
    if (!database.is_connected())
    {
        error = QStringLiteral("The database is not connected");
        return false;
    }
    KOR_SQL_STATEMENT statement;
    if (!KOR_SQL_PARSER::parse(sql, statement, error))
        return false;
    KOR_SQL_PLAN plan;
    if (!KOR_SQL_BINDER::bind(sql, statement, database, plan, error))
        return false;
    // Reading a table loads it on first use. That fills the interface's
    // cache and changes no data, so the query operations stay const as the
    // contract has them.
    return KOR_SQL_EXECUTOR::run(plan, const_cast<KOR_XML_QUERY_INTERFACE&>(database), results, error);
}
}

QString KOR_XML_QUERY_INTERFACE_PRIVATE::open_queries()
{
    if (!query_state)
        query_state = std::unique_ptr<KOR_QUERY_STATE, void (*)(KOR_QUERY_STATE*)>(new KOR_QUERY_STATE, &destroy_state);
    QStringList warnings;
    query_state->saved_queries.load(path, warnings);
    for (const QString& warning : qAsConst(warnings))
        report(warning, PROGRESS_CALLBACK::SEVERITY_WARNING);
    // A damaged query file costs the saved queries, never the connection.
    return QString();
}

void KOR_XML_QUERY_INTERFACE_PRIVATE::close_queries()
{
    if (query_state)
        query_state->saved_queries.clear();
}

QMap<QString, KOR_QUERY_SCHEMA*> KOR_XML_QUERY_INTERFACE::get_query_schemas() const
{
    return d->query_state ? d->query_state->saved_queries.queries() : QMap<QString, KOR_QUERY_SCHEMA*>();
}

KOR_QUERY_SCHEMA* KOR_XML_QUERY_INTERFACE::get_query_schema(const QString& query_name) const
{
    return d->query_state ? d->query_state->saved_queries.query(query_name) : nullptr;
}

bool KOR_XML_QUERY_INTERFACE::get_query_data(QString& error, KOR_QUERY_RESULTS& results,
                                             const QString& query_name) const
{
    const KOR_QUERY_SCHEMA* query = get_query_schema(query_name);
    if (!query)
    {
        results.clear();
        return d->fail(error, is_connected() ? QStringLiteral("Unknown query '%1'").arg(query_name)
                                             : QStringLiteral("The database is not connected"));
    }
    if (run_statement(*this, error, results, query->statement()))
        return true;
    return d->fail(error, QStringLiteral("Query '%1': %2").arg(query_name, error));
}

bool KOR_XML_QUERY_INTERFACE::get_query_data_from_string(QString& error, KOR_QUERY_RESULTS& results,
                                                         const QString& query_text) const
{
    // A saved query's stored form is its statement, so a query given as text
    // is a statement.
    if (run_statement(*this, error, results, query_text))
        return true;
    return d->fail(error, error);
}

bool KOR_XML_QUERY_INTERFACE::get_query_data_from_simple_sql(QString& error, KOR_QUERY_RESULTS& results,
                                                             const QString& sql) const
{
    if (run_statement(*this, error, results, sql))
        return true;
    return d->fail(error, error);
}
