#include "vcs_depot.h"

#include "vcs_file_argument.h"
#include "vcs_git_depot.h"
#include "vcs_p4_depot.h"

#include <QDir>
#include <QFileInfo>

namespace
{
QString existing_folder(const QString& path)
{
    QString folder = VCS_FILE_ARGUMENT::clean_path(
        QDir::isRelativePath(path) ? QDir::currentPath() + QLatin1Char('/') + path : path);
    while (!folder.isEmpty() && !QFileInfo(folder).exists())
    {
        const QString parent = QFileInfo(folder).absolutePath();
        if (parent == folder)
            break;
        folder = parent;
    }
    if (QFileInfo(folder).isFile())
        folder = QFileInfo(folder).absolutePath();
    return folder;
}

QString p4_config_name()
{
    const QString configured = qEnvironmentVariable("P4CONFIG");
    return configured.isEmpty() ? QStringLiteral(".p4config") : configured;
}
} // namespace

std::unique_ptr<VCS_DEPOT> VCS_DEPOT::open(QString& error, const QString& path, const QString& program_name)
{
    const QString start = existing_folder(path.isEmpty() ? QDir::currentPath() : path);
    const QString forced = qEnvironmentVariable("ORBIN_VCS").trimmed().toLower();
    if (forced == QLatin1String("none") || forced == QLatin1String("off"))
    {
        error = QStringLiteral("Version control is switched off (ORBIN_VCS=%1)").arg(forced);
        return nullptr;
    }

    QString kind = forced == QLatin1String("perforce") ? QStringLiteral("p4") : forced;
    QString config_file;
    if (kind.isEmpty())
    {
        const QString config = p4_config_name();
        for (QString folder = start; !folder.isEmpty();)
        {
            if (QFileInfo::exists(folder + QStringLiteral("/.git")))
            {
                kind = QStringLiteral("git");
                break;
            }
            if (QFileInfo(folder + QLatin1Char('/') + config).isFile())
            {
                kind = QStringLiteral("p4");
                config_file = config;
                break;
            }
            const QString parent = QFileInfo(folder).absolutePath();
            if (parent == folder)
                break;
            folder = parent;
        }
        if (kind.isEmpty() && !qEnvironmentVariable("P4CLIENT").isEmpty())
            kind = QStringLiteral("p4");
    }
    if (kind == QLatin1String("git"))
    {
        auto depot = std::make_unique<VCS_GIT_DEPOT>();
        if (!depot->open_at(error, start))
            return nullptr;
        return depot;
    }
    if (kind == QLatin1String("p4"))
    {
        auto depot = std::make_unique<VCS_P4_DEPOT>();
        if (!depot->open_at(error, start, config_file, program_name))
            return nullptr;
        return depot;
    }
    if (!kind.isEmpty())
    {
        error = QStringLiteral("Unknown version control '%1' in ORBIN_VCS (use git or p4)").arg(forced);
        return nullptr;
    }
    error =
        QStringLiteral("'%1' is not in a workspace under version control: no git clone or Perforce client "
                       "was found above it")
            .arg(path.isEmpty() ? start : path);
    return nullptr;
}

QString VCS_DEPOT::clean(const QString& path)
{
    return VCS_FILE_ARGUMENT::clean_path(path);
}

QString VCS_DEPOT::action_name(VCS_ACTION action)
{
    switch (action)
    {
    case VCS_ACTION::EDIT:
        return QStringLiteral("edit");
    case VCS_ACTION::ADD:
        return QStringLiteral("add");
    case VCS_ACTION::DELETE:
        return QStringLiteral("delete");
    case VCS_ACTION::NONE:
        break;
    }
    return QString();
}

VCS_ACTION VCS_DEPOT::action_from_name(const QString& name)
{
    if (name == QLatin1String("edit") || name == QLatin1String("integrate"))
        return VCS_ACTION::EDIT;
    if (name == QLatin1String("add") || name == QLatin1String("branch") || name == QLatin1String("move/add"))
        return VCS_ACTION::ADD;
    if (name == QLatin1String("delete") || name == QLatin1String("move/delete"))
        return VCS_ACTION::DELETE;
    return VCS_ACTION::NONE;
}

bool VCS_DEPOT::any_errors(const QVector<VCS_OUTPUT_LINE>& output)
{
    for (const VCS_OUTPUT_LINE& line : output)
    {
        if (line.level >= 2)
            return true;
    }
    return false;
}

bool VCS_DEPOT::may_release(QString& error, const QString& folder, bool& held)
{
    VCS_LOCK_INFO holder;
    if (!lock_holder(error, folder, holder))
        return false;
    held = holder.held;
    if (held && !is_mine(holder))
    {
        error =
            QStringLiteral("The database is locked by %1; the lock was not released").arg(holder.describe());
        return false;
    }
    return true;
}

QStringList VCS_DEPOT::describe_lines(const VCS_CHANGE_INFO& change)
{
    QStringList lines;
    const QString when = change.time.toLocalTime().toString(QStringLiteral("yyyy/MM/dd HH:mm:ss"));
    lines.append(
        QStringLiteral("Change %1 by %2@%3%4 on %5")
            .arg(change.number)
            .arg(change.user, change.workspace,
                 change.status == QLatin1String("pending") ? QStringLiteral(" *pending*") : QString(), when));
    lines.append(QString());
    for (const QString& text : change.description.split(QLatin1Char('\n')))
        lines.append(QLatin1Char('\t') + text);
    lines.append(QString());
    lines.append(QStringLiteral("Affected files ..."));
    lines.append(QString());
    for (const VCS_CHANGE_FILE& file : change.files)
        lines.append(QStringLiteral("%1#%2 %3").arg(file.depot_path).arg(file.revision).arg(file.action));
    lines.append(QString());
    return lines;
}
