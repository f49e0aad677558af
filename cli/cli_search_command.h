#pragma once

#include "cli_command.h"

// orbin-db search DB TEXT
class CLI_SEARCH_COMMAND : public CLI_COMMAND
{
public:
    QString name() const override { return QStringLiteral("search"); }
    QString arguments() const override { return QStringLiteral("DB TEXT"); }
    QString summary() const override;
    QString description() const override;
    void add_options(QCommandLineParser& parser) const override;
    int positional_count() const override { return 2; }
    int run(const QCommandLineParser& parser, CLI_OUTPUT& output) const override;
};
