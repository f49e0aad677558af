#include "vcs_git_repository.h"

#include "vcs_identity.h"

#include <QDir>
#include <QFileInfo>

namespace
{
QString git_program_name()
{
    const QString configured = qEnvironmentVariable("ORBIN_GIT");
    return configured.isEmpty() ? QStringLiteral("git") : configured;
}

QString trimmed_text(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes).trimmed();
}

QStringList split_nul(const QByteArray& bytes)
{
    QStringList parts;
    for (const QByteArray& part : bytes.split('\0'))
    {
        if (!part.isEmpty())
            parts.append(QString::fromUtf8(part));
    }
    return parts;
}

QByteArray nul_joined(const QStringList& items)
{
    QByteArray bytes;
    for (const QString& item : items)
    {
        bytes += item.toUtf8();
        bytes += '\0';
    }
    return bytes;
}
} // namespace

const char* VCS_GIT_REPOSITORY::empty_tree_id()
{
    return "4b825dc642cb6eb9a060e54bf8d69288fbee4904";
}

QString VCS_GIT_REPOSITORY::program() const
{
    return git_program_name();
}

bool VCS_GIT_REPOSITORY::open(QString& error, const QString& path)
{
    QString start = QDir::cleanPath(path);
    QFileInfo info(start);
    while (!info.exists() && !start.isEmpty() && start != QLatin1String("/"))
    {
        start = QFileInfo(start).absolutePath();
        info = QFileInfo(start);
    }
    if (info.isFile())
        start = info.absolutePath();

    VCS_PROCESS process(git_program_name());
    process.set_working_directory(start);
    const VCS_PROCESS_RESULT result =
        process.run({QStringLiteral("rev-parse"), QStringLiteral("--show-toplevel"),
                     QStringLiteral("--absolute-git-dir")});
    if (!result.started)
    {
        error = result.error;
        return false;
    }
    if (!result.succeeded())
    {
        error = QStringLiteral("'%1' is not inside a git clone: %2")
                    .arg(path, result.failure_text(QStringLiteral("git")));
        return false;
    }
    const QStringList lines = result.output_lines();
    if (lines.size() < 2 || lines.at(0).isEmpty())
    {
        error = QStringLiteral("'%1' is not inside the working tree of a git clone").arg(path);
        return false;
    }
    top = QDir::cleanPath(lines.at(0));
    metadata_dir = QDir::cleanPath(lines.at(1));
    find_depot();
    return true;
}

VCS_PROCESS_RESULT VCS_GIT_REPOSITORY::git(const QStringList& arguments, const QByteArray& input,
                                           const QMap<QString, QString>& environment) const
{
    VCS_PROCESS process(git_program_name());
    process.set_working_directory(top);
    // File names are never patterns here: a table called "a*b" is a file.
    process.set_environment_value(QStringLiteral("GIT_LITERAL_PATHSPECS"), QStringLiteral("1"));
    for (auto it = environment.cbegin(); it != environment.cend(); ++it)
        process.set_environment_value(it.key(), it.value());
    return process.run(arguments, input);
}

bool VCS_GIT_REPOSITORY::git_ok(QString& error, const QStringList& arguments, QByteArray* output,
                                const QByteArray& input, const QMap<QString, QString>& environment) const
{
    const VCS_PROCESS_RESULT result = git(arguments, input, environment);
    if (output)
        *output = result.standard_output;
    if (!result.succeeded())
    {
        error = result.failure_text(QStringLiteral("git ") + arguments.value(0));
        return false;
    }
    return true;
}

QStringList VCS_GIT_REPOSITORY::identity_arguments() const
{
    if (identity_known < 0)
    {
        const VCS_PROCESS_RESULT name = git({QStringLiteral("config"), QStringLiteral("user.name")});
        const VCS_PROCESS_RESULT mail = git({QStringLiteral("config"), QStringLiteral("user.email")});
        identity_known = (name.succeeded() && !trimmed_text(name.standard_output).isEmpty() &&
                          mail.succeeded() && !trimmed_text(mail.standard_output).isEmpty())
                             ? 1
                             : 0;
    }
    if (identity_known == 1)
        return {};
    const QString user = VCS_IDENTITY::user_name();
    return {QStringLiteral("-c"), QStringLiteral("user.name=%1").arg(user), QStringLiteral("-c"),
            QStringLiteral("user.email=%1@%2").arg(user, VCS_IDENTITY::host_name())};
}

bool VCS_GIT_REPOSITORY::find_depot()
{
    remote_name.clear();
    remote_branch.clear();
    depot_problem.clear();

    QString local_branch;
    {
        const VCS_PROCESS_RESULT result = git({QStringLiteral("symbolic-ref"), QStringLiteral("-q"),
                                               QStringLiteral("--short"), QStringLiteral("HEAD")});
        if (result.succeeded())
            local_branch = trimmed_text(result.standard_output);
    }
    if (!local_branch.isEmpty())
    {
        const VCS_PROCESS_RESULT remote =
            git({QStringLiteral("config"), QStringLiteral("branch.%1.remote").arg(local_branch)});
        const VCS_PROCESS_RESULT merge =
            git({QStringLiteral("config"), QStringLiteral("branch.%1.merge").arg(local_branch)});
        if (remote.succeeded() && merge.succeeded())
        {
            remote_name = trimmed_text(remote.standard_output);
            remote_branch = trimmed_text(merge.standard_output);
            if (remote_branch.startsWith(QLatin1String("refs/heads/")))
                remote_branch = remote_branch.mid(11);
        }
    }
    if (remote_name.isEmpty() || remote_name == QLatin1String("."))
    {
        const VCS_PROCESS_RESULT remotes = git({QStringLiteral("remote")});
        const QStringList names = remotes.output_lines();
        if (names.isEmpty())
        {
            remote_name.clear();
            depot_problem =
                QStringLiteral("The git clone '%1' has no depot: no remote is configured").arg(top);
            return false;
        }
        remote_name = names.contains(QStringLiteral("origin")) ? QStringLiteral("origin") : names.first();
        const VCS_PROCESS_RESULT head = git({QStringLiteral("symbolic-ref"), QStringLiteral("-q"),
                                             QStringLiteral("refs/remotes/%1/HEAD").arg(remote_name)});
        const QString prefix = QStringLiteral("refs/remotes/%1/").arg(remote_name);
        const QString target = trimmed_text(head.standard_output);
        if (head.succeeded() && target.startsWith(prefix))
            remote_branch = target.mid(prefix.size());
        else if (!local_branch.isEmpty())
            remote_branch = local_branch;
        else
            remote_branch = QStringLiteral("main");
    }
    return true;
}

bool VCS_GIT_REPOSITORY::has_depot(QString& error) const
{
    if (remote_name.isEmpty())
    {
        error = depot_problem.isEmpty() ? QStringLiteral("The git clone '%1' has no depot").arg(top)
                                        : depot_problem;
        return false;
    }
    return true;
}

QString VCS_GIT_REPOSITORY::tracking_ref() const
{
    return QStringLiteral("refs/remotes/%1/%2").arg(remote_name, remote_branch);
}

bool VCS_GIT_REPOSITORY::fetch(QString& error)
{
    if (!has_depot(error))
        return false;
    // An explicit refspec keeps the tracking ref right whatever the clone's
    // fetch configuration says.
    const QString refspec = QStringLiteral("+refs/heads/%1:%2").arg(remote_branch, tracking_ref());
    const VCS_PROCESS_RESULT result = git({QStringLiteral("fetch"), QStringLiteral("--quiet"),
                                           QStringLiteral("--no-tags"), remote_name, refspec});
    if (!result.succeeded())
    {
        const QString text = result.failure_text(QStringLiteral("git fetch"));
        // A depot without any commit has no branch to fetch yet.
        if (text.contains(QLatin1String("couldn't find remote ref")))
        {
            git({QStringLiteral("update-ref"), QStringLiteral("-d"), tracking_ref()});
            return true;
        }
        error = QStringLiteral("Could not reach the depot '%1': %2").arg(remote_name, text);
        return false;
    }
    return true;
}

bool VCS_GIT_REPOSITORY::head(QString& error, QString& commit) const
{
    const VCS_PROCESS_RESULT result = git({QStringLiteral("rev-parse"), QStringLiteral("-q"),
                                           QStringLiteral("--verify"), QStringLiteral("HEAD^{commit}")});
    if (!result.started)
    {
        error = result.error;
        return false;
    }
    commit = result.succeeded() ? trimmed_text(result.standard_output) : QString();
    return true;
}

bool VCS_GIT_REPOSITORY::latest(QString& error, QString& commit) const
{
    if (!has_depot(error))
        return false;
    const VCS_PROCESS_RESULT result =
        git({QStringLiteral("rev-parse"), QStringLiteral("-q"), QStringLiteral("--verify"),
             tracking_ref() + QStringLiteral("^{commit}")});
    if (!result.started)
    {
        error = result.error;
        return false;
    }
    commit = result.succeeded() ? trimmed_text(result.standard_output) : QString();
    return true;
}

bool VCS_GIT_REPOSITORY::is_ancestor(const QString& ancestor, const QString& descendant) const
{
    if (ancestor.isEmpty())
        return true;
    if (descendant.isEmpty())
        return false;
    return git({QStringLiteral("merge-base"), QStringLiteral("--is-ancestor"), ancestor, descendant})
        .succeeded();
}

bool VCS_GIT_REPOSITORY::tree(QString& error, const QString& commit, const QString& folder,
                              QHash<QString, QString>& blobs)
{
    blobs.clear();
    if (commit.isEmpty())
        return true;
    const QString key = commit + QLatin1Char(':') + folder;
    const auto cached = tree_cache.constFind(key);
    if (cached != tree_cache.constEnd())
    {
        blobs = cached.value();
        return true;
    }
    QStringList arguments{QStringLiteral("ls-tree"), QStringLiteral("-r"), QStringLiteral("-z"),
                          QStringLiteral("--full-tree"), commit};
    if (!folder.isEmpty())
        arguments << QStringLiteral("--") << folder;
    QByteArray output;
    if (!git_ok(error, arguments, &output))
        return false;
    for (const QByteArray& entry : output.split('\0'))
    {
        // "<mode> SP <type> SP <object> TAB <path>"
        const int tab = entry.indexOf('\t');
        if (tab < 0)
            continue;
        const QList<QByteArray> head = entry.left(tab).split(' ');
        if (head.size() < 3 || head.at(1) != "blob")
            continue;
        const QString path = QString::fromUtf8(entry.mid(tab + 1));
        if (!folder.isEmpty() && path != folder && !path.startsWith(folder + QLatin1Char('/')))
            continue;
        blobs.insert(path, QString::fromLatin1(head.at(2)));
    }
    if (tree_cache.size() > 64)
        tree_cache.clear();
    tree_cache.insert(key, blobs);
    return true;
}

bool VCS_GIT_REPOSITORY::blob(QString& error, const QString& commit, const QString& file, QString& id)
{
    id.clear();
    if (commit.isEmpty())
        return true;
    QHash<QString, QString> blobs;
    if (!tree(error, commit, file, blobs))
        return false;
    id = blobs.value(file);
    return true;
}

bool VCS_GIT_REPOSITORY::hash_files(QString& error, const QStringList& files, QStringList& ids) const
{
    ids.clear();
    QStringList present;
    for (const QString& file : files)
    {
        const QFileInfo info(top + QLatin1Char('/') + file);
        if (info.isFile() || info.isSymLink())
            present.append(file);
    }
    QHash<QString, QString> hashed;
    if (!present.isEmpty())
    {
        QByteArray input;
        for (const QString& file : present)
            input += file.toUtf8() + '\n';
        QByteArray output;
        if (!git_ok(error, {QStringLiteral("hash-object"), QStringLiteral("--stdin-paths")}, &output, input))
            return false;
        const QStringList lines = VCS_PROCESS::split_lines(output);
        if (lines.size() != present.size())
        {
            error = QStringLiteral("git hash-object answered %1 ids for %2 files")
                        .arg(lines.size())
                        .arg(present.size());
            return false;
        }
        for (int i = 0; i < present.size(); ++i)
            hashed.insert(present.at(i), lines.at(i).trimmed());
    }
    for (const QString& file : files)
        ids.append(hashed.value(file));
    return true;
}

bool VCS_GIT_REPOSITORY::read(QString& error, const QString& commit, const QString& file,
                              QByteArray& content) const
{
    // --filters gives the bytes as a checkout would write them (line ends, smudge filters).
    return git_ok(error,
                  {QStringLiteral("cat-file"), QStringLiteral("--filters"), commit + QLatin1Char(':') + file},
                  &content);
}

bool VCS_GIT_REPOSITORY::write_files(QString& error, const QString& commit, const QStringList& files) const
{
    if (files.isEmpty())
        return true;
    const QByteArray list = nul_joined(files);
    if (!git_ok(error,
                {QStringLiteral("checkout"), commit, QStringLiteral("--pathspec-from-file=-"),
                 QStringLiteral("--pathspec-file-nul")},
                nullptr, list))
        return false;
    // checkout also staged the files; the index follows HEAD so that plain
    // git commands in the clone show the workspace the way this layer sees it.
    QString head_commit;
    QString ignored;
    head(ignored, head_commit);
    if (head_commit.isEmpty())
        return git_ok(error,
                      {QStringLiteral("rm"), QStringLiteral("-q"), QStringLiteral("--cached"),
                       QStringLiteral("--ignore-unmatch"), QStringLiteral("--pathspec-from-file=-"),
                       QStringLiteral("--pathspec-file-nul")},
                      nullptr, list);
    return git_ok(error,
                  {QStringLiteral("reset"), QStringLiteral("-q"), QStringLiteral("HEAD"),
                   QStringLiteral("--pathspec-from-file=-"), QStringLiteral("--pathspec-file-nul")},
                  nullptr, list);
}

bool VCS_GIT_REPOSITORY::changed_between(QString& error, const QString& from, const QString& to,
                                         QStringList& files) const
{
    files.clear();
    if (from == to)
        return true;
    QByteArray output;
    const QString from_tree = from.isEmpty() ? QString::fromLatin1(empty_tree_id()) : from;
    const QString to_tree = to.isEmpty() ? QString::fromLatin1(empty_tree_id()) : to;
    if (!git_ok(error,
                {QStringLiteral("diff-tree"), QStringLiteral("-r"), QStringLiteral("-z"),
                 QStringLiteral("--no-renames"), QStringLiteral("--name-only"), from_tree, to_tree},
                &output))
        return false;
    files = split_nul(output);
    return true;
}

bool VCS_GIT_REPOSITORY::move_head(QString& error, const QString& commit) const
{
    QString current;
    if (!head(error, current))
        return false;
    if (current == commit)
        return true;
    if (!current.isEmpty())
        return git_ok(error, {QStringLiteral("reset"), QStringLiteral("-q"), commit});
    // An unborn branch: point it at the commit and load the index from it.
    if (!git_ok(error, {QStringLiteral("update-ref"), QStringLiteral("HEAD"), commit}))
        return false;
    return git_ok(error, {QStringLiteral("read-tree"), commit});
}

bool VCS_GIT_REPOSITORY::chain(QString& error, QStringList& commits)
{
    QString tip;
    if (!latest(error, tip))
        return false;
    if (tip != chain_tip)
    {
        chain_commits.clear();
        chain_index.clear();
        if (!tip.isEmpty())
        {
            QByteArray output;
            if (!git_ok(error,
                        {QStringLiteral("rev-list"), QStringLiteral("--first-parent"),
                         QStringLiteral("--reverse"), tip},
                        &output))
                return false;
            chain_commits = VCS_PROCESS::split_lines(output);
            for (int i = 0; i < chain_commits.size(); ++i)
                chain_index.insert(chain_commits.at(i), i + 1);
        }
        chain_tip = tip;
    }
    commits = chain_commits;
    return true;
}

bool VCS_GIT_REPOSITORY::change_number(QString& error, const QString& commit, int& number)
{
    number = 0;
    if (commit.isEmpty())
        return true;
    QStringList commits;
    if (!chain(error, commits))
        return false;
    const auto found = chain_index.constFind(commit);
    if (found != chain_index.constEnd())
    {
        number = found.value();
        return true;
    }
    // A commit off the depot's chain (not pushed yet): its count is still
    // above that of everything it descends from.
    QByteArray output;
    if (!git_ok(
            error,
            {QStringLiteral("rev-list"), QStringLiteral("--first-parent"), QStringLiteral("--count"), commit},
            &output))
        return false;
    number = trimmed_text(output).toInt();
    return true;
}

bool VCS_GIT_REPOSITORY::commit_of_change(QString& error, int number, QString& commit)
{
    commit.clear();
    QStringList commits;
    if (!chain(error, commits))
        return false;
    if (number <= 0)
        return true;
    // A number beyond the newest change means the newest, as with any depot.
    commit = commits.isEmpty() ? QString() : commits.value(std::min(number, int(commits.size())) - 1);
    return true;
}

bool VCS_GIT_REPOSITORY::last_commit_touching(QString& error, const QString& commit, const QString& path,
                                              QString& result) const
{
    result.clear();
    if (commit.isEmpty())
        return true;
    QStringList arguments{QStringLiteral("rev-list"), QStringLiteral("--first-parent"), QStringLiteral("-n"),
                          QStringLiteral("1"), commit};
    if (!path.isEmpty())
        arguments << QStringLiteral("--") << path;
    QByteArray output;
    if (!git_ok(error, arguments, &output))
        return false;
    result = trimmed_text(output);
    return true;
}

bool VCS_GIT_REPOSITORY::file_revision(QString& error, const QString& commit, const QString& file,
                                       int& revision) const
{
    revision = 0;
    if (commit.isEmpty())
        return true;
    QByteArray output;
    if (!git_ok(error,
                {QStringLiteral("rev-list"), QStringLiteral("--first-parent"), QStringLiteral("--count"),
                 commit, QStringLiteral("--"), file},
                &output))
        return false;
    revision = trimmed_text(output).toInt();
    return true;
}

bool VCS_GIT_REPOSITORY::commit_of_file_revision(QString& error, const QString& file, int revision,
                                                 QString& commit)
{
    commit.clear();
    QString tip;
    if (!latest(error, tip))
        return false;
    if (tip.isEmpty() || revision <= 0)
        return true;
    QByteArray output;
    if (!git_ok(error,
                {QStringLiteral("rev-list"), QStringLiteral("--first-parent"), QStringLiteral("--reverse"),
                 tip, QStringLiteral("--"), file},
                &output))
        return false;
    const QStringList commits = VCS_PROCESS::split_lines(output);
    if (commits.isEmpty())
        return true;
    commit = commits.value(std::min(revision, int(commits.size())) - 1);
    return true;
}
