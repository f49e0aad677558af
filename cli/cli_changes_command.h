#pragma once

#include "cli_command.h"

// orbin-db changes WORKSPACE
class CLI_CHANGES_COMMAND : public CLI_COMMAND
{
public:
    QString name() const override { return QStringLiteral("changes"); }
    QString arguments() const override { return QStringLiteral("WORKSPACE"); }
    QString summary() const override;
    QString description() const override;
    void add_options(QCommandLineParser& parser) const override;
    int positional_count() const override { return 1; }
    int run(const QCommandLineParser& parser, CLI_OUTPUT& output) const override;
};
