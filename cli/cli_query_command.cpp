#include "cli_query_command.h"

#include "cli_database.h"
#include "cli_output.h"
#include "kor_field_data.h"
#include "kor_query_results.h"
#include "kor_xml_query_interface.h"

#include <QCommandLineParser>

namespace
{
const char* const NO_HEADER = "no-header";
} // namespace

QString CLI_QUERY_COMMAND::summary() const
{
    return QStringLiteral("Run a statement of the simple SQL and print its rows.");
}

QString CLI_QUERY_COMMAND::description() const
{
    return QStringLiteral(
        "Runs SQL, a statement of the editor's simple SQL (SELECT ... FROM [table] [JOIN [table] ON\n"
        "[a.field] = [b.field]] [WHERE ...]; docs/simple-sql.md), on the database in the folder DB.\n"
        "\n"
        "Prints a header line with the result's field names, then one row a line, tab-separated (tabs,\n"
        "line breaks and backslashes in values as \\t, \\n, \\r and \\\\), in the order the statement\n"
        "gives.\n"
        "\n"
        "Exit codes: 0 done (also with no rows), 2 usage error, a folder that is no database, or a\n"
        "statement the engine refuses (its reason on standard error).");
}

void CLI_QUERY_COMMAND::add_options(QCommandLineParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("DB"), QStringLiteral("The database folder."));
    parser.addPositionalArgument(QStringLiteral("SQL"),
                                 QStringLiteral("The statement, quoted as one argument."));
    parser.addOption(
        QCommandLineOption(QLatin1String(NO_HEADER), QStringLiteral("Leave the header line out.")));
}

int CLI_QUERY_COMMAND::run(const QCommandLineParser& parser, CLI_OUTPUT& output) const
{
    CLI_DATABASE database;
    QString error;
    if (!database.open(error, parser.positionalArguments().at(0)))
        return output.fail(error);
    KOR_QUERY_RESULTS results;
    output.progress(QStringLiteral("running the statement"));
    const bool done =
        database.engine().get_query_data_from_simple_sql(error, results, parser.positionalArguments().at(1));
    output.end_progress();
    if (!done)
        return output.fail(error.isEmpty() ? QStringLiteral("the statement could not be run") : error);
    QTextStream& out = output.out();
    if (!parser.isSet(QLatin1String(NO_HEADER)))
        out << CLI_OUTPUT::row(results.field_names()) << '\n';
    QStringList row;
    for (int record = 0; record < results.record_count(); ++record)
    {
        row.clear();
        for (int column = 0; column < results.field_count(); ++column)
            row.append(KOR_FIELD_DATA::variant_to_text(results.value(record, column)));
        out << CLI_OUTPUT::row(row) << '\n';
    }
    return CLI_OUTPUT::SUCCESS;
}
