#pragma once

#include "kor_xml_query_interface.h"

#include <QStringList>

// The real engine, with a log of the calls a table model makes to write and
// look up, and one injected failure on request.
//
// The log has one line a call: "begin", "remove <key>",
// "edit <old key> <field>=<value> ...", "add <key>", "describe <field> <text>",
// "end", "terminate". Edits list the fields named in `logged_fields`.
class RECORDING_QUERY_INTERFACE : public KOR_XML_QUERY_INTERFACE
{
public:
    RECORDING_QUERY_INTERFACE();

    QStringList log;
    QStringList logged_fields;
    int lookup_calls = 0;
    // The next call whose log line starts with this word fails with
    // `failure_text` instead of reaching the engine; cleared when used.
    QString fail_next;
    QString failure_text = QStringLiteral("Injected failure");

    bool begin_transaction(QString& error, bool flag) override;
    bool end_transaction(QString& error) override;
    void terminate_transaction() override;
    QString remove_record(const QString& table_name, const KOR_RECORD_DATA& record) override;
    QString edit_record_data(const QString& table_name, const KOR_RECORD_DATA* old_record,
                             const KOR_RECORD_DATA* new_record) override;
    QString add_record(const QString& table_name, const KOR_RECORD_DATA* record) override;
    QString set_field_description(const QString& table_name, const QString& field_name,
                                  const QUuid& field_uuid, const QString& description) override;
    bool get_field_lookup_value(QString& error, QString& out, const KOR_FIELD_SCHEMA* field_schema,
                                const QVariant& value) override;

private:
    // Logs the line; the injected failure when its first word is the one
    // to fail, else empty.
    QString logged(const QString& line);
};
