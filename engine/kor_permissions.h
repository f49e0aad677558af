#pragma once

// Per-table permissions of a database, read from "Veld_permissions.xml":
//
//   <permissions>
//     <table name="units" restricted="true" add="false" edit="true" remove="false">
//       <user name="alice" add="true" remove="true"/>
//     </table>
//   </permissions>
//
// A table's attributes hold for everyone (each defaults to allowed, and
// restricted to false); a <user> element overrides them for that user. Tables
// not listed, and every table when the file is absent, are unrestricted and
// fully editable.

#include <QMap>
#include <QString>

class KOR_PERMISSIONS
{
public:
    // Reads the file of a database folder; an absent file allows everything.
    bool load(QString& error, const QString& database_path, const QString& user_name);
    void clear() { m_tables.clear(); }

    bool table_restricted(const QString& table) const { return m_tables.value(table).restricted; }
    bool can_add(const QString& table) const { return m_tables.value(table).add; }
    bool can_edit(const QString& table) const { return m_tables.value(table).edit; }
    bool can_remove(const QString& table) const { return m_tables.value(table).remove; }

private:
    struct RIGHTS
    {
        bool restricted = false;
        bool add = true;
        bool edit = true;
        bool remove = true;
    };
    QMap<QString, RIGHTS> m_tables;
};
