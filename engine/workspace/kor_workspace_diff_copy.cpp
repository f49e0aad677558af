// Copies of a database as it was at a changelist, for the diff.

#include "kor_workspace_files.h"
#include "kor_xml_query_interface.h"
#include "vcs_depot.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace
{
const QLatin1String complete_marker(".orbin_copy_complete");
const int days_kept = 14;

QString copies_folder()
{
    QString base = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    if (base.isEmpty())
        base = QDir::homePath() + QStringLiteral("/.cache");
    return base + QStringLiteral("/orbin/diff");
}

// Copies nobody has made or used for a while go; a change's content never
// changes, so a copy is only ever a cache.
void remove_old_copies(const QString& keep)
{
    const QDateTime limit = QDateTime::currentDateTime().addDays(-days_kept);
    QDir folder(copies_folder());
    for (const QFileInfo& entry : folder.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot))
    {
        const QFileInfo marker(entry.absoluteFilePath() + QLatin1Char('/') + complete_marker);
        const QDateTime used = marker.exists() ? marker.lastModified() : entry.lastModified();
        if (entry.absoluteFilePath() != keep && used < limit)
            QDir(entry.absoluteFilePath()).removeRecursively();
    }
}
} // namespace

QString KOR_XML_QUERY_INTERFACE::create_db_copy_for_diff(const QString& path, const QString& changelist)
{
    bool numeric = false;
    const int change = changelist.trimmed().toInt(&numeric);
    if (!numeric || change <= 0)
    {
        KOR_WORKSPACE_FILES::report(*this, QStringLiteral("'%1' is not a changelist number").arg(changelist),
                                    2);
        return QString();
    }
    QString error;
    std::unique_ptr<VCS_DEPOT> depot = KOR_WORKSPACE_FILES::depot(error, path);
    if (!depot)
    {
        KOR_WORKSPACE_FILES::report(
            *this, QStringLiteral("No copy at change %1 can be made: %2").arg(change).arg(error), 2);
        return QString();
    }
    const QString folder = KOR_WORKSPACE_FILES::clean(path);
    const QByteArray digest =
        QCryptographicHash::hash(folder.toUtf8(), QCryptographicHash::Sha1).toHex().left(10);
    const QString target =
        copies_folder() + QStringLiteral("/%1-%2-%3")
                              .arg(QFileInfo(folder).fileName(), QString::fromLatin1(digest))
                              .arg(change);
    if (QFileInfo::exists(target + QLatin1Char('/') + complete_marker))
    {
        // Rewriting the marker marks the copy as used.
        QFile used(target + QLatin1Char('/') + complete_marker);
        if (used.open(QIODevice::WriteOnly | QIODevice::Truncate))
            used.close();
        return target;
    }
    const QString building = target + QStringLiteral(".partial");
    QDir(building).removeRecursively();
    QDir(target).removeRecursively();
    QFile marker(building + QLatin1Char('/') + complete_marker);
    if (!QDir().mkpath(building) || !depot->export_files(error, folder, change, building) ||
        !marker.open(QIODevice::WriteOnly))
    {
        QDir(building).removeRecursively();
        KOR_WORKSPACE_FILES::report(*this,
                                    QStringLiteral("No copy of '%1' at change %2 could be made: %3")
                                        .arg(path)
                                        .arg(change)
                                        .arg(error.isEmpty() ? marker.errorString() : error),
                                    2);
        return QString();
    }
    marker.close();
    // connect_for_diff reads which database the copy was made from.
    QFile origin(building + QStringLiteral("/Veld_copy_origin.txt"));
    if (!origin.open(QIODevice::WriteOnly) || origin.write((folder + QLatin1Char('\n')).toUtf8()) < 0)
    {
        QDir(building).removeRecursively();
        KOR_WORKSPACE_FILES::report(*this, QStringLiteral("Cannot write into the copy '%1'").arg(building),
                                    2);
        return QString();
    }
    origin.close();
    if (!QDir().rename(building, target))
    {
        QDir(building).removeRecursively();
        KOR_WORKSPACE_FILES::report(*this, QStringLiteral("Cannot finish the copy '%1'").arg(target), 2);
        return QString();
    }
    remove_old_copies(target);
    return target;
}
