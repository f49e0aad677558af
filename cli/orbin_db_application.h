#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class CLI_COMMAND;
class CLI_OUTPUT;
class QIODevice;

// orbin-db: picks the command named by the first argument, reads its
// options and runs it. Usage errors answer exit code 2 with a hint to
// --help; `orbin-db --help` lists the commands, `orbin-db COMMAND --help`
// describes one.
class ORBIN_DB_APPLICATION
{
public:
    ORBIN_DB_APPLICATION();
    ~ORBIN_DB_APPLICATION();

    // `arguments` as the process got them, the program first. Progress goes
    // to `err` when it is a terminal or --progress is given.
    int run(const QStringList& arguments, QIODevice& out, QIODevice& err, bool err_is_terminal);

private:
    int usage_error(CLI_OUTPUT& output, const QString& text, const QString& command = QString()) const;
    QString general_help() const;
    const CLI_COMMAND* command(const QString& name) const;

    std::vector<std::unique_ptr<CLI_COMMAND>> m_commands;
};
