#pragma once

#include "vcs_file_argument.h"
#include "vcs_git_state.h"
#include "vcs_types.h"

#include <QHash>
#include <QMap>
#include <QString>
#include <QVector>

class VCS_GIT_REPOSITORY;

// The client side of the git backend: which revision of each file the
// workspace has, how local files differ from it, and the operations that
// change that (sync, resolve, open, revert). A file's have revision is HEAD
// unless the state names another commit for it, so that single files can be
// synced to other revisions the way a Perforce client allows.
//
// Local changes are never overwritten without a copy: a sync leaves changed
// files alone and marks them unresolved; resolve and revert copy what they
// replace into "orbin/safety" inside the git folder first.
class VCS_GIT_WORKSPACE
{
public:
    explicit VCS_GIT_WORKSPACE(VCS_GIT_REPOSITORY& repository);

    // One file as the workspace sees it. Paths are relative to the root.
    struct FILE_STATE
    {
        QString path;
        QString have_commit; // empty or the not-on-client marker: the workspace does not have it
        QString have_blob;   // empty when the workspace does not have the file
        QString work_blob;   // empty when there is no local file
        VCS_ACTION change = VCS_ACTION::NONE;
        QString opened_action;
        int opened_change = 0;
        bool unresolved = false;
    };

    // One line of what an operation did to a file, for the verbs' output.
    struct ITEM
    {
        ITEM() = default;
        ITEM(const QString& path_, const QString& action_, const QString& old_action_, int revision_,
             int level_, const QString& message_)
            : path(path_), action(action_), old_action(old_action_), revision(revision_), level(level_),
              message(message_)
        {
        }

        QString path;       // relative to the root
        QString action;     // e.g. "updated", "added", "deleted", "edit", "reverted", "abandoned"
        QString old_action; // for revert: how the file was opened
        int revision = 0;   // the revision the file is at afterwards
        int level = 0;      // 0 information, 1 warning, 2 error
        QString message;    // when set, the item is a message and not a record
        QString base_commit;
        QString their_commit;
    };

    struct SYNC_OPTIONS
    {
        bool preview = false;   // -n
        bool have_only = false; // -k: the have revision moves, the files stay
        bool force = false;     // -f: rewrite unchanged files too
    };

    struct REVERT_OPTIONS
    {
        bool preview = false;        // -n
        bool keep_content = false;   // -k
        bool only_unchanged = false; // -a
        bool wipe_added = false;     // -w: remove files that were opened for add
        bool include_unopened =
            false;       // also new files that were never opened (and wipe them with wipe_added)
        int change = -1; // -c: only files opened in this changelist
    };

    // The state file is held from begin to end; the calls nest.
    bool begin(QString& error);
    bool save(QString& error);
    void end();

    // Holds the state for the length of one operation: ends what it began on every path.
    class STATE_SCOPE
    {
    public:
        explicit STATE_SCOPE(VCS_GIT_WORKSPACE& workspace) : owner(workspace) {}
        ~STATE_SCOPE()
        {
            if (active)
                owner.end();
        }
        STATE_SCOPE(const STATE_SCOPE&) = delete;
        STATE_SCOPE& operator=(const STATE_SCOPE&) = delete;
        bool begin(QString& error)
        {
            active = owner.begin(error);
            return active;
        }

    private:
        VCS_GIT_WORKSPACE& owner;
        bool active = false;
    };
    VCS_GIT_STATE& state() { return workspace_state; }

    bool parse_file_arguments(QString& error, const QStringList& texts, QVector<VCS_FILE_ARGUMENT>& file_args,
                              const QString& working_directory) const;

    // Files the workspace has below folder: path -> (commit, blob).
    bool have_files(QString& error, const QString& folder, QHash<QString, QPair<QString, QString>>& files);
    QString have_commit_of(const QString& head, const QString& path) const;

    // Files matched by the file arguments that are changed, opened or unresolved.
    bool local_state(QString& error, const QVector<VCS_FILE_ARGUMENT>& file_args,
                     QMap<QString, FILE_STATE>& out);
    // The state of chosen files whatever they are.
    bool file_states(QString& error, const QStringList& paths, QMap<QString, FILE_STATE>& out);

    bool sync(QString& error, const QVector<VCS_FILE_ARGUMENT>& file_args, const SYNC_OPTIONS& options,
              QVector<ITEM>& items);
    bool resolve(QString& error, const QVector<VCS_FILE_ARGUMENT>& file_args, VCS_RESOLVE how, bool preview,
                 QVector<ITEM>& items);
    bool open(QString& error, const QVector<VCS_FILE_ARGUMENT>& file_args, VCS_ACTION action, int change,
              bool keep_local_file, QVector<ITEM>& items);
    bool revert(QString& error, const QVector<VCS_FILE_ARGUMENT>& file_args, const REVERT_OPTIONS& options,
                QVector<ITEM>& items);

    // Copies local files into a new folder under "orbin/safety" before they
    // are replaced. The ten newest copies are kept.
    bool safety_copy(QString& error, const QStringList& paths, QString* folder = nullptr);

    // The revision number of a file at a commit, 0 when it is not there.
    int revision_at(const QString& commit, const QString& path);

    QString absolute(const QString& path) const;

private:
    bool write_content(QString& error, const QMap<QString, QString>& commit_of_path);

    VCS_GIT_REPOSITORY& repo;
    VCS_GIT_STATE workspace_state;
    int depth = 0;
};
