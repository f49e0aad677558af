#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>
#include <vector>

class VCS_DEPOT;

// The depot client of the workspace. It takes the command-line client's
// verbs ("sync", "edit", "add", "delete", "revert", "resolve", "describe",
// "opened", "have", "changes", "info", ...) with their arguments and answers
// in the client's tagged shapes, from a git clone or a Perforce client,
// whichever holds the files (see docs/version-control.md).
//
// Which workspace a command goes to: the one holding its first absolute
// file argument; otherwise the start directory of this connection, the
// process-wide default start directory, or the current directory.
class P4_CONNECTION
{
public:
    // A line of output as it comes: level 0 information, 1 warning, 2 error.
    typedef void (*LINE_CALLBACK)(int level, const char* line, void* user_data);

    // tagged: answer in the tagged (-ztag) shape; error_last: on failure the
    // error stands on the last output line; trace: each command and its
    // answer also go to the debug log. The program passes (true, true, false).
    P4_CONNECTION(bool tagged = true, bool error_last = true, bool trace = false);
    ~P4_CONNECTION();
    P4_CONNECTION(const P4_CONNECTION&) = delete;
    P4_CONNECTION& operator=(const P4_CONNECTION&) = delete;

    // Finds the workspace and checks that its client program is there. With
    // check_server the depot is asked too; otherwise nothing leaves the
    // machine. program_name ("KILN", "Orbin" or empty) is passed on to the
    // Perforce server as the program's name.
    bool connect(QString& error, const QString& program_name, bool check_server = false);
    bool is_connected() const { return connected; }

    // Runs a command. True on success; on failure the last line of output
    // holds the error, which also goes to *error when it is given. The output
    // is replaced unless append is set.
    bool run(const QString& command, const QStringList& arguments, QVector<QString>& output,
             const QString& input = QString(), QString* error = nullptr, bool append = false);
    // The same, handing each line to callback as it is produced.
    bool run(const QString& command, const QStringList& arguments, LINE_CALLBACK callback, void* user_data,
             const QString& input = QString(), QString* error = nullptr);

    // The root folder of the workspace, "/" separators and no trailing one;
    // empty when there is no workspace.
    QString get_root();

    void set_start_directory(const QString& directory) { start_directory = directory; }
    static void set_default_start_directory(const QString& directory);
    static QString default_start_directory();

    // "git" or "perforce" for the start location; empty without a workspace.
    QString backend_name();
    QString last_error() const { return error_text; }

    // The depot that holds path (a file or folder), opened once per connection.
    VCS_DEPOT* depot_for(QString& error, const QString& path);

private:
    QString start_location() const;
    QString location_of(const QStringList& arguments) const;
    bool execute(const QString& command, const QStringList& arguments, const QString& input,
                 QVector<QString>* lines, LINE_CALLBACK callback, void* user_data, QString* error);

    bool tagged_output;
    bool error_on_last_line;
    bool trace_commands;
    bool connected = false;
    QString program;
    QString start_directory;
    QString error_text;
    std::vector<std::unique_ptr<VCS_DEPOT>> depots;
};
