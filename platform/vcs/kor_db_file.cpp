#include "kor_db_file.h"

#include "progress_callback.h"
#include "vcs_depot.h"
#include "vcs_identity.h"

#include <QAtomicInt>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStandardPaths>

namespace
{
QAtomicInt single_mode(0);

const QLatin1String manifest_name("manifest.json");

void report(PROGRESS_CALLBACK* progress, const QString& text, int severity)
{
    if (progress)
        progress->report(text.toUtf8().constData(), severity);
}

bool valid_name(const QString& name)
{
    static const QRegularExpression allowed(QStringLiteral("^[A-Za-z0-9_]{1,255}$"));
    return allowed.match(name).hasMatch();
}

QString database_folder(const QString& path)
{
    return VCS_DEPOT::clean(QFileInfo(path).absoluteFilePath());
}

// The changed files of the database, relative to its folder.
bool changed_files(QString& error, VCS_DEPOT& depot, const QString& folder, QVector<VCS_FILE_STATUS>& changes)
{
    QVector<VCS_FILE_STATUS> all;
    if (!depot.status(error, folder, all))
        return false;
    changes.clear();
    for (const VCS_FILE_STATUS& status : qAsConst(all))
    {
        if (status.change != VCS_ACTION::NONE)
            changes.append(status);
    }
    return true;
}

bool copy_file(QString& error, const QString& from, const QString& to)
{
    if (!QDir().mkpath(QFileInfo(to).absolutePath()))
    {
        error = QStringLiteral("Cannot create the folder of '%1'").arg(to);
        return false;
    }
    QFile::remove(to);
    if (!QFile::copy(from, to))
    {
        error = QStringLiteral("Cannot copy '%1' to '%2'").arg(from, to);
        return false;
    }
    QFile::setPermissions(to, QFile::permissions(to) | QFileDevice::WriteOwner);
    return true;
}

// Writes a shelf of the given changes into target (which must not exist).
bool write_shelf(QString& error, VCS_DEPOT& depot, const QString& folder, const QString& name,
                 const QVector<VCS_FILE_STATUS>& changes, const QString& target)
{
    const QString building = target + QStringLiteral(".partial");
    QDir(building).removeRecursively();
    QJsonArray files;
    for (const VCS_FILE_STATUS& status : changes)
    {
        const QString relative = status.path.mid(folder.size() + 1);
        QJsonObject entry;
        entry.insert(QStringLiteral("path"), relative);
        entry.insert(QStringLiteral("action"), VCS_DEPOT::action_name(status.change));
        int base_change = 0;
        if (status.change != VCS_ACTION::ADD)
        {
            QString ignored;
            depot.have_change(ignored, status.path, base_change);
        }
        entry.insert(QStringLiteral("base_change"), base_change);
        if (status.change != VCS_ACTION::DELETE)
        {
            if (!copy_file(error, status.path, building + QStringLiteral("/files/") + relative))
            {
                QDir(building).removeRecursively();
                return false;
            }
        }
        files.append(entry);
    }
    QJsonObject manifest;
    manifest.insert(QStringLiteral("format"), 1);
    manifest.insert(QStringLiteral("name"), name);
    manifest.insert(QStringLiteral("database"), folder);
    manifest.insert(QStringLiteral("created"), QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
    manifest.insert(QStringLiteral("user"), depot.user_name());
    manifest.insert(QStringLiteral("workspace"), depot.workspace_name());
    manifest.insert(QStringLiteral("backend"), depot.backend_name());
    manifest.insert(QStringLiteral("files"), files);
    QSaveFile out(building + QLatin1Char('/') + manifest_name);
    if (!QDir().mkpath(building) || !out.open(QIODevice::WriteOnly) ||
        out.write(QJsonDocument(manifest).toJson(QJsonDocument::Indented)) < 0 || !out.commit())
    {
        error = QStringLiteral("Cannot write the shelf manifest in '%1'").arg(building);
        QDir(building).removeRecursively();
        return false;
    }
    // The shelf appears whole or not at all.
    if (!QDir().rename(building, target))
    {
        error = QStringLiteral("Cannot finish the shelf '%1'").arg(target);
        QDir(building).removeRecursively();
        return false;
    }
    return true;
}
} // namespace

void KOR_DB_FILE::set_single_db_mode(bool single)
{
    single_mode.storeRelaxed(single ? 1 : 0);
}

bool KOR_DB_FILE::single_db_mode()
{
    return single_mode.loadRelaxed() != 0;
}

QString KOR_DB_FILE::shelf_folder(const QString& path)
{
    const QString folder = database_folder(path);
    const QByteArray digest =
        QCryptographicHash::hash(folder.toUtf8(), QCryptographicHash::Sha1).toHex().left(12);
    QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (base.isEmpty())
        base = QDir::homePath() + QStringLiteral("/.local/share");
    return base + QStringLiteral("/orbin/shelves/") + QFileInfo(folder).fileName() + QLatin1Char('-') +
           QString::fromLatin1(digest);
}

QStringList KOR_DB_FILE::shelved_dbs(const QString& path)
{
    QStringList names;
    const QDir folder(shelf_folder(path));
    for (const QString& entry : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
    {
        if (valid_name(entry) && QFileInfo::exists(folder.filePath(entry) + QLatin1Char('/') + manifest_name))
            names.append(entry);
    }
    return names;
}

bool KOR_DB_FILE::local_db_exists_with_changes(const QString& path)
{
    if (single_db_mode())
        return false;
    QString error;
    std::unique_ptr<VCS_DEPOT> depot = VCS_DEPOT::open(error, path);
    if (!depot)
        return false;
    QVector<VCS_FILE_STATUS> changes;
    return changed_files(error, *depot, database_folder(path), changes) && !changes.isEmpty();
}

bool KOR_DB_FILE::shelve_db(const QString& path, const QString& name, PROGRESS_CALLBACK* progress,
                            bool delete_local)
{
    if (!valid_name(name))
    {
        report(progress,
               QStringLiteral("'%1' is not a shelf name: use letters, digits and '_' only").arg(name), 2);
        return false;
    }
    if (single_db_mode())
    {
        report(progress,
               QStringLiteral("Shelving needs the database under version control; this single offline "
                              "database has no depot to compare with"),
               2);
        return false;
    }
    QString error;
    std::unique_ptr<VCS_DEPOT> depot = VCS_DEPOT::open(error, path);
    if (!depot)
    {
        report(progress, QStringLiteral("Cannot shelve: %1").arg(error), 2);
        return false;
    }
    const QString folder = database_folder(path);
    const QString target = shelf_folder(path) + QLatin1Char('/') + name;
    if (QFileInfo::exists(target))
    {
        // Replacing would throw the earlier shelf away.
        report(progress,
               QStringLiteral("A shelf named '%1' exists already; delete it first or choose another name")
                   .arg(name),
               2);
        return false;
    }
    QVector<VCS_FILE_STATUS> changes;
    if (!changed_files(error, *depot, folder, changes))
    {
        report(progress, QStringLiteral("Cannot shelve: %1").arg(error), 2);
        return false;
    }
    if (changes.isEmpty())
    {
        report(progress, QStringLiteral("No local changes exist to shelve"), 1);
        return false;
    }
    if (!QDir().mkpath(shelf_folder(path)) || !write_shelf(error, *depot, folder, name, changes, target))
    {
        report(progress, QStringLiteral("Cannot shelve: %1").arg(error), 2);
        return false;
    }
    report(progress, QStringLiteral("Shelved %1 changed file(s) as '%2'").arg(changes.size()).arg(name), 0);
    if (delete_local)
    {
        QStringList files;
        for (const VCS_FILE_STATUS& status : qAsConst(changes))
            files.append(status.path);
        if (!depot->revert(error, files, false, true))
        {
            report(progress,
                   QStringLiteral("The shelf was made but the local changes could not be removed: %1")
                       .arg(error),
                   2);
            return false;
        }
        report(progress, QStringLiteral("Local changes removed after shelving"), 0);
    }
    return true;
}

bool KOR_DB_FILE::unshelve_db(const QString& path, const QString& name, PROGRESS_CALLBACK* progress,
                              bool delete_shelf)
{
    if (!valid_name(name))
    {
        report(progress, QStringLiteral("'%1' is not a shelf name").arg(name), 2);
        return false;
    }
    if (single_db_mode())
    {
        report(progress, QStringLiteral("Unshelving needs the database under version control"), 2);
        return false;
    }
    const QString shelf = shelf_folder(path) + QLatin1Char('/') + name;
    QFile manifest_file(shelf + QLatin1Char('/') + manifest_name);
    if (!manifest_file.open(QIODevice::ReadOnly))
    {
        report(progress, QStringLiteral("There is no shelf named '%1'").arg(name), 2);
        return false;
    }
    const QJsonDocument document = QJsonDocument::fromJson(manifest_file.readAll());
    manifest_file.close();
    if (!document.isObject())
    {
        report(progress, QStringLiteral("The manifest of shelf '%1' is damaged").arg(name), 2);
        return false;
    }
    const QJsonArray files = document.object().value(QStringLiteral("files")).toArray();

    QString error;
    std::unique_ptr<VCS_DEPOT> depot = VCS_DEPOT::open(error, path);
    if (!depot)
    {
        report(progress, QStringLiteral("Cannot unshelve: %1").arg(error), 2);
        return false;
    }
    const QString folder = database_folder(path);

    // The local changes make way for the shelf's, but never vanish.
    QVector<VCS_FILE_STATUS> local;
    if (!changed_files(error, *depot, folder, local))
    {
        report(progress, QStringLiteral("Cannot unshelve: %1").arg(error), 2);
        return false;
    }
    if (!local.isEmpty())
    {
        const QString backup = QStringLiteral("before_unshelve_") +
                               QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd_HHmmss_zzz"));
        if (!write_shelf(error, *depot, folder, backup, local,
                         shelf_folder(path) + QLatin1Char('/') + backup))
        {
            report(progress, QStringLiteral("Cannot keep the local changes before unshelving: %1").arg(error),
                   2);
            return false;
        }
        report(progress, QStringLiteral("Local changes kept in the shelf '%1'").arg(backup), 0);
        QStringList paths;
        for (const VCS_FILE_STATUS& status : qAsConst(local))
            paths.append(status.path);
        if (!depot->revert(error, paths, false, true))
        {
            report(progress,
                   QStringLiteral("Cannot unshelve, the local changes could not be removed: %1").arg(error),
                   2);
            return false;
        }
    }

    bool all_ok = true;
    for (const QJsonValue& value : files)
    {
        const QJsonObject entry = value.toObject();
        const QString relative = entry.value(QStringLiteral("path")).toString();
        if (relative.isEmpty() || relative.contains(QLatin1String("..")))
            continue;
        const QString local_file = folder + QLatin1Char('/') + relative;
        const VCS_ACTION action =
            VCS_DEPOT::action_from_name(entry.value(QStringLiteral("action")).toString());
        const int base_change = entry.value(QStringLiteral("base_change")).toInt();
        if (base_change > 0)
        {
            int have = 0;
            QString ignored;
            depot->have_change(ignored, local_file, have);
            if (have != base_change)
            {
                QStringList synced;
                if (!depot->sync(error, {local_file + QStringLiteral("@%1").arg(base_change)}, synced))
                    report(progress,
                           QStringLiteral("'%1' could not be brought back to change %2: %3")
                               .arg(local_file)
                               .arg(base_change)
                               .arg(error),
                           1);
            }
        }
        // The restored files are opened as they were changed, so that a
        // Perforce client (whose files are read-only until opened) takes them.
        if (action == VCS_ACTION::DELETE)
        {
            if (QFileInfo::exists(local_file) && !depot->open(error, {local_file}, VCS_ACTION::DELETE, 0) &&
                !QFile::remove(local_file))
            {
                report(progress, QStringLiteral("Cannot remove '%1'").arg(local_file), 2);
                all_ok = false;
            }
            continue;
        }
        if (action == VCS_ACTION::EDIT && !depot->open(error, {local_file}, VCS_ACTION::EDIT, 0))
            report(progress, QStringLiteral("'%1' could not be opened for edit: %2").arg(local_file, error),
                   1);
        if (!copy_file(error, shelf + QStringLiteral("/files/") + relative, local_file))
        {
            report(progress, error, 2);
            all_ok = false;
            continue;
        }
        if (action == VCS_ACTION::ADD && !depot->open(error, {local_file}, VCS_ACTION::ADD, 0))
            report(progress, QStringLiteral("'%1' could not be opened for add: %2").arg(local_file, error),
                   1);
    }
    if (!all_ok)
        return false;
    report(progress, QStringLiteral("Unshelved '%1'").arg(name), 0);
    if (delete_shelf)
        return delete_shelved_db(path, name, progress);
    return true;
}

bool KOR_DB_FILE::delete_shelved_db(const QString& path, const QString& name, PROGRESS_CALLBACK* progress)
{
    if (!valid_name(name))
    {
        report(progress, QStringLiteral("'%1' is not a shelf name").arg(name), 2);
        return false;
    }
    QDir shelf(shelf_folder(path) + QLatin1Char('/') + name);
    if (!shelf.exists())
    {
        report(progress, QStringLiteral("There is no shelf named '%1'").arg(name), 2);
        return false;
    }
    if (!shelf.removeRecursively())
    {
        report(progress, QStringLiteral("Cannot delete the shelf '%1'").arg(name), 2);
        return false;
    }
    return true;
}
