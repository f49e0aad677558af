#pragma once

#include "vcs_process.h"

#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>

// Low-level access to one git clone: runs git in its top folder and answers
// the questions the workspace and depot layers ask of commits and trees.
// Paths are relative to the top folder with "/" separators.
class VCS_GIT_REPOSITORY
{
public:
    // Opens the clone that holds path.
    bool open(QString& error, const QString& path);

    const QString& root() const { return top; }
    const QString& git_dir() const { return metadata_dir; }
    QString program() const;

    VCS_PROCESS_RESULT git(const QStringList& arguments, const QByteArray& input = QByteArray(),
                           const QMap<QString, QString>& environment = {}) const;
    // Runs git; on failure error holds the last message line of git.
    bool git_ok(QString& error, const QStringList& arguments, QByteArray* output = nullptr,
                const QByteArray& input = QByteArray(), const QMap<QString, QString>& environment = {}) const;
    // "-c user.name=... -c user.email=..." when the clone has no identity configured.
    QStringList identity_arguments() const;

    // The depot: the remote and the branch of it that this clone follows.
    bool has_depot(QString& error) const;
    const QString& remote() const { return remote_name; }
    const QString& branch() const { return remote_branch; }
    QString tracking_ref() const;
    bool fetch(QString& error);

    // Commit ids; empty for an unborn HEAD or a depot without commits.
    bool head(QString& error, QString& commit) const;
    bool latest(QString& error, QString& commit) const;
    bool is_ancestor(const QString& ancestor, const QString& descendant) const;

    // Files of commit below folder (empty folder: everything) with their blob ids.
    bool tree(QString& error, const QString& commit, const QString& folder, QHash<QString, QString>& blobs);
    // The blob of one file at commit, empty when it is not there.
    bool blob(QString& error, const QString& commit, const QString& file, QString& id);
    // Blob ids the workspace files would have, in the order given; empty for a missing file.
    bool hash_files(QString& error, const QStringList& files, QStringList& ids) const;
    // Content of file at commit as it is written to the workspace.
    bool read(QString& error, const QString& commit, const QString& file, QByteArray& content) const;
    // Writes files as they are at commit into the workspace and leaves the index at HEAD.
    bool write_files(QString& error, const QString& commit, const QStringList& files) const;
    // Files that differ between two commits (from may be empty: everything in to).
    bool changed_between(QString& error, const QString& from, const QString& to, QStringList& files) const;
    // Moves the branch to commit without touching the workspace files.
    bool move_head(QString& error, const QString& commit) const;

    // Changelist numbers: the position of a commit on the first-parent chain
    // of the depot's branch, counted from 1.
    bool change_number(QString& error, const QString& commit, int& number);
    bool commit_of_change(QString& error, int number, QString& commit);
    // The newest commit at or before commit that changed path (file or folder).
    bool last_commit_touching(QString& error, const QString& commit, const QString& path,
                              QString& result) const;
    // The revision number of file at commit: how many first-parent commits up to it changed it.
    bool file_revision(QString& error, const QString& commit, const QString& file, int& revision) const;
    bool commit_of_file_revision(QString& error, const QString& file, int revision, QString& commit);

    // The first-parent chain of the depot's branch, oldest first.
    bool chain(QString& error, QStringList& commits);

    static const char* empty_tree_id();

private:
    bool find_depot();

    QString top;
    QString metadata_dir;
    QString remote_name;
    QString remote_branch;
    QString depot_problem;
    mutable int identity_known = -1;
    QString chain_tip;
    QStringList chain_commits;
    QHash<QString, int> chain_index;
    QHash<QString, QHash<QString, QString>> tree_cache;
};
