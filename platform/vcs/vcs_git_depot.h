#pragma once

#include "vcs_depot.h"
#include "vcs_git_repository.h"
#include "vcs_git_workspace.h"

// The git backend: the workspace is a clone, the depot is the branch of its
// remote that the clone follows. Changelist numbers are positions on the
// first-parent chain of that branch (1 for its first commit), so they only
// grow as long as the branch moves by fast-forward, which is how this layer
// submits. The database lock is a ref under refs/orbin/locks/ on the remote,
// created with a push that fails when the ref already exists.
class VCS_GIT_DEPOT : public VCS_DEPOT
{
public:
    bool open_at(QString& error, const QString& path);

    QString backend_name() const override { return QStringLiteral("git"); }
    QString root() const override { return repository.root(); }
    QString workspace_name() const override;
    QString user_name() const override;

    bool run(const QString& command, const QStringList& arguments, const QString& input,
             QVector<VCS_OUTPUT_LINE>& output) override;

    bool status(QString& error, const QString& path, QVector<VCS_FILE_STATUS>& out) override;
    bool read_file(QString& error, const QString& file, const QString& revision, QByteArray& content,
                   bool& exists) override;
    bool have_change(QString& error, const QString& path, int& change) override;
    bool head_change(QString& error, const QString& path, int& change) override;
    bool file_change(QString& error, const QString& file, int revision, int& change) override;
    bool incoming(QString& error, const QString& path, QStringList& files) override;
    bool export_files(QString& error, const QString& directory, int change, const QString& target) override;
    bool sync(QString& error, const QStringList& file_args, QStringList& updated) override;
    bool unresolved(QString& error, const QString& path, QVector<VCS_UNRESOLVED>& out) override;
    bool resolve(QString& error, const QStringList& files, VCS_RESOLVE how) override;
    bool open(QString& error, const QStringList& files, VCS_ACTION action, int change) override;
    bool revert(QString& error, const QStringList& file_args, bool keep_content, bool wipe_added) override;
    bool new_change(QString& error, const QString& description, int& change) override;
    bool pending_changes(QString& error, QVector<VCS_CHANGE_INFO>& out) override;
    bool delete_change(QString& error, int change) override;
    bool submit(QString& error, int change, const QString& description, int& submitted) override;
    bool describe(QString& error, int change, VCS_CHANGE_INFO& out) override;
    bool lock(QString& error, const QString& folder) override;
    bool unlock(QString& error, const QString& folder) override;
    bool lock_holder(QString& error, const QString& folder, VCS_LOCK_INFO& holder) override;
    QString local_path(const QString& depot_path) const override;

    // For the verbs.
    VCS_GIT_REPOSITORY& repo() { return repository; }
    VCS_GIT_WORKSPACE& workspace() { return client; }
    // Root-relative form of a local path; false when it lies outside the workspace.
    bool relative(const QString& path, QString& out) const;
    // The same, with the client's message when path lies outside.
    bool in_view(QString& error, const QString& path, QString& out) const;
    QString depot_path(const QString& relative_path) const { return QStringLiteral("//") + relative_path; }
    // The ref on the remote that is the lock of a folder of the workspace.
    QString lock_ref(const QString& folder) const;
    // Parses the description and workspace out of a commit message made by submit.
    static void split_message(const QString& message, QString& description, QString& workspace);

private:
    bool arguments_for(QString& error, const QStringList& texts, QVector<VCS_FILE_ARGUMENT>& file_args);
    QString folder_argument(const QString& path) const;

    VCS_GIT_REPOSITORY repository;
    VCS_GIT_WORKSPACE client{repository};
};
