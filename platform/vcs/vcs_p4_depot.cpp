#include "vcs_p4_depot.h"

#include "vcs_file_argument.h"
#include "vcs_identity.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

namespace
{
QString p4_program_name()
{
    const QString configured = qEnvironmentVariable("ORBIN_P4");
    return configured.isEmpty() ? QStringLiteral("p4") : configured;
}

bool is_benign(const QString& message)
{
    // Warnings the client prints on standard error that mean "nothing to do".
    static const char* const benign[] = {"file(s) up-to-date",    "no file(s) to reconcile",
                                         "No file(s) to resolve", "file(s) not opened on this client",
                                         "no such file(s)",       "file(s) not in client view",
                                         "- no file(s) to",       "currently opened for"};
    for (const char* text : benign)
    {
        if (message.contains(QLatin1String(text)))
            return true;
    }
    return false;
}

// Takes the error of a failed run for the caller to return.
bool failed(QString& error, const VCS_P4_DEPOT::RESULT& result)
{
    error = result.error;
    return false;
}

// A changelist form with description in place of its own. Without files the
// form also drops the files the client put in, as those of the default changelist.
QByteArray with_description(const QStringList& form, const QString& description, bool keep_files)
{
    QStringList lines;
    bool skipping = false;
    for (const QString& line : form)
    {
        if (line.startsWith(QLatin1String("Description:")))
        {
            lines.append(line.left(12));
            for (const QString& text : description.split(QLatin1Char('\n')))
                lines.append(QLatin1Char('\t') + text);
            skipping = true;
            continue;
        }
        if (!keep_files && line.startsWith(QLatin1String("Files:")))
        {
            skipping = true;
            continue;
        }
        if (skipping && (line.isEmpty() || line.at(0).isSpace()))
            continue;
        skipping = false;
        lines.append(line);
    }
    return (lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
}
} // namespace

QString VCS_P4_DEPOT::lock_file(const QString& folder)
{
    return VCS_FILE_ARGUMENT::clean_path(folder) + QStringLiteral("/orbin.lock");
}

bool VCS_P4_DEPOT::open_at(QString& error, const QString& start_directory, const QString& config_file,
                           const QString& program_name)
{
    start = start_directory;
    config = config_file;
    program = program_name;
    // Only proves the client program is there; the server is asked later.
    VCS_PROCESS process(p4_program_name());
    process.set_working_directory(start);
    const VCS_PROCESS_RESULT result = process.run({QStringLiteral("-V")});
    if (!result.started)
    {
        error = QStringLiteral(
                    "The Perforce command-line client '%1' could not be started: it is not installed or "
                    "not on the PATH (%2)")
                    .arg(p4_program_name(), result.error);
        return false;
    }
    return true;
}

VCS_P4_DEPOT::RESULT VCS_P4_DEPOT::p4(const QStringList& arguments, const QByteArray& input,
                                      bool tagged) const
{
    RESULT result;
    VCS_PROCESS process(p4_program_name());
    process.set_working_directory(start);
    if (!config.isEmpty() && qEnvironmentVariable("P4CONFIG").isEmpty())
        process.set_environment_value(QStringLiteral("P4CONFIG"), config);
    QStringList full;
    if (!program.isEmpty())
        full << QStringLiteral("-zprog=%1").arg(program);
    if (tagged)
        full << QStringLiteral("-ztag");
    full += arguments;
    const VCS_PROCESS_RESULT run = process.run(full, input);
    result.raw_output = run.standard_output;
    const QStringList lines = run.output_lines();
    if (tagged)
        result.records = VCS_ZTAG_RECORD::parse(lines, &result.untagged);
    else
        result.untagged = lines;
    result.messages = run.error_lines();
    result.messages.removeAll(QString());
    if (!run.started || !run.error.isEmpty())
    {
        result.error = run.error.isEmpty() ? QStringLiteral("p4 could not be run") : run.error;
        return result;
    }
    result.ok = run.exit_code == 0;
    if (!result.ok)
        result.error = run.failure_text(QStringLiteral("p4 ") + arguments.value(0));
    return result;
}

bool VCS_P4_DEPOT::load_info(QString& error) const
{
    if (info_loaded)
        return true;
    const RESULT result = p4({QStringLiteral("info")});
    if (!result.ok || result.records.isEmpty())
    {
        error = QStringLiteral("Perforce: %1")
                    .arg(result.error.isEmpty() ? QStringLiteral("no answer to 'p4 info'") : result.error);
        return false;
    }
    const VCS_ZTAG_RECORD& info = result.records.first();
    client_name = info.value(QStringLiteral("clientName"));
    client_root = VCS_FILE_ARGUMENT::clean_path(info.value(QStringLiteral("clientRoot")));
    client_user = info.value(QStringLiteral("userName"));
    if (client_name.isEmpty() || client_name == QLatin1String("*unknown*") || client_root.isEmpty())
    {
        error = QStringLiteral(
                    "No Perforce client workspace is set for '%1' (set P4CLIENT or use a P4CONFIG file)")
                    .arg(start);
        return false;
    }
    info_loaded = true;
    return true;
}

QString VCS_P4_DEPOT::root() const
{
    QString error;
    return load_info(error) ? client_root : QString();
}

QString VCS_P4_DEPOT::workspace_name() const
{
    QString error;
    return load_info(error) ? client_name : QString();
}

QString VCS_P4_DEPOT::user_name() const
{
    QString error;
    return load_info(error) && !client_user.isEmpty() ? client_user : VCS_IDENTITY::user_name();
}

QString VCS_P4_DEPOT::argument_of(const QString& path) const
{
    if (path.startsWith(QLatin1String("//")))
        return path;
    if (QFileInfo(path).isDir())
        return VCS_FILE_ARGUMENT::clean_path(path) + QStringLiteral("/...");
    return VCS_FILE_ARGUMENT::clean_path(path);
}

QString VCS_P4_DEPOT::root_relative_depot_path(const QString& local) const
{
    const QString top = root();
    const QString cleaned = VCS_FILE_ARGUMENT::clean_path(local);
    if (!top.isEmpty() && cleaned.startsWith(top + QLatin1Char('/')))
        return QStringLiteral("//") + cleaned.mid(top.size() + 1);
    return QString();
}

QString VCS_P4_DEPOT::local_path(const QString& depot_path) const
{
    const RESULT result = p4({QStringLiteral("where"), depot_path});
    if (!result.ok || result.records.isEmpty())
        return QString();
    return VCS_FILE_ARGUMENT::clean_path(result.records.first().value(QStringLiteral("path")));
}

bool VCS_P4_DEPOT::run(const QString& command, const QStringList& arguments, const QString& input,
                       QVector<VCS_OUTPUT_LINE>& output)
{
    if (command == QLatin1String("describe"))
    {
        // The plain shape, with paths read from the client root.
        bool ok = true;
        for (const QString& argument : arguments)
        {
            if (argument.startsWith(QLatin1Char('-')))
                continue;
            bool numeric = false;
            const int number = argument.toInt(&numeric);
            VCS_CHANGE_INFO info;
            QString error;
            if (!numeric || !describe(error, number, info))
            {
                output.append(VCS_OUTPUT_LINE{
                    2, numeric ? error : QStringLiteral("Invalid changelist number '%1'.").arg(argument)});
                ok = false;
                continue;
            }
            for (const QString& line : describe_lines(info))
                output.append(VCS_OUTPUT_LINE{0, line});
        }
        return ok;
    }
    QStringList full{command};
    full += arguments;
    const RESULT result = p4(full, input.toUtf8(), tagged_run);
    for (const QString& line : VCS_PROCESS::split_lines(result.raw_output))
        output.append(VCS_OUTPUT_LINE{0, line});
    for (const QString& line : result.messages)
        output.append(VCS_OUTPUT_LINE{result.ok ? 1 : 2, line});
    if (!result.ok && (result.messages.isEmpty() || result.messages.last() != result.error))
        output.append(VCS_OUTPUT_LINE{2, result.error});
    return result.ok;
}

bool VCS_P4_DEPOT::status(QString& error, const QString& path, QVector<VCS_FILE_STATUS>& out)
{
    out.clear();
    const QString file_arg = argument_of(path);
    QMap<QString, VCS_FILE_STATUS> files;
    QMap<QString, QString> local_of_depot;

    const RESULT opened = p4({QStringLiteral("fstat"), QStringLiteral("-Ro"), file_arg});
    if (!opened.ok && !opened.messages.isEmpty() && !is_benign(opened.error))
        return failed(error, opened);
    for (const VCS_ZTAG_RECORD& record : opened.records)
    {
        const QString local = VCS_FILE_ARGUMENT::clean_path(record.value(QStringLiteral("clientFile")));
        if (local.isEmpty())
            continue;
        VCS_FILE_STATUS status;
        status.path = local;
        status.opened = action_from_name(record.value(QStringLiteral("action")));
        status.change = status.opened;
        const QString change = record.value(QStringLiteral("change"));
        status.opened_change = change == QLatin1String("default") ? 0 : change.toInt();
        status.unresolved = record.contains(QStringLiteral("unresolved"));
        files.insert(local, status);
        local_of_depot.insert(record.value(QStringLiteral("depotFile")), local);
    }
    if (!files.isEmpty())
    {
        // Opened files whose content is the have revision's are not changed.
        const RESULT same = p4({QStringLiteral("diff"), QStringLiteral("-sr"), file_arg});
        for (const VCS_ZTAG_RECORD& record : same.records)
        {
            QString local = record.value(QStringLiteral("clientFile"));
            if (local.isEmpty() || local.startsWith(QLatin1String("//")))
                local = local_of_depot.value(record.value(QStringLiteral("depotFile")));
            local = VCS_FILE_ARGUMENT::clean_path(local);
            auto found = files.find(local);
            if (found != files.end() && found->opened == VCS_ACTION::EDIT)
                found->change = VCS_ACTION::NONE;
        }
    }
    // Changes made without opening the files (the client allows writable files).
    const RESULT loose = p4({QStringLiteral("reconcile"), QStringLiteral("-n"), file_arg});
    if (!loose.ok && !is_benign(loose.error))
        return failed(error, loose);
    for (const VCS_ZTAG_RECORD& record : loose.records)
    {
        const QString local = VCS_FILE_ARGUMENT::clean_path(record.value(QStringLiteral("clientFile")));
        if (local.isEmpty() || files.contains(local))
            continue;
        VCS_FILE_STATUS status;
        status.path = local;
        status.change = action_from_name(record.value(QStringLiteral("action")));
        files.insert(local, status);
    }
    for (const VCS_FILE_STATUS& status : qAsConst(files))
        out.append(status);
    return true;
}

bool VCS_P4_DEPOT::read_file(QString& error, const QString& file, const QString& revision,
                             QByteArray& content, bool& exists)
{
    content.clear();
    exists = false;
    if (revision.isEmpty() || revision == QLatin1String("#none"))
        return true;
    // A token of an unresolved file is a whole depot revision already.
    const QString target =
        revision.startsWith(QLatin1String("//")) ? revision : VCS_FILE_ARGUMENT::clean_path(file) + revision;
    const RESULT listing = p4({QStringLiteral("files"), target});
    if (!listing.ok || listing.records.isEmpty())
    {
        if (is_benign(listing.error) || listing.records.isEmpty())
            return true;
        error = listing.error;
        return false;
    }
    const QString action = listing.records.first().value(QStringLiteral("action"));
    if (action.contains(QLatin1String("delete")))
        return true;
    const RESULT printed = p4({QStringLiteral("print"), QStringLiteral("-q"), target}, QByteArray(), false);
    if (!printed.ok)
        return failed(error, printed);
    content = printed.raw_output;
    exists = true;
    return true;
}

bool VCS_P4_DEPOT::have_change(QString& error, const QString& path, int& change)
{
    change = 0;
    const RESULT result =
        p4({QStringLiteral("changes"), QStringLiteral("-m1"), argument_of(path) + QStringLiteral("#have")});
    if (!result.ok)
        return failed(error, result);
    if (!result.records.isEmpty())
        change = result.records.first().int_value(QStringLiteral("change"));
    return true;
}

bool VCS_P4_DEPOT::head_change(QString& error, const QString& path, int& change)
{
    change = 0;
    const RESULT result = p4({QStringLiteral("changes"), QStringLiteral("-m1"), QStringLiteral("-s"),
                              QStringLiteral("submitted"), argument_of(path)});
    if (!result.ok)
        return failed(error, result);
    if (!result.records.isEmpty())
        change = result.records.first().int_value(QStringLiteral("change"));
    return true;
}

bool VCS_P4_DEPOT::file_change(QString& error, const QString& file, int revision, int& change)
{
    change = 0;
    const RESULT result = p4({QStringLiteral("changes"), QStringLiteral("-m1"),
                              VCS_FILE_ARGUMENT::clean_path(file) + QStringLiteral("#%1").arg(revision)});
    if (!result.ok || result.records.isEmpty())
    {
        error = result.error.isEmpty() ? QStringLiteral("%1#%2 - no such file(s).").arg(file).arg(revision)
                                       : result.error;
        return false;
    }
    change = result.records.first().int_value(QStringLiteral("change"));
    return true;
}

bool VCS_P4_DEPOT::incoming(QString& error, const QString& path, QStringList& files)
{
    files.clear();
    const RESULT result = p4({QStringLiteral("sync"), QStringLiteral("-n"), argument_of(path)});
    if (!result.ok && !is_benign(result.error))
        return failed(error, result);
    for (const VCS_ZTAG_RECORD& record : result.records)
    {
        const QString local = record.value(QStringLiteral("clientFile"));
        if (!local.isEmpty())
            files.append(VCS_FILE_ARGUMENT::clean_path(local));
    }
    files.sort();
    return true;
}

bool VCS_P4_DEPOT::export_files(QString& error, const QString& directory, int change, const QString& target)
{
    const QString file_arg = argument_of(directory);
    const RESULT mapping = p4({QStringLiteral("where"), file_arg});
    if (!mapping.ok || mapping.records.isEmpty())
    {
        error = mapping.error.isEmpty() ? QStringLiteral("%1 - file(s) not in client view.").arg(directory)
                                        : mapping.error;
        return false;
    }
    QString prefix = mapping.records.first().value(QStringLiteral("depotFile"));
    if (prefix.endsWith(QLatin1String("...")))
        prefix.chop(3);
    const RESULT listing = p4({QStringLiteral("files"), file_arg + QStringLiteral("@%1").arg(change)});
    if (!listing.ok || listing.records.isEmpty())
    {
        error = listing.error.isEmpty()
                    ? QStringLiteral("%1 - no such file(s) at change %2.").arg(directory).arg(change)
                    : listing.error;
        return false;
    }
    for (const VCS_ZTAG_RECORD& record : listing.records)
    {
        if (record.value(QStringLiteral("action")).contains(QLatin1String("delete")))
            continue;
        const QString depot_file = record.value(QStringLiteral("depotFile"));
        if (!depot_file.startsWith(prefix))
            continue;
        const QString destination = QDir(target).absoluteFilePath(depot_file.mid(prefix.size()));
        if (!QDir().mkpath(QFileInfo(destination).absolutePath()))
        {
            error = QStringLiteral("Cannot create the folder of '%1'").arg(destination);
            return false;
        }
        const RESULT printed = p4({QStringLiteral("print"), QStringLiteral("-q"),
                                   depot_file + QLatin1Char('#') + record.value(QStringLiteral("rev"))},
                                  QByteArray(), false);
        QSaveFile file(destination);
        if (!printed.ok || !file.open(QIODevice::WriteOnly) ||
            file.write(printed.raw_output) != printed.raw_output.size() || !file.commit())
        {
            error = printed.ok ? QStringLiteral("Cannot write '%1'").arg(destination) : printed.error;
            return false;
        }
    }
    return true;
}

bool VCS_P4_DEPOT::sync(QString& error, const QStringList& file_args, QStringList& updated)
{
    updated.clear();
    // Files changed without being opened would block the sync ("can't clobber
    // writable file"); opening them first makes the client schedule resolves
    // instead, so local work survives.
    QStringList plain;
    for (const QString& file_arg : file_args)
    {
        QString path = file_arg;
        const int marker = std::max(path.lastIndexOf(QLatin1Char('#')), path.lastIndexOf(QLatin1Char('@')));
        if (marker > path.lastIndexOf(QLatin1Char('/')))
            path = path.left(marker);
        plain.append(path);
    }
    const RESULT reconciled = p4(QStringList{QStringLiteral("reconcile")} + plain);
    if (!reconciled.ok && !is_benign(reconciled.error))
        return failed(error, reconciled);
    const RESULT result = p4(QStringList{QStringLiteral("sync")} + file_args);
    if (!result.ok && !is_benign(result.error))
        return failed(error, result);
    for (const VCS_ZTAG_RECORD& record : result.records)
    {
        const QString local = record.value(QStringLiteral("clientFile"));
        if (!local.isEmpty())
            updated.append(VCS_FILE_ARGUMENT::clean_path(local));
    }
    return true;
}

bool VCS_P4_DEPOT::unresolved(QString& error, const QString& path, QVector<VCS_UNRESOLVED>& out)
{
    out.clear();
    const RESULT result = p4({QStringLiteral("resolve"), QStringLiteral("-n"), argument_of(path)});
    if (!result.ok && !is_benign(result.error))
        return failed(error, result);
    for (const VCS_ZTAG_RECORD& record : result.records)
    {
        VCS_UNRESOLVED entry;
        entry.path = VCS_FILE_ARGUMENT::clean_path(record.value(QStringLiteral("clientFile")));
        const QString from = record.value(QStringLiteral("fromFile"));
        const QString base_file = record.value(QStringLiteral("baseFile"), from);
        QString base_revision =
            record.value(QStringLiteral("baseRev"), record.value(QStringLiteral("startFromRev")));
        if (base_revision.startsWith(QLatin1Char('#')))
            base_revision.remove(0, 1);
        if (!base_revision.isEmpty() && base_revision != QLatin1String("none") &&
            base_revision != QLatin1String("0"))
            entry.base_revision = base_file + QLatin1Char('#') + base_revision;
        QString their_revision = record.value(QStringLiteral("endFromRev"));
        if (their_revision.startsWith(QLatin1Char('#')))
            their_revision.remove(0, 1);
        if (!their_revision.isEmpty() && their_revision != QLatin1String("none"))
            entry.their_revision = from + QLatin1Char('#') + their_revision;
        if (!entry.path.isEmpty())
            out.append(entry);
    }
    return true;
}

bool VCS_P4_DEPOT::resolve(QString& error, const QStringList& files, VCS_RESOLVE how)
{
    const QString flag = how == VCS_RESOLVE::ACCEPT_THEIRS  ? QStringLiteral("-at")
                         : how == VCS_RESOLVE::ACCEPT_YOURS ? QStringLiteral("-ay")
                         : how == VCS_RESOLVE::MERGE_FORCED ? QStringLiteral("-af")
                                                            : QStringLiteral("-am");
    const RESULT result = p4(QStringList{QStringLiteral("resolve"), flag} + files);
    if (!result.ok && !is_benign(result.error))
        return failed(error, result);
    for (const QString& message : result.messages)
    {
        if (message.contains(QLatin1String("resolve skipped")))
        {
            error = message;
            return false;
        }
    }
    return true;
}

bool VCS_P4_DEPOT::open(QString& error, const QStringList& files, VCS_ACTION action, int change)
{
    QStringList arguments{action_name(action == VCS_ACTION::NONE ? VCS_ACTION::EDIT : action)};
    if (change > 0)
        arguments << QStringLiteral("-c") << QString::number(change);
    arguments += files;
    const RESULT result = p4(arguments);
    if (!result.ok)
        return failed(error, result);
    for (const QString& message : result.messages)
    {
        if (message.contains(QLatin1String("can't")) || message.contains(QLatin1String("not on client")) ||
            message.contains(QLatin1String("exclusive")))
        {
            error = message;
            return false;
        }
    }
    return true;
}

bool VCS_P4_DEPOT::revert(QString& error, const QStringList& file_args, bool keep_content, bool wipe_added)
{
    QStringList plain;
    for (const QString& file_arg : file_args)
        plain.append(argument_of(file_arg));
    if (!keep_content)
    {
        // Changes made without opening are opened first so that one revert
        // takes back every local change.
        const RESULT reconciled = p4(QStringList{QStringLiteral("reconcile")} + plain);
        if (!reconciled.ok && !is_benign(reconciled.error))
            return failed(error, reconciled);
    }
    QStringList arguments{QStringLiteral("revert")};
    if (keep_content)
        arguments << QStringLiteral("-k");
    if (wipe_added && !keep_content)
        arguments << QStringLiteral("-w");
    const RESULT result = p4(arguments + plain);
    if (!result.ok && !is_benign(result.error))
        return failed(error, result);
    return true;
}

bool VCS_P4_DEPOT::new_change(QString& error, const QString& description, int& change)
{
    change = 0;
    const RESULT form = p4({QStringLiteral("change"), QStringLiteral("-o")}, QByteArray(), false);
    if (!form.ok)
        return failed(error, form);
    const RESULT created = p4({QStringLiteral("change"), QStringLiteral("-i")},
                              with_description(form.untagged, description, false), false);
    if (!created.ok)
        return failed(error, created);
    static const QRegularExpression number(QStringLiteral("Change (\\d+) created"));
    const QRegularExpressionMatch match = number.match(created.untagged.join(QLatin1Char('\n')));
    if (!match.hasMatch())
    {
        error = QStringLiteral("Perforce did not say which changelist it created");
        return false;
    }
    change = match.captured(1).toInt();
    return true;
}

bool VCS_P4_DEPOT::pending_changes(QString& error, QVector<VCS_CHANGE_INFO>& out)
{
    out.clear();
    const QString client = workspace_name();
    if (client.isEmpty())
    {
        load_info(error);
        return false;
    }
    const RESULT result = p4({QStringLiteral("changes"), QStringLiteral("-l"), QStringLiteral("-s"),
                              QStringLiteral("pending"), QStringLiteral("-c"), client});
    if (!result.ok)
        return failed(error, result);
    for (const VCS_ZTAG_RECORD& record : result.records)
    {
        VCS_CHANGE_INFO info;
        info.number = record.int_value(QStringLiteral("change"));
        info.status = QStringLiteral("pending");
        info.user = record.value(QStringLiteral("user"));
        info.workspace = record.value(QStringLiteral("client"));
        info.description = record.value(QStringLiteral("desc")).trimmed();
        out.append(info);
    }
    return true;
}

bool VCS_P4_DEPOT::delete_change(QString& error, int change)
{
    const RESULT result =
        p4({QStringLiteral("change"), QStringLiteral("-d"), QString::number(change)}, QByteArray(), false);
    if (!result.ok)
        return failed(error, result);
    return true;
}

bool VCS_P4_DEPOT::submit(QString& error, int change, const QString& description, int& submitted)
{
    submitted = 0;
    QStringList arguments{QStringLiteral("submit")};
    if (change > 0)
    {
        if (!description.trimmed().isEmpty())
        {
            const RESULT form = p4({QStringLiteral("change"), QStringLiteral("-o"), QString::number(change)},
                                   QByteArray(), false);
            if (!form.ok)
                return failed(error, form);
            const RESULT updated = p4({QStringLiteral("change"), QStringLiteral("-i")},
                                      with_description(form.untagged, description, true), false);
            if (!updated.ok)
                return failed(error, updated);
        }
        arguments << QStringLiteral("-c") << QString::number(change);
    }
    else
        arguments << QStringLiteral("-d") << description;
    const RESULT result = p4(arguments);
    if (!result.ok)
        return failed(error, result);
    for (const VCS_ZTAG_RECORD& record : result.records)
    {
        if (record.contains(QStringLiteral("submittedChange")))
            submitted = record.int_value(QStringLiteral("submittedChange"));
    }
    if (submitted == 0)
    {
        error = result.messages.isEmpty() ? QStringLiteral("Perforce did not report the submitted changelist")
                                          : result.messages.last();
        return false;
    }
    return true;
}

bool VCS_P4_DEPOT::describe(QString& error, int change, VCS_CHANGE_INFO& out)
{
    out = VCS_CHANGE_INFO();
    const RESULT result = p4({QStringLiteral("describe"), QStringLiteral("-s"), QString::number(change)});
    if (!result.ok || result.records.isEmpty())
    {
        error = result.error.isEmpty() ? QStringLiteral("Change %1 unknown.").arg(change) : result.error;
        return false;
    }
    const VCS_ZTAG_RECORD& record = result.records.first();
    out.number = record.int_value(QStringLiteral("change"), change);
    out.user = record.value(QStringLiteral("user"));
    out.workspace = record.value(QStringLiteral("client"));
    out.status = record.value(QStringLiteral("status"));
    out.time = QDateTime::fromSecsSinceEpoch(record.value(QStringLiteral("time")).toLongLong());
    out.description = record.value(QStringLiteral("desc"));
    while (out.description.endsWith(QLatin1Char('\n')))
        out.description.chop(1);
    QStringList depot_files;
    for (int i = 0;; ++i)
    {
        const QString key = QStringLiteral("depotFile%1").arg(i);
        if (!record.contains(key))
            break;
        VCS_CHANGE_FILE file;
        file.depot_path = record.value(key);
        file.revision = record.int_value(QStringLiteral("rev%1").arg(i));
        file.action = record.value(QStringLiteral("action%1").arg(i));
        out.files.append(file);
        depot_files.append(file.depot_path);
    }
    if (depot_files.isEmpty())
        return true;
    // Where the files lie in this client, so that the paths read from its root.
    const RESULT where = p4(QStringList{QStringLiteral("where")} + depot_files);
    QMap<QString, QString> local_of;
    for (const VCS_ZTAG_RECORD& mapped : where.records)
        local_of.insert(mapped.value(QStringLiteral("depotFile")),
                        VCS_FILE_ARGUMENT::clean_path(mapped.value(QStringLiteral("path"))));
    for (VCS_CHANGE_FILE& file : out.files)
    {
        file.local_path = local_of.value(file.depot_path);
        const QString relative =
            file.local_path.isEmpty() ? QString() : root_relative_depot_path(file.local_path);
        if (!relative.isEmpty())
            file.depot_path = relative;
    }
    return true;
}

bool VCS_P4_DEPOT::lock_holder(QString& error, const QString& folder, VCS_LOCK_INFO& holder)
{
    holder = VCS_LOCK_INFO();
    const RESULT result = p4({QStringLiteral("opened"), QStringLiteral("-a"), lock_file(folder)});
    if (!result.ok && !is_benign(result.error))
        return failed(error, result);
    for (const VCS_ZTAG_RECORD& record : result.records)
    {
        holder.held = true;
        holder.user = record.value(QStringLiteral("user"));
        holder.workspace = record.value(QStringLiteral("client"));
        return true;
    }
    return true;
}

bool VCS_P4_DEPOT::lock(QString& error, const QString& folder)
{
    const QString file = lock_file(folder);
    VCS_LOCK_INFO holder;
    if (!lock_holder(error, folder, holder))
        return false;
    if (is_mine(holder))
        return true;
    if (holder.held)
    {
        error = QStringLiteral("The database is locked by %1").arg(holder.describe());
        return false;
    }
    const RESULT known =
        p4({QStringLiteral("fstat"), QStringLiteral("-T"), QStringLiteral("headRev,headAction"), file});
    const bool in_depot =
        known.ok && !known.records.isEmpty() && known.records.first().contains(QStringLiteral("headRev")) &&
        !known.records.first().value(QStringLiteral("headAction")).contains(QLatin1String("delete"));
    if (!in_depot)
    {
        // The first lock of a database puts the lock file into the depot.
        QFile local(file);
        if (!local.exists() &&
            (!local.open(QIODevice::WriteOnly) || local.write("orbin database lock\n") < 0))
        {
            error = QStringLiteral("Cannot create the lock file '%1'").arg(file);
            return false;
        }
        local.close();
        const RESULT added =
            p4({QStringLiteral("add"), QStringLiteral("-t"), QStringLiteral("text+l"), file});
        if (!added.ok)
            return failed(error, added);
        const RESULT submitted =
            p4({QStringLiteral("submit"), QStringLiteral("-d"), QStringLiteral("Database lock file"), file});
        if (!submitted.ok)
            return failed(error, submitted);
    }
    else
    {
        const RESULT synced = p4({QStringLiteral("sync"), file});
        if (!synced.ok && !is_benign(synced.error))
            return failed(error, synced);
    }
    const RESULT opened = p4({QStringLiteral("edit"), QStringLiteral("-t"), QStringLiteral("text+l"), file});
    bool refused = !opened.ok;
    for (const QString& message : opened.messages)
        refused = refused || message.contains(QLatin1String("exclusive")) ||
                  message.contains(QLatin1String("can't"));
    if (refused)
    {
        // Someone else took it between the look and the open.
        QString ignored;
        if (lock_holder(ignored, folder, holder) && holder.held && !is_mine(holder))
            error = QStringLiteral("The database is locked by %1").arg(holder.describe());
        else
            error = opened.error.isEmpty() ? opened.messages.value(0) : opened.error;
        return false;
    }
    return true;
}

bool VCS_P4_DEPOT::unlock(QString& error, const QString& folder)
{
    bool held = false;
    if (!may_release(error, folder, held))
        return false;
    if (!held)
        return true;
    const RESULT result = p4({QStringLiteral("revert"), lock_file(folder)});
    if (!result.ok)
        return failed(error, result);
    return true;
}
