#include "cli_validate_command.h"

#include "cli_output.h"
#include "db_validator.h"

#include <QCommandLineParser>

QString CLI_VALIDATE_COMMAND::summary() const
{
    return QStringLiteral("Check schemas, keys, foreign keys, required fields and fixed values.");
}

QString CLI_VALIDATE_COMMAND::description() const
{
    return QStringLiteral(
        "Checks the database in the folder DB without connecting to it: every schema file and its\n"
        "relationships, every table file as the engine reads it (malformed XML, values that do not fit\n"
        "their type, keys and uuids used twice, empty keys), and every value: required fields left\n"
        "empty, values outside a field's fixed values, texts over their maximum length, and foreign\n"
        "keys that name no record.\n"
        "\n"
        "Prints one finding a line, as table[key].field: what is wrong (the key and field are left\n"
        "out when the finding is about a whole table or field), in table, key and column order.\n"
        "\n"
        "Exit codes: 0 no findings, 1 findings, 2 usage error or a folder that is no database.");
}

void CLI_VALIDATE_COMMAND::add_options(QCommandLineParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("DB"), QStringLiteral("The database folder."));
}

int CLI_VALIDATE_COMMAND::run(const QCommandLineParser& parser, CLI_OUTPUT& output) const
{
    DB_VALIDATOR validator;
    QString error;
    const bool done = validator.validate(
        error, parser.positionalArguments().at(0), [&output](const QString& table, int index, int count) {
            output.progress(
                QStringLiteral("validating table %1 of %2: %3").arg(index + 1).arg(count).arg(table));
        });
    output.end_progress();
    if (!done)
        return output.fail(error);
    for (const DB_FINDING& finding : validator.findings())
        output.out() << finding.text() << '\n';
    output.note(QStringLiteral("%1 tables, %2 records: %3")
                    .arg(validator.table_count())
                    .arg(validator.record_count())
                    .arg(validator.findings().isEmpty()
                             ? QStringLiteral("no findings")
                             : QStringLiteral("%1 finding(s)").arg(validator.findings().size())));
    return validator.findings().isEmpty() ? CLI_OUTPUT::SUCCESS : CLI_OUTPUT::FINDINGS;
}
