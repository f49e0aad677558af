#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

// The tables that the asset build tool patches at run time; changing their
// required fields needs its patching code changed too. The list is read from
// the connected database ("Veld_patched_tables.txt", one name a line) on
// every connect.
class PATCHED_TABLES
{
public:
    static PATCHED_TABLES& instance();
    bool is_patched_table(const QString& table_name) const;
    void set_patched_tables(const QSet<QString>& tables) { m_tables = tables; }
    // Reads the list of a database folder; an absent file means none.
    void load_from_database(const QString& database_path);
    QStringList patched_tables() const;

private:
    PATCHED_TABLES() = default;
    QSet<QString> m_tables;
};
