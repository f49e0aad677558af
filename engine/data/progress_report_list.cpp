#include "progress_report_list.h"

#include <QStringList>

void PROGRESS_REPORT_LIST::report(const char* text, int severity)
{
    reports.append(qMakePair(QString::fromUtf8(text ? text : ""), severity));
}

QString PROGRESS_REPORT_LIST::texts(int minimum_severity) const
{
    QStringList result;
    for (const auto& entry : reports)
        if (entry.second >= minimum_severity)
            result.append(entry.first);
    return result.join(QLatin1Char('\n'));
}

int PROGRESS_REPORT_LIST::count(int severity) const
{
    int found = 0;
    for (const auto& entry : reports)
        if (entry.second == severity)
            ++found;
    return found;
}
