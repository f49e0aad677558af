#pragma once

#include "cli_command.h"

// orbin-db query DB SQL
class CLI_QUERY_COMMAND : public CLI_COMMAND
{
public:
    QString name() const override { return QStringLiteral("query"); }
    QString arguments() const override { return QStringLiteral("DB SQL"); }
    QString summary() const override;
    QString description() const override;
    void add_options(QCommandLineParser& parser) const override;
    int positional_count() const override { return 2; }
    int run(const QCommandLineParser& parser, CLI_OUTPUT& output) const override;
};
