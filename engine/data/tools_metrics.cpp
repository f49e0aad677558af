#include "tools_metrics.h"

#include <QHash>
#include <QLoggingCategory>
#include <QMutex>

namespace
{
Q_LOGGING_CATEGORY(metrics_log, "orbin.metrics")

QMutex& metrics_mutex()
{
    static QMutex mutex;
    return mutex;
}

QHash<QString, int>& running_tools()
{
    static QHash<QString, int> running;
    return running;
}
} // namespace

namespace TOOLS_METRICS
{
void tool_started(const QString& tool_name)
{
    QMutexLocker lock(&metrics_mutex());
    const int count = ++running_tools()[tool_name];
    qCDebug(metrics_log) << "tool started" << tool_name << "running" << count;
}

void tool_finished(const QString& tool_name)
{
    QMutexLocker lock(&metrics_mutex());
    int& count = running_tools()[tool_name];
    if (count > 0)
        --count;
    qCDebug(metrics_log) << "tool finished" << tool_name << "running" << count;
}

int running_count(const QString& tool_name)
{
    QMutexLocker lock(&metrics_mutex());
    return running_tools().value(tool_name);
}
} // namespace TOOLS_METRICS
