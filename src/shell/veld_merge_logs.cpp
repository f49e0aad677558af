#include "veld_merge_logs.h"

#include "orbin_paths.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace VELD_MERGE_LOGS
{
QString folder()
{
    return ORBIN_PATHS::join(QDir::homePath(), QStringLiteral("\\merge_log"));
}

void remove(const QString& folder)
{
    QDir logs(folder);
    if (!logs.exists())
        return;
    const QStringList entries =
        logs.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
    for (const QString& entry : entries)
    {
        QDir merge(logs.filePath(entry));
        const QStringList files = merge.entryList(QDir::Files | QDir::Hidden | QDir::System);
        for (const QString& file : files)
        {
            const QString path = merge.filePath(file);
            QFile::setPermissions(path, QFile::permissions(path) | QFileDevice::WriteOwner |
                                            QFileDevice::WriteUser);
            QFile::remove(path);
        }
        logs.rmdir(entry);
    }
    QDir().rmdir(folder);
}
} // namespace VELD_MERGE_LOGS
