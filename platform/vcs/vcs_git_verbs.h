#pragma once

#include "vcs_file_argument.h"
#include "vcs_git_workspace.h"
#include "vcs_types.h"
#include "vcs_ztag_record.h"

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

class VCS_GIT_DEPOT;

// The depot client's commands answered on a git clone, in the tagged shapes
// the Perforce client prints with -ztag: sync, edit, add, delete, revert,
// resolve, opened, have, changes, describe, info, where, print, files,
// fstat, change, reopen, submit. Arguments are the client's own; relative
// file arguments are taken from the workspace root. "describe" answers in
// the plain shape of VCS_DEPOT::describe_lines.
class VCS_GIT_VERBS
{
public:
    explicit VCS_GIT_VERBS(VCS_GIT_DEPOT& depot);

    bool run(const QString& command, const QStringList& arguments, const QString& input,
             QVector<VCS_OUTPUT_LINE>& output);

    static QStringList commands();

    // The options of a command line: flags, flags with values, and the files.
    struct ARGUMENTS
    {
        QSet<QString> flags;
        QMap<QString, QString> values;
        QStringList files;
        QString error;
        bool has(const QString& flag) const { return flags.contains(flag); }
    };
    static ARGUMENTS parse(const QStringList& arguments, const QStringList& value_flags);

private:
    bool sync(const ARGUMENTS& arguments);
    bool open(const ARGUMENTS& arguments, VCS_ACTION action);
    bool revert(const ARGUMENTS& arguments);
    bool resolve(const ARGUMENTS& arguments);
    bool opened(const ARGUMENTS& arguments);
    bool have(const ARGUMENTS& arguments);
    bool changes(const ARGUMENTS& arguments);
    bool describe(const ARGUMENTS& arguments);
    bool info();
    bool where(const ARGUMENTS& arguments);
    bool print(const ARGUMENTS& arguments);
    bool files(const ARGUMENTS& arguments, bool with_status);
    bool change(const ARGUMENTS& arguments, const QString& input);
    bool reopen(const ARGUMENTS& arguments);
    bool submit(const ARGUMENTS& arguments, const QString& input);

    // Reads a changelist form: its number ("new" is 0), description and files.
    bool parse_form(const QString& input, int& number, QString& description, QStringList& files);
    bool change_number(const QString& text, int& number);

    void record(const VCS_ZTAG_RECORD& record);
    void message(int level, const QString& text);
    // An error line; answers false for the caller to return.
    bool fail(const QString& text);
    // The depot and client file of a root-relative path.
    void set_files(VCS_ZTAG_RECORD& entry, const QString& path) const;
    // The outcome of a workspace operation: its error, or each item as a
    // message or as a record that fill completes.
    bool report(bool ok, const QString& error, const QVector<VCS_GIT_WORKSPACE::ITEM>& items,
                const std::function<void(const VCS_GIT_WORKSPACE::ITEM&, VCS_ZTAG_RECORD&)>& fill,
                bool write_records = true);
    // A new changelist of the default changelist's opened files that match files.
    bool move_default_files(const QStringList& files, const QString& description, int& number);
    bool file_args(const QStringList& texts, QVector<VCS_FILE_ARGUMENT>& out, const QString& fallback);

    VCS_GIT_DEPOT& depot;
    QVector<VCS_OUTPUT_LINE>* output = nullptr;
    bool failed = false;
};
