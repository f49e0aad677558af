#pragma once

#include "vcs_depot.h"
#include "vcs_process.h"
#include "vcs_ztag_record.h"

// The Perforce backend: drives the p4 command-line client with tagged
// output (-ztag) from the folder the workspace was found in, so that the
// client's own P4CONFIG, P4CLIENT and P4PORT settings apply. The client root
// and names are asked of the server the first time they are needed, so
// opening the backend touches nothing but the local p4 program.
//
// The database lock is a lock file "orbin.lock" in the database folder, of
// type text+l (exclusive open): whoever has it open for edit holds the lock.
class VCS_P4_DEPOT : public VCS_DEPOT
{
public:
    bool open_at(QString& error, const QString& start_directory, const QString& config_file,
                 const QString& program_name);

    QString backend_name() const override { return QStringLiteral("perforce"); }
    QString root() const override;
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

    // One run of the client.
    struct RESULT
    {
        bool ok = false;
        QVector<VCS_ZTAG_RECORD> records;
        QStringList untagged; // standard output lines that are no fields
        QStringList messages; // standard error lines
        QString error;        // the last error line when the run failed
        QByteArray raw_output;
    };
    RESULT p4(const QStringList& arguments, const QByteArray& input = QByteArray(), bool tagged = true) const;

    static QString lock_file(const QString& folder);
    // Whether run answers in the tagged shape (the default) or the client's plain one.
    void set_tagged(bool tagged) { tagged_run = tagged; }

private:
    bool load_info(QString& error) const;
    QString argument_of(const QString& path) const;
    // "//" + the path below the client root, or the depot path when it lies elsewhere.
    QString root_relative_depot_path(const QString& local) const;

    QString start;
    QString config;
    QString program;
    bool tagged_run = true;
    mutable bool info_loaded = false;
    mutable QString client_root;
    mutable QString client_name;
    mutable QString client_user;
};
