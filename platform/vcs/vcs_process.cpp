#include "vcs_process.h"

#include <QProcess>

QStringList VCS_PROCESS::split_lines(const QByteArray& bytes)
{
    QString text = QString::fromUtf8(bytes);
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    QStringList lines = text.split(QLatin1Char('\n'));
    // A trailing newline is a terminator, not an empty last line.
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

QStringList VCS_PROCESS_RESULT::output_lines() const
{
    return VCS_PROCESS::split_lines(standard_output);
}

QStringList VCS_PROCESS_RESULT::error_lines() const
{
    return VCS_PROCESS::split_lines(standard_error);
}

QString VCS_PROCESS_RESULT::failure_text(const QString& program) const
{
    if (!error.isEmpty())
        return error;
    const QStringList lines = error_lines();
    for (int i = lines.size() - 1; i >= 0; --i)
    {
        const QString line = lines.at(i).trimmed();
        if (!line.isEmpty())
            return line;
    }
    return QStringLiteral("'%1' failed with exit code %2").arg(program).arg(exit_code);
}

VCS_PROCESS::VCS_PROCESS(const QString& program) : program_name(program) {}

void VCS_PROCESS::set_environment_value(const QString& name, const QString& value)
{
    extra_environment.insert(name, value);
}

VCS_PROCESS_RESULT VCS_PROCESS::run(const QStringList& arguments, const QByteArray& input) const
{
    VCS_PROCESS_RESULT result;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // Nothing may ever wait for a password on a terminal nobody watches.
    environment.insert(QStringLiteral("GIT_TERMINAL_PROMPT"), QStringLiteral("0"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    environment.insert(QStringLiteral("LANGUAGE"), QString());
    const QStringList keys = extra_environment.keys();
    for (const QString& key : keys)
        environment.insert(key, extra_environment.value(key));
    process.setProcessEnvironment(environment);
    if (!working_directory.isEmpty())
        process.setWorkingDirectory(working_directory);
    process.start(program_name, arguments);
    if (!process.waitForStarted(-1))
    {
        result.error = QStringLiteral("The version-control program '%1' could not be started (%2): "
                                      "is it installed and on the PATH?")
                           .arg(program_name, process.errorString());
        return result;
    }
    result.started = true;
    if (!input.isEmpty())
        process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(timeout_ms))
    {
        process.kill();
        process.waitForFinished(5000);
        result.error = QStringLiteral("'%1 %2' did not finish in time and was stopped")
                           .arg(program_name, arguments.value(0));
        result.standard_output = process.readAllStandardOutput();
        result.standard_error = process.readAllStandardError();
        return result;
    }
    result.standard_output = process.readAllStandardOutput();
    result.standard_error = process.readAllStandardError();
    if (process.exitStatus() == QProcess::CrashExit)
    {
        result.error = QStringLiteral("'%1 %2' crashed").arg(program_name, arguments.value(0));
        return result;
    }
    result.exit_code = process.exitCode();
    return result;
}
