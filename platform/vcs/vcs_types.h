#pragma once

#include <QDateTime>
#include <QString>
#include <QVector>

// Plain values exchanged between the depot backends and their users.

enum class VCS_ACTION
{
    NONE,
    EDIT,
    ADD,
    DELETE
};

// One file of the workspace whose content or open state differs from the have revision.
struct VCS_FILE_STATUS
{
    QString path;                         // absolute local path, "/" separators
    VCS_ACTION change = VCS_ACTION::NONE; // how the content differs from the have revision
    VCS_ACTION opened = VCS_ACTION::NONE; // how the file is opened; NONE when it is not
    int opened_change = 0;                // pending changelist; 0 is the default changelist
    bool unresolved = false;              // a sync left a resolve to do
};

// A file that a sync brought a newer revision of while it had local changes.
// The revisions are tokens that read_file understands.
struct VCS_UNRESOLVED
{
    QString path;           // absolute local path
    QString base_revision;  // the have revision before the sync
    QString their_revision; // the revision the sync brought
};

enum class VCS_RESOLVE
{
    ACCEPT_THEIRS, // -at
    ACCEPT_YOURS,  // -ay
    MERGE,         // -am: text merge, refused on conflicts
    MERGE_FORCED   // -af: text merge, conflicts written with markers
};

struct VCS_CHANGE_FILE
{
    QString depot_path; // "//" + path below the workspace root on git; the depot path on Perforce
    QString local_path; // absolute local path, when known
    int revision = 0;
    QString action; // "add", "edit", "delete"
};

struct VCS_CHANGE_INFO
{
    int number = 0;
    QString user;
    QString workspace;
    QDateTime time;
    QString status; // "submitted" or "pending"
    QString description;
    QVector<VCS_CHANGE_FILE> files;
};

struct VCS_LOCK_INFO
{
    bool held = false;
    QString user;
    QString workspace;
    QString host;
    QDateTime since;

    QString describe() const
    {
        QString text = QStringLiteral("%1 (workspace %2").arg(user, workspace);
        if (!host.isEmpty())
            text += QStringLiteral(", host %1").arg(host);
        if (since.isValid())
            text += QStringLiteral(", since %1").arg(since.toLocalTime().toString(Qt::ISODate));
        return text + QLatin1Char(')');
    }
};

// A line of a depot command's output; level 0 information, 1 warning, 2 error.
struct VCS_OUTPUT_LINE
{
    int level = 0;
    QString text;
};
