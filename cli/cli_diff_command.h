#pragma once

#include "cli_command.h"

// orbin-db diff DB1 DB2
class CLI_DIFF_COMMAND : public CLI_COMMAND
{
public:
    QString name() const override { return QStringLiteral("diff"); }
    QString arguments() const override { return QStringLiteral("DB1 DB2"); }
    QString summary() const override;
    QString description() const override;
    void add_options(QCommandLineParser& parser) const override;
    int positional_count() const override { return 2; }
    int run(const QCommandLineParser& parser, CLI_OUTPUT& output) const override;
};
