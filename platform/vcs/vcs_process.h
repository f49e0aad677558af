#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

// The outcome of one run of an external version-control program.
struct VCS_PROCESS_RESULT
{
    bool started = false; // false: the program could not be run at all
    int exit_code = -1;
    QByteArray standard_output;
    QByteArray standard_error;
    QString error; // why it did not start or did not finish; empty otherwise

    bool succeeded() const { return started && error.isEmpty() && exit_code == 0; }
    QStringList output_lines() const;
    QStringList error_lines() const;
    // The last non-empty line of standard error, or a description of the failure.
    QString failure_text(const QString& program) const;
};

// Runs external programs synchronously. Every call into git or p4 goes
// through here so that a missing program is reported the same way everywhere.
class VCS_PROCESS
{
public:
    explicit VCS_PROCESS(const QString& program);

    void set_working_directory(const QString& directory) { working_directory = directory; }
    void set_environment_value(const QString& name, const QString& value);
    void set_timeout_ms(int timeout) { timeout_ms = timeout; }

    VCS_PROCESS_RESULT run(const QStringList& arguments, const QByteArray& input = QByteArray()) const;

    const QString& program() const { return program_name; }

    static QStringList split_lines(const QByteArray& bytes);

private:
    QString program_name;
    QString working_directory;
    QProcessEnvironment extra_environment;
    int timeout_ms = 30 * 60 * 1000;
};
