#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

class KOR_TABLE_SCHEMA;

// Reads "<directory>/<table key>.csv" for the table data editor's "Import
// csv": a header line naming fields, then one record a line. Lines whose
// values do not fit (wrong count, empty key) are skipped with a numbered
// warning; the header is line 1.
//
// The file is UTF-8, with or without a byte-order mark, with LF or CR LF line
// ends. Header names match field names ignoring case; values are kept under
// the schema's own spelling.
class CSV_TABLE_READER
{
public:
    CSV_TABLE_READER(const QString& directory, const KOR_TABLE_SCHEMA* table_schema);

    // False when the file cannot be used at all; messages() says why.
    bool read();

    bool success() const { return m_success; }
    QString file_path() const;
    // Failures and warnings, in the order met.
    const QStringList& messages() const { return m_messages; }
    int header_count() const { return m_header_count; }
    // Composite key → field name → text.
    const QMap<QString, QMap<QString, QString>>& values() const { return m_key_values; }
    // Field name → column of the file.
    const QMap<QString, int>& field_columns() const { return m_field_columns; }

private:
    bool read_header(const QString& line);
    void read_record(const QString& line, int number);

    bool m_success = false;
    QString m_directory;
    const KOR_TABLE_SCHEMA* m_table_schema = nullptr;
    QStringList m_messages;
    qint32 m_header_count = 0;
    QMap<QString, QMap<QString, QString>> m_key_values;
    QMap<QString, int> m_field_columns;
    // In key order: the composite key joins their values in this order.
    QStringList m_primary_key_fields;
};
