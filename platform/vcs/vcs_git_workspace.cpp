#include "vcs_git_workspace.h"

#include "vcs_depot.h"
#include "vcs_git_repository.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>

namespace
{
bool under(const QString& path, const QString& folder)
{
    return folder.isEmpty() || path == folder || path.startsWith(folder + QLatin1Char('/'));
}

QStringList argument_folders(const QVector<VCS_FILE_ARGUMENT>& file_args)
{
    QStringList folders;
    for (const VCS_FILE_ARGUMENT& file_arg : file_args)
    {
        const QString folder = file_arg.search_folder();
        if (folder.isEmpty())
            return {QString()};
        folders.append(folder);
    }
    folders.removeDuplicates();
    return folders;
}

bool is_marker(const QString& commit)
{
    return commit == VCS_GIT_STATE::not_on_client();
}
} // namespace

VCS_GIT_WORKSPACE::VCS_GIT_WORKSPACE(VCS_GIT_REPOSITORY& repository) : repo(repository) {}

QString VCS_GIT_WORKSPACE::absolute(const QString& path) const
{
    return path.isEmpty() ? repo.root() : repo.root() + QLatin1Char('/') + path;
}

bool VCS_GIT_WORKSPACE::begin(QString& error)
{
    if (depth == 0 && !workspace_state.load(error, repo.git_dir()))
    {
        workspace_state.release();
        return false;
    }
    ++depth;
    return true;
}

bool VCS_GIT_WORKSPACE::save(QString& error)
{
    return workspace_state.save(error);
}

void VCS_GIT_WORKSPACE::end()
{
    if (depth > 0 && --depth == 0)
        workspace_state.release();
}

bool VCS_GIT_WORKSPACE::parse_file_arguments(QString& error, const QStringList& texts,
                                             QVector<VCS_FILE_ARGUMENT>& file_args,
                                             const QString& working_directory) const
{
    file_args.clear();
    for (const QString& text : texts)
    {
        VCS_FILE_ARGUMENT file_arg;
        if (!file_arg.parse(error, text, repo.root(),
                            working_directory.isEmpty() ? repo.root() : working_directory))
            return false;
        file_args.append(file_arg);
    }
    return true;
}

QString VCS_GIT_WORKSPACE::have_commit_of(const QString& head, const QString& path) const
{
    const auto found = workspace_state.have.constFind(path);
    return found == workspace_state.have.constEnd() ? head : found.value();
}

bool VCS_GIT_WORKSPACE::have_files(QString& error, const QString& folder,
                                   QHash<QString, QPair<QString, QString>>& files)
{
    files.clear();
    QString head;
    if (!repo.head(error, head))
        return false;
    QHash<QString, QString> blobs;
    if (!repo.tree(error, head, folder, blobs))
        return false;
    for (auto it = blobs.cbegin(); it != blobs.cend(); ++it)
    {
        if (!workspace_state.have.contains(it.key()))
            files.insert(it.key(), qMakePair(head, it.value()));
    }
    for (auto it = workspace_state.have.cbegin(); it != workspace_state.have.cend(); ++it)
    {
        if (!under(it.key(), folder) || is_marker(it.value()))
            continue;
        QString blob;
        if (!repo.blob(error, it.value(), it.key(), blob))
            return false;
        if (!blob.isEmpty())
            files.insert(it.key(), qMakePair(it.value(), blob));
    }
    return true;
}

bool VCS_GIT_WORKSPACE::file_states(QString& error, const QStringList& paths, QMap<QString, FILE_STATE>& out)
{
    out.clear();
    QString head;
    if (!repo.head(error, head))
        return false;
    QStringList hashes;
    if (!repo.hash_files(error, paths, hashes))
        return false;
    for (int i = 0; i < paths.size(); ++i)
    {
        const QString& path = paths.at(i);
        FILE_STATE state;
        state.path = path;
        state.have_commit = have_commit_of(head, path);
        if (!is_marker(state.have_commit) && !repo.blob(error, state.have_commit, path, state.have_blob))
            return false;
        state.work_blob = hashes.at(i);
        if (state.have_blob.isEmpty() && !state.work_blob.isEmpty())
            state.change = VCS_ACTION::ADD;
        else if (!state.have_blob.isEmpty() && state.work_blob.isEmpty())
            state.change = VCS_ACTION::DELETE;
        else if (state.have_blob != state.work_blob)
            state.change = VCS_ACTION::EDIT;
        const auto opened = workspace_state.opened.constFind(path);
        if (opened != workspace_state.opened.constEnd())
        {
            state.opened_action = opened.value().action;
            state.opened_change = opened.value().change;
        }
        state.unresolved = workspace_state.unresolved.contains(path);
        out.insert(path, state);
    }
    return true;
}

bool VCS_GIT_WORKSPACE::local_state(QString& error, const QVector<VCS_FILE_ARGUMENT>& file_args,
                                    QMap<QString, FILE_STATE>& out)
{
    out.clear();
    QSet<QString> candidates;
    for (const QString& folder : argument_folders(file_args))
    {
        QStringList arguments{QStringLiteral("status"), QStringLiteral("--porcelain=v1"),
                              QStringLiteral("-z"), QStringLiteral("--untracked-files=all"),
                              QStringLiteral("--no-renames")};
        if (!folder.isEmpty())
            arguments << QStringLiteral("--") << folder;
        QByteArray output;
        if (!repo.git_ok(error, arguments, &output))
            return false;
        for (const QByteArray& entry : output.split('\0'))
        {
            if (entry.size() > 3)
                candidates.insert(QString::fromUtf8(entry.mid(3)));
        }
        for (auto it = workspace_state.opened.cbegin(); it != workspace_state.opened.cend(); ++it)
        {
            if (under(it.key(), folder))
                candidates.insert(it.key());
        }
        for (auto it = workspace_state.have.cbegin(); it != workspace_state.have.cend(); ++it)
        {
            if (under(it.key(), folder))
                candidates.insert(it.key());
        }
        for (auto it = workspace_state.unresolved.cbegin(); it != workspace_state.unresolved.cend(); ++it)
        {
            if (under(it.key(), folder))
                candidates.insert(it.key());
        }
    }
    QStringList paths;
    for (const QString& path : qAsConst(candidates))
    {
        if (VCS_FILE_ARGUMENT::any_matches(file_args, path))
            paths.append(path);
    }
    paths.sort();
    QMap<QString, FILE_STATE> states;
    if (!file_states(error, paths, states))
        return false;
    for (auto it = states.cbegin(); it != states.cend(); ++it)
    {
        const FILE_STATE& state = it.value();
        if (state.change != VCS_ACTION::NONE || !state.opened_action.isEmpty() || state.unresolved)
            out.insert(it.key(), state);
    }
    return true;
}

int VCS_GIT_WORKSPACE::revision_at(const QString& commit, const QString& path)
{
    if (commit.isEmpty() || is_marker(commit))
        return 0;
    QString ignored;
    QString blob;
    if (!repo.blob(ignored, commit, path, blob) || blob.isEmpty())
        return 0;
    int revision = 0;
    repo.file_revision(ignored, commit, path, revision);
    return revision;
}

bool VCS_GIT_WORKSPACE::write_content(QString& error, const QMap<QString, QString>& commit_of_path)
{
    QMap<QString, QStringList> by_commit;
    QStringList removals;
    for (auto it = commit_of_path.cbegin(); it != commit_of_path.cend(); ++it)
    {
        if (it.value().isEmpty() || is_marker(it.value()))
            removals.append(it.key());
        else
            by_commit[it.value()].append(it.key());
    }
    for (auto it = by_commit.cbegin(); it != by_commit.cend(); ++it)
    {
        if (!repo.write_files(error, it.key(), it.value()))
            return false;
    }
    for (const QString& path : qAsConst(removals))
    {
        QFile file(absolute(path));
        if (file.exists() && !file.remove())
        {
            error = QStringLiteral("Cannot remove '%1': %2").arg(file.fileName(), file.errorString());
            return false;
        }
    }
    return true;
}

bool VCS_GIT_WORKSPACE::safety_copy(QString& error, const QStringList& paths, QString* folder)
{
    QStringList present;
    for (const QString& path : paths)
    {
        if (QFileInfo(absolute(path)).isFile())
            present.append(path);
    }
    if (present.isEmpty())
        return true;
    const QString base = repo.git_dir() + QStringLiteral("/orbin/safety");
    QString target = base + QLatin1Char('/') +
                     QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd-HHmmss-zzz"));
    for (int suffix = 1; QFileInfo::exists(target); ++suffix)
        target = target.section(QLatin1Char('~'), 0, 0) + QStringLiteral("~%1").arg(suffix);
    for (const QString& path : qAsConst(present))
    {
        const QString destination = target + QLatin1Char('/') + path;
        if (!QDir().mkpath(QFileInfo(destination).absolutePath()) ||
            !QFile::copy(absolute(path), destination))
        {
            error = QStringLiteral("Cannot keep a safety copy of '%1' in '%2'; nothing was changed")
                        .arg(absolute(path), target);
            return false;
        }
    }
    if (folder)
        *folder = target;
    QDir safety(base);
    QStringList kept = safety.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    while (kept.size() > 10)
        QDir(base + QLatin1Char('/') + kept.takeFirst()).removeRecursively();
    return true;
}

bool VCS_GIT_WORKSPACE::sync(QString& error, const QVector<VCS_FILE_ARGUMENT>& file_args,
                             const SYNC_OPTIONS& options, QVector<ITEM>& items)
{
    STATE_SCOPE scope(*this);
    if (!scope.begin(error))
        return false;

    bool needs_depot = false;
    bool moves_head = false;
    for (const VCS_FILE_ARGUMENT& file_arg : file_args)
    {
        const auto kind = file_arg.revision_kind();
        if (kind != VCS_FILE_ARGUMENT::REVISION_HAVE && kind != VCS_FILE_ARGUMENT::REVISION_DELETED)
            needs_depot = true;
        if (kind == VCS_FILE_ARGUMENT::REVISION_NONE_GIVEN || kind == VCS_FILE_ARGUMENT::REVISION_HEAD)
            moves_head = true;
    }
    if (needs_depot && !repo.fetch(error))
        return false;
    QString head;
    QString latest;
    if (!repo.head(error, head))
        return false;
    if (needs_depot && !repo.latest(error, latest))
        return false;
    moves_head = moves_head && !latest.isEmpty() && latest != head;
    if (moves_head && !repo.is_ancestor(head, latest))
    {
        error =
            QStringLiteral("The workspace '%1' has commits that are not in the depot (%2/%3 does not contain "
                           "HEAD); push or drop them before syncing")
                .arg(repo.root(), repo.remote(), repo.branch());
        return false;
    }

    // Where each matched file is to go: a commit, or the marker for "not on the client".
    QMap<QString, QString> targets;
    for (const VCS_FILE_ARGUMENT& file_arg : file_args)
    {
        const QString folder = file_arg.search_folder();
        QHash<QString, QPair<QString, QString>> have;
        if (!have_files(error, folder, have))
            return false;
        QString commit;
        bool per_file = false;
        switch (file_arg.revision_kind())
        {
        case VCS_FILE_ARGUMENT::REVISION_HAVE:
            continue;
        case VCS_FILE_ARGUMENT::REVISION_NONE_GIVEN:
        case VCS_FILE_ARGUMENT::REVISION_HEAD:
            commit = latest;
            break;
        case VCS_FILE_ARGUMENT::REVISION_CHANGE:
            if (!repo.commit_of_change(error, file_arg.revision_number(), commit))
                return false;
            break;
        case VCS_FILE_ARGUMENT::REVISION_DELETED:
            commit = VCS_GIT_STATE::not_on_client();
            break;
        case VCS_FILE_ARGUMENT::REVISION_FILE:
            per_file = true;
            break;
        }
        QSet<QString> matched;
        for (auto it = have.cbegin(); it != have.cend(); ++it)
        {
            if (file_arg.matches(it.key()))
                matched.insert(it.key());
        }
        const QString listing = per_file ? latest : commit;
        if (!listing.isEmpty() && !is_marker(listing))
        {
            QHash<QString, QString> blobs;
            if (!repo.tree(error, listing, folder, blobs))
                return false;
            for (auto it = blobs.cbegin(); it != blobs.cend(); ++it)
            {
                if (file_arg.matches(it.key()))
                    matched.insert(it.key());
            }
        }
        if (matched.isEmpty())
        {
            items.append(ITEM{file_arg.relative_pattern(), QString(), QString(), 0, 1,
                              file_arg.text() + QStringLiteral(" - no such file(s).")});
            continue;
        }
        for (const QString& path : qAsConst(matched))
        {
            if (per_file)
            {
                QString file_commit;
                if (!repo.commit_of_file_revision(error, path, file_arg.revision_number(), file_commit))
                    return false;
                targets.insert(path, file_commit.isEmpty() ? VCS_GIT_STATE::not_on_client() : file_commit);
            }
            else
                targets.insert(path, commit.isEmpty() ? VCS_GIT_STATE::not_on_client() : commit);
        }
    }

    // Decide per file. Blobs first: only files whose revision content differs
    // need their local content looked at.
    struct DECISION
    {
        QString path;
        QString old_commit;
        QString old_blob;
        QString target;
        QString new_blob;
    };
    QVector<DECISION> differing;
    QMap<QString, QString> have_updates;
    for (auto it = targets.cbegin(); it != targets.cend(); ++it)
    {
        DECISION decision{it.key(), have_commit_of(head, it.key()), QString(), it.value(), QString()};
        if (!decision.old_commit.isEmpty() && !is_marker(decision.old_commit) &&
            !repo.blob(error, decision.old_commit, decision.path, decision.old_blob))
            return false;
        if (!is_marker(decision.target) &&
            !repo.blob(error, decision.target, decision.path, decision.new_blob))
            return false;
        have_updates.insert(decision.path, decision.target);
        if (decision.old_blob != decision.new_blob || options.force)
            differing.append(decision);
    }
    QStringList differing_paths;
    for (const DECISION& decision : qAsConst(differing))
        differing_paths.append(decision.path);
    QStringList work_blobs;
    if (!repo.hash_files(error, differing_paths, work_blobs))
        return false;

    QMap<QString, QString> writes;
    QMap<QString, VCS_GIT_STATE::UNRESOLVED> new_unresolved;
    for (int i = 0; i < differing.size(); ++i)
    {
        const DECISION& decision = differing.at(i);
        const QString& work = work_blobs.at(i);
        const auto opened = workspace_state.opened.constFind(decision.path);
        const QString opened_action =
            opened == workspace_state.opened.constEnd() ? QString() : opened.value().action;
        const bool locally_changed = work != decision.old_blob || opened_action == QLatin1String("add") ||
                                     opened_action == QLatin1String("delete");
        ITEM item;
        item.path = decision.path;
        item.revision = revision_at(decision.target, decision.path);
        if (decision.old_blob.isEmpty())
            item.action = QStringLiteral("added");
        else if (decision.new_blob.isEmpty())
            item.action = QStringLiteral("deleted");
        else if (decision.old_blob == decision.new_blob)
            item.action = QStringLiteral("refreshed");
        else
            item.action = QStringLiteral("updated");

        if (options.have_only)
        {
            items.append(item);
            continue;
        }
        if (locally_changed)
        {
            // Both sides arrived at the same content: nothing to resolve.
            if (work == decision.new_blob && opened_action != QLatin1String("add"))
            {
                items.append(item);
                continue;
            }
            if (decision.old_blob == decision.new_blob)
                continue;
            VCS_GIT_STATE::UNRESOLVED entry;
            const auto previous = workspace_state.unresolved.constFind(decision.path);
            entry.base = previous != workspace_state.unresolved.constEnd()
                             ? previous.value().base
                             : (decision.old_blob.isEmpty() ? QString() : decision.old_commit);
            entry.theirs = decision.new_blob.isEmpty() ? QString() : decision.target;
            new_unresolved.insert(decision.path, entry);
            item.base_commit = entry.base;
            item.their_commit = entry.theirs;
            items.append(item);
            ITEM note;
            note.path = decision.path;
            note.level = 1;
            note.message = absolute(decision.path) +
                           QStringLiteral(" - must resolve #%1 before submitting").arg(item.revision);
            items.append(note);
            continue;
        }
        writes.insert(decision.path, decision.new_blob.isEmpty() ? QString() : decision.target);
        items.append(item);
    }

    // A file argument that matched files but changed none of them is up to date.
    for (const VCS_FILE_ARGUMENT& file_arg : file_args)
    {
        bool reported = false;
        for (const ITEM& item : qAsConst(items))
        {
            reported = reported || (item.message.isEmpty() && file_arg.matches(item.path)) ||
                       item.message.startsWith(file_arg.text() + QLatin1String(" - "));
        }
        if (!reported)
            items.append(ITEM{file_arg.relative_pattern(), QString(), QString(), 0, 1,
                              file_arg.text() + QStringLiteral(" - file(s) up-to-date.")});
    }
    if (options.preview)
        return true;

    const QString new_head = moves_head ? latest : head;
    if (moves_head)
    {
        // Files the sync did not cover keep the revision they had.
        QStringList changed;
        if (!repo.changed_between(error, head, latest, changed))
            return false;
        for (const QString& path : qAsConst(changed))
        {
            if (!targets.contains(path) && !workspace_state.have.contains(path))
                workspace_state.have.insert(path, head.isEmpty() ? VCS_GIT_STATE::not_on_client() : head);
        }
        if (!repo.move_head(error, latest))
            return false;
    }
    if (!write_content(error, writes))
    {
        // The state is saved all the same so that it matches what was written.
        QString ignored;
        save(ignored);
        return false;
    }
    for (auto it = have_updates.cbegin(); it != have_updates.cend(); ++it)
    {
        if (it.value() == new_head)
            workspace_state.have.remove(it.key());
        else
            workspace_state.have.insert(it.key(), it.value());
    }
    for (auto it = workspace_state.have.begin(); it != workspace_state.have.end();)
    {
        if (it.value() == new_head)
            it = workspace_state.have.erase(it);
        else
            ++it;
    }
    for (auto it = new_unresolved.cbegin(); it != new_unresolved.cend(); ++it)
        workspace_state.unresolved.insert(it.key(), it.value());
    return save(error);
}

bool VCS_GIT_WORKSPACE::resolve(QString& error, const QVector<VCS_FILE_ARGUMENT>& file_args, VCS_RESOLVE how,
                                bool preview, QVector<ITEM>& items)
{
    STATE_SCOPE scope(*this);
    if (!scope.begin(error))
        return false;

    QStringList paths;
    for (auto it = workspace_state.unresolved.cbegin(); it != workspace_state.unresolved.cend(); ++it)
    {
        if (file_args.isEmpty() || VCS_FILE_ARGUMENT::any_matches(file_args, it.key()))
            paths.append(it.key());
    }
    if (paths.isEmpty())
    {
        items.append(ITEM{QString(), QString(), QString(), 0, 1, QStringLiteral("No file(s) to resolve.")});
        return true;
    }

    QMap<QString, QString> theirs_writes;
    QMap<QString, QByteArray> merged_writes;
    QStringList done;
    for (const QString& path : qAsConst(paths))
    {
        const VCS_GIT_STATE::UNRESOLVED entry = workspace_state.unresolved.value(path);
        ITEM item;
        item.path = path;
        item.base_commit = entry.base;
        item.their_commit = entry.theirs;
        item.revision = revision_at(entry.theirs, path);
        if (preview)
        {
            items.append(item);
            continue;
        }
        switch (how)
        {
        case VCS_RESOLVE::ACCEPT_THEIRS:
            item.action = QStringLiteral("copy from");
            theirs_writes.insert(path, entry.theirs);
            done.append(path);
            break;
        case VCS_RESOLVE::ACCEPT_YOURS:
            item.action = QStringLiteral("ignored");
            done.append(path);
            break;
        case VCS_RESOLVE::MERGE:
        case VCS_RESOLVE::MERGE_FORCED:
        {
            const QString local = absolute(path);
            if (entry.base.isEmpty() || entry.theirs.isEmpty() || !QFileInfo(local).isFile())
            {
                item.level = how == VCS_RESOLVE::MERGE ? 1 : 2;
                item.message =
                    local + QStringLiteral(" - cannot merge a file that was added or deleted on one side; "
                                           "accept yours or theirs");
                break;
            }
            QTemporaryDir temporary;
            QByteArray base_content;
            QByteArray their_content;
            if (!temporary.isValid() || !repo.read(error, entry.base, path, base_content) ||
                !repo.read(error, entry.theirs, path, their_content))
            {
                if (error.isEmpty())
                    error = QStringLiteral("Cannot create a temporary folder for merging");
                return false;
            }
            const QString base_file = temporary.filePath(QStringLiteral("base"));
            const QString their_file = temporary.filePath(QStringLiteral("theirs"));
            QFile base_out(base_file);
            QFile their_out(their_file);
            if (!base_out.open(QIODevice::WriteOnly) || base_out.write(base_content) != base_content.size() ||
                !their_out.open(QIODevice::WriteOnly) ||
                their_out.write(their_content) != their_content.size())
            {
                error = QStringLiteral("Cannot write temporary files for merging '%1'").arg(local);
                return false;
            }
            base_out.close();
            their_out.close();
            const VCS_PROCESS_RESULT result =
                repo.git({QStringLiteral("merge-file"), QStringLiteral("-p"), QStringLiteral("-L"),
                          QStringLiteral("yours"), QStringLiteral("-L"), QStringLiteral("base"),
                          QStringLiteral("-L"), QStringLiteral("theirs"), local, base_file, their_file});
            if (!result.started || result.exit_code < 0)
            {
                error = result.failure_text(QStringLiteral("git merge-file"));
                return false;
            }
            const int conflicts = result.exit_code;
            if (conflicts > 0 && how == VCS_RESOLVE::MERGE)
            {
                item.level = 1;
                item.message =
                    local + QStringLiteral(" - resolve skipped: %1 conflicting change(s)").arg(conflicts);
                break;
            }
            item.action =
                conflicts > 0 ? QStringLiteral("merge with conflicts") : QStringLiteral("merge from");
            merged_writes.insert(path, result.standard_output);
            done.append(path);
            break;
        }
        }
        items.append(item);
    }
    if (preview)
        return true;

    const QStringList replaced = theirs_writes.keys() + merged_writes.keys();
    if (!safety_copy(error, replaced))
        return false;
    if (!write_content(error, theirs_writes))
        return false;
    for (auto it = merged_writes.cbegin(); it != merged_writes.cend(); ++it)
    {
        QFile file(absolute(it.key()));
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
            file.write(it.value()) != it.value().size())
        {
            error =
                QStringLiteral("Cannot write the merged '%1': %2").arg(file.fileName(), file.errorString());
            return false;
        }
    }
    for (const QString& path : qAsConst(done))
        workspace_state.unresolved.remove(path);
    return save(error);
}

bool VCS_GIT_WORKSPACE::open(QString& error, const QVector<VCS_FILE_ARGUMENT>& file_args, VCS_ACTION action,
                             int change, bool keep_local_file, QVector<ITEM>& items)
{
    STATE_SCOPE scope(*this);
    if (!scope.begin(error))
        return false;

    if (change != 0 && !workspace_state.pending.contains(change))
    {
        error = QStringLiteral("Change %1 unknown.").arg(change);
        return false;
    }
    const QString action_name =
        VCS_DEPOT::action_name(action == VCS_ACTION::NONE ? VCS_ACTION::EDIT : action);
    QStringList removals;
    bool changed_state = false;
    for (const VCS_FILE_ARGUMENT& file_arg : file_args)
    {
        const QString folder = file_arg.search_folder();
        QHash<QString, QPair<QString, QString>> have;
        if (!have_files(error, folder, have))
            return false;
        QStringList paths;
        if (action == VCS_ACTION::ADD)
        {
            if (file_arg.has_wildcards())
            {
                items.append(ITEM{QString(), QString(), QString(), 0, 2,
                                  file_arg.text() +
                                      QStringLiteral(" - wildcards are not allowed when adding files.")});
                continue;
            }
            paths.append(file_arg.relative_pattern());
        }
        else
        {
            for (auto it = have.cbegin(); it != have.cend(); ++it)
            {
                if (file_arg.matches(it.key()))
                    paths.append(it.key());
            }
            if (paths.isEmpty())
            {
                items.append(ITEM{QString(), QString(), QString(), 0, file_arg.has_wildcards() ? 1 : 2,
                                  file_arg.text() + QStringLiteral(" - file(s) not on client.")});
                continue;
            }
        }
        paths.sort();
        for (const QString& path : qAsConst(paths))
        {
            const QString local = absolute(path);
            const auto opened = workspace_state.opened.constFind(path);
            if (opened != workspace_state.opened.constEnd())
            {
                if (opened.value().action == action_name && opened.value().change != change)
                {
                    workspace_state.opened[path].change = change;
                    changed_state = true;
                    items.append(ITEM{path, QStringLiteral("reopened"), QString(), 0, 0, QString()});
                    continue;
                }
                if (opened.value().action == action_name)
                    items.append(ITEM{path, QString(), QString(), 0, 1,
                                      local + QStringLiteral(" - currently opened for ") + action_name});
                else
                    items.append(ITEM{path, QString(), QString(), 0, 2,
                                      local + QStringLiteral(" - can't %1 (already opened for %2)")
                                                  .arg(action_name, opened.value().action)});
                continue;
            }
            if (action == VCS_ACTION::ADD)
            {
                if (!QFileInfo(local).isFile())
                {
                    items.append(ITEM{path, QString(), QString(), 0, 2,
                                      local + QStringLiteral(" - file(s) not found.")});
                    continue;
                }
                if (have.contains(path))
                {
                    items.append(ITEM{path, QString(), QString(), 0, 1,
                                      local + QStringLiteral(" - can't add existing file")});
                    continue;
                }
            }
            workspace_state.opened.insert(path, VCS_GIT_STATE::OPENED{action_name, change});
            changed_state = true;
            ITEM item{path, action_name, QString(), 0, 0, QString()};
            item.revision = action == VCS_ACTION::ADD ? 1 : revision_at(have.value(path).first, path);
            items.append(item);
            if (action == VCS_ACTION::DELETE && !keep_local_file)
                removals.append(path);
        }
    }
    if (!removals.isEmpty())
    {
        // A file opened for delete may hold edits nobody submitted.
        if (!safety_copy(error, removals))
            return false;
        for (const QString& path : qAsConst(removals))
            QFile::remove(absolute(path));
    }
    return changed_state ? save(error) : true;
}

bool VCS_GIT_WORKSPACE::revert(QString& error, const QVector<VCS_FILE_ARGUMENT>& file_args,
                               const REVERT_OPTIONS& options, QVector<ITEM>& items)
{
    STATE_SCOPE scope(*this);
    if (!scope.begin(error))
        return false;

    QMap<QString, FILE_STATE> local;
    if (!local_state(error, file_args, local))
        return false;

    QMap<QString, QString> restores;
    QStringList wipes;
    QStringList reverted;
    for (auto it = local.cbegin(); it != local.cend(); ++it)
    {
        const FILE_STATE& state = it.value();
        const bool explicitly_opened = !state.opened_action.isEmpty();
        const bool new_file = state.have_blob.isEmpty();
        if (!explicitly_opened && !state.unresolved)
        {
            // Git files are always writable: a changed file counts as opened
            // for edit or delete. A new file counts only when asked.
            if (new_file && !options.include_unopened)
                continue;
            if (state.change == VCS_ACTION::NONE)
                continue;
        }
        if (options.change >= 0 && (!explicitly_opened || state.opened_change != options.change))
            continue;
        if (options.only_unchanged && state.change != VCS_ACTION::NONE)
            continue;

        ITEM item;
        item.path = state.path;
        item.old_action = explicitly_opened ? state.opened_action : VCS_DEPOT::action_name(state.change);
        item.revision = revision_at(state.have_commit, state.path);
        if (new_file)
        {
            item.action = QStringLiteral("abandoned");
            if (options.wipe_added && !options.keep_content && !state.work_blob.isEmpty())
                wipes.append(state.path);
        }
        else
        {
            item.action = QStringLiteral("reverted");
            if (!options.keep_content && state.change != VCS_ACTION::NONE)
                restores.insert(state.path, state.have_commit);
        }
        reverted.append(state.path);
        items.append(item);
    }
    if (reverted.isEmpty())
    {
        for (const VCS_FILE_ARGUMENT& file_arg : file_args)
            items.append(ITEM{QString(), QString(), QString(), 0, 1,
                              file_arg.text() + QStringLiteral(" - file(s) not opened on this client.")});
        return true;
    }
    if (options.preview)
        return true;

    if (!safety_copy(error, restores.keys() + wipes))
        return false;
    if (!write_content(error, restores))
        return false;
    for (const QString& path : qAsConst(wipes))
    {
        QFile file(absolute(path));
        if (file.exists() && !file.remove())
        {
            error = QStringLiteral("Cannot remove '%1': %2").arg(file.fileName(), file.errorString());
            return false;
        }
    }
    for (const QString& path : qAsConst(reverted))
    {
        workspace_state.opened.remove(path);
        workspace_state.unresolved.remove(path);
    }
    return save(error);
}
