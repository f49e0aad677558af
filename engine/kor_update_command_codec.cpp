#include "kor_update_command_codec.h"

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_table_io.h"
#include "kor_table_schema.h"
#include "update_command_item.h"

namespace
{
QString command(int type, const QString& table, const KOR_COMMAND_ORIGIN& origin, const QStringList& pairs)
{
    QStringList parts;
    parts << QString::number(type) << QStringLiteral("table=") + KOR_UPDATE_COMMAND_CODEC::escape(table)
          << QStringLiteral("time=") + KOR_UPDATE_COMMAND_CODEC::escape(origin.time)
          << QStringLiteral("user=") + KOR_UPDATE_COMMAND_CODEC::escape(origin.user)
          << QStringLiteral("description=") + KOR_UPDATE_COMMAND_CODEC::escape(origin.description);
    for (int i = 0; i + 1 < pairs.size(); i += 2)
        parts << pairs.at(i) + QLatin1Char('=') + KOR_UPDATE_COMMAND_CODEC::escape(pairs.at(i + 1));
    return parts.join(QLatin1Char('\t'));
}

QString schema_text(const KOR_TABLE_SCHEMA& schema)
{
    return QString::fromUtf8(KOR_TABLE_IO::schema_bytes(schema));
}

bool is_bool_metafield(KOR_METAFIELD metafield)
{
    switch (metafield)
    {
    case KMF_REQUIRED:
    case KMF_LOCALISED:
    case KMF_PRIMARY_KEY:
    case KMF_IS_FILE:
    case KMF_ENCYCLOPAEDIA_EXPORT:
    case KMF_AGF_FROM_THIS_FIELD:
    case KMF_AGF_TOWARDS_THIS_FIELD:
    case KMF_AGF_DONE:
    case KMF_STARTPOS_REPROCESS:
    case KMF_CAMPAIGN_MAP_REPROCESS:
        return true;
    default:
        return false;
    }
}
} // namespace

QString KOR_UPDATE_COMMAND_CODEC::header_line()
{
    return QStringLiteral("# ORBIN update commands, format 1");
}

QString KOR_UPDATE_COMMAND_CODEC::escape(const QString& text)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text)
    {
        switch (c.unicode())
        {
        case '\\':
            result += QLatin1String("\\\\");
            break;
        case '\t':
            result += QLatin1String("\\t");
            break;
        case '\n':
            result += QLatin1String("\\n");
            break;
        case '\r':
            result += QLatin1String("\\r");
            break;
        default:
            result += c;
        }
    }
    return result;
}

QString KOR_UPDATE_COMMAND_CODEC::unescape(const QString& text, bool* ok)
{
    QString result;
    result.reserve(text.size());
    bool good = true;
    for (int i = 0; i < text.size(); ++i)
    {
        const QChar c = text.at(i);
        if (c != QLatin1Char('\\'))
        {
            result += c;
            continue;
        }
        if (i + 1 >= text.size())
        {
            good = false;
            break;
        }
        const QChar next = text.at(++i);
        if (next == QLatin1Char('\\'))
            result += QLatin1Char('\\');
        else if (next == QLatin1Char('t'))
            result += QLatin1Char('\t');
        else if (next == QLatin1Char('n'))
            result += QLatin1Char('\n');
        else if (next == QLatin1Char('r'))
            result += QLatin1Char('\r');
        else
            good = false;
    }
    if (ok)
        *ok = good;
    return result;
}

QString KOR_UPDATE_COMMAND_CODEC::metafield_text(KOR_METAFIELD metafield, const QVariant& value)
{
    if (is_bool_metafield(metafield))
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    if (metafield == KMF_LOOKUP_FIELDS)
        return value.toStringList().join(QLatin1Char(':'));
    if (metafield == KMF_FIELD_TYPE || metafield == KMF_MAX_LENGTH)
        return value.isValid() ? QString::number(value.toInt()) : QString();
    return KOR_FIELD_DATA::variant_to_text(value);
}

QVariant KOR_UPDATE_COMMAND_CODEC::metafield_value(KOR_METAFIELD metafield, const QString& text)
{
    if (is_bool_metafield(metafield))
        return text == QLatin1String("true");
    if (metafield == KMF_LOOKUP_FIELDS)
        return text.split(QLatin1Char(':'), Qt::SkipEmptyParts);
    if (metafield == KMF_FIELD_TYPE || metafield == KMF_MAX_LENGTH)
        return text.isEmpty() ? QVariant() : QVariant(text.toInt());
    return text;
}

QString KOR_UPDATE_COMMAND_CODEC::add_table(const KOR_TABLE_SCHEMA& schema, const KOR_COMMAND_ORIGIN& origin)
{
    return command(UPDATE_COMMAND_ITEM::UCT_ADD_TABLE, schema.get_table_name(), origin,
                   {QStringLiteral("schema"), schema_text(schema)});
}

QString KOR_UPDATE_COMMAND_CODEC::add_field(const QString& table, const KOR_FIELD_SCHEMA& field,
                                            const KOR_COMMAND_ORIGIN& origin)
{
    KOR_TABLE_SCHEMA holder(table);
    holder.add_field_schema(new KOR_FIELD_SCHEMA(field));
    return command(UPDATE_COMMAND_ITEM::UCT_ADD_FIELD, table, origin,
                   {QStringLiteral("field"), field.field_name(), QStringLiteral("uuid"),
                    field.field_unique_id().toString(QUuid::WithoutBraces), QStringLiteral("schema"),
                    schema_text(holder)});
}

QString KOR_UPDATE_COMMAND_CODEC::change_field(const QString& table, const QString& field_name,
                                               const QUuid& field_uuid, KOR_METAFIELD metafield,
                                               const QVariant& old_value, const QVariant& new_value,
                                               const KOR_COMMAND_ORIGIN& origin)
{
    return command(UPDATE_COMMAND_ITEM::UCT_CHANGE_FIELD, table, origin,
                   {QStringLiteral("field"), field_name, QStringLiteral("uuid"),
                    field_uuid.toString(QUuid::WithoutBraces), QStringLiteral("metafield"),
                    QString::number(int(metafield)), QStringLiteral("old"),
                    metafield_text(metafield, old_value), QStringLiteral("new"),
                    metafield_text(metafield, new_value)});
}

QString KOR_UPDATE_COMMAND_CODEC::remove_field(const QString& table, const QString& field_name,
                                               const QUuid& field_uuid, const KOR_COMMAND_ORIGIN& origin)
{
    return command(UPDATE_COMMAND_ITEM::UCT_REMOVE_FIELD, table, origin,
                   {QStringLiteral("field"), field_name, QStringLiteral("uuid"),
                    field_uuid.toString(QUuid::WithoutBraces)});
}

QString KOR_UPDATE_COMMAND_CODEC::reorder_fields(const QString& table, const QStringList& order,
                                                 const KOR_COMMAND_ORIGIN& origin)
{
    return command(UPDATE_COMMAND_ITEM::UCT_REORDER_FIELDS, table, origin,
                   {QStringLiteral("order"), order.join(QLatin1Char(':'))});
}

QString KOR_UPDATE_COMMAND_CODEC::remove_table(const QString& table, const KOR_COMMAND_ORIGIN& origin)
{
    return command(UPDATE_COMMAND_ITEM::UCT_REMOVE_TABLE, table, origin, {});
}

QString KOR_UPDATE_COMMAND_CODEC::change_table_agf(const QString& table, const QString& old_text,
                                                   const QString& new_text, const KOR_COMMAND_ORIGIN& origin)
{
    return command(UPDATE_COMMAND_ITEM::UCT_CHANGE_TABLE, table, origin,
                   {QStringLiteral("old"), old_text, QStringLiteral("new"), new_text});
}

bool KOR_UPDATE_COMMAND_CODEC::parse_line(QString& error, const QString& line, int line_number,
                                          UPDATE_COMMAND_ITEM& out, bool& is_command)
{
    const QString trimmed = line.trimmed();
    is_command = !(trimmed.isEmpty() || trimmed.startsWith(QLatin1Char('#')));
    if (!is_command)
        return true;
    QString text = line;
    if (text.endsWith(QLatin1Char('\r')))
        text.chop(1);
    const QStringList parts = text.split(QLatin1Char('\t'));
    bool ok = false;
    const int type = parts.first().toInt(&ok);
    if (!ok || type < UPDATE_COMMAND_ITEM::UCT_ADD_TABLE || type > UPDATE_COMMAND_ITEM::UCT_CHANGE_TABLE)
    {
        error = QStringLiteral("line %1: '%2' is not a command type (1 to 7)")
                    .arg(line_number)
                    .arg(parts.first());
        return false;
    }
    QMap<QString, QString> values;
    for (int i = 1; i < parts.size(); ++i)
    {
        const int equals = parts.at(i).indexOf(QLatin1Char('='));
        if (equals <= 0)
        {
            error = QStringLiteral("line %1: '%2' is not of the form name=value")
                        .arg(line_number)
                        .arg(parts.at(i));
            return false;
        }
        bool escaped_ok = true;
        values.insert(parts.at(i).left(equals), unescape(parts.at(i).mid(equals + 1), &escaped_ok));
        if (!escaped_ok)
        {
            error = QStringLiteral("line %1: a bad escape in '%2'").arg(line_number).arg(parts.at(i));
            return false;
        }
    }
    auto require = [&](const QString& name) {
        if (values.contains(name))
            return true;
        error = QStringLiteral("line %1: command %2 lacks '%3'").arg(line_number).arg(type).arg(name);
        return false;
    };
    if (!require(QStringLiteral("table")))
        return false;
    out.command_type = type;
    out.m_line = line_number;
    out.m_table_name = values.value(QStringLiteral("table"));
    out.m_time = values.value(QStringLiteral("time"));
    out.m_edit_user = values.value(QStringLiteral("user"));
    out.m_edit_description = values.value(QStringLiteral("description"));
    out.m_field_name = values.value(QStringLiteral("field"));
    out.m_field_uuid = QUuid(values.value(QStringLiteral("uuid")));
    if (!KOR_FIELD_SCHEMA::is_valid_name(out.m_table_name))
    {
        error =
            QStringLiteral("line %1: '%2' is not a valid table name").arg(line_number).arg(out.m_table_name);
        return false;
    }

    switch (type)
    {
    case UPDATE_COMMAND_ITEM::UCT_ADD_TABLE:
    case UPDATE_COMMAND_ITEM::UCT_ADD_FIELD:
    {
        if (!require(QStringLiteral("schema")))
            return false;
        std::unique_ptr<KOR_TABLE_SCHEMA> schema;
        QString reason;
        if (!KOR_TABLE_IO::read_schema_bytes(reason, values.value(QStringLiteral("schema")).toUtf8(),
                                             QStringLiteral("schema"), schema))
        {
            error = QStringLiteral("line %1: %2").arg(line_number).arg(reason);
            return false;
        }
        if (schema->get_table_name() != out.m_table_name)
        {
            error = QStringLiteral("line %1: the schema is of table '%2'")
                        .arg(line_number)
                        .arg(schema->get_table_name());
            return false;
        }
        if (type == UPDATE_COMMAND_ITEM::UCT_ADD_TABLE)
        {
            out.m_table_schema = std::move(schema);
            break;
        }
        if (!require(QStringLiteral("field")))
            return false;
        KOR_FIELD_SCHEMA* field = schema->remove_field_schema(out.m_field_name);
        if (!field)
        {
            error =
                QStringLiteral("line %1: the schema lacks field '%2'").arg(line_number).arg(out.m_field_name);
            return false;
        }
        out.m_field_schema.reset(field);
        break;
    }
    case UPDATE_COMMAND_ITEM::UCT_CHANGE_FIELD:
    {
        if (!require(QStringLiteral("field")) || !require(QStringLiteral("metafield")) ||
            !require(QStringLiteral("new")))
            return false;
        const int metafield = values.value(QStringLiteral("metafield")).toInt(&ok);
        if (!ok || metafield < 0 || metafield >= KMF_COUNT)
        {
            error = QStringLiteral("line %1: '%2' is not a metafield (0 to 20)")
                        .arg(line_number)
                        .arg(values.value(QStringLiteral("metafield")));
            return false;
        }
        out.m_metafield = KOR_METAFIELD(metafield);
        out.m_old_value = metafield_value(out.m_metafield, values.value(QStringLiteral("old")));
        out.m_new_value = metafield_value(out.m_metafield, values.value(QStringLiteral("new")));
        break;
    }
    case UPDATE_COMMAND_ITEM::UCT_REMOVE_FIELD:
        if (!require(QStringLiteral("field")))
            return false;
        break;
    case UPDATE_COMMAND_ITEM::UCT_REORDER_FIELDS:
        if (!require(QStringLiteral("order")))
            return false;
        out.m_new_value = values.value(QStringLiteral("order")).split(QLatin1Char(':'), Qt::SkipEmptyParts);
        break;
    case UPDATE_COMMAND_ITEM::UCT_REMOVE_TABLE:
        break;
    case UPDATE_COMMAND_ITEM::UCT_CHANGE_TABLE:
        if (!require(QStringLiteral("new")))
            return false;
        out.m_old_value = values.value(QStringLiteral("old"));
        out.m_new_value = values.value(QStringLiteral("new"));
        break;
    }
    return true;
}
