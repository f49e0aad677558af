#pragma once

#include "kor_metafield.h"

#include <QString>
#include <QUuid>
#include <QVariant>

#include <memory>

class KOR_FIELD_SCHEMA;
class KOR_TABLE_SCHEMA;

// One command of an update commands file ("update_commands.txt"): one schema
// change of one table. The format is described in docs/update-commands.md.
class UPDATE_COMMAND_ITEM
{
public:
    enum COMMAND_TYPE
    {
        UCT_ADD_TABLE = 1,      // table_schema(): the whole new table
        UCT_ADD_FIELD = 2,      // field_schema(): the new field
        UCT_CHANGE_FIELD = 3,   // field_name(), field_uuid(), metafield(), old_value(), new_value()
        UCT_REMOVE_FIELD = 4,   // field_name(), field_uuid()
        UCT_REORDER_FIELDS = 5, // new_value(): the field names (QStringList) in their new display order
        UCT_REMOVE_TABLE = 6,   // table_name(); edit_description() holds the reason
        UCT_CHANGE_TABLE = 7    // new_value(): the table's AGF special dependencies
    };

    UPDATE_COMMAND_ITEM();
    virtual ~UPDATE_COMMAND_ITEM();
    UPDATE_COMMAND_ITEM(const UPDATE_COMMAND_ITEM&) = delete;
    UPDATE_COMMAND_ITEM& operator=(const UPDATE_COMMAND_ITEM&) = delete;

    // The command type (COMMAND_TYPE), read directly.
    int command_type = 0;

    virtual QString table_name() const { return m_table_name; }
    const QString& field_name() const { return m_field_name; }
    const QUuid& field_uuid() const { return m_field_uuid; }
    KOR_METAFIELD metafield() const { return m_metafield; }
    const QVariant& old_value() const { return m_old_value; }
    const QVariant& new_value() const { return m_new_value; }
    const QString& edit_user() const { return m_edit_user; }
    const QString& edit_description() const { return m_edit_description; }
    // When the command was written, ISO 8601 UTC as in the file.
    const QString& time() const { return m_time; }
    // The line of the file the command stands on, from 1.
    int line() const { return m_line; }
    // The new field of UCT_ADD_FIELD; null otherwise.
    const KOR_FIELD_SCHEMA* field_schema() const { return m_field_schema.get(); }
    // The schema of UCT_ADD_TABLE; null otherwise.
    const KOR_TABLE_SCHEMA* table_schema() const { return m_table_schema.get(); }

private:
    friend class KOR_UPDATE_COMMAND_CODEC;
    QString m_table_name;
    QString m_field_name;
    QUuid m_field_uuid;
    KOR_METAFIELD m_metafield = KMF_DEFAULT_VALUE;
    QVariant m_old_value;
    QVariant m_new_value;
    QString m_edit_user;
    QString m_edit_description;
    QString m_time;
    int m_line = 0;
    std::unique_ptr<KOR_FIELD_SCHEMA> m_field_schema;
    std::unique_ptr<KOR_TABLE_SCHEMA> m_table_schema;
};
