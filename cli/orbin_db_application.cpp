#include "orbin_db_application.h"

#include "cli_changes_command.h"
#include "cli_diff_command.h"
#include "cli_output.h"
#include "cli_query_command.h"
#include "cli_search_command.h"
#include "cli_stats_command.h"
#include "cli_validate_command.h"

#include <QCommandLineParser>

namespace
{
const char* const PROGRESS = "progress";
} // namespace

ORBIN_DB_APPLICATION::ORBIN_DB_APPLICATION()
{
    m_commands.emplace_back(new CLI_VALIDATE_COMMAND);
    m_commands.emplace_back(new CLI_SEARCH_COMMAND);
    m_commands.emplace_back(new CLI_QUERY_COMMAND);
    m_commands.emplace_back(new CLI_DIFF_COMMAND);
    m_commands.emplace_back(new CLI_CHANGES_COMMAND);
    m_commands.emplace_back(new CLI_STATS_COMMAND);
}

ORBIN_DB_APPLICATION::~ORBIN_DB_APPLICATION() = default;

const CLI_COMMAND* ORBIN_DB_APPLICATION::command(const QString& name) const
{
    for (const auto& command : m_commands)
        if (command->name() == name)
            return command.get();
    return nullptr;
}

QString ORBIN_DB_APPLICATION::general_help() const
{
    QString text =
        QStringLiteral("Usage: orbin-db COMMAND [options] ARGUMENTS\n\n"
                       "The design database on the command line, for build pipelines and people "
                       "without a display.\nEvery command reads the database and never writes it.\n\n"
                       "Commands:\n");
    int width = 0;
    for (const auto& command : m_commands)
        width = qMax(width, command->name().size() + 1 + command->arguments().size());
    for (const auto& command : m_commands)
        text += QStringLiteral("  %1  %2\n")
                    .arg((command->name() + QLatin1Char(' ') + command->arguments()).leftJustified(width),
                         command->summary());
    text += QStringLiteral("\nOptions of every command:\n"
                           "  --progress  Show progress on standard error even when it is not a terminal.\n"
                           "  -h, --help  Describe the command.\n\n"
                           "Exit codes: 0 success, 1 findings (problems, differences, changes; for search: "
                           "no hit),\n2 usage errors and failures. See orbin-db COMMAND --help.\n");
    return text;
}

int ORBIN_DB_APPLICATION::usage_error(CLI_OUTPUT& output, const QString& text, const QString& command) const
{
    output.note(text);
    output.err() << "Try 'orbin-db " << (command.isEmpty() ? QString() : command + QLatin1Char(' '))
                 << "--help'.\n";
    return CLI_OUTPUT::FAILURE;
}

int ORBIN_DB_APPLICATION::run(const QStringList& arguments, QIODevice& out, QIODevice& err,
                              bool err_is_terminal)
{
    CLI_OUTPUT output(out, err, err_is_terminal);
    const QString name = arguments.value(1);
    if (name == QLatin1String("--help") || name == QLatin1String("-h") || name == QLatin1String("help"))
    {
        output.out() << general_help();
        return CLI_OUTPUT::SUCCESS;
    }
    if (name.isEmpty())
    {
        output.err() << general_help();
        return CLI_OUTPUT::FAILURE;
    }
    const CLI_COMMAND* chosen = command(name);
    if (!chosen)
        return usage_error(output, QStringLiteral("'%1' is not a command").arg(name));

    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Describe the command."));
    const QCommandLineOption progress(
        QLatin1String(PROGRESS),
        QStringLiteral("Show progress on standard error even when it is not a terminal."));
    parser.addOption(help);
    parser.addOption(progress);
    chosen->add_options(parser);
    parser.setApplicationDescription(chosen->description());
    // The parser takes the program's name first; the command is not an argument.
    QStringList rest = arguments.mid(2);
    rest.prepend(arguments.value(0, QStringLiteral("orbin-db")));
    if (!parser.parse(rest))
        return usage_error(output, parser.errorText(), name);
    if (parser.isSet(help))
    {
        QString text = parser.helpText();
        // Qt's first line names the program only.
        text = QStringLiteral("Usage: orbin-db %1 [options] %2\n").arg(name, chosen->arguments()) +
               text.mid(text.indexOf(QLatin1Char('\n')));
        output.out() << text;
        return CLI_OUTPUT::SUCCESS;
    }
    if (parser.positionalArguments().size() != chosen->positional_count())
        return usage_error(output,
                           QStringLiteral("%1 takes %2, not %3 argument(s)")
                               .arg(name, chosen->arguments())
                               .arg(parser.positionalArguments().size()),
                           name);
    if (parser.isSet(progress))
        output.set_progress(true);
    return chosen->run(parser, output);
}
