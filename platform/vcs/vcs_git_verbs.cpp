#include "vcs_git_verbs.h"

#include "vcs_file_argument.h"
#include "vcs_git_depot.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace
{
// The keys of files that file_arg matches, sorted.
template <typename FILES> QStringList matching(const VCS_FILE_ARGUMENT& file_arg, const FILES& files)
{
    QStringList paths;
    for (auto it = files.cbegin(); it != files.cend(); ++it)
    {
        if (file_arg.matches(it.key()))
            paths.append(it.key());
    }
    paths.sort();
    return paths;
}

QString change_text(int change)
{
    return change == 0 ? QStringLiteral("default") : QString::number(change);
}
} // namespace

VCS_GIT_VERBS::VCS_GIT_VERBS(VCS_GIT_DEPOT& owner) : depot(owner) {}

QStringList VCS_GIT_VERBS::commands()
{
    return {QStringLiteral("add"),    QStringLiteral("change"),   QStringLiteral("changes"),
            QStringLiteral("delete"), QStringLiteral("describe"), QStringLiteral("edit"),
            QStringLiteral("files"),  QStringLiteral("fstat"),    QStringLiteral("have"),
            QStringLiteral("info"),   QStringLiteral("opened"),   QStringLiteral("print"),
            QStringLiteral("reopen"), QStringLiteral("resolve"),  QStringLiteral("revert"),
            QStringLiteral("submit"), QStringLiteral("sync"),     QStringLiteral("where")};
}

VCS_GIT_VERBS::ARGUMENTS VCS_GIT_VERBS::parse(const QStringList& arguments, const QStringList& value_flags)
{
    ARGUMENTS parsed;
    bool options = true;
    for (int i = 0; i < arguments.size(); ++i)
    {
        const QString& argument = arguments.at(i);
        if (options && argument == QLatin1String("--"))
        {
            options = false;
            continue;
        }
        if (options && argument.startsWith(QLatin1Char('-')) && argument.size() > 1)
        {
            bool taken = false;
            for (const QString& flag : value_flags)
            {
                if (argument == flag)
                {
                    if (i + 1 >= arguments.size())
                    {
                        parsed.error = QStringLiteral("Missing value after '%1'.").arg(flag);
                        return parsed;
                    }
                    parsed.values.insert(flag, arguments.at(++i));
                    taken = true;
                    break;
                }
                if (argument.startsWith(flag) && flag.size() == 2)
                {
                    parsed.values.insert(flag, argument.mid(2));
                    taken = true;
                    break;
                }
            }
            if (!taken)
                parsed.flags.insert(argument);
            continue;
        }
        options = false;
        parsed.files.append(argument);
    }
    return parsed;
}

void VCS_GIT_VERBS::record(const VCS_ZTAG_RECORD& entry)
{
    for (const QString& line : entry.to_lines())
        output->append(VCS_OUTPUT_LINE{0, line});
    output->append(VCS_OUTPUT_LINE{0, QString()});
}

void VCS_GIT_VERBS::message(int level, const QString& text)
{
    output->append(VCS_OUTPUT_LINE{level, text});
    if (level >= 2)
        failed = true;
}

bool VCS_GIT_VERBS::fail(const QString& text)
{
    message(2, text);
    return false;
}

void VCS_GIT_VERBS::set_files(VCS_ZTAG_RECORD& entry, const QString& path) const
{
    entry.set(QStringLiteral("depotFile"), depot.depot_path(path));
    entry.set(QStringLiteral("clientFile"), depot.workspace().absolute(path));
}

bool VCS_GIT_VERBS::report(bool ok, const QString& error, const QVector<VCS_GIT_WORKSPACE::ITEM>& items,
                           const std::function<void(const VCS_GIT_WORKSPACE::ITEM&, VCS_ZTAG_RECORD&)>& fill,
                           bool write_records)
{
    if (!ok)
        return fail(error);
    for (const auto& item : items)
    {
        if (!item.message.isEmpty())
        {
            message(item.level, item.message);
            continue;
        }
        VCS_ZTAG_RECORD entry;
        fill(item, entry);
        if (write_records)
            record(entry);
    }
    return true;
}

bool VCS_GIT_VERBS::move_default_files(const QStringList& files, const QString& description, int& number)
{
    QVector<VCS_FILE_ARGUMENT> parsed;
    if (!file_args(files, parsed, QString()))
        return false;
    QString error;
    if (!depot.new_change(error, description, number))
        return fail(error);
    for (auto it = depot.workspace().state().opened.begin(); it != depot.workspace().state().opened.end();
         ++it)
    {
        if (it.value().change == 0 && VCS_FILE_ARGUMENT::any_matches(parsed, it.key()))
            it.value().change = number;
    }
    return true;
}

bool VCS_GIT_VERBS::file_args(const QStringList& texts, QVector<VCS_FILE_ARGUMENT>& out,
                              const QString& fallback)
{
    QString error;
    QStringList list = texts;
    if (list.isEmpty() && !fallback.isEmpty())
        list.append(fallback);
    if (!depot.workspace().parse_file_arguments(error, list, out, depot.root()))
        return fail(error);
    return true;
}

bool VCS_GIT_VERBS::change_number(const QString& text, int& number)
{
    if (text.isEmpty() || text == QLatin1String("default"))
    {
        number = 0;
        return true;
    }
    bool ok = false;
    number = text.toInt(&ok);
    if (!ok || number < 0)
        return fail(QStringLiteral("Invalid changelist number '%1'.").arg(text));
    return true;
}

bool VCS_GIT_VERBS::run(const QString& command, const QStringList& arguments, const QString& input,
                        QVector<VCS_OUTPUT_LINE>& out)
{
    output = &out;
    failed = false;
    const QString verb = command.trimmed().toLower();
    QStringList value_flags;
    if (verb == QLatin1String("edit") || verb == QLatin1String("add") || verb == QLatin1String("delete"))
        value_flags = QStringList{QStringLiteral("-c"), QStringLiteral("-t")};
    else if (verb == QLatin1String("revert") || verb == QLatin1String("opened") ||
             verb == QLatin1String("reopen"))
        value_flags = QStringList{QStringLiteral("-c"), QStringLiteral("-u"), QStringLiteral("-t")};
    else if (verb == QLatin1String("changes"))
        value_flags = QStringList{QStringLiteral("-m"), QStringLiteral("-s"), QStringLiteral("-u"),
                                  QStringLiteral("-c")};
    else if (verb == QLatin1String("submit"))
        value_flags = QStringList{QStringLiteral("-d"), QStringLiteral("-c"), QStringLiteral("-f")};
    else if (verb == QLatin1String("print"))
        value_flags = QStringList{QStringLiteral("-o")};
    else if (verb == QLatin1String("change"))
        value_flags = QStringList{QStringLiteral("-d"), QStringLiteral("-t")};
    else if (verb == QLatin1String("sync"))
        value_flags = QStringList{QStringLiteral("-m")};
    else if (verb == QLatin1String("fstat"))
        value_flags = QStringList{QStringLiteral("-T"), QStringLiteral("-F"), QStringLiteral("-m")};
    const ARGUMENTS parsed = parse(arguments, value_flags);
    if (!parsed.error.isEmpty())
        return fail(parsed.error);

    bool ok = false;
    if (verb == QLatin1String("sync"))
        ok = sync(parsed);
    else if (verb == QLatin1String("edit"))
        ok = open(parsed, VCS_ACTION::EDIT);
    else if (verb == QLatin1String("add"))
        ok = open(parsed, VCS_ACTION::ADD);
    else if (verb == QLatin1String("delete"))
        ok = open(parsed, VCS_ACTION::DELETE);
    else if (verb == QLatin1String("revert"))
        ok = revert(parsed);
    else if (verb == QLatin1String("resolve"))
        ok = resolve(parsed);
    else if (verb == QLatin1String("opened"))
        ok = opened(parsed);
    else if (verb == QLatin1String("have"))
        ok = have(parsed);
    else if (verb == QLatin1String("changes"))
        ok = changes(parsed);
    else if (verb == QLatin1String("describe"))
        ok = describe(parsed);
    else if (verb == QLatin1String("info"))
        ok = info();
    else if (verb == QLatin1String("where"))
        ok = where(parsed);
    else if (verb == QLatin1String("print"))
        ok = print(parsed);
    else if (verb == QLatin1String("files"))
        ok = files(parsed, false);
    else if (verb == QLatin1String("fstat"))
        ok = files(parsed, true);
    else if (verb == QLatin1String("change"))
        ok = change(parsed, input);
    else if (verb == QLatin1String("reopen"))
        ok = reopen(parsed);
    else if (verb == QLatin1String("submit"))
        ok = submit(parsed, input);
    else
        message(2, QStringLiteral("Unknown command '%1': the git depot answers %2.")
                       .arg(command, commands().join(QStringLiteral(", "))));
    return ok && !failed;
}

bool VCS_GIT_VERBS::sync(const ARGUMENTS& arguments)
{
    QVector<VCS_FILE_ARGUMENT> parsed;
    if (!file_args(arguments.files, parsed, QStringLiteral("//...")))
        return false;
    VCS_GIT_WORKSPACE::SYNC_OPTIONS options;
    options.preview = arguments.has(QStringLiteral("-n"));
    options.have_only = arguments.has(QStringLiteral("-k"));
    options.force = arguments.has(QStringLiteral("-f"));
    QVector<VCS_GIT_WORKSPACE::ITEM> items;
    QString error;
    const bool ok = depot.workspace().sync(error, parsed, options, items);
    return report(
        ok, error, items,
        [this](const VCS_GIT_WORKSPACE::ITEM& item, VCS_ZTAG_RECORD& entry) {
            set_files(entry, item.path);
            entry.set(QStringLiteral("rev"), item.revision);
            entry.set(QStringLiteral("action"), item.action);
        },
        !arguments.has(QStringLiteral("-q")));
}

bool VCS_GIT_VERBS::open(const ARGUMENTS& arguments, VCS_ACTION action)
{
    if (arguments.files.isEmpty())
        return fail(QStringLiteral("Missing file arguments."));
    int change = 0;
    if (!change_number(arguments.values.value(QStringLiteral("-c")), change))
        return false;
    QVector<VCS_FILE_ARGUMENT> parsed;
    if (!file_args(arguments.files, parsed, QString()))
        return false;
    QVector<VCS_GIT_WORKSPACE::ITEM> items;
    QString error;
    const bool ok =
        depot.workspace().open(error, parsed, action, change, arguments.has(QStringLiteral("-k")), items);
    return report(ok, error, items,
                  [this, action](const VCS_GIT_WORKSPACE::ITEM& item, VCS_ZTAG_RECORD& entry) {
                      set_files(entry, item.path);
                      entry.set(QStringLiteral("workRev"), item.revision);
                      entry.set(QStringLiteral("action"), item.action == QLatin1String("reopened")
                                                              ? VCS_DEPOT::action_name(action)
                                                              : item.action);
                      entry.set(QStringLiteral("type"), QStringLiteral("text"));
                  });
}

bool VCS_GIT_VERBS::revert(const ARGUMENTS& arguments)
{
    VCS_GIT_WORKSPACE::REVERT_OPTIONS options;
    options.preview = arguments.has(QStringLiteral("-n"));
    options.keep_content = arguments.has(QStringLiteral("-k"));
    options.only_unchanged = arguments.has(QStringLiteral("-a"));
    options.wipe_added = arguments.has(QStringLiteral("-w"));
    if (arguments.values.contains(QStringLiteral("-c")) &&
        !change_number(arguments.values.value(QStringLiteral("-c")), options.change))
        return false;
    if (arguments.files.isEmpty() && !options.only_unchanged && options.change < 0)
        return fail(QStringLiteral("Missing file arguments."));
    QVector<VCS_FILE_ARGUMENT> parsed;
    if (!file_args(arguments.files, parsed, QStringLiteral("//...")))
        return false;
    QVector<VCS_GIT_WORKSPACE::ITEM> items;
    QString error;
    const bool ok = depot.workspace().revert(error, parsed, options, items);
    return report(ok, error, items, [this](const VCS_GIT_WORKSPACE::ITEM& item, VCS_ZTAG_RECORD& entry) {
        set_files(entry, item.path);
        entry.set(QStringLiteral("haveRev"),
                  item.revision == 0 ? QStringLiteral("none") : QString::number(item.revision));
        entry.set(QStringLiteral("oldAction"), item.old_action);
        entry.set(QStringLiteral("action"), item.action);
    });
}

bool VCS_GIT_VERBS::resolve(const ARGUMENTS& arguments)
{
    VCS_RESOLVE how = VCS_RESOLVE::MERGE;
    if (arguments.has(QStringLiteral("-at")))
        how = VCS_RESOLVE::ACCEPT_THEIRS;
    else if (arguments.has(QStringLiteral("-ay")))
        how = VCS_RESOLVE::ACCEPT_YOURS;
    else if (arguments.has(QStringLiteral("-af")))
        how = VCS_RESOLVE::MERGE_FORCED;
    else if (!arguments.has(QStringLiteral("-am")) && !arguments.has(QStringLiteral("-as")) &&
             !arguments.has(QStringLiteral("-n")))
        return fail(QStringLiteral("Interactive resolve is not available: give -am, -at, -ay or -af."));
    QVector<VCS_FILE_ARGUMENT> parsed;
    if (!file_args(arguments.files, parsed, QString()))
        return false;
    const bool preview = arguments.has(QStringLiteral("-n"));
    QVector<VCS_GIT_WORKSPACE::ITEM> items;
    QString error;
    const bool ok = depot.workspace().resolve(error, parsed, how, preview, items);
    return report(ok, error, items,
                  [this, preview](const VCS_GIT_WORKSPACE::ITEM& item, VCS_ZTAG_RECORD& entry) {
                      entry.set(QStringLiteral("clientFile"), depot.workspace().absolute(item.path));
                      entry.set(QStringLiteral("fromFile"), depot.depot_path(item.path));
                      entry.set(QStringLiteral("startFromRev"),
                                depot.workspace().revision_at(item.base_commit, item.path));
                      entry.set(QStringLiteral("endFromRev"), item.revision);
                      entry.set(QStringLiteral("resolveType"), QStringLiteral("content"));
                      if (!preview)
                          entry.set(QStringLiteral("how"), item.action);
                  });
}

bool VCS_GIT_VERBS::opened(const ARGUMENTS& arguments)
{
    int only_change = -1;
    if (arguments.values.contains(QStringLiteral("-c")) &&
        !change_number(arguments.values.value(QStringLiteral("-c")), only_change))
        return false;
    QVector<VCS_FILE_ARGUMENT> parsed;
    if (!file_args(arguments.files, parsed, QStringLiteral("//...")))
        return false;
    VCS_GIT_WORKSPACE& workspace = depot.workspace();
    VCS_GIT_WORKSPACE::STATE_SCOPE scope(workspace);
    QString error;
    QString head;
    if (!scope.begin(error) || !depot.repo().head(error, head))
        return fail(error);
    const auto opened_files = workspace.state().opened;
    bool any = false;
    for (auto it = opened_files.cbegin(); it != opened_files.cend(); ++it)
    {
        if (!VCS_FILE_ARGUMENT::any_matches(parsed, it.key()) ||
            (only_change >= 0 && it.value().change != only_change))
            continue;
        any = true;
        const int have_revision = workspace.revision_at(workspace.have_commit_of(head, it.key()), it.key());
        VCS_ZTAG_RECORD entry;
        entry.set(QStringLiteral("depotFile"), depot.depot_path(it.key()));
        entry.set(QStringLiteral("clientFile"),
                  QStringLiteral("//%1/%2").arg(depot.workspace_name(), it.key()));
        entry.set(QStringLiteral("rev"), it.value().action == QLatin1String("add") ? 1 : have_revision);
        entry.set(QStringLiteral("haveRev"),
                  have_revision == 0 ? QStringLiteral("none") : QString::number(have_revision));
        entry.set(QStringLiteral("action"), it.value().action);
        entry.set(QStringLiteral("change"), change_text(it.value().change));
        entry.set(QStringLiteral("type"), QStringLiteral("text"));
        entry.set(QStringLiteral("user"), depot.user_name());
        entry.set(QStringLiteral("client"), depot.workspace_name());
        if (workspace.state().unresolved.contains(it.key()))
            entry.set(QStringLiteral("unresolved"), QString());
        record(entry);
    }
    if (!any)
        message(1,
                (arguments.files.isEmpty() ? QString()
                                           : arguments.files.join(QLatin1Char(' ')) + QStringLiteral(" - ")) +
                    QStringLiteral("file(s) not opened on this client."));
    return true;
}

bool VCS_GIT_VERBS::have(const ARGUMENTS& arguments)
{
    QVector<VCS_FILE_ARGUMENT> parsed;
    if (!file_args(arguments.files, parsed, QStringLiteral("//...")))
        return false;
    VCS_GIT_WORKSPACE& workspace = depot.workspace();
    VCS_GIT_WORKSPACE::STATE_SCOPE scope(workspace);
    QString error;
    if (!scope.begin(error))
        return fail(error);
    for (const VCS_FILE_ARGUMENT& file_arg : qAsConst(parsed))
    {
        QHash<QString, QPair<QString, QString>> files;
        if (!workspace.have_files(error, file_arg.search_folder(), files))
            return fail(error);
        const QStringList paths = matching(file_arg, files);
        if (paths.isEmpty())
            message(1, file_arg.text() + QStringLiteral(" - file(s) not on client."));
        for (const QString& path : qAsConst(paths))
        {
            VCS_ZTAG_RECORD entry;
            entry.set(QStringLiteral("depotFile"), depot.depot_path(path));
            entry.set(QStringLiteral("clientFile"),
                      QStringLiteral("//%1/%2").arg(depot.workspace_name(), path));
            entry.set(QStringLiteral("path"), workspace.absolute(path));
            entry.set(QStringLiteral("haveRev"), workspace.revision_at(files.value(path).first, path));
            record(entry);
        }
    }
    return true;
}

bool VCS_GIT_VERBS::changes(const ARGUMENTS& arguments)
{
    int maximum = -1;
    if (arguments.values.contains(QStringLiteral("-m")))
    {
        bool ok = false;
        maximum = arguments.values.value(QStringLiteral("-m")).toInt(&ok);
        if (!ok || maximum < 0)
        {
            message(
                2, QStringLiteral("Invalid maximum '%1'.").arg(arguments.values.value(QStringLiteral("-m"))));
            return false;
        }
    }
    const QString status = arguments.values.value(QStringLiteral("-s"));
    const bool long_text = arguments.has(QStringLiteral("-l")) || arguments.has(QStringLiteral("-L"));
    const QString user_filter = arguments.values.value(QStringLiteral("-u"));
    VCS_GIT_REPOSITORY& repo = depot.repo();
    VCS_GIT_WORKSPACE& workspace = depot.workspace();

    QMap<int, VCS_ZTAG_RECORD> found;
    auto text_of = [long_text](const QString& description) {
        if (long_text)
            return description + QLatin1Char('\n');
        QString first = description;
        if (first.size() > 31)
            first = first.left(31);
        return first + QLatin1Char('\n');
    };

    QString error;
    if (status.isEmpty() || status == QLatin1String("pending"))
    {
        VCS_GIT_WORKSPACE::STATE_SCOPE scope(workspace);
        if (!scope.begin(error))
            return fail(error);
        if (user_filter.isEmpty() || user_filter == depot.user_name())
        {
            const auto pending = workspace.state().pending;
            for (auto it = pending.cbegin(); it != pending.cend(); ++it)
            {
                VCS_ZTAG_RECORD entry;
                entry.set(QStringLiteral("change"), it.key());
                entry.set(QStringLiteral("time"), QString::number(QDateTime::currentSecsSinceEpoch()));
                entry.set(QStringLiteral("user"), depot.user_name());
                entry.set(QStringLiteral("client"), depot.workspace_name());
                entry.set(QStringLiteral("status"), QStringLiteral("pending"));
                entry.set(QStringLiteral("changeType"), QStringLiteral("public"));
                entry.set(QStringLiteral("desc"), text_of(it.value().description));
                found.insert(it.key(), entry);
            }
        }
    }
    if (status.isEmpty() || status == QLatin1String("submitted"))
    {
        // The depot is asked, as the client would ask its server.
        if (!repo.fetch(error))
            return fail(error);
        QVector<VCS_FILE_ARGUMENT> parsed;
        if (!file_args(arguments.files, parsed, QStringLiteral("//...")))
            return false;
        QStringList chain;
        if (!repo.chain(error, chain))
            return fail(error);
        QHash<QString, int> number_of;
        for (int i = 0; i < chain.size(); ++i)
            number_of.insert(chain.at(i), i + 1);
        QString head;
        VCS_GIT_WORKSPACE::STATE_SCOPE scope(workspace);
        if (!scope.begin(error) || !repo.head(error, head))
            return fail(error);
        for (const VCS_FILE_ARGUMENT& file_arg : qAsConst(parsed))
        {
            QString tip;
            const QString folder = file_arg.search_folder();
            switch (file_arg.revision_kind())
            {
            case VCS_FILE_ARGUMENT::REVISION_NONE_GIVEN:
            case VCS_FILE_ARGUMENT::REVISION_HEAD:
                tip = chain.isEmpty() ? QString() : chain.last();
                break;
            case VCS_FILE_ARGUMENT::REVISION_CHANGE:
                repo.commit_of_change(error, file_arg.revision_number(), tip);
                break;
            case VCS_FILE_ARGUMENT::REVISION_HAVE:
                tip = file_arg.has_wildcards() ? head : workspace.have_commit_of(head, folder);
                break;
            case VCS_FILE_ARGUMENT::REVISION_FILE:
                if (!file_arg.has_wildcards())
                    repo.commit_of_file_revision(error, folder, file_arg.revision_number(), tip);
                else
                    tip = chain.isEmpty() ? QString() : chain.last();
                break;
            case VCS_FILE_ARGUMENT::REVISION_DELETED:
                break;
            }
            if (tip.isEmpty() || tip == VCS_GIT_STATE::not_on_client())
                continue;
            QStringList log_arguments{QStringLiteral("-c"),
                                      QStringLiteral("core.quotepath=off"),
                                      QStringLiteral("log"),
                                      QStringLiteral("--first-parent"),
                                      QStringLiteral("--no-renames"),
                                      QStringLiteral("--name-only"),
                                      QStringLiteral("--format=%x1e%H%x1f%an%x1f%at%x1f%B%x1f"),
                                      tip};
            if (!folder.isEmpty())
                log_arguments << QStringLiteral("--") << folder;
            QByteArray log;
            if (!repo.git_ok(error, log_arguments, &log))
                return fail(error);
            for (const QByteArray& chunk : log.split('\x1e'))
            {
                const QList<QByteArray> fields = chunk.split('\x1f');
                if (fields.size() < 5)
                    continue;
                const QString commit = QString::fromUtf8(fields.at(0)).trimmed();
                bool touches = !file_arg.has_wildcards() || file_arg.is_whole_workspace();
                for (const QByteArray& name : fields.at(4).split('\n'))
                {
                    if (!touches && !name.trimmed().isEmpty())
                        touches = file_arg.matches(QString::fromUtf8(name.trimmed()));
                }
                if (!touches)
                    continue;
                int number = number_of.value(commit);
                if (number == 0 && !repo.change_number(error, commit, number))
                    continue;
                const QString author = QString::fromUtf8(fields.at(1));
                if (!user_filter.isEmpty() && author != user_filter)
                    continue;
                QString description;
                QString client;
                VCS_GIT_DEPOT::split_message(QString::fromUtf8(fields.at(3)), description, client);
                VCS_ZTAG_RECORD entry;
                entry.set(QStringLiteral("change"), number);
                entry.set(QStringLiteral("time"), QString::fromUtf8(fields.at(2)));
                entry.set(QStringLiteral("user"), author);
                entry.set(QStringLiteral("client"), client.isEmpty() ? QStringLiteral("git") : client);
                entry.set(QStringLiteral("status"), QStringLiteral("submitted"));
                entry.set(QStringLiteral("changeType"), QStringLiteral("public"));
                entry.set(QStringLiteral("path"),
                          QStringLiteral("//") + (folder.isEmpty() ? QStringLiteral("...") : folder));
                entry.set(QStringLiteral("desc"), text_of(description));
                found.insert(number, entry);
            }
        }
    }
    int emitted = 0;
    for (auto it = found.cend(); it != found.cbegin();)
    {
        --it;
        if (maximum >= 0 && emitted >= maximum)
            break;
        record(it.value());
        ++emitted;
    }
    return true;
}

bool VCS_GIT_VERBS::describe(const ARGUMENTS& arguments)
{
    if (arguments.files.isEmpty())
        return fail(QStringLiteral("Missing changelist number."));
    for (const QString& text : arguments.files)
    {
        int number = 0;
        bool ok = false;
        number = text.toInt(&ok);
        if (!ok || number <= 0)
        {
            message(2, QStringLiteral("Invalid changelist number '%1'.").arg(text));
            continue;
        }
        VCS_CHANGE_INFO info;
        QString error;
        if (!depot.describe(error, number, info))
        {
            message(2, error);
            continue;
        }
        for (const QString& line : VCS_DEPOT::describe_lines(info))
            message(0, line);
    }
    return true;
}

bool VCS_GIT_VERBS::info()
{
    VCS_ZTAG_RECORD entry;
    entry.set(QStringLiteral("userName"), depot.user_name());
    entry.set(QStringLiteral("clientName"), depot.workspace_name());
    entry.set(QStringLiteral("clientRoot"), depot.root());
    entry.set(QStringLiteral("clientCwd"), depot.root());
    entry.set(QStringLiteral("clientHost"), QString());
    const VCS_PROCESS_RESULT url =
        depot.repo().git({QStringLiteral("remote"), QStringLiteral("get-url"), depot.repo().remote()});
    entry.set(QStringLiteral("serverAddress"), QString::fromUtf8(url.standard_output).trimmed());
    const VCS_PROCESS_RESULT version = depot.repo().git({QStringLiteral("--version")});
    entry.set(QStringLiteral("serverVersion"), QString::fromUtf8(version.standard_output).trimmed());
    entry.set(QStringLiteral("depotBranch"),
              depot.repo().remote() + QLatin1Char('/') + depot.repo().branch());
    record(entry);
    return true;
}

bool VCS_GIT_VERBS::where(const ARGUMENTS& arguments)
{
    QVector<VCS_FILE_ARGUMENT> parsed;
    if (!file_args(arguments.files, parsed, QStringLiteral("//...")))
        return false;
    for (const VCS_FILE_ARGUMENT& file_arg : qAsConst(parsed))
    {
        VCS_ZTAG_RECORD entry;
        entry.set(QStringLiteral("depotFile"), depot.depot_path(file_arg.relative_pattern()));
        entry.set(QStringLiteral("clientFile"),
                  QStringLiteral("//%1/%2").arg(depot.workspace_name(), file_arg.relative_pattern()));
        entry.set(QStringLiteral("path"), depot.workspace().absolute(file_arg.relative_pattern()));
        record(entry);
    }
    return true;
}

bool VCS_GIT_VERBS::print(const ARGUMENTS& arguments)
{
    QVector<VCS_FILE_ARGUMENT> parsed;
    if (!file_args(arguments.files, parsed, QString()))
        return false;
    if (parsed.isEmpty())
        return fail(QStringLiteral("Missing file arguments."));
    const QString target = arguments.values.value(QStringLiteral("-o"));
    for (const VCS_FILE_ARGUMENT& file_arg : qAsConst(parsed))
    {
        if (file_arg.has_wildcards())
        {
            message(2, file_arg.text() + QStringLiteral(" - print takes single files on the git depot."));
            continue;
        }
        QString revision = file_arg.revision_text();
        if (revision.isEmpty())
            revision = QStringLiteral("#head");
        QByteArray content;
        bool exists = false;
        QString error;
        const QString local = depot.workspace().absolute(file_arg.relative_pattern());
        if (!depot.read_file(error, local, revision, content, exists))
        {
            message(2, error);
            continue;
        }
        if (!exists)
        {
            message(2, file_arg.text() + QStringLiteral(" - no such file(s)."));
            continue;
        }
        if (!target.isEmpty())
        {
            QSaveFile file(target);
            if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit())
                message(2, QStringLiteral("Cannot write '%1'.").arg(target));
            continue;
        }
        if (!arguments.has(QStringLiteral("-q")))
            message(0, QStringLiteral("%1%2").arg(depot.depot_path(file_arg.relative_pattern()), revision));
        for (const QString& line : VCS_PROCESS::split_lines(content))
            message(0, line);
    }
    return true;
}

bool VCS_GIT_VERBS::files(const ARGUMENTS& arguments, bool with_status)
{
    QVector<VCS_FILE_ARGUMENT> parsed;
    if (!file_args(arguments.files, parsed, QString()))
        return false;
    if (parsed.isEmpty())
        return fail(QStringLiteral("Missing file arguments."));
    VCS_GIT_REPOSITORY& repo = depot.repo();
    VCS_GIT_WORKSPACE& workspace = depot.workspace();
    VCS_GIT_WORKSPACE::STATE_SCOPE scope(workspace);
    QString error;
    QString head;
    QString latest;
    if (!scope.begin(error) || !repo.fetch(error) || !repo.head(error, head) || !repo.latest(error, latest))
        return fail(error);
    for (const VCS_FILE_ARGUMENT& file_arg : qAsConst(parsed))
    {
        QString commit = latest;
        if (file_arg.revision_kind() == VCS_FILE_ARGUMENT::REVISION_CHANGE)
            repo.commit_of_change(error, file_arg.revision_number(), commit);
        else if (file_arg.revision_kind() == VCS_FILE_ARGUMENT::REVISION_HAVE)
            commit = head;
        const QString folder = file_arg.search_folder();
        QHash<QString, QString> tree;
        QHash<QString, QPair<QString, QString>> have;
        if (!repo.tree(error, commit, folder, tree) ||
            (with_status && !workspace.have_files(error, folder, have)))
            return fail(error);
        QStringList paths = matching(file_arg, tree);
        if (with_status)
        {
            for (auto it = have.cbegin(); it != have.cend(); ++it)
            {
                if (file_arg.matches(it.key()) && !tree.contains(it.key()))
                    paths.append(it.key());
            }
            for (auto it = workspace.state().opened.cbegin(); it != workspace.state().opened.cend(); ++it)
            {
                if (file_arg.matches(it.key()) && !paths.contains(it.key()))
                    paths.append(it.key());
            }
        }
        paths.sort();
        if (paths.isEmpty())
            message(1, file_arg.text() + QStringLiteral(" - no such file(s)."));
        for (const QString& path : qAsConst(paths))
        {
            VCS_ZTAG_RECORD entry;
            entry.set(QStringLiteral("depotFile"), depot.depot_path(path));
            QString touching;
            int change = 0;
            const int revision = workspace.revision_at(commit, path);
            if (tree.contains(path) && repo.last_commit_touching(error, commit, path, touching))
                repo.change_number(error, touching, change);
            if (!with_status)
            {
                entry.set(QStringLiteral("rev"), revision);
                entry.set(QStringLiteral("change"), change);
                entry.set(QStringLiteral("action"),
                          revision <= 1 ? QStringLiteral("add") : QStringLiteral("edit"));
                entry.set(QStringLiteral("type"), QStringLiteral("text"));
                record(entry);
                continue;
            }
            entry.set(QStringLiteral("clientFile"), workspace.absolute(path));
            entry.set(QStringLiteral("isMapped"), QString());
            if (tree.contains(path))
            {
                entry.set(QStringLiteral("headAction"),
                          revision <= 1 ? QStringLiteral("add") : QStringLiteral("edit"));
                entry.set(QStringLiteral("headType"), QStringLiteral("text"));
                entry.set(QStringLiteral("headRev"), revision);
                entry.set(QStringLiteral("headChange"), change);
            }
            if (have.contains(path))
                entry.set(QStringLiteral("haveRev"), workspace.revision_at(have.value(path).first, path));
            const auto opened = workspace.state().opened.constFind(path);
            if (opened != workspace.state().opened.constEnd())
            {
                entry.set(QStringLiteral("action"), opened.value().action);
                entry.set(QStringLiteral("change"), change_text(opened.value().change));
                entry.set(QStringLiteral("actionOwner"), depot.user_name());
            }
            if (workspace.state().unresolved.contains(path))
                entry.set(QStringLiteral("unresolved"), QString());
            record(entry);
        }
    }
    return true;
}

bool VCS_GIT_VERBS::parse_form(const QString& input, int& number, QString& description, QStringList& files)
{
    number = 0;
    description.clear();
    files.clear();
    QString field;
    QStringList description_lines;
    bool seen_change = false;
    for (const QString& raw : input.split(QLatin1Char('\n')))
    {
        QString line = raw;
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        if (line.startsWith(QLatin1Char('#')))
            continue;
        if (!line.isEmpty() && !line.at(0).isSpace())
        {
            const int colon = line.indexOf(QLatin1Char(':'));
            if (colon < 0)
                continue;
            field = line.left(colon).trimmed();
            const QString value = line.mid(colon + 1).trimmed();
            if (field == QLatin1String("Change"))
            {
                seen_change = true;
                if (value != QLatin1String("new") && !change_number(value, number))
                    return false;
            }
            else if (field == QLatin1String("Description") && !value.isEmpty())
                description_lines.append(value);
            continue;
        }
        const QString value = line.trimmed();
        if (field == QLatin1String("Description"))
            description_lines.append(value);
        else if (field == QLatin1String("Files") && !value.isEmpty())
            files.append(value.section(QLatin1Char('#'), 0, 0).trimmed());
    }
    while (!description_lines.isEmpty() && description_lines.last().isEmpty())
        description_lines.removeLast();
    description = description_lines.join(QLatin1Char('\n'));
    if (!seen_change)
        return fail(QStringLiteral("Error in change specification: missing field 'Change'."));
    return true;
}

bool VCS_GIT_VERBS::change(const ARGUMENTS& arguments, const QString& input)
{
    VCS_GIT_WORKSPACE& workspace = depot.workspace();
    QString error;
    if (arguments.values.contains(QStringLiteral("-d")))
    {
        int number = 0;
        if (!change_number(arguments.values.value(QStringLiteral("-d")), number))
            return false;
        if (!depot.delete_change(error, number))
            return fail(error);
        message(0, QStringLiteral("Change %1 deleted.").arg(number));
        return true;
    }
    if (arguments.has(QStringLiteral("-o")))
    {
        int number = 0;
        if (!arguments.files.isEmpty() && !change_number(arguments.files.first(), number))
            return false;
        VCS_GIT_WORKSPACE::STATE_SCOPE scope(workspace);
        if (!scope.begin(error))
            return fail(error);
        const VCS_GIT_STATE& state = workspace.state();
        if (number != 0 && !state.pending.contains(number))
            return fail(QStringLiteral("Change %1 unknown.").arg(number));
        message(
            0,
            QStringLiteral("Change:\t%1").arg(number == 0 ? QStringLiteral("new") : QString::number(number)));
        message(0, QString());
        message(0, QStringLiteral("Client:\t%1").arg(depot.workspace_name()));
        message(0, QString());
        message(0, QStringLiteral("User:\t%1").arg(depot.user_name()));
        message(0, QString());
        message(0, QStringLiteral("Status:\t%1")
                       .arg(number == 0 ? QStringLiteral("new") : QStringLiteral("pending")));
        message(0, QString());
        message(0, QStringLiteral("Description:"));
        const QString description = number == 0 ? QStringLiteral("<enter description here>")
                                                : state.pending.value(number).description;
        for (const QString& line : description.split(QLatin1Char('\n')))
            message(0, QLatin1Char('\t') + line);
        message(0, QString());
        message(0, QStringLiteral("Files:"));
        for (auto it = state.opened.cbegin(); it != state.opened.cend(); ++it)
        {
            if (it.value().change == number)
                message(0, QStringLiteral("\t%1\t# %2").arg(depot.depot_path(it.key()), it.value().action));
        }
        return true;
    }
    if (!arguments.has(QStringLiteral("-i")))
        return fail(QStringLiteral("The git depot needs 'change -i', 'change -o' or 'change -d'."));
    int number = 0;
    QString description;
    QStringList files;
    if (!parse_form(input, number, description, files))
        return false;
    if (description.trimmed().isEmpty() || description.contains(QLatin1String("<enter description here>")))
        return fail(QStringLiteral(
            "Error in change specification: change description missing.  You must enter one."));
    VCS_GIT_WORKSPACE::STATE_SCOPE scope(workspace);
    if (!scope.begin(error))
        return fail(error);
    VCS_GIT_STATE& state = workspace.state();
    bool created = false;
    if (number == 0)
    {
        if (!depot.new_change(error, description, number))
            return fail(error);
        created = true;
    }
    else if (!state.pending.contains(number))
        return fail(QStringLiteral("Change %1 unknown.").arg(number));
    else
        state.pending[number].description = description;
    for (const QString& file : qAsConst(files))
    {
        VCS_FILE_ARGUMENT file_arg;
        if (!file_arg.parse(error, file, depot.root(), depot.root()))
            return fail(error);
        if (!state.opened.contains(file_arg.relative_pattern()))
        {
            message(1, file + QStringLiteral(" - file(s) not opened on this client."));
            continue;
        }
        state.opened[file_arg.relative_pattern()].change = number;
    }
    if (!workspace.save(error))
        return fail(error);
    message(0, QStringLiteral("Change %1 %2.")
                   .arg(number)
                   .arg(created ? QStringLiteral("created") : QStringLiteral("updated")));
    return true;
}

bool VCS_GIT_VERBS::reopen(const ARGUMENTS& arguments)
{
    int number = 0;
    if (!arguments.values.contains(QStringLiteral("-c")) ||
        !change_number(arguments.values.value(QStringLiteral("-c")), number))
    {
        if (!failed)
            message(2, QStringLiteral("Usage: reopen -c changelist file ..."));
        return false;
    }
    QVector<VCS_FILE_ARGUMENT> parsed;
    if (!file_args(arguments.files, parsed, QString()))
        return false;
    VCS_GIT_WORKSPACE& workspace = depot.workspace();
    VCS_GIT_WORKSPACE::STATE_SCOPE scope(workspace);
    QString error;
    if (!scope.begin(error))
        return fail(error);
    VCS_GIT_STATE& state = workspace.state();
    if (number != 0 && !state.pending.contains(number))
        return fail(QStringLiteral("Change %1 unknown.").arg(number));
    for (auto it = state.opened.begin(); it != state.opened.end(); ++it)
    {
        if (!VCS_FILE_ARGUMENT::any_matches(parsed, it.key()))
            continue;
        it.value().change = number;
        VCS_ZTAG_RECORD entry;
        entry.set(QStringLiteral("depotFile"), depot.depot_path(it.key()));
        entry.set(QStringLiteral("action"), it.value().action);
        entry.set(QStringLiteral("change"), change_text(number));
        record(entry);
    }
    if (!workspace.save(error))
        return fail(error);
    return true;
}

bool VCS_GIT_VERBS::submit(const ARGUMENTS& arguments, const QString& input)
{
    int number = 0;
    QString description = arguments.values.value(QStringLiteral("-d"));
    QString error;
    VCS_GIT_WORKSPACE& workspace = depot.workspace();
    VCS_GIT_WORKSPACE::STATE_SCOPE scope(workspace);
    if (!scope.begin(error))
        return fail(error);
    if (arguments.has(QStringLiteral("-i")))
    {
        QStringList form_files;
        if (!parse_form(input, number, description, form_files))
            return false;
        // A new form names the default changelist's files to take.
        if (number == 0 && !move_default_files(form_files, description, number))
            return false;
    }
    else if (arguments.values.contains(QStringLiteral("-c")))
    {
        if (!change_number(arguments.values.value(QStringLiteral("-c")), number))
            return false;
    }
    else if (description.isEmpty())
        return fail(QStringLiteral("Change description missing.  You must enter one (submit -d)."));
    // Only the named files of the default changelist go in.
    else if (!arguments.files.isEmpty() && !move_default_files(arguments.files, description, number))
        return false;
    if (!workspace.save(error))
        return fail(error);
    QStringList files;
    QStringList actions;
    for (auto it = workspace.state().opened.cbegin(); it != workspace.state().opened.cend(); ++it)
    {
        if (it.value().change == number)
        {
            files.append(it.key());
            actions.append(it.value().action);
        }
    }
    int submitted = 0;
    if (!depot.submit(error, number, description, submitted))
    {
        message(2, error);
        message(
            2, QStringLiteral("Submit failed -- fix problems above then use 'p4 submit -c %1'.").arg(number));
        return false;
    }
    QString head;
    depot.repo().head(error, head);
    VCS_ZTAG_RECORD opening;
    opening.set(QStringLiteral("change"), change_text(number));
    opening.set(QStringLiteral("openFiles"), int(files.size()));
    record(opening);
    for (int i = 0; i < files.size(); ++i)
    {
        VCS_ZTAG_RECORD entry;
        entry.set(QStringLiteral("depotFile"), depot.depot_path(files.at(i)));
        entry.set(QStringLiteral("rev"), workspace.revision_at(head, files.at(i)));
        entry.set(QStringLiteral("action"), actions.at(i));
        record(entry);
    }
    VCS_ZTAG_RECORD done;
    done.set(QStringLiteral("submittedChange"), submitted);
    record(done);
    if (number != 0 && number != submitted)
        message(0, QStringLiteral("Change %1 renamed change %2 and submitted.").arg(number).arg(submitted));
    else
        message(0, QStringLiteral("Change %1 submitted.").arg(submitted));
    return true;
}
