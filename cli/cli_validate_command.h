#pragma once

#include "cli_command.h"

// orbin-db validate DB
class CLI_VALIDATE_COMMAND : public CLI_COMMAND
{
public:
    QString name() const override { return QStringLiteral("validate"); }
    QString arguments() const override { return QStringLiteral("DB"); }
    QString summary() const override;
    QString description() const override;
    void add_options(QCommandLineParser& parser) const override;
    int positional_count() const override { return 1; }
    int run(const QCommandLineParser& parser, CLI_OUTPUT& output) const override;
};
