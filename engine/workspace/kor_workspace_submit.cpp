// The database lock, the submit of locked files, the removal of a folder and
// schema-change requests.

#include "kor_workspace_files.h"
#include "kor_xml_query_interface.h"
#include "vcs_depot.h"
#include "vcs_identity.h"
#include "vcs_ztag_record.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace
{
const QLatin1String lock_marker("Database changes locked for submit: ");
const QLatin1String requests_folder("schema_changes_requests");

// The pending changelist that lock_for_submit made for a database, or 0.
bool find_locked_change(QString& error, VCS_DEPOT& depot, const QString& path, int& change)
{
    change = 0;
    QVector<VCS_CHANGE_INFO> pending;
    if (!depot.pending_changes(error, pending))
        return false;
    const QString marker = lock_marker + KOR_WORKSPACE_FILES::clean(path);
    for (const VCS_CHANGE_INFO& info : qAsConst(pending))
    {
        if (info.description.trimmed() == marker)
            change = std::max(change, info.number);
    }
    return true;
}

// Local files (of the database and, when given, of the exported data) opened in a change.
bool files_in_change(QString& error, VCS_DEPOT& depot, const QStringList& folders, int change,
                     QStringList& files)
{
    files.clear();
    for (const QString& folder : folders)
    {
        QVector<VCS_FILE_STATUS> statuses;
        if (!depot.status(error, folder, statuses))
            return false;
        for (const VCS_FILE_STATUS& status : qAsConst(statuses))
        {
            if (status.opened != VCS_ACTION::NONE && status.opened_change == change &&
                !files.contains(status.path))
                files.append(status.path);
        }
    }
    files.sort();
    return true;
}

QStringList lock_folders(const QString& path, const QString& design_data_path, VCS_DEPOT& depot)
{
    QStringList folders{KOR_WORKSPACE_FILES::clean(path)};
    if (!design_data_path.isEmpty() && QFileInfo(design_data_path).isDir())
    {
        const QString design = KOR_WORKSPACE_FILES::clean(design_data_path);
        const QString root = depot.root();
        if (!root.isEmpty() && (design == root || design.startsWith(root + QLatin1Char('/'))) &&
            !folders.contains(design))
            folders.append(design);
    }
    return folders;
}

bool write_text(QString& error, const QString& file, const QByteArray& text)
{
    QDir().mkpath(QFileInfo(file).absolutePath());
    QSaveFile out(file);
    if (!out.open(QIODevice::WriteOnly) || out.write(text) != text.size() || !out.commit())
    {
        error = QStringLiteral("Cannot write '%1'").arg(file);
        return false;
    }
    return true;
}

// Opens files for add or edit as the depot has them or not, in a new
// changelist, and submits it. Opened files are taken back on failure.
bool submit_files(QString& error, VCS_DEPOT& depot, const QStringList& added, const QStringList& edited,
                  const QStringList& deleted, const QString& description, int* submitted_change = nullptr)
{
    int change = 0;
    if (!depot.new_change(error, description, change))
        return false;
    auto undo = [&]() {
        QString ignored;
        depot.revert(ignored, added + edited + deleted, true, false);
        depot.delete_change(ignored, change);
    };
    if ((!added.isEmpty() && !depot.open(error, added, VCS_ACTION::ADD, change)) ||
        (!edited.isEmpty() && !depot.open(error, edited, VCS_ACTION::EDIT, change)) ||
        (!deleted.isEmpty() && !depot.open(error, deleted, VCS_ACTION::DELETE, change)))
    {
        undo();
        return false;
    }
    int submitted = 0;
    if (!depot.submit(error, change, description, submitted))
    {
        undo();
        return false;
    }
    if (submitted_change)
        *submitted_change = submitted;
    return true;
}

// Sorts request files into new ones and ones the depot has.
bool sort_by_presence(QString& error, VCS_DEPOT& depot, const QStringList& files, QStringList& added,
                      QStringList& edited)
{
    for (const QString& file : files)
    {
        QByteArray content;
        bool exists = false;
        if (!depot.read_file(error, file, QStringLiteral("#have"), content, exists))
            return false;
        (exists ? edited : added).append(file);
    }
    return true;
}
} // namespace

bool KOR_XML_QUERY_INTERFACE::lock_database(QString& error, const QString& path)
{
    error.clear();
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    return depot && depot->lock(error, KOR_WORKSPACE_FILES::clean(path));
}

bool KOR_XML_QUERY_INTERFACE::unlock_database(const QString& path)
{
    QString error;
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    if (!depot || !depot->unlock(error, KOR_WORKSPACE_FILES::clean(path)))
    {
        KOR_WORKSPACE_FILES::report(*this,
                                    QStringLiteral("The database lock was not released: %1").arg(error), 1);
        return false;
    }
    return true;
}

bool KOR_XML_QUERY_INTERFACE::is_database_locked(const QString& path, QString& lock_holder)
{
    lock_holder.clear();
    QString error;
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    VCS_LOCK_INFO holder;
    if (!depot || !depot->lock_holder(error, KOR_WORKSPACE_FILES::clean(path), holder))
    {
        KOR_WORKSPACE_FILES::report_once(
            *this, QStringLiteral("The database lock cannot be read: %1").arg(error), 0);
        return false;
    }
    if (holder.held)
        lock_holder = holder.describe();
    return holder.held;
}

bool KOR_XML_QUERY_INTERFACE::lock_for_submit(QString& error, const QString& path,
                                              const QString& design_data_path)
{
    error.clear();
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    if (!depot)
        return false;
    const QStringList folders = lock_folders(path, design_data_path, *depot);
    QVector<VCS_FILE_STATUS> statuses;
    for (const QString& folder : folders)
    {
        QVector<VCS_FILE_STATUS> found;
        if (!depot->status(error, folder, found))
            return false;
        statuses += found;
    }
    int change = 0;
    if (!find_locked_change(error, *depot, path, change))
        return false;
    QVector<VCS_FILE_STATUS> to_open;
    for (const VCS_FILE_STATUS& status : qAsConst(statuses))
    {
        if (status.change == VCS_ACTION::NONE && status.opened == VCS_ACTION::NONE)
            continue;
        if (change != 0 && status.opened_change == change)
            continue;
        to_open.append(status);
    }
    if (to_open.isEmpty())
    {
        if (change != 0)
            return true; // locked already
        error = QStringLiteral("No changes to submit");
        return false;
    }
    const bool made = change == 0;
    if (made && !depot->new_change(error, lock_marker + KOR_WORKSPACE_FILES::clean(path), change))
        return false;

    QStringList opened;
    QString failure;
    for (const VCS_FILE_STATUS& status : qAsConst(to_open))
    {
        bool ok = true;
        if (status.opened != VCS_ACTION::NONE)
        {
            QVector<VCS_OUTPUT_LINE> output;
            ok = depot->run(QStringLiteral("reopen"),
                            {QStringLiteral("-c"), QString::number(change), status.path}, QString(), output);
            if (!ok)
                failure = output.isEmpty() ? QStringLiteral("reopen failed") : output.last().text;
        }
        else
        {
            const VCS_ACTION action = status.change == VCS_ACTION::NONE ? VCS_ACTION::EDIT : status.change;
            ok = depot->open(failure, {status.path}, action, change);
        }
        if (!ok)
        {
            // Locking is all or nothing: take back what this call opened.
            QString ignored;
            if (!opened.isEmpty())
                depot->revert(ignored, opened, true, false);
            if (made)
                depot->delete_change(ignored, change);
            error = QStringLiteral("Could not open '%1' for submit: %2").arg(status.path, failure);
            return false;
        }
        opened.append(status.path);
    }
    return true;
}

bool KOR_XML_QUERY_INTERFACE::revert_locked(QString& error, const QString& path, QSet<QString>& added_files)
{
    error.clear();
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    if (!depot)
        return false;
    int change = 0;
    if (!find_locked_change(error, *depot, path, change))
        return false;
    if (change == 0)
        return true; // nothing is locked
    QStringList files;
    QStringList folders{KOR_WORKSPACE_FILES::clean(path)};
    for (const QString& file : qAsConst(added_files))
        folders.append(KOR_WORKSPACE_FILES::clean(QFileInfo(file).absolutePath()));
    folders.removeDuplicates();
    // Files of the exported data may lie outside the database folder: the
    // whole workspace is looked at for what the change holds.
    folders.append(depot->root());
    if (!files_in_change(error, *depot, folders, change, files))
        return false;
    // Only the open state goes; the local content stays.
    if (!files.isEmpty() && !depot->revert(error, files, true, false))
        return false;
    return depot->delete_change(error, change);
}

bool KOR_XML_QUERY_INTERFACE::submit_locked(QString& error, const QString& description, const QString& path)
{
    error.clear();
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    if (!depot)
        return false;
    int change = 0;
    if (!find_locked_change(error, *depot, path, change))
        return false;
    if (change == 0)
    {
        error = QStringLiteral("Nothing is locked for submit: lock the changes first");
        return false;
    }
    QStringList files;
    if (!files_in_change(error, *depot, {depot->root()}, change, files))
        return false;
    if (files.isEmpty())
    {
        error = QStringLiteral("No files to submit");
        return false;
    }
    QVector<VCS_UNRESOLVED> open_resolves;
    if (!depot->unresolved(error, KOR_WORKSPACE_FILES::clean(path), open_resolves))
        return false;
    if (!open_resolves.isEmpty())
    {
        error =
            QStringLiteral("%1 file(s) wait for a merge: merge with the latest revision before submitting")
                .arg(open_resolves.size());
        return false;
    }
    QStringList incoming;
    if (!depot->incoming(error, KOR_WORKSPACE_FILES::clean(path), incoming))
        return false;
    QStringList stale;
    for (const QString& file : qAsConst(incoming))
    {
        if (files.contains(file))
            stale.append(QFileInfo(file).fileName());
    }
    if (!stale.isEmpty())
    {
        error = QStringLiteral(
                    "The database is out of date (%1): merge with the latest revision before submitting")
                    .arg(stale.join(QStringLiteral(", ")));
        return false;
    }
    int submitted = 0;
    if (!depot->submit(error, change, description, submitted))
        return false;
    KOR_WORKSPACE_FILES::report(*this, QStringLiteral("Change %1 submitted").arg(submitted), 0);
    return true;
}

bool KOR_XML_QUERY_INTERFACE::submit_directory_removal(QString& error, const QString& directory,
                                                       const QString& description)
{
    error.clear();
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, directory);
    if (!depot)
        return false;
    const QString folder = KOR_WORKSPACE_FILES::clean(directory);
    QVector<VCS_OUTPUT_LINE> output;
    if (!depot->run(QStringLiteral("have"), {folder + QStringLiteral("/...")}, QString(), output))
    {
        error = output.isEmpty() ? QStringLiteral("The files of '%1' cannot be listed").arg(directory)
                                 : output.last().text;
        return false;
    }
    QStringList lines;
    for (const VCS_OUTPUT_LINE& line : qAsConst(output))
        lines.append(line.text);
    QStringList files;
    for (const VCS_ZTAG_RECORD& record : VCS_ZTAG_RECORD::parse(lines))
    {
        const QString local = record.value(QStringLiteral("path"));
        if (!local.isEmpty())
            files.append(VCS_DEPOT::clean(local));
    }
    if (files.isEmpty())
    {
        error = QStringLiteral("The depot has no files in '%1'").arg(directory);
        return false;
    }
    QString copy;
    if (!KOR_WORKSPACE_FILES::safety_copy(error, directory, files, &copy))
        return false;
    return submit_files(error, *depot, {}, {}, files,
                        description.trimmed().isEmpty() ? QStringLiteral("Remove %1").arg(directory)
                                                        : description);
}

bool KOR_XML_QUERY_INTERFACE::submit_schema_changes_request(QString& error, const QString& first,
                                                            const QString& second, const QString& third)
{
    // (database folder, request name, comments): a request folder with the
    // state file "requested", the comments, and the database's update
    // commands when there are any, submitted together.
    error.clear();
    const QString path = first;
    const QString name = second.trimmed();
    if (name.isEmpty() || name.contains(QLatin1Char('/')) || name.contains(QLatin1Char('\\')) ||
        name.startsWith(QLatin1Char('.')))
    {
        error = QStringLiteral("'%1' cannot name a request").arg(second);
        return false;
    }
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    if (!depot)
        return false;
    const QString folder =
        KOR_WORKSPACE_FILES::clean(path) + QLatin1Char('/') + requests_folder + QLatin1Char('/') + name;
    if (QFileInfo::exists(folder))
    {
        error = QStringLiteral("A request named '%1' exists already").arg(name);
        return false;
    }
    QStringList files{folder + QStringLiteral("/requested"), folder + QStringLiteral("/comments.txt")};
    const QByteArray state =
        QStringLiteral("%1\n%2\n")
            .arg(VCS_IDENTITY::user_name(), QDateTime::currentDateTimeUtc().toString(Qt::ISODate))
            .toUtf8();
    if (!write_text(error, files.at(0), state) || !write_text(error, files.at(1), third.toUtf8()))
        return false;
    const QString commands = KOR_WORKSPACE_FILES::clean(path) + QStringLiteral("/update_commands.txt");
    if (QFileInfo(commands).isFile())
    {
        files.append(folder + QStringLiteral("/update_commands.txt"));
        if (!QFile::copy(commands, files.last()))
        {
            error = QStringLiteral("Cannot copy '%1' into the request").arg(commands);
            return false;
        }
    }
    if (!submit_files(error, *depot, files, {}, {}, QStringLiteral("Schema changes request: %1").arg(name)))
    {
        // Nothing was submitted: the request folder goes again.
        QDir(folder).removeRecursively();
        return false;
    }
    return true;
}

bool KOR_XML_QUERY_INTERFACE::submit_request_change(QString& error, const QString& first,
                                                    const QString& second, const QString& third)
{
    // (database folder, request name, new state): the state file of the
    // request becomes "requested", "in progress" or "on hold"; "<<deleted>>"
    // removes the request.
    error.clear();
    static const QStringList states{QStringLiteral("requested"), QStringLiteral("in progress"),
                                    QStringLiteral("on hold")};
    const QString state = third.trimmed();
    if (!states.contains(state) && state != QLatin1String("<<deleted>>"))
    {
        error = QStringLiteral("'%1' is not a state of a request").arg(third);
        return false;
    }
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, first);
    if (!depot)
        return false;
    const QString folder = KOR_WORKSPACE_FILES::clean(first) + QLatin1Char('/') + requests_folder +
                           QLatin1Char('/') + second.trimmed();
    if (second.trimmed().isEmpty() || !QFileInfo(folder).isDir())
    {
        error = QStringLiteral("There is no request named '%1'").arg(second);
        return false;
    }
    QStringList removed;
    if (state == QLatin1String("<<deleted>>"))
    {
        for (const QString& name : QDir(folder).entryList(QDir::Files))
            removed.append(folder + QLatin1Char('/') + name);
    }
    else
    {
        for (const QString& other : states)
        {
            if (other != state && QFileInfo(folder + QLatin1Char('/') + other).isFile())
                removed.append(folder + QLatin1Char('/') + other);
        }
    }
    QStringList added;
    QStringList edited;
    if (state != QLatin1String("<<deleted>>"))
    {
        const QString state_file = folder + QLatin1Char('/') + state;
        const QByteArray text =
            QStringLiteral("%1\n%2\n")
                .arg(VCS_IDENTITY::user_name(), QDateTime::currentDateTimeUtc().toString(Qt::ISODate))
                .toUtf8();
        if (!write_text(error, state_file, text) ||
            !sort_by_presence(error, *depot, {state_file}, added, edited))
            return false;
    }
    return submit_files(error, *depot, added, edited, removed,
                        QStringLiteral("Schema changes request %1: %2").arg(second.trimmed(), state));
}
