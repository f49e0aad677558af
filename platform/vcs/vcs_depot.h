#pragma once

#include "vcs_types.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>

// The workspace and its depot, as the rest of the program needs them. Two
// backends stand behind it: a git clone whose remote is the depot, and a
// Perforce client driven through the p4 command-line client.
//
// Paths are absolute local paths with "/" separators unless said otherwise.
// A path argument names a file or a folder; a folder stands for everything
// below it. Every operation answers false with a message in error when it
// fails, and leaves the local files as they were when it fails part-way.
class VCS_DEPOT
{
public:
    virtual ~VCS_DEPOT() = default;

    // Finds the workspace that holds path and opens the backend for it. The
    // backend is chosen by the environment variable ORBIN_VCS ("git" or "p4")
    // or else by what lies above path: a ".git" makes it git, a P4CONFIG file
    // (by default ".p4config") makes it Perforce. program_name is handed to
    // the Perforce client as the program's name.
    static std::unique_ptr<VCS_DEPOT> open(QString& error, const QString& path,
                                           const QString& program_name = QString());

    virtual QString backend_name() const = 0; // "git" or "perforce"
    virtual QString root() const = 0;
    virtual QString workspace_name() const = 0;
    virtual QString user_name() const = 0;

    // The depot client's command-line verbs, answered in the client's tagged
    // shapes. False when the command failed; the error lines are in output.
    virtual bool run(const QString& command, const QStringList& arguments, const QString& input,
                     QVector<VCS_OUTPUT_LINE>& output) = 0;

    // Files below path whose content differs from the have revision, whether
    // or not they are opened, and opened files even when unchanged.
    virtual bool status(QString& error, const QString& path, QVector<VCS_FILE_STATUS>& out) = 0;

    // The content of file at a revision: "#have", "#head", "@n", "#n", or a
    // token of VCS_UNRESOLVED. exists is false when the file is not there at
    // that revision; that is no failure.
    virtual bool read_file(QString& error, const QString& file, const QString& revision, QByteArray& content,
                           bool& exists) = 0;

    // The changelist of the have revision of path: the newest change among
    // the files below it that this workspace has. 0 when it has none.
    virtual bool have_change(QString& error, const QString& path, int& change) = 0;
    // The newest submitted change below path in the depot.
    virtual bool head_change(QString& error, const QString& path, int& change) = 0;
    // The changelist that made revision "revision" of file.
    virtual bool file_change(QString& error, const QString& file, int revision, int& change) = 0;
    // Files below path whose head revision differs from the have revision.
    virtual bool incoming(QString& error, const QString& path, QStringList& files) = 0;
    // Writes the files below directory as they were at change into target
    // (which must exist), keeping the layout below directory.
    virtual bool export_files(QString& error, const QString& directory, int change,
                              const QString& target) = 0;

    // Brings files to revisions. file_args are file arguments with optional
    // revisions (see VCS_FILE_ARGUMENT); no revision means the head. A file with
    // local changes keeps them and is left unresolved. updated receives the
    // files whose have revision changed.
    virtual bool sync(QString& error, const QStringList& file_args, QStringList& updated) = 0;
    virtual bool unresolved(QString& error, const QString& path, QVector<VCS_UNRESOLVED>& out) = 0;
    virtual bool resolve(QString& error, const QStringList& files, VCS_RESOLVE how) = 0;

    // Opens files in changelist change (0: the default changelist).
    virtual bool open(QString& error, const QStringList& files, VCS_ACTION action, int change) = 0;
    // Undoes opens and local changes below the file arguments. keep_content leaves the
    // local files as they are (only the open state goes); wipe_added removes
    // files that are new to the depot, opened or not.
    virtual bool revert(QString& error, const QStringList& file_args, bool keep_content, bool wipe_added) = 0;

    virtual bool new_change(QString& error, const QString& description, int& change) = 0;
    // The pending changelists of this workspace (number, description).
    virtual bool pending_changes(QString& error, QVector<VCS_CHANGE_INFO>& out) = 0;
    virtual bool delete_change(QString& error, int change) = 0;
    // Submits the files opened in change; submitted is the number the depot gave it.
    virtual bool submit(QString& error, int change, const QString& description, int& submitted) = 0;
    virtual bool describe(QString& error, int change, VCS_CHANGE_INFO& out) = 0;

    // The lock of the folder (the database): one lock every workspace of the
    // depot sees, owned by user and workspace. Taking a lock this workspace
    // already holds succeeds; a lock held by another fails with the holder in
    // the message. Releasing a lock nobody holds succeeds.
    virtual bool lock(QString& error, const QString& folder) = 0;
    virtual bool unlock(QString& error, const QString& folder) = 0;
    virtual bool lock_holder(QString& error, const QString& folder, VCS_LOCK_INFO& holder) = 0;

    // The workspace path of a depot path of this backend, or empty.
    virtual QString local_path(const QString& depot_path) const = 0;

    // Helpers shared by callers.
    static QString clean(const QString& path);
    static QString action_name(VCS_ACTION action);
    static VCS_ACTION action_from_name(const QString& name);
    static bool any_errors(const QVector<VCS_OUTPUT_LINE>& output);
    // A change in the shape "describe -s" prints it: a header line, the
    // description indented by a tab, "Affected files ...", then one line per
    // file, "//" + the path below the workspace root + "#" + revision + " " +
    // action, so that "//" read as the client root gives the local file.
    static QStringList describe_lines(const VCS_CHANGE_INFO& change);

protected:
    // Whether holder is this user in this workspace.
    bool is_mine(const VCS_LOCK_INFO& holder) const
    {
        return holder.held && holder.user == user_name() && holder.workspace == workspace_name();
    }
    // Before a release: false with the holder in error when another holds the
    // lock; held tells whether anybody does.
    bool may_release(QString& error, const QString& folder, bool& held);
};
