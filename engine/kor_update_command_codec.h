#pragma once

// The lines of an update commands file ("update_commands.txt"), written by the
// engine for every schema change and read back by UPDATE_COMMAND_ITEMS. The
// format is described in docs/update-commands.md.

#include "kor_metafield.h"

#include <QString>
#include <QStringList>
#include <QUuid>
#include <QVariant>

class KOR_FIELD_SCHEMA;
class KOR_TABLE_SCHEMA;
class UPDATE_COMMAND_ITEM;

// Who made a change, when and why: the common part of every command.
struct KOR_COMMAND_ORIGIN
{
    QString user;
    QString description;
    QString time; // ISO 8601 UTC
};

class KOR_UPDATE_COMMAND_CODEC
{
public:
    static QString header_line();
    static QString add_table(const KOR_TABLE_SCHEMA& schema, const KOR_COMMAND_ORIGIN& origin);
    static QString add_field(const QString& table, const KOR_FIELD_SCHEMA& field,
                             const KOR_COMMAND_ORIGIN& origin);
    static QString change_field(const QString& table, const QString& field_name, const QUuid& field_uuid,
                                KOR_METAFIELD metafield, const QVariant& old_value, const QVariant& new_value,
                                const KOR_COMMAND_ORIGIN& origin);
    static QString remove_field(const QString& table, const QString& field_name, const QUuid& field_uuid,
                                const KOR_COMMAND_ORIGIN& origin);
    static QString reorder_fields(const QString& table, const QStringList& order,
                                  const KOR_COMMAND_ORIGIN& origin);
    static QString remove_table(const QString& table, const KOR_COMMAND_ORIGIN& origin);
    static QString change_table_agf(const QString& table, const QString& old_text, const QString& new_text,
                                    const KOR_COMMAND_ORIGIN& origin);

    // Reads one line; false with a reason for a malformed one. Blank lines
    // and comments ("#") are not commands: `is_command` is then false.
    static bool parse_line(QString& error, const QString& line, int line_number, UPDATE_COMMAND_ITEM& out,
                           bool& is_command);

    // Metafield values as command text and back, typed by the metafield.
    static QString metafield_text(KOR_METAFIELD metafield, const QVariant& value);
    static QVariant metafield_value(KOR_METAFIELD metafield, const QString& text);

    static QString escape(const QString& text);
    static QString unescape(const QString& text, bool* ok = nullptr);
};
