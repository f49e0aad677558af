#pragma once

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

class KOR_FIELD_SCHEMA;
class KOR_TABLE_SCHEMA;

// The header and source of one game table as the code generator writes them
// for a new table, so that the sample's source tree has the shapes that the
// later field-change edits search for. Older tables that predate table
// versions have no VERSION and read their fields without the version.
class SAMPLE_GAME_SOURCE
{
public:
    // `implemented` names the tables the game implements (their fields count
    // as dependencies); `localised` maps the table's localised fields to
    // their spreadsheets. `root` is the branch root the files were first
    // generated under, as their banners show it; `created` the banner's date
    // text. `version` below 0 means the table has no version yet.
    SAMPLE_GAME_SOURCE(const KOR_TABLE_SCHEMA& schema, const QSet<QString>& implemented,
                       const QMap<QString, QString>& localised, const QString& root, const QString& created,
                       int version);

    // Names derived from a table name.
    static QString singular(const QString& table);
    static QString record_type(const QString& table);
    static QString table_type(const QString& table);
    static QString file_base(const QString& table);
    static QString header_name(const QString& table) { return file_base(table) + QStringLiteral("Table.h"); }
    static QString source_name(const QString& table)
    {
        return file_base(table) + QStringLiteral("Table.cpp");
    }
    static QString generated_type(int field_type);

    QString header() const;
    QString source() const;
    // The table's line of DATABASE_LIST in CobaltDatabases.h.
    QString element_line() const;
    // The table's command of the data tool in Tables.cpp.
    QString tool_command() const;

private:
    QString banner(const QString& path) const;
    QString key_line() const;
    bool required_form(const KOR_FIELD_SCHEMA* field) const;
    QString foreign_table_type(const KOR_FIELD_SCHEMA* field) const;
    QString foreign_record_type(const KOR_FIELD_SCHEMA* field) const;
    QStringList dependency_tables() const;
    QStringList record_members() const;

    const KOR_TABLE_SCHEMA& m_schema;
    QString m_table;
    QMap<QString, QString> m_localised;
    QString m_root;
    QString m_created;
    int m_version;
    QList<const KOR_FIELD_SCHEMA*> m_dependencies;
};
