#include "sample_depot.h"

#include "sample_project_files.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>

namespace
{
QString git_program()
{
    const QString configured = qEnvironmentVariable("ORBIN_GIT");
    return configured.isEmpty() ? QStringLiteral("git") : configured;
}

// Settings of the user's or the system's git configuration that would
// change or stop the sample's commits (signing, hooks, templates).
QStringList neutral_configuration()
{
    return {QStringLiteral("-c"), QStringLiteral("commit.gpgsign=false"),
            QStringLiteral("-c"), QStringLiteral("core.hooksPath=/dev/null"),
            QStringLiteral("-c"), QStringLiteral("init.templateDir="),
            QStringLiteral("-c"), QStringLiteral("core.autocrlf=false"),
            QStringLiteral("-c"), QStringLiteral("core.safecrlf=false"),
            QStringLiteral("-c"), QStringLiteral("gc.auto=0"),
            QStringLiteral("-c"), QStringLiteral("maintenance.auto=false"),
            QStringLiteral("-c"), QStringLiteral("receive.autogc=false"),
            QStringLiteral("-c"), QStringLiteral("advice.detachedHead=false")};
}
} // namespace

SAMPLE_DEPOT::SAMPLE_DEPOT(const QString& depot, const QString& workspace)
    : m_depot(depot), m_workspace(workspace)
{
}

QString SAMPLE_DEPOT::full_name(const QString& login)
{
    static const QMap<QString, QString> names = {
        {"mokafor", "Mireille Okafor"},   {"tbrandt", "Tomas Brandt"}, {"ivarga", "Ines Varga"},
        {"hlindqvist", "Hugo Lindqvist"}, {"praman", "Priya Raman"},   {"kmori", "Kenji Mori"},
        {"lpetrov", "Lena Petrov"},       {"ohart", "Oliver Hart"},    {"sample", "Sample Generator"}};
    return names.value(login, login);
}

QString SAMPLE_DEPOT::git(const QStringList& arguments, const QString& folder, QString* output,
                          const QStringList& environment) const
{
    QProcess process;
    process.setProgram(git_program());
    process.setArguments(neutral_configuration() + arguments);
    process.setWorkingDirectory(folder);
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    // A language of the user's would change git's messages, not its work;
    // but a GIT_DIR inherited from a hook would point at another repository.
    variables.remove(QStringLiteral("GIT_DIR"));
    variables.remove(QStringLiteral("GIT_WORK_TREE"));
    variables.remove(QStringLiteral("GIT_INDEX_FILE"));
    for (const QString& entry : environment)
        variables.insert(entry.section(QLatin1Char('='), 0, 0), entry.section(QLatin1Char('='), 1));
    process.setProcessEnvironment(variables);
    process.start();
    if (!process.waitForStarted(30000))
        return QStringLiteral("'%1' could not be started (is it installed and on the PATH?): %2")
            .arg(git_program(), process.errorString());
    process.waitForFinished(-1);
    const QString out = QString::fromUtf8(process.readAllStandardOutput());
    if (output)
        *output = out;
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return QStringLiteral("git %1 failed: %2")
            .arg(arguments.join(' '), QString::fromUtf8(process.readAllStandardError()).trimmed());
    return QString();
}

bool SAMPLE_DEPOT::available(QString& error)
{
    QProcess process;
    process.start(git_program(), {QStringLiteral("--version")});
    if (!process.waitForStarted(30000) || !process.waitForFinished(30000) || process.exitCode() != 0)
    {
        error = QStringLiteral("'%1' could not be run (is it installed and on the PATH?)").arg(git_program());
        return false;
    }
    return true;
}

QString SAMPLE_DEPOT::create()
{
    QDir().mkpath(m_depot);
    QString error = git({"init", "--quiet", "--bare", "--initial-branch=main", m_depot}, m_depot);
    if (!error.isEmpty())
        return error;
    QDir().mkpath(QFileInfo(m_workspace).path());
    error = git({"clone", "--quiet", m_depot, m_workspace}, QFileInfo(m_workspace).path());
    if (!error.isEmpty())
        return error;
    // A clone of an empty depot takes its branch name from the local
    // configuration; the depot's branch is main.
    error = git({"symbolic-ref", "HEAD", "refs/heads/main"}, m_workspace);
    if (error.isEmpty())
    {
        // Whoever opens the sample submits as themselves; a machine without
        // a git identity must still be able to.
        const QString login = qEnvironmentVariable("USER", QStringLiteral("designer"));
        error = git({"config", "user.name", login}, m_workspace);
        if (error.isEmpty())
            error = git({"config", "user.email", login + "@localhost"}, m_workspace);
    }
    return error;
}

QString SAMPLE_DEPOT::submit(const QString& login, const QString& description, qint64 msecs,
                             const QStringList& paths)
{
    QStringList add = {"add", "--all", "--"};
    add += paths.isEmpty() ? QStringList{QStringLiteral(".")} : paths;
    QString error = git(add, m_workspace);
    if (!error.isEmpty())
        return error;
    const QString when = QStringLiteral("@%1 +0000").arg(msecs / 1000);
    const QString name = full_name(login);
    const QString email = login + QStringLiteral("@northfold.example");
    error = git({"commit", "--quiet", "--no-verify", "-m", description}, m_workspace, nullptr,
                {"GIT_AUTHOR_NAME=" + name, "GIT_AUTHOR_EMAIL=" + email, "GIT_AUTHOR_DATE=" + when,
                 "GIT_COMMITTER_NAME=" + name, "GIT_COMMITTER_EMAIL=" + email, "GIT_COMMITTER_DATE=" + when});
    return error;
}

QString SAMPLE_DEPOT::publish()
{
    return git({"push", "--quiet", "--set-upstream", "origin", "main"}, m_workspace);
}

QString SAMPLE_DEPOT::exclude(const QStringList& patterns)
{
    const QString path = m_workspace + QStringLiteral("/.git/info/exclude");
    QFile file(path);
    QByteArray bytes;
    if (file.open(QIODevice::ReadOnly))
        bytes = file.readAll();
    file.close();
    for (const QString& pattern : patterns)
        bytes += pattern.toUtf8() + '\n';
    return SAMPLE_PROJECT_FILES::write_file(path, bytes);
}

int SAMPLE_DEPOT::change_count(QString& error) const
{
    QString output;
    error = git({"rev-list", "--count", "--first-parent", "main"}, m_depot, &output);
    return error.isEmpty() ? output.trimmed().toInt() : -1;
}
