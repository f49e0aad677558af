#pragma once

// Depots for tests: a bare git repository in a temporary folder and clones
// of it, driven with plain git so that what the layer does is checked
// against git itself.

#include "test_folder.h"
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <QtTest/QtTest>

class GIT_SANDBOX
{
public:
    bool valid() const { return folder.is_valid(); }
    QString path(const QString& name) const { return folder.path() + QLatin1Char('/') + name; }
    QString depot() const { return path(QStringLiteral("depot.git")); }

    // Runs git in dir as the given user; false when git fails.
    static bool git(const QString& dir, const QStringList& arguments, QString* output = nullptr,
                    const QString& user = QStringLiteral("seed"))
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

    // A bare depot and the "seed" clone that fills it (publish_seed).
    bool create_empty_depot()
    {
        return git(folder.path(), {QStringLiteral("init"), QStringLiteral("-q"), QStringLiteral("--bare"),
                                   QStringLiteral("-b"), QStringLiteral("main"), depot()}) &&
               git(folder.path(), {QStringLiteral("clone"), QStringLiteral("-q"), depot(), seed()});
    }
    QString seed() const { return path(QStringLiteral("seed")); }

    // Commits everything in the seed clone and pushes it: the next change.
    bool publish_seed(const QString& message)
    {
        return git(seed(), {QStringLiteral("add"), QStringLiteral("-A")}) &&
               git(seed(), {QStringLiteral("commit"), QStringLiteral("-q"), QStringLiteral("-m"), message}) &&
               git(seed(), {QStringLiteral("push"), QStringLiteral("-q"), QStringLiteral("origin"),
                            QStringLiteral("HEAD:refs/heads/main")});
    }

    // A bare depot whose first commit holds the given files (change 1).
    bool create_depot(const QMap<QString, QByteArray>& files)
    {
        if (!create_empty_depot())
            return false;
        for (auto it = files.cbegin(); it != files.cend(); ++it)
            write(seed() + QLatin1Char('/') + it.key(), it.value());
        return publish_seed(QStringLiteral("First"));
    }

    // A new workspace: a clone of the depot.
    QString clone(const QString& name)
    {
        const QString target = path(name);
        if (!git(folder.path(), {QStringLiteral("clone"), QStringLiteral("-q"), depot(), target}))
            return QString();
        return target;
    }

    // A change made outside the layer, as another tool would push it.
    bool push_from_seed(const QString& file, const QByteArray& content, const QString& message)
    {
        if (!git(seed(), {QStringLiteral("pull"), QStringLiteral("-q"), QStringLiteral("--ff-only"),
                          QStringLiteral("origin"), QStringLiteral("main")}))
            return false;
        write(seed() + QLatin1Char('/') + file, content);
        return publish_seed(message);
    }

    static void write(const QString& file, const QByteArray& content)
    {
        QDir().mkpath(QFileInfo(file).absolutePath());
        QFile out(file);
        QVERIFY2(out.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(file));
        out.write(content);
    }

    static QByteArray read(const QString& file)
    {
        QFile in(file);
        if (!in.open(QIODevice::ReadOnly))
            return QByteArray("<missing>");
        return in.readAll();
    }

private:
    TEST_FOLDER folder;
};
