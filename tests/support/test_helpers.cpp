#include "test_helpers.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QThread>

namespace ORBIN_TEST
{
QByteArray read_file(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

QString read_text(const QString& path)
{
    return QString::fromUtf8(read_file(path));
}

bool write_file(const QString& path, const QByteArray& contents)
{
    if (!QDir().mkpath(QFileInfo(path).absolutePath()))
        return false;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(contents) == contents.size() && file.flush();
}

bool copy_folder(const QString& from, const QString& to)
{
    if (!QDir().mkpath(to))
        return false;
    const QDir source(from);
    for (const QFileInfo& entry :
         source.entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden))
    {
        const QString target = to + QLatin1Char('/') + entry.fileName();
        if (entry.isDir() ? !copy_folder(entry.filePath(), target) : !QFile::copy(entry.filePath(), target))
            return false;
    }
    return true;
}

bool wait_until(const std::function<bool()>& condition, int timeout_ms)
{
    QDeadlineTimer deadline(timeout_ms);
    while (!condition())
    {
        if (deadline.hasExpired())
            return condition();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QThread::msleep(5);
    }
    return true;
}

QString source_dir()
{
    return qEnvironmentVariable("ORBIN_SOURCE_DIR");
}

QString binary_dir()
{
    return qEnvironmentVariable("ORBIN_BINARY_DIR");
}
} // namespace ORBIN_TEST
