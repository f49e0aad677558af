#pragma once

#include <QString>

class CLI_OUTPUT;
class QCommandLineParser;

// One command of orbin-db: its name, what --help says of it, its options
// and positional arguments, and the work. Every command reads and never
// writes a database.
class CLI_COMMAND
{
public:
    virtual ~CLI_COMMAND() = default;

    virtual QString name() const = 0;
    // The positional arguments as the usage line shows them ("DB TEXT").
    virtual QString arguments() const = 0;
    // One line for the list of commands.
    virtual QString summary() const = 0;
    // What --help says before the options: what it does, what it prints,
    // what its exit codes mean.
    virtual QString description() const = 0;
    // Options and positional arguments beyond --help and --progress.
    virtual void add_options(QCommandLineParser& parser) const = 0;
    virtual int positional_count() const = 0;
    // Answers the exit code (CLI_OUTPUT::EXIT_CODE).
    virtual int run(const QCommandLineParser& parser, CLI_OUTPUT& output) const = 0;
};
