#include "cli_search_command.h"

#include "cli_database.h"
#include "cli_output.h"
#include "global_search.h"
#include "kor_xml_query_interface.h"

#include <QCommandLineParser>

namespace
{
const char* const CASE_SENSITIVE = "case-sensitive";
const char* const EXACT = "exact";
const char* const HEADER = "header";
} // namespace

QString CLI_SEARCH_COMMAND::summary() const
{
    return QStringLiteral("Find a text (with * wildcards) in every value of every table.");
}

QString CLI_SEARCH_COMMAND::description() const
{
    return QStringLiteral(
        "Searches every value of every table of the database in the folder DB for TEXT, as the\n"
        "editor's global search does: * stands for any run of characters and ? for one; the case is\n"
        "ignored unless asked for; without --exact a value matches when the text is found anywhere\n"
        "in it.\n"
        "\n"
        "Prints one hit a line, tab-separated: table, field, record key, value (tabs, line breaks and\n"
        "backslashes in them as \\t, \\n, \\r and \\\\); tables in name order, records in key order,\n"
        "fields in column order.\n"
        "\n"
        "Exit codes: 0 hits, 1 no hit, 2 usage error or a table that could not be read.");
}

void CLI_SEARCH_COMMAND::add_options(QCommandLineParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("DB"), QStringLiteral("The database folder."));
    parser.addPositionalArgument(QStringLiteral("TEXT"),
                                 QStringLiteral("What to look for; * and ? are wildcards."));
    parser.addOption(QCommandLineOption({QStringLiteral("c"), QLatin1String(CASE_SENSITIVE)},
                                        QStringLiteral("Match the case of letters.")));
    parser.addOption(QCommandLineOption({QStringLiteral("x"), QLatin1String(EXACT)},
                                        QStringLiteral("The whole value must match.")));
    parser.addOption(QCommandLineOption(QLatin1String(HEADER),
                                        QStringLiteral("Print a header line with the column names first.")));
}

int CLI_SEARCH_COMMAND::run(const QCommandLineParser& parser, CLI_OUTPUT& output) const
{
    CLI_DATABASE database;
    QString error;
    if (!database.open(error, parser.positionalArguments().at(0)))
        return output.fail(error);
    const GLOBAL_SEARCH search(parser.positionalArguments().at(1),
                               parser.isSet(QLatin1String(CASE_SENSITIVE)) ? Qt::CaseSensitive
                                                                           : Qt::CaseInsensitive,
                               parser.isSet(QLatin1String(EXACT)));
    if (parser.isSet(QLatin1String(HEADER)))
        output.out() << CLI_OUTPUT::row({QStringLiteral("Table Name"), QStringLiteral("Field Name"),
                                         QStringLiteral("Key"), QStringLiteral("Value")})
                     << '\n';
    QVector<GLOBAL_SEARCH_HIT> hits;
    int total = 0;
    int failures = 0;
    GLOBAL_SEARCH::HOOKS hooks;
    hooks.before_table = [&output](const QString& table, int index, int count) {
        output.progress(QStringLiteral("searching table %1 of %2: %3").arg(index + 1).arg(count).arg(table));
    };
    hooks.table_failed = [&output, &failures](const QString& table, const QString& reason) {
        output.note(QStringLiteral("%1: %2").arg(table, reason));
        ++failures;
    };
    // Each table's hits are printed as soon as it is searched, and its
    // records let go: a search never holds more than one large table.
    hooks.after_table = [&](const QString& table, int) {
        if (!hits.isEmpty())
            output.end_progress();
        for (const GLOBAL_SEARCH_HIT& hit : qAsConst(hits))
            output.out() << CLI_OUTPUT::row({hit.table_name, hit.field_name, hit.key, hit.value}) << '\n';
        total += hits.size();
        hits.clear();
        database.engine().clear_table_data(table);
        return true;
    };
    search.search(database.engine(), hits, hooks);
    output.end_progress();
    if (failures > 0)
        return CLI_OUTPUT::FAILURE;
    return total > 0 ? CLI_OUTPUT::SUCCESS : CLI_OUTPUT::FINDINGS;
}
