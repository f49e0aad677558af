#include "recording_query_interface.h"

#include "kor_field_data.h"
#include "kor_record_data.h"

RECORDING_QUERY_INTERFACE::RECORDING_QUERY_INTERFACE()
    : KOR_XML_QUERY_INTERFACE(nullptr, QString(), false, false)
{
}

bool RECORDING_QUERY_INTERFACE::failing(const QString& word)
{
    if (fail_next != word)
        return false;
    fail_next.clear();
    return true;
}

bool RECORDING_QUERY_INTERFACE::begin_transaction(QString& error, bool flag)
{
    log.append(QStringLiteral("begin"));
    if (failing(QStringLiteral("begin")))
    {
        error = failure_text;
        return false;
    }
    return KOR_XML_QUERY_INTERFACE::begin_transaction(error, flag);
}

bool RECORDING_QUERY_INTERFACE::end_transaction(QString& error)
{
    log.append(QStringLiteral("end"));
    if (failing(QStringLiteral("end")))
    {
        error = failure_text;
        return false;
    }
    return KOR_XML_QUERY_INTERFACE::end_transaction(error);
}

void RECORDING_QUERY_INTERFACE::terminate_transaction()
{
    log.append(QStringLiteral("terminate"));
    KOR_XML_QUERY_INTERFACE::terminate_transaction();
}

QString RECORDING_QUERY_INTERFACE::remove_record(const QString& table_name, const KOR_RECORD_DATA& record)
{
    log.append(QStringLiteral("remove ") + record.key());
    if (failing(QStringLiteral("remove")))
        return failure_text;
    return KOR_XML_QUERY_INTERFACE::remove_record(table_name, record);
}

QString RECORDING_QUERY_INTERFACE::edit_record_data(const QString& table_name,
                                                    const KOR_RECORD_DATA* old_record,
                                                    const KOR_RECORD_DATA* new_record)
{
    QString line = QStringLiteral("edit ") + (old_record ? old_record->key() : QString());
    for (const QString& field : qAsConst(logged_fields))
    {
        const KOR_FIELD_DATA* data = new_record ? new_record->get_field_data(field) : nullptr;
        line += QLatin1Char(' ') + field + QLatin1Char('=') + (data ? data->value_text() : QString());
    }
    log.append(line);
    if (failing(QStringLiteral("edit")))
        return failure_text;
    return KOR_XML_QUERY_INTERFACE::edit_record_data(table_name, old_record, new_record);
}

QString RECORDING_QUERY_INTERFACE::add_record(const QString& table_name, const KOR_RECORD_DATA* record)
{
    log.append(QStringLiteral("add ") + (record ? record->key() : QString()));
    if (failing(QStringLiteral("add")))
        return failure_text;
    return KOR_XML_QUERY_INTERFACE::add_record(table_name, record);
}

QString RECORDING_QUERY_INTERFACE::set_field_description(const QString& table_name, const QString& field_name,
                                                         const QUuid& field_uuid, const QString& description)
{
    log.append(QStringLiteral("describe ") + field_name + QLatin1Char(' ') + description);
    if (failing(QStringLiteral("describe")))
        return failure_text;
    return KOR_XML_QUERY_INTERFACE::set_field_description(table_name, field_name, field_uuid, description);
}

bool RECORDING_QUERY_INTERFACE::get_field_lookup_value(QString& error, QString& out,
                                                       const KOR_FIELD_SCHEMA* field_schema,
                                                       const QVariant& value)
{
    ++lookup_calls;
    return KOR_XML_QUERY_INTERFACE::get_field_lookup_value(error, out, field_schema, value);
}
