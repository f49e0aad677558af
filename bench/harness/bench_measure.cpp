#include "bench_measure.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QThread>

#include <malloc.h>

#include <algorithm>
#include <limits>

namespace BENCH_MEASURE
{
double best_of(int repeats, const std::function<void()>& step, const std::function<void()>& prepare)
{
    double best = std::numeric_limits<double>::max();
    for (int i = 0; i < std::max(1, repeats); ++i)
    {
        if (prepare)
            prepare();
        QElapsedTimer timer;
        timer.start();
        step();
        best = std::min(best, double(timer.nsecsElapsed()) / 1e6);
    }
    return best;
}

double best_of_command(int repeats, const QString& program, const QStringList& arguments)
{
    double best = std::numeric_limits<double>::max();
    for (int i = 0; i < std::max(1, repeats); ++i)
    {
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        QElapsedTimer timer;
        timer.start();
        process.start(program, arguments);
        if (!process.waitForStarted(-1) || !process.waitForFinished(-1) ||
            process.exitStatus() != QProcess::NormalExit)
            return -1;
        best = std::min(best, double(timer.nsecsElapsed()) / 1e6);
    }
    return best;
}

double heap_bytes()
{
    const struct mallinfo2 info = mallinfo2();
    return double(info.uordblks + info.hblkhd);
}

double resident_bytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() * 1024.0;
    return -1;
}

void trim_heap()
{
    malloc_trim(0);
}

QString cpu_model()
{
    QFile info(QStringLiteral("/proc/cpuinfo"));
    if (info.open(QIODevice::ReadOnly))
        for (const QByteArray& line : info.readAll().split('\n'))
            if (line.startsWith("model name"))
                return QString::fromUtf8(line.mid(line.indexOf(':') + 1).trimmed());
    return QStringLiteral("unknown");
}

int core_count()
{
    return QThread::idealThreadCount();
}

QString load_average()
{
    QFile load(QStringLiteral("/proc/loadavg"));
    if (!load.open(QIODevice::ReadOnly))
        return QStringLiteral("unknown");
    const QList<QByteArray> parts = load.readAll().split(' ');
    return QString::fromLatin1(parts.mid(0, 3).join(' '));
}
} // namespace BENCH_MEASURE
