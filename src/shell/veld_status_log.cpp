#include "veld_status_log.h"

QString VELD_STATUS_LOG::format_line(const QString& text)
{
    return format_line(text, QTime::currentTime());
}

QString VELD_STATUS_LOG::format_line(const QString& text, const QTime& time)
{
    return time.toString(Qt::TextDate) + QStringLiteral("> ") + text;
}

QStringList VELD_STATUS_LOG::unlock()
{
    m_locked = false;
    QStringList lines;
    lines.swap(m_held_back);
    if (lines.size() > MAX_LINES)
        lines.erase(lines.begin(), lines.end() - MAX_LINES);
    return lines;
}
