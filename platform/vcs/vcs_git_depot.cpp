#include "vcs_git_depot.h"

#include "vcs_git_verbs.h"
#include "vcs_identity.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace
{
const QLatin1String workspace_trailer("Orbin-Workspace: ");

QString first_error(const QVector<VCS_GIT_WORKSPACE::ITEM>& items)
{
    for (const auto& item : items)
    {
        if (item.level >= 2)
            return item.message;
    }
    return QString();
}
} // namespace

bool VCS_GIT_DEPOT::open_at(QString& error, const QString& path)
{
    return repository.open(error, path);
}

QString VCS_GIT_DEPOT::workspace_name() const
{
    const VCS_PROCESS_RESULT configured =
        repository.git({QStringLiteral("config"), QStringLiteral("orbin.workspace")});
    const QString name = QString::fromUtf8(configured.standard_output).trimmed();
    if (configured.succeeded() && !name.isEmpty())
        return name;
    // Two clones of one user on one machine are two workspaces: the folder
    // tells them apart.
    const QByteArray digest =
        QCryptographicHash::hash(repository.root().toUtf8(), QCryptographicHash::Sha1).toHex().left(6);
    return QStringLiteral("%1_%2_%3-%4")
        .arg(VCS_IDENTITY::user_name(), VCS_IDENTITY::host_name(), QFileInfo(repository.root()).fileName(),
             QString::fromLatin1(digest));
}

QString VCS_GIT_DEPOT::user_name() const
{
    return VCS_IDENTITY::user_name();
}

bool VCS_GIT_DEPOT::run(const QString& command, const QStringList& arguments, const QString& input,
                        QVector<VCS_OUTPUT_LINE>& output)
{
    VCS_GIT_VERBS verbs(*this);
    return verbs.run(command, arguments, input, output);
}

bool VCS_GIT_DEPOT::in_view(QString& error, const QString& path, QString& out) const
{
    if (relative(path, out))
        return true;
    error = QStringLiteral("%1 - file(s) not in client view.").arg(path);
    return false;
}

bool VCS_GIT_DEPOT::relative(const QString& path, QString& out) const
{
    const QString cleaned = VCS_FILE_ARGUMENT::clean_path(
        QDir::isRelativePath(path) ? repository.root() + QLatin1Char('/') + path : path);
    const QString top = repository.root();
    if (cleaned == top)
    {
        out.clear();
        return true;
    }
    if (!cleaned.startsWith(top + QLatin1Char('/')))
        return false;
    out = cleaned.mid(top.size() + 1);
    return true;
}

QString VCS_GIT_DEPOT::local_path(const QString& depot_path) const
{
    if (!depot_path.startsWith(QLatin1String("//")))
        return QString();
    return VCS_FILE_ARGUMENT::clean_path(repository.root() + QLatin1Char('/') + depot_path.mid(2));
}

QString VCS_GIT_DEPOT::folder_argument(const QString& path) const
{
    const QFileInfo info(path);
    if (info.isDir())
        return VCS_FILE_ARGUMENT::clean_path(path) + QStringLiteral("/...");
    return path;
}

bool VCS_GIT_DEPOT::arguments_for(QString& error, const QStringList& texts,
                                  QVector<VCS_FILE_ARGUMENT>& file_args)
{
    return client.parse_file_arguments(error, texts, file_args, repository.root());
}

bool VCS_GIT_DEPOT::status(QString& error, const QString& path, QVector<VCS_FILE_STATUS>& out)
{
    out.clear();
    QVector<VCS_FILE_ARGUMENT> file_args;
    if (!arguments_for(error, {folder_argument(path)}, file_args))
        return false;
    VCS_GIT_WORKSPACE::STATE_SCOPE scope(client);
    if (!scope.begin(error))
        return false;
    QMap<QString, VCS_GIT_WORKSPACE::FILE_STATE> states;
    if (!client.local_state(error, file_args, states))
        return false;
    for (const auto& state : qAsConst(states))
    {
        VCS_FILE_STATUS status;
        status.path = client.absolute(state.path);
        status.change = state.change;
        status.opened = action_from_name(state.opened_action);
        status.opened_change = state.opened_change;
        status.unresolved = state.unresolved;
        out.append(status);
    }
    return true;
}

bool VCS_GIT_DEPOT::read_file(QString& error, const QString& file, const QString& revision,
                              QByteArray& content, bool& exists)
{
    content.clear();
    exists = false;
    QString path;
    if (!in_view(error, file, path))
        return false;
    QString commit;
    static const QRegularExpression commit_id(QStringLiteral("^[0-9a-f]{40}$"));
    if (revision.isEmpty() || revision == QLatin1String("#none"))
        return true;
    if (commit_id.match(revision).hasMatch())
        commit = revision;
    else if (revision == QLatin1String("#have"))
    {
        VCS_GIT_WORKSPACE::STATE_SCOPE scope(client);
        if (!scope.begin(error))
            return false;
        QString head;
        if (!repository.head(error, head))
            return false;
        commit = client.have_commit_of(head, path);
        if (commit == VCS_GIT_STATE::not_on_client())
            return true;
    }
    else if (revision == QLatin1String("#head"))
    {
        if (!repository.latest(error, commit))
            return false;
    }
    else if (revision.startsWith(QLatin1Char('@')) || revision.startsWith(QLatin1Char('#')))
    {
        bool ok = false;
        const int number = revision.mid(1).toInt(&ok);
        if (!ok || number < 0)
        {
            error = QStringLiteral("%1%2 - unknown revision").arg(file, revision);
            return false;
        }
        if (revision.startsWith(QLatin1Char('@')))
        {
            if (!repository.commit_of_change(error, number, commit))
                return false;
        }
        else if (!repository.commit_of_file_revision(error, path, number, commit))
            return false;
    }
    else
    {
        error = QStringLiteral("%1%2 - unknown revision").arg(file, revision);
        return false;
    }
    if (commit.isEmpty())
        return true;
    QString blob;
    if (!repository.blob(error, commit, path, blob))
        return false;
    if (blob.isEmpty())
        return true;
    if (!repository.read(error, commit, path, content))
        return false;
    exists = true;
    return true;
}

bool VCS_GIT_DEPOT::have_change(QString& error, const QString& path, int& change)
{
    change = 0;
    QString folder;
    if (!in_view(error, path, folder))
        return false;
    VCS_GIT_WORKSPACE::STATE_SCOPE scope(client);
    if (!scope.begin(error))
        return false;
    QString head;
    if (!repository.head(error, head))
        return false;
    const VCS_GIT_STATE& state = client.state();
    QString commit;
    const auto own = state.have.constFind(folder);
    if (own != state.have.constEnd())
    {
        // A single file synced to another revision answers for itself.
        if (own.value() != VCS_GIT_STATE::not_on_client() &&
            !repository.last_commit_touching(error, own.value(), folder, commit))
            return false;
        return repository.change_number(error, commit, change);
    }
    if (!repository.last_commit_touching(error, head, folder, commit))
        return false;
    if (!repository.change_number(error, commit, change))
        return false;
    for (auto it = state.have.cbegin(); it != state.have.cend(); ++it)
    {
        if (!folder.isEmpty() && !it.key().startsWith(folder + QLatin1Char('/')))
            continue;
        if (it.value() == VCS_GIT_STATE::not_on_client())
            continue;
        QString touching;
        int number = 0;
        if (!repository.last_commit_touching(error, it.value(), it.key(), touching) ||
            !repository.change_number(error, touching, number))
            return false;
        change = std::max(change, number);
    }
    return true;
}

bool VCS_GIT_DEPOT::head_change(QString& error, const QString& path, int& change)
{
    change = 0;
    QString folder;
    if (!in_view(error, path, folder))
        return false;
    QString latest;
    QString commit;
    if (!repository.fetch(error) || !repository.latest(error, latest) ||
        !repository.last_commit_touching(error, latest, folder, commit))
        return false;
    return repository.change_number(error, commit, change);
}

bool VCS_GIT_DEPOT::file_change(QString& error, const QString& file, int revision, int& change)
{
    change = 0;
    QString path;
    if (!in_view(error, file, path))
        return false;
    QString commit;
    if (!repository.commit_of_file_revision(error, path, revision, commit))
        return false;
    if (commit.isEmpty())
    {
        error = QStringLiteral("%1#%2 - no such file(s).").arg(file).arg(revision);
        return false;
    }
    return repository.change_number(error, commit, change);
}

bool VCS_GIT_DEPOT::incoming(QString& error, const QString& path, QStringList& files)
{
    files.clear();
    QString folder;
    if (!in_view(error, path, folder))
        return false;
    VCS_GIT_WORKSPACE::STATE_SCOPE scope(client);
    if (!scope.begin(error))
        return false;
    QString latest;
    if (!repository.fetch(error) || !repository.latest(error, latest))
        return false;
    QHash<QString, QPair<QString, QString>> have;
    QHash<QString, QString> head;
    if (!client.have_files(error, folder, have) || !repository.tree(error, latest, folder, head))
        return false;
    QSet<QString> differing;
    for (auto it = head.cbegin(); it != head.cend(); ++it)
    {
        if (have.value(it.key()).second != it.value())
            differing.insert(it.key());
    }
    for (auto it = have.cbegin(); it != have.cend(); ++it)
    {
        if (!head.contains(it.key()))
            differing.insert(it.key());
    }
    for (const QString& file : qAsConst(differing))
        files.append(client.absolute(file));
    files.sort();
    return true;
}

bool VCS_GIT_DEPOT::export_files(QString& error, const QString& directory, int change, const QString& target)
{
    QString folder;
    if (!in_view(error, directory, folder))
        return false;
    QString commit;
    if (!repository.fetch(error) || !repository.commit_of_change(error, change, commit))
        return false;
    QStringList chain;
    if (!repository.chain(error, chain))
        return false;
    if (commit.isEmpty() || change > chain.size())
    {
        error = QStringLiteral("Change %1 unknown.").arg(change);
        return false;
    }
    QHash<QString, QString> files;
    if (!repository.tree(error, commit, folder, files))
        return false;
    if (files.isEmpty())
    {
        error = QStringLiteral("%1 - no such file(s) at change %2.").arg(directory).arg(change);
        return false;
    }
    // A private index lets git write the files the way a checkout would,
    // without touching the workspace or its index.
    QTemporaryDir temporary;
    if (!temporary.isValid())
    {
        error = QStringLiteral("Cannot create a temporary folder");
        return false;
    }
    const QMap<QString, QString> environment{
        {QStringLiteral("GIT_INDEX_FILE"), temporary.filePath(QStringLiteral("index"))}};
    const QString tree = folder.isEmpty() ? commit : commit + QLatin1Char(':') + folder;
    if (!repository.git_ok(error, {QStringLiteral("read-tree"), tree}, nullptr, QByteArray(), environment))
        return false;
    return repository.git_ok(error,
                             {QStringLiteral("--work-tree=") + QDir(target).absolutePath(),
                              QStringLiteral("checkout-index"), QStringLiteral("-a"), QStringLiteral("-f")},
                             nullptr, QByteArray(), environment);
}

bool VCS_GIT_DEPOT::sync(QString& error, const QStringList& file_args, QStringList& updated)
{
    updated.clear();
    QVector<VCS_FILE_ARGUMENT> parsed;
    if (!arguments_for(error, file_args, parsed))
        return false;
    QVector<VCS_GIT_WORKSPACE::ITEM> items;
    if (!client.sync(error, parsed, VCS_GIT_WORKSPACE::SYNC_OPTIONS(), items))
        return false;
    error = first_error(items);
    for (const auto& item : qAsConst(items))
    {
        if (item.message.isEmpty())
            updated.append(client.absolute(item.path));
    }
    return error.isEmpty();
}

bool VCS_GIT_DEPOT::unresolved(QString& error, const QString& path, QVector<VCS_UNRESOLVED>& out)
{
    out.clear();
    QString folder;
    if (!in_view(error, path, folder))
        return false;
    VCS_GIT_WORKSPACE::STATE_SCOPE scope(client);
    if (!scope.begin(error))
        return false;
    const VCS_GIT_STATE& state = client.state();
    for (auto it = state.unresolved.cbegin(); it != state.unresolved.cend(); ++it)
    {
        if (!folder.isEmpty() && it.key() != folder && !it.key().startsWith(folder + QLatin1Char('/')))
            continue;
        out.append(VCS_UNRESOLVED{client.absolute(it.key()), it.value().base, it.value().theirs});
    }
    return true;
}

bool VCS_GIT_DEPOT::resolve(QString& error, const QStringList& files, VCS_RESOLVE how)
{
    QVector<VCS_FILE_ARGUMENT> file_args;
    if (!arguments_for(error, files, file_args))
        return false;
    QVector<VCS_GIT_WORKSPACE::ITEM> items;
    if (!client.resolve(error, file_args, how, false, items))
        return false;
    for (const auto& item : qAsConst(items))
    {
        if (item.level >= 1 && !item.message.startsWith(QLatin1String("No file(s) to resolve")))
        {
            error = item.message;
            return false;
        }
    }
    return true;
}

bool VCS_GIT_DEPOT::open(QString& error, const QStringList& files, VCS_ACTION action, int change)
{
    QVector<VCS_FILE_ARGUMENT> file_args;
    if (!arguments_for(error, files, file_args))
        return false;
    QVector<VCS_GIT_WORKSPACE::ITEM> items;
    if (!client.open(error, file_args, action, change, false, items))
        return false;
    error = first_error(items);
    return error.isEmpty();
}

bool VCS_GIT_DEPOT::revert(QString& error, const QStringList& file_args, bool keep_content, bool wipe_added)
{
    QStringList texts;
    for (const QString& file_arg : file_args)
        texts.append(folder_argument(file_arg));
    QVector<VCS_FILE_ARGUMENT> parsed;
    if (!arguments_for(error, texts, parsed))
        return false;
    VCS_GIT_WORKSPACE::REVERT_OPTIONS options;
    options.keep_content = keep_content;
    options.wipe_added = wipe_added;
    options.include_unopened = wipe_added;
    QVector<VCS_GIT_WORKSPACE::ITEM> items;
    if (!client.revert(error, parsed, options, items))
        return false;
    error = first_error(items);
    return error.isEmpty();
}

bool VCS_GIT_DEPOT::new_change(QString& error, const QString& description, int& change)
{
    VCS_GIT_WORKSPACE::STATE_SCOPE scope(client);
    if (!scope.begin(error))
        return false;
    QStringList chain;
    QString ignored;
    // Without a reachable depot the number still only grows.
    if (!repository.chain(ignored, chain))
        chain.clear();
    VCS_GIT_STATE& state = client.state();
    change = std::max(state.last_change, int(chain.size())) + 1;
    state.last_change = change;
    state.pending.insert(change, VCS_GIT_STATE::PENDING{description});
    return client.save(error);
}

bool VCS_GIT_DEPOT::pending_changes(QString& error, QVector<VCS_CHANGE_INFO>& out)
{
    out.clear();
    VCS_GIT_WORKSPACE::STATE_SCOPE scope(client);
    if (!scope.begin(error))
        return false;
    const VCS_GIT_STATE& state = client.state();
    for (auto it = state.pending.cbegin(); it != state.pending.cend(); ++it)
    {
        VCS_CHANGE_INFO info;
        info.number = it.key();
        info.status = QStringLiteral("pending");
        info.user = user_name();
        info.workspace = workspace_name();
        info.description = it.value().description;
        out.append(info);
    }
    return true;
}

bool VCS_GIT_DEPOT::delete_change(QString& error, int change)
{
    VCS_GIT_WORKSPACE::STATE_SCOPE scope(client);
    if (!scope.begin(error))
        return false;
    VCS_GIT_STATE& state = client.state();
    if (!state.pending.contains(change))
    {
        error = QStringLiteral("Change %1 unknown.").arg(change);
        return false;
    }
    for (auto it = state.opened.cbegin(); it != state.opened.cend(); ++it)
    {
        if (it.value().change == change)
        {
            error = QStringLiteral("Change %1 has %2 open file(s) associated with it and can't be deleted.")
                        .arg(change)
                        .arg(std::count_if(
                            state.opened.cbegin(), state.opened.cend(),
                            [change](const VCS_GIT_STATE::OPENED& o) { return o.change == change; }));
            return false;
        }
    }
    state.pending.remove(change);
    return client.save(error);
}

void VCS_GIT_DEPOT::split_message(const QString& message, QString& description, QString& workspace)
{
    workspace.clear();
    QStringList lines = message.split(QLatin1Char('\n'));
    while (!lines.isEmpty() && lines.last().trimmed().isEmpty())
        lines.removeLast();
    if (!lines.isEmpty() && lines.last().startsWith(workspace_trailer))
    {
        workspace = lines.takeLast().mid(workspace_trailer.size()).trimmed();
        while (!lines.isEmpty() && lines.last().trimmed().isEmpty())
            lines.removeLast();
    }
    description = lines.join(QLatin1Char('\n'));
}

bool VCS_GIT_DEPOT::submit(QString& error, int change, const QString& description, int& submitted)
{
    submitted = 0;
    VCS_GIT_WORKSPACE::STATE_SCOPE scope(client);
    if (!scope.begin(error))
        return false;
    VCS_GIT_STATE& state = client.state();
    if (change != 0 && !state.pending.contains(change))
    {
        error = QStringLiteral("Change %1 unknown.").arg(change);
        return false;
    }
    QString text = description.trimmed().isEmpty() ? state.pending.value(change).description : description;
    if (text.trimmed().isEmpty())
    {
        error = QStringLiteral("Change description missing.  You must enter one.");
        return false;
    }
    QStringList files;
    for (auto it = state.opened.cbegin(); it != state.opened.cend(); ++it)
    {
        if (it.value().change == change)
            files.append(it.key());
    }
    if (files.isEmpty())
    {
        error = change == 0 ? QStringLiteral("No files to submit from the default changelist.")
                            : QStringLiteral("No files to submit from change %1.").arg(change);
        return false;
    }
    for (const QString& file : qAsConst(files))
    {
        if (state.unresolved.contains(file))
        {
            error = QStringLiteral("Merges still pending -- use 'resolve' to merge files (%1).")
                        .arg(client.absolute(file));
            return false;
        }
    }

    QString head;
    QString latest;
    if (!repository.fetch(error) || !repository.head(error, head) || !repository.latest(error, latest))
        return false;
    if (head != latest && !repository.is_ancestor(head, latest))
    {
        error = QStringLiteral(
                    "The workspace '%1' has commits that are not in the depot; push or drop them before "
                    "submitting")
                    .arg(repository.root());
        return false;
    }
    QHash<QString, QString> latest_tree;
    if (!repository.tree(error, latest, QString(), latest_tree))
        return false;
    QMap<QString, VCS_GIT_WORKSPACE::FILE_STATE> states;
    if (!client.file_states(error, files, states))
        return false;
    QStringList stale;
    QStringList updates;
    QStringList removals;
    for (const auto& file_state : qAsConst(states))
    {
        if (file_state.have_blob != latest_tree.value(file_state.path))
            stale.append(client.absolute(file_state.path));
        const QString action = state.opened.value(file_state.path).action;
        if (action == QLatin1String("delete"))
            removals.append(file_state.path);
        else if (file_state.work_blob.isEmpty())
        {
            error = QStringLiteral("%1 - file is opened for %2 but is missing from the workspace")
                        .arg(client.absolute(file_state.path), action);
            return false;
        }
        else
            updates.append(file_state.path);
    }
    if (!stale.isEmpty())
    {
        stale.sort();
        error =
            QStringLiteral("Out of date files must be merged before submitting: %1 - the depot has a newer "
                           "revision")
                .arg(stale.join(QStringLiteral(", ")));
        return false;
    }

    // The new commit is the depot's newest with the submitted files on top:
    // a private index built from it takes the workspace content of exactly
    // those files.
    const QString index_file = state.folder() + QStringLiteral("/submit.index");
    QFile::remove(index_file);
    const QMap<QString, QString> environment{{QStringLiteral("GIT_INDEX_FILE"), index_file}};
    auto nul_list = [](const QStringList& list) {
        QByteArray bytes;
        for (const QString& item : list)
            bytes += item.toUtf8() + '\0';
        return bytes;
    };
    bool built =
        latest.isEmpty()
            ? repository.git_ok(error, {QStringLiteral("read-tree"), QStringLiteral("--empty")}, nullptr, {},
                                environment)
            : repository.git_ok(error, {QStringLiteral("read-tree"), latest}, nullptr, {}, environment);
    if (built && !updates.isEmpty())
        built = repository.git_ok(error,
                                  {QStringLiteral("update-index"), QStringLiteral("--add"),
                                   QStringLiteral("-z"), QStringLiteral("--stdin")},
                                  nullptr, nul_list(updates), environment);
    if (built && !removals.isEmpty())
        built = repository.git_ok(error,
                                  {QStringLiteral("update-index"), QStringLiteral("--force-remove"),
                                   QStringLiteral("-z"), QStringLiteral("--stdin")},
                                  nullptr, nul_list(removals), environment);
    QByteArray tree_output;
    if (built)
        built = repository.git_ok(error, {QStringLiteral("write-tree")}, &tree_output, {}, environment);
    QFile::remove(index_file);
    if (!built)
        return false;
    const QString tree = QString::fromUtf8(tree_output).trimmed();
    if (!latest.isEmpty())
    {
        QByteArray latest_tree_id;
        if (!repository.git_ok(error, {QStringLiteral("rev-parse"), latest + QStringLiteral("^{tree}")},
                               &latest_tree_id))
            return false;
        if (QString::fromUtf8(latest_tree_id).trimmed() == tree)
        {
            error = QStringLiteral("No files to submit: the opened files are the same as in the depot.");
            return false;
        }
    }

    const QString message =
        text.trimmed() + QStringLiteral("\n\n") + workspace_trailer + workspace_name() + QLatin1Char('\n');
    QStringList commit_arguments = repository.identity_arguments();
    commit_arguments << QStringLiteral("commit-tree") << tree;
    if (!latest.isEmpty())
        commit_arguments << QStringLiteral("-p") << latest;
    commit_arguments << QStringLiteral("-F") << QStringLiteral("-");
    QByteArray commit_output;
    if (!repository.git_ok(error, commit_arguments, &commit_output, message.toUtf8()))
        return false;
    const QString commit = QString::fromUtf8(commit_output).trimmed();

    // The push is the submit: it only goes through as a fast-forward of the
    // depot's branch, so a submit that lost a race changes nothing anywhere.
    const VCS_PROCESS_RESULT pushed =
        repository.git({QStringLiteral("push"), QStringLiteral("--porcelain"), repository.remote(),
                        commit + QStringLiteral(":refs/heads/") + repository.branch()});
    if (!pushed.succeeded())
    {
        const QString text_out = QString::fromUtf8(pushed.standard_output + pushed.standard_error);
        if (text_out.contains(QLatin1String("[rejected]")) ||
            text_out.contains(QLatin1String("non-fast-forward")) ||
            text_out.contains(QLatin1String("fetch first")))
            error =
                QStringLiteral("The depot changed while submitting; nothing was submitted. Merge with the "
                               "latest revision and submit again.");
        else
            error = QStringLiteral("Submit failed, the depot refused the push: %1")
                        .arg(pushed.failure_text(QStringLiteral("git push")));
        return false;
    }
    repository.git({QStringLiteral("update-ref"), repository.tracking_ref(), commit});

    // Files this submit did not carry keep the revision the workspace had.
    QStringList changed;
    if (!repository.changed_between(error, head, commit, changed))
        return false;
    for (const QString& path : qAsConst(changed))
    {
        if (!files.contains(path) && !state.have.contains(path))
            state.have.insert(path, head.isEmpty() ? VCS_GIT_STATE::not_on_client() : head);
    }
    if (!repository.move_head(error, commit))
        return false;
    for (const QString& path : qAsConst(files))
    {
        state.have.remove(path);
        state.opened.remove(path);
    }
    for (auto it = state.have.begin(); it != state.have.end();)
    {
        if (it.value() == commit)
            it = state.have.erase(it);
        else
            ++it;
    }
    state.pending.remove(change);
    if (!repository.change_number(error, commit, submitted))
        return false;
    return client.save(error);
}

bool VCS_GIT_DEPOT::describe(QString& error, int change, VCS_CHANGE_INFO& out)
{
    out = VCS_CHANGE_INFO();
    out.number = change;
    {
        VCS_GIT_WORKSPACE::STATE_SCOPE scope(client);
        if (!scope.begin(error))
            return false;
        const VCS_GIT_STATE& state = client.state();
        const auto pending = state.pending.constFind(change);
        if (pending != state.pending.constEnd())
        {
            out.status = QStringLiteral("pending");
            out.user = user_name();
            out.workspace = workspace_name();
            out.description = pending.value().description;
            out.time = QDateTime::currentDateTime();
            for (auto it = state.opened.cbegin(); it != state.opened.cend(); ++it)
            {
                if (it.value().change == change)
                    out.files.append(VCS_CHANGE_FILE{depot_path(it.key()), client.absolute(it.key()), 0,
                                                     it.value().action});
            }
            return true;
        }
    }
    QStringList chain;
    if (!repository.chain(error, chain))
        return false;
    // A change this clone has not seen yet may be in the depot.
    if (change > chain.size() && (!repository.fetch(error) || !repository.chain(error, chain)))
        return false;
    if (change <= 0 || change > chain.size())
    {
        error = QStringLiteral("Change %1 unknown.").arg(change);
        return false;
    }
    const QString commit = chain.at(change - 1);
    QByteArray header;
    if (!repository.git_ok(error,
                           {QStringLiteral("show"), QStringLiteral("-s"),
                            QStringLiteral("--format=%an%x00%at%x00%B"), commit},
                           &header))
        return false;
    const QList<QByteArray> parts = header.split('\0');
    out.status = QStringLiteral("submitted");
    out.user = QString::fromUtf8(parts.value(0));
    out.time = QDateTime::fromSecsSinceEpoch(parts.value(1).toLongLong());
    split_message(QString::fromUtf8(parts.value(2)), out.description, out.workspace);
    if (out.workspace.isEmpty())
        out.workspace = QStringLiteral("git");

    const QString parent =
        change > 1 ? chain.at(change - 2) : QString::fromLatin1(VCS_GIT_REPOSITORY::empty_tree_id());
    QByteArray listing;
    if (!repository.git_ok(error,
                           {QStringLiteral("diff-tree"), QStringLiteral("-r"), QStringLiteral("-z"),
                            QStringLiteral("--no-renames"), QStringLiteral("--name-status"), parent, commit},
                           &listing))
        return false;
    const QList<QByteArray> fields = listing.split('\0');
    for (int i = 0; i + 1 < fields.size(); i += 2)
    {
        const QByteArray status = fields.at(i);
        const QString path = QString::fromUtf8(fields.at(i + 1));
        if (status.isEmpty() || path.isEmpty())
            continue;
        VCS_CHANGE_FILE file;
        file.depot_path = depot_path(path);
        file.local_path = client.absolute(path);
        file.action = status.startsWith('A')   ? QStringLiteral("add")
                      : status.startsWith('D') ? QStringLiteral("delete")
                                               : QStringLiteral("edit");
        if (!repository.file_revision(error, commit, path, file.revision))
            return false;
        out.files.append(file);
    }
    return true;
}

QString VCS_GIT_DEPOT::lock_ref(const QString& folder) const
{
    QString name;
    if (!relative(folder, name))
        name = folder;
    QString flat;
    for (const QChar c : name)
        flat += (c.isLetterOrNumber() && c.unicode() < 128) || c == QLatin1Char('-') || c == QLatin1Char('_')
                    ? c
                    : QLatin1Char('_');
    while (flat.startsWith(QLatin1Char('_')))
        flat.remove(0, 1);
    if (flat.isEmpty())
        flat = QStringLiteral("database");
    return QStringLiteral("refs/orbin/locks/") + flat;
}

bool VCS_GIT_DEPOT::lock_holder(QString& error, const QString& folder, VCS_LOCK_INFO& holder)
{
    holder = VCS_LOCK_INFO();
    if (!repository.has_depot(error))
        return false;
    const QString ref = lock_ref(folder);
    QByteArray listing;
    if (!repository.git_ok(error, {QStringLiteral("ls-remote"), repository.remote(), ref}, &listing))
    {
        error = QStringLiteral("Could not reach the depot to read the lock: %1").arg(error);
        return false;
    }
    const QString line = QString::fromUtf8(listing).trimmed();
    if (line.isEmpty())
        return true;
    const QString commit = line.section(QLatin1Char('\t'), 0, 0);
    if (!repository.git({QStringLiteral("cat-file"), QStringLiteral("-e"), commit}).succeeded())
    {
        const QString seen = QStringLiteral("refs/orbin/seen-locks/") + ref.section(QLatin1Char('/'), -1);
        if (!repository.git_ok(error,
                               {QStringLiteral("fetch"), QStringLiteral("-q"), QStringLiteral("--no-tags"),
                                repository.remote(), QStringLiteral("+%1:%2").arg(ref, seen)}))
            return false;
    }
    QByteArray body;
    if (!repository.git_ok(error, {QStringLiteral("cat-file"), QStringLiteral("commit"), commit}, &body))
        return false;
    holder.held = true;
    for (const QString& text : QString::fromUtf8(body).split(QLatin1Char('\n')))
    {
        if (text.startsWith(QLatin1String("user: ")))
            holder.user = text.mid(6).trimmed();
        else if (text.startsWith(QLatin1String("workspace: ")))
            holder.workspace = text.mid(11).trimmed();
        else if (text.startsWith(QLatin1String("host: ")))
            holder.host = text.mid(6).trimmed();
        else if (text.startsWith(QLatin1String("time: ")))
            holder.since = QDateTime::fromString(text.mid(6).trimmed(), Qt::ISODate);
    }
    if (holder.user.isEmpty())
        holder.user = QStringLiteral("someone");
    return true;
}

bool VCS_GIT_DEPOT::lock(QString& error, const QString& folder)
{
    if (!repository.has_depot(error))
        return false;
    const QString ref = lock_ref(folder);
    const QString message = QStringLiteral("orbin lock %1\n\nuser: %2\nworkspace: %3\nhost: %4\ntime: %5\n")
                                .arg(ref, user_name(), workspace_name(), VCS_IDENTITY::host_name(),
                                     QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
    QByteArray tree_output;
    if (!repository.git_ok(error, {QStringLiteral("mktree")}, &tree_output))
        return false;
    QStringList arguments = repository.identity_arguments();
    arguments << QStringLiteral("commit-tree") << QString::fromUtf8(tree_output).trimmed()
              << QStringLiteral("-F") << QStringLiteral("-");
    QByteArray commit_output;
    if (!repository.git_ok(error, arguments, &commit_output, message.toUtf8()))
        return false;
    const QString commit = QString::fromUtf8(commit_output).trimmed();
    // An empty expected value makes the push fail when the ref exists:
    // taking the lock is one atomic step on the depot.
    const VCS_PROCESS_RESULT pushed =
        repository.git({QStringLiteral("push"), QStringLiteral("--porcelain"),
                        QStringLiteral("--force-with-lease=%1:").arg(ref), repository.remote(),
                        QStringLiteral("%1:%2").arg(commit, ref)});
    if (pushed.succeeded())
        return true;
    VCS_LOCK_INFO holder;
    QString holder_error;
    if (!lock_holder(holder_error, folder, holder))
    {
        error = QStringLiteral("Could not take the lock: %1")
                    .arg(pushed.failure_text(QStringLiteral("git push")));
        return false;
    }
    if (is_mine(holder))
        return true;
    if (holder.held)
    {
        error = QStringLiteral("The database is locked by %1").arg(holder.describe());
        return false;
    }
    error =
        QStringLiteral("Could not take the lock: %1").arg(pushed.failure_text(QStringLiteral("git push")));
    return false;
}

bool VCS_GIT_DEPOT::unlock(QString& error, const QString& folder)
{
    bool held = false;
    if (!may_release(error, folder, held))
        return false;
    if (!held)
        return true;
    const QString ref = lock_ref(folder);
    QByteArray listing;
    if (!repository.git_ok(error, {QStringLiteral("ls-remote"), repository.remote(), ref}, &listing))
        return false;
    const QString commit = QString::fromUtf8(listing).trimmed().section(QLatin1Char('\t'), 0, 0);
    if (commit.isEmpty())
        return true;
    const VCS_PROCESS_RESULT pushed =
        repository.git({QStringLiteral("push"), QStringLiteral("--porcelain"),
                        QStringLiteral("--force-with-lease=%1:%2").arg(ref, commit), repository.remote(),
                        QLatin1Char(':') + ref});
    if (!pushed.succeeded())
    {
        error = QStringLiteral("Could not release the lock: %1")
                    .arg(pushed.failure_text(QStringLiteral("git push")));
        return false;
    }
    return true;
}
