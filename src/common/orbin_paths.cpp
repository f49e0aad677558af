#include "orbin_paths.h"

#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>

namespace ORBIN_PATHS
{
QString to_native(const QString& windows_path)
{
    QString result = windows_path;
    result.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return result;
}

QString to_windows(const QString& native_path)
{
    QString result = native_path;
    result.replace(QLatin1Char('/'), QLatin1Char('\\'));
    return result;
}

QString join(const QString& base, const QString& windows_path)
{
    QString head = to_native(base);
    QString tail = to_native(windows_path);
    if (head.isEmpty())
        return tail;
    if (tail.isEmpty())
        return head;
    const bool head_slash = head.endsWith(QLatin1Char('/'));
    const bool tail_slash = tail.startsWith(QLatin1Char('/'));
    if (head_slash && tail_slash)
        return head + tail.mid(1);
    if (head_slash || tail_slash)
        return head + tail;
    return head + QLatin1Char('/') + tail;
}

QString executable_name(const QString& windows_name)
{
    static const QString suffix = QStringLiteral(".exe");
    if (windows_name.endsWith(suffix, Qt::CaseInsensitive))
        return windows_name.left(windows_name.size() - suffix.size());
    return windows_name;
}

QString executable(const QString& windows_name, const QString& folder)
{
    const QString name = executable_name(to_native(windows_name));
    if (!folder.isEmpty())
    {
        const QString in_folder = join(folder, name);
        const QFileInfo info(in_folder);
        if (info.isFile() && info.isExecutable())
            return in_folder;
    }
    const QString on_path = QStandardPaths::findExecutable(name);
    if (!on_path.isEmpty())
        return on_path;
    return folder.isEmpty() ? name : join(folder, name);
}
} // namespace ORBIN_PATHS
