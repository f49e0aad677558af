#include "veld_connection_history.h"

#include <QtCore/QSettings>

void VELD_CONNECTION_HISTORY::load(QSettings& settings)
{
    m_entries.clear();
    m_next_index = 0;
    const int size = settings.beginReadArray(m_array_name);
    for (int element = 0; element < size; ++element)
    {
        settings.setArrayIndex(element);
        const QString path = settings.value(QStringLiteral("connection_string")).toString();
        const int index = settings.value(QStringLiteral("connection_index")).toInt();
        m_entries.insert(index, path);
        m_next_index = qMax(m_next_index, index + 1);
    }
    settings.endArray();
}

void VELD_CONNECTION_HISTORY::save(QSettings& settings) const
{
    settings.beginWriteArray(m_array_name, m_entries.size());
    int element = 0;
    for (auto entry = m_entries.constBegin(); entry != m_entries.constEnd(); ++entry, ++element)
    {
        settings.setArrayIndex(element);
        settings.setValue(QStringLiteral("connection_string"), entry.value());
        settings.setValue(QStringLiteral("connection_index"), entry.key());
    }
    settings.endArray();
}

void VELD_CONNECTION_HISTORY::add(const QString& path)
{
    for (auto entry = m_entries.begin(); entry != m_entries.end();)
    {
        if (entry.value() == path)
            entry = m_entries.erase(entry);
        else
            ++entry;
    }
    m_entries.insert(m_next_index++, path);
}

QStringList VELD_CONNECTION_HISTORY::paths() const
{
    QStringList newest_first;
    for (const QString& path : m_entries)
        newest_first.prepend(path);
    return newest_first;
}
