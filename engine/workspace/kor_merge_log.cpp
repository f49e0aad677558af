#include "kor_merge_log.h"

#include "orbin_paths.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

QString KOR_MERGE_LOG::base_folder()
{
    return ORBIN_PATHS::join(QDir::homePath(), QStringLiteral("\\merge_log"));
}

bool KOR_MERGE_LOG::open(QString& error, const QString& database_path, const QString& caller)
{
    const QString name = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss-zzz")) +
                         QLatin1Char('-') + QFileInfo(database_path).fileName();
    log_folder = base_folder() + QLatin1Char('/') + name;
    for (int suffix = 1; QFileInfo::exists(log_folder); ++suffix)
        log_folder = base_folder() + QLatin1Char('/') + name + QStringLiteral("-%1").arg(suffix);
    if (!QDir().mkpath(log_folder))
    {
        error = QStringLiteral("Cannot make the merge log folder '%1'").arg(log_folder);
        return false;
    }
    log_file.setFileName(log_folder + QStringLiteral("/merge.log"));
    if (!log_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text))
    {
        error = QStringLiteral("Cannot write the merge log '%1': %2")
                    .arg(log_file.fileName(), log_file.errorString());
        return false;
    }
    line(QStringLiteral("Merge of '%1'%2")
             .arg(database_path, caller.isEmpty() ? QString() : QStringLiteral(" for ") + caller));
    return true;
}

void KOR_MERGE_LOG::line(const QString& text)
{
    if (!log_file.isOpen())
        return;
    log_file.write(
        (QDateTime::currentDateTime().toString(Qt::ISODate) + QStringLiteral("  ") + text + QLatin1Char('\n'))
            .toUtf8());
    log_file.flush();
}

bool KOR_MERGE_LOG::keep_copy(QString& error, const QString& database_path, const QString& file)
{
    if (!QFileInfo(file).isFile())
        return true;
    const QString root = QDir(database_path).absolutePath();
    QString relative = QFileInfo(file).absoluteFilePath();
    if (relative.startsWith(root + QLatin1Char('/')))
        relative = relative.mid(root.size() + 1);
    relative.replace(QLatin1Char('/'), QStringLiteral("__"));
    const QString copy = log_folder + QStringLiteral("/yours__") + relative;
    QFile::remove(copy);
    if (!QFile::copy(file, copy))
    {
        error = QStringLiteral("Cannot keep a copy of '%1' in the merge log; nothing was merged").arg(file);
        return false;
    }
    line(QStringLiteral("Kept a copy of %1").arg(file));
    return true;
}
