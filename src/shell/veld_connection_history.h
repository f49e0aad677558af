#pragma once

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>

class QSettings;

// The recent paths of one database of the connection dialog (the main one
// or a mirror): a running index to a path, with the next free index. Adding
// a path that is there moves it to the top. Kept in the settings as an array
// of "connection_string" and "connection_index".
class VELD_CONNECTION_HISTORY
{
public:
    explicit VELD_CONNECTION_HISTORY(const QString& array_name) : m_array_name(array_name) {}

    const QString& array_name() const { return m_array_name; }
    // Replaces the entries with the array stored in settings.
    void load(QSettings& settings);
    // Writes the entries in index order.
    void save(QSettings& settings) const;
    void add(const QString& path);

    const QMap<int, QString>& entries() const { return m_entries; }
    int next_index() const { return m_next_index; }
    // The paths, newest first.
    QStringList paths() const;

private:
    QString m_array_name;
    QMap<int, QString> m_entries;
    int m_next_index = 0;
};
