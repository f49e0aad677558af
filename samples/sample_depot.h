#pragma once

#include <QString>
#include <QStringList>

// The depot of a sample project: a bare git repository, and the workspace
// that is a clone of it. Changes are made with the plain git client, with
// authors and dates given, so one seed gives the same history.
class SAMPLE_DEPOT
{
public:
    SAMPLE_DEPOT(const QString& depot, const QString& workspace);

    // Whether a git client can be run; the reason in `error` when not.
    static bool available(QString& error);

    // Makes the empty depot and clones it into the workspace folder.
    QString create();
    // Commits the given paths of the workspace (all when empty) as one
    // change of that team member at that moment (milliseconds since the
    // epoch, UTC).
    QString submit(const QString& login, const QString& description, qint64 msecs,
                   const QStringList& paths = QStringList());
    // Pushes the changes to the depot: one push for the whole history, as
    // each costs a round of git's pack machinery.
    QString publish();
    // Keeps files out of version control in this workspace only.
    QString exclude(const QStringList& patterns);
    // The number of changes in the depot.
    int change_count(QString& error) const;

    static QString full_name(const QString& login);

private:
    QString git(const QStringList& arguments, const QString& folder, QString* output = nullptr,
                const QStringList& environment = QStringList()) const;

    QString m_depot;
    QString m_workspace;
};
