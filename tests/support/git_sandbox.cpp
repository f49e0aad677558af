#include "git_sandbox.h"

#include "test_helpers.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtTest/QtTest>

bool GIT_SANDBOX::available()
{
    return !QStandardPaths::findExecutable(QStringLiteral("git")).isEmpty();
}

bool GIT_SANDBOX::git(const QString& dir, const QStringList& arguments, QString* output, const QString& user)
{
    QProcess process;
    process.setWorkingDirectory(dir);
    QStringList full{QStringLiteral("-c"), QStringLiteral("user.name=%1").arg(user), QStringLiteral("-c"),
                     QStringLiteral("user.email=%1@example.org").arg(user)};
    full += arguments;
    process.start(QStringLiteral("git"), full);
    if (!process.waitForFinished(60000))
        return false;
    if (output)
        *output = QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    if (process.exitCode() != 0)
        qWarning().noquote() << "git" << arguments.join(QLatin1Char(' '))
                             << "failed:" << process.readAllStandardError();
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

bool GIT_SANDBOX::create_empty_depot()
{
    return git(folder.path(), {QStringLiteral("init"), QStringLiteral("-q"), QStringLiteral("--bare"),
                               QStringLiteral("-b"), QStringLiteral("main"), depot()}) &&
           git(folder.path(), {QStringLiteral("clone"), QStringLiteral("-q"), depot(), seed()});
}

bool GIT_SANDBOX::publish_seed(const QString& message)
{
    return git(seed(), {QStringLiteral("add"), QStringLiteral("-A")}) &&
           git(seed(), {QStringLiteral("commit"), QStringLiteral("-q"), QStringLiteral("-m"), message}) &&
           git(seed(), {QStringLiteral("push"), QStringLiteral("-q"), QStringLiteral("origin"),
                        QStringLiteral("HEAD:refs/heads/main")});
}

bool GIT_SANDBOX::create_depot(const QMap<QString, QByteArray>& files)
{
    if (!create_empty_depot())
        return false;
    for (auto it = files.cbegin(); it != files.cend(); ++it)
        write(seed() + QLatin1Char('/') + it.key(), it.value());
    return publish_seed(QStringLiteral("First"));
}

QString GIT_SANDBOX::clone(const QString& name)
{
    const QString target = path(name);
    if (!git(folder.path(), {QStringLiteral("clone"), QStringLiteral("-q"), depot(), target}))
        return QString();
    return target;
}

bool GIT_SANDBOX::push_from_seed(const QString& file, const QByteArray& content, const QString& message)
{
    if (!git(seed(), {QStringLiteral("pull"), QStringLiteral("-q"), QStringLiteral("--ff-only"),
                      QStringLiteral("origin"), QStringLiteral("main")}))
        return false;
    write(seed() + QLatin1Char('/') + file, content);
    return publish_seed(message);
}

void GIT_SANDBOX::write(const QString& file, const QByteArray& content)
{
    QVERIFY2(ORBIN_TEST::write_file(file, content), qPrintable(file));
}

QByteArray GIT_SANDBOX::read(const QString& file)
{
    return QFile::exists(file) ? ORBIN_TEST::read_file(file) : QByteArray("<missing>");
}
