#include "recording_query_interface.h"

#include "kor_field_data.h"
#include "kor_record_data.h"

RECORDING_QUERY_INTERFACE::RECORDING_QUERY_INTERFACE()
    : KOR_XML_QUERY_INTERFACE(nullptr, QString(), false, false)
{
}

QString RECORDING_QUERY_INTERFACE::logged(const QString& line)
{
    log.append(line);
    if (fail_next.isEmpty() || fail_next != line.section(QLatin1Char(' '), 0, 0))
        return QString();
    fail_next.clear();
    return failure_text;
}

bool RECORDING_QUERY_INTERFACE::begin_transaction(QString& error, bool flag)
{
    error = logged(QStringLiteral("begin"));
    return error.isEmpty() && KOR_XML_QUERY_INTERFACE::begin_transaction(error, flag);
}

bool RECORDING_QUERY_INTERFACE::end_transaction(QString& error)
{
    error = logged(QStringLiteral("end"));
    return error.isEmpty() && KOR_XML_QUERY_INTERFACE::end_transaction(error);
}

void RECORDING_QUERY_INTERFACE::terminate_transaction()
{
    log.append(QStringLiteral("terminate"));
    KOR_XML_QUERY_INTERFACE::terminate_transaction();
}

QString RECORDING_QUERY_INTERFACE::remove_record(const QString& table_name, const KOR_RECORD_DATA& record)
{
    const QString failure = logged(QStringLiteral("remove ") + record.key());
    return failure.isEmpty() ? KOR_XML_QUERY_INTERFACE::remove_record(table_name, record) : failure;
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
    const QString failure = logged(line);
    return failure.isEmpty() ? KOR_XML_QUERY_INTERFACE::edit_record_data(table_name, old_record, new_record)
                             : failure;
}

QString RECORDING_QUERY_INTERFACE::add_record(const QString& table_name, const KOR_RECORD_DATA* record)
{
    const QString failure = logged(QStringLiteral("add ") + (record ? record->key() : QString()));
    return failure.isEmpty() ? KOR_XML_QUERY_INTERFACE::add_record(table_name, record) : failure;
}

QString RECORDING_QUERY_INTERFACE::set_field_description(const QString& table_name, const QString& field_name,
                                                         const QUuid& field_uuid, const QString& description)
{
    const QString failure = logged(QStringLiteral("describe ") + field_name + QLatin1Char(' ') + description);
    return failure.isEmpty() ? KOR_XML_QUERY_INTERFACE::set_field_description(table_name, field_name,
                                                                              field_uuid, description)
                             : failure;
}

bool RECORDING_QUERY_INTERFACE::get_field_lookup_value(QString& error, QString& out,
                                                       const KOR_FIELD_SCHEMA* field_schema,
                                                       const QVariant& value)
{
    ++lookup_calls;
    return KOR_XML_QUERY_INTERFACE::get_field_lookup_value(error, out, field_schema, value);
}
