#include "cli_stats_command.h"

#include "cli_output.h"
#include "db_statistics.h"

#include <QCommandLineParser>
#include <QLocale>

namespace
{
const char* const TOP = "top";

QString count_text(qint64 value)
{
    return QLocale::c().toString(value);
}

QString bytes_text(qint64 bytes)
{
    if (bytes < 10000)
        return QStringLiteral("%1 bytes").arg(bytes);
    if (bytes < 10000000)
        return QStringLiteral("%1 kB").arg(double(bytes) / 1e3, 0, 'f', 1);
    return QStringLiteral("%1 MB").arg(double(bytes) / 1e6, 0, 'f', 1);
}
} // namespace

QString CLI_STATS_COMMAND::summary() const
{
    return QStringLiteral("Count tables, records, fields and bytes; list the largest tables.");
}

QString CLI_STATS_COMMAND::description() const
{
    return QStringLiteral(
        "Reads every table of the database in the folder DB (one at a time) and prints how many\n"
        "tables, records and fields it has, the bytes of its table and schema files, and its largest\n"
        "tables by file size, each with its size, records and fields.\n"
        "\n"
        "Exit codes: 0 done, 2 usage error, a folder that is no database, or a table that could not\n"
        "be read (its reason on standard error; the counts leave it out).");
}

void CLI_STATS_COMMAND::add_options(QCommandLineParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("DB"), QStringLiteral("The database folder."));
    parser.addOption(QCommandLineOption(QLatin1String(TOP),
                                        QStringLiteral("How many of the largest tables to list (10)."),
                                        QStringLiteral("n"), QStringLiteral("10")));
}

int CLI_STATS_COMMAND::run(const QCommandLineParser& parser, CLI_OUTPUT& output) const
{
    bool number = false;
    const int top = parser.value(QLatin1String(TOP)).toInt(&number);
    if (!number || top < 0)
        return output.fail(
            QStringLiteral("--top takes a whole number, not '%1'").arg(parser.value(QLatin1String(TOP))));
    DB_STATISTICS statistics;
    QString error;
    const bool done = statistics.gather(
        error, parser.positionalArguments().at(0), [&output](const QString& table, int index, int count) {
            output.progress(
                QStringLiteral("reading table %1 of %2: %3").arg(index + 1).arg(count).arg(table));
        });
    output.end_progress();
    if (!done)
        return output.fail(error);
    QTextStream& out = output.out();
    out << "tables        " << count_text(statistics.tables().size()) << '\n';
    out << "records       " << count_text(statistics.record_count()) << '\n';
    out << "fields        " << count_text(statistics.field_count()) << '\n';
    out << "table files   " << bytes_text(statistics.data_bytes()) << '\n';
    out << "schema files  " << bytes_text(statistics.schema_bytes()) << '\n';
    const QVector<DB_STATISTICS::TABLE> largest = statistics.largest(top);
    if (!largest.isEmpty())
    {
        out << "largest tables:\n";
        int width = 0;
        for (const DB_STATISTICS::TABLE& table : largest)
            width = qMax(width, table.name.size());
        for (const DB_STATISTICS::TABLE& table : largest)
            out << "  " << table.name.leftJustified(width) << "  "
                << bytes_text(table.data_bytes).rightJustified(10) << "  "
                << (table.records < 0 ? QStringLiteral("unreadable")
                                      : count_text(table.records) + QStringLiteral(" records"))
                       .rightJustified(17)
                << "  " << table.fields << " fields\n";
    }
    for (const QString& problem : statistics.problems())
        output.note(problem);
    return statistics.problems().isEmpty() ? CLI_OUTPUT::SUCCESS : CLI_OUTPUT::FAILURE;
}
