#include "kor_unique_ids.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QMutex>
#include <QRandomGenerator>
#include <QStandardPaths>

namespace
{
QString state_path()
{
    const QString folder =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/orbin");
    QDir().mkpath(folder);
    return folder + QStringLiteral("/unique_id_state");
}

quint64 read_state(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().trimmed().toULongLong();
}

void write_state(const QString& path, quint64 value)
{
    QFile file(path + QStringLiteral(".tmp"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return;
    file.write(QByteArray::number(value));
    file.close();
    QFile::remove(path);
    QFile::rename(file.fileName(), path);
}
} // namespace

quint64 KOR_UNIQUE_IDS::next()
{
    static QMutex mutex;
    static const quint64 process_bits = QRandomGenerator::system()->bounded(512u);
    static quint64 last = 0;
    static quint64 reserved = 0;
    QMutexLocker locker(&mutex);

    const quint64 now = quint64(QDateTime::currentMSecsSinceEpoch());
    quint64 value = qMax((now << 21) | (process_bits << 12), last + 1);
    if (value > reserved)
    {
        // Reserve about two seconds of values on disk at a time: one write
        // covers many values, and after a restart (or in another process)
        // every new value lies beyond all that could have been handed out.
        const QString path = state_path();
        QLockFile lock(path + QStringLiteral(".lock"));
        lock.setStaleLockTime(10000);
        const bool locked = lock.tryLock(2000);
        value = qMax(value, read_state(path) + 1);
        reserved = value + (quint64(2000) << 21);
        write_state(path, reserved);
        if (locked)
            lock.unlock();
    }
    last = value;
    return value;
}
