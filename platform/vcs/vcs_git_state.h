#pragma once

#include <QLockFile>
#include <QMap>
#include <QString>

#include <memory>

// What a Perforce server would remember about a client and git does not:
// opened files, pending changelists, per-file have revisions that differ
// from HEAD, and resolves a sync left to do. Kept in "orbin/state.json"
// inside the clone's git folder, written whole on every change.
class VCS_GIT_STATE
{
public:
    struct OPENED
    {
        QString action; // "edit", "add" or "delete"
        int change = 0; // 0: the default changelist
    };
    struct UNRESOLVED
    {
        QString base;   // commit of the have revision before the sync; empty: no file
        QString theirs; // commit the sync brought; empty: the file was deleted
    };
    struct PENDING
    {
        QString description;
    };

    // The commit a file's have revision is at when it is not HEAD. The
    // marker value stands for "not on the client".
    static QString not_on_client() { return QStringLiteral("-"); }

    QMap<QString, OPENED> opened;
    QMap<QString, QString> have;
    QMap<QString, UNRESOLVED> unresolved;
    QMap<int, PENDING> pending;
    int last_change = 0; // the last pending changelist number handed out

    // Takes the lock of the state file (waits up to ten seconds for another
    // process) and reads the state.
    bool load(QString& error, const QString& git_dir);
    bool save(QString& error) const;
    void release();

    QString folder() const { return directory; }

private:
    QString directory;
    std::unique_ptr<QLockFile> lock;
};
